// Regions: sets of pixels kept as lists of rectangles, for clipping, hit testing, hilites and
// transitions. And Clip, what every drawing function is limited to: a rectangle, and optionally a
// region as well.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "gfx/Surface.h"

struct BitMask;

// The rectangles are kept in bands: sorted by top, then left; the rectangles of one band share top
// and bottom; bands do not overlap; inside a band rectangles neither overlap nor touch; two bands
// that touch never have the same spans. Each set of pixels has exactly one such list, so regions
// compare equal exactly when they hold the same pixels.
class Region {
public:
    Region() = default;
    explicit Region(const Rect& r);

    bool IsEmpty() const { return rects_.empty(); }
    Rect Bounds() const;
    bool Contains(int32_t x, int32_t y) const;
    void Offset(int32_t dx, int32_t dy);
    const std::vector<Rect>& Rects() const { return rects_; }
    // Index of the first rectangle of the band holding row y, or of the first band below it.
    size_t BandAt(int32_t y) const {
        return static_cast<size_t>(
            std::partition_point(rects_.begin(), rects_.end(),
                                 [y](const Rect& r) { return r.bottom <= y; }) -
            rects_.begin());
    }
    friend bool operator==(const Region& a, const Region& b) { return a.rects_ == b.rects_; }
    friend bool operator!=(const Region& a, const Region& b) { return !(a == b); }

private:
    friend class RegionBuilder;
    std::vector<Rect> rects_;
};

// The pixels FillEllipse and FillRoundRect paint for the same arguments, no more and no fewer. (The
// platform's own round-rectangle regions leave out the right and bottom edge; these do not, so a
// region is made from the drawn rectangle itself.)
Region EllipseRegion(const Rect& r);
Region RoundRectRegion(const Rect& r, int32_t cornerWidth, int32_t cornerHeight);
// The set bits, where the mask stands.
Region MaskRegion(const BitMask& mask);

Region UnionRegions(const Region& a, const Region& b);
Region IntersectRegions(const Region& a, const Region& b);
Region SubtractRegion(const Region& from, const Region& taken);
Region XorRegions(const Region& a, const Region& b);

// Where drawing may change pixels: inside `rect` and, when `region` is set, inside it too. A Rect
// converts to a Clip, so the usual call passes the surface's bounds or a dirty rectangle.
struct Clip {
    Rect rect;
    const Region* region = nullptr;
    Clip(const Rect& r) : rect(r) {}  // NOLINT(google-explicit-constructor): a rect is a clip
    Clip(const Rect& r, const Region* rgn) : rect(r), region(rgn) {}
};

// Calls fn(const Rect&) for each non-empty part of `area` inside the clip, top to bottom.
template <class Fn>
void ForEachClipRect(const Clip& clip, const Rect& area, Fn&& fn) {
    const Rect limit = IntersectRect(clip.rect, area);
    if (limit.IsEmpty()) return;
    if (!clip.region) {
        fn(limit);
        return;
    }
    const std::vector<Rect>& rects = clip.region->Rects();
    for (size_t i = clip.region->BandAt(limit.top); i < rects.size() && rects[i].top < limit.bottom;
         ++i) {
        const Rect part = IntersectRect(rects[i], limit);
        if (!part.IsEmpty()) fn(part);
    }
}

// Calls fn(x0, x1) for each part [x0, x1) of the span [left, right) of row y inside the clip.
template <class Fn>
void ForEachClipSpan(const Clip& clip, int32_t y, int32_t left, int32_t right, Fn&& fn) {
    if (y < clip.rect.top || y >= clip.rect.bottom) return;
    left = std::max(left, clip.rect.left);
    right = std::min(right, clip.rect.right);
    if (left >= right) return;
    if (!clip.region) {
        fn(left, right);
        return;
    }
    const std::vector<Rect>& rects = clip.region->Rects();
    for (size_t i = clip.region->BandAt(y); i < rects.size() && rects[i].top <= y; ++i) {
        const int32_t x0 = std::max(left, rects[i].left), x1 = std::min(right, rects[i].right);
        if (x0 < x1) fn(x0, x1);
    }
}

// The clip cut to a surface's bounds.
inline Clip ClipTo(const Clip& clip, const Rect& bounds) {
    return {IntersectRect(clip.rect, bounds), clip.region};
}
