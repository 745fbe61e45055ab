#include "ui/JumpDialog.h"

#include "gfx/Draw.h"
#include "player/Navigation.h"
#include "text/Font.h"
#include "ui/AlertDraw.h"
#include "ui/ModalLoop.h"

namespace {

inline constexpr int32_t kBoxWidth = 260;
inline constexpr int32_t kBoxHeight = 104;
inline constexpr int32_t kMargin = 14;
inline constexpr int32_t kButtonWidth = 75;
inline constexpr int32_t kButtonHeight = 23;
inline constexpr int32_t kButtonGap = 10;
inline constexpr char kPrompt[] = "Card number or name:";
inline constexpr uint32_t kFaceColour = Rgb(0xC0, 0xC0, 0xC0);

enum JumpButton { kNone = 0, kOk = 1, kCancel = 2 };

struct JumpSession {
    std::string text;
    int answer = kNone;
    DialogPress press;
};

TextFont DialogFont() { return {"MS Sans Serif", 12, 0}; }

// The parts of the box, relative to its corner.
Rect EditRect() { return {kMargin, 36, kBoxWidth - kMargin, 58}; }
Rect ButtonRect(int button) {
    const int32_t right = kBoxWidth - kMargin - (button == kOk ? kButtonWidth + kButtonGap : 0);
    const int32_t bottom = kBoxHeight - kMargin + 2;
    return {right - kButtonWidth, bottom - kButtonHeight, right, bottom};
}

int ButtonAt(const HostEvent& event, const Rect& box) {
    for (const int b : {kOk, kCancel}) {
        if (OffsetRect(ButtonRect(b), box.left, box.top).Contains(event.x, event.y)) return b;
    }
    return kNone;
}

void DrawButtonBox(Surface& window, const Rect& box, int button, const char* label, bool pressed) {
    DrawDialogButton(window, box, OffsetRect(ButtonRect(button), box.left, box.top), label, button == kOk, pressed);
}

void DrawSession(void* context, Surface& window, const Rect& box) {
    const JumpSession& s = *static_cast<JumpSession*>(context);
    FillRect(window, box, box, kFaceColour);
    FrameRect(window, box, box, {kBlack, 1, PenMode::Copy});
    FrameRect(window, box, InflateRect(box, -3, -3), {kBlack, 1, PenMode::Copy});
    const TextFont font = DialogFont();
    const TextMetrics m = GetTextMetrics(font);
    DrawText(window, font, box.left + kMargin, box.top + 14 + m.ascent, kPrompt, kBlack, box);
    const Rect edit = OffsetRect(EditRect(), box.left, box.top);
    FillRect(window, box, edit, kWhite);
    FrameRect(window, box, edit, {kBlack, 1, PenMode::Copy});
    const int32_t textTop = edit.top + (edit.Height() - m.lineHeight) / 2;
    const Rect inside = InflateRect(edit, -2, -2);
    DrawText(window, font, edit.left + 4, textTop + m.ascent, s.text, kBlack, inside);
    const int32_t caret = edit.left + 4 + MeasureText(font, s.text);
    FillRect(window, inside, {caret, textTop, caret + 1, textTop + m.lineHeight}, kBlack);
    DrawButtonBox(window, box, kOk, "OK", s.press.pressed == kOk);
    DrawButtonBox(window, box, kCancel, "Cancel", s.press.pressed == kCancel);
}

bool HandleSessionEvent(void* context, const HostEvent& event, const Rect& box) {
    JumpSession& s = *static_cast<JumpSession*>(context);
    switch (event.kind) {
        case HostEventKind::MouseDown:
        case HostEventKind::MouseMove:
        case HostEventKind::MouseUp:
            if (const int chosen = FollowDialogPress(&s.press, event, ButtonAt(event, box))) s.answer = chosen;
            return s.answer != kNone;
        default:
            if (const int answer = TypeIntoDialogLine(&s.text, kJumpTextMax, event)) s.answer = answer;
            return s.answer != kNone;
    }
}

void GiveUpSession(void* context) { static_cast<JumpSession*>(context)->answer = kCancel; }

}  // namespace

bool RunJumpDialog(std::string* text) {
    JumpSession session;
    ModalDialog dialog;
    dialog.box = CentredBox(kBoxWidth, kBoxHeight);
    dialog.context = &session;
    dialog.Draw = DrawSession;
    dialog.HandleEvent = HandleSessionEvent;
    dialog.GiveUp = GiveUpSession;
    RunModalDialog(dialog);
    if (session.answer != kOk) return false;
    *text = session.text;
    return true;
}

void AskJumpToCard() {
    std::string text;
    // A text that finds no card has had its alert by now; the dialog stays closed either way.
    if (RunJumpDialog(&text)) JumpToCardByText(text);
}
