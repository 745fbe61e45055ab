// The MS-ADPCM codec's rules that the comparisons with sox and ffmpeg in SoundFileTest leave open:
// the format it suggests, 8-bit PCM on either side, and the predictor the coder picks.
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
    WaveFormat odd = Adpcm(22050, 1), back;
    odd.coefficients[6][1] = -231;
    EXPECT_EQ(SuggestAdpcmFormat(odd, &back), 0);
    EXPECT_EQ(SuggestAdpcmFormat(Pcm(22050, 1, 24), &back), 0);
    EXPECT_EQ(SuggestAdpcmFormat(Pcm(22050, 3, 16), &back), 0);
}

// Sample 2 comes first; 8-bit output clamps. Less than a block, or a block too small for the
// samples it should hold, decodes to nothing.
TEST(MsAdpcm, DecodesTo8BitsAndRefusesShortBlocks) {
    const WaveFormat adpcm = Adpcm(11025, 1);
    Bytes block(256, 0);
    Write16(&block[1], 16);
    Write16(&block[3], 32767);
    Write16(&block[5], static_cast<uint16_t>(-32768));
    Bytes out(1000);
    ASSERT_EQ(AdpcmDecode(adpcm, block.data(), Pcm(11025, 1, 8), out.data(), 256), 500u);
    EXPECT_EQ(out[0], 0);
    EXPECT_EQ(out[1], 255);
    EXPECT_EQ(AdpcmDecode(adpcm, block.data(), Pcm(11025, 1, 16), out.data(), 255), 0u);
    WaveFormat greedy = adpcm;
    greedy.samplesPerBlock = 501;
    EXPECT_EQ(AdpcmDecode(greedy, block.data(), Pcm(11025, 1, 16), out.data(), 256), 0u);
}

TEST(MsAdpcm, PicksTheBestPredictor) {
    const struct {
        const char* name;
        uint16_t bits;
        int16_t (*sample)(uint32_t);
        uint8_t predictor;
        int16_t sample1, sample2;
    } kCases[] = {
        // 2 x s1 - s2 follows a straight line exactly.
        {"ramp", 16, [](uint32_t i) { return static_cast<int16_t>(20 * i - 5000); }, 1, -4980, -5000},
        // An 8-bit source is taken as (byte - 128) x 256.
        {"8 bits", 8, [](uint32_t) { return static_cast<int16_t>(0x8282); }, 0, 512, 512},
    };
    const WaveFormat adpcm = Adpcm(11025, 1);
    for (const auto& c : kCases) {
        std::vector<int16_t> source(500);
        for (uint32_t i = 0; i < source.size(); ++i) source[i] = c.sample(i);
        Bytes coded(256);
        const uint32_t sourceBytes = 500 * c.bits / 8;
        ASSERT_EQ(AdpcmEncode(Pcm(11025, 1, c.bits), reinterpret_cast<const uint8_t*>(source.data()), adpcm, coded.data(), sourceBytes), 256u) << c.name;
        EXPECT_EQ(coded[0], c.predictor) << c.name;
        EXPECT_EQ(ReadS16(&coded[1]), 16) << c.name;
        EXPECT_EQ(ReadS16(&coded[3]), c.sample1) << c.name;
        EXPECT_EQ(ReadS16(&coded[5]), c.sample2) << c.name;
    }
}

}  // namespace
