// Format 3 card pictures: round trips at every depth, the description and quality, damaged streams.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "memory/GlobalBlock.h"
#include "pictures/Background.h"
#include "pictures/JpegBackground.h"
#include "stack/CardRecord.h"
#include "support/PictureMaker.h"
#include "support/StackBytes.h"

namespace {

using Rgb = std::array<int, 3>;

// A smooth picture with different shapes in red, green and blue, so that swapped channels or
// flipped rows show as large errors while JPEG's own loss stays small.
Rgb Photo(int32_t x, int32_t y) {
    return {static_cast<int>(128 + 100 * std::sin(x / 23.0) * std::cos(y / 31.0)),
            static_cast<int>(40 + y * 170 / 120 + x % 7), static_cast<int>(200 - x * 150 / 160)};
}

// A display image of the picture (memory rows bottom-up); 8 bits through a 6-6-6 colour cube.
MemRef MakePhoto(int32_t width, int32_t height, int32_t depth) {
    const MemRef ref = NewDibImage(width, height, depth);
    MemRefLock lock(ref);
    uint8_t* dib = lock.data();
    for (uint32_t i = 0; i < DibColorCount(dib); ++i)
        Write32(DibColors(dib) + 4 * i, i / 36 % 6 * 0x330000 + i / 6 % 6 * 0x3300 + i % 6 * 0x33);
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const Rgb p = Photo(x, height - 1 - y);
            const uint32_t r = static_cast<uint32_t>(p[0]), g = static_cast<uint32_t>(p[1]), b = static_cast<uint32_t>(p[2]);
            const uint32_t cube = (r + 25) / 51 * 36 + (g + 25) / 51 * 6 + (b + 25) / 51;
            SetPixel(dib, x, y, depth == 8 ? cube : depth == 16 ? (r >> 3) << 10 | (g >> 3) << 5 | b >> 3 : r << 16 | g << 8 | b);
        }
    }
    return ref;
}

// The colour of pixel (x, y) counted from the top of a display image with bottom-up rows.
Rgb ColorAt(const uint8_t* dib, int32_t x, int32_t y) {
    const uint32_t v = GetPixel(dib, x, DibHeight(dib) - 1 - y);
    const int32_t depth = DibDepth(dib);
    const uint32_t rgb = depth == 8    ? Read32(DibColors(dib) + 4 * v)
                         : depth == 16 ? (v >> 10 & 31) << 19 | (v >> 5 & 31) << 11 | (v & 31) << 3
                                       : v;
    return {static_cast<int>(rgb >> 16 & 255), static_cast<int>(rgb >> 8 & 255), static_cast<int>(rgb & 255)};
}

struct Difference { double mean = 0; int worst = 0; };  // per channel

Difference Compare(const uint8_t* a, const uint8_t* b) {
    Difference d;
    const int32_t width = DibWidth(a), height = DibHeight(a);
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const Rgb p = ColorAt(a, x, y), q = ColorAt(b, x, y);
            for (int c = 0; c < 3; ++c) {
                d.mean += std::abs(p[c] - q[c]);
                d.worst = std::max(d.worst, std::abs(p[c] - q[c]));
            }
        }
    }
    d.mean /= 3.0 * width * height;
    return d;
}

// A kind 1 card of the picture's size whose chunk is format 3 `data`.
MemRef JpegCard(MemRef data, int32_t width, int32_t height, int32_t depth) {
    Bytes record(kEmptyCardSize);
    Write16(record.data() + kCardId, 2);
    Write16(record.data() + kCardWidth, static_cast<uint16_t>(width));
    Write16(record.data() + kCardHeight, static_cast<uint16_t>(height));
    Write32(record.data() + kCardSize, kEmptyCardSize);
    const MemRef card = BlockOf(record);
    EXPECT_EQ(StoreBackground(card, data, 0, depth), 0);
    Write16(LockMemRef(card) + kCardHeadSize + kBgFormat, kBgFormatJpeg);
    UnlockMemRef(card);
    return card;
}

// The first luminance quantiser of the stream's first DQT segment.
int FirstQuantiser(const Bytes& stream) {
    for (size_t i = 0; i + 5 < stream.size(); ++i) {
        if (stream[i] == 0xFF && stream[i + 1] == 0xDB) return stream[i + 5];
    }
    return -1;
}

TEST(JpegBackground, PicturesRoundTripThroughACardAtEveryDepth) {
    // mean and worst: JPEG's loss at quality 50 on a smooth picture, plus the depth's own rounding
    struct Case { int32_t from, to; double mean; int worst; };
    // Each depth encoded and decoded once; 8 bits goes through 32 both ways.
    const Case cases[] = {{32, 32, 2.5, 24}, {24, 24, 2.5, 24}, {16, 16, 3.5, 32}, {8, 32, 6, 64}, {32, 8, 7, 72}};
    for (const Case& c : cases) {
        for (auto [width, height] : {std::pair{160, 120}, std::pair{37, 21}}) {
            const MemRef picture = MakePhoto(width, height, c.from);
            const MemRef data = EncodeJpegBackground(picture, kJpegBackgroundQuality);
            ASSERT_NE(data, 0);
            const MemRef card = JpegCard(data, width, height, c.from);
            MemRef back = 0;
            ASSERT_EQ(GetCardBackground(card, &back, c.to, true, true), kBackgroundJpeg);
            ASSERT_EQ(DecodeJpegBackground(card, &back, c.to, true), 0) << c.from << " to " << c.to;
            const Bytes a = BlockBytes(picture), b = BlockBytes(back);
            EXPECT_EQ((std::array{DibWidth(b.data()), DibHeight(b.data()), DibDepth(b.data())}), (std::array{width, height, c.to}));
            const Difference d = Compare(a.data(), b.data());
            EXPECT_LT(d.mean, c.mean) << c.from << " to " << c.to << ", " << width << "x" << height;
            EXPECT_LE(d.worst, c.worst) << c.from << " to " << c.to << ", " << width << "x" << height;
            if (c.to == 32) {
                const Bytes px = PixelBytes(back);
                for (size_t i = 3; i < px.size(); i += 4) ASSERT_EQ(px[i], 0) << "the fourth byte of a working pixel is 0";
            }
            for (MemRef r : {picture, data, card, back}) FreeMemRef(r);
        }
    }
}

TEST(JpegBackground, DataIsTheDescriptionAndABaselineStreamAtTheQuality) {
    const MemRef picture = MakePhoto(37, 21, 16);
    const Bytes data = TakeBytes(EncodeJpegBackground(picture, kJpegBackgroundQuality));
    ASSERT_GT(data.size(), kImageDescriptionSize + 4);
    // Size, "jpeg", width, height, the stored size 96 * 21 at 44, the depth 16 written as 24.
    EXPECT_EQ(ReadBE32(data.data()), 86u);
    EXPECT_EQ(std::string(data.begin() + 4, data.begin() + 8), "jpeg");
    EXPECT_EQ((std::array{ReadBE16(data.data() + 32), ReadBE16(data.data() + 34), ReadBE16(data.data() + 82)}),
              (std::array<uint16_t, 3>{37, 21, 24}));
    EXPECT_EQ(ReadBE32(data.data() + 44), 96u * 21);
    // The codec's name behind two zero bytes at 48, and no colour table (-1) at 84.
    EXPECT_EQ(std::string(data.begin() + 48, data.begin() + 63) + std::string(data.begin() + 84, data.begin() + 86),
              std::string("\0\0\x0CPhoto - JPEG\xFF\xFF", 17));
    const Bytes stream(data.begin() + kImageDescriptionSize, data.end());
    EXPECT_EQ((Bytes{stream[0], stream[1], stream[stream.size() - 2], stream[stream.size() - 1]}), (Bytes{0xFF, 0xD8, 0xFF, 0xD9}));
    // At quality 50 the quantisers are the standard tables unscaled: luminance starts at 16.
    EXPECT_EQ(FirstQuantiser(stream), 16);
    EXPECT_EQ(FirstQuantiser(TakeBytes(EncodeJpegBackground(picture, 75))), 8) << "scaled by half";
    EXPECT_EQ(EncodeJpegBackground(picture, 0), 0);
    FreeMemRef(picture);
}

TEST(JpegBackground, DamagedStreamsGiveNoPicture) {
    const MemRef picture = MakePhoto(64, 48, 32);
    const Bytes good = TakeBytes(EncodeJpegBackground(picture, kJpegBackgroundQuality));
    FreeMemRef(picture);
    size_t sof = 0, sos = 0;
    for (size_t i = kImageDescriptionSize; i + 1 < good.size(); ++i) {
        if (good[i] == 0xFF && good[i + 1] == 0xC0 && !sof) sof = i;
        if (good[i] == 0xFF && good[i + 1] == 0xDA && !sos) sos = i;
    }
    ASSERT_TRUE(sof && sos);
    const size_t scan = sos + 2 + ReadBE16(good.data() + sos + 2);
    const size_t middle = (scan + good.size()) / 2;
    struct Case { const char* name; Bytes data; int32_t result; };
    auto with = [&](size_t at, Bytes bytes) {
        Bytes b = good;
        std::copy(bytes.begin(), bytes.end(), b.begin() + static_cast<ptrdiff_t>(at));
        return b;
    };
    const Case cases[] = {
        {"the good stream", good, 0},
        {"cut in the middle of the scan", Bytes(good.begin(), good.begin() + static_cast<ptrdiff_t>(middle)), kBackgroundDamaged},
        {"a frame taller than the card", with(sof + 5, {0, 49}), kBackgroundDamaged},
        {"not a JPEG", with(kImageDescriptionSize, {'G', 'I', 'F', '8'}), kBackgroundDamaged},
        {"nothing behind the description", Bytes(good.begin(), good.begin() + kImageDescriptionSize), kBackgroundDamaged},
        {"a description longer than the chunk", with(0, {0, 1, 0, 0}), kBackgroundDamaged},
    };
    for (const Case& c : cases) {
        const MemRef data = BlockOf(c.data), card = JpegCard(data, 64, 48, 32);
        MemRef back = 77;
        EXPECT_EQ(DecodeJpegBackground(card, &back, 32, true), c.result) << c.name;
        EXPECT_EQ(back != 0, c.result == 0) << c.name;
        if (back) FreeMemRef(back);
        for (MemRef r : {data, card}) FreeMemRef(r);
    }

    // Depths the codec does not make, and memory that runs out.
    const MemRef data = BlockOf(good), card = JpegCard(data, 64, 48, 32);
    MemRef back = 77;
    EXPECT_EQ(DecodeJpegBackground(card, &back, 1, true), kJpegUnsupported);
    EXPECT_EQ(back, 0);
    SetGlobalAllocFailAfter(0);
    EXPECT_EQ(DecodeJpegBackground(card, &back, 32, true), kBackgroundNoMemory);
    SetGlobalAllocFailAfter(-1);
    EXPECT_EQ(back, 0);
    for (MemRef r : {data, card}) FreeMemRef(r);
}

}  // namespace
