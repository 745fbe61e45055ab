// The picture a pixel-decoder fuzz target decodes into, taken from the input's first four bytes:
// width 1 to 512, height 1 to 128, and a depth of 1, 4, 8, 16, 24 or 32. The rest of the input is
// the packed data. The image's slack bytes behind the pixels are set to a mark that a decoder must
// leave alone: they are inside the block, where AddressSanitizer cannot see them.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "gfx/DibImage.h"
#include "memory/MemRef.h"

struct FuzzImage {
    MemRef image = 0;
    const uint8_t* data = nullptr;
    uint32_t length = 0;
};

inline constexpr uint8_t kSlackMark = 0xA5;

[[noreturn]] inline void FuzzBroken(const char* target, const char* what) {
    std::fprintf(stderr, "%s: %s\n", target, what);
    std::fflush(stderr);
    std::abort();
}

inline bool MakeFuzzImage(const uint8_t* data, size_t size, FuzzImage* out) {
    static const bool ready = InitMemRefs();
    if (!ready || size < 4 || size > (1u << 20)) return false;
    static constexpr int32_t kDepths[] = {1, 4, 8, 16, 24, 32};
    const int32_t width = (data[0] | (data[1] & 1) << 8) + 1;
    const int32_t height = (data[2] & 127) + 1;
    const int32_t depth = kDepths[data[3] % 6];
    out->image = NewDibImage(width, height, depth);
    if (!out->image) return false;
    MemRefLock lock(out->image);
    std::memset(DibPixels(lock.data()) + DibImageBytes(lock.data()), kSlackMark, kDibSlackBytes);
    out->data = data + 4;
    out->length = static_cast<uint32_t>(size - 4);
    return true;
}

inline bool SlackIntact(MemRef image) {
    MemRefLock lock(image);
    const uint8_t* slack = DibPixels(lock.data()) + DibImageBytes(lock.data());
    for (uint32_t i = 0; i < kDibSlackBytes; ++i) {
        if (slack[i] != kSlackMark) return false;
    }
    return true;
}

// An empty picture of the same shape.
inline MemRef SameShape(MemRef image) {
    MemRefLock lock(image);
    return NewDibImage(DibWidth(lock.data()), DibHeight(lock.data()), DibDepth(lock.data()));
}

// Whether every stored row holds a whole display row, so that packing loses nothing.
inline bool StoredRowsHoldDisplayRows(MemRef image) {
    MemRefLock lock(image);
    const int32_t width = DibWidth(lock.data()), depth = DibDepth(lock.data());
    return StoredRowBytes(depth, width) >= DibRowBytes(depth, width);
}

inline bool SamePixels(MemRef a, MemRef b) {
    MemRefLock la(a), lb(b);
    return DibImageBytes(la.data()) == DibImageBytes(lb.data()) &&
           std::memcmp(DibPixels(la.data()), DibPixels(lb.data()), DibImageBytes(la.data())) == 0;
}
