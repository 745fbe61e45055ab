// PixPak records: the header on disk, round trips, the byte order of deep pixels, the refusals.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "pictures/Lzrw.h"
#include "pictures/PackedPixels.h"
#include "pictures/PixPak.h"
#include "platform/headless/HeadlessHost.h"
#include "support/PictureMaker.h"

namespace {

Bytes Encode(MemRef picture, uint16_t type) {
    OffscreenImage image;
    image.bitmap = picture;
    MemRef record = 0;
    uint32_t size = 0;
    EXPECT_EQ(EncodePixPak(image, type, &record, &size), 0);
    return TakeBytes(record);
}

TEST(PixPak, HeaderIsBigEndianOnDisk) {
    const MemRef picture = MakePicture(33, 7, 8, Fill::Gradient);
    const Bytes r = Encode(picture, kPackTypeRows);
    ASSERT_GT(r.size(), kPixPakHeadSize + 8);
    // Magic, size, version, width, height, depth, 0, row bytes, PackType, palette and pixel sizes.
    EXPECT_EQ(Bytes(r.begin(), r.begin() + 34),
              (Bytes{'P', 'P', 'a', 'k', 0, 0, static_cast<uint8_t>(r.size() >> 8), static_cast<uint8_t>(r.size()), 0, 100,
                     0, 33, 0, 7, 0, 8, 0, 0, 0, 0, 0, 0, 0, 36, 0, 4, 0, 0, 0x08, 0x08, 0, 0, r[32], r[33]}));
    EXPECT_EQ(ReadBE32(r.data() + 30), r.size() - kPixPakHeadSize - 8 - 256 * 8);
    EXPECT_EQ(ReadBE16(r.data() + kPixPakHeadSize + 6), 255) << "a 256-entry ColorTable";
    FreeMemRef(picture);
}

// Widths about a stored row's 16 pixels and a long row; each fill makes its own mix of runs,
// copies and literals.
TEST(PixPak, FramesRoundTripAtEveryDepthAndPacking) {
    for (uint16_t type : {kPackTypeRows, kPackTypeRuns}) {
        for (int32_t depth : {1, 8, 16, 32}) {
            for (int32_t width : {1, 15, 16, 17, 33, 511}) {
                // Run-packed 1-bit rows narrower than their display rows run on: PackedPixelsTest.
                if (type == kPackTypeRuns && StoredRowBytes(depth, width) < DibRowBytes(depth, width)) continue;
                for (Fill fill : {Fill::Noise, Fill::Single, Fill::Gradient}) {
                    const MemRef picture = MakePicture(width, 5, depth, fill, 9);
                    // The colours an offscreen image of the depth has: black and white, or a palette.
                    uint8_t* dib = LockMemRef(picture);
                    for (uint32_t i = 0; i < DibColorCount(dib); ++i)
                        Write32(DibColors(dib) + 4 * i, depth == 1 ? i * 0xFFFFFFu : (i * 0x010307u) & 0xFFFFFFu);
                    UnlockMemRef(picture);
                    OffscreenImage decoded;
                    const Bytes record = Encode(picture, type);
                    ASSERT_EQ(DecodePixPak(record.data(), static_cast<uint32_t>(record.size()), &decoded), 0);
                    EXPECT_EQ(decoded.depth, depth);
                    EXPECT_EQ(BlockBytes(decoded.bitmap), BlockBytes(picture)) << type << ": " << depth << " bits, width " << width;
                    FreeOffscreenImage(&decoded);
                    FreeMemRef(picture);
                }
            }
        }
    }
}

TEST(PixPak, DeepPixelsAreStoredHighByteFirst) {
    const std::tuple<int32_t, uint32_t, Bytes> cases[] = {{16, 0x7C1F, {0x7C, 0x1F}}, {32, 0xA1B2C3, {0, 0xA1, 0xB2, 0xC3}}};
    for (const auto& [depth, pixel, stored] : cases) {
        const MemRef picture = NewDibImage(1, 2, depth);
        SetPixel(LockMemRef(picture), 0, 1, pixel);  // the top row, packed first
        UnlockMemRef(picture);
        const Bytes r = Encode(picture, kPackTypeRows);
        Bytes row(StoredRowBytes(depth, 1));
        uint32_t made = 0;
        ASSERT_EQ(LzrwDecompress(r.data() + kPixPakHeadSize, ReadBE16(r.data() + kPixPakHeadSize + 2), row.data(),
                                 static_cast<uint32_t>(row.size()), &made), 0);
        EXPECT_EQ(Bytes(row.begin(), row.begin() + static_cast<ptrdiff_t>(stored.size())), stored) << depth;
        FreeMemRef(picture);
    }
}

TEST(PixPak, RefusesWrongSizesDamageAndUnknownPackings) {
    ResetHeadlessState();
    const MemRef picture = MakePicture(20, 6, 8, Fill::Gradient);
    const Bytes good = Encode(picture, kPackTypeRows);
    const auto size = static_cast<uint32_t>(good.size());
    struct Case { const char* name; uint32_t at, value, expectedSize; int32_t result; };
    const Case cases[] = {
        {"size other than expected", 0, 0, size + 2, kPixPakWrongSize},
        {"palette beyond the record", kPixPakPaletteSize, size, size, -1},
        {"pixels cut short", kPixPakPixelSize, ReadBE32(good.data() + kPixPakPixelSize) - 5, size, -1},
        {"width beyond the pixels", kPixPakWidth - 2, 400, size, -1},
        {"unknown pack type", kPixPakPackType - 2, 5, size, -1},
    };
    for (const Case& c : cases) {
        Bytes r = good;
        if (c.at) WriteBE32(r.data() + c.at, c.value);
        OffscreenImage image;
        EXPECT_EQ(DecodePixPak(r.data(), c.expectedSize, &image), c.result) << c.name;
        EXPECT_EQ(image.bitmap, 0) << c.name;
    }
    // Into an existing image: an unknown packing shows its message box and leaves the pixels.
    Bytes r = good;
    WriteBE16(r.data() + kPixPakPackType, 5);
    OffscreenImage image;
    ASSERT_EQ(NewOffscreenImage(&image, 20, 6, 8), 0);
    EXPECT_EQ(DecodePixPakInto(&image, r.data(), size), -1);
    EXPECT_EQ(PixelBytes(image.bitmap), Bytes(20 * 6, 0));
    const auto& boxes = GetHeadlessState().messageBoxesShown;
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[1].title + "/" + boxes[1].text, "PixPak_Decompress/Unknown PixPak_Decompress type");
    EXPECT_EQ(DecodePixPakInto(&image, good.data(), size), 0);
    EXPECT_EQ(PixelBytes(image.bitmap), PixelBytes(picture));
    FreeOffscreenImage(&image);
    FreeMemRef(picture);
}

}  // namespace
