// The frame-delta list on the virtual clock: frames drawn onto the window in their ticks, repeats,
// and an item's animations finished or stopped.
#include <gtest/gtest.h>

#include <vector>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "platform/Host.h"
#include "platform/headless/HeadlessHost.h"
#include "sprites/Animations.h"
#include "sprites/FrameDelta.h"
#include "support/StackBytes.h"

namespace {

// Three 32-bit frames of 2 by 1 pixels: red and red, then the right pixel blue, then the left green.
Bytes ThreeFrames(uint16_t tickDelay, uint16_t repeats, uint16_t flags = 0) {
    Bytes out(kDeltaHeadSize, 0);
    const uint16_t head[] = {2, 1, tickDelay, repeats, 3, 32, flags};
    for (uint32_t i = 0; i < 7; ++i) Write16(&out[2 * i], head[i]);
    const auto frame = [&](const Bytes& data) {
        Bytes f(kDeltaFrameHeadSize, 0);
        Write32(&f[kDeltaFrameSize], static_cast<uint32_t>(kDeltaFrameHeadSize + data.size()));
        out.insert(out.end(), f.begin(), f.end());
        out.insert(out.end(), data.begin(), data.end());
    };
    Bytes whole(64, 0);  // a stored row of 16 pixels
    for (int x = 0; x < 2; ++x) WriteBE32(&whole[4 * x], 0xC00000);
    frame(whole);
    frame({0, 0, 0, 4, 0, 0, 0, 0xC0});
    frame({0, 0, 0, 0, 0, 0, 0xC0, 0});
    return out;
}

class AnimationsTest : public testing::Test {
protected:
    void SetUp() override {
        SetHost(HeadlessHost());
        ResetAllState();
        SetHeadlessWindowSize(20, 10);
    }
    void TearDown() override { ResetAllState(); }
    static std::vector<uint32_t> Pixels() {
        const Surface& w = GetHeadlessState().window;
        return {w.Row(3)[5], w.Row(3)[6]};
    }
};

TEST_F(AnimationsTest, FramesComeInTheirTicksAndRepeat) {
    const int16_t rect[4] = {5, 3, 7, 4};
    ASSERT_EQ(AddAnimation(BlockOf(ThreeFrames(2, 2)), rect, 9), 0);
    const uint32_t red = 0xC00000, blue = 0xC0, green = 0xC000, white = 0xFFFFFF;
    const struct {
        uint32_t ms;
        std::vector<uint32_t> shown;
        bool done;
    } steps[] = {
        {0, {red, red}, false},     {17, {red, red}, false},   {34, {red, blue}, false},
        {68, {green, blue}, false}, {102, {green, blue}, false}, {103, {red, red}, false},
        {170, {red, blue}, false},  {204, {green, blue}, false}, {238, {green, blue}, true},
    };
    uint32_t now = 0;
    for (const auto& s : steps) {
        AdvanceHeadlessClock(s.ms - now);
        now = s.ms;
        StepAnimations(nullptr);
        EXPECT_EQ(Pixels(), s.shown) << s.ms << " ms";
        EXPECT_EQ(IsAnimationDone(9), s.done) << s.ms << " ms";
    }
    EXPECT_EQ(GetHeadlessState().window.Row(3)[7], white) << "nothing outside its rectangle";
}

TEST_F(AnimationsTest, FinishingAnItemsAnimationsDrawsNothingMore) {
    const int16_t rect[4] = {5, 3, 7, 4};
    ASSERT_EQ(AddAnimation(BlockOf(ThreeFrames(1, 0)), rect, 9), 0);
    ASSERT_EQ(AddAnimation(BlockOf(ThreeFrames(1, 0)), rect, 8), 0);
    StepAnimations(nullptr);
    FinishAnimations(9);
    EXPECT_TRUE(IsAnimationDone(9));
    EXPECT_FALSE(IsAnimationDone(8)) << "a repeat count of 0 plays on";
    // A replacing animation finishes the item's others.
    ASSERT_EQ(AddAnimation(BlockOf(ThreeFrames(1, 1, kAnimationReplaceOthers)), rect, 8), 0);
    AdvanceHeadlessClock(17);
    StepAnimations(nullptr);
    EXPECT_FALSE(IsAnimationDone(8));
    StopAllAnimations();
    EXPECT_TRUE(IsAnimationDone(8));
    const Bytes damaged(10, 0);
    EXPECT_EQ(AddAnimation(BlockOf(damaged), rect, 7), -1);
}

}  // namespace
