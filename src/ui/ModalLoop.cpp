#include "ui/ModalLoop.h"

#include <algorithm>

#include "base/KeyCodes.h"
#include "card/OffscreenCard.h"
#include "subsystems/Subsystems.h"

namespace {

Surface* WindowSurface() {
    const Host& host = GetHost();
    return host.GetWindowSurface();
}

void Show(const ModalDialog& dialog) {
    Surface* window = WindowSurface();
    if (!window) return;
    dialog.Draw(dialog.context, *window, dialog.box);
    const Host& host = GetHost();
    host.Present(dialog.box);
}

// What lay under the box, for a window that has no offscreen card to be rebuilt from.
Surface SaveUnder(const Rect& area) {
    Surface* window = WindowSurface();
    if (!window || area.IsEmpty()) return {};
    Surface saved(area.Width(), area.Height());
    for (int32_t y = 0; y < area.Height(); ++y) {
        const uint32_t* from = window->Row(area.top + y) + area.left;
        std::copy(from, from + area.Width(), saved.Row(y));
    }
    return saved;
}

void Restore(const Rect& area, const Surface& saved) {
    if (area.IsEmpty()) return;
    if (GetOffscreenState().hasScreen) {
        RepaintRect(area.left, area.top, area.right, area.bottom);
        return;
    }
    Surface* window = WindowSurface();
    if (!window || saved.width != area.Width() || saved.height != area.Height()) return;
    for (int32_t y = 0; y < area.Height(); ++y) {
        std::copy(saved.Row(y), saved.Row(y) + saved.width, window->Row(area.top + y) + area.left);
    }
    const Host& host = GetHost();
    host.Present(area);
}

}  // namespace

Rect CentredBox(int32_t width, int32_t height) {
    const Surface* window = WindowSurface();
    const int32_t w = window ? window->width : width, h = window ? window->height : height;
    const int32_t left = std::max(0, (w - width) / 2), top = std::max(0, (h - height) / 2);
    return {left, top, left + width, top + height};
}

void RunModalDialog(const ModalDialog& dialog) {
    const Host& host = GetHost();
    Surface* window = WindowSurface();
    const Rect area = window ? IntersectRect(dialog.box, window->Bounds()) : Rect{};
    const Surface saved = SaveUnder(area);
    Show(dialog);
    bool done = false;
    while (!done) {
        HostEvent event;
        while (!done && host.PollEvent(&event)) {
            if (event.kind == HostEventKind::Close) {
                dialog.GiveUp(dialog.context);
                done = true;
            } else if (event.kind == HostEventKind::Paint) {
                RepaintRect(event.areaLeft, event.areaTop, event.areaRight, event.areaBottom);
                Show(dialog);
            } else {
                done = dialog.HandleEvent(dialog.context, event, dialog.box);
                if (!done) Show(dialog);
            }
        }
        if (done) break;
        bool ticked = false;
        const uint32_t nextTick = GetSubsystems().ServeDueTick(&ticked);
        // The timer work may have drawn over the box.
        if (ticked) Show(dialog);
        if (host.InputExhausted()) {
            dialog.GiveUp(dialog.context);
            break;
        }
        host.WaitUntil(nextTick);
    }
    Restore(area, saved);
}

int FollowDialogPress(DialogPress* press, const HostEvent& event, int under) {
    switch (event.kind) {
        case HostEventKind::MouseDown:
            if (event.button == 1) press->tracking = press->pressed = under;
            return 0;
        case HostEventKind::MouseMove:
            if (press->tracking) press->pressed = under == press->tracking ? press->tracking : 0;
            return 0;
        case HostEventKind::MouseUp: {
            if (event.button != 1 || !press->tracking) return 0;
            const int chosen = under == press->tracking ? press->tracking : 0;
            *press = DialogPress{};
            return chosen;
        }
        default:
            return 0;
    }
}

int TypeIntoDialogLine(std::string* text, size_t max, const HostEvent& event) {
    if (event.kind == HostEventKind::KeyDown) {
        if (event.key == kVkReturn) return 1;
        if (event.key == kVkEscape) return 2;
        if (event.key == kVkBack && !text->empty()) text->pop_back();
    } else if (event.kind == HostEventKind::Char && event.ch >= 0x20 && event.ch != 0x7F && text->size() < max) {
        *text += static_cast<char>(event.ch);
    }
    return 0;
}
