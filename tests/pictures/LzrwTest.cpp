// LZRW1-A: hand-written item streams, hand-worked compressor output, round trips, streams that lie.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pictures/Lzrw.h"

namespace {

using Bytes = std::vector<uint8_t>;

// Writes an item stream from the block layout: control words low byte first, bit 0 first.
struct StreamBuilder {
    Bytes bytes{0, 0, 0, 0};
    size_t control = 0;
    uint32_t items = 0;
    StreamBuilder& Item(bool copy) {
        if (items % 16 == 0) {
            control = bytes.size();
            bytes.insert(bytes.end(), {0, 0});
        }
        if (copy) bytes[control + items % 16 / 8] |= static_cast<uint8_t>(1 << items % 8);
        ++items;
        return *this;
    }
    StreamBuilder& Lit(const std::string& s) {
        for (char c : s) Item(false).bytes.push_back(static_cast<uint8_t>(c));
        return *this;
    }
    StreamBuilder& Copy(uint32_t offset, uint32_t length) {
        Item(true).bytes.insert(bytes.end(), {static_cast<uint8_t>((offset & 0xF00) >> 4 | (length - 3)),
                                              static_cast<uint8_t>(offset)});
        return *this;
    }
};

Bytes Text(const std::string& s) { return Bytes(s.begin(), s.end()); }

// Decompresses into a buffer of exactly `capacity` bytes, so the sanitizer sees any overrun.
int32_t Decompress(const Bytes& block, size_t capacity, Bytes* out) {
    out->assign(capacity, 0xEE);
    uint32_t made = 0;
    const int32_t result =
        LzrwDecompress(block.data(), static_cast<uint32_t>(block.size()), out->data(), static_cast<uint32_t>(capacity), &made);
    out->resize(made);
    return result;
}

Bytes Compress(const Bytes& src, Bytes* work = nullptr) {
    Bytes fresh(kLzrwWorkSize, 0), out(src.size() + kLzrwOutputSlack);
    uint32_t length = 0;
    LzrwCompress((work ? *work : fresh).data(), src.data(), static_cast<uint32_t>(src.size()), out.data(), &length);
    out.resize(length);
    return out;
}

TEST(Lzrw, DecodesHandBuiltStreams) {
    StreamBuilder far;
    std::string farText;
    for (int i = 0; i < 4095; ++i) farText += static_cast<char>('a' + i % 23);
    far.Lit(farText).Copy(4095, 3);
    struct Case { const char* name; Bytes block, expected; };
    const Case cases[] = {
        {"literals", StreamBuilder().Lit("abc").bytes, Text("abc")},
        {"offset 1, length 3 repeats a byte", StreamBuilder().Lit("a").Copy(1, 3).bytes, Text("aaaa")},
        {"offset 2, length 18 overlaps", StreamBuilder().Lit("ab").Copy(2, 18).bytes, Text("abababababababababab")},
        {"offset 4095", far.bytes, Text(farText + "abc")},
        // offsets 16 and 17 are copied apart from the nearer ones
        {"a second control word", StreamBuilder().Lit("abcdefghijklmnop").Copy(16, 3).Lit("!").Copy(17, 5).bytes,
         Text("abcdefghijklmnopabc!defgh")},
        {"stored block", {kLzrwStored, 9, 0, 7, 'x', 'y'}, Text("xy")},
    };
    for (const Case& c : cases) {
        Bytes out;
        EXPECT_EQ(Decompress(c.block, c.expected.size(), &out), 0) << c.name;
        EXPECT_EQ(out, c.expected) << c.name;
    }
    uint32_t made = 77;
    EXPECT_EQ(LzrwDecompress(nullptr, 0, nullptr, 0, &made), 0);
    EXPECT_EQ(made, 77u) << "an empty source leaves the length alone";
}

TEST(Lzrw, CompressesHandWorkedInputs) {
    // (0, 232, 163) takes the hash slot of (1, 2, 3) only when bytes count as signed, so the second
    // (1, 2, 3) finds the slot taken and stays a literal.
    Bytes collide = {1, 2, 3, 0, 232, 163, 1, 2, 3};
    collide.insert(collide.end(), 30, 'z');
    Bytes collideOut = {0, 0, 0, 0, 0x00, 0x04, 1, 2, 3, 0, 232, 163, 1, 2, 3, 'z', 0x0F, 0x01, 'z', 'z', 'z', 'z', 'z',
                        0xC0, 0xFF, 'z', 'z', 'z', 'z', 'z', 'z'};
    // A literal, 15 copies of 18: exactly 16 items, and the control word reserved behind them is left out.
    Bytes run271 = {0, 0, 0, 0, 0xFE, 0xFF, 'a', 0x0F, 0x01};
    for (int i = 0; i < 14; ++i) run271.insert(run271.end(), {0x0F, 0x12});
    // Blocks that do not shrink are stored: the tail's literals alone, and whole groups.
    Bytes noise(300), stored = {kLzrwStored, 0, 0, 0};
    uint32_t state = 12345;
    for (uint8_t& b : noise) b = static_cast<uint8_t>((state = state * 1103515245u + 12345u) >> 16);
    stored.insert(stored.end(), noise.begin(), noise.end());
    struct Case { const char* name; Bytes src, expected; };
    const Case cases[] = {
        // Fewer than 18 bytes left are literals; unused control bits stay set.
        {"run of 40", Bytes(40, 'a'), {0, 0, 0, 0, 0xC6, 0xFF, 'a', 0x0F, 0x01, 0x0F, 0x12, 'a', 'a', 'a'}},
        {"run of 271", Bytes(271, 'a'), run271},
        {"signed hash", collide, collideOut},
        {"noise of 300", noise, stored},
        {"noise of 17", Bytes(noise.begin(), noise.begin() + 17), Bytes(stored.begin(), stored.begin() + 21)},
        {"nothing", {}, {kLzrwStored, 0, 0, 0}},
    };
    for (const Case& c : cases) EXPECT_EQ(Compress(c.src), c.expected) << c.name;
}

TEST(Lzrw, RoundTripsAcrossTheUnrolledAndTailRegions) {
    Bytes work(kLzrwWorkSize, 0);  // shared across calls, as callers share it
    for (size_t length : {1, 17, 18, 19, 287, 288, 289, 306, 4097, 70000}) {
        Bytes src(length);
        for (size_t i = 0; i < length; ++i) src[i] = static_cast<uint8_t>(i % 300 < 150 ? "abcab"[i * 7 % 5] : i * 2654435761u >> 24);
        Bytes out;
        ASSERT_EQ(Decompress(Compress(src, &work), length, &out), 0) << length;
        EXPECT_EQ(out, src) << length;
    }
}

TEST(Lzrw, DamagedStreamsAreRefused) {
    Bytes cutCopy = StreamBuilder().Lit("a").Copy(1, 3).bytes, cutControl = StreamBuilder().Lit("abcdefghijklmnop").bytes;
    // Long enough for the whole-group path, which checks its copies apart from the tail's.
    const Bytes earlyInGroup = StreamBuilder().Lit("a").Copy(2, 3).Lit(std::string(200, 'x')).bytes;
    cutCopy.pop_back();
    cutControl.push_back(0xFF);
    struct Case { const char* name; Bytes block; size_t capacity; };
    const Case cases[] = {
        {"shorter than its head", {0, 0, 0}, 100},
        {"stored, longer than the output", {kLzrwStored, 0, 0, 0, 1, 2, 3}, 2},
        {"offset 0", StreamBuilder().Lit("a").Copy(0, 3).bytes, 100},
        {"copy from before the output", StreamBuilder().Lit("ab").Copy(4095, 3).bytes, 100},
        {"copy from one byte before the output, in a whole group", earlyInGroup, 1000},
        {"literal past the output", StreamBuilder().Lit("abcd").bytes, 3},
        {"copy past the output", StreamBuilder().Lit("a").Copy(1, 18).bytes, 10},
        {"copy cut after its first byte", cutCopy, 100},
        {"control word cut in half", cutControl, 100},
        {"long stream, short output", Compress(Bytes(5000, 'q')), 4000},
    };
    for (const Case& c : cases) {
        Bytes out;
        EXPECT_EQ(Decompress(c.block, c.capacity, &out), kLzrwDamaged) << c.name;
    }
}

}  // namespace
