// Row- and run-packed pixels: hand-worked run streams, 1-bit rows that run on, streams that lie.
// The PixPak frames carry the round trips.
#include <gtest/gtest.h>

#include <vector>

#include "pictures/PackedPixels.h"
#include "support/PictureMaker.h"

namespace {

// Decodes a heap copy of exactly the stream, so the sanitizer sees any read past it.
int32_t Decode(MemRef image, uint16_t flags, Bytes data) {
    return DecodeGraphicPixels(image, flags, data.data(), static_cast<uint32_t>(data.size()));
}

TEST(PackedPixels, RunStreamsFollowTheCountRules) {
    Bytes ramp(16), wide(300);
    for (int i = 0; i < 16; ++i) ramp[i] = static_cast<uint8_t>(i + 1);
    for (int i = 0; i < 300; ++i) wide[i] = static_cast<uint8_t>(i < 130 ? 4 : i);
    Bytes rampStream = {15}, wideStream = {0x81, 4, 0xFF, 4, 127, 130};  // 128 fours, 2 fours, 128 literals...
    rampStream.insert(rampStream.end(), ramp.begin(), ramp.end());
    // stream: whole, or its first bytes
    struct Case { const char* name; int32_t width, depth; std::vector<Bytes> rows; Bytes stream, decoded; };
    const Case cases[] = {
        {"literals then a run", 16, 8, {{1, 2, 3, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9}}, {2, 1, 2, 3, 0xF4, 9}, {}},
        // A run reaching the end counts the 0 read past the image when it equals it; the reader
        // stops at the image's end.
        {"zeros to the end", 16, 8, {Bytes(16, 0)}, {0xF0, 0}, {}},
        {"sevens to the end", 16, 8, {Bytes(16, 7)}, {0xF1, 7}, {}},
        {"a run crosses rows", 16, 8, {Bytes(16, 5), Bytes(16, 5)}, {0xE1, 5}, {}},
        {"sixteen literals", 16, 8, {ramp}, rampStream, {}},
        {"stretches split at 128", 300, 8, {wide}, wideStream, {}},
        // Width 16 at 1 bit: 2-byte stored rows, 4-byte display rows; the reader keeps no gap, so
        // each stored row lands behind the last.
        {"1-bit rows run on", 16, 1, {{0xA1, 0xA2}, {0xB1, 0xB2}, {0xC1, 0xC2}}, {5, 0xA1, 0xA2, 0xB1, 0xB2, 0xC1, 0xC2},
         {0xA1, 0xA2, 0xB1, 0xB2, 0xC1, 0xC2, 0, 0, 0, 0, 0, 0}},
    };
    for (const Case& c : cases) {
        const MemRef image = ImageOfRows(c.width, c.depth, c.rows);
        const Bytes stream = TakeBytes(EncodeRunPacked(image));
        EXPECT_EQ(Bytes(stream.begin(), stream.begin() + std::min(stream.size(), c.stream.size())), c.stream) << c.name;
        const MemRef target = NewDibImage(c.width, static_cast<int32_t>(c.rows.size()), c.depth);
        EXPECT_EQ(Decode(target, 0, stream), 0) << c.name;
        EXPECT_EQ(PixelBytes(target), c.decoded.empty() ? PixelBytes(image) : c.decoded) << c.name;
        for (MemRef r : {image, target}) FreeMemRef(r);
    }
}

TEST(PackedPixels, ACountOfMinus128Repeats129Times) {
    // Unlike PackBits, where it does nothing; our encoder never writes it, other writers may.
    Bytes stream = {0x80, 7, 0x80, 8, 61};
    Bytes expected(129, 7);
    expected.insert(expected.end(), 129, 8);
    for (uint8_t i = 0; i < 62; ++i) {
        stream.push_back(i);
        expected.push_back(i);
    }
    const MemRef target = NewDibImage(16, 20, 8);
    EXPECT_EQ(Decode(target, 0, stream), 0);
    EXPECT_EQ(PixelBytes(target), expected);
    FreeMemRef(target);
}

TEST(PackedPixels, DamagedStreamsAreRefused) {
    const MemRef image = MakePicture(40, 3, 8, Fill::Gradient);
    const Bytes rows = TakeBytes(EncodeRowPacked(image)), runs = TakeBytes(EncodeRunPacked(image));
    Bytes longer = rows;
    longer[3] = static_cast<uint8_t>(longer[3] + 1);
    longer.resize(longer[3] - 1u);
    struct Case { const char* name; uint16_t flags; Bytes data; };
    const Case cases[] = {
        {"run stream cut short", 0, Bytes(runs.begin(), runs.end() - 1)},
        {"run count with no byte", 0, {0xF0}},
        {"literals beyond the data", 0, {20, 1, 2}},
        {"row stream cut short", kGraphicFlagRowPacked, Bytes(rows.begin(), rows.end() - 1)},
        {"row head cut short", kGraphicFlagRowPacked, {0, 0, 0}},
        {"row length under its head", kGraphicFlagRowPacked, {1, 0, 0, 3, 9, 9}},
        {"row length beyond the data", kGraphicFlagRowPacked, longer},
        {"row of too few bytes", kGraphicFlagRowPacked, {1, 0, 0, 6, 1, 2}},
        {"row copying from before its start", kGraphicFlagRowPacked, {0, 0, 0, 8, 1, 0, 0, 5}},
    };
    for (const Case& c : cases) {
        const MemRef target = NewDibImage(40, 3, 8);
        EXPECT_EQ(Decode(target, c.flags, c.data), kPixelsDamaged) << c.name;
        FreeMemRef(target);
    }
    FreeMemRef(image);
}

}  // namespace
