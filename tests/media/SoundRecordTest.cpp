// 'Snd ' records: the forms this system writes and the ones it only reads, their refusals, the
// image made of a record in place and put back, and the silence behind a short sound.
#include "media/SoundRecord.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

#include "base/ByteOrder.h"
#include "media/SoundWave.h"
#include "memory/MemRef.h"
#include "support/StackBytes.h"

namespace {

Bytes Counting(uint32_t n) {
    Bytes b(n);
    for (uint32_t i = 0; i < n; ++i) b[i] = static_cast<uint8_t>(i * 7 + 3);
    return b;
}

// The standard record of `samples` (in the record's order) as this system writes it.
Bytes Record(uint16_t bits, uint16_t channels, uint32_t rate, const Bytes& samples) {
    SoundInfo info;
    info.bits = bits;
    info.channels = channels;
    info.rate = rate;
    info.dataBytes = static_cast<uint32_t>(samples.size());
    const MemRef block = BlockOf(samples);
    const MemRef record = BuildSoundRecord(block, 0, info);
    EXPECT_NE(record, block);
    FreeMemRef(block);
    return TakeBytes(record);
}

TEST(SoundRecord, ReadsTheFormsAndRefusesTheRest) {
    const Bytes mono = Record(8, 1, 11025, Counting(300)), stereo = Record(16, 2, 22050, Counting(400));
    // Format 2: a reference count and the commands' number, then the header.
    Bytes format2 = {0, 2, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0};
    format2.insert(format2.end(), mono.begin() + kSoundHeaderAt, mono.end());
    const auto with = [](Bytes b, std::function<void(Bytes&)> change) {
        change(b);
        return b;
    };
    const struct {
        const char* name;
        Bytes record;
        int32_t result;
        uint32_t dataOffset, frames;
        uint16_t bits, channels;
    } kCases[] = {
        {"8-bit mono", mono, 0, 50, 300, 8, 1},
        {"16-bit stereo", stereo, 0, 92, 100, 16, 2},
        {"format 2", format2, 0, 36, 300, 8, 1},
        {"format 256", with(mono, [](Bytes& b) { b[0] = 1, b[1] = 0; }), 0, 50, 300, 8, 1},
        {"format 3", with(mono, [](Bytes& b) { b[1] = 3; }), kAlertBadSound, 0, 0, 0, 0},
        {"compressed", with(mono, [](Bytes& b) { b[kSoundHeaderAt + kSoundEncoding] = 254; }), kSoundNotPlayed, 0, 0, 0, 0},
        {"encoding 7", with(mono, [](Bytes& b) { b[kSoundHeaderAt + kSoundEncoding] = 7; }), kSoundNotPlayed, 0, 0, 0, 0},
        {"length past the end", with(mono, [](Bytes& b) { b.pop_back(); }), kAlertBadSound, 0, 0, 0, 0},
        {"frames past the end", with(stereo, [](Bytes& b) { b.pop_back(); }), kAlertBadSound, 0, 0, 0, 0},
        {"commands past the end", with(mono, [](Bytes& b) { b[kSoundHeaderAt - 18] = 0xFF; }), kAlertBadSound, 0, 0, 0, 0},
        {"12 bits", with(stereo, [](Bytes& b) { b[kSoundHeaderAt + kSoundBits + 1] = 12; }), kAlertBadSound, 0, 0, 0, 0},
        {"3 channels", with(stereo, [](Bytes& b) { b[kSoundHeaderAt + 7] = 3; }), kAlertBadSound, 0, 0, 0, 0},
        {"rate 0", with(mono, [](Bytes& b) { std::memset(&b[kSoundHeaderAt + kSoundRate], 0, 4); }), kAlertBadSound, 0, 0, 0, 0},
        {"one byte", Bytes{0}, kAlertBadSound, 0, 0, 0, 0},
    };
    for (const auto& c : kCases) {
        SoundInfo info;
        uint32_t dataOffset = 0;
        EXPECT_EQ(ScanSoundRecord(c.record.data(), static_cast<uint32_t>(c.record.size()), &info, &dataOffset), c.result) << c.name;
        if (c.result != 0) continue;
        EXPECT_EQ(dataOffset, c.dataOffset) << c.name;
        EXPECT_EQ(info.frames, c.frames) << c.name;
        EXPECT_EQ(info.bits, c.bits) << c.name;
        EXPECT_EQ(info.channels, c.channels) << c.name;
        EXPECT_EQ(info.bigEndian, 1u) << c.name;
    }
}

// Played and put back, a record of this system's own form is the record it was; the image between
// holds the samples in native order.
TEST(SoundRecord, WaveInPlaceAndBack) {
    const struct {
        uint16_t bits, channels;
        uint32_t bytes;
    } kCases[] = {{8, 1, 4001}, {8, 2, 4002}, {16, 1, 4002}, {16, 2, 8004}};
    for (const auto& c : kCases) {
        const Bytes samples = Counting(c.bytes);
        Bytes bigEndian = samples;
        if (c.bits == 16) {
            for (size_t i = 0; i + 1 < bigEndian.size(); i += 2) Swap16(&bigEndian[i]);
        }
        const Bytes stored = Record(c.bits, c.channels, 22050, bigEndian);
        const MemRef record = BlockOf(stored);
        SoundInfo info;
        const MemRef wave = SoundRecordToWave(record, &info);
        ASSERT_EQ(wave, record) << c.bits;
        EXPECT_EQ(info.bigEndian, 0u);
        EXPECT_EQ(info.dataBytes, c.bytes);
        const Bytes image = BlockBytes(wave);
        EXPECT_TRUE(std::equal(samples.begin(), samples.end(), image.begin() + kWaveHeaderBytes)) << c.bits;
        ASSERT_EQ(WaveToSoundRecord(wave), record) << c.bits;
        EXPECT_EQ(TakeBytes(record), stored) << c.bits;
    }
}

// The sound grows by the whole minimum, not by what it lacks.
TEST(SoundRecord, ShortSoundsGetSilenceBehind) {
    const struct {
        uint16_t bits;
        uint8_t silence;
    } kCases[] = {{8, 128}, {16, 0}};
    for (const auto& c : kCases) {
        const Bytes samples = Counting(100 * c.bits / 8);
        const MemRef record = BlockOf(Record(c.bits, 1, 11025, samples));
        const Bytes before = BlockBytes(record);
        SoundInfo info;
        const MemRef wave = SoundRecordToWave(record, &info);
        ASSERT_NE(wave, 0);
        EXPECT_NE(wave, record);
        EXPECT_EQ(BlockBytes(record), before);
        EXPECT_EQ(info.frames, 100 + kDefaultMinSoundFrames);
        const Bytes image = TakeBytes(wave);
        ASSERT_EQ(image.size(), kWaveHeaderBytes + info.dataBytes);
        EXPECT_EQ(Read32(&image[40]), info.dataBytes);
        EXPECT_EQ(image.back(), c.silence);
        EXPECT_EQ(image[kWaveHeaderBytes + samples.size()], c.silence);
        EXPECT_NE(image[kWaveHeaderBytes + samples.size() - 1], c.silence);
        FreeMemRef(record);
    }
}

}  // namespace
