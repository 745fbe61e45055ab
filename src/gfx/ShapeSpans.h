// The pixels of the outlined shapes (rectangles, ellipses, round rectangles) as one span per row.
// Filling, framing and regions are all made from these rows, so a shape filled, framed, hit-tested
// and clipped to is the same set of pixels everywhere.
//
// An ellipse holds the pixels whose centres lie inside or on the ellipse inscribed in the
// rectangle (right and bottom exclusive), except that its middle row (two rows for an even height)
// runs the full width and every row keeps at least its middle pixel (two for an even width): so,
// as on the platform, the shape touches all four sides, however flat: its leftmost pixel is `left`,
// its rightmost `right - 1`. It is left-right and top-bottom symmetric by construction. A round
// rectangle is that rectangle with its corners cut by the quarters of a `cornerWidth` by
// `cornerHeight` ellipse.
#pragma once

#include <cstdint>
#include <vector>

#include "gfx/Surface.h"

// Shapes past these bounds draw nothing: card coordinates are 16-bit, and the ellipse test squares
// products of sides in 64 bits.
inline constexpr int32_t kMaxShapeSide = 32767;
inline constexpr int32_t kMaxShapeCoordinate = 1 << 28;

struct RowSpans {
    int32_t top = 0;
    // Row top + i holds [left[i], right[i]); left >= right is an empty row.
    std::vector<int32_t> left, right;
    int32_t Bottom() const { return top + static_cast<int32_t>(left.size()); }
};

// Whether every coordinate is within kMaxShapeCoordinate, so that sums and differences of them
// stay far from overflow; what lies beyond is not drawn.
bool IsInDrawingRange(const Rect& r);
// Whether an ellipse or round rectangle of this rectangle is drawn at all: not empty, in the
// drawing range, and no side over kMaxShapeSide.
bool IsShapeRect(const Rect& r);

// The rows of the shape that fall in [fromY, toY); none for an empty rectangle, one out of the
// drawing range, or (curved shapes) one IsShapeRect refuses.
RowSpans RectSpans(const Rect& r, int32_t fromY, int32_t toY);
RowSpans EllipseSpans(const Rect& r, int32_t fromY, int32_t toY);
// Corners wider or taller than the rectangle are cut to it; under 2 pixels a corner stays square.
RowSpans RoundRectSpans(const Rect& r, int32_t cornerWidth, int32_t cornerHeight, int32_t fromY,
                        int32_t toY);

// What is left of a row-convex shape inside a frame `thickness` pixels wide: the pixels whose
// `thickness` nearest neighbours left, right, up and down are all in the shape. At thickness 1 the
// frame is the shape's rim of pixels with a side on the outside: one pixel wide, 8-connected all
// round. Rows within `thickness` of the ends of `shape` come out wrong, so give it that many more.
RowSpans ErodeSpans(const RowSpans& shape, int32_t thickness);
