#include "gfx/Region.h"

#include "gfx/BitMask.h"
#include "gfx/ShapeSpans.h"

namespace {
struct Span {
    int32_t left, right;
};
}  // namespace

// Appends bands top to bottom, joining a band to the one above it when they touch and match.
class RegionBuilder {
public:
    // `spans` sorted by left, apart from one another.
    void AddBand(int32_t top, int32_t bottom, const std::vector<Span>& spans) {
        if (spans.empty() || bottom <= top) return;
        std::vector<Rect>& rects = region_.rects_;
        if (!rects.empty() && rects.back().bottom == top &&
            rects.size() - lastBand_ == spans.size() &&
            std::equal(spans.begin(), spans.end(),
                       rects.begin() + static_cast<ptrdiff_t>(lastBand_),
                       [](const Span& s, const Rect& r) {
                           return s.left == r.left && s.right == r.right;
                       })) {
            for (size_t i = lastBand_; i < rects.size(); ++i) rects[i].bottom = bottom;
            return;
        }
        lastBand_ = rects.size();
        for (const Span& s : spans) rects.push_back({s.left, top, s.right, bottom});
    }
    Region Take() { return std::move(region_); }

private:
    Region region_;
    size_t lastBand_ = 0;
};

namespace {

// The spans of the band of `rects` holding row y; `cursor` walks down with y.
void SpansAt(const std::vector<Rect>& rects, int32_t y, size_t* cursor, std::vector<Span>* spans) {
    spans->clear();
    while (*cursor < rects.size() && rects[*cursor].bottom <= y) ++*cursor;
    for (size_t i = *cursor;
         i < rects.size() && rects[i].top <= y && rects[i].top == rects[*cursor].top; ++i) {
        spans->push_back({rects[i].left, rects[i].right});
    }
}

bool Covers(const std::vector<Span>& spans, size_t* cursor, int32_t x) {
    while (*cursor < spans.size() && spans[*cursor].right <= x) ++*cursor;
    return *cursor < spans.size() && spans[*cursor].left <= x;
}

// Every set operation: walks the elementary bands between all band edges of both regions, and in
// each band the elementary spans between all span edges, keeping what `keep(inA, inB)` says.
template <class Keep>
Region Combine(const Region& a, const Region& b, Keep keep) {
    std::vector<int32_t> ys;
    for (const Region* r : {&a, &b}) {
        for (const Rect& rect : r->Rects()) {
            ys.push_back(rect.top);
            ys.push_back(rect.bottom);
        }
    }
    std::sort(ys.begin(), ys.end());
    ys.erase(std::unique(ys.begin(), ys.end()), ys.end());

    RegionBuilder builder;
    size_t cursorA = 0, cursorB = 0;
    std::vector<Span> spansA, spansB, out;
    std::vector<int32_t> xs;
    for (size_t k = 0; k + 1 < ys.size(); ++k) {
        SpansAt(a.Rects(), ys[k], &cursorA, &spansA);
        SpansAt(b.Rects(), ys[k], &cursorB, &spansB);
        xs.clear();
        for (const std::vector<Span>* spans : {&spansA, &spansB}) {
            for (const Span& s : *spans) {
                xs.push_back(s.left);
                xs.push_back(s.right);
            }
        }
        std::sort(xs.begin(), xs.end());
        xs.erase(std::unique(xs.begin(), xs.end()), xs.end());
        out.clear();
        size_t inA = 0, inB = 0;
        for (size_t i = 0; i + 1 < xs.size(); ++i) {
            if (!keep(Covers(spansA, &inA, xs[i]), Covers(spansB, &inB, xs[i]))) continue;
            if (!out.empty() && out.back().right == xs[i]) {
                out.back().right = xs[i + 1];
            } else {
                out.push_back({xs[i], xs[i + 1]});
            }
        }
        builder.AddBand(ys[k], ys[k + 1], out);
    }
    return builder.Take();
}

Region SpansRegion(const RowSpans& rows) {
    RegionBuilder builder;
    std::vector<Span> one(1);
    for (size_t i = 0; i < rows.left.size(); ++i) {
        if (rows.left[i] >= rows.right[i]) continue;
        one[0] = {rows.left[i], rows.right[i]};
        const int32_t y = rows.top + static_cast<int32_t>(i);
        builder.AddBand(y, y + 1, one);
    }
    return builder.Take();
}

}  // namespace

Region::Region(const Rect& r) {
    if (!r.IsEmpty()) rects_.push_back(r);
}

Rect Region::Bounds() const {
    if (rects_.empty()) return {};
    Rect bounds{rects_.front().left, rects_.front().top, rects_.front().right,
                rects_.back().bottom};
    for (const Rect& r : rects_) {
        bounds.left = std::min(bounds.left, r.left);
        bounds.right = std::max(bounds.right, r.right);
    }
    return bounds;
}

bool Region::Contains(int32_t x, int32_t y) const {
    for (size_t i = BandAt(y); i < rects_.size() && rects_[i].top <= y; ++i) {
        if (x >= rects_[i].left && x < rects_[i].right) return true;
    }
    return false;
}

void Region::Offset(int32_t dx, int32_t dy) {
    for (Rect& r : rects_) r = OffsetRect(r, dx, dy);
}

Region EllipseRegion(const Rect& r) {
    return SpansRegion(EllipseSpans(r, r.top, r.bottom));
}

Region RoundRectRegion(const Rect& r, int32_t cornerWidth, int32_t cornerHeight) {
    return SpansRegion(RoundRectSpans(r, cornerWidth, cornerHeight, r.top, r.bottom));
}

Region MaskRegion(const BitMask& mask) {
    RegionBuilder builder;
    std::vector<Span> spans;
    for (int32_t y = 0; y < mask.height; ++y) {
        spans.clear();
        for (int32_t x = 0; x < mask.width;) {
            if (!mask.Get(x, y)) {
                ++x;
                continue;
            }
            const int32_t start = x;
            while (x < mask.width && mask.Get(x, y)) ++x;
            spans.push_back({mask.left + start, mask.left + x});
        }
        builder.AddBand(mask.top + y, mask.top + y + 1, spans);
    }
    return builder.Take();
}

Region UnionRegions(const Region& a, const Region& b) {
    return Combine(a, b, [](bool inA, bool inB) { return inA || inB; });
}
Region IntersectRegions(const Region& a, const Region& b) {
    return Combine(a, b, [](bool inA, bool inB) { return inA && inB; });
}
Region SubtractRegion(const Region& from, const Region& taken) {
    return Combine(from, taken, [](bool inA, bool inB) { return inA && !inB; });
}
Region XorRegions(const Region& a, const Region& b) {
    return Combine(a, b, [](bool inA, bool inB) { return inA != inB; });
}
