#include "gfx/Draw.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "gfx/ShapeSpans.h"

namespace {

inline constexpr int32_t kMaxPenWidth = 1024;

int32_t PenWidth(const Pen& pen) {
    return std::clamp(pen.width, 1, kMaxPenWidth);
}

void FillSpan(uint32_t* row, int32_t x0, int32_t x1, uint32_t color, PenMode mode) {
    if (mode == PenMode::Copy) {
        std::fill(row + x0, row + x1, color);
    } else {
        for (int32_t x = x0; x < x1; ++x) row[x] ^= color;
    }
}

void FillClippedSpan(Surface& s, const Clip& c, int32_t y, int32_t x0, int32_t x1, uint32_t color,
                     PenMode mode) {
    ForEachClipSpan(c, y, x0, x1,
                    [&](int32_t a, int32_t b) { FillSpan(s.Row(y), a, b, color, mode); });
}

void FillSpans(Surface& s, const Clip& c, const RowSpans& rows, uint32_t color, PenMode mode) {
    for (size_t i = 0; i < rows.left.size(); ++i) {
        FillClippedSpan(s, c, rows.top + static_cast<int32_t>(i), rows.left[i], rows.right[i],
                        color, mode);
    }
}

// `spans(fromY, toY)` gives the shape's rows in that range.
template <class Spans>
void FillShape(Surface& s, const Clip& clip, Spans spans, uint32_t color, PenMode mode) {
    const Clip c = ClipTo(clip, s.Bounds());
    if (c.rect.IsEmpty()) return;
    FillSpans(s, c, spans(c.rect.top, c.rect.bottom), color, mode);
}

// The shape less what ErodeSpans leaves of it: at most two pieces a row, each painted once.
template <class Spans>
void FrameShape(Surface& s, const Clip& clip, Spans spans, const Pen& pen) {
    const Clip c = ClipTo(clip, s.Bounds());
    if (c.rect.IsEmpty()) return;
    const int32_t width = PenWidth(pen);
    const RowSpans outer = spans(c.rect.top - width, c.rect.bottom + width);
    const RowSpans inner = ErodeSpans(outer, width);
    for (size_t i = 0; i < outer.left.size(); ++i) {
        const int32_t y = outer.top + static_cast<int32_t>(i);
        const int32_t left = outer.left[i], right = outer.right[i];
        if (inner.left[i] < inner.right[i]) {
            FillClippedSpan(s, c, y, left, inner.left[i], pen.color, pen.mode);
            FillClippedSpan(s, c, y, inner.right[i], right, pen.color, pen.mode);
        } else {
            FillClippedSpan(s, c, y, left, right, pen.color, pen.mode);
        }
    }
}

// Floor and ceiling of n / d for d > 0.
int64_t FloorDiv(int64_t n, int64_t d) {
    return n >= 0 ? n / d : -((-n + d - 1) / d);
}
int64_t CeilDiv(int64_t n, int64_t d) {
    return -FloorDiv(-n, d);
}

// The pixels of a one-pixel line, in the order of the longer axis, without the excluded end; each
// is passed to visit(x, y). Only steps of the longer axis within [lo, hi) are walked, so a line far
// outside the surface costs nothing.
template <class Visit>
void WalkLine(int32_t x0, int32_t y0, int32_t x1, int32_t y1, bool lastPixel, int32_t lo,
              int32_t hi, bool xMajor, Visit visit) {
    // Canonical order along the longer axis, so both directions give the same pixels.
    int64_t a0 = xMajor ? x0 : y0, b0 = xMajor ? y0 : x0, a1 = xMajor ? x1 : y1,
            b1 = xMajor ? y1 : x1;
    int64_t skip = a1;  // the end point LineTo leaves out
    if (a0 > a1) {
        std::swap(a0, a1);
        std::swap(b0, b1);
    }
    const int64_t da = a1 - a0, db = b1 - b0;
    const int64_t adb = db < 0 ? -db : db, step = db < 0 ? -1 : 1;
    if (da == 0) {
        if (lastPixel && a0 >= lo && a0 < hi)
            visit(static_cast<int32_t>(x0), static_cast<int32_t>(y0));
        return;
    }
    const int64_t first = std::max<int64_t>(a0, lo), last = std::min<int64_t>(a1, int64_t{hi} - 1);
    if (first > last) return;
    // Offset along the shorter axis after k steps: floor((2 k |db| + da) / (2 da)), kept as a
    // remainder so each step is an add and a compare.
    const int64_t k0 = first - a0;
    int64_t offset = (2 * k0 * adb + da) / (2 * da);
    int64_t error = (2 * k0 * adb + da) - offset * 2 * da;
    for (int64_t a = first; a <= last; ++a) {
        if (lastPixel || a != skip) {
            const int64_t b = b0 + step * offset;
            if (xMajor) {
                visit(static_cast<int32_t>(a), static_cast<int32_t>(b));
            } else {
                visit(static_cast<int32_t>(b), static_cast<int32_t>(a));
            }
        }
        error += 2 * adb;
        if (error >= 2 * da) {
            ++offset;
            error -= 2 * da;
        }
    }
}

}  // namespace

void FillRect(Surface& s, const Clip& clip, const Rect& r, uint32_t color, PenMode mode) {
    ForEachClipRect(ClipTo(clip, s.Bounds()), r, [&](const Rect& part) {
        for (int32_t y = part.top; y < part.bottom; ++y)
            FillSpan(s.Row(y), part.left, part.right, color, mode);
    });
}

void InvertRect(Surface& s, const Clip& clip, const Rect& r) {
    FillRect(s, clip, r, kWhite, PenMode::Xor);
}

void FrameRect(Surface& s, const Clip& clip, const Rect& r, const Pen& pen) {
    FrameShape(
        s, clip, [&](int32_t from, int32_t to) { return RectSpans(r, from, to); }, pen);
}

Rect CenteredPenRect(const Rect& r, int32_t width) {
    width = std::max(width, 1);
    return {r.left - width / 2, r.top - width / 2, r.right - 1 + (width + 1) / 2,
            r.bottom - 1 + (width + 1) / 2};
}

void FillPattern(Surface& s, const Clip& clip, const Rect& r, const Pattern& pattern,
                 uint32_t oneColor, uint32_t zeroColor) {
    ForEachClipRect(ClipTo(clip, s.Bounds()), r, [&](const Rect& part) {
        for (int32_t y = part.top; y < part.bottom; ++y) {
            const uint32_t bits = pattern.rows[y & 7];
            uint32_t* row = s.Row(y);
            for (int32_t x = part.left; x < part.right; ++x) {
                row[x] = bits >> (7 - (x & 7)) & 1 ? oneColor : zeroColor;
            }
        }
    });
}

void PaintPattern(Surface& s, const Clip& clip, const Rect& r, const Pattern& pattern,
                  uint32_t oneColor) {
    ForEachClipRect(ClipTo(clip, s.Bounds()), r, [&](const Rect& part) {
        for (int32_t y = part.top; y < part.bottom; ++y) {
            const uint32_t bits = pattern.rows[y & 7];
            uint32_t* row = s.Row(y);
            for (int32_t x = part.left; x < part.right; ++x) {
                if (bits >> (7 - (x & 7)) & 1) row[x] = oneColor;
            }
        }
    });
}

void FillEllipse(Surface& s, const Clip& clip, const Rect& r, uint32_t color, PenMode mode) {
    FillShape(
        s, clip, [&](int32_t from, int32_t to) { return EllipseSpans(r, from, to); }, color, mode);
}

void FrameEllipse(Surface& s, const Clip& clip, const Rect& r, const Pen& pen) {
    FrameShape(
        s, clip, [&](int32_t from, int32_t to) { return EllipseSpans(r, from, to); }, pen);
}

void FillRoundRect(Surface& s, const Clip& clip, const Rect& r, int32_t cornerWidth,
                   int32_t cornerHeight, uint32_t color, PenMode mode) {
    FillShape(
        s, clip,
        [&](int32_t from, int32_t to) {
            return RoundRectSpans(r, cornerWidth, cornerHeight, from, to);
        },
        color, mode);
}

void FrameRoundRect(Surface& s, const Clip& clip, const Rect& r, int32_t cornerWidth,
                    int32_t cornerHeight, const Pen& pen) {
    FrameShape(
        s, clip,
        [&](int32_t from, int32_t to) {
            return RoundRectSpans(r, cornerWidth, cornerHeight, from, to);
        },
        pen);
}

void DrawLine(Surface& s, const Clip& clip, int32_t x0, int32_t y0, int32_t x1, int32_t y1,
              const Pen& pen, bool lastPixel) {
    const Clip c = ClipTo(clip, s.Bounds());
    const auto inRange = [](int32_t v) {
        return v >= -kMaxShapeCoordinate && v <= kMaxShapeCoordinate;
    };
    if (c.rect.IsEmpty() || !inRange(x0) || !inRange(y0) || !inRange(x1) || !inRange(y1)) return;
    const int64_t dx = int64_t{x1} - x0, dy = int64_t{y1} - y0;
    const bool xMajor = (dx < 0 ? -dx : dx) >= (dy < 0 ? -dy : dy);
    const int32_t width = PenWidth(pen);
    if (width == 1) {
        const int32_t lo = xMajor ? c.rect.left : c.rect.top,
                      hi = xMajor ? c.rect.right : c.rect.bottom;
        WalkLine(x0, y0, x1, y1, lastPixel, lo, hi, xMajor, [&](int32_t x, int32_t y) {
            FillClippedSpan(s, c, y, x, x + 1, pen.color, pen.mode);
        });
        return;
    }
    // The disc of the pen, centred on each pixel of the line; each row of the clip keeps the
    // leftmost and rightmost pixel any disc reaches, and is painted once at the end.
    const int32_t half = width / 2;
    const RowSpans disc =
        EllipseSpans({-half, -half, width - half, width - half}, -half, width - half);
    const int32_t top = c.rect.top, rows = c.rect.Height();
    std::vector<int32_t> left(static_cast<size_t>(rows), INT32_MAX),
        right(static_cast<size_t>(rows), INT32_MIN);
    const int32_t lo = (xMajor ? c.rect.left : c.rect.top) - half,
                  hi = (xMajor ? c.rect.right : c.rect.bottom) + half;
    WalkLine(x0, y0, x1, y1, lastPixel, lo, hi, xMajor, [&](int32_t x, int32_t y) {
        for (size_t i = 0; i < disc.left.size(); ++i) {
            const int64_t row = int64_t{y} + disc.top + static_cast<int32_t>(i) - top;
            if (row < 0 || row >= rows) continue;
            left[static_cast<size_t>(row)] =
                std::min(left[static_cast<size_t>(row)], x + disc.left[i]);
            right[static_cast<size_t>(row)] =
                std::max(right[static_cast<size_t>(row)], x + disc.right[i]);
        }
    });
    for (int32_t i = 0; i < rows; ++i) {
        if (left[static_cast<size_t>(i)] < right[static_cast<size_t>(i)]) {
            FillClippedSpan(s, c, top + i, left[static_cast<size_t>(i)],
                            right[static_cast<size_t>(i)], pen.color, pen.mode);
        }
    }
}

void FillPolygon(Surface& s, const Clip& clip, const Point* points, size_t count, uint32_t color,
                 PenMode mode) {
    const Clip c = ClipTo(clip, s.Bounds());
    if (c.rect.IsEmpty() || count < 3) return;
    for (size_t i = 0; i < count; ++i) {
        if (std::abs(points[i].x) > kMaxShapeCoordinate ||
            std::abs(points[i].y) > kMaxShapeCoordinate)
            return;
    }
    int32_t minY = points[0].y, maxY = points[0].y;
    for (size_t i = 1; i < count; ++i) {
        minY = std::min(minY, points[i].y);
        maxY = std::max(maxY, points[i].y);
    }
    std::vector<int64_t> crossings;
    for (int32_t y = std::max(minY, c.rect.top); y < std::min(maxY, c.rect.bottom); ++y) {
        crossings.clear();
        for (size_t i = 0; i < count; ++i) {
            const Point& p = points[i];
            const Point& q = points[(i + 1) % count];
            if (p.y == q.y) continue;
            const Point& lo = p.y < q.y ? p : q;
            const Point& hi = p.y < q.y ? q : p;
            if (y < lo.y || y >= hi.y) continue;  // the bottom end belongs to the next edge
            // The first pixel at or right of where the edge crosses row y.
            const int64_t h = int64_t{hi.y} - lo.y;
            crossings.push_back(
                CeilDiv(int64_t{lo.x} * h + (int64_t{y} - lo.y) * (int64_t{hi.x} - lo.x), h));
        }
        std::sort(crossings.begin(), crossings.end());
        for (size_t i = 0; i + 1 < crossings.size(); i += 2) {
            const int64_t x0 = std::max<int64_t>(crossings[i], c.rect.left);
            const int64_t x1 = std::min<int64_t>(crossings[i + 1], c.rect.right);
            if (x0 < x1)
                FillClippedSpan(s, c, y, static_cast<int32_t>(x0), static_cast<int32_t>(x1), color,
                                mode);
        }
    }
}

void FramePolygon(Surface& s, const Clip& clip, const Point* points, size_t count, const Pen& pen) {
    for (size_t i = 0; i < count; ++i) {
        const Point& p = points[i];
        const Point& q = points[(i + 1) % count];
        DrawLine(s, clip, p.x, p.y, q.x, q.y, pen);
    }
}

void FillRegion(Surface& s, const Clip& clip, const Region& region, uint32_t color, PenMode mode) {
    const Clip c = ClipTo(clip, s.Bounds());
    for (const Rect& r : region.Rects()) {
        ForEachClipRect(c, r, [&](const Rect& part) {
            for (int32_t y = part.top; y < part.bottom; ++y)
                FillSpan(s.Row(y), part.left, part.right, color, mode);
        });
    }
}

void InvertRegion(Surface& s, const Clip& clip, const Region& region) {
    FillRegion(s, clip, region, kWhite, PenMode::Xor);
}
