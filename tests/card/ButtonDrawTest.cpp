// Buttons: live records from chunks, hit regions that match what is drawn, masks, icon records,
// the hilite and the look of every shape.
#include "card/ButtonDraw.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <tuple>
#include <utility>
#include <vector>

#include "base/ByteOrder.h"
#include "card/ButtonLayout.h"
#include "card/DisplayList.h"
#include "gfx/Draw.h"
#include "gfx/Palette.h"
#include "stack/Blob.h"
#include "stack/CardRecord.h"
#include "stack/SubRecord.h"
#include "support/StackBytes.h"
#include "support/SurfaceArt.h"
#if QB_GOLDEN_TESTS
#include "support/Golden.h"
#endif

namespace {

struct Button {
    Rect rect{10, 20, 90, 60};
    int16_t shape = 2;
    uint16_t buttonFlags = 8;
    uint16_t textColor = 1, fillColor = 1;  // stored 1-based
    uint16_t iconId = 0, itemFlags = 0;
    Bytes subRecords = {};
    std::string name = "Go";
};

// A native card of one button chunk (id 7, cursor 1001) behind a blank head, at kCardHeadSize.
MemRef NativeCard(const Button& b) {
    Bytes chunk(kButtonHeadSize, 0);
    uint8_t* c = chunk.data();
    const std::pair<uint32_t, int32_t> words[] = {
        {kItemKind, kItemKindButton}, {kItemId, 7}, {kItemRect, b.rect.left}, {kItemRect + 2, b.rect.top},
        {kItemRect + 4, b.rect.right}, {kItemRect + 6, b.rect.bottom}, {kItemFlags, b.itemFlags},
        {kButtonShape, b.shape}, {kButtonFlags, b.buttonFlags}, {kButtonTextColor, b.textColor},
        {kButtonFillColor, b.fillColor}, {kButtonIconId, b.iconId}, {kButtonCursorId, 1001}};
    for (const auto& [at, v] : words) Write16(c + at, static_cast<uint16_t>(v));
    c[kButtonName] = static_cast<uint8_t>(b.name.size());
    std::copy(b.name.begin(), b.name.end(), c + kButtonName + 1);
    Append(chunk, b.subRecords);
    Write32(chunk.data() + kItemLength, static_cast<uint32_t>(chunk.size()));
    const MemRef card = NewCardMemRef(static_cast<uint32_t>(kCardHeadSize + chunk.size() + kCardTailSize));
    MemRefLock lock(card);
    std::copy(chunk.begin(), chunk.end(), lock.data() + kCardHeadSize);
    return card;
}

// A native sub-record: 32-byte head and the payload.
Bytes SubRecord(uint16_t type, const Bytes& payload) {
    Bytes s(kSubHeadSize, 0);
    Write16(s.data() + kSubType, type);
    Write32(s.data() + kSubLength, static_cast<uint32_t>(kSubHeadSize + payload.size()));
    Append(s, payload);
    return s;
}

// A mask source: the 24-byte head and `rows` of art, '#' set.
Bytes MaskSource(const std::vector<std::string>& rows, uint16_t pictureWidth = 0, uint16_t pictureHeight = 0) {
    const int32_t w = static_cast<int32_t>(rows[0].size());
    const size_t stride = static_cast<size_t>(MaskRowBytes(w));
    Bytes b(24 + stride * rows.size(), 0);
    const uint16_t head[] = {static_cast<uint16_t>(w), static_cast<uint16_t>(rows.size()), pictureWidth, pictureHeight};
    for (int i = 0; i < 4; ++i) Write16(&b[2 * i], head[i]);
    for (size_t y = 0; y < rows.size(); ++y)
        for (int32_t x = 0; x < w; ++x)
            if (rows[y][x] == '#') b[24 + y * stride + x / 8] |= static_cast<uint8_t>(0x80 >> (x % 8));
    return b;
}

using PixelFn = std::function<uint32_t(int32_t, int32_t)>;
using MaskFn = std::function<bool(int32_t, int32_t)>;

// An icon file of one picture of 4 or 8 bits: `pixels` gives each value, top row first, and
// `transparent` whether its mask bit is set. The file's rows go bottom-up.
Bytes IconFile(int32_t w, int32_t h, uint16_t bits, const std::vector<uint32_t>& table, const PixelFn& pixels,
               const MaskFn& transparent = nullptr) {
    const size_t colorStride = static_cast<size_t>((w * bits + 31) / 32 * 4);
    const size_t maskStride = static_cast<size_t>(MaskRowBytes(w));
    Bytes f(22 + 40, 0);
    for (const auto& [at, v] : {std::pair<size_t, uint16_t>{2, 1}, {4, 1}, {22 + 12, 1}, {22 + 14, bits}})
        Write16(&f[at], v);
    const auto word = [](auto v) { return static_cast<uint32_t>(v); };
    for (const auto& [at, v] : {std::pair<size_t, uint32_t>{18, 22}, {22, 40}, {26, word(w)}, {30, word(2 * h)},
                                {54, word(table.size())}})
        Write32(&f[at], v);
    for (uint32_t c : table) Append(f, {BlueOf(c), GreenOf(c), RedOf(c), 0});
    const size_t colors = f.size(), masks = colors + colorStride * static_cast<size_t>(h);
    f.resize(masks + maskStride * static_cast<size_t>(h), 0);
    for (int32_t y = 0; y < h; ++y) {
        uint8_t* row = &f[colors + static_cast<size_t>(h - 1 - y) * colorStride];
        uint8_t* mask = &f[masks + static_cast<size_t>(h - 1 - y) * maskStride];
        for (int32_t x = 0; x < w; ++x) {
            const uint32_t v = pixels(x, y);
            if (bits == 4) row[x / 2] |= static_cast<uint8_t>(x % 2 ? v : v << 4);
            if (bits == 8) row[x] = static_cast<uint8_t>(v);
            if (transparent && transparent(x, y)) mask[x / 8] |= static_cast<uint8_t>(0x80 >> (x % 8));
        }
    }
    return f;
}
const auto kZero = [](int32_t, int32_t) { return 0u; };

// White, cream, red, blue, pale blue, then black.
std::vector<uint32_t> TestPalette() {
    std::vector<uint32_t> p = {kWhite, 0xFFF0C0, kRed, kBlue, 0xC0E0FF};
    p.resize(256, kBlack);
    return p;
}

// A checked grey background, so that what a button leaves alone shows.
Surface Checked(int32_t w, int32_t h) {
    Surface s(w, h);
    const Pattern checks{{0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55}};
    FillPattern(s, s.Bounds(), s.Bounds(), checks, 0x808080, 0xC0C0C0);
    return s;
}

Region ChangedPixels(const Surface& before, const Surface& after) {
    Region changed;
    for (int32_t y = 0; y < before.height; ++y)
        for (int32_t x = 0; x < before.width; ++x)
            if (before.Row(y)[x] != after.Row(y)[x]) changed = UnionRegions(changed, Region({x, y, x + 1, y + 1}));
    return changed;
}

class ButtonDrawTest : public testing::Test {
protected:
    void SetUp() override {
        ResetPaletteState();
        ForceDisplayDepth(32);
    }
    void TearDown() override {
        CloseAllBlobStores();
        ResetPaletteState();
    }
};

TEST_F(ButtonDrawTest, TheLiveRecordTakesTheChunksFields) {
    const Bytes icon = IconFile(2, 2, 8, {kRed}, kZero);
    const std::string path =
        WriteTempFile("button-icon.stk", StoredStack({}, {StoredCard(1, "A")}, {StoredRecord("Icon", 5, "", icon)}));
    ASSERT_NE(OpenBlobStoreAt(path, 228, 64, 68), 0u);
    const MemRef card = NativeCard({.shape = 3, .buttonFlags = 4 | 16, .textColor = 3, .fillColor = 258, .iconId = 5,
                                    .itemFlags = 32 | 128, .name = std::string("Ab\0cd", 5)});
    DisplayItem item;
    ASSERT_TRUE(FillButtonItem(&item, card, kCardHeadSize));
    EXPECT_EQ((std::vector<int>{item.type, item.id, item.textColor, item.fillColor, item.flags, item.cursorId}),
              (std::vector<int>{kItemKindButton, 7, 2, 257, 32 | 128, 1001}));
    EXPECT_EQ((std::vector<bool>{item.hiliteOnPress, item.showName, item.showIcon, item.hidden}),
              (std::vector<bool>{false, false, true, true}));
    EXPECT_EQ(item.rect, (Rect{10, 20, 90, 60}));
    EXPECT_EQ(item.name, "Ab");  // the live name ends at a zero byte
    // The icon is a copy of its own, not the store's cached block.
    ASSERT_NE(item.icon, 0);
    EXPECT_EQ(GetBlobInfo(item.icon, nullptr, nullptr, nullptr, nullptr), 16);
    EXPECT_EQ(BlockBytes(item.icon), icon);

    // A chunk whose length leaves the card, or that isn't a button, gives no record.
    Write32(MemRefLock(card).data() + kCardHeadSize + kItemLength, kButtonHeadSize + 8);
    DisplayItem other;
    EXPECT_FALSE(FillButtonItem(&other, card, kCardHeadSize));
    EXPECT_FALSE(FillButtonItem(&other, card, kCardHeadSize + 2));
    FreeMemRef(card);
}

TEST_F(ButtonDrawTest, HitRegionsFollowTheShapes) {
    const int32_t h = ButtonCharHeight();
    ASSERT_GT(h, 4);
    const Rect r{10, 20, 90, 60};
    // The round and plain shapes hold exactly the pixels their drawing covers.
    for (int16_t shape : {0, 2}) {
        const MemRef card = NativeCard({.shape = shape, .fillColor = 3, .name = ""});  // red
        DisplayItem item;
        ASSERT_TRUE(FillButtonItem(&item, card, kCardHeadSize));
        const Surface before = Checked(100, 80);
        Surface after = before;
        DrawButton(after, after.Bounds(), item, TestPalette().data(), false);
        EXPECT_EQ(item.region, ChangedPixels(before, after)) << "shape " << shape;
        EXPECT_EQ(ItemRegion(card, kCardHeadSize, false), item.region) << "shape " << shape;
        FreeMemRef(card);
    }
    // Shape 4: the name alone, centred; a picture button's mask stands at the corner, found behind
    // another sub-record, and only its set bits count.
    Button b{.shape = 4};
    DisplayItem item;
    const MemRef clear = NativeCard(b);
    ASSERT_TRUE(FillButtonItem(&item, clear, kCardHeadSize));
    const Rect name = item.region.Bounds();
    EXPECT_EQ(item.region, Region(name));
    EXPECT_EQ((std::vector<int>{name.Height(), name.top}), (std::vector<int>{h, 20 + (40 - h) / 2}));
    EXPECT_LE(std::abs((name.left + name.right) - 100), 1);
    EXPECT_EQ(ItemRegion(clear, kCardHeadSize, true), Region(r));
    FreeMemRef(clear);

    b.shape = 6;
    b.subRecords = SubRecord(64, Bytes(6, 0));
    Append(b.subRecords, SubRecord(130, MaskSource({"..#..", ".###.", "..#.."})));
    const MemRef picture = NativeCard(b);
    ASSERT_TRUE(FillButtonItem(&item, picture, kCardHeadSize));
    ASSERT_TRUE(item.hasMask);
    EXPECT_EQ(MaskRegion(item.mask), UnionRegions(Region({12, 20, 13, 23}), Region({11, 21, 14, 22})));
    EXPECT_TRUE(item.inverseMask.Contains(10, 20) && !item.inverseMask.Contains(12, 20));
    EXPECT_EQ(ItemRegion(picture, kCardHeadSize, true), MaskRegion(item.mask));
    EXPECT_EQ(ItemRegion(picture, kCardHeadSize, false), Region(r));
    FreeMemRef(picture);
}

TEST_F(ButtonDrawTest, MasksComeFromTheirHeadAndRows) {
    int32_t w = -1, h = -1;
    BitMask mask;
    Bytes source = MaskSource({"#........#", ".########."}, 30, 40);
    source[24 + 1] = 0xFF;  // bits past the width of 10
    const auto make = [&](size_t size) { return MakeMask(source.data(), static_cast<uint32_t>(size), &mask, &w, &h); };
    ASSERT_TRUE(make(source.size()));
    ASSERT_EQ((std::vector<int>{w, h, mask.width, mask.height}), (std::vector<int>{30, 40, 10, 2}));
    EXPECT_TRUE(mask.Get(0, 0) && mask.Get(9, 0) && !mask.Get(0, 1) && mask.Get(8, 1));
    EXPECT_EQ((std::vector<int>{mask.Row(0)[1], mask.Row(0)[2]}), (std::vector<int>{0xC0, 0}));
    EXPECT_FALSE(make(source.size() - 1));
    EXPECT_FALSE(make(23));
    Write16(&source[0], 0);
    EXPECT_FALSE(make(source.size()));
}

TEST_F(ButtonDrawTest, DamagedIconRecordsAreNeitherReadNorDrawn) {
    const Bytes good = IconFile(5, 3, 4, {kRed, kGreen, kBlue}, [](int32_t x, int32_t y) { return (x + y) % 3u; });
    ASSERT_TRUE(ReadIconInfo(good.data(), static_cast<uint32_t>(good.size())).valid);
    const std::pair<const char*, std::function<void(Bytes&)>> cases[] = {
        {"not an icon file", [](Bytes& b) { Write16(&b[2], 2); }},
        {"one byte short", [](Bytes& b) { b.pop_back(); }},
        {"picture past the end", [](Bytes& b) { Write32(&b[18], static_cast<uint32_t>(b.size() - 20)); }},
        {"compressed", [](Bytes& b) { Write32(&b[22 + 16], 2); }},
        {"2 bits a pixel", [](Bytes& b) { Write16(&b[22 + 14], 2); }},
        {"huge table", [](Bytes& b) { Write32(&b[22 + 32], 0x40000000); }},
        {"no head", [](Bytes& b) { b.resize(21); }},
    };
    for (const auto& [what, damage] : cases) {
        Bytes bad = good;
        damage(bad);
        const IconInfo info = ReadIconInfo(bad.data(), static_cast<uint32_t>(bad.size()));
        EXPECT_FALSE(info.valid) << what;
        EXPECT_EQ(info.width + info.height, 0) << what;
        Surface s(8, 5);
        DrawIcon(s, s.Bounds(), 1, 1, bad.data(), static_cast<uint32_t>(bad.size()), nullptr);
        EXPECT_EQ(Art(s), Art(Surface(8, 5))) << what;
    }
}

TEST_F(ButtonDrawTest, DrawingKeepsToTheClipRegion) {
    const MemRef card = NativeCard({.shape = 2, .name = "Wide name"});
    DisplayItem item;
    ASSERT_TRUE(FillButtonItem(&item, card, kCardHeadSize));
    // Two bands that cut through the name.
    const Region clip = UnionRegions(Region({0, 0, 50, 40}), Region({30, 40, 100, 80}));
    const Surface before = Checked(100, 80);
    Surface after = before, whole = before;
    DrawButton(after, Clip({0, 0, 100, 80}, &clip), item, TestPalette().data(), false);
    DrawButton(whole, whole.Bounds(), item, TestPalette().data(), false);
    EXPECT_EQ(ChangedPixels(before, after), IntersectRegions(ChangedPixels(before, whole), clip));
    FreeMemRef(card);
}

// A name or an icon wider than its button stays inside the two columns of each side border, where
// the frame and the shadow are: only the contents between them change.
TEST_F(ButtonDrawTest, AWideNameOrIconIsClippedInsideTheSideBorders) {
    const Bytes icon = IconFile(48, 8, 8, {kBlue}, kZero);
    for (int16_t shape : {0, 1, 2, 3}) {
        for (const bool withIcon : {false, true}) {
            SCOPED_TRACE(testing::Message() << "shape " << shape << (withIcon ? ", icon" : ", name"));
            // Blue on white.
            const MemRef card = NativeCard(
                {.rect = {30, 10, 60, 70}, .shape = shape, .textColor = 4, .name = withIcon ? "" : "WWWWWWWWWWWW"});
            DisplayItem item;
            ASSERT_TRUE(FillButtonItem(&item, card, kCardHeadSize));
            Surface plain = Checked(90, 80), full = plain;
            item.showName = false;
            DrawButton(plain, plain.Bounds(), item, TestPalette().data(), false);
            std::tie(item.showName, item.showIcon, item.icon) =
                std::make_tuple(!withIcon, withIcon, withIcon ? BlockOf(icon) : MemRef{0});
            DrawButton(full, full.Bounds(), item, TestPalette().data(), false);
            const Region changed = ChangedPixels(plain, full);
            EXPECT_FALSE(changed.IsEmpty()) << "the contents show";
            EXPECT_EQ(SubtractRegion(changed, Region({32, 10, 58, 70})), Region());
            FreeMemRef(card);
        }
    }
}

#if QB_GOLDEN_TESTS
TEST_F(ButtonDrawTest, EveryShapeNormalAndHilited) {
    const std::vector<uint32_t> palette = TestPalette();
    // Real icons are black where their mask is set.
    const auto round = [](int32_t x, int32_t y) { return (x - 8) * (x - 8) + (y - 8) * (y - 8) > 60; };
    const Bytes icon4 = IconFile(
        16, 16, 4, {kBlack, kRed, 0x00A000, kBlue},
        [&](int32_t x, int32_t y) { return round(x, y) ? 0u : static_cast<uint32_t>((x / 4 + y / 4) % 3 + 1); }, round);
    std::vector<uint32_t> ramp{kBlack};
    for (uint32_t i = 1; i < 16; ++i)
        ramp.push_back(Rgb(static_cast<uint8_t>(i * 16), 0, static_cast<uint8_t>(255 - i * 16)));
    const auto corner = [](int32_t x, int32_t y) { return x + y < 6; };
    const Bytes icon8 = IconFile(
        16, 16, 8, ramp, [&](int32_t x, int32_t y) { return corner(x, y) ? 0u : static_cast<uint32_t>(x); }, corner);
    const char* names[] = {"Round", "Default", "Plain", "Shadow", "Clear", "Circle", "Diamond", ""};
    // Masks of 60 by 40 for the picture buttons: a disc, a diamond and a cross.
    const auto maskOf = [](const MaskFn& in) {
        std::vector<std::string> rows;
        for (int32_t y = -20; y < 20; ++y) {
            rows.emplace_back();
            for (int32_t x = -30; x < 30; ++x) rows.back() += in(x, y) ? '#' : '.';
        }
        return SubRecord(130, MaskSource(rows));
    };
    const Bytes masks[] = {maskOf([](int32_t x, int32_t y) { return x * x * 4 + y * y * 9 < 3600; }),
                           maskOf([](int32_t x, int32_t y) { return std::abs(x) * 2 + std::abs(y) * 3 < 60; }),
                           maskOf([](int32_t x, int32_t y) { return std::abs(x) < 6 || std::abs(y) < 6; })};
    Surface s = Checked(8 * 70 + 10, 2 * 70 + 10);
    std::vector<MemRef> cards;
    for (int row = 0; row < 2; ++row) {
        for (int16_t shape = 0; shape < 8; ++shape) {
            cards.push_back(NativeCard(
                {.rect = {10 + shape * 70, 10 + row * 70, 70 + shape * 70, 70 + row * 70}, .shape = shape,
                 .buttonFlags = static_cast<uint16_t>(8 | (shape == 2 || shape == 4 || shape == 7 ? 16 : 0)),
                 .textColor = static_cast<uint16_t>(shape == 1 ? 3 : 256),
                 .fillColor = static_cast<uint16_t>(shape == 3 ? 5 : 2),
                 .subRecords = shape >= 5 ? masks[shape - 5] : Bytes(), .name = names[shape]}));
            DisplayItem item;
            ASSERT_TRUE(FillButtonItem(&item, cards.back(), kCardHeadSize));
            if (shape == 2 || shape == 7) item.icon = BlockOf(icon4);
            if (shape == 4) item.icon = BlockOf(icon8);
            item.region = HitRegion(item);
            DrawButton(s, s.Bounds(), item, palette.data(), false);
            if (row == 1) InvertItem(s, s.Bounds(), item);
        }
    }
    ExpectMatchesGolden(s, "buttons-shapes");
    for (MemRef card : cards) FreeMemRef(card);
}
#endif

}  // namespace
