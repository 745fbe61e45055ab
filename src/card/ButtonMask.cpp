// The mask of a picture button: a 24-byte head (width, height, and the two words the picture's size
// is given back from) and rows of bits, 32-bit aligned, the leftmost pixel in the high bit.
#include <cstring>

#include "base/ByteOrder.h"
#include "card/ButtonDraw.h"

namespace {
constexpr uint32_t kMaskHeadSize = 24;
constexpr uint32_t kMaskWidth = 0;
constexpr uint32_t kMaskHeight = 2;
constexpr uint32_t kMaskPictureWidth = 4;
constexpr uint32_t kMaskPictureHeight = 6;
}  // namespace

bool MakeMask(const uint8_t* source, uint32_t size, BitMask* mask, int32_t* width,
              int32_t* height) {
    if (!source || !mask || size < kMaskHeadSize) return false;
    const int32_t w = ReadS16(source + kMaskWidth);
    const int32_t h = ReadS16(source + kMaskHeight);
    if (w <= 0 || h <= 0) return false;
    const uint64_t stride = static_cast<uint64_t>(MaskRowBytes(w));
    if (stride * static_cast<uint64_t>(h) > size - kMaskHeadSize) return false;

    BitMask made(w, h);
    if (made.width != w || made.height != h) return false;
    // The source rows are copied to the mask's own row stride, and the bits past the width cleared.
    const uint8_t* row = source + kMaskHeadSize;
    const uint8_t lastByteBits = static_cast<uint8_t>(0xFF00 >> (((w - 1) & 7) + 1));
    const size_t usedBytes = static_cast<size_t>(w + 7) / 8;
    for (int32_t y = 0; y < h; ++y, row += stride) {
        uint8_t* out = made.Row(y);
        std::memcpy(out, row, usedBytes);
        out[usedBytes - 1] &= lastByteBits;
    }
    *mask = std::move(made);
    if (width) *width = ReadS16(source + kMaskPictureWidth);
    if (height) *height = ReadS16(source + kMaskPictureHeight);
    return true;
}
