// Transitions of bands that open from the middle or close from the edges: barns (across), mouths
// (down) and irises (both).
#include <algorithm>

#include "subsystems/Subsystems.h"
#include "transitions/TransitionFamilies.h"
#include "transitions/TransitionSteps.h"

namespace {

constexpr int32_t kBarnSteps = 64;
constexpr int32_t kIrisSteps = 32;

// A band from `from` to `to` across the rectangle: columns when `across`, else rows.
Rect Band(const Rect& r, bool across, int32_t from, int32_t to) {
    return across ? Rect{from, r.top, to, r.bottom} : Rect{r.left, from, r.right, to};
}

void OpenIris(const Rect& r) {
    const int32_t hx = r.Width() / 2, hy = r.Height() / 2;
    const StepSize sx = SizeSteps(hx, kIrisSteps), sy = SizeSteps(hy, kIrisSteps);
    const float dx = sx.step, dy = sy.step;
    const int32_t cx = r.left + hx, cy = r.top + hy;
    float ax = dx, ay = dy;
    const auto cut = [](float v) { return static_cast<int32_t>(v); };
    Rect top{cx - cut(dx / 2), cy - cut(dy), cx + cut(dx / 2), cy};
    Rect bottom{top.left, cy, top.right, cy + cut(dy)};
    Rect left{top.left, top.top, top.left + cut(dx), bottom.bottom};
    Rect right{left.right, top.top, top.right, bottom.bottom};
    const int32_t n = std::max(sx.count, sy.count);
    BeginSteps(n);
    for (int32_t k = 1; k <= n; ++k) {
        const bool vertical = k <= sy.count, horizontal = k <= sx.count;
        if (vertical) {
            CopyNewRect(top);
            CopyNewRect(bottom);
            ay += dy;
        }
        if (horizontal) {
            CopyNewRect(left);
            CopyNewRect(right);
            ax += dx;
        }
        if (vertical) {
            top = {cx - cut(ax), cy - cut(ay), cx + cut(ax), top.top};
            bottom = {top.left, bottom.bottom, top.right, cy + cut(ay)};
        }
        GetSubsystems().UpdateSounds();
        if (horizontal) {
            left = {cx - cut(ax), top.bottom, left.left, bottom.bottom};
            right = {right.right, top.bottom, cx + cut(ax), bottom.bottom};
        }
        TakeStep();
    }
}

void CloseIris(const Rect& r) {
    const StepSize sx = SizeSteps(r.Width() / 2, kIrisSteps);
    const StepSize sy = SizeSteps(r.Height() / 2, kIrisSteps);
    const int32_t n = std::max(sx.count, sy.count);
    BeginSteps(n);
    for (int32_t i = 0; i < n; ++i) {
        if (i < sy.count) {
            const int32_t near = StepEdge(i, sy.step), far = StepEdge(i + 1, sy.step);
            CopyNewRect(Band(r, false, r.top + near, r.top + far));
            CopyNewRect(Band(r, false, r.bottom - far, r.bottom - near));
        }
        GetSubsystems().UpdateSounds();
        if (i < sx.count) {
            const int32_t near = StepEdge(i, sx.step), far = StepEdge(i + 1, sx.step);
            CopyNewRect(Band(r, true, r.left + near, r.left + far));
            CopyNewRect(Band(r, true, r.right - far, r.right - near));
        }
        TakeStep();
    }
}

}  // namespace

// 15 and 17 open from the middle, 16 and 18 close from the edges; 15 and 16 across, 17 and 18
// down. With an odd extent the opening pair misses the last line, and the closing pair leaves
// the middle one: 16 fills it with one step more, 18 leaves it.
void RunBarn(int16_t id) {
    const Rect r = GetTransitionState().rect;
    const bool across = id == 15 || id == 16;
    const bool opening = id == 15 || id == 17;
    const int32_t start = across ? r.left : r.top, end = across ? r.right : r.bottom;
    const int32_t half = (end - start) / 2;
    const StepSize size = SizeSteps(half, kBarnSteps);
    BeginSteps(size.count);
    for (int32_t i = 0; i < size.count; ++i) {
        const int32_t near = StepEdge(i, size.step), far = StepEdge(i + 1, size.step);
        if (opening) {
            const int32_t middle = start + half;
            CopyNewRect(Band(r, across, middle - far, middle - near));
            CopyNewRect(Band(r, across, middle + near, middle + far));
        } else {
            CopyNewRect(Band(r, across, start + near, start + far));
            CopyNewRect(Band(r, across, end - far, end - near));
        }
        TakeStep();
    }
    if (id == 16) {
        const int32_t reached = StepEdge(size.count, size.step);
        if (start + reached < end - reached) {
            CopyNewRect(Band(r, across, start + reached, end - reached));
            TakeStep();
        }
    }
}

void RunIris(int16_t id) {
    if (id == 19) {
        OpenIris(GetTransitionState().rect);
    } else {
        CloseIris(GetTransitionState().rect);
    }
}
