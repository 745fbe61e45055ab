// The MS-ADPCM codec's own rules, on streams built by hand: the format it suggests, the blocks it
// refuses, the rounding of a prediction, the predictor it picks. The bit-exact comparison with sox
// and ffmpeg is in SoundFileTest.
#include "media/MsAdpcm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
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
        {11025, 1, 256, 500, 5666},    {22050, 2, 1024, 1012, 22358}, {44100, 1, 1024, 2036, 22204},
        {8000, 2, 512, 500, 8000 + 14 + 15 * 14}, {96000, 2, 4096, 4084, 30800},  // the 16-bit wrap
    };
    for (const auto& c : kCases) {
        const WaveFormat f = Adpcm(c.rate, c.channels);
        EXPECT_EQ(f.blockAlign, c.blockAlign) << c.rate;
        EXPECT_EQ(f.samplesPerBlock, c.samplesPerBlock) << c.rate;
        EXPECT_EQ(f.avgBytesPerSec, c.avgBytesPerSec) << c.rate;
        EXPECT_EQ(IsValidAdpcmFormat(f), 1) << c.rate;
    }
    // Back to PCM: 16 bits unless 8 are asked for.
    WaveFormat back;
    back.bitsPerSample = 8;
    ASSERT_EQ(SuggestAdpcmFormat(Adpcm(22050, 2), &back), 1);
    EXPECT_EQ(back.blockAlign, 2);
    EXPECT_EQ(back.avgBytesPerSec, 44100u);
    back.bitsPerSample = 0;
    ASSERT_EQ(SuggestAdpcmFormat(Adpcm(22050, 2), &back), 1);
    EXPECT_EQ(back.bitsPerSample, 16);
    EXPECT_EQ(back.blockAlign, 4);

    WaveFormat odd = Adpcm(22050, 1);
    odd.coefficients[6][1] = -231;
    EXPECT_EQ(SuggestAdpcmFormat(odd, &back), 0);
    EXPECT_EQ(SuggestAdpcmFormat(Pcm(22050, 1, 24), &back), 0);
    EXPECT_EQ(SuggestAdpcmFormat(Pcm(22050, 3, 16), &back), 0);
}

// A mono block of the 11025 Hz format: predictor, delta, sample 1, sample 2, then codes.
Bytes MonoBlock(uint8_t predictor, int16_t delta, int16_t sample1, int16_t sample2, uint8_t codes) {
    Bytes b(256, codes);
    b[0] = predictor;
    Write16(&b[1], static_cast<uint16_t>(delta));
    Write16(&b[3], static_cast<uint16_t>(sample1));
    Write16(&b[5], static_cast<uint16_t>(sample2));
    return b;
}

TEST(MsAdpcm, DecodesBlocks) {
    const WaveFormat adpcm = Adpcm(11025, 1), pcm16 = Pcm(11025, 1, 16), pcm8 = Pcm(11025, 1, 8);
    const struct {
        const char* name;
        Bytes stream;
        const WaveFormat* pcm;
        uint32_t bytes;
        std::vector<int32_t> first;  // the first samples out
    } kCases[] = {
        // Sample 2 comes first; the old step multiplies the code: 7 x 16 + 100, then -1 x 38 + 212.
        {"steps", MonoBlock(0, 16, 100, 50, 0x7F), &pcm16, 1000, {50, 100, 212, 174}},
        // (460 x -1) >> 8 is -2: the shift floors where a division would give -1.
        {"floor", MonoBlock(5, 16, -1, 0, 0x00), &pcm16, 1000, {0, -1, -2}},
        {"8-bit ends", MonoBlock(0, 16, 32767, -32768, 0x00), &pcm8, 500, {0, 255}},
        {"short", Bytes(255, 0), &pcm16, 0, {}},
        {"predictor 7", MonoBlock(7, 16, 0, 0, 0), &pcm16, 0, {}},
    };
    for (const auto& c : kCases) {
        Bytes out(1000);
        EXPECT_EQ(AdpcmDecode(adpcm, c.stream.data(), *c.pcm, out.data(), static_cast<uint32_t>(c.stream.size())), c.bytes) << c.name;
        for (size_t i = 0; i < c.first.size(); ++i) {
            const int32_t got = c.pcm->bitsPerSample == 8 ? out[i] : ReadS16(&out[2 * i]);
            EXPECT_EQ(got, c.first[i]) << c.name << " sample " << i;
        }
    }
    // A bad predictor in any block spoils the whole call; so does a block too small for its samples.
    Bytes two = MonoBlock(0, 16, 0, 0, 0);
    const Bytes bad = MonoBlock(9, 16, 0, 0, 0);
    two.insert(two.end(), bad.begin(), bad.end());
    Bytes out(2000);
    EXPECT_EQ(AdpcmDecode(adpcm, two.data(), pcm16, out.data(), 512), 0u);
    WaveFormat greedy = adpcm;
    greedy.samplesPerBlock = 501;
    EXPECT_EQ(AdpcmDecode(greedy, two.data(), pcm16, out.data(), 256), 0u);
}

TEST(MsAdpcm, PicksTheBestPredictor) {
    const struct {
        const char* name;
        int16_t (*sample)(uint32_t);
        uint8_t predictor;
        int16_t delta;
    } kCases[] = {
        // Every predictor is exact on silence: the lowest index wins, the step stays at its floor.
        {"silence", [](uint32_t) -> int16_t { return 0; }, 0, 16},
        // 2 x s1 - s2 follows a straight line exactly.
        {"ramp", [](uint32_t i) { return static_cast<int16_t>(20 * i - 5000); }, 1, 16},
    };
    const WaveFormat pcm = Pcm(11025, 1, 16), adpcm = Adpcm(11025, 1);
    for (const auto& c : kCases) {
        std::vector<int16_t> source(500);
        for (uint32_t i = 0; i < source.size(); ++i) source[i] = c.sample(i);
        Bytes coded(256);
        ASSERT_EQ(AdpcmEncode(pcm, reinterpret_cast<const uint8_t*>(source.data()), adpcm, coded.data(), 1000), 256u) << c.name;
        EXPECT_EQ(coded[0], c.predictor) << c.name;
        EXPECT_EQ(ReadS16(&coded[1]), c.delta) << c.name;
        EXPECT_EQ(ReadS16(&coded[3]), source[1]) << c.name;
        EXPECT_EQ(ReadS16(&coded[5]), source[0]) << c.name;
    }
    // An 8-bit source is taken as (byte - 128) x 256.
    const Bytes eight(500, 130);
    Bytes coded(256);
    ASSERT_EQ(AdpcmEncode(Pcm(11025, 1, 8), eight.data(), adpcm, coded.data(), 500), 256u);
    EXPECT_EQ(ReadS16(&coded[3]), 512);
}

}  // namespace
