// The page's input as the window procedure takes it. The page (WebHost.js) calls these from its
// DOM handlers with canvas pixels, the system's virtual-key codes (the DOM's keyCode numbers them
// the same way) and modifier bits; characters come as UTF-8 and go in as Windows-1252.
#include <emscripten.h>

#include <string>

#include "base/Windows1252.h"
#include "platform/HostInput.h"
#include "platform/web/WebState.h"

namespace {

HostEvent Stamped(HostEventKind kind, uint32_t mods) {
    HostEvent event;
    event.kind = kind;
    event.time = GetHost().GetTickCount();
    event.mods = mods;
    return event;
}

}  // namespace

void QueueWebEvent(const HostEvent& event) {
    WebState& s = GetWebState();
    // Moves pile up faster than a busy card takes them; as in the system, only the latest counts.
    if (event.kind == HostEventKind::MouseMove && !s.events.empty()) {
        HostEvent& last = s.events.back();
        if (last.kind == HostEventKind::MouseMove && last.button == event.button && last.mods == event.mods) {
            last = event;
            ++s.arrivals;
            return;
        }
    }
    s.events.push_back(event);
    ++s.arrivals;
}

extern "C" {

// `kind`: 0 press, 1 release, 2 move; `button` 1 left, 2 right, 0 none (moves).
EMSCRIPTEN_KEEPALIVE void QbWebMouse(int kind, int x, int y, int button, int mods, int clicks) {
    static constexpr HostEventKind kKinds[] = {HostEventKind::MouseDown, HostEventKind::MouseUp,
                                               HostEventKind::MouseMove};
    if (kind < 0 || kind > 2) return;
    HostEvent event = Stamped(kKinds[kind], static_cast<uint32_t>(mods));
    event.x = x;
    event.y = y;
    event.button = button;
    event.clicks = clicks == 2 ? 2 : 1;
    QueueWebEvent(event);
}

EMSCRIPTEN_KEEPALIVE void QbWebKey(int down, int key, int mods) {
    if (key <= 0 || key > 0xFF) return;
    HostEvent event = Stamped(down ? HostEventKind::KeyDown : HostEventKind::KeyUp, static_cast<uint32_t>(mods));
    event.key = static_cast<uint16_t>(key);
    QueueWebEvent(event);
    const uint8_t ch = ControlCharOfKey(event.key);
    if (down && ch != 0 && (event.mods & (kModCtrl | kModAlt)) == 0) {
        event.kind = HostEventKind::Char;
        event.key = 0;
        event.ch = ch;
        QueueWebEvent(event);
    }
}

// Typed text, UTF-8; characters Windows-1252 has no place for are dropped.
EMSCRIPTEN_KEEPALIVE void QbWebText(const char* utf8, int mods) {
    HostEvent event = Stamped(HostEventKind::Char, static_cast<uint32_t>(mods));
    for (const char c : Windows1252FromUtf8(utf8 ? utf8 : "")) {
        event.ch = static_cast<uint8_t>(c);
        QueueWebEvent(event);
    }
}

EMSCRIPTEN_KEEPALIVE void QbWebFocusLost() {
    QueueWebEvent(Stamped(HostEventKind::FocusLost, 0));
}

}  // extern "C"
