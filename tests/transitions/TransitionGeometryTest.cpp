// What each transition leaves on the window: the new picture wherever its geometry reaches, the
// old one where it misses on odd sizes, what it presented, and a picture of each effect's middle
// frame (which pins the order in which Dissolve's walk reaches the pixels).
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "gfx/Palette.h"
#include "platform/Host.h"
#include "platform/headless/HeadlessHost.h"
#include "support/SurfaceArt.h"
#include "support/TransitionFixture.h"
#include "transitions/Transition.h"
#include "transitions/TransitionSteps.h"
#if QB_GOLDEN_TESTS
#include <fmt/format.h>

#include "support/Golden.h"
#endif

namespace {

// Grey squares for the old picture, blue and orange stripes for the new: no pixel is the same.
Surface Picture(int32_t w, int32_t h, bool isNew) {
    Surface s(w, h);
    for (int32_t y = 0; y < h; ++y) {
        for (int32_t x = 0; x < w; ++x) {
            s.Row(y)[x] = isNew ? ((x + y) / 3 % 2 ? 0x2050C0 : 0xF08020) : (x / 4 + y / 4) % 2 ? 0xB0B0B0 : 0xE0E0E0;
        }
    }
    return s;
}

class TransitionGeometryTest : public TransitionFixture {
protected:
    // The old picture on the window and the screen; returns the new one.
    static Surface Scene(int32_t w, int32_t h) {
        SetHeadlessWindowSize(w, h);
        HeadlessState& state = GetHeadlessState();
        state.window = Picture(w, h, false);
        state.screen = state.window;
        state.presents.clear();
        return Picture(w, h, true);
    }
};

// What keeps the old picture, and whether every pixel was presented exactly once.
struct CoverageCase { int16_t id; std::vector<Rect> misses; bool presentedOnce; };

// A 101 x 63 rectangle: both halves odd, and Blocks' last row stretched by two rows.
TEST_F(TransitionGeometryTest, TheNewPictureCoversWhatTheGeometryReaches) {
    const Rect r{7, 5, 108, 68}, window{0, 0, 160, 120};
    const Rect lastColumn{107, 5, 108, 68}, lastRow{7, 67, 108, 68};
    const CoverageCase cases[] = {
        {1, {}, true}, {2, {}, true}, {3, {}, true}, {4, {}, true}, {5, {}, true}, {6, {}, true}, {7, {}, false},
        {8, {}, true}, {9, {}, true}, {10, {}, true}, {11, {}, true}, {12, {}, true}, {20, {{57, 36, 58, 37}}, false},
        {13, {}, false}, {15, {lastColumn}, true}, {17, {lastRow}, true}, {18, {{7, 36, 108, 37}}, true},
        // The side strips' last step, after the top and bottom are done, reaches the last row.
        {19, {lastColumn, {9, 67, 105, 68}}, false}, {16, {}, true}, {27, {}, true},
        {21, {}, false}, {22, {}, false}, {23, {}, false}, {24, {}, false}, {25, {}, false}, {26, {}, false},
    };
    for (const CoverageCase& c : cases) {
        SCOPED_TRACE(testing::Message() << "id " << c.id);
        const Surface picture = Scene(window.right, window.bottom);
        SetActionCenter({57, 35});
        RunTransition(c.id, 16, r, picture, false);
        Surface expected = Picture(window.right, window.bottom, false);
        int64_t missed = 0;
        for (int32_t y = r.top; y < r.bottom; ++y) {
            for (int32_t x = r.left; x < r.right; ++x) {
                const auto at = [&](const Rect& m) { return m.Contains(x, y); };
                const bool miss = std::any_of(c.misses.begin(), c.misses.end(), at);
                if (!miss) expected.Row(y)[x] = picture.Row(y)[x];
                missed += miss;
            }
        }
        const HeadlessState& state = GetHeadlessState();
        EXPECT_TRUE(ChangedBox(state.window, expected).IsEmpty());
        EXPECT_TRUE(ChangedBox(state.screen, state.window).IsEmpty()) << "not all presented";
        int64_t presented = 0;
        for (const Rect& p : state.presents) {
            EXPECT_EQ(IntersectRect(p, r), p);
            presented += int64_t{p.Width()} * p.Height();
        }
        if (c.presentedOnce) {
            EXPECT_EQ(presented, int64_t{r.Width()} * r.Height() - missed);
        }
    }
}

#if QB_GOLDEN_TESTS
std::vector<Surface> gRecorded;
void WaitAndRecord(uint32_t deadline) {
    gRecorded.push_back(GetHeadlessState().screen);
    HeadlessHost().WaitUntil(deadline);
}

// The screen at the middle wait of each effect at the slowest speed; the end for those that do
// not wait.
TEST_F(TransitionGeometryTest, MiddleFrames) {
    Host host = HeadlessHost();
    host.WaitUntil = WaitAndRecord;
    SetHost(host);
    for (int16_t id = 1; id <= 28; ++id) {
        gRecorded.clear();
        const Surface picture = Scene(128, 96);
        SetActionCenter({64, 48});
        RunTransition(id, 32, {8, 8, 120, 88}, picture, false);
        const Surface& frame = gRecorded.empty() ? GetHeadlessState().screen : gRecorded[gRecorded.size() / 2];
        ExpectMatchesGolden(frame, fmt::format("transition-{:02}", id));
    }
}
#endif

}  // namespace
