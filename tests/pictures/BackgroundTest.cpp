// Card pictures: head and tail runs, storing, reading through the picture owner, damage, the fixture's picture.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "memory/GlobalBlock.h"
#include "pictures/Background.h"
#include "pictures/Lzrw.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackReader.h"
#include "support/PictureMaker.h"

namespace {

MemRef BlankCard(int16_t id, int32_t width, int32_t height, int16_t kind = kCardKindBlank, int16_t owner = -1) {
    const MemRef card = NewCardMemRef(kEmptyCardSize - 2);
    MemRefLock lock(card);
    const std::pair<uint32_t, int32_t> fields[] = {
        {kCardId, id}, {kCardKind, kind}, {kCardOwnerId, owner}, {kCardWidth, width}, {kCardHeight, height}};
    for (auto [at, v] : fields) Write16(lock.data() + at, static_cast<uint16_t>(v));
    Write32(lock.data() + kCardSize, kEmptyCardSize);
    return card;
}

// A kind 1 card holding `image`, compressed, at the image's own size and depth.
MemRef CardWithPicture(MemRef image, MemRef palette = 0, int16_t id = 2) {
    const Bytes head = BlockBytes(image);
    const MemRef card = BlankCard(id, DibWidth(head.data()), DibHeight(head.data()));
    const MemRef data = CompressBackground(image, false);
    EXPECT_EQ(StoreBackground(card, data, palette, DibDepth(head.data())), 0);
    FreeMemRef(data);
    return card;
}

MemRef Read(MemRef card, int32_t depth, bool withPalette = false, BackgroundDecode* decode = nullptr) {
    MemRef image = 0;
    EXPECT_EQ(GetCardBackground(card, &image, depth, true, withPalette, decode), 0);
    return image;
}

class Background : public testing::Test {
protected:
    void TearDown() override { CloseStack(); }
};

TEST_F(Background, PicturesSurviveCompressStoreAndRead) {
    for (int32_t depth : {1, 8, 16, 32}) {
        for (int32_t width : {1, 15, 16, 17, 511}) {
            for (Fill fill : {Fill::Noise, Fill::Single, Fill::Gradient}) {
                const MemRef image = MakePicture(width, 6, depth, fill, 5), card = CardWithPicture(image);
                const MemRef back = Read(card, depth);
                EXPECT_EQ(PixelBytes(back), PixelBytes(image)) << depth << " bits, width " << width;
                for (MemRef r : {image, card, back}) FreeMemRef(r);
            }
        }
    }
}

TEST_F(Background, SingleColourIsTheRunHeaderAndAnEmptyBlock) {
    const MemRef image = MakePicture(640, 480, 8, Fill::Single, 7);
    const MemRef data = CompressBackground(image, false);
    Bytes expected = {7, 7, 7, 7, 0, 0xB0, 0x04, 0, 7, 7, 7, 7, 0, 0, 0, 0};  // head 307200, no tail
    expected.resize(16 + 128);
    EXPECT_EQ(BlockBytes(data), expected);
    // The runs alone make the picture: a block of garbage behind them is never read.
    {
        MemRefLock lock(data);
        std::fill(lock.data() + kRunHeaderSize, lock.data() + kRunHeaderSize + 128, 0xFF);
    }
    const MemRef card = BlankCard(2, 640, 480);
    ASSERT_EQ(StoreBackground(card, data, 0, 8), 0);
    BackgroundDecode decode;
    const MemRef back = Read(card, 8, false, &decode);
    EXPECT_FALSE(decode.decompressed);
    EXPECT_EQ(PixelBytes(back), PixelBytes(image));
    for (MemRef r : {image, data, card, back}) FreeMemRef(r);
}

TEST_F(Background, HeadAndTailRunsAreTakenAsWordsOfStoredPixels) {
    // top, bottom: the colours of the top 3 and the bottom 2 rows
    struct Case { int32_t depth; uint32_t top, bottom, head, tail; Bytes headValue, tailValue; };
    const Case cases[] = {{8, 1, 2, 96, 64, {1, 1, 1, 1}, {2, 2, 2, 2}},
                          {16, 0x7C00, 0x001F, 192, 128, {0x7C, 0, 0x7C, 0}, {0, 0x1F, 0, 0x1F}},
                          {32, 0x112233, 0x445566, 384, 256, {0, 0x11, 0x22, 0x33}, {0, 0x44, 0x55, 0x66}}};
    for (const Case& c : cases) {
        // 32 pixels by 10 rows; memory rows run bottom-up, the noise rows begin and end in a word of their own.
        const MemRef image = MakePicture(32, 10, c.depth, Fill::Noise, 11);
        uint8_t* dib = LockMemRef(image);
        for (int32_t x = 0; x < 32; ++x) {
            for (int32_t y : {7, 8, 9}) SetPixel(dib, x, y, c.top);
            for (int32_t y : {0, 1}) SetPixel(dib, x, y, c.bottom);
        }
        SetPixel(dib, 0, 6, c.top ^ 0x0F0F);
        SetPixel(dib, 31, 2, c.bottom ^ 0x0F0F);
        UnlockMemRef(image);
        const Bytes data = TakeBytes(CompressBackground(image, false));
        EXPECT_EQ(Bytes(data.begin(), data.begin() + 4), c.headValue) << c.depth;
        EXPECT_EQ(Read32(data.data() + kRunHeadLength), c.head) << c.depth;
        EXPECT_EQ(Bytes(data.begin() + 8, data.begin() + 12), c.tailValue) << c.depth;
        EXPECT_EQ(Read32(data.data() + kRunTailLength), c.tail) << c.depth;
        FreeMemRef(image);
    }
}

TEST_F(Background, ScreenBitmapsLoseTheirLowestRowAndWidth17IsConverted) {
    // The screen bitmap is one row taller than the card. Width 17 at 8 bits: 32-byte stored rows,
    // 20-byte display rows.
    const MemRef screen = MakePicture(17, 7, 8, Fill::Noise);
    const MemRef data = CompressBackground(screen, true), card = BlankCard(2, 17, 6);
    ASSERT_EQ(StoreBackground(card, data, 0, 8), 0);
    const MemRef stored = NewStoredImage(17, 6, 8);
    const Bytes record = BlockBytes(card);
    ASSERT_EQ(DecodeBackgroundData(stored, kBgFormatRuns, record.data() + 120, GetMemRefSize(data), nullptr), 0);
    const Bytes all = PixelBytes(screen), rows = PixelBytes(stored), back = TakeBytes(Read(card, 8));
    ASSERT_EQ(rows.size(), 32u * 6);
    for (size_t y = 0; y < 6; ++y) {
        EXPECT_EQ(Bytes(rows.begin() + 32 * y, rows.begin() + 32 * y + 20), Bytes(all.begin() + 20 * (6 - y), all.begin() + 20 * (7 - y)));
        EXPECT_EQ(Bytes(rows.begin() + 32 * y + 20, rows.begin() + 32 * y + 32), Bytes(12, 0));
    }
    EXPECT_EQ(Bytes(back.end() - 20 * 6 - 4, back.end() - 4), Bytes(all.begin() + 20, all.end()));
    for (MemRef r : {screen, data, card, stored}) FreeMemRef(r);
}

TEST_F(Background, StoringGivesACardItsChunkAndKeepsItOnFailure) {
    const MemRef card = BlankCard(9, 16, 2), table = BlockOf({0, 0, 0, 42, 0, 0, 0, 0, 0, 0, 1, 1, 2, 2, 3, 3});
    for (uint32_t size : {35u, 60u, 21u}) {  // a blank card, then new pictures larger and smaller
        Bytes image(size);
        for (uint32_t i = 0; i < size; ++i) image[i] = static_cast<uint8_t>(i + 1);
        const MemRef data = BlockOf(image);
        ASSERT_EQ(StoreBackground(card, data, table, 8), 0);
        FreeMemRef(data);
        const Bytes r = BlockBytes(card);
        const uint32_t chunk = 24 + 16 + size + size % 2;
        ASSERT_EQ(r.size(), 100 + chunk);
        EXPECT_EQ(Read32(r.data() + kCardSize), r.size());
        EXPECT_EQ((std::array{ReadS16(r.data() + kCardKind), ReadS16(r.data() + kCardOwnerId), ReadS16(r.data() + kCardDepth)}),
                  (std::array<int16_t, 3>{1, 0, 8}));
        const uint8_t* bg = r.data() + kCardHeadSize;
        const uint32_t pad = Read16(bg + kBgFlags) & kBgFlagOddPad;
        EXPECT_EQ((std::array{uint32_t{Read16(bg)}, uint32_t{Read16(bg + 2)}, pad, Read32(bg + 12), Read32(bg + 16)}),
                  (std::array{8u, 2u, size % 2 ? 0x200u : 0u, chunk, 16u}));
        EXPECT_EQ(Bytes(r.begin() + 120, r.begin() + 137), (Bytes{0, 0, 0, 42, 0, 0, 0, 0, 0, 0, 1, 1, 2, 2, 3, 3, 1}));
        EXPECT_EQ(Bytes(r.end() - 4, r.end()), (Bytes{0, 0, 0xCE, 0xFA})) << "the tail follows the chunk";
    }
    const Bytes before = BlockBytes(card);
    const MemRef larger = NewMemRef(4000), member = BlankCard(3, 16, 2, kCardKindGroupMember, 9);
    SetGlobalAllocFailAfter(0);
    EXPECT_EQ(StoreBackground(card, larger, 0, 8), -1);
    SetGlobalAllocFailAfter(-1);
    EXPECT_EQ(BlockBytes(card), before);
    EXPECT_EQ(StoreBackground(member, larger, 0, 8), -1) << "group cards show their owner's picture";
    EXPECT_EQ(GetMemRefSize(member), kEmptyCardSize);
    for (MemRef r : {card, table, larger, member}) FreeMemRef(r);
}

TEST_F(Background, DamagedChunksGiveNoPicture) {
    const MemRef image = MakePicture(40, 6, 8, Fill::Gradient), card = CardWithPicture(image);
    const Bytes good = BlockBytes(card);
    constexpr uint32_t bg = kCardHeadSize, runs = bg + kBgHeadSize;  // no palette
    ASSERT_EQ(good[runs + kRunHeaderSize], kLzrwCompressed);
    struct Case { const char* name; uint32_t at, value; bool wide; int32_t result; };
    const Case cases[] = {
        {"head not in words", runs + kRunHeadLength, 6, true, kBackgroundDamaged},
        {"runs longer than the picture", runs + kRunTailLength, 48 * 6, true, kBackgroundDamaged},
        {"chunk beyond its record", bg + kBgLength, 100000, true, kBackgroundDamaged},
        {"palette beyond its chunk", bg + kBgTableSize, 5000, true, kBackgroundDamaged},
        {"no room for the run header", bg + kBgLength, kBgHeadSize + 10, true, kBackgroundDamaged},
        {"unknown format", bg + kBgFormat, 5, false, kBackgroundDamaged},
        {"zero width", kCardWidth, 0, false, kBackgroundDamaged},
        {"kind 0", kCardKind, 0, false, kBackgroundNone},
        {"group card without an owner", kCardKind, 3, false, kBackgroundNone},
    };
    for (const Case& c : cases) {
        Bytes changed = good;
        if (c.wide) Write32(changed.data() + c.at, c.value);
        if (!c.wide) Write16(changed.data() + c.at, static_cast<uint16_t>(c.value));
        const MemRef damaged = BlockOf(changed);
        MemRef back = 77;
        EXPECT_EQ(GetCardBackground(damaged, &back, 8, true, true), c.result) << c.name;
        EXPECT_EQ(back, 0) << c.name;
        FreeMemRef(damaged);
    }
    for (MemRef r : {image, card}) FreeMemRef(r);
}

TEST_F(Background, FixtureCardPictureDecodes) {
    InitPathSlots();
    LoadFault fault;
    ASSERT_EQ(ReadStackFile(std::string(QB_FIXTURES_DIR) + "/sample-cards.stk", &fault), 0) << fault.detail;
    BackgroundDecode decode;
    const MemRef indices = Read(GetCardByPosition(1), 8, false, &decode);
    const MemRef colored = Read(GetCardByPosition(1), 8, true);
    const MemRef shared = Read(GetCardByPosition(2), 8);  // the group member shows the same picture
    EXPECT_EQ((std::array{decode.format, uint16_t{decode.decompressed}}), (std::array<uint16_t, 2>{2, 1}));
    EXPECT_EQ((std::array{decode.headBytes, decode.tailBytes, decode.blockBytes}), (std::array{38400u, 51200u, 46264u}));
    EXPECT_EQ(BlockBytes(shared), BlockBytes(indices));

    // The ColorTable read straight from the record: 8-byte entries behind an 8-byte head, each
    // colour the first byte of its word.
    const Bytes record = BlockBytes(GetCardByPosition(1)), pix = BlockBytes(indices), col = BlockBytes(colored);
    const uint32_t tableSize = Read32(record.data() + kCardHeadSize + kBgTableSize);
    const std::tuple<int32_t, int32_t, std::array<uint8_t, 3>> cases[] = {
        {5, 5, {77, 51, 117}}, {10, 70, {88, 168, 24}}, {30, 70, {228, 28, 4}}, {5, 470, {34, 222, 178}}};
    for (const auto& [x, y, rgb] : cases) {
        const uint32_t index = GetPixel(pix.data(), x, 479 - y);  // display rows run bottom-up
        ASSERT_LE(8 + 8 * (index + 1), tableSize);
        const uint8_t* e = record.data() + 120 + 8 + 8 * index;
        EXPECT_EQ((std::array{e[2], e[4], e[6]}), rgb) << x << "," << y;
        const uint8_t* dib = DibColors(col.data()) + 4 * index;
        EXPECT_EQ((std::array{dib[2], dib[1], dib[0], dib[3]}), (std::array<uint8_t, 4>{rgb[0], rgb[1], rgb[2], 0}));
    }
    for (MemRef r : {indices, colored, shared}) FreeMemRef(r);
}

}  // namespace
