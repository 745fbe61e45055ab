// Transitions that sweep bands across the rectangle: Fastest, the four wipes, the diagonals and
// Blinds.
#include "transitions/TransitionFamilies.h"
#include "transitions/TransitionSteps.h"

namespace {

constexpr int32_t kFastestBands = 4;
constexpr int32_t kWipeSteps = 64;
constexpr int32_t kDiagonalSteps = 64;
constexpr int32_t kBlindsPasses = 9;

}  // namespace

void RunFastest(int16_t) {
    TransitionState& s = GetTransitionState();
    const Rect r = s.rect;
    const StepSize size = SizeSteps(r.Height(), kFastestBands);
    // Twice as fast as the speed asked for, and at the fastest speed no wait at all.
    const int16_t speed = s.speed;
    s.speed = speed == kFastestSpeed ? 0 : static_cast<int16_t>(speed / 2);
    BeginSteps(size.count);
    for (int32_t i = 0; i < size.count; ++i) {
        CopyNewRect(
            {r.left, r.top + StepEdge(i, size.step), r.right, r.top + StepEdge(i + 1, size.step)});
        TakeStep();
    }
    s.speed = speed;
}

void RunWipe(int16_t id) {
    const Rect r = GetTransitionState().rect;
    const bool across = id == 1 || id == 2;
    const StepSize size = SizeSteps(across ? r.Width() : r.Height(), kWipeSteps);
    BeginSteps(size.count);
    for (int32_t i = 0; i < size.count; ++i) {
        const int32_t near = StepEdge(i, size.step), far = StepEdge(i + 1, size.step);
        switch (id) {
            case 1:
                CopyNewRect({r.left + near, r.top, r.left + far, r.bottom});
                break;
            case 2:
                CopyNewRect({r.right - far, r.top, r.right - near, r.bottom});
                break;
            case 4:
                CopyNewRect({r.left, r.bottom - far, r.right, r.bottom - near});
                break;
            default:
                CopyNewRect({r.left, r.top + near, r.right, r.top + far});
                break;
        }
        TakeStep();
    }
}

// Each step takes a band of rows and a band of columns from one corner, so the old picture
// shrinks to the opposite corner. Id 9 starts at the top left, id 8 at the bottom right. Only
// the part of the two bands still showing the old picture is copied.
void RunDiagonal(int16_t id) {
    const Rect r = GetTransitionState().rect;
    const float dx = static_cast<float>(r.Width()) / kDiagonalSteps;
    const float dy = static_cast<float>(r.Height()) / kDiagonalSteps;
    // What still shows the old picture.
    Rect old = r;
    BeginSteps(kDiagonalSteps);
    for (int32_t i = 0; i < kDiagonalSteps; ++i) {
        if (id == 9) {
            const int32_t rowEdge = r.top + StepEdge(i + 1, dy);
            const int32_t columnEdge = r.left + StepEdge(i + 1, dx);
            CopyNewRect({old.left, old.top, old.right, rowEdge});
            CopyNewRect({old.left, rowEdge, columnEdge, old.bottom});
            old.top = rowEdge;
            old.left = columnEdge;
        } else {
            const int32_t rowEdge = r.bottom - StepEdge(i + 1, dy);
            const int32_t columnEdge = r.right - StepEdge(i + 1, dx);
            CopyNewRect({old.left, rowEdge, old.right, old.bottom});
            CopyNewRect({columnEdge, old.top, old.right, rowEdge});
            old.bottom = rowEdge;
            old.right = columnEdge;
        }
        TakeStep();
    }
}

// Every ninth row per pass, nine passes; the last row of a pass may lie below the rectangle.
void RunBlinds(int16_t) {
    const Rect r = GetTransitionState().rect;
    const int32_t h = r.Height();
    const int32_t perPass = h / kBlindsPasses + (h % kBlindsPasses != 0 ? 1 : 0);
    BeginSteps(perPass * kBlindsPasses);
    for (int32_t pass = 0; pass < kBlindsPasses; ++pass) {
        for (int32_t j = 0; j < perPass; ++j) {
            const int32_t y = r.top + pass + kBlindsPasses * j;
            CopyNewRect({r.left, y, r.right, y + 1});
            TakeStep();
        }
    }
}
