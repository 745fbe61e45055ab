#include "gfx/BitMask.h"

#include <algorithm>
#include <cstring>

#include "gfx/DibImage.h"
#include "gfx/Region.h"

namespace {

// The last byte of a row keeps only the bits inside the width.
uint8_t TailMask(int32_t width) {
    const int32_t used = width & 7;
    return used ? static_cast<uint8_t>(0xFF00 >> used) : 0xFF;
}

}  // namespace

BitMask::BitMask(int32_t w, int32_t h, bool set) {
    if (w <= 0 || h <= 0 || w > kDibMaxSide || h > kDibMaxSide) return;
    width = w;
    height = h;
    stride = MaskRowBytes(w);
    bits.assign(static_cast<size_t>(stride) * static_cast<size_t>(h), 0);
    if (set) InvertMask(*this);
}

void BitMask::Set(int32_t x, int32_t y, bool on) {
    uint8_t& byte = Row(y)[x >> 3];
    const uint8_t bit = static_cast<uint8_t>(0x80 >> (x & 7));
    byte = on ? static_cast<uint8_t>(byte | bit) : static_cast<uint8_t>(byte & ~bit);
}

bool BitMask::Contains(int32_t x, int32_t y) const {
    x -= left;
    y -= top;
    return x >= 0 && y >= 0 && x < width && y < height && Get(x, y);
}

BitMask MaskFromDib(const uint8_t* dib) {
    if (!dib || DibDepth(dib) != 1) return {};
    const int32_t width = DibWidth(dib), height = DibHeight(dib);
    const uint32_t rowBytes = DibImageRowBytes(dib);
    BitMask mask(width, height);
    if (mask.width == 0 || rowBytes < static_cast<uint32_t>(width + 7) / 8) return {};
    const size_t copy = std::min<size_t>(rowBytes, static_cast<size_t>(mask.stride));
    const uint8_t* pixels = DibPixels(dib);
    const uint8_t tail = TailMask(width);
    const size_t last = static_cast<size_t>(width - 1) / 8;
    for (int32_t y = 0; y < height; ++y) {
        uint8_t* row = mask.Row(y);
        std::memcpy(row, pixels + static_cast<size_t>(height - 1 - y) * rowBytes, copy);
        row[last] &= tail;
        std::memset(row + last + 1, 0, static_cast<size_t>(mask.stride) - last - 1);
    }
    return mask;
}

BitMask MaskFromDibImage(MemRef image) {
    MemRefLock lock(image);
    if (!lock || !IsDibLayoutValid(lock.data(), GetMemRefSize(image))) return {};
    return MaskFromDib(lock.data());
}

void InvertMask(BitMask& mask) {
    if (mask.width <= 0) return;
    const size_t last = static_cast<size_t>(mask.width - 1) / 8;
    const uint8_t tail = TailMask(mask.width);
    for (int32_t y = 0; y < mask.height; ++y) {
        uint8_t* row = mask.Row(y);
        for (size_t i = 0; i < last; ++i) row[i] = static_cast<uint8_t>(~row[i]);
        row[last] = static_cast<uint8_t>(~row[last] & tail);
    }
}

BitMask MaskFromRegion(const Region& region) {
    const Rect bounds = region.Bounds();
    BitMask mask(bounds.Width(), bounds.Height());
    if (mask.width == 0) return mask;
    mask.left = bounds.left;
    mask.top = bounds.top;
    for (const Rect& r : region.Rects()) {
        for (int32_t y = r.top; y < r.bottom; ++y) {
            for (int32_t x = r.left; x < r.right; ++x)
                mask.Set(x - bounds.left, y - bounds.top, true);
        }
    }
    return mask;
}
