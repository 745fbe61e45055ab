// Pictures for the imaging tests, set pixel by pixel so that row pads stay 0.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "base/ByteOrder.h"
#include "gfx/DibImage.h"
#include "support/StackBytes.h"

enum class Fill { Noise, Single, Gradient };

// Pixel `x` of memory row `y`; 24-bit pixels are blue, green, red in memory.
inline void SetPixel(uint8_t* dib, int32_t x, int32_t y, uint32_t v) {
    uint8_t* row = DibPixels(dib) + DibImageRowBytes(dib) * static_cast<uint32_t>(y);
    const int32_t depth = DibDepth(dib);
    if (depth == 1) row[x / 8] = static_cast<uint8_t>((row[x / 8] & ~(0x80 >> x % 8)) | (v & 1) << (7 - x % 8));
    if (depth == 4) row[x / 2] = static_cast<uint8_t>((row[x / 2] & (x % 2 ? 0xF0 : 0x0F)) | (v & 15) << (x % 2 ? 0 : 4));
    if (depth == 8) row[x] = static_cast<uint8_t>(v);
    if (depth == 16) Write16(row + 2 * x, static_cast<uint16_t>(v));
    if (depth == 24) for (int k = 0; k < 3; ++k) row[3 * x + k] = static_cast<uint8_t>(v >> 8 * k);
    if (depth == 32) Write32(row + 4 * x, v);
}

inline uint32_t GetPixel(const uint8_t* dib, int32_t x, int32_t y) {
    const uint8_t* row = DibPixels(dib) + DibImageRowBytes(dib) * static_cast<uint32_t>(y);
    switch (DibDepth(dib)) {
    case 1: return row[x / 8] >> (7 - x % 8) & 1;
    case 4: return row[x / 2] >> (x % 2 ? 0 : 4) & 15;
    case 8: return row[x];
    case 16: return Read16(row + 2 * x);
    case 24: return uint32_t{Read16(row + 3 * x)} | uint32_t{row[3 * x + 2]} << 16;
    default: return Read32(row + 4 * x);
    }
}

// A display image; 32-bit pixels keep their fourth byte 0, as the working form has it.
inline MemRef MakePicture(int32_t width, int32_t height, int32_t depth, Fill fill, uint32_t seed = 1) {
    const MemRef ref = NewDibImage(width, height, depth);
    MemRefLock lock(ref);
    uint32_t state = seed * 2654435761u + 1;
    const uint32_t mask = depth == 32 ? 0xFFFFFFu : depth == 16 ? 0xFFFFu : (1u << depth) - 1;
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            state ^= state << 13;
            state ^= state >> 17;
            state ^= state << 5;
            const uint32_t v = fill == Fill::Noise ? state : fill == Fill::Single ? seed : (x / 3 + y * 5) * 0x010203u;
            SetPixel(lock.data(), x, y, v & mask);
        }
    }
    return ref;
}

// A display image from pixel values, top row first as it shows, and the first colours of its table.
inline MemRef PictureOfPixels(int32_t depth, const std::vector<std::vector<uint32_t>>& rows,
                              const std::vector<uint32_t>& colors = {}) {
    const auto height = static_cast<int32_t>(rows.size());
    const MemRef image = NewDibImage(static_cast<int32_t>(rows[0].size()), height, depth);
    MemRefLock lock(image);
    for (size_t i = 0; i < colors.size(); ++i) Write32(DibColors(lock.data()) + i * kDibColorSize, colors[i]);
    for (int32_t y = 0; y < height; ++y) {
        const auto& row = rows[static_cast<size_t>(y)];
        for (size_t x = 0; x < row.size(); ++x) SetPixel(lock.data(), static_cast<int32_t>(x), height - 1 - y, row[x]);
    }
    return image;
}

inline std::vector<uint8_t> PixelBytes(MemRef image) {
    MemRefLock lock(image);
    const uint8_t* px = DibPixels(lock.data());
    return std::vector<uint8_t>(px, px + DibImageBytes(lock.data()));
}

// A picture of `depth` bits whose memory rows, top row first, begin with the given bytes.
inline MemRef ImageOfRows(int32_t width, int32_t depth, const std::vector<Bytes>& rows) {
    const MemRef image = NewDibImage(width, static_cast<int32_t>(rows.size()), depth);
    MemRefLock lock(image);
    for (size_t y = 0; y < rows.size(); ++y) {
        std::copy(rows[y].begin(), rows[y].end(), DibPixels(lock.data()) + DibImageRowBytes(lock.data()) * y);
    }
    return image;
}
