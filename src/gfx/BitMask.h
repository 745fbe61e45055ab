// 1-bit masks: which pixels of a picture belong to its shape. Hit tests of picture buttons and
// transparent graphics, masked copies and the pattern transitions all read them.
//
// A set bit (1) is in the mask. Rows run top-down, (width + 31) / 32 * 4 bytes each, the leftmost
// pixel in the high bit of the first byte: the row layout of a 1-bit display image, so that rows
// copy across unchanged. Bits past the width stay 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "gfx/Surface.h"
#include "memory/MemRef.h"

class Region;

struct BitMask {
    int32_t left = 0, top = 0;  // where bit (0, 0) stands on the surface it is used with
    int32_t width = 0, height = 0;
    int32_t stride = 0;  // bytes per row
    std::vector<uint8_t> bits;

    BitMask() = default;
    // A mask of the given size at (0, 0), all clear or all set; 0 by 0 for a side out of range.
    BitMask(int32_t w, int32_t h, bool set = false);

    Rect Bounds() const { return {left, top, left + width, top + height}; }
    uint8_t* Row(int32_t y) {
        return bits.data() + static_cast<size_t>(y) * static_cast<size_t>(stride);
    }
    const uint8_t* Row(int32_t y) const {
        return bits.data() + static_cast<size_t>(y) * static_cast<size_t>(stride);
    }
    // Bit (x, y) of the mask itself, 0 <= x < width and 0 <= y < height.
    bool Get(int32_t x, int32_t y) const { return Row(y)[x >> 3] >> (7 - (x & 7)) & 1; }
    void Set(int32_t x, int32_t y, bool on);
    // Whether the pixel (x, y) of the surface is in the mask where it stands; false outside it.
    bool Contains(int32_t x, int32_t y) const;
};

inline constexpr int32_t MaskRowBytes(int32_t width) {
    return (width + 31) / 32 * 4;
}

// A mask from a 1-bit display image: a pixel of colour index 1 is set, whatever colour the table
// gives it; the image's bottom-up rows come out top-down. An empty mask for other depths.
BitMask MaskFromDib(const uint8_t* dib);
BitMask MaskFromDibImage(MemRef image);  // checks the block first
// Every bit inside the width turned over.
void InvertMask(BitMask& mask);
// The region's pixels as set bits, standing at the region's bounds.
BitMask MaskFromRegion(const Region& region);
