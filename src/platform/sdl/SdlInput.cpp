// SDL's input as the window procedure takes it: positions in card pixels, the system's key codes,
// characters in Windows-1252.
#include <string>

#include "base/Windows1252.h"
#include "platform/HostInput.h"
#include "platform/sdl/KeyNames.h"
#include "platform/sdl/SdlState.h"

namespace {

uint32_t ModsFrom(Uint16 mod) {
    uint32_t mods = 0;
    if (mod & KMOD_SHIFT) mods |= kModShift;
    if (mod & KMOD_CTRL) mods |= kModCtrl;
    if (mod & KMOD_ALT) mods |= kModAlt;
    return mods;
}

// A window position in card pixels. The renderer's output may have more pixels than the window
// has points (high-density displays); positions are taken to output pixels first.
Point CardPoint(int32_t x, int32_t y) {
    SdlState& s = GetSdlState();
    int ww = 0, wh = 0, ow = 0, oh = 0;
    SDL_GetWindowSize(s.window, &ww, &wh);
    if (SDL_GetRendererOutputSize(s.renderer, &ow, &oh) == 0 && ww > 0 && wh > 0) {
        x = static_cast<int32_t>(static_cast<int64_t>(x) * ow / ww);
        y = static_cast<int32_t>(static_cast<int64_t>(y) * oh / wh);
    }
    return CardPointFromOutput(s.layout, x, y);
}

bool OnCard(const Point& p) {
    return GetSdlState().surface.Bounds().Contains(p.x, p.y);
}

void Queue(const HostEvent& event) {
    SdlState& s = GetSdlState();
    s.events.push_back(event);
    ++s.arrivals;
}

// Moves pile up faster than a busy card takes them; as in the system, only the latest counts.
void QueueMove(const HostEvent& event) {
    SdlState& s = GetSdlState();
    if (!s.events.empty()) {
        HostEvent& last = s.events.back();
        if (last.kind == HostEventKind::MouseMove && last.button == event.button &&
            last.mods == event.mods) {
            last = event;
            ++s.arrivals;
            return;
        }
    }
    Queue(event);
}

int32_t ButtonNumber(Uint8 button) {
    if (button == SDL_BUTTON_LEFT) return 1;
    if (button == SDL_BUTTON_RIGHT) return 2;
    return 0;
}

void TakeMouseButton(const SDL_MouseButtonEvent& b, bool down) {
    const int32_t button = ButtonNumber(b.button);
    if (button == 0) return;
    const Point p = CardPoint(b.x, b.y);
    // A press in the black border of fullscreen is not on the window's client area.
    if (down && !OnCard(p)) return;
    HostEvent event;
    event.kind = down ? HostEventKind::MouseDown : HostEventKind::MouseUp;
    event.time = b.timestamp;
    event.x = p.x;
    event.y = p.y;
    event.mods = ModsFrom(static_cast<Uint16>(SDL_GetModState()));
    event.button = button;
    // SDL counts on (3, 4, ...); the system's double click pairs presses: the third starts anew.
    event.clicks = down && b.clicks >= 2 && b.clicks % 2 == 0 ? 2 : 1;
    Queue(event);
}

void TakeMouseMotion(const SDL_MouseMotionEvent& m) {
    const Point p = CardPoint(m.x, m.y);
    const int32_t button = (m.state & SDL_BUTTON_LMASK) ? 1 : (m.state & SDL_BUTTON_RMASK) ? 2 : 0;
    // Without a button held the pointer belongs to the window only over the card.
    if (button == 0 && !OnCard(p)) return;
    HostEvent event;
    event.kind = HostEventKind::MouseMove;
    event.time = m.timestamp;
    event.x = p.x;
    event.y = p.y;
    event.mods = ModsFrom(static_cast<Uint16>(SDL_GetModState()));
    event.button = button;
    QueueMove(event);
}

// F11 and Alt+Return switch fullscreen; the card never sees them.
bool IsFullscreenKey(const SDL_KeyboardEvent& k) {
    return k.keysym.sym == SDLK_F11 || (k.keysym.sym == SDLK_RETURN && (k.keysym.mod & KMOD_ALT));
}

void TakeKey(const SDL_KeyboardEvent& k, bool down) {
    if (IsFullscreenKey(k)) {
        if (down && !k.repeat) ToggleSdlFullscreen();
        return;
    }
    const uint16_t key = VirtualKeyFromName(SDL_GetKeyName(k.keysym.sym));
    if (key == 0) return;
    HostEvent event;
    event.kind = down ? HostEventKind::KeyDown : HostEventKind::KeyUp;
    event.time = k.timestamp;
    event.key = key;
    event.mods = ModsFrom(k.keysym.mod);
    Queue(event);
    const uint8_t ch = ControlCharOfKey(key);
    if (down && ch != 0 && (event.mods & (kModCtrl | kModAlt)) == 0) {
        event.kind = HostEventKind::Char;
        event.key = 0;
        event.ch = ch;
        Queue(event);
    }
}

void TakeText(const SDL_TextInputEvent& t) {
    HostEvent event;
    event.kind = HostEventKind::Char;
    event.time = t.timestamp;
    event.mods = ModsFrom(static_cast<Uint16>(SDL_GetModState()));
    for (const char c : Windows1252FromUtf8(t.text)) {
        event.ch = static_cast<uint8_t>(c);
        Queue(event);
    }
}

void TakeWindowEvent(const SDL_WindowEvent& w) {
    switch (w.event) {
        case SDL_WINDOWEVENT_SIZE_CHANGED:
            UpdateSdlLayout();
            RedrawSdlWindow();
            break;
        case SDL_WINDOWEVENT_EXPOSED:
            RedrawSdlWindow();
            break;
        case SDL_WINDOWEVENT_FOCUS_LOST: {
            HostEvent lost;
            lost.kind = HostEventKind::FocusLost;
            lost.time = w.timestamp;
            Queue(lost);
            break;
        }
        default:
            break;
    }
}

}  // namespace

void TakeSdlEvent(const SDL_Event& event) {
    switch (event.type) {
        case SDL_MOUSEBUTTONDOWN:
            TakeMouseButton(event.button, true);
            break;
        case SDL_MOUSEBUTTONUP:
            TakeMouseButton(event.button, false);
            break;
        case SDL_MOUSEMOTION:
            TakeMouseMotion(event.motion);
            break;
        case SDL_KEYDOWN:
            TakeKey(event.key, true);
            break;
        case SDL_KEYUP:
            TakeKey(event.key, false);
            break;
        case SDL_TEXTINPUT:
            TakeText(event.text);
            break;
        case SDL_WINDOWEVENT:
            TakeWindowEvent(event.window);
            break;
        case SDL_QUIT: {
            HostEvent close;
            close.kind = HostEventKind::Close;
            close.time = event.quit.timestamp;
            Queue(close);
            break;
        }
        default:
            break;
    }
}
