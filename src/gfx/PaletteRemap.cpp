#include "gfx/PaletteRemap.h"

#include <algorithm>

#include "gfx/DibImage.h"

namespace {

constexpr uint32_t kReservedLow = 10;    // entries 0 to 9 are reserved
constexpr uint32_t kReservedHigh = 246;  // and so are 246 to 255

PaletteEntry ImageColor(const uint8_t* dib, uint32_t index) {
    if (index >= DibColorCount(dib)) return {};
    const uint8_t* c = DibColors(dib) + index * kDibColorSize;
    return {c[2], c[1], c[0], 0};
}

// The weighted distance of the reserved-colour search, in 32-bit unsigned arithmetic.
uint32_t WeightedDistance(const PaletteEntry& a, const PaletteEntry& b) {
    const auto square = [](int32_t d) { return static_cast<uint32_t>(d * d); };
    return 2 * square(a.blue - b.blue) + 4 * square(a.green - b.green) + 3 * square(a.red - b.red);
}

// Among `first` to `last` - 1, the entry nearest to `color`; the first of equals, and an exact
// match ends the search.
uint32_t NearestWeighted(const uint8_t* dib, const PaletteEntry& color, uint32_t first, uint32_t last) {
    uint32_t best = first;
    uint32_t bestDistance = UINT32_MAX;
    for (uint32_t i = first; i < last; ++i) {
        const uint32_t distance = WeightedDistance(ImageColor(dib, i), color);
        if (distance < bestDistance) {
            best = i;
            bestDistance = distance;
        }
        if (distance == 0) break;
    }
    return best;
}

}  // namespace

int32_t RemapImageToPalette(MemRef image, const Palette& palette) {
    MemRefLock lock(image);
    if (!lock || !IsDibLayoutValid(lock.data(), GetMemRefSize(image))) return -1;
    uint8_t* dib = lock.data();
    const int32_t depth = DibDepth(dib);
    if (depth != 4 && depth != 8) return -1;
    // A 4-bit image can only name the first 16 colours.
    const uint32_t targetCount = std::min(palette.count, depth == 4 ? 16u : kPaletteSize);

    int32_t match[kPaletteSize];
    std::fill(std::begin(match), std::end(match), -1);
    const auto mapped = [&](uint32_t index) {
        if (match[index] < 0) {
            const PaletteEntry c = ImageColor(dib, index);
            match[index] = static_cast<int32_t>(NearestColorIndex(palette.entries, targetCount, c.red, c.green, c.blue));
        }
        return static_cast<uint8_t>(match[index]);
    };
    const uint32_t rowBytes = DibImageRowBytes(dib);
    const uint32_t pixelBytes = (static_cast<uint32_t>(DibWidth(dib)) * static_cast<uint32_t>(depth) + 7) / 8;
    uint8_t* row = DibPixels(dib);
    for (int32_t y = 0; y < DibHeight(dib); ++y, row += rowBytes) {
        for (uint32_t x = 0; x < pixelBytes; ++x) {
            row[x] = depth == 8 ? mapped(row[x]) : static_cast<uint8_t>(mapped(row[x] >> 4) << 4 | mapped(row[x] & 15));
        }
    }

    uint8_t* colors = DibColors(dib);
    const uint32_t count = std::min(DibColorCount(dib), depth == 4 ? 16u : kPaletteSize);
    for (uint32_t i = 0; i < count; ++i) {
        const PaletteEntry& e = palette.entries[i];
        uint8_t* c = colors + i * kDibColorSize;
        c[0] = e.blue;
        c[1] = e.green;
        c[2] = e.red;
        c[3] = 0;
    }
    return 0;
}

int32_t MapReservedColors(MemRef image) {
    MemRefLock lock(image);
    if (!lock || !IsDibLayoutValid(lock.data(), GetMemRefSize(image))) return -1;
    uint8_t* dib = lock.data();
    if (DibDepth(dib) != 8) return -1;
    uint8_t map[kPaletteSize];
    for (uint32_t i = 0; i < kPaletteSize; ++i) map[i] = static_cast<uint8_t>(i);
    for (uint32_t i = kPaletteSize - 1; i >= kReservedHigh; --i) {
        map[i] = static_cast<uint8_t>(NearestWeighted(dib, ImageColor(dib, i), 0, kReservedHigh));
    }
    for (uint32_t i = 0; i < kReservedLow; ++i) {
        map[i] = static_cast<uint8_t>(NearestWeighted(dib, ImageColor(dib, i), kReservedLow, kReservedHigh));
    }
    uint8_t* px = DibPixels(dib);
    const uint32_t size = DibImageBytes(dib);
    for (uint32_t i = 0; i < size; ++i) px[i] = map[px[i]];
    return 0;
}
