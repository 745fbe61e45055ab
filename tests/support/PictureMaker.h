// Pictures for the imaging tests, set pixel by pixel so that row pads stay 0.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "base/ByteOrder.h"
#include "gfx/DibImage.h"
#include "support/StackBytes.h"

enum class Fill { Noise, Single, Gradient };

// Pixel `x` of memory row `y`.
inline void SetPixel(uint8_t* dib, int32_t x, int32_t y, uint32_t v) {
    uint8_t* row = DibPixels(dib) + DibImageRowBytes(dib) * static_cast<uint32_t>(y);
    const int32_t depth = DibDepth(dib);
    if (depth == 1) row[x / 8] = static_cast<uint8_t>((row[x / 8] & ~(0x80 >> x % 8)) | (v & 1) << (7 - x % 8));
    if (depth == 8) row[x] = static_cast<uint8_t>(v);
    if (depth == 16) Write16(row + 2 * x, static_cast<uint16_t>(v));
    if (depth == 32) Write32(row + 4 * x, v);
}

inline uint32_t GetPixel(const uint8_t* dib, int32_t x, int32_t y) {
    const uint8_t* row = DibPixels(dib) + DibImageRowBytes(dib) * static_cast<uint32_t>(y);
    const int32_t depth = DibDepth(dib);
    return depth == 1 ? row[x / 8] >> (7 - x % 8) & 1 : depth == 8 ? row[x] : depth == 16 ? Read16(row + 2 * x) : Read32(row + 4 * x);
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
