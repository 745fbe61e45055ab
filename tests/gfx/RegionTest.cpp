// Regions and 1-bit masks: set algebra against plain booleans, the banded form, and masks read from
// pictures with the right polarity and row order. The shapes' regions are the blit and draw goldens'.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "gfx/BitMask.h"
#include "gfx/Draw.h"
#include "gfx/Region.h"
#include "support/PictureMaker.h"
#include "support/SurfaceArt.h"

namespace {

// Sorted bands sharing top and bottom, apart from each other; spans apart inside a band; and no
// two touching bands alike (else they would be one).
::testing::AssertionResult IsBanded(const Region& region) {
    struct Band { int32_t top, bottom; std::vector<std::pair<int32_t, int32_t>> spans; };
    std::vector<Band> bands;
    for (const Rect& r : region.Rects()) {
        if (r.IsEmpty()) return ::testing::AssertionFailure() << "an empty rectangle";
        if (bands.empty() || r.top != bands.back().top) {
            if (!bands.empty() && r.top < bands.back().bottom)
                return ::testing::AssertionFailure() << "overlap at " << r.top;
            bands.push_back({r.top, r.bottom, {}});
        } else if (r.bottom != bands.back().bottom || r.left <= bands.back().spans.back().second) {
            return ::testing::AssertionFailure() << "band at " << r.top << " broken";
        }
        bands.back().spans.emplace_back(r.left, r.right);
    }
    for (size_t i = 1; i < bands.size(); ++i) {
        if (bands[i].top == bands[i - 1].bottom && bands[i].spans == bands[i - 1].spans) {
            return ::testing::AssertionFailure() << "bands at " << bands[i - 1].top << " and " << bands[i].top << " alike";
        }
    }
    return ::testing::AssertionSuccess();
}

TEST(Region, AlgebraMatchesPlainSetsPixelByPixel) {
    uint32_t seed = 12345;
    const auto next = [&](int32_t n) {
        seed = seed * 1103515245u + 12345u;
        return static_cast<int32_t>((seed >> 16) % static_cast<uint32_t>(n));
    };
    struct Op { const char* name; Region (*combine)(const Region&, const Region&); bool (*keep)(bool, bool); };
    const Op ops[] = {
        {"union", UnionRegions, [](bool a, bool b) { return a || b; }},
        {"intersect", IntersectRegions, [](bool a, bool b) { return a && b; }},
        {"subtract", SubtractRegion, [](bool a, bool b) { return a && !b; }},
        {"xor", XorRegions, [](bool a, bool b) { return a != b; }},
    };
    for (int trial = 0; trial < 300; ++trial) {
        std::vector<Rect> rects[2];
        Region regions[2];
        for (int k = 0; k < 2; ++k) {
            for (int n = 1 + next(5); n > 0; --n) {
                const int32_t left = next(20) - 2, top = next(20) - 2;
                rects[k].push_back({left, top, left + next(10), top + next(10)});
                regions[k] = UnionRegions(regions[k], Region(rects[k].back()));
            }
        }
        const auto in = [&](int k, int32_t x, int32_t y) {
            return std::any_of(rects[k].begin(), rects[k].end(), [&](const Rect& r) { return r.Contains(x, y); });
        };
        for (const Op& op : ops) {
            const Region c = op.combine(regions[0], regions[1]);
            ASSERT_TRUE(IsBanded(c)) << op.name << " trial " << trial;
            for (int32_t y = -3; y < 30; ++y) {
                for (int32_t x = -3; x < 30; ++x) {
                    ASSERT_EQ(c.Contains(x, y), op.keep(in(0, x, y), in(1, x, y)))
                        << op.name << " trial " << trial << " at " << x << "," << y;
                }
            }
        }
        // One set, one form: the same pixels reached two ways compare equal.
        const Region& a = regions[0];
        const Region& b = regions[1];
        EXPECT_EQ(UnionRegions(a, b), UnionRegions(SubtractRegion(a, b), b)) << trial;
        EXPECT_EQ(XorRegions(a, b), SubtractRegion(UnionRegions(a, b), IntersectRegions(a, b))) << trial;
    }
    EXPECT_EQ(UnionRegions(Region({0, 0, 4, 2}), Region({0, 2, 4, 5})), Region({0, 0, 4, 5}));
}

std::string MaskArt(const BitMask& m) {
    std::string text;
    for (int32_t y = 0; y < m.height; ++y) {
        for (int32_t x = 0; x < m.width; ++x) text += m.Get(x, y) ? '1' : '0';
        text += '\n';
    }
    return text;
}

TEST(BitMask, FromAMonochromePictureIndexOneIsSetAndRowsRunTopDown) {
    // Index 0 is white.
    const MemRef image = PictureOfPixels(1, {{1, 1, 0, 0, 0, 0, 0, 0, 0, 1}, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
                                             {0, 0, 1, 0, 0, 0, 0, 0, 1, 0}}, {0xFFFFFF});
    BitMask mask = MaskFromDibImage(image);
    FreeMemRef(image);
    ASSERT_EQ(mask.stride, 4);
    EXPECT_EQ(MaskArt(mask), "1100000001\n0000000000\n0010000010\n");
    mask.left = 5;
    mask.top = 7;
    const std::tuple<int32_t, int32_t, bool> cases[] = {
        {5, 7, true}, {7, 7, false}, {14, 7, true}, {15, 7, false}, {7, 9, true}, {4, 7, false}, {5, 6, false}};
    for (const auto& [x, y, set] : cases) EXPECT_EQ(mask.Contains(x, y), set) << x << "," << y;
    // As a region and back, where the mask stands.
    const Region region = MaskRegion(mask);
    EXPECT_EQ(region.Bounds(), (Rect{5, 7, 15, 10}));
    EXPECT_EQ(MaskArt(MaskFromRegion(region)), MaskArt(mask));

    InvertMask(mask);
    EXPECT_EQ(MaskArt(mask), "0011111110\n1111111111\n1101111101\n");
    for (int32_t y = 0; y < mask.height; ++y) {
        EXPECT_EQ(mask.Row(y)[1] & 0x3F, 0) << "bits past the width stay clear";
        EXPECT_EQ(mask.Row(y)[2] | mask.Row(y)[3], 0);
    }
    const MemRef gray = NewDibImage(4, 4, 8);
    EXPECT_EQ(MaskFromDibImage(gray).width, 0);
    FreeMemRef(gray);
}

}  // namespace
