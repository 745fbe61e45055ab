#include "media/Mixer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "base/StateRegistry.h"

namespace {

struct Samples {
    std::vector<uint8_t> bytes;
    MixerPlayBlock block;
};

Samples Sound16(const std::vector<int16_t>& values, uint16_t volume = kMixerUnity) {
    Samples s;
    s.bytes.resize(values.size() * 2);
    std::memcpy(s.bytes.data(), values.data(), s.bytes.size());
    s.block.samples = s.bytes.data();
    s.block.frames = static_cast<uint32_t>(values.size());
    s.block.leftVolume = s.block.rightVolume = volume;
    return s;
}

std::vector<int16_t> RenderLeft(uint32_t frames) {
    std::vector<int16_t> out(2 * frames);
    MixerRender(out.data(), frames);
    std::vector<int16_t> left;
    for (uint32_t i = 0; i < frames; ++i) left.push_back(out[2 * i]);
    return left;
}

class MixerTest : public testing::Test {
protected:
    void SetUp() override { ResetAllState(); }
};

TEST_F(MixerTest, TwoStreamsMixToTheirClippedSum) {
    struct Row {
        int16_t a;
        uint16_t volumeA;
        int16_t b;
        int16_t sum;
    } rows[] = {
        {1000, kMixerUnity, -300, 700},   {20000, kMixerUnity, 20000, 32767},
        {-20000, kMixerUnity, -20000, -32768}, {20000, 127, 0, 10000},
        {20000, 400, 5, 20005},  // above the top volume plays unchanged
    };
    for (const Row& row : rows) {
        StartMixer(22050, 22050);
        Samples a = Sound16({row.a, row.a, row.a}, row.volumeA), b = Sound16({row.b, row.b, row.b});
        ASSERT_NE(MixerPlay(a.block), 0);
        ASSERT_NE(MixerPlay(b.block), 0);
        EXPECT_EQ(RenderLeft(4), (std::vector<int16_t>{row.sum, row.sum, row.sum, 0})) << row.a << " + " << row.b;
    }
}

// Pitch and the two rates set how far each output frame steps through the source.
TEST_F(MixerTest, PitchAndRatesStretchTheSound) {
    struct Row {
        uint32_t deviceRate, outputRate;
        uint16_t pitch;
        std::vector<int16_t> heard;
    } rows[] = {
        {22050, 22050, 256, {0, 1000, 2000, 0}},
        {22050, 22050, 512, {0, 500, 1000, 1500, 2000, 2000, 0}},
        {11025, 22050, 256, {0, 500, 1000, 1500, 2000, 2000, 0}},
        {22050, 11025, 256, {0, 2000, 0}},
    };
    for (const Row& row : rows) {
        StartMixer(row.deviceRate, row.outputRate);
        Samples s = Sound16({0, 1000, 2000});
        s.block.pitch = row.pitch;
        ASSERT_NE(MixerPlay(s.block), 0);
        EXPECT_EQ(RenderLeft(static_cast<uint32_t>(row.heard.size())), row.heard) << row.pitch;
    }
}

TEST_F(MixerTest, ALinkedStreamFollowsWithoutAGapAndEachEndIsToldOnce) {
    StartMixer(22050, 22050);
    std::vector<int16_t> first, second, expected;
    for (int16_t i = 0; i < 300; ++i) first.push_back(i), second.push_back(static_cast<int16_t>(300 + i));
    Samples a = Sound16(first), b = Sound16(second);
    const uint16_t numberA = MixerPlay(a.block);
    b.block.linkNumber = numberA;
    const uint16_t numberB = MixerPlay(b.block);
    expected = first;
    expected.insert(expected.end(), second.begin(), second.end());
    expected.push_back(0);
    // Two pulls whose seam falls inside neither stream's end.
    std::vector<int16_t> heard = RenderLeft(100);
    const std::vector<int16_t> rest = RenderLeft(501);
    heard.insert(heard.end(), rest.begin(), rest.end());
    EXPECT_EQ(heard, expected);
    std::vector<uint16_t> ended;
    for (uint16_t n = 0; MixerTakeEnded(&n);) ended.push_back(n);
    EXPECT_EQ(ended, (std::vector<uint16_t>{numberA, numberB}));
    EXPECT_FALSE(MixerIsPlaying(numberB));
}

TEST_F(MixerTest, ADiscardedStreamIsSilentUntoldAndFreesItsPlace) {
    StartMixer(22050, 22050);
    std::vector<Samples> sounds(kMixerStreams + 1, Sound16({100, 100}));
    std::vector<uint16_t> numbers;
    for (Samples& s : sounds) {
        s.block.samples = s.bytes.data();
        numbers.push_back(MixerPlay(s.block));
    }
    EXPECT_EQ(numbers.back(), 0);  // every stream busy
    MixerDiscard(numbers[0]);
    EXPECT_NE(MixerPlay(sounds.back().block), 0);
    EXPECT_EQ(RenderLeft(1), (std::vector<int16_t>{static_cast<int16_t>(100 * kMixerStreams)}));
    uint16_t n = 0;
    uint32_t told = 0;
    RenderLeft(2);
    while (MixerTakeEnded(&n)) {
        ++told;
        EXPECT_NE(n, numbers[0]);
    }
    EXPECT_EQ(told, kMixerStreams);
}

}  // namespace
