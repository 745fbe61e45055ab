// The drawing primitives of the software renderer, on 32-bit surfaces, each limited to a Clip (and
// always to the surface). Buttons, graphics frames, the turtle, hilites and our own dialogs are
// made of these.
//
// Pixel rules, the same for every primitive:
// - Rectangles are left, top, right, bottom with right and bottom exclusive; a shape fits its
//   rectangle: its leftmost pixel is `left`, its rightmost `right - 1`.
// - Frames lie inside the shape's rectangle, `pen.width` pixels thick (under 1 counts as 1), as
//   a pen drawn inside the frame. CenteredPenRect gives the rectangle for a pen centred on the
//   outline instead.
// - Xor mode exclusive-ors the pen colour into each pixel once, so drawing the same thing twice
//   restores the picture; with white it inverts, as a hilite does.
#pragma once

#include <cstddef>
#include <cstdint>

#include "gfx/Region.h"
#include "gfx/Surface.h"

enum class PenMode : uint8_t { Copy, Xor };

struct Pen {
    uint32_t color = kBlack;
    int32_t width = 1;
    PenMode mode = PenMode::Copy;
};

// An 8 by 8 brush: rows[y % 8], bit 7 for x % 8 == 0, anchored at the surface's (0, 0).
struct Pattern {
    uint8_t rows[8] = {};
};

void FillRect(Surface& s, const Clip& clip, const Rect& r, uint32_t color,
              PenMode mode = PenMode::Copy);
// Exclusive-or with white: the hilite, its own undoing.
void InvertRect(Surface& s, const Clip& clip, const Rect& r);
void FrameRect(Surface& s, const Clip& clip, const Rect& r, const Pen& pen);
// The rectangle to frame so that a pen `width` wide is centred on the outline of `r`, as the
// platform draws a rectangle with a wide pen: the outline runs through left..right - 1, and the pen
// reaches width / 2 pixels outward and (width - 1) / 2 inward.
Rect CenteredPenRect(const Rect& r, int32_t width);

// Set bits in `oneColor`, clear bits in `zeroColor`; PaintPattern leaves the clear bits alone.
void FillPattern(Surface& s, const Clip& clip, const Rect& r, const Pattern& pattern,
                 uint32_t oneColor, uint32_t zeroColor);
void PaintPattern(Surface& s, const Clip& clip, const Rect& r, const Pattern& pattern,
                  uint32_t oneColor);

void FillEllipse(Surface& s, const Clip& clip, const Rect& r, uint32_t color,
                 PenMode mode = PenMode::Copy);
void FrameEllipse(Surface& s, const Clip& clip, const Rect& r, const Pen& pen);
// Corners are quarters of a cornerWidth by cornerHeight ellipse, as a round rectangle is given to
// the platform; too large corners are cut to the rectangle, corners under 2 pixels stay square.
void FillRoundRect(Surface& s, const Clip& clip, const Rect& r, int32_t cornerWidth,
                   int32_t cornerHeight, uint32_t color, PenMode mode = PenMode::Copy);
void FrameRoundRect(Surface& s, const Clip& clip, const Rect& r, int32_t cornerWidth,
                    int32_t cornerHeight, const Pen& pen);

// A line from (x0, y0) to (x1, y1). Like the platform's LineTo, the end point itself is left out
// unless `lastPixel`, so that joined lines meet without drawing a pixel twice. One pixel per step
// of the longer axis (x when they are equal); where the exact line passes half-way between two
// pixels, the one nearer the line's right end (bottom end for lines taller than wide) is taken, so
// the pixels do not depend on the direction the line is drawn in. A wider pen sweeps a disc of its
// width along the line (round ends), painting each pixel once.
void DrawLine(Surface& s, const Clip& clip, int32_t x0, int32_t y0, int32_t x1, int32_t y1,
              const Pen& pen, bool lastPixel = false);

// Filled with the alternate (even-odd) rule. A pixel is taken at its own coordinates, the points
// lines run through, and edges on the right and bottom are left out (as a rectangle's right and
// bottom are), so the outline drawn with the same points covers the fill's rim without spilling.
void FillPolygon(Surface& s, const Clip& clip, const Point* points, size_t count, uint32_t color,
                 PenMode mode = PenMode::Copy);
// Its outline as joined lines, closed back to the first point.
void FramePolygon(Surface& s, const Clip& clip, const Point* points, size_t count, const Pen& pen);

void FillRegion(Surface& s, const Clip& clip, const Region& region, uint32_t color,
                PenMode mode = PenMode::Copy);
void InvertRegion(Surface& s, const Clip& clip, const Region& region);
