// The MS-ADPCM codec's rules that the comparisons with sox and ffmpeg in SoundFileTest leave open:
// the format it suggests, every predictor, 8-bit output and too short a block.
#include "media/MsAdpcm.h"

#include <gtest/gtest.h>

#include <vector>

#include "base/ByteOrder.h"

namespace {

using Bytes = std::vector<uint8_t>;

WaveFormat Pcm(uint32_t rate, uint16_t channels, uint16_t bits) {
    WaveFormat f;
    f.formatTag = kWaveFormatPcm;
    f.samplesPerSec = rate;
    f.channels = channels;
    f.bitsPerSample = bits;
    return f;
}

WaveFormat Adpcm(uint32_t rate, uint16_t channels) {
    WaveFormat f;
    EXPECT_EQ(SuggestAdpcmFormat(Pcm(rate, channels, 16), &f), 1);
    return f;
}

TEST(MsAdpcm, SuggestsTheFormat) {
    const struct {
        uint32_t rate;
        uint16_t channels;
        uint16_t blockAlign, samplesPerBlock;
        uint32_t avgBytesPerSec;
    } kCases[] = {
        {11025, 1, 256, 500, 5666},
        {96000, 2, 4096, 4084, 30800},  // the 16-bit wrap
    };
    for (const auto& c : kCases) {
        const WaveFormat f = Adpcm(c.rate, c.channels);
        EXPECT_EQ(f.blockAlign, c.blockAlign) << c.rate;
        EXPECT_EQ(f.samplesPerBlock, c.samplesPerBlock) << c.rate;
        EXPECT_EQ(f.avgBytesPerSec, c.avgBytesPerSec) << c.rate;
    }
    // Back to PCM: 16 bits unless 8 are asked for.
    for (const uint16_t asked : {8, 0}) {
        WaveFormat back;
        back.bitsPerSample = asked;
        ASSERT_EQ(SuggestAdpcmFormat(Adpcm(22050, 2), &back), 1);
        EXPECT_EQ(back.bitsPerSample, asked ? 8 : 16);
        EXPECT_EQ(back.blockAlign, asked ? 2 : 4);
        EXPECT_EQ(back.avgBytesPerSec, asked ? 44100u : 88200u);
    }
    WaveFormat back;
    EXPECT_EQ(SuggestAdpcmFormat(Pcm(22050, 1, 24), &back), 0);
    EXPECT_EQ(SuggestAdpcmFormat(Pcm(22050, 3, 16), &back), 0);
}

// A mono block of the 11025 Hz format whose codes are all 0.
Bytes Block(uint8_t predictor, int16_t sample1, int16_t sample2) {
    Bytes b(256, 0);
    b[0] = predictor;
    Write16(&b[1], 16);
    Write16(&b[3], static_cast<uint16_t>(sample1));
    Write16(&b[5], static_cast<uint16_t>(sample2));
    return b;
}

// With codes of 0 the third sample out is the prediction alone; the shift floors (-937.5 to -938).
TEST(MsAdpcm, EachPredictorWeighsTheLastTwoSamples) {
    const int16_t kThird[kAdpcmPredictors] = {-1000, -2500, 0, -625, -938, -2204, -1985};
    for (uint8_t p = 0; p < kAdpcmPredictors; ++p) {
        Bytes out(1000);
        ASSERT_EQ(AdpcmDecode(Adpcm(11025, 1), Block(p, -1000, 500).data(), Pcm(11025, 1, 16), out.data(), 256), 1000u);
        EXPECT_EQ(ReadS16(&out[4]), kThird[p]) << int{p};
    }
}

// Sample 2 comes first; 8-bit output clamps. Less than a block, or a block too small for the
// samples it should hold, decodes to nothing.
TEST(MsAdpcm, DecodesTo8BitsAndRefusesShortBlocks) {
    const WaveFormat adpcm = Adpcm(11025, 1);
    const Bytes block = Block(0, 32767, -32768);
    Bytes out(1000);
    ASSERT_EQ(AdpcmDecode(adpcm, block.data(), Pcm(11025, 1, 8), out.data(), 256), 500u);
    EXPECT_EQ(out[0], 0);
    EXPECT_EQ(out[1], 255);
    EXPECT_EQ(AdpcmDecode(adpcm, block.data(), Pcm(11025, 1, 16), out.data(), 255), 0u);
    WaveFormat greedy = adpcm;
    greedy.samplesPerBlock = 501;
    EXPECT_EQ(AdpcmDecode(greedy, block.data(), Pcm(11025, 1, 16), out.data(), 256), 0u);
}

}  // namespace
