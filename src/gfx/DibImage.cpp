#include "gfx/DibImage.h"

#include <algorithm>
#include <cstring>

#include "base/ByteOrder.h"

namespace {

uint32_t ColorsForDepth(int32_t depth) { return depth < 9 ? 1u << depth : 0u; }

MemRef NewImage(int32_t width, int32_t height, int32_t depth, uint32_t rowBytes) {
    if (width < 0 || height < 0 || width > kDibMaxSide || height > kDibMaxSide || !IsDibDepth(depth)) {
        return 0;
    }
    const uint64_t pixels = uint64_t{rowBytes} * static_cast<uint32_t>(height);
    const uint32_t colors = ColorsForDepth(depth);
    const uint64_t total = kDibHeaderSize + uint64_t{colors} * kDibColorSize + pixels + kDibSlackBytes;
    // The whole block, with the handle layer's own words, must stay addressable by 32 bits.
    if (total > UINT32_MAX / 2) return 0;
    const MemRef ref = NewMemRef(static_cast<uint32_t>(total));
    if (!ref) return 0;
    MemRefLock lock(ref);
    uint8_t* h = lock.data();
    Write32(h + kDibSize, kDibHeaderSize);
    Write32(h + kDibWidth, static_cast<uint32_t>(width));
    Write32(h + kDibHeight, static_cast<uint32_t>(height));
    Write16(h + kDibPlanes, 1);
    Write16(h + kDibBitCount, static_cast<uint16_t>(depth));
    Write32(h + kDibSizeImage, static_cast<uint32_t>(pixels));
    return ref;
}

// Copies an image into a new one of the other row layout.
MemRef Relayout(MemRef image, bool toDib) {
    MemRefLock source(image);
    if (!source || !IsDibLayoutValid(source.data(), GetMemRefSize(image))) return 0;
    const uint8_t* s = source.data();
    const int32_t width = DibWidth(s), height = DibHeight(s), depth = DibDepth(s);
    const uint32_t sourceRow = toDib ? StoredRowBytes(depth, width) : DibRowBytes(depth, width);
    if (uint64_t{sourceRow} * static_cast<uint32_t>(height) > DibImageBytes(s)) return 0;
    const MemRef result = toDib ? NewDibImage(width, height, depth) : NewStoredImage(width, height, depth);
    if (!result) return 0;
    MemRefLock target(result);
    uint8_t* t = target.data();
    const uint32_t targetRow = DibImageRowBytes(t);
    std::memcpy(DibColors(t), DibColors(s), std::min(DibColorCount(s), DibColorCount(t)) * kDibColorSize);
    const uint32_t copy = std::min(sourceRow, targetRow);
    const uint8_t* from = DibPixels(s);
    uint8_t* to = DibPixels(t);
    for (int32_t row = 0; row < height; ++row, from += sourceRow, to += targetRow) {
        std::memcpy(to, from, copy);
    }
    return result;
}

// Exchanges rows through one temporary row; with a table, every byte passes through it once, the
// middle row of an odd height included.
int32_t FlipRows(MemRef image, const uint8_t* table) {
    MemRefLock lock(image);
    if (!lock || !IsDibLayoutValid(lock.data(), GetMemRefSize(image))) return -1;
    uint8_t* p = lock.data();
    const int32_t height = DibHeight(p);
    const uint32_t rowBytes = DibImageRowBytes(p);
    if (height < 2 && !table) return 0;
    const MemRef tempRef = NewMemRef(rowBytes);
    if (!tempRef) return -1;
    MemRefLock temp(tempRef);
    uint8_t* t = temp.data();
    uint8_t* upper = DibPixels(p);
    uint8_t* lower = upper + uint64_t{rowBytes} * static_cast<uint32_t>(height > 0 ? height - 1 : 0);
    if (!table) {
        for (; upper < lower; upper += rowBytes, lower -= rowBytes) {
            std::memcpy(t, upper, rowBytes);
            std::memcpy(upper, lower, rowBytes);
            std::memcpy(lower, t, rowBytes);
        }
    } else {
        for (; height > 0 && upper <= lower; upper += rowBytes, lower -= rowBytes) {
            std::memcpy(t, upper, rowBytes);
            for (uint32_t i = 0; i < rowBytes; ++i) upper[i] = table[lower[i]];
            for (uint32_t i = 0; i < rowBytes; ++i) lower[i] = table[t[i]];
        }
    }
    FreeMemRef(tempRef);
    return 0;
}

}  // namespace

uint32_t DibRowBytes(int32_t depth, int32_t width) {
    return static_cast<uint32_t>((int64_t{depth} * width + 31) / 32 * 4);
}

uint32_t StoredRowBytes(int32_t depth, int32_t width) {
    return static_cast<uint32_t>((int64_t{width} + 15) / 16 * 2 * depth);
}

bool IsDibDepth(int32_t depth) {
    return depth == 1 || depth == 4 || depth == 8 || depth == 16 || depth == 24 || depth == 32;
}

MemRef NewDibImage(int32_t width, int32_t height, int32_t depth) {
    return NewImage(width, height, depth, IsDibDepth(depth) ? DibRowBytes(depth, width) : 0);
}

MemRef NewStoredImage(int32_t width, int32_t height, int32_t depth) {
    return NewImage(width, height, depth, IsDibDepth(depth) ? StoredRowBytes(depth, width) : 0);
}

MemRef StoredToDib(MemRef image) { return Relayout(image, true); }
MemRef DibToStored(MemRef image) { return Relayout(image, false); }

int32_t FlipDibRows(MemRef image) { return FlipRows(image, nullptr); }

int32_t FlipDibRowsMapped(MemRef image, const uint8_t* table) {
    {
        MemRefLock lock(image);
        if (!lock || !table || GetMemRefSize(image) < kDibHeaderSize || DibDepth(lock.data()) != 8) return -1;
    }
    return FlipRows(image, table);
}

int32_t SwapStoredPixelOrder(MemRef image) {
    MemRefLock lock(image);
    if (!lock || !IsDibLayoutValid(lock.data(), GetMemRefSize(image))) return -1;
    uint8_t* p = lock.data();
    const int32_t depth = DibDepth(p);
    if (depth != 16 && depth != 32) return 0;
    const int32_t width = DibWidth(p), height = DibHeight(p);
    const uint32_t rowBytes = DibImageRowBytes(p);
    uint8_t* row = DibPixels(p);
    for (int32_t y = 0; y < height; ++y, row += rowBytes) {
        uint8_t* px = row;
        if (depth == 16) {
            for (int32_t x = 0; x < width; ++x, px += 2) Swap16(px);
        } else {
            for (int32_t x = 0; x < width; ++x, px += 4) Swap32(px);
        }
    }
    return 0;
}

int32_t DibWidth(const uint8_t* dib) { return static_cast<int32_t>(Read32(dib + kDibWidth)); }
int32_t DibHeight(const uint8_t* dib) { return static_cast<int32_t>(Read32(dib + kDibHeight)); }
int32_t DibDepth(const uint8_t* dib) { return Read16(dib + kDibBitCount); }

uint32_t DibColorCount(const uint8_t* dib) {
    const uint32_t used = Read32(dib + kDibClrUsed);
    return used ? used : ColorsForDepth(DibDepth(dib));
}

uint32_t DibImageBytes(const uint8_t* dib) { return Read32(dib + kDibSizeImage); }

uint32_t DibImageRowBytes(const uint8_t* dib) {
    const int32_t height = DibHeight(dib);
    return height > 0 ? DibImageBytes(dib) / static_cast<uint32_t>(height) : 0;
}

uint8_t* DibColors(uint8_t* dib) { return dib + kDibHeaderSize; }
const uint8_t* DibColors(const uint8_t* dib) { return dib + kDibHeaderSize; }
uint8_t* DibPixels(uint8_t* dib) { return DibColors(dib) + DibColorCount(dib) * kDibColorSize; }
const uint8_t* DibPixels(const uint8_t* dib) { return DibColors(dib) + DibColorCount(dib) * kDibColorSize; }

bool IsDibLayoutValid(const uint8_t* dib, uint32_t blockSize) {
    if (!dib || blockSize < kDibHeaderSize || Read32(dib + kDibSize) != kDibHeaderSize) return false;
    const int32_t width = DibWidth(dib), height = DibHeight(dib);
    if (width < 0 || height < 0 || width > kDibMaxSide || height > kDibMaxSide) return false;
    if (!IsDibDepth(DibDepth(dib))) return false;
    const uint64_t rows = uint64_t{DibImageRowBytes(dib)} * static_cast<uint32_t>(height);
    if (height > 0 && rows != DibImageBytes(dib)) return false;
    if (rows < uint64_t{DibRowBytes(DibDepth(dib), width)} * static_cast<uint32_t>(height) &&
        rows < uint64_t{StoredRowBytes(DibDepth(dib), width)} * static_cast<uint32_t>(height)) {
        return false;
    }
    const uint64_t need = kDibHeaderSize + uint64_t{DibColorCount(dib)} * kDibColorSize + DibImageBytes(dib);
    return need <= blockSize;
}
