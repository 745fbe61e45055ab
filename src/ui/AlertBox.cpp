#include "ui/AlertBox.h"

#include <cctype>

#include "base/KeyCodes.h"
#include "platform/AlertLayout.h"
#include "ui/AlertDraw.h"
#include "ui/ModalLoop.h"

namespace {

struct AlertSession {
    const AlertLayout* layout = nullptr;
    int answer = 0;
    int tracking = 0;  // the button a press started on
    int pressed = 0;   // the button shown held down
};

int ButtonAt(const AlertSession& s, const HostEvent& event, const Rect& box) {
    return AlertButtonAt(*s.layout, event.x - box.left, event.y - box.top);
}

void DrawSession(void* context, Surface& window, const Rect& box) {
    const AlertSession& s = *static_cast<AlertSession*>(context);
    DrawAlert(window, {box.left, box.top}, *s.layout, s.pressed);
}

bool HandleSessionEvent(void* context, const HostEvent& event, const Rect& box) {
    AlertSession& s = *static_cast<AlertSession*>(context);
    switch (event.kind) {
        case HostEventKind::MouseDown:
            if (event.button == 1) s.tracking = s.pressed = ButtonAt(s, event, box);
            return false;
        case HostEventKind::MouseMove:
            if (s.tracking) s.pressed = ButtonAt(s, event, box) == s.tracking ? s.tracking : 0;
            return false;
        case HostEventKind::MouseUp:
            if (event.button != 1 || !s.tracking) return false;
            if (ButtonAt(s, event, box) == s.tracking) s.answer = s.tracking;
            s.tracking = s.pressed = 0;
            return s.answer != 0;
        case HostEventKind::KeyDown:
            if (event.key == kVkReturn) {
                s.answer = s.layout->defaultButton;
            } else if (event.key == kVkEscape) {
                s.answer = AlertCancelButton(*s.layout);
            }
            return s.answer != 0;
        default:
            return false;
    }
}

void GiveUpSession(void* context) {
    AlertSession& s = *static_cast<AlertSession*>(context);
    const int cancel = AlertCancelButton(*s.layout);
    s.answer = cancel ? cancel : s.layout->defaultButton;
}

}  // namespace

int AlertCancelButton(const AlertLayout& layout) {
    for (int i = 0; i < layout.buttonCount && i < 3; ++i) {
        std::string label;
        for (const char c : layout.buttons[i].label) {
            if (c != '&') label += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        if (label == "cancel") return i + 1;
    }
    return 0;
}

int ShowModalAlert(const AlertLayout& layout) {
    if (layout.buttonCount <= 0) return 1;
    AlertSession session;
    session.layout = &layout;
    ModalDialog dialog;
    dialog.box = CentredBox(layout.width, layout.height);
    dialog.context = &session;
    dialog.Draw = DrawSession;
    dialog.HandleEvent = HandleSessionEvent;
    dialog.GiveUp = GiveUpSession;
    RunModalDialog(dialog);
    return session.answer >= 1 && session.answer <= layout.buttonCount ? session.answer
                                                                       : layout.defaultButton;
}
