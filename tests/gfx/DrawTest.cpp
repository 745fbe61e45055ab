// Drawing primitives: exact pixels at edges and clips, fitting symmetric shapes, exclusive-or painting once.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "gfx/Draw.h"
#include "support/SurfaceArt.h"
#if QB_GOLDEN_TESTS
#include "support/Golden.h"
#endif

namespace {

Pen PenOf(int32_t width, PenMode mode = PenMode::Copy, uint32_t color = kBlack) { return {color, width, mode}; }
const Pen kBlackPen = PenOf(1);
using DrawFn = std::function<void(Surface&)>;

// A picture drawn on a white surface of the size of the expected art.
void ExpectArt(const DrawFn& draw, const std::string& art, const char* what) {
    Surface s(static_cast<int32_t>(art.find('\n')), static_cast<int32_t>(std::count(art.begin(), art.end(), '\n')));
    draw(s);
    EXPECT_EQ(Art(s), art) << what;
}

TEST(Draw, RectanglesAndTheirClipping) {
    const Region corners = UnionRegions(Region({0, 0, 2, 2}), Region({4, 2, 6, 4}));
    const auto fill = [&](Rect r, Clip c) { return [=](Surface& s) { FillRect(s, c, r, kBlack); }; };
    const auto frame = [](Rect r, int32_t w) { return [=](Surface& s) { FrameRect(s, s.Bounds(), r, PenOf(w)); }; };
    const std::pair<DrawFn, std::string> cases[] = {
        {fill({1, 1, 4, 3}, Rect{0, 0, 6, 4}), Art({"......", ".###..", ".###..", "......"})},
        {fill({-2, -1, 2, 2}, Rect{0, 0, 6, 4}), Art({"##....", "##....", "......", "......"})},
        {fill({1, 0, 6, 4}, Rect{2, 1, 5, 3}), Art({"......", "..###.", "..###.", "......"})},
        {fill({3, 1, 3, 3}, Rect{0, 0, 6, 4}), Art({"......", "......", "......", "......"})},
        {fill({1, 1, 6, 4}, Clip({0, 0, 6, 4}, &corners)), Art({"......", ".#....", "....##", "....##"})},
        {fill({0, 0, 6, 4}, Clip({0, 0, 5, 4}, &corners)), Art({"##....", "##....", "....#.", "....#."})},
        {frame({0, 0, 6, 4}, 1), Art({"######", "#....#", "#....#", "######", "......"})},
        {frame({1, 1, 5, 4}, 0), Art({"......", ".####.", ".#..#.", ".####.", "......"})},
        {frame({0, 0, 6, 5}, 2), Art({"######", "######", "##..##", "######", "######"})},
        {frame({0, 0, 6, 5}, 3), Art({"######", "######", "######", "######", "######"})},
        {frame({-1, -1, 5, 3}, 1), Art({"....#.", "....#.", "#####.", "......", "......"})},
    };
    for (const auto& [draw, art] : cases) ExpectArt(draw, art, "");
    // A centred pen reaches width / 2 outward.
    EXPECT_EQ((std::vector<Rect>{CenteredPenRect({10, 10, 20, 20}, 2), CenteredPenRect({10, 10, 20, 20}, 3)}),
              (std::vector<Rect>{{9, 9, 20, 20}, {9, 9, 21, 21}}));
}

TEST(Draw, ShapesExactly) {
    const Point twice[] = {{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 0}, {4, 0}, {4, 4}, {0, 4}};
    const Pattern checks{{0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55}};
    const std::tuple<const char*, DrawFn, std::string> cases[] = {
        {"ellipse two high", [](Surface& s) { FillEllipse(s, s.Bounds(), {1, 1, 9, 3}, kBlack); },
         Art({"..........", ".########.", ".########.", ".........."})},
        {"square wound twice, even-odd", [&](Surface& s) { FillPolygon(s, s.Bounds(), twice, 8, kBlack); },
         Art({"......", "......"})},
        {"patterns",
         [&](Surface& s) {
             FillRect(s, s.Bounds(), s.Bounds(), kGreen);
             FillPattern(s, s.Bounds(), {1, 0, 5, 2}, checks, kBlack, kWhite);
             PaintPattern(s, s.Bounds(), {1, 2, 5, 4}, checks, kBlack);
         },
         Art({"g.#.#g", "g#.#.g", "gg#g#g", "g#g#gg"})},
    };
    for (const auto& [what, draw, art] : cases) ExpectArt(draw, art, what);
}

TEST(Draw, LinesLeaveOutTheirEndAndBreakTiesTowardTheRightOrBottom) {
    const Region sides = SubtractRegion(Region({0, 0, 8, 5}), Region({2, 0, 6, 5}));
    // pixels in row order
    struct Case { Point from, to; bool lastPixel; std::vector<Point> pixels; Clip clip = Rect{0, 0, 8, 5}; };
    const Case cases[] = {
        {{0, 0}, {5, 0}, false, {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}}},
        {{0, 0}, {5, 0}, true, {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}}},
        {{5, 0}, {0, 0}, false, {{1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}}},
        {{0, 0}, {6, 3}, false, {{0, 0}, {1, 1}, {2, 1}, {3, 2}, {4, 2}, {5, 3}}},
        {{6, 3}, {0, 0}, false, {{1, 1}, {2, 1}, {3, 2}, {4, 2}, {5, 3}, {6, 3}}},
        {{1, 0}, {3, 4}, true, {{1, 0}, {2, 1}, {2, 2}, {3, 3}, {3, 4}}},
        {{3, 3}, {3, 3}, false, {}},
        {{3, 3}, {3, 3}, true, {{3, 3}}},
        {{0, 2}, {7, 2}, true, {{0, 2}, {1, 2}, {6, 2}, {7, 2}}, Clip({0, 0, 8, 5}, &sides)},
        {{-3, 1}, {20, 1}, false, {{0, 1}, {1, 1}, {2, 1}}, Rect{-10, 0, 3, 3}},
    };
    for (const Case& c : cases) {
        Surface s(8, 5);
        DrawLine(s, c.clip, c.from.x, c.from.y, c.to.x, c.to.y, kBlackPen, c.lastPixel);
        std::vector<Point> pixels;
        for (int32_t i = 0; i < 40; ++i) {
            if (s.pixels[static_cast<size_t>(i)] == kBlack) pixels.push_back({i % 8, i / 8});
        }
        EXPECT_EQ(pixels, c.pixels) << c.from.x << "," << c.from.y << " to " << c.to.x << "," << c.to.y;
    }
}

// Drawn in exclusive-or mode with white on white, each primitive must give exactly the black it
// gives in copy mode (a pixel painted twice would come back white); a second time restores white.
TEST(Draw, ExclusiveOrPaintsEachPixelOnceAndUndoesItself) {
    const Region ring = SubtractRegion(Region({2, 2, 30, 20}), EllipseRegion({6, 5, 26, 17}));
    const Point star[] = {{16, 1}, {22, 21}, {5, 8}, {28, 8}, {10, 21}};
    using Draw = std::function<void(Surface&, PenMode, uint32_t)>;
    const std::pair<const char*, Draw> cases[] = {
        {"frame 3", [](Surface& s, PenMode m, uint32_t c) { FrameRect(s, s.Bounds(), {3, 3, 20, 19}, PenOf(3, m, c)); }},
        {"ellipse frame 4",
         [](Surface& s, PenMode m, uint32_t c) { FrameEllipse(s, s.Bounds(), {-4, 2, 30, 21}, PenOf(4, m, c)); }},
        {"round rect frame 2",
         [](Surface& s, PenMode m, uint32_t c) { FrameRoundRect(s, s.Bounds(), {2, 1, 29, 22}, 12, 9, PenOf(2, m, c)); }},
        {"wide line", [](Surface& s, PenMode m, uint32_t c) { DrawLine(s, s.Bounds(), 1, 20, 25, 3, PenOf(5, m, c)); }},
        {"wide steep line",
         [](Surface& s, PenMode m, uint32_t c) { DrawLine(s, s.Bounds(), 4, 1, 9, 22, PenOf(6, m, c), true); }},
        {"star", [&](Surface& s, PenMode m, uint32_t c) { FillPolygon(s, s.Bounds(), star, 5, c, m); }},
        {"clipped ellipse",
         [&](Surface& s, PenMode m, uint32_t c) { FillEllipse(s, Clip(s.Bounds(), &ring), {0, 0, 32, 24}, c, m); }},
    };
    const std::string white = Art(Surface(32, 24));
    for (const auto& [what, draw] : cases) {
        Surface copied(32, 24), xored(32, 24);
        draw(copied, PenMode::Copy, kBlack);
        draw(xored, PenMode::Xor, kWhite);
        EXPECT_EQ(Art(xored), Art(copied)) << what;
        EXPECT_NE(Art(copied), white) << what << " drew nothing";
        draw(xored, PenMode::Xor, kWhite);
        EXPECT_EQ(Art(xored), white) << what;
    }
}

TEST(Draw, CurvedShapesFitTheirRectangleAndAreSymmetric) {
    for (int32_t w = 1; w <= 23; ++w) {
        for (int32_t h = 1; h <= 23; h += (w % 3) + 1) {
            const Rect r{3, 2, 3 + w, 2 + h};
            for (int32_t kind = 0; kind < 3; ++kind) {
                Surface s(30, 28), mirrored(30, 28);
                if (kind == 0) FillEllipse(s, s.Bounds(), r, kBlack);
                if (kind == 1) FrameEllipse(s, s.Bounds(), r, kBlackPen);
                if (kind == 2) FrameRoundRect(s, s.Bounds(), r, w / 2, h / 3 + 2, PenOf(2));
                Rect box{};
                for (int32_t y = 0; y < s.height; ++y) {
                    for (int32_t x = 0; x < s.width; ++x) {
                        if (s.Row(y)[x] == kBlack) box = UnionRect(box, {x, y, x + 1, y + 1});
                        // Mirrored in both axes about the rectangle's centre.
                        const int32_t mx = r.left + r.right - 1 - x, my = r.top + r.bottom - 1 - y;
                        if (mx >= 0 && my >= 0 && mx < 30 && my < 28) mirrored.Row(my)[mx] = s.Row(y)[x];
                    }
                }
                EXPECT_EQ(box, r) << w << "x" << h << " kind " << kind;
                EXPECT_EQ(Art(mirrored), Art(s)) << w << "x" << h << " kind " << kind;
            }
        }
    }
}

#if QB_GOLDEN_TESTS
// The primitives as cards use them: buttons of each outline, a hilite, lines of many slopes, wide
// pens, a pattern. Look at tests/golden/draw-primitives.png after a change.
TEST(Draw, PrimitivesGolden) {
    Surface s(200, 150);
    const Clip all = s.Bounds();
    for (int32_t i = 0; i < 2; ++i) {  // round-rectangle buttons with a heavier edge, one hilited
        const Rect b{8 + 70 * i, 8, 68 + 70 * i, 32};
        FillRoundRect(s, all, b, 16, 16, 0xC0C0C0);
        FrameRoundRect(s, all, b, 16, 16, kBlackPen);
        DrawLine(s, all, b.left + 6, b.bottom - 2, b.right - 6, b.bottom - 2, kBlackPen);
        DrawLine(s, all, b.right - 2, b.top + 6, b.right - 2, b.bottom - 6, kBlackPen);
        if (i == 1) InvertRegion(s, all, RoundRectRegion(b, 16, 16));
    }
    FrameRect(s, all, {150, 8, 188, 28}, kBlackPen);  // a shadowed rectangle
    FillRect(s, all, {152, 28, 190, 30}, kBlack);
    FillRect(s, all, {188, 10, 190, 30}, kBlack);
    FillEllipse(s, all, {8, 40, 58, 70}, kRed);
    FrameEllipse(s, all, {8, 40, 58, 70}, kBlackPen);
    FrameEllipse(s, all, {64, 40, 94, 70}, PenOf(4, PenMode::Copy, kBlue));
    const Point diamond[] = {{120, 40}, {140, 55}, {120, 70}, {100, 55}};
    FillPolygon(s, all, diamond, 4, kGreen);
    FramePolygon(s, all, diamond, 4, kBlackPen);
    for (int32_t i = 0; i <= 12; ++i) DrawLine(s, all, 30, 140, 30 + 5 * i, 80 + 5 * (12 - i) / 2, kBlackPen, true);
    DrawLine(s, all, 100, 80, 190, 100, PenOf(3));
    DrawLine(s, all, 100, 140, 150, 90, PenOf(7, PenMode::Copy, kBlue));
    FillPattern(s, all, {150, 40, 190, 70}, Pattern{{0x88, 0x22, 0x88, 0x22, 0x88, 0x22, 0x88, 0x22}}, kBlack, kWhite);
    InvertRect(s, all, {0, 120, 200, 130});
    ExpectMatchesGolden(s, "draw-primitives");
}
#endif

}  // namespace
