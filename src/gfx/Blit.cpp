#include "gfx/Blit.h"

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <vector>

#include "gfx/DibImage.h"
#include "gfx/DisplayDepth.h"
#include "gfx/ShapeSpans.h"

namespace {

// Calls fn(op) with op(dst, src) the raster operation, so each operation gets its own inner loop.
template <class Fn>
void WithRop(Rop rop, Fn&& fn) {
    switch (rop) {
        case Rop::SrcCopy:
            return fn([](uint32_t, uint32_t s) { return s; });
        case Rop::NotSrcCopy:
            return fn([](uint32_t, uint32_t s) { return ~s & 0xFFFFFFu; });
        case Rop::SrcAnd:
            return fn([](uint32_t d, uint32_t s) { return d & s; });
        case Rop::SrcPaint:
            return fn([](uint32_t d, uint32_t s) { return d | s; });
        case Rop::SrcInvert:
            return fn([](uint32_t d, uint32_t s) { return d ^ s; });
        case Rop::SrcErase:
            return fn([](uint32_t d, uint32_t s) { return s & ~d & 0xFFFFFFu; });
        case Rop::NotSrcErase:
            return fn([](uint32_t d, uint32_t s) { return ~(d | s) & 0xFFFFFFu; });
        case Rop::MergePaint:
            return fn([](uint32_t d, uint32_t s) { return (~s | d) & 0xFFFFFFu; });
        case Rop::DstInvert:
            return fn([](uint32_t d, uint32_t) { return ~d & 0xFFFFFFu; });
    }
}

void CombineRow(Rop rop, uint32_t* d, const uint32_t* s, int32_t n) {
    if (rop == Rop::SrcCopy) {
        std::memmove(d, s, static_cast<size_t>(n) * sizeof(uint32_t));
        return;
    }
    WithRop(rop, [&](auto op) {
        for (int32_t i = 0; i < n; ++i) d[i] = op(d[i], s[i]);
    });
}

// A copy of the block of `src`, for a transfer whose source and destination overlap in a way a
// row order can not make safe.
Surface CopyOfBlock(const Surface& src, const Rect& block) {
    Surface copy(block.Width(), block.Height());
    for (int32_t y = 0; y < copy.height; ++y) {
        std::memcpy(copy.Row(y), src.Row(block.top + y) + block.left,
                    static_cast<size_t>(copy.width) * 4);
    }
    return copy;
}

// Where the block `from` of `src` lands at (x, y): the part of it inside the source, moved.
struct Transfer {
    Rect source;             // inside the source
    Rect area;               // on the destination
    int32_t dx = 0, dy = 0;  // destination minus source
};

Transfer PlanTransfer(int32_t x, int32_t y, const Surface& src, const Rect& from) {
    Transfer t;
    if (!IsInDrawingRange(from) || !IsInDrawingRange({x, y, x, y})) return t;  // nothing moves
    t.source = IntersectRect(from, src.Bounds());
    t.dx = x - from.left;
    t.dy = y - from.top;
    t.area = OffsetRect(t.source, t.dx, t.dy);
    return t;
}

bool Overlaps(const Surface& dst, const Surface& src, const Transfer& t) {
    return &dst == &src && !IntersectRect(t.area, t.source).IsEmpty();
}

// Calls fn(i, m) for each pixel i in [0, n) of a mask row read from bit `bit` on, with m all ones
// where the bit is set and 0 where it is clear: callers select with it instead of branching, so
// a mask of fine detail costs no more than one of long runs.
template <class Fn>
inline void ForEachMaskBit(const uint8_t* bits, int32_t bit, int32_t n, Fn&& fn) {
    const auto one = [&](int32_t i) {
        const int32_t b = bit + i;
        fn(i, 0u - (static_cast<uint32_t>(bits[b >> 3]) >> (7 - (b & 7)) & 1u));
    };
    int32_t i = 0;
    for (; i < n && ((bit + i) & 7); ++i) one(i);
    for (; i + 8 <= n; i += 8) {
        const uint32_t byte = bits[(bit + i) >> 3];
        for (int32_t k = 0; k < 8; ++k) fn(i + k, 0u - (byte >> (7 - k) & 1u));
    }
    for (; i < n; ++i) one(i);
}

// Copies the pixels whose mask bit is set: d[i] = s[i] where bit + i is set. Whole bytes of set
// or clear bits, the common case in a picture's mask, are one copy or nothing.
void MaskRow(uint32_t* d, const uint32_t* s, const uint8_t* bits, int32_t bit, int32_t n) {
    const auto select = [&](int32_t i, uint32_t m) { d[i] = (s[i] & m) | (d[i] & ~m); };
    int32_t i = 0;
    const int32_t head = std::min(n, (8 - (bit & 7)) & 7);
    ForEachMaskBit(bits, bit, head, select);
    for (i = head; i + 8 <= n; i += 8) {
        const uint32_t byte = bits[(bit + i) >> 3];
        if (byte == 0xFF) {
            std::memcpy(d + i, s + i, 8 * sizeof(uint32_t));
        } else if (byte) {
            for (int32_t k = 0; k < 8; ++k) select(i + k, 0u - (byte >> (7 - k) & 1u));
        }
    }
    ForEachMaskBit(bits, bit + i, n - i, [&](int32_t k, uint32_t m) { select(i + k, m); });
}

// Source index for destination index i of a `toSize` run: the source pixel under its centre.
int32_t ScaledIndex(int64_t i, int32_t fromStart, int32_t fromSize, int32_t toSize) {
    return fromStart + static_cast<int32_t>((2 * i + 1) * fromSize / (2 * int64_t{toSize}));
}

std::vector<int32_t> ScaledIndices(int32_t start, int32_t end, int32_t toStart, int32_t fromStart,
                                   int32_t fromSize, int32_t toSize) {
    std::vector<int32_t> map(static_cast<size_t>(end - start));
    for (int32_t v = start; v < end; ++v) {
        map[static_cast<size_t>(v - start)] = ScaledIndex(v - toStart, fromStart, fromSize, toSize);
    }
    return map;
}

// ---- Pictures ----

struct DibView {
    const uint8_t* pixels = nullptr;
    uint32_t rowBytes = 0;
    int32_t width = 0, height = 0, depth = 0;
    // Row y counted from the top; display rows are stored bottom-up.
    const uint8_t* Row(int32_t y) const {
        return pixels + static_cast<size_t>(height - 1 - y) * rowBytes;
    }
    Rect Bounds() const { return {0, 0, width, height}; }
};

bool ViewDib(const uint8_t* dib, DibView* view) {
    if (!dib) return false;
    view->depth = DibDepth(dib);
    view->width = DibWidth(dib);
    view->height = DibHeight(dib);
    if (!IsDibDepth(view->depth) || view->width < 0 || view->height < 0 ||
        view->width > kDibMaxSide || view->height > kDibMaxSide) {
        return false;
    }
    view->rowBytes = DibImageRowBytes(dib);
    if (view->height > 0 &&
        view->rowBytes < (static_cast<uint32_t>(view->width) * view->depth + 7) / 8)
        return false;
    view->pixels = DibPixels(dib);
    return true;
}

template <int Depth>
inline uint32_t DibPixel(const uint8_t* row, int32_t x, const uint32_t* colors) {
    if constexpr (Depth == 1) {
        return colors[row[x >> 3] >> (7 - (x & 7)) & 1];
    } else if constexpr (Depth == 4) {
        return colors[row[x >> 1] >> ((~x & 1) << 2) & 15];
    } else if constexpr (Depth == 8) {
        return colors[row[x]];
    } else if constexpr (Depth == 16) {
        const uint8_t* p = row + 2 * static_cast<size_t>(x);
        return Rgb555ToRgb(static_cast<uint16_t>(p[0] | p[1] << 8));
    } else if constexpr (Depth == 24) {
        const uint8_t* p = row + 3 * static_cast<size_t>(x);
        return uint32_t{p[0]} | uint32_t{p[1]} << 8 | uint32_t{p[2]} << 16;
    } else {
        uint32_t v;
        std::memcpy(&v, row + 4 * static_cast<size_t>(x), 4);
        return v & 0xFFFFFFu;
    }
}

template <class Fn>
void WithDepth(int32_t depth, Fn&& fn) {
    switch (depth) {
        case 1:
            return fn(std::integral_constant<int, 1>{});
        case 4:
            return fn(std::integral_constant<int, 4>{});
        case 8:
            return fn(std::integral_constant<int, 8>{});
        case 16:
            return fn(std::integral_constant<int, 16>{});
        case 24:
            return fn(std::integral_constant<int, 24>{});
        default:
            return fn(std::integral_constant<int, 32>{});
    }
}

// Fills the parts of `area` the clip allows, a row at a time: sourceRow(y) is the picture row
// that destination row y shows, and convert(part, sourceRow, out) writes its pixels for the part,
// straight into the surface for a plain copy. A row shown again (an enlargement) is not
// converted again.
template <class SourceRow, class Convert>
void DrawPictureRows(Surface& dst, const Clip& clip, const Rect& area, Rop rop, SourceRow sourceRow,
                     Convert convert) {
    std::vector<uint32_t> scratch;
    ForEachClipRect(ClipTo(clip, dst.Bounds()), area, [&](const Rect& part) {
        const size_t n = static_cast<size_t>(part.Width());
        if (rop != Rop::SrcCopy) scratch.resize(n);
        int32_t previous = -1;
        for (int32_t y = part.top; y < part.bottom; ++y) {
            uint32_t* out = dst.Row(y) + part.left;
            const int32_t sy = sourceRow(y);
            if (rop == Rop::SrcCopy) {
                if (sy == previous) {
                    std::memcpy(out, dst.Row(y - 1) + part.left, n * sizeof(uint32_t));
                } else {
                    convert(part, sy, out);
                }
            } else {
                if (sy != previous) convert(part, sy, scratch.data());
                CombineRow(rop, out, scratch.data(), part.Width());
            }
            previous = sy;
        }
    });
}

// The colours to look 1-, 4- and 8-bit pixels up in.
const uint32_t* ColorsFor(const uint8_t* dib, const DibView& view, const uint32_t* colors,
                          uint32_t* own) {
    if (colors || view.depth > 8) return colors;
    LoadDibColors(dib, own);
    return own;
}

}  // namespace

uint32_t ApplyRop(Rop rop, uint32_t dst, uint32_t src) {
    uint32_t result = 0;
    WithRop(rop, [&](auto op) { result = op(dst, src); });
    return result;
}

void BlitRop(Surface& dst, const Clip& clip, int32_t x, int32_t y, const Surface& src,
             const Rect& from, Rop rop) {
    const Transfer t = PlanTransfer(x, y, src, from);
    if (t.source.IsEmpty()) return;
    const Clip c = ClipTo(clip, dst.Bounds());
    if (Overlaps(dst, src, t)) {
        if (rop == Rop::SrcCopy && !c.region) {
            // One rectangle, row by row away from the overlap; memmove takes care within a row.
            const Rect part = IntersectRect(c.rect, t.area);
            if (part.IsEmpty()) return;
            const int32_t n = part.Width();
            for (int32_t i = 0; i < part.Height(); ++i) {
                const int32_t row = t.dy > 0 ? part.bottom - 1 - i : part.top + i;
                std::memmove(dst.Row(row) + part.left, src.Row(row - t.dy) + part.left - t.dx,
                             static_cast<size_t>(n) * sizeof(uint32_t));
            }
            return;
        }
        const Surface copy = CopyOfBlock(src, t.source);
        BlitRop(dst, clip, t.area.left, t.area.top, copy, copy.Bounds(), rop);
        return;
    }
    ForEachClipRect(c, t.area, [&](const Rect& part) {
        for (int32_t row = part.top; row < part.bottom; ++row) {
            CombineRow(rop, dst.Row(row) + part.left, src.Row(row - t.dy) + part.left - t.dx,
                       part.Width());
        }
    });
}

void CopyRect(Surface& dst, const Clip& clip, int32_t x, int32_t y, const Surface& src,
              const Rect& from) {
    BlitRop(dst, clip, x, y, src, from, Rop::SrcCopy);
}

void MaskedCopy(Surface& dst, const Clip& clip, int32_t x, int32_t y, const Surface& src,
                const Rect& from, const BitMask& mask) {
    const Transfer t = PlanTransfer(x, y, src, from);
    if (t.source.IsEmpty() || mask.width <= 0) return;
    if (Overlaps(dst, src, t)) {
        const Surface copy = CopyOfBlock(src, t.source);
        MaskedCopy(dst, clip, t.area.left, t.area.top, copy, copy.Bounds(), mask);
        return;
    }
    ForEachClipRect(
        ClipTo(clip, dst.Bounds()), IntersectRect(t.area, mask.Bounds()), [&](const Rect& part) {
            for (int32_t row = part.top; row < part.bottom; ++row) {
                MaskRow(dst.Row(row) + part.left, src.Row(row - t.dy) + part.left - t.dx,
                        mask.Row(row - mask.top), part.left - mask.left, part.Width());
            }
        });
}

void BlitMask(Surface& dst, const Clip& clip, const BitMask& mask, uint32_t oneColor,
              uint32_t zeroColor, Rop rop) {
    if (mask.width <= 0) return;
    const uint32_t differ = oneColor ^ zeroColor;
    WithRop(rop, [&](auto op) {
        ForEachClipRect(ClipTo(clip, dst.Bounds()), mask.Bounds(), [&](const Rect& part) {
            for (int32_t row = part.top; row < part.bottom; ++row) {
                uint32_t* d = dst.Row(row) + part.left;
                ForEachMaskBit(
                    mask.Row(row - mask.top), part.left - mask.left, part.Width(),
                    [&](int32_t i, uint32_t m) { d[i] = op(d[i], zeroColor ^ (differ & m)); });
            }
        });
    });
}

void FillMask(Surface& dst, const Clip& clip, const BitMask& mask, uint32_t color, PenMode mode) {
    if (mask.width <= 0) return;
    ForEachClipRect(ClipTo(clip, dst.Bounds()), mask.Bounds(), [&](const Rect& part) {
        for (int32_t row = part.top; row < part.bottom; ++row) {
            uint32_t* d = dst.Row(row) + part.left;
            const uint8_t* bits = mask.Row(row - mask.top);
            if (mode == PenMode::Copy) {
                ForEachMaskBit(bits, part.left - mask.left, part.Width(),
                               [&](int32_t i, uint32_t m) { d[i] = (color & m) | (d[i] & ~m); });
            } else {
                ForEachMaskBit(bits, part.left - mask.left, part.Width(),
                               [&](int32_t i, uint32_t m) { d[i] ^= color & m; });
            }
        }
    });
}

void StretchCopy(Surface& dst, const Clip& clip, const Rect& to, const Surface& src,
                 const Rect& from) {
    if (to.IsEmpty() || !IsInDrawingRange(to) || from.IsEmpty() ||
        IntersectRect(from, src.Bounds()) != from) {
        return;
    }
    if (&dst == &src) {
        const Surface copy = CopyOfBlock(src, from);
        StretchCopy(dst, clip, to, copy, copy.Bounds());
        return;
    }
    ForEachClipRect(ClipTo(clip, dst.Bounds()), to, [&](const Rect& part) {
        const std::vector<int32_t> xs =
            ScaledIndices(part.left, part.right, to.left, from.left, from.Width(), to.Width());
        int32_t previous = -1;
        for (int32_t row = part.top; row < part.bottom; ++row) {
            const int32_t sy = ScaledIndex(row - to.top, from.top, from.Height(), to.Height());
            uint32_t* d = dst.Row(row) + part.left;
            if (sy == previous) {  // an enlarged row: the same as the one above
                std::memcpy(d, dst.Row(row - 1) + part.left, xs.size() * sizeof(uint32_t));
                continue;
            }
            const uint32_t* s = src.Row(sy);
            for (size_t i = 0; i < xs.size(); ++i) d[i] = s[xs[i]];
            previous = sy;
        }
    });
}

void LoadDibColors(const uint8_t* dib, uint32_t colors[256]) {
    const uint32_t count = std::min<uint32_t>(DibDepth(dib) <= 8 ? DibColorCount(dib) : 0, 256);
    const uint8_t* table = DibColors(dib);
    for (uint32_t i = 0; i < 256; ++i) {
        const uint8_t* e = table + i * kDibColorSize;
        colors[i] = i < count ? Rgb(e[2], e[1], e[0]) : kBlack;
    }
}

int32_t DrawDibPart(Surface& dst, const Clip& clip, int32_t x, int32_t y, const uint8_t* dib,
                    const Rect& from, const uint32_t* colors, Rop rop) {
    DibView view;
    if (!ViewDib(dib, &view)) return -1;
    uint32_t own[256];
    const uint32_t* lut = ColorsFor(dib, view, colors, own);
    const Rect source = IntersectRect(from, view.Bounds());
    if (source.IsEmpty() || !IsInDrawingRange(from) || !IsInDrawingRange({x, y, x, y})) return 0;
    const int32_t dx = x - from.left, dy = y - from.top;
    WithDepth(view.depth, [&](auto depth) {
        DrawPictureRows(
            dst, clip, OffsetRect(source, dx, dy), rop, [&](int32_t row) { return row - dy; },
            [&](const Rect& part, int32_t sy, uint32_t* out) {
                const uint8_t* line = view.Row(sy);
                const int32_t sx = part.left - dx;
                for (int32_t i = 0; i < part.Width(); ++i)
                    out[i] = DibPixel<decltype(depth)::value>(line, sx + i, lut);
            });
    });
    return 0;
}

int32_t DrawDib(Surface& dst, const Clip& clip, int32_t x, int32_t y, const uint8_t* dib,
                const uint32_t* colors, Rop rop) {
    DibView view;
    if (!ViewDib(dib, &view)) return -1;
    return DrawDibPart(dst, clip, x, y, dib, view.Bounds(), colors, rop);
}

int32_t StretchDib(Surface& dst, const Clip& clip, const Rect& to, const uint8_t* dib,
                   const Rect& from, const uint32_t* colors, Rop rop) {
    DibView view;
    if (!ViewDib(dib, &view)) return -1;
    if (to.IsEmpty() || !IsInDrawingRange(to) || from.IsEmpty() ||
        IntersectRect(from, view.Bounds()) != from) {
        return 0;
    }
    uint32_t own[256];
    const uint32_t* lut = ColorsFor(dib, view, colors, own);
    std::vector<int32_t> xs;
    int32_t mapped = INT32_MIN;  // the part whose columns `xs` holds
    WithDepth(view.depth, [&](auto depth) {
        DrawPictureRows(
            dst, clip, to, rop,
            [&](int32_t row) {
                return ScaledIndex(row - to.top, from.top, from.Height(), to.Height());
            },
            [&](const Rect& part, int32_t sy, uint32_t* out) {
                if (mapped != part.left || xs.size() != static_cast<size_t>(part.Width())) {
                    xs = ScaledIndices(part.left, part.right, to.left, from.left, from.Width(),
                                       to.Width());
                    mapped = part.left;
                }
                const uint8_t* line = view.Row(sy);
                for (size_t i = 0; i < xs.size(); ++i)
                    out[i] = DibPixel<decltype(depth)::value>(line, xs[i], lut);
            });
    });
    return 0;
}

Surface SurfaceFromDib(const uint8_t* dib, const uint32_t* colors) {
    DibView view;
    if (!ViewDib(dib, &view)) return {};
    Surface s(view.width, view.height, kBlack);
    DrawDib(s, s.Bounds(), 0, 0, dib, colors);
    return s;
}
