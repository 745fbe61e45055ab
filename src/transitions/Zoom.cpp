// Zoom in and Zoom out: outlines between the centre of the last action and the rectangle, drawn
// with exclusive-or so that each is taken away four rounds later; then Fastest at the fastest
// speed shows the new picture.
#include "gfx/Draw.h"
#include "transitions/Transition.h"
#include "transitions/TransitionFamilies.h"
#include "transitions/TransitionSteps.h"

namespace {

constexpr int32_t kZoomRounds = 18;
constexpr int32_t kZoomOutlines = 14;
constexpr int32_t kZoomTrail = 4;
constexpr double kZoomRatio = 0.7;

// The outline `at` of the way from `small` to the rectangle, each coordinate a + (b - a) * at cut
// to 16 bits.
void DrawOutline(const Rect& small, double at) {
    TransitionState& s = GetTransitionState();
    const Rect& r = s.rect;
    const auto between = [at](int32_t a, int32_t b) {
        return a + static_cast<int16_t>(static_cast<int32_t>(static_cast<double>(b - a) * at));
    };
    const Rect outline{between(small.left, r.left), between(small.top, r.top),
                       between(small.right, r.right), between(small.bottom, r.bottom)};
    if (outline.IsEmpty()) return;
    FrameRect(*s.window, r, outline, Pen{kWhite, 1, PenMode::Xor});
    NoteChanged({outline.left, outline.top, outline.right, outline.top + 1});
    NoteChanged({outline.left, outline.bottom - 1, outline.right, outline.bottom});
    NoteChanged({outline.left, outline.top + 1, outline.left + 1, outline.bottom - 1});
    NoteChanged({outline.right - 1, outline.top + 1, outline.right, outline.bottom - 1});
}

}  // namespace

void RunZoom(int16_t id) {
    TransitionState& s = GetTransitionState();
    const Point c = s.actionCenter;
    // Of no height: the first outlines are lines.
    const Rect small{c.x - 2, c.y - 2, c.x + 2, c.y - 2};
    const auto delay = static_cast<uint32_t>((s.speed * 2 + 2) / 2);
    double start = kZoomRatio;
    for (int32_t i = 0; i < kZoomOutlines; ++i) start *= kZoomRatio;
    // Zoom out grows from near the centre; zoom in shrinks from near the rectangle.
    const double factor = id == 22 ? kZoomRatio : 1.0 / kZoomRatio;
    if (id != 22) start = 1.0 - start;
    double lead = start, trail = start;
    for (int32_t i = 0; i < kZoomRounds; ++i) {
        if (i < kZoomOutlines) {
            lead /= factor;
            DrawOutline(small, lead);
        }
        if (i >= kZoomTrail) {
            trail /= factor;
            DrawOutline(small, trail);
        }
        PresentChanges();
        WaitQuarterTicks(CurrentTick(), delay * 4);
    }
    s.speed = kFastestSpeed;
    RunFastest(kTransitionFastest);
}
