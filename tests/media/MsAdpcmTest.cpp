// The MS-ADPCM codec's rules that the comparisons with sox and ffmpeg in SoundFileTest leave open:
// the format it suggests, 8-bit output and too short a block.
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

}  // namespace
