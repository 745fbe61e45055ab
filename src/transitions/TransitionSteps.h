// What every transition shares: the state of the one transition that runs, its clock, and the
// copying of the new picture to the window. A step presents only what it changed and then waits
// on the host until the time the step arithmetic gives; nothing else runs meanwhile but the sound
// update.
#pragma once

#include <cstdint>
#include <vector>

#include "gfx/Palette.h"
#include "gfx/Surface.h"

inline constexpr uint32_t kStepTickMs = 17;
inline constexpr int16_t kFastestSpeed = 8;

struct TransitionState {
    Surface* window = nullptr;        // the host's window surface
    const Surface* source = nullptr;  // the new picture, in window coordinates
    int16_t speed = kFastestSpeed;    // 8, 16 or 32; the effect lasts speed * 8 ticks
    Rect rect;                        // what changes, already cut to the window
    int16_t stepCount = 0;
    int16_t stepIndex = 0;
    uint16_t stepBudget = 0;  // quarter ticks per step
    uint32_t startTick = 0;
    bool fadePalette = false;
    PaletteEntry fadeColor;     // the target of "Fade to button color"
    Point actionCenter;         // where the zooms start and end
    std::vector<Rect> changed;  // copied to the window since the last present
};
TransitionState& GetTransitionState();
void ResetTransitionState();


// The host clock in ticks.
uint32_t CurrentTick();
// Waits until (CurrentTick() - start) * 4 >= quarterTicks, updating the sound on each round.
void WaitQuarterTicks(uint32_t start, uint32_t quarterTicks);

// The step clock: n steps over the effect's time, measured from the start, so a slow step is made
// up by shorter waits.
void BeginSteps(int32_t n);
// Presents what changed, counts the step and waits until it is due.
void TakeStep();
// Runs out the steps an effect left.
void FinishSteps();

// Copies `r` (cut to the transition's rectangle) of the new picture to the window, to be presented
// at the next step.
void CopyNewRect(const Rect& r);
// Notes a part of the window that changed by other means.
void NoteChanged(const Rect& r);
// Presents what changed since the last step.
void PresentChanges();

// Sizing of wipes and bands: an extent under `limit` goes in steps of 1 pixel, a larger one in
// `limit` steps of extent / limit.
struct StepSize {
    float step = 1.0f;
    int32_t count = 0;
};
StepSize SizeSteps(int32_t extent, int32_t limit);
// trunc(i * step), the edge of step i.
inline int32_t StepEdge(int32_t i, float step) {
    return static_cast<int32_t>(static_cast<float>(i) * step);
}
