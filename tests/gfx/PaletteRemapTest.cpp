// Re-indexing pictures into another palette and off the reserved entries.
#include <gtest/gtest.h>

#include <vector>

#include "gfx/PaletteRemap.h"
#include "support/PictureMaker.h"

namespace {

void SetColor(MemRef image, uint32_t index, uint32_t rgb) {
    Write32(DibColors(LockMemRef(image)) + index * kDibColorSize, rgb);
    UnlockMemRef(image);
}

TEST(PaletteRemap, IndicesTakeTheNearestColourOfTheNewPalette) {
    PaletteRef palette = NewPalette(20);
    palette->entries[0] = {255, 0, 0, 0};      // red
    palette->entries[1] = {255, 255, 255, 0};  // white
    palette->entries[2] = {0, 0, 0, 0};        // black, and 4 to 16 are black too
    palette->entries[3] = {0, 0, 255, 0};      // blue
    palette->entries[5] = {0, 200, 0, 0};
    palette->entries[17] = {0, 255, 0, 0};     // green: out of a 4-bit image's reach
    // rows: whole display rows, pad bytes included
    struct Case { const char* name; int32_t width, depth; std::vector<Bytes> rows; Bytes expected; };
    const Case cases[] = {
        // 0 white -> 1, 1 near-black -> 2 (the first of the blacks), 2 dark red -> 0, 7 dark blue
        // -> 3, 5 black -> 2. The pad bytes behind the five pixels are no pixels and stay 0.
        {"8 bits", 5, 8, {{0, 1, 2, 7, 1, 0, 0, 0}, {2, 2, 0, 5, 7, 0, 0, 0}}, {1, 2, 0, 3, 2, 0, 0, 0, 0, 0, 1, 2, 3, 0, 0, 0}},
        // 1 green -> 5, the nearest of the first 16; each nibble on its own.
        {"4 bits", 3, 4, {{0x12, 0x10, 0, 0}}, {0x50, 0x51, 0, 0}},
    };
    for (const Case& c : cases) {
        const MemRef image = ImageOfRows(c.width, c.depth, c.rows);
        SetColor(image, 0, 0xFAFAFA);
        SetColor(image, 1, c.depth == 4 ? 0x00FF00 : 0x0A0A0A);
        SetColor(image, 2, 0xC80000);
        SetColor(image, 7, 0x0000BE);
        ASSERT_EQ(RemapImageToPalette(image, *palette), 0) << c.name;
        const Bytes back = BlockBytes(image);
        EXPECT_EQ(PixelBytes(image), c.expected) << c.name;
        // The image now has the palette's colours, as many as its depth holds.
        const uint8_t* colors = DibColors(back.data());
        EXPECT_EQ(Bytes(colors, colors + 8), (Bytes{0, 0, 255, 0, 255, 255, 255, 0})) << c.name;
        EXPECT_EQ(Bytes(colors + 5 * 4, colors + 6 * 4), (Bytes{0, 200, 0, 0})) << c.name;
        if (c.depth == 8) {
            EXPECT_EQ(Bytes(colors + 17 * 4, colors + 18 * 4), (Bytes{0, 255, 0, 0}));
        }
        FreeMemRef(image);
    }
    const MemRef deep = MakePicture(4, 4, 16, Fill::Noise);
    const Bytes before = BlockBytes(deep);
    EXPECT_EQ(RemapImageToPalette(deep, *palette), -1);
    EXPECT_EQ(BlockBytes(deep), before);
    FreeMemRef(deep);
}

TEST(PaletteRemap, ReservedEntriesGoToTheNearestByTheEyesWeights) {
    // Everything magenta but the colours under test, so that only they can be nearest.
    const MemRef image = ImageOfRows(6, 8, {{250, 249, 5, 255, 100, 0, 0, 0}, {246, 9, 10, 245, 0, 0, 0, 0}});
    for (uint32_t i = 0; i < 256; ++i) SetColor(image, i, 0xFF00FF);
    const std::pair<uint32_t, uint32_t> colors[] = {
        {250, 0x64C864}, {30, 0x6EC864}, {31, 0x64C870},                 // red 3 * 10^2 > blue 2 * 12^2
        {249, 0x32DC32}, {60, 0x32DC3C}, {61, 0x32DC28},                 // equal: the lower wins
        {5, 0x14B414},   {2, 0x14B414},  {40, 0x14B414}, {41, 0x14B414},
        {255, 0x009600}, {3, 0x009600},                                  // the high ones search 0 to 245
        {246, 0x006400}, {245, 0x006401}, {9, 0x005A00},                 // 245 at 4 * 10^2 + 2 * 1^2
    };
    for (const auto& [index, rgb] : colors) SetColor(image, index, rgb);
    ASSERT_EQ(MapReservedColors(image), 0);
    const Bytes back = BlockBytes(image);
    const uint8_t* px = DibPixels(back.data());
    // 0, magenta, goes to 10, the first magenta of 10 to 245; so do the pad bytes, which are passed
    // through the map with the rest.
    EXPECT_EQ(Bytes(px, px + 8), (Bytes{31, 60, 40, 3, 100, 10, 10, 10}));
    EXPECT_EQ(Bytes(px + 8, px + 16), (Bytes{245, 245, 10, 245, 10, 10, 10, 10}));
    const uint8_t* table = DibColors(back.data());
    EXPECT_EQ(Bytes(table + 250 * 4, table + 251 * 4), (Bytes{100, 200, 100, 0})) << "the colours stay";
    FreeMemRef(image);

    const MemRef four = MakePicture(4, 4, 4, Fill::Noise);
    EXPECT_EQ(MapReservedColors(four), -1);
    FreeMemRef(four);
}

}  // namespace
