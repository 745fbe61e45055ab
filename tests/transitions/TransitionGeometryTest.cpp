// What each transition leaves on the window: the new picture wherever its geometry reaches, the
// old one where it misses (odd sizes, Dissolve's last values), what it presented, and a picture of
// each effect's middle frame.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "gfx/Palette.h"
#include "platform/Host.h"
#include "platform/headless/HeadlessHost.h"
#include "support/TransitionFixture.h"
#include "transitions/Dissolve.h"
#include "transitions/Transition.h"
#include "transitions/TransitionSteps.h"
#if QB_GOLDEN_TESTS
#include <fmt/format.h>

#include "support/Golden.h"
#endif

namespace {

// Grey squares for the old picture, blue and orange stripes for the new: no pixel is the same.
Surface OldPicture(int32_t w, int32_t h) {
    Surface s(w, h);
    for (int32_t y = 0; y < h; ++y) {
        for (int32_t x = 0; x < w; ++x) s.Row(y)[x] = (x / 4 + y / 4) % 2 ? 0xB0B0B0 : 0xE0E0E0;
    }
    return s;
}
Surface NewPicture(int32_t w, int32_t h) {
    Surface s(w, h);
    for (int32_t y = 0; y < h; ++y) {
        for (int32_t x = 0; x < w; ++x) s.Row(y)[x] = (x + y) / 3 % 2 ? 0x2050C0 : 0xF08020;
    }
    return s;
}

class TransitionGeometryTest : public TransitionFixture {
protected:
    // The old picture on the window and the screen; returns the new one.
    static Surface Scene(int32_t w, int32_t h) {
        SetHeadlessWindowSize(w, h);
        HeadlessState& state = GetHeadlessState();
        state.window = OldPicture(w, h);
        state.screen = state.window;
        state.presents.clear();
        return NewPicture(w, h);
    }
};

// The pixels of `area` that Dissolve never reaches: the values its 16 steps leave at the end of
// the walk, placed by rows of a 1-bit picture of the area's width from the bottom up, less the
// first 34 bytes and the top row, which are set at the end.
std::vector<Rect> DissolveMisses(const Rect& area) {
    const auto ceilLog2 = [](int32_t v) {
        int32_t k = 0;
        while ((1 << k) < v) ++k;
        return k;
    };
    const int32_t w = area.Width(), h = area.Height();
    const int32_t k = ceilLog2(w < 16 ? 16 : w) + ceilLog2(h);
    const uint32_t bits = 1u << k, taps = DissolveTaps(k);
    const uint32_t perStep = (bits - 1) / 16 + 1;
    const uint32_t steps = (bits - 1 + perStep - 1) / perStep;
    uint32_t value = 1;
    for (uint32_t i = 0; i < bits - 1 - steps; ++i) value = NextDissolveValue(value, taps);
    const auto rowBits = static_cast<uint32_t>((w + 31) / 32 * 32);
    std::vector<Rect> misses;
    for (uint32_t i = 0; i < steps; ++i, value = NextDissolveValue(value, taps)) {
        const auto x = static_cast<int32_t>(value % rowBits);
        const int32_t y = h - 1 - static_cast<int32_t>(value / rowBits);
        if (value / 8 < 34 || x >= w || y <= 0) continue;
        misses.push_back({area.left + x, area.top + y, area.left + x + 1, area.top + y + 1});
    }
    return misses;
}

std::string FirstDifference(const Surface& actual, const Surface& expected) {
    for (int32_t y = 0; y < expected.height; ++y) {
        for (int32_t x = 0; x < expected.width; ++x) {
            if (actual.Row(y)[x] != expected.Row(y)[x]) {
                return "first difference at " + std::to_string(x) + "," + std::to_string(y);
            }
        }
    }
    return "";
}

struct CoverageCase {
    int16_t id;
    std::vector<Rect> misses;  // what keeps the old picture
    bool presentedOnce;        // every pixel presented exactly once
};

// A 101 x 63 rectangle: both halves odd, and Blocks' last row stretched by two rows.
TEST_F(TransitionGeometryTest, TheNewPictureCoversWhatTheGeometryReaches) {
    const Rect r{7, 5, 108, 68};
    const Rect window{0, 0, 160, 120};
    std::vector<Rect> displayMisses;
    for (const Rect& m : DissolveMisses(window)) {
        if (!IntersectRect(m, r).IsEmpty()) displayMisses.push_back(m);
    }
    ASSERT_FALSE(DissolveMisses(r).empty());
    ASSERT_FALSE(displayMisses.empty());
    const Rect lastColumn{107, 5, 108, 68}, lastRow{7, 67, 108, 68};
    const CoverageCase cases[] = {
        {1, {}, true},  {2, {}, true},  {3, {}, true},   {4, {}, true},   {5, {}, true},   {6, {}, true},
        {7, {}, false}, {8, {}, true},  {9, {}, true},   {10, {}, true},  {11, {}, true},  {12, {}, true},
        {13, {}, false},
        {14, DissolveMisses(r), false},
        {15, {lastColumn}, true},
        {16, {}, true},
        {17, {lastRow}, true},
        {18, {{7, 36, 108, 37}}, true},
        // The side strips' last step, after the top and bottom are done, reaches the last row.
        {19, {lastColumn, {9, 67, 105, 68}}, false},
        {20, {{57, 36, 58, 37}}, false},
        {21, {}, false}, {22, {}, false}, {23, {}, false}, {24, {}, false}, {25, {}, false}, {26, {}, false},
        {27, {}, true},
        {28, displayMisses, false},
    };
    for (const CoverageCase& c : cases) {
        SCOPED_TRACE(testing::Message() << "id " << c.id);
        const Surface picture = Scene(window.right, window.bottom);
        SetActionCenter({57, 35});
        RunTransition(c.id, 16, r, picture, false);
        Surface expected = OldPicture(window.right, window.bottom);
        int64_t missed = 0;
        for (int32_t y = r.top; y < r.bottom; ++y) {
            for (int32_t x = r.left; x < r.right; ++x) {
                bool miss = false;
                for (const Rect& m : c.misses) miss = miss || m.Contains(x, y);
                if (!miss) expected.Row(y)[x] = picture.Row(y)[x];
                missed += miss;
            }
        }
        const HeadlessState& state = GetHeadlessState();
        EXPECT_EQ(FirstDifference(state.window, expected), "");
        EXPECT_EQ(FirstDifference(state.screen, state.window), "") << "not all presented";
        int64_t presented = 0;
        for (const Rect& p : state.presents) {
            EXPECT_EQ(IntersectRect(p, c.id == 28 ? window : r), p);
            presented += int64_t{p.Width()} * p.Height();
        }
        if (c.presentedOnce) {
            EXPECT_EQ(presented, int64_t{r.Width()} * r.Height() - missed);
        }
    }
}

// From 1, every length's register must come back to 1 only after all the other non-zero values.
TEST(Dissolve, EveryRegisterWalksAllItsValues) {
    std::vector<uint8_t> seen;
    for (int32_t k = 2; k <= 24; ++k) {
        const uint32_t taps = DissolveTaps(k), period = (1u << k) - 1;
        seen.assign(size_t{1} << k, 0);
        uint8_t* visited = seen.data();
        uint32_t value = 1, steps = 0;
        bool again = false;  // a value out of range or seen twice
        do {
            again = value == 0 || value > period || visited[value];
            visited[value & period] = 1;
            value = NextDissolveValue(value, taps);
            ++steps;
        } while (!again && value != 1 && steps <= period);
        EXPECT_FALSE(again) << "k " << k << " step " << steps;
        EXPECT_EQ(steps, period) << "k " << k;
    }
    EXPECT_EQ(DissolveTaps(1), 0u);
    EXPECT_EQ(DissolveTaps(27), 0u);
}

// A rectangle narrower than 17 pixels walks a stream of 16-pixel rows while its picture rows
// hold 32: only the lower half of the stream's rows exist, and the rows above stay old but for
// the top one.
TEST_F(TransitionGeometryTest, NarrowDissolveReachesOnlyTheRowsItsWalkCovers) {
    const Surface picture = Scene(40, 40);
    RunTransition(14, 8, {4, 2, 14, 34}, picture, false);  // 10 x 32: a walk of 16 x 32 bits
    const Surface& window = GetHeadlessState().window;
    int32_t oldInLowerHalf = 0;
    for (int32_t y = 2; y < 34; ++y) {
        for (int32_t x = 4; x < 14; ++x) {
            const bool isNew = window.Row(y)[x] == picture.Row(y)[x];
            // Only the top row is new above the lower half.
            EXPECT_TRUE(y >= 18 || isNew == (y == 2)) << x << "," << y;
            if (y >= 18) oldInLowerHalf += !isNew;
        }
    }
    EXPECT_LE(oldInLowerHalf, 16);
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
        const Surface& frame =
            gRecorded.empty() ? GetHeadlessState().screen : gRecorded[gRecorded.size() / 2];
        ExpectMatchesGolden(frame, fmt::format("transition-{:02}", id));
    }
}
#endif

}  // namespace
