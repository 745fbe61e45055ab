// 'Snd ' records: the forms this system writes and the ones it only reads, their refusals, the
// image made of a record in place and put back, the silence behind a short sound, and the
// compressed form of 8-bit mono records.
#include "media/SoundRecord.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <tuple>
#include <vector>

#include "base/ByteOrder.h"
#include "media/CompressedSound.h"
#include "media/SoundWave.h"
#include "memory/MemRef.h"
#include "support/StackBytes.h"

namespace {

Bytes Samples(const std::function<uint8_t(uint32_t)>& f, uint32_t n) {
    Bytes b(n);
    for (uint32_t i = 0; i < n; ++i) b[i] = f(i);
    return b;
}

Bytes Counting(uint32_t n) {
    return Samples([](uint32_t i) { return static_cast<uint8_t>(i * 7 + 3); }, n);
}

Bytes Changed(Bytes b, const std::function<void(Bytes&)>& change) {
    change(b);
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
        {"format 256", Changed(mono, [](Bytes& b) { b[0] = 1, b[1] = 0; }), 0, 50, 300, 8, 1},
        {"format 3", Changed(mono, [](Bytes& b) { b[1] = 3; }), kAlertBadSound, 0, 0, 0, 0},
        {"compressed", Changed(mono, [](Bytes& b) { b[kSoundHeaderAt + kSoundEncoding] = 254; }), kSoundNotPlayed, 0, 0, 0, 0},
        {"encoding 7", Changed(mono, [](Bytes& b) { b[kSoundHeaderAt + kSoundEncoding] = 7; }), kSoundNotPlayed, 0, 0, 0, 0},
        {"length past the end", Changed(mono, [](Bytes& b) { b.pop_back(); }), kAlertBadSound, 0, 0, 0, 0},
        {"frames past the end", Changed(stereo, [](Bytes& b) { b.pop_back(); }), kAlertBadSound, 0, 0, 0, 0},
        {"commands past the end", Changed(mono, [](Bytes& b) { b[kSoundHeaderAt - 18] = 0xFF; }), kAlertBadSound, 0, 0, 0, 0},
        {"12 bits", Changed(stereo, [](Bytes& b) { b[kSoundHeaderAt + kSoundBits + 1] = 12; }), kAlertBadSound, 0, 0, 0, 0},
        {"3 channels", Changed(stereo, [](Bytes& b) { b[kSoundHeaderAt + 7] = 3; }), kAlertBadSound, 0, 0, 0, 0},
        {"rate 0", Changed(mono, [](Bytes& b) { std::memset(&b[kSoundHeaderAt + kSoundRate], 0, 4); }), kAlertBadSound, 0, 0, 0, 0},
        {"one byte", Bytes{0}, kAlertBadSound, 0, 0, 0, 0},
    };
    for (const auto& c : kCases) {
        SoundInfo info;
        uint32_t dataOffset = 0;
        EXPECT_EQ(ScanSoundRecord(c.record.data(), static_cast<uint32_t>(c.record.size()), &info, &dataOffset), c.result) << c.name;
        if (c.result != 0) continue;
        EXPECT_EQ(std::make_tuple(dataOffset, info.frames, info.bits, info.channels, info.bigEndian),
                  std::make_tuple(c.dataOffset, c.frames, c.bits, c.channels, 1u)) << c.name;
    }
}

// Played and put back, a record of this system's own form is the record it was; the image between
// holds the samples in native order.
TEST(SoundRecord, WaveInPlaceAndBack) {
    const struct { uint16_t bits, channels; uint32_t bytes; } kCases[] = {{8, 1, 4001}, {16, 2, 8004}};
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
    const struct { uint16_t bits; uint8_t silence; } kCases[] = {{8, 128}, {16, 0}};
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

TEST(CompressedSound, UnpacksToWhatItPacked) {
    const struct {
        const char* name;
        Bytes samples;
        uint32_t pairs;
        Bytes unpacked;  // empty: the samples themselves
    } kCases[] = {
        // Near silence is kept as silence: 128, whatever it was.
        {"silence runs", Samples([](uint32_t i) -> uint8_t { return i % 100 < 40 ? 123 + i % 11 : 200 + i % 50; }, 1000), 10,
         Samples([](uint32_t i) -> uint8_t { return i % 100 < 40 ? 128 : 200 + i % 50; }, 1000)},
        // Nine silent bytes don't make a silent run.
        {"short quiet", Samples([](uint32_t i) -> uint8_t { return i % 20 < 9 ? 128 : 200; }, 400), 1, {}},
        {"smooth", Samples([](uint32_t i) -> uint8_t { return static_cast<uint8_t>(60 + i % 7 - (i / 3) % 5); }, 301), 1, {}},
        {"steps of 8", Samples([](uint32_t i) -> uint8_t { return static_cast<uint8_t>(i % 3 * 8 + 20); }, 302), 1, {}},
        {"rough", Samples([](uint32_t i) -> uint8_t { return static_cast<uint8_t>(i * 97); }, 500), 1, {}},
    };
    for (const auto& c : kCases) {
        const MemRef record = BlockOf(Record(8, 1, 11025, c.samples));
        const MemRef packed = CompressSoundRecord(record);
        ASSERT_NE(packed, 0) << c.name;
        const Bytes stored = BlockBytes(packed);
        EXPECT_EQ(stored[kSoundHeaderAt + kSoundEncoding], kEncodingCompressed) << c.name;
        EXPECT_EQ(ReadBE16(&stored[kExtendedSamplesAt + 4]), c.pairs) << c.name;
        const MemRef back = DecompressSoundRecord(packed);
        ASSERT_NE(back, 0) << c.name;
        EXPECT_EQ(TakeBytes(back), Record(8, 1, 11025, c.unpacked.empty() ? c.samples : c.unpacked)) << c.name;
        FreeMemRef(packed);
        FreeMemRef(record);
    }
}

TEST(CompressedSound, RefusesWhatItDidNotMake) {
    const Bytes samples = Samples([](uint32_t i) -> uint8_t { return i % 50 < 20 ? 128 : static_cast<uint8_t>(i * 5); }, 400);
    const MemRef record = BlockOf(Record(8, 1, 11025, samples));
    const Bytes packed = TakeBytes(CompressSoundRecord(record));
    const struct { const char* name; Bytes record; } kCases[] = {
        {"no mark", Changed(packed, [](Bytes& b) { b[68] = 'X'; })},
        {"total off by one", Changed(packed, [](Bytes& b) { b[kExtendedSamplesAt + 3] ^= 1; })},
        {"packing cut short", Changed(packed, [](Bytes& b) { b.pop_back(); })},
        {"pairs past the end", Changed(packed, [](Bytes& b) { b[kExtendedSamplesAt + 4] = 0x7F; })},
    };
    for (const auto& c : kCases) {
        const MemRef block = BlockOf(c.record);
        EXPECT_EQ(DecompressSoundRecord(block), 0) << c.name;
        FreeMemRef(block);
    }
    // Only a standard 8-bit mono record compresses; a compressed one doesn't again.
    const MemRef again = BlockOf(packed);
    EXPECT_EQ(CompressSoundRecord(again), 0);
    FreeMemRef(again);
    FreeMemRef(record);
}

}  // namespace
