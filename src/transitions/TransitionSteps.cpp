#include "transitions/TransitionSteps.h"

#include "base/StateRegistry.h"
#include "gfx/Blit.h"
#include "platform/Host.h"
#include "subsystems/Subsystems.h"

namespace {
TransitionState gTransition;
}  // namespace

TransitionState& GetTransitionState() {
    return gTransition;
}
void ResetTransitionState() {
    gTransition = TransitionState{};
}

uint32_t CurrentTick() {
    return GetHost().GetTickCount() / kStepTickMs;
}

void WaitQuarterTicks(uint32_t start, uint32_t quarterTicks) {
    const Host& host = GetHost();
    // The first tick that satisfies the condition, in the host's milliseconds.
    const uint32_t deadline = (start + (quarterTicks + 3) / 4) * kStepTickMs;
    while ((CurrentTick() - start) * 4 < quarterTicks) {
        GetSubsystems().UpdateSounds();
        host.WaitUntil(deadline);
    }
}

void BeginSteps(int32_t n) {
    TransitionState& s = gTransition;
    s.stepIndex = 0;
    s.stepCount = static_cast<int16_t>(n);
    s.startTick = CurrentTick();
    s.stepBudget = n < 1 ? 0 : static_cast<uint16_t>(s.speed * 32 / n);
}

void TakeStep() {
    TransitionState& s = gTransition;
    if (s.fadePalette && s.stepCount > 0) BlendPalette((s.stepIndex + 1) * 256 / s.stepCount);
    PresentChanges();
    GetSubsystems().UpdateSounds();
    ++s.stepIndex;
    WaitQuarterTicks(s.startTick, uint32_t{s.stepBudget} * static_cast<uint32_t>(s.stepIndex));
}

void FinishSteps() {
    while (gTransition.stepIndex < gTransition.stepCount) TakeStep();
}

void CopyNewRect(const Rect& r) {
    TransitionState& s = gTransition;
    GetSubsystems().UpdateSounds();
    const Rect part = IntersectRect(r, s.rect);
    if (part.IsEmpty() || !s.window || !s.source) return;
    CopyRect(*s.window, part, part.left, part.top, *s.source, part);
    s.changed.push_back(part);
}

void NoteChanged(const Rect& r) {
    const Rect part = IntersectRect(r, gTransition.rect);
    if (!part.IsEmpty()) gTransition.changed.push_back(part);
}

void PresentChanges() {
    TransitionState& s = gTransition;
    const Host& host = GetHost();
    for (const Rect& r : s.changed) host.Present(r);
    s.changed.clear();
}

StepSize SizeSteps(int32_t extent, int32_t limit) {
    if (extent < limit) return {1.0f, extent};
    return {static_cast<float>(extent) / static_cast<float>(limit), limit};
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Transitions, ResetTransitionState);
}  // namespace
