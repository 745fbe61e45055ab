#include "gfx/ShapeSpans.h"

#include <algorithm>
#include <cmath>

namespace {

// Room for the rows of [fromY, toY) that fall in the shape's own rows.
RowSpans NewRows(const Rect& r, int32_t fromY, int32_t toY) {
    RowSpans rows;
    rows.top = std::max(r.top, fromY);
    const int32_t bottom = std::min(r.bottom, toY);
    if (bottom > rows.top) {
        rows.left.resize(static_cast<size_t>(bottom - rows.top));
        rows.right.resize(rows.left.size());
    }
    return rows;
}

// The largest m with m * m * hh <= limit.
int64_t RootBelow(int64_t limit, int64_t hh) {
    int64_t m =
        static_cast<int64_t>(std::sqrt(static_cast<double>(limit) / static_cast<double>(hh)));
    while (m > 0 && m * m * hh > limit) --m;
    while ((m + 1) * (m + 1) * hh <= limit) ++m;
    return m;
}

// Row `y` of the ellipse in `r`, in doubled coordinates so that every centre is an integer: a pixel
// x has its centre at 2x + 1, the ellipse at left + right, and the semi-axes are the sides.
void EllipseRow(const Rect& r, int32_t y, int32_t* left, int32_t* right) {
    const int64_t w = r.Width(), h = r.Height();
    const int64_t dy = 2 * int64_t{y} + 1 - (int64_t{r.top} + r.bottom);
    const int64_t c = int64_t{r.left} + r.right - 1;  // 2x - c is a pixel's doubled offset
    int64_t m = w - 1;  // the middle row (two for an even height) runs the full width
    if (dy * dy > 1) {
        m = RootBelow(w * w * (h * h - dy * dy), h * h);
        if ((m - c) & 1) --m;          // only offsets of c's parity fall on pixel centres
        m = std::max(m, (w - 1) & 1);  // and every row keeps its middle pixel, or two
    }
    *left = static_cast<int32_t>((c - m) / 2);
    *right = static_cast<int32_t>((c + m) / 2 + 1);
}

}  // namespace

bool IsInDrawingRange(const Rect& r) {
    const auto inRange = [](int32_t v) {
        return v >= -kMaxShapeCoordinate && v <= kMaxShapeCoordinate;
    };
    return inRange(r.left) && inRange(r.top) && inRange(r.right) && inRange(r.bottom);
}

bool IsShapeRect(const Rect& r) {
    return !r.IsEmpty() && IsInDrawingRange(r) && r.Width() <= kMaxShapeSide &&
           r.Height() <= kMaxShapeSide;
}

RowSpans RectSpans(const Rect& r, int32_t fromY, int32_t toY) {
    if (r.IsEmpty() || !IsInDrawingRange(r)) return {};
    RowSpans rows = NewRows(r, fromY, toY);
    std::fill(rows.left.begin(), rows.left.end(), r.left);
    std::fill(rows.right.begin(), rows.right.end(), r.right);
    return rows;
}

RowSpans EllipseSpans(const Rect& r, int32_t fromY, int32_t toY) {
    if (!IsShapeRect(r)) return {};
    RowSpans rows = NewRows(r, fromY, toY);
    for (size_t i = 0; i < rows.left.size(); ++i) {
        EllipseRow(r, rows.top + static_cast<int32_t>(i), &rows.left[i], &rows.right[i]);
    }
    return rows;
}

RowSpans RoundRectSpans(const Rect& r, int32_t cornerWidth, int32_t cornerHeight, int32_t fromY,
                        int32_t toY) {
    const int32_t cw = std::min(cornerWidth, r.Width()), ch = std::min(cornerHeight, r.Height());
    if (!IsShapeRect(r) || cw < 2 || ch < 2) return RectSpans(r, fromY, toY);
    // The corner ellipse's rows down to its middle give how far each end row is cut in.
    std::vector<int32_t> inset(static_cast<size_t>(ch / 2));
    for (size_t d = 0; d < inset.size(); ++d) {
        int32_t right = 0;
        EllipseRow({0, 0, cw, ch}, static_cast<int32_t>(d), &inset[d], &right);
    }
    RowSpans rows = NewRows(r, fromY, toY);
    for (size_t i = 0; i < rows.left.size(); ++i) {
        const int32_t y = rows.top + static_cast<int32_t>(i);
        const int32_t d = std::min(y - r.top, r.bottom - 1 - y);  // rows from the nearer end
        const int32_t cut = d < ch / 2 ? inset[static_cast<size_t>(d)] : 0;
        rows.left[i] = r.left + cut;
        rows.right[i] = r.right - cut;
    }
    return rows;
}

RowSpans ErodeSpans(const RowSpans& shape, int32_t thickness) {
    RowSpans inner = shape;
    const int32_t reach = std::max(thickness, 1);
    const int32_t n = static_cast<int32_t>(shape.left.size());
    for (int32_t i = 0; i < n; ++i) {
        int32_t left = shape.left[i] + reach, right = shape.right[i] - reach;
        if (i - reach < 0 || i + reach >= n) left = right;  // a neighbour row is outside the shape
        for (int32_t k = i - reach; k <= i + reach && left < right; ++k) {
            left = std::max(left, shape.left[k]);
            right = std::min(right, shape.right[k]);
        }
        inner.left[i] = left;
        inner.right[i] = std::max(left, right);
    }
    return inner;
}
