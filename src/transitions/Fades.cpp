// Colour fades. At 8 bits the colours ramp through the fade hook to the target and on to the new
// card's colours; the hook does nothing by default, so a fade is a timed pause, the new picture,
// and a second pause. Above 8 bits the colour fades run as Fastest at the fastest speed, and the
// fade of the whole display dissolves through black instead.
#include <utility>
#include <vector>

#include "gfx/Blit.h"
#include "gfx/DibImage.h"
#include "gfx/Palette.h"
#include "gfx/PaletteRemap.h"
#include "memory/MemRef.h"
#include "platform/Host.h"
#include "subsystems/Subsystems.h"
#include "transitions/Transition.h"
#include "transitions/TransitionFamilies.h"
#include "transitions/TransitionSteps.h"

namespace {

constexpr int32_t kRampSteps = 32;
constexpr uint32_t kDisplayFadePauseMs = 1000;
constexpr uint16_t kEscapeKey = 0x1B;

PaletteEntry Mix(const PaletteEntry& from, const PaletteEntry& to, int32_t s) {
    const auto mix = [s](uint8_t a, uint8_t b) {
        return static_cast<uint8_t>(((kRampSteps - s) * a + s * b) / kRampSteps);
    };
    return {mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue),
            kPaletteReserved};
}

void Animate(const PaletteEntry* entries) {
    const PaletteState& p = GetPaletteState();
    if (p.animate) p.animate(p.current.get(), 0, kPaletteSize, entries);
}

// Steps 1 to `last` of a ramp, timed from its own start: the colours of step s are
// ((32 - s) * from + s * to) / 32; step s is due (speed + 2) * s quarter ticks after the start.
template <class ColorFn>
void Ramp(int32_t last, ColorFn&& colorAt) {
    const uint32_t base = static_cast<uint32_t>(GetTransitionState().speed) + 2;
    const uint32_t start = CurrentTick();
    PaletteEntry entries[kPaletteSize];
    for (int32_t s = 1; s <= last; ++s) {
        for (uint32_t i = 0; i < kPaletteSize; ++i) entries[i] = colorAt(i, s);
        Animate(entries);
        GetSubsystems().UpdateSounds();
        WaitQuarterTicks(start, base * static_cast<uint32_t>(s));
    }
}

bool IsEscapeDown(const HostEvent& e) {
    return e.kind == HostEventKind::KeyDown && e.key == kEscapeKey;
}

// The pause in black, which Escape cuts short. The key stays queued, as any key pressed during a
// transition does, for the window to get afterwards.
void PauseUnlessEscape(uint32_t ms) {
    const Host& host = GetHost();
    const uint32_t deadline = host.GetTickCount() + ms;
    HostEvent escape;
    while (static_cast<int32_t>(deadline - host.GetTickCount()) > 0) {
        if (host.PeekEvent(IsEscapeDown, &escape)) return;
        GetSubsystems().UpdateSounds();
        host.WaitUntil(deadline);
    }
}

// Old colours to `target`, the new picture, `target` to the new colours.
void FadeThrough(const PaletteEntry& target, const Rect& area, const Surface& picture) {
    const PaletteState& p = GetPaletteState();
    Ramp(kRampSteps, [&](uint32_t i, int32_t s) { return Mix(p.oldColors[i], target, s); });
    TransitionState& t = GetTransitionState();
    CopyRect(*t.window, area, area.left, area.top, picture, area);
    NoteChanged(area);
    PresentChanges();
    Ramp(kRampSteps - 1, [&](uint32_t i, int32_t s) { return Mix(target, p.newColors[i], s); });
    Animate(p.newColors);
}

}  // namespace

void RunColorFade(int16_t id) {
    TransitionState& s = GetTransitionState();
    if (DisplayDepth() != 8) {
        s.speed = kFastestSpeed;
        RunFastest(kTransitionFastest);
        return;
    }
    const PaletteEntry target = id == 5   ? PaletteEntry{0, 0, 0, 0}
                                : id == 6 ? PaletteEntry{255, 255, 255, 0}
                                          : s.fadeColor;
    FadeThrough(target, s.rect, *s.source);
}

// The display is the window: all of it goes to black and comes back with the new picture over
// the rectangle. At 8 bits only the colours would go, and the window's pixels outside the
// rectangle never change.
void RunDisplayFade(int16_t) {
    TransitionState& s = GetTransitionState();
    const Rect rect = s.rect;
    if (DisplayDepth() <= 8) {
        FadeThrough({0, 0, 0, 0}, rect, *s.source);
        return;
    }
    // The picture to come back to: the new one where the rectangle is the whole window.
    const Rect display = s.window->Bounds();
    Surface composed;
    if (rect != display) {
        composed = *s.window;
        CopyRect(composed, rect, rect.left, rect.top, *s.source, rect);
    }
    s.rect = display;
    if (DissolveArea(display, nullptr, kBlack)) {
        PresentChanges();
        PauseUnlessEscape(kDisplayFadePauseMs);
        DissolveArea(display, rect != display ? &composed : s.source, 0);
        PresentChanges();
        s.rect = rect;
    } else {
        s.rect = rect;
        RunFastest(kTransitionFastest);
    }
}

void PrepareFade(int16_t id) {
    if (DisplayDepth() != 8 || (id != 5 && id != 6 && id != 27)) return;
    const Host& host = GetHost();
    Surface* window = host.GetWindowSurface();
    if (!window) return;
    // The display's colours as a one-row picture of every index, moved off the reserved
    // entries: what each reserved colour becomes.
    PaletteEntry display[kPaletteSize];
    GetSystemPaletteEntries(display);
    const MemRef picture = NewDibImage(static_cast<int32_t>(kPaletteSize), 1, 8);
    if (!picture) return;
    std::vector<std::pair<uint32_t, uint32_t>> moves;
    {
        MemRefLock lock(picture);
        uint8_t* dib = lock.data();
        uint8_t* colors = DibColors(dib);
        uint8_t* pixels = DibPixels(dib);
        for (uint32_t i = 0; i < kPaletteSize; ++i) {
            colors[i * kDibColorSize] = display[i].blue;
            colors[i * kDibColorSize + 1] = display[i].green;
            colors[i * kDibColorSize + 2] = display[i].red;
            pixels[i] = static_cast<uint8_t>(i);
        }
    }
    if (MapReservedColors(picture) == 0) {
        MemRefLock lock(picture);
        const uint8_t* pixels = DibPixels(lock.data());
        const auto rgb = [](const PaletteEntry& e) { return Rgb(e.red, e.green, e.blue); };
        for (uint32_t i = 0; i < kPaletteSize; ++i) {
            // A colour that an entry outside the reserved ones also has maps to itself.
            const uint32_t from = rgb(display[i]), to = rgb(display[pixels[i]]);
            if (from != to) moves.emplace_back(from, to);
        }
    }
    FreeMemRef(picture);
    if (moves.empty()) return;
    bool changed = false;
    for (uint32_t& pixel : window->pixels) {
        for (const auto& [from, to] : moves) {
            if (pixel == from) {
                pixel = to;
                changed = true;
                break;
            }
        }
    }
    if (changed && host.Present) host.Present(window->Bounds());
}
