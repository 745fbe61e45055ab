// The compressed form of 8-bit mono records: what it keeps of a sound, and the records it refuses.
#include "media/CompressedSound.h"

#include <gtest/gtest.h>

#include <functional>

#include "base/ByteOrder.h"
#include "media/SoundRecord.h"
#include "support/StackBytes.h"

namespace {

// An 8-bit mono record of `samples` as this system writes it.
Bytes Record(const Bytes& samples) {
    SoundInfo info;
    info.bits = 8;
    info.channels = 1;
    info.rate = 11025;
    info.dataBytes = static_cast<uint32_t>(samples.size());
    const MemRef block = BlockOf(samples);
    const MemRef record = BuildSoundRecord(block, 0, info);
    FreeMemRef(block);
    return TakeBytes(record);
}

Bytes Samples(const std::function<uint8_t(uint32_t)>& f, uint32_t n) {
    Bytes b(n);
    for (uint32_t i = 0; i < n; ++i) b[i] = f(i);
    return b;
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
        const MemRef record = BlockOf(Record(c.samples));
        const MemRef packed = CompressSoundRecord(record);
        ASSERT_NE(packed, 0) << c.name;
        const Bytes stored = BlockBytes(packed);
        EXPECT_EQ(stored[kSoundHeaderAt + kSoundEncoding], kEncodingCompressed) << c.name;
        EXPECT_EQ(ReadBE16(&stored[kExtendedSamplesAt + 4]), c.pairs) << c.name;
        const MemRef back = DecompressSoundRecord(packed);
        ASSERT_NE(back, 0) << c.name;
        EXPECT_EQ(TakeBytes(back), Record(c.unpacked.empty() ? c.samples : c.unpacked)) << c.name;
        FreeMemRef(packed);
        FreeMemRef(record);
    }
}

TEST(CompressedSound, RefusesWhatItDidNotMake) {
    const Bytes samples = Samples([](uint32_t i) -> uint8_t { return i % 50 < 20 ? 128 : static_cast<uint8_t>(i * 5); }, 400);
    const MemRef record = BlockOf(Record(samples));
    const Bytes packed = TakeBytes(CompressSoundRecord(record));
    const auto with = [&packed](const std::function<void(Bytes&)>& change) {
        Bytes b = packed;
        change(b);
        return b;
    };
    const struct {
        const char* name;
        Bytes record;
    } kCases[] = {
        {"no mark", with([](Bytes& b) { b[68] = 'X'; })},
        {"total off by one", with([](Bytes& b) { b[kExtendedSamplesAt + 3] ^= 1; })},
        {"packing cut short", with([](Bytes& b) { b.pop_back(); })},
        {"pairs past the end", with([](Bytes& b) { b[kExtendedSamplesAt + 4] = 0x7F; })},
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
