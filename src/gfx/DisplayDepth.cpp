#include "gfx/DisplayDepth.h"

void QuantizeToDepth(Surface& s, const Rect& r, int32_t depth) {
    if (depth != 16) return;
    const Rect part = IntersectRect(r, s.Bounds());
    if (part.IsEmpty()) return;
    for (int32_t y = part.top; y < part.bottom; ++y) {
        uint32_t* row = s.Row(y);
        for (int32_t x = part.left; x < part.right; ++x) row[x] = QuantizeTo555(row[x]);
    }
}
