// Blits: overlapping copies, raster operations, masks, stretching, pictures of every depth.
#include <gtest/gtest.h>

#include <vector>

#include "base/ByteOrder.h"
#include "gfx/Blit.h"
#include "gfx/DibImage.h"
#include "support/PictureMaker.h"
#include "support/SurfaceArt.h"
#if QB_GOLDEN_TESTS
#include "support/Golden.h"
#endif

namespace {

// A surface whose every pixel differs: 0xTTYYXX for tag T.
Surface Numbered(int32_t w, int32_t h, uint32_t tag = 0) {
    Surface s(w, h);
    for (int32_t i = 0; i < w * h; ++i) s.pixels[i] = tag << 16 | static_cast<uint32_t>(i / w) << 8 | static_cast<uint32_t>(i % w);
    return s;
}

// Against a copy from a separate source: every offset, with and without a clip region, and a
// source rectangle reaching past the source.
TEST(Blit, CopyWithinOneSurfaceIsSafeEveryWay) {
    const Region band = UnionRegions(Region({0, 0, 12, 3}), Region({0, 6, 12, 10}));
    for (int32_t dy = -3; dy <= 3; ++dy) {
        for (int32_t dx = -3; dx <= 3; ++dx) {
            for (const Region* region : {static_cast<const Region*>(nullptr), &band}) {
                Surface s = Numbered(12, 10), expected = s;
                const Surface source = s;
                const Rect from{2 - dx, 2, 14 - dx, 8};
                CopyRect(expected, Clip(expected.Bounds(), region), 2 + dx, 2 + dy, source, from);
                CopyRect(s, Clip(s.Bounds(), region), 2 + dx, 2 + dy, s, from);
                ASSERT_EQ(s.pixels, expected.pixels) << dx << "," << dy << (region ? " with region" : "");
            }
        }
    }
    Surface dst(5, 4);
    CopyRect(dst, Rect{0, 0, 5, 3}, 3, 1, FromArt({"##", "##"}), {-1, 0, 5, 5});
    EXPECT_EQ(Art(dst), Art({".....", "....#", "....#", "....."}));
    CopyRect(dst, dst.Bounds(), INT32_MAX, 0, FromArt({"##"}), {INT32_MIN, 0, 2, 1});  // too far
    StretchCopy(dst, dst.Bounds(), {INT32_MIN, 0, 3, 1}, FromArt({"##"}), {0, 0, 2, 1});
    EXPECT_EQ(Art(dst), Art({".....", "....#", "....#", "....."}));
}

TEST(Blit, RasterOperations) {
    const uint32_t d = 0x0F33CC, s = 0x5555F0;
    const std::pair<Rop, uint32_t> cases[] = {
        {Rop::SrcCopy, s},             {Rop::NotSrcCopy, 0xAAAA0F}, {Rop::SrcAnd, 0x0511C0},
        {Rop::SrcPaint, 0x5F77FC},     {Rop::SrcInvert, 0x5A663C},  {Rop::SrcErase, 0x504430},
        {Rop::NotSrcErase, 0xA08803},  {Rop::MergePaint, 0xAFBBCF}, {Rop::DstInvert, 0xF0CC33},
    };
    for (const auto& [rop, result] : cases) {
        Surface dst(3, 1, d);
        BlitRop(dst, dst.Bounds(), 1, 0, Surface(3, 1, s), {0, 0, 3, 1}, rop);
        EXPECT_EQ(dst.pixels, (std::vector<uint32_t>{d, result, result})) << static_cast<int>(rop);
        EXPECT_EQ(ApplyRop(rop, d, s), result);
    }
}

// A mask set where the art is black, standing at (left, top).
BitMask MaskOf(int32_t left, int32_t top, std::initializer_list<const char*> rows) {
    const Surface art = FromArt(rows);
    BitMask mask(art.width, art.height);
    for (int32_t i = 0; i < art.width * art.height; ++i) mask.Set(i % art.width, i / art.width, art.pixels[i] == kBlack);
    mask.left = left;
    mask.top = top;
    return mask;
}

TEST(Blit, MaskedCopyTakesTheSourceWhereBitsAreSet) {
    const BitMask mask = MaskOf(1, 0, {"#..#", ".##.", "####"});
    const std::tuple<int32_t, int32_t, Rect, std::string> cases[] = {
        {0, 0, {0, 0, 6, 3}, Art({".#..#.", "..##..", ".####."})},  // outside the mask stays
        {2, 1, {0, 0, 6, 3}, Art({"......", "..##..", "..###."})},  // the source covers part of it
        {0, 0, {0, 1, 3, 3}, Art({"......", "..#...", ".##..."})},
    };
    for (const auto& [x, y, clip, art] : cases) {
        Surface dst(6, 3);
        MaskedCopy(dst, clip, x, y, Surface(6, 3, kBlack), {0, 0, 6, 3}, mask);
        EXPECT_EQ(Art(dst), art) << x << "," << y;
    }
    // Every alignment and run length, bit by bit, from another surface and overlapping itself.
    BitMask wide(61, 3);
    for (int32_t x = 0; x < 61; ++x) wide.Set(x, 1, x % 3 == 0 || (x > 16 && x < 33));
    wide.left = 3;
    for (int32_t shift = 0; shift < 9; ++shift) {
        Surface dst = Numbered(70, 3), same = dst;
        const Surface before = dst, other = Numbered(70, 3, 7);
        MaskedCopy(dst, dst.Bounds(), shift, 0, other, {0, 0, 70, 3}, wide);
        MaskedCopy(same, same.Bounds(), shift, 0, same, {0, 0, 70, 3}, wide);
        for (int32_t x = 0; x < 70; ++x) {
            const bool set = wide.Contains(x, 1) && x >= shift;
            ASSERT_EQ(dst.Row(1)[x], set ? other.Row(1)[x - shift] : before.Row(1)[x]) << shift << ":" << x;
            ASSERT_EQ(same.Row(1)[x], set ? before.Row(1)[x - shift] : before.Row(1)[x]) << shift << ":" << x;
        }
    }
}

TEST(Blit, MaskAsAPictureOfTwoColours) {
    const BitMask mask = MaskOf(1, 1, {"##.", ".##"});
    Surface s = FromArt({"rrrr", "rrrr", "rrrr"});
    const Surface before = s;
    BlitMask(s, s.Bounds(), mask, kWhite, kBlack, Rop::SrcInvert);  // a picture button's hilite
    EXPECT_EQ(s.Row(1)[1], 0x00FFFFu);
    EXPECT_EQ(Art(s), Art({"rrrr", "r??r", "rr??"}));
    BlitMask(s, s.Bounds(), mask, kWhite, kBlack, Rop::SrcInvert);  // a second hilite undoes the first
    EXPECT_EQ(s.pixels, before.pixels);
    BlitMask(s, Rect{0, 0, 4, 2}, mask, kGreen, kBlue, Rop::SrcCopy);
    FillMask(s, s.Bounds(), mask, kWhite);
    EXPECT_EQ(Art(s), Art({"rrrr", "r..b", "rr.."}));
}

TEST(Blit, StretchTakesThePixelUnderEachCentre) {
    const Surface src = FromArt({"#r.", "gb#"});
    const std::tuple<Rect, Rect, std::string> cases[] = {
        {{0, 0, 6, 4}, {0, 0, 3, 2}, Art({"##rr..", "##rr..", "ggbb##", "ggbb##"})},
        {{1, 1, 3, 2}, {0, 0, 3, 2}, Art({"......", ".g#...", "......", "......"})},
        {{0, 0, 5, 2}, {0, 0, 3, 2}, Art({"##r..", "ggb##", ".....", "....."})},
        {{-2, 0, 4, 4}, {0, 0, 3, 2}, Art({"rr..", "rr..", "bb##", "bb##"})},
        {{0, 0, 3, 2}, {1, 0, 4, 2}, Art({"...", "...", "...", "..."})},  // not inside the source
    };
    for (const auto& [to, from, art] : cases) {
        Surface dst(static_cast<int32_t>(art.find('\n')), 4);
        StretchCopy(dst, dst.Bounds(), to, src, from);
        EXPECT_EQ(Art(dst), art) << to.right << "x" << to.bottom;
    }
}

TEST(Blit, PicturesOfEveryDepth) {
    // The card's palette: index i is (i % 16) * 0x111111, and 200 is red.
    std::vector<uint32_t> palette(256);
    for (uint32_t i = 0; i < 256; ++i) palette[i] = (i & 15) * 0x111111;
    palette[200] = kRed;
    const uint32_t g1 = 0x111111;
    const std::tuple<int32_t, std::vector<std::vector<uint32_t>>, std::vector<uint32_t>> cases[] = {
        {1, {{1, 0, 1, 1, 0, 0, 0, 0, 1}, {0, 1, 0, 0, 1, 1, 1, 1, 0}},
         {g1, 0, g1, g1, 0, 0, 0, 0, g1, 0, g1, 0, 0, g1, g1, g1, g1, 0}},
        {4, {{15, 0, 3, 4, 5}, {1, 2, 14, 12, 11}},
         {kWhite, kBlack, 0x333333, 0x444444, 0x555555, g1, 0x222222, 0xEEEEEE, 0xCCCCCC, 0xBBBBBB}},
        {8, {{200, 15, 0}, {1, 2, 3}}, {kRed, kWhite, kBlack, g1, 0x222222, 0x333333}},
        {16, {{0x7FFF, 0x7C00, 0x03E0}, {0x001F, 0x0000, 0x4210}}, {kWhite, kRed, kGreen, kBlue, kBlack, 0x848484}},
        {24, {{0x123456, 0xFEDCBA}, {0x000001, 0x800000}}, {0x123456, 0xFEDCBA, 0x000001, 0x800000}},
        {32, {{0x123456, 0xAAFEDCBA}, {0x000001, 0x800000}}, {0x123456, 0xFEDCBA, 0x000001, 0x800000}},
    };
    for (const auto& [depth, rows, expected] : cases) {
        const auto width = static_cast<int32_t>(rows[0].size());
        const Bytes dib = TakeBytes(PictureOfPixels(depth, rows));
        // At (1, 1) of a surface one pixel larger all round, whose border stays white; and
        // stretched to twice its size.
        Surface s(width + 2, 4), twice(2 * width, 4), want(width + 2, 4), wantTwice(2 * width, 4);
        for (int32_t y = 0; y < 4; ++y) {
            for (int32_t x = 0; x < 2 * width; ++x) wantTwice.Row(y)[x] = expected[y / 2 * width + x / 2];
        }
        for (int32_t i = 0; i < 2 * width; ++i) want.Row(1 + i / width)[1 + i % width] = expected[i];
        ASSERT_EQ(DrawDib(s, s.Bounds(), 1, 1, dib.data(), palette.data()), 0);
        ASSERT_EQ(StretchDib(twice, twice.Bounds(), twice.Bounds(), dib.data(), {0, 0, width, 2}, palette.data()), 0);
        EXPECT_EQ(s.pixels, want.pixels) << depth << " bits";
        EXPECT_EQ(twice.pixels, wantTwice.pixels) << depth << " bits, stretched";
        // Its bottom row alone, cut by the clip.
        Surface part(3, 2);
        ASSERT_EQ(DrawDibPart(part, Rect{1, 0, 3, 2}, 0, 0, dib.data(), {0, 1, width, 2}, palette.data()), 0);
        EXPECT_EQ((std::vector<uint32_t>{part.Row(0)[0], part.Row(0)[1]}),
                  (std::vector<uint32_t>{kWhite, expected[width + 1]})) << depth;
        EXPECT_EQ(Art(part).substr(4), "...\n") << depth;
    }

    // Without a palette the picture's own colours; a raster operation.
    const Bytes own = TakeBytes(PictureOfPixels(4, {{0, 1, 2}}, {kRed, kGreen, kBlue}));
    Surface s(3, 1);
    ASSERT_EQ(DrawDib(s, s.Bounds(), 0, 0, own.data(), nullptr), 0);
    EXPECT_EQ(Art(s), Art({"rgb"}));
    ASSERT_EQ(DrawDib(s, s.Bounds(), 0, 0, own.data(), nullptr, Rop::NotSrcCopy), 0);
    EXPECT_EQ(s.pixels, (std::vector<uint32_t>{0x00FFFF, 0xFF00FF, 0xFFFF00}));
    // Headers that can not be drawn from draw nothing: a depth no picture has, and 9-pixel 1-bit
    // rows of one byte where they need two.
    Bytes oddDepth = TakeBytes(PictureOfPixels(1, {std::vector<uint32_t>(9, 1), std::vector<uint32_t>(9, 1)}));
    Bytes shortRows = oddDepth;
    Write16(oddDepth.data() + kDibBitCount, 7);
    Write32(shortRows.data() + kDibSizeImage, 2);
    for (const Bytes& dib : {oddDepth, shortRows}) {
        Surface blank(9, 2);
        EXPECT_EQ(DrawDib(blank, blank.Bounds(), 0, 0, dib.data(), nullptr), -1);
        EXPECT_EQ(Art(blank), Art(Surface(9, 2)));
    }
}

#if QB_GOLDEN_TESTS
// An 8-bit picture through a palette: plain, stretched, through an elliptical mask, and that
// masked picture hilited. Look at tests/golden/blit-pictures.png after a change.
TEST(Blit, PicturesGolden) {
    std::vector<uint32_t> palette(256);
    for (uint32_t i = 0; i < 256; ++i) palette[i] = (i << 16) | (255 - i) << 8 | (i * 4 & 255);
    std::vector<std::vector<uint32_t>> rows(30, std::vector<uint32_t>(40));
    for (size_t y = 0; y < rows.size(); ++y) {
        for (size_t x = 0; x < 40; ++x) rows[y][x] = (x / 4 * 24 + y * 2) & 255;
    }
    const Bytes image = TakeBytes(PictureOfPixels(8, rows));
    Surface s(200, 72);
    const Clip all = s.Bounds();
    DrawDib(s, all, 4, 4, image.data(), palette.data());
    StretchDib(s, all, {50, 4, 130, 64}, image.data(), {0, 0, 40, 30}, palette.data());
    const Surface picture = SurfaceFromDib(image.data(), palette.data());
    BitMask mask = MaskFromRegion(EllipseRegion({0, 0, 40, 30}));
    for (int32_t i = 0; i < 2; ++i) {
        mask.left = 140 + 12 * i;
        mask.top = 4 + 34 * i;
        FillPattern(s, all, mask.Bounds(), Pattern{{0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55}}, 0xC0C0C0, kWhite);
        MaskedCopy(s, all, mask.left, mask.top, picture, picture.Bounds(), mask);
        if (i == 1) BlitMask(s, all, mask, kWhite, kBlack, Rop::SrcInvert);
    }
    ExpectMatchesGolden(s, "blit-pictures");
}
#endif

}  // namespace
