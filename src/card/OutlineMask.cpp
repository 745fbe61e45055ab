// Masks made from a picture's shape: the pixels that aren't zero, and the inner rim of them that a
// transparent graphic's frame is drawn on.
#include <algorithm>
#include <vector>

#include "base/ByteOrder.h"
#include "card/DisplayList.h"
#include "gfx/DibImage.h"

namespace {

// One byte per pixel, rows top-down: 1 where the picture's pixel isn't zero. False for a block
// that isn't a picture.
bool ReadShape(MemRef dib, std::vector<uint8_t>* shape, int32_t* width, int32_t* height) {
    MemRefLock lock(dib);
    if (!lock || !IsDibLayoutValid(lock.data(), GetMemRefSize(dib))) return false;
    const uint8_t* p = lock.data();
    const int32_t w = DibWidth(p), h = DibHeight(p), depth = DibDepth(p);
    const uint32_t rowBytes = DibImageRowBytes(p);
    if (uint64_t{DibRowBytes(depth, w)} > rowBytes) return false;
    shape->assign(static_cast<size_t>(w) * static_cast<size_t>(h), 0);
    for (int32_t y = 0; y < h; ++y) {
        // Display rows run bottom-up.
        const uint8_t* row = DibPixels(p) + uint64_t{rowBytes} * static_cast<uint32_t>(h - 1 - y);
        uint8_t* out = shape->data() + static_cast<size_t>(y) * static_cast<size_t>(w);
        for (int32_t x = 0; x < w; ++x) {
            bool set = false;
            switch (depth) {
                case 1:
                    set = row[x / 8] >> (7 - x % 8) & 1;
                    break;
                case 4:
                    set = (row[x / 2] >> (x % 2 ? 0 : 4) & 15) != 0;
                    break;
                case 8:
                    set = row[x] != 0;
                    break;
                case 16:
                    set = Read16(row + 2 * x) != 0;
                    break;
                case 24:
                    set = (row[3 * x] | row[3 * x + 1] | row[3 * x + 2]) != 0;
                    break;
                default:
                    set = (Read32(row + 4 * x) & 0xFFFFFF) != 0;
                    break;
            }
            out[x] = set;
        }
    }
    *width = w;
    *height = h;
    return true;
}

// Along one line of `count` pixels (at `step` apart in `shape`), each run of shape pixels from a
// to b gets the `depth` pixels at each of its ends set through `set`.
template <class Set>
void MarkRunEnds(const uint8_t* shape, int32_t count, int32_t step, int32_t depth, Set&& set) {
    const int32_t d = std::max(depth, 1);
    for (int32_t a = 0; a < count;) {
        if (!shape[static_cast<size_t>(a) * static_cast<size_t>(step)]) {
            ++a;
            continue;
        }
        int32_t b = a;  // the run's last pixel; a run that reaches the end is closed there
        while (b + 1 < count && shape[static_cast<size_t>(b + 1) * static_cast<size_t>(step)]) ++b;
        for (int32_t i = a; i <= std::min(a + d - 1, b); ++i) set(i);
        for (int32_t i = std::max(b - d + 1, a); i <= b; ++i) set(i);
        a = b + 1;
    }
}

}  // namespace

BitMask MakeShapeMask(MemRef dib) {
    std::vector<uint8_t> shape;
    int32_t w = 0, h = 0;
    if (!ReadShape(dib, &shape, &w, &h)) return {};
    BitMask mask(w, h);
    for (int32_t y = 0; y < h; ++y) {
        for (int32_t x = 0; x < w; ++x) {
            if (shape[static_cast<size_t>(y) * static_cast<size_t>(w) + static_cast<size_t>(x)])
                mask.Set(x, y, true);
        }
    }
    return mask;
}

BitMask MakeOutlineMask(MemRef dib, int32_t width) {
    std::vector<uint8_t> shape;
    int32_t w = 0, h = 0;
    if (!ReadShape(dib, &shape, &w, &h)) return {};
    BitMask rim(w, h);
    for (int32_t y = 0; y < h; ++y) {
        MarkRunEnds(shape.data() + static_cast<size_t>(y) * static_cast<size_t>(w), w, 1, width,
                    [&](int32_t x) { rim.Set(x, y, true); });
    }
    for (int32_t x = 0; x < w; ++x) {
        MarkRunEnds(shape.data() + x, h, w, width, [&](int32_t y) { rim.Set(x, y, true); });
    }
    return rim;
}
