// Button icons: the 'Icon' record is the image of an icon file, little-endian as it stands. Only
// its first picture is used: a bitmap head, the colour table, the colour rows and the rows of the
// 1-bit mask, both bottom-up. The header's height counts the two sets of rows together.
#include <cstddef>
#include <cstdint>

#include "base/ByteOrder.h"
#include "card/ButtonDraw.h"
#include "gfx/Palette.h"
#include "gfx/Region.h"

namespace {

constexpr uint32_t kIconFileType = 2;        // u16, 1 for an icon file
constexpr uint32_t kIconPictureOffset = 18;  // u32, of the first directory entry
constexpr uint32_t kIconFileHeadSize = 22;
constexpr uint32_t kBmpHeadLength = 0;
constexpr uint32_t kBmpWidth = 4;
constexpr uint32_t kBmpHeight = 8;
constexpr uint32_t kBmpBitCount = 14;
constexpr uint32_t kBmpCompression = 16;
constexpr uint32_t kBmpColorsUsed = 32;
constexpr uint32_t kBmpMinHeadLength = 40;

uint32_t RowBytes(int64_t width, int64_t bits) {
    return static_cast<uint32_t>((width * bits + 31) / 32 * 4);
}

// The parts of a picture that checks out: every row lies inside the record.
struct IconPicture {
    IconInfo info;
    const uint8_t* table = nullptr;
    uint32_t tableCount = 0;
    const uint8_t* colors = nullptr;  // bottom row first
    uint32_t colorStride = 0;
    const uint8_t* mask = nullptr;  // bottom row first
    uint32_t maskStride = 0;
    int32_t rows = 0;  // of the picture itself: half the header's height
};

bool ReadIcon(const uint8_t* record, uint32_t size, IconPicture* picture) {
    if (!record || size < kIconFileHeadSize || Read16(record + kIconFileType) != 1) return false;
    const uint32_t at = Read32(record + kIconPictureOffset);
    if (at > size || size - at < kBmpMinHeadLength) return false;
    const uint8_t* bmp = record + at;
    const uint32_t headLength = Read32(bmp + kBmpHeadLength);
    const int32_t width = static_cast<int32_t>(Read32(bmp + kBmpWidth));
    const int32_t height = static_cast<int32_t>(Read32(bmp + kBmpHeight));
    const uint16_t bits = Read16(bmp + kBmpBitCount);
    if (headLength < kBmpMinHeadLength || width <= 0 || height <= 0 || width > 0x7FFF ||
        height > 0x7FFF || Read32(bmp + kBmpCompression) != 0) {
        return false;
    }
    if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) return false;
    // A table of no stated size is full for the depth (none above 8 bits).
    const uint32_t used = Read32(bmp + kBmpColorsUsed);
    const uint32_t tableCount = used != 0 ? used : bits <= 8 ? 1u << bits : 0;
    if (tableCount > 256) return false;
    const int32_t rows = height / 2;
    const uint32_t colorStride = RowBytes(width, bits), maskStride = RowBytes(width, 1);
    const uint64_t need = uint64_t{headLength} + uint64_t{tableCount} * 4 +
                          (uint64_t{colorStride} + maskStride) * static_cast<uint64_t>(rows);
    if (need > size - at) return false;

    picture->info = {width, height, bits, true};
    picture->table = bmp + headLength;
    picture->tableCount = tableCount;
    picture->colors = picture->table + tableCount * 4;
    picture->colorStride = colorStride;
    picture->mask = picture->colors + static_cast<size_t>(colorStride) * static_cast<size_t>(rows);
    picture->maskStride = maskStride;
    picture->rows = rows;
    return true;
}

uint32_t TableColor(const uint8_t* entry) {
    return Rgb(entry[2], entry[1], entry[0]);
}

// The nearest entry by the sum of squared channel differences, the lowest index on a tie.
uint32_t NearestOf(const uint32_t* palette, uint32_t color) {
    uint32_t best = palette[0];
    int64_t bestDistance = INT64_MAX;
    for (uint32_t i = 0; i < kPaletteSize; ++i) {
        const int64_t dr = int64_t{RedOf(palette[i])} - RedOf(color);
        const int64_t dg = int64_t{GreenOf(palette[i])} - GreenOf(color);
        const int64_t db = int64_t{BlueOf(palette[i])} - BlueOf(color);
        const int64_t distance = dr * dr + dg * dg + db * db;
        if (distance < bestDistance) {
            bestDistance = distance;
            best = palette[i];
        }
    }
    return best;
}

}  // namespace

IconInfo ReadIconInfo(const uint8_t* record, uint32_t size) {
    IconPicture picture;
    return ReadIcon(record, size, &picture) ? picture.info : IconInfo{};
}

void DrawIcon(Surface& target, const Clip& clip, int32_t x, int32_t y, const uint8_t* record,
              uint32_t size, const uint32_t* palette) {
    IconPicture p;
    if (!ReadIcon(record, size, &p)) return;

    const uint32_t bits = static_cast<uint32_t>(p.info.depth);
    uint32_t colors[256] = {};  // black past the table's last entry
    if (bits <= 8) {
        const uint32_t count = p.tableCount < (1u << bits) ? p.tableCount : 1u << bits;
        bool hasBlack = false;
        for (uint32_t i = 0; i < count; ++i) {
            colors[i] = TableColor(p.table + i * 4);
            hasBlack = hasBlack || colors[i] == kBlack;
        }
        // A 4-bit picture with a pure black in a short table shows its stray values as the last.
        if (bits == 4 && hasBlack) {
            for (uint32_t i = count; i < 16; ++i) colors[i] = colors[count - 1];
        }
    }
    const auto colorAt = [&](const uint8_t* row, int32_t i) -> uint32_t {
        switch (bits) {
            case 1:
                return colors[row[i >> 3] >> (7 - (i & 7)) & 1];
            case 4:
                return colors[(i & 1) ? row[i >> 1] & 15 : row[i >> 1] >> 4];
            case 8:
                return colors[row[i]];
            case 16: {
                const uint16_t v = Read16(row + i * 2);
                const auto level = [](uint32_t five) {
                    return static_cast<uint8_t>(five << 3 | five >> 2);
                };
                return Rgb(level(v >> 10 & 31), level(v >> 5 & 31), level(v & 31));
            }
            default: {
                const uint8_t* px = row + static_cast<size_t>(i) * (bits / 8);
                return Rgb(px[2], px[1], px[0]);
            }
        }
    };
    // On an 8-bit display the icon can show only the stack's colours: each its nearest.
    const bool onPalette = palette && DisplayDepth() <= 8;
    uint32_t lastColor = 0, lastShown = onPalette ? NearestOf(palette, 0) : 0;
    const auto shown = [&](uint32_t color) {
        if (!onPalette) return color;
        if (color != lastColor) {
            lastColor = color;
            lastShown = NearestOf(palette, color);
        }
        return lastShown;
    };

    const Clip c = ClipTo(clip, target.Bounds());
    for (int32_t r = 0; r < p.rows; ++r) {
        const int32_t sourceRow = p.rows - 1 - r;
        const uint8_t* colorRow = p.colors + static_cast<size_t>(sourceRow) * p.colorStride;
        const uint8_t* maskRow = p.mask + static_cast<size_t>(sourceRow) * p.maskStride;
        ForEachClipSpan(c, y + r, x, x + p.info.width, [&](int32_t x0, int32_t x1) {
            uint32_t* out = target.Row(y + r);
            for (int32_t sx = x0; sx < x1; ++sx) {
                const int32_t i = sx - x;
                const uint32_t color = colorAt(colorRow, i);
                // A set mask bit keeps the screen, exclusive-ored with the colour: black leaves it.
                if (!(maskRow[i >> 3] >> (7 - (i & 7)) & 1)) {
                    out[sx] = shown(color);
                } else if (color != kBlack) {
                    out[sx] ^= shown(color);
                }
            }
        });
    }
}
