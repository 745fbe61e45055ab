// RunPackedPixels against libtiff's PackBits, the same run code: our stream wrapped as a TIFF strip
// must decode in libtiff to the picture's stored rows, and the strip libtiff packs must decode in
// our reader to the picture. Rows are multiples of 16 pixels, where stored and display rows agree.
#if QB_WITH_TIFF

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pictures/PackedPixels.h"
#include "support/MemoryTiff.h"
#include "support/PictureMaker.h"

namespace {

using Bytes = std::vector<uint8_t>;

struct Case {
    const char* name;
    int32_t width, height, depth;
    Fill fill;
    bool striped = false;  // StripedPicture instead of the fill
};

// Pictures that give long repeats across rows, only literals, and everything between; widths whose
// rows end inside a repeat of 128 and inside a literal of 128.
const Case kCases[] = {
    {"one colour", 64, 9, 8, Fill::Single},      {"noise", 48, 7, 8, Fill::Noise},
    {"gradient", 160, 12, 8, Fill::Gradient},   {"deep noise", 32, 5, 32, Fill::Noise},
    {"deep gradient", 96, 6, 32, Fill::Gradient}, {"deep one colour", 80, 4, 32, Fill::Single},
    {"word pixels", 144, 5, 16, Fill::Gradient},  {"stripes", 1024, 3, 8, Fill::Single, true},
};

// Stripes of 130 equal bytes and 130 different ones, so that runs and literals both pass their
// longest count.
MemRef StripedPicture(int32_t width, int32_t height) {
    const MemRef image = NewDibImage(width, height, 8);
    MemRefLock lock(image);
    uint8_t* px = DibPixels(lock.data());
    for (uint32_t i = 0; i < DibImageBytes(lock.data()); ++i) px[i] = i / 130 % 2 ? static_cast<uint8_t>(i * 7) : 9;
    return image;
}

MemRef PictureOf(const Case& c) {
    return c.striped ? StripedPicture(c.width, c.height) : MakePicture(c.width, c.height, c.depth, c.fill, 3);
}

TEST(PackBits, OurRunsDecodeInLibtiff) {
    TIFFSetWarningHandler(nullptr);
    for (const Case& c : kCases) {
        const MemRef image = PictureOf(c);
        const Bytes runs = TakeBytes(EncodeRunPacked(image));
        MemoryTiff tiff(static_cast<uint32_t>(c.width), static_cast<uint32_t>(c.height), static_cast<uint16_t>(c.depth / 8));
        ASSERT_TRUE(tiff.WriteRawPackBits(runs.data(), static_cast<uint32_t>(runs.size()))) << c.name;
        ASSERT_TRUE(tiff.OpenForReading()) << c.name;
        Bytes decoded(tiff.StripBytes());
        ASSERT_TRUE(tiff.DecodeStrip(decoded.data())) << c.name;
        EXPECT_EQ(decoded, PixelBytes(image)) << c.name;
        FreeMemRef(image);
    }
}

TEST(PackBits, LibtiffStripsDecodeInOurReader) {
    for (const Case& c : kCases) {
        const MemRef image = PictureOf(c);
        const Bytes pixels = PixelBytes(image);
        MemoryTiff tiff(static_cast<uint32_t>(c.width), static_cast<uint32_t>(c.height), static_cast<uint16_t>(c.depth / 8));
        ASSERT_TRUE(tiff.WritePackBits(pixels.data())) << c.name;
        ASSERT_TRUE(tiff.OpenForReading()) << c.name;
        const Bytes strip = tiff.RawStrip();
        ASSERT_FALSE(strip.empty()) << c.name;
        const MemRef back = NewDibImage(c.width, c.height, c.depth);
        EXPECT_EQ(DecodeRunPacked(back, strip.data(), static_cast<uint32_t>(strip.size())), 0) << c.name;
        EXPECT_EQ(PixelBytes(back), pixels) << c.name;
        for (MemRef r : {image, back}) FreeMemRef(r);
    }
}

}  // namespace

#endif  // QB_WITH_TIFF
