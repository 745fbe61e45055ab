// DibImage: the two row layouts, the block the constructor makes, and the mapped flip.
#include <gtest/gtest.h>

#include "support/PictureMaker.h"

namespace {

TEST(DibImage, RowBytesOfBothLayouts) {
    struct Case { int32_t depth, width; uint32_t dib, stored; };
    const Case cases[] = {{8, 17, 20, 32}, {8, 16, 16, 16}, {1, 16, 4, 2},     {1, 17, 4, 4},   {1, 33, 8, 6},
                          {4, 16, 8, 8},   {16, 15, 32, 32}, {16, 17, 36, 64}, {24, 5, 16, 48}, {32, 511, 2044, 2048}};
    for (const Case& c : cases) {
        EXPECT_EQ(DibRowBytes(c.depth, c.width), c.dib) << c.depth << "x" << c.width;
        EXPECT_EQ(StoredRowBytes(c.depth, c.width), c.stored) << c.depth << "x" << c.width;
    }
    // Header, colour table, pixels and 4 more bytes.
    const MemRef image = NewStoredImage(17, 3, 8);
    EXPECT_EQ(GetMemRefSize(image), 40u + 256 * 4 + 32 * 3 + 4);
    FreeMemRef(image);
    EXPECT_EQ(NewDibImage(4, 4, 7), 0);
}

TEST(DibImage, MappedFlipPassesEveryRowThroughTheTableOnce) {
    uint8_t plusOne[256];
    for (int i = 0; i < 256; ++i) plusOne[i] = static_cast<uint8_t>(i + 1);
    for (int32_t height : {1, 2, 3, 4, 5}) {
        const MemRef image = NewDibImage(4, height, 8);
        MemRefLock lock(image);
        for (int32_t y = 0; y < height; ++y) SetPixel(lock.data(), 3, y, static_cast<uint32_t>(10 * y));
        ASSERT_EQ(FlipDibRowsMapped(image, plusOne), 0);
        for (int32_t y = 0; y < height; ++y) {
            EXPECT_EQ(GetPixel(lock.data(), 3, y), static_cast<uint32_t>(10 * (height - 1 - y) + 1)) << height << "," << y;
        }
    }
}

}  // namespace
