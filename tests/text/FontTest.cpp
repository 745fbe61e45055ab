#include "text/Font.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <tuple>

#include "platform/HostFonts.h"
#include "text/Fontmap.h"

namespace {

const TextFont kSans12 = TextFont{"Arial", 12};

// The box of the pixels that differ from `background`; empty when none do.
Rect Touched(const Surface& s, uint32_t background = kWhite) {
    Rect r{s.width, s.height, 0, 0};
    for (int32_t y = 0; y < s.height; ++y) {
        for (int32_t x = 0; x < s.width; ++x) {
            if (s.Row(y)[x] == background) continue;
            r.left = std::min(r.left, x);
            r.top = std::min(r.top, y);
            r.right = std::max(r.right, x + 1);
            r.bottom = std::max(r.bottom, y + 1);
        }
    }
    return r;
}

bool Inside(const Rect& inner, const Rect& outer) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

int DarkPixels(const Surface& s) {
    int n = 0;
    for (uint32_t p : s.pixels) n += GreenOf(p) < 128;
    return n;
}

class FontTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(FontAvailable(kSans12) && FontAvailable(TextFont{"Symbol", 12}))
            << "font files missing in " << HostFontFolder() << ": run scripts/install-deps.sh";
    }
};

TEST_F(FontTest, WidthsGrowWithTextSizeAndWeight) {
    const int32_t hello = MeasureText(kSans12, "Hello");
    EXPECT_GE(hello, 26);  // Arial's advances make 27.3 pixels at 12
    EXPECT_LE(hello, 31);
    const std::string text = "Quillbrook stacks, 1996!";
    for (size_t n = 1; n < text.size(); ++n) {
        EXPECT_LT(MeasureText(kSans12, text.substr(0, n)), MeasureText(kSans12, text.substr(0, n + 1))) << n;
    }
    const std::pair<TextFont, TextFont> smallerLarger[] = {
        {TextFont{"Arial", 9}, TextFont{"Arial", 12}},
        {TextFont{"Times", 18}, TextFont{"Times", 36}},
        {TextFont{"Arial", 12}, TextFont{"Arial", 12, kStyleBold}},
        {TextFont{"Times", 12}, TextFont{"Courier", 12}},
    };
    for (const auto& [smaller, larger] : smallerLarger) {
        EXPECT_LT(MeasureText(smaller, "Hello world"), MeasureText(larger, "Hello world")) << larger.face;
    }
    EXPECT_EQ(MeasureText(TextFont{"Courier New", 12}, "iiii"), MeasureText(TextFont{"Courier New", 12}, "MMMM"));
    EXPECT_EQ(MeasureText(kSans12, "a\x01\tb"), MeasureText(kSans12, "ab"));  // control bytes have no width
}

TEST_F(FontTest, DrawingStaysInTheTextBoxAndTheClip) {
    const TextMetrics m = GetTextMetrics(kSans12);
    struct Case {
        const char* text;
        uint8_t style;
    };
    for (const Case& c : {Case{"Hello", 0}, Case{"Wagj|", kStyleItalic},
                          Case{"Underlined", kStyleUnderline}, Case{"Bold", kStyleBold}}) {
        const TextFont f = TextFont{"Arial", 12, c.style};
        Surface s(100, 40);
        DrawText(s, f, 10, 20, c.text, kBlack, s.Bounds());
        const Rect box{10 - 2, 20 - m.ascent, 10 + MeasureText(f, c.text) + 2, 20 + m.descent};
        EXPECT_TRUE(Inside(Touched(s), box)) << c.text;
        EXPECT_GT(DarkPixels(s), 20) << c.text;

        const Rect clip{14, 12, 30, 18};
        Surface clipped(100, 40);
        DrawText(clipped, f, 10, 20, c.text, kBlack, clip);
        EXPECT_TRUE(Inside(Touched(clipped), clip)) << c.text;
        for (int32_t y = clip.top; y < clip.bottom; ++y) {
            for (int32_t x = clip.left; x < clip.right; ++x)
                EXPECT_EQ(clipped.Row(y)[x], s.Row(y)[x]);
        }
    }

    // Half outside the surface on every side: only the surface's pixels are written.
    Surface small(20, 10);
    DrawText(small, TextFont{"Arial", 24}, -8, 12, "WWW", kBlack, {-50, -50, 50, 50});
    EXPECT_GT(DarkPixels(small), 0);
}

TEST_F(FontTest, UnderlineIsALineBelowTheBaseline) {
    Surface plain(80, 30), underlined(80, 30);
    DrawText(plain, kSans12, 5, 15, "Hello", kBlack, plain.Bounds());
    DrawText(underlined, TextFont{"Arial", 12, kStyleUnderline}, 5, 15, "Hello", kBlack,
             underlined.Bounds());
    const int32_t width = MeasureText(kSans12, "Hello");
    int lineRows = 0;
    for (int32_t y = 15; y < 15 + GetTextMetrics(kSans12).descent; ++y) {
        bool full = true;
        for (int32_t x = 5; x < 5 + width; ++x) full &= underlined.Row(y)[x] == kBlack;
        lineRows += full;
        EXPECT_NE(plain.Row(y)[5 + width / 2], kBlack);
    }
    EXPECT_GE(lineRows, 1);
}

TEST_F(FontTest, CoverageBlendsTheColourIntoTheBackground) {
    const uint32_t red = Rgb(255, 0, 0);
    Surface s(60, 30, kWhite);
    DrawText(s, TextFont{"Arial", 14}, 2, 20, "Os", red, s.Bounds());
    int solid = 0, blended = 0;
    for (uint32_t p : s.pixels) {
        ASSERT_EQ(RedOf(p), 255);
        ASSERT_EQ(GreenOf(p), BlueOf(p));
        solid += p == red;
        blended += p != red && p != kWhite;
    }
    EXPECT_GT(solid, 0);
    EXPECT_GT(blended, 0);  // grey edges, not a hard mask
}

TEST_F(FontTest, TheSameTextGivesTheSamePixels) {
    auto render = [](const TextFont& f) {
        Surface s(200, 30);
        DrawText(s, f, 3, 20, "Quillbrook \x93Stacks\x94 \x80 9", kBlack, s.Bounds());
        return s.pixels;
    };
    for (const TextFont& f : {kSans12, TextFont{"Times", 10, kStyleItalic},
                              TextFont{"Symbol", 12, kStyleItalic | kStyleBold}}) {
        const auto first = render(f);
        EXPECT_EQ(render(f), first) << f.face;
        ShutdownFonts();  // a fresh FreeType and fresh faces make the same glyphs
        EXPECT_EQ(render(f), first) << f.face;
    }
    // Styles really change the glyphs, the slanted fallback italic included.
    EXPECT_NE(render(kSans12), render(TextFont{"Arial", 12, kStyleItalic}));
    EXPECT_NE(render(TextFont{"Symbol", 12}), render(TextFont{"Symbol", 12, kStyleItalic}));
    EXPECT_NE(render(kSans12), render(TextFont{"Times", 12}));
}

TEST_F(FontTest, TextIsLaidOutInLines) {
    const int32_t oneTwo = MeasureText(kSans12, "one two");
    const int32_t one = MeasureText(kSans12, "one");
    struct Case {
        const char* text;
        int32_t width;
        bool wrap;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {"one two three", oneTwo, true, {"one two", "three"}},
        {"one two three", oneTwo - 1, true, {"one", "two", "three"}},
        {"one two three", one, false, {"one two three"}},
        {"one   two  ", one, true, {"one", "two  "}},  // the spaces at a break go, the text's end stays
        {"x incomprehensibilities y", one, true, {"x", "incomprehensibilities", "y"}},
        {"a\nb\r\nc\rd", 1000, false, {"a", "b", "c", "d"}},
        {"a\n\nb", 1000, true, {"a", "", "b"}},
        {"end\n", 1000, true, {"end", ""}},
        {"  indented", 1000, true, {"  indented"}},
        {"", 1000, true, {}},
    };
    for (const Case& c : cases) {
        const std::string_view text = c.text;
        const std::vector<TextLine> lines = LayOutText(kSans12, text, c.width, c.wrap);
        std::vector<std::string> got;
        for (const TextLine& line : lines) {
            got.emplace_back(text.substr(line.start, line.length));
            EXPECT_EQ(line.width, MeasureText(kSans12, got.back())) << c.text;
        }
        EXPECT_EQ(got, c.lines) << c.text;
    }
}

TEST_F(FontTest, TextBoxesAlignAndWrapInsideTheBox) {
    const TextMetrics m = GetTextMetrics(kSans12);
    const int32_t width = MeasureText(kSans12, "Hi there");
    const Rect box{20, 10, 180, 60};
    struct Case {
        TextAlign align;
        int32_t left;  // where the text's advance box starts
    };
    for (const Case& c : {Case{TextAlign::Left, box.left},
                          Case{TextAlign::Centre, box.left + (box.Width() - width) / 2},
                          Case{TextAlign::Right, box.right - width}}) {
        Surface s(200, 80);
        EXPECT_EQ(DrawTextBox(s, kSans12, box, "Hi there", kBlack, c.align, true), m.lineHeight);
        const Rect touched = Touched(s);
        EXPECT_NEAR(touched.left, c.left, 2);
        EXPECT_NEAR(touched.right, c.left + width, 3);
        EXPECT_TRUE(Inside(touched, {box.left, box.top, box.right, box.top + m.lineHeight}));
    }

    // An alert's text: wrapped to the box, a line break kept, and cut at the box's bottom.
    const std::string alert = "I could not find the file you asked for.\nShall I look for it?";
    const Rect narrow{10, 5, 10 + MeasureText(kSans12, "I could not find the"),
                      5 + 2 * m.lineHeight};
    Surface s(200, 100);
    const int32_t height = DrawTextBox(s, kSans12, narrow, alert, kBlack, TextAlign::Left, true);
    EXPECT_EQ(height, 3 * m.lineHeight);  // "I could not find the" / "file you asked for." / "Shall I ..."
    EXPECT_TRUE(Inside(Touched(s), narrow));
    EXPECT_GT(Touched(s).bottom, narrow.top + m.lineHeight);  // the second line is there
}

TEST_F(FontTest, LogFontsBecomeFonts) {
    LogFont lf;
    std::snprintf(lf.faceName, sizeof lf.faceName, "%s", "Times New Roman");
    lf.height = -15;
    lf.weight = 700;
    lf.italic = 1;
    TextFont f = TextFontFromLogFont(lf);
    EXPECT_EQ(std::make_tuple(f.face, f.sizePx, int{f.style}),
              std::make_tuple(std::string("Times New Roman"), 15, int{kStyleBold | kStyleItalic}));

    lf.height = -100000;
    EXPECT_EQ(TextFontFromLogFont(lf).sizePx, kMaxFontPx);

    // A positive height asks for the cell: the font's lines are that tall.
    for (int32_t cell : {10, 14, 20, 33}) {
        lf.height = cell;
        EXPECT_NEAR(GetTextMetrics(TextFontFromLogFont(lf)).lineHeight, cell, 1) << cell;
    }
    EXPECT_EQ(TextFontFromLogFont(LogFont{}).face, "Arial");
}

TEST(FontFilesTest, MissingFilesDrawNothing) {
    SetHostFontFolder("/nonexistent-font-folder");
    Surface s(40, 20);
    const TextFont f = TextFont{"Arial", 12};
    EXPECT_FALSE(FontAvailable(f));
    EXPECT_EQ(MeasureText(f, "Hello"), 0);
    DrawText(s, f, 2, 15, "Hello", kBlack, s.Bounds());
    EXPECT_EQ(DrawTextBox(s, f, s.Bounds(), "a\nb", kBlack, TextAlign::Left, true), 0);
    EXPECT_EQ(Touched(s).right, 0);
    SetHostFontFolder("");
    EXPECT_TRUE(FontAvailable(f));
}

}  // namespace
