#include "transitions/Transition.h"

#include "platform/Host.h"
#include "transitions/TransitionFamilies.h"
#include "transitions/TransitionSteps.h"

namespace {

using TransitionProc = void (*)(int16_t id);

// By id; slot 0 is never used.
constexpr TransitionProc kTransitions[kTransitionCount + 1] = {
    nullptr,
    RunWipe,         // 1 "Left to right"
    RunWipe,         // 2 "Right to left"
    RunFastest,      // 3 "Fastest"
    RunWipe,         // 4 "Bottom to top"
    RunColorFade,    // 5 "Fade to black"
    RunColorFade,    // 6 "Fade to white"
    RunBlocks,       // 7 "Blocks"
    RunDiagonal,     // 8 "Diagonal right"
    RunDiagonal,     // 9 "Diagonal left"
    RunBlinds,       // 10 "Blinds"
    RunWipe,         // 11 "Top to bottom"
    RunBars,         // 12 "Bars"
    RunRain,         // 13 "Rain"
    RunDissolve,     // 14 "Dissolve"
    RunBarn,         // 15 "Barn open"
    RunBarn,         // 16 "Barn close"
    RunBarn,         // 17 "Mouth open"
    RunBarn,         // 18 "Mouth close"
    RunIris,         // 19 "Iris open"
    RunIris,         // 20 "Iris close"
    RunZoom,         // 21 "Zoom in"
    RunZoom,         // 22 "Zoom out"
    RunPatternMask,  // 23 "Razor left"
    RunPatternMask,  // 24 "Razor right"
    RunPatternMask,  // 25 "Bow ties"
    RunPatternMask,  // 26 "Diamond dissolve"
    RunColorFade,    // 27 "Fade to button color"
    RunDisplayFade,  // 28, reached only by number
};

}  // namespace

void RunTransition(int16_t id, int16_t speed, const Rect& rect, const Surface& source,
                   bool fadePalette) {
    if (source.pixels.empty()) return;
    const Host& host = GetHost();
    Surface* window = host.GetWindowSurface();
    if (!window) return;

    TransitionState& s = GetTransitionState();
    s.window = window;
    s.source = &source;
    s.speed = speed == 8 || speed == 16 || speed == 32 ? speed : kFastestSpeed;
    // Only the part both pictures have can change; the steps are sized on that part.
    s.rect = IntersectRect(IntersectRect(rect, window->Bounds()), source.Bounds());
    s.stepCount = 0;
    s.stepIndex = 0;
    s.stepBudget = 0;
    s.fadePalette = fadePalette;
    s.changed.clear();
    if (id < 1 || id > kTransitionCount) id = kTransitionFastest;

    if (!s.rect.IsEmpty()) kTransitions[id](id);
    FinishSteps();
    PresentChanges();

    s.window = nullptr;
    s.source = nullptr;
    s.fadeColor = {};
}

void SetActionCenter(Point center) {
    GetTransitionState().actionCenter = center;
}

void SetTransitionFadeColor(uint8_t red, uint8_t green, uint8_t blue) {
    GetTransitionState().fadeColor = {red, green, blue, 0};
}
