#include "text/Font.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <tuple>

#include "platform/HostFonts.h"
#include "text/Fontmap.h"
#include "support/SurfaceArt.h"

namespace {

const TextFont kSans12 = TextFont{"Arial", 12};

// The box of the pixels drawn on a white surface.
Rect Touched(const Surface& s) { return ChangedBox(s, Surface(s.width, s.height)); }
bool Inside(const Rect& inner, const Rect& outer) { return IntersectRect(inner, outer) == inner; }

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
    EXPECT_LT(MeasureText(TextFont{"Arial", 9}, "Hello"), hello);
    EXPECT_LT(MeasureText(kSans12, "Hello world"), MeasureText(TextFont{"Arial", 12, kStyleBold}, "Hello world"));
    EXPECT_EQ(MeasureText(TextFont{"Courier New", 12}, "iiii"), MeasureText(TextFont{"Courier New", 12}, "MMMM"));
    EXPECT_EQ(MeasureText(kSans12, "a\x01\tb"), MeasureText(kSans12, "ab"));  // control bytes have no width
}

// Half outside the surface on every side: only the surface's pixels are written.
TEST_F(FontTest, DrawingStaysOnTheSurface) {
    Surface small(20, 10);
    DrawText(small, TextFont{"Arial", 24}, -8, 12, "WWW", kBlack, {-50, -50, 50, 50});
    EXPECT_FALSE(Touched(small).IsEmpty());
}

TEST_F(FontTest, StylesChangeTheGlyphsTheSameWayAfterARestart) {
    auto render = [](const TextFont& f) {
        Surface s(200, 30);
        DrawText(s, f, 3, 20, "Quillbrook \x93Stacks\x94 \x80 9", kBlack, s.Bounds());
        return s.pixels;
    };
    // The slanted fallback italic of a face without an italic file.
    const auto italicSymbol = render(TextFont{"Symbol", 12, kStyleItalic});
    EXPECT_NE(render(TextFont{"Symbol", 12}), italicSymbol);
    ShutdownFonts();  // a fresh FreeType and fresh faces make the same glyphs
    EXPECT_EQ(render(TextFont{"Symbol", 12, kStyleItalic}), italicSymbol);
}

TEST_F(FontTest, TextIsLaidOutInLines) {
    const int32_t oneTwo = MeasureText(kSans12, "one two");
    const int32_t one = MeasureText(kSans12, "one");
    struct Case { const char* text; int32_t width; bool wrap; std::vector<std::string> lines; };
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
        std::vector<std::string> got;
        for (const TextLine& line : LayOutText(kSans12, text, c.width, c.wrap)) {
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
    const std::pair<TextAlign, int32_t> cases[] = {  // where the text's advance box starts
        {TextAlign::Left, box.left}, {TextAlign::Centre, box.left + (box.Width() - width) / 2},
        {TextAlign::Right, box.right - width}};
    for (const auto& [align, left] : cases) {
        Surface s(200, 80);
        EXPECT_EQ(DrawTextBox(s, kSans12, box, "Hi there", kBlack, align, true), m.lineHeight);
        const Rect touched = Touched(s);
        EXPECT_NEAR(touched.left, left, 2);
        EXPECT_NEAR(touched.right, left + width, 3);
        EXPECT_TRUE(Inside(touched, {box.left, box.top, box.right, box.top + m.lineHeight}));
    }
    // Wrapped to the box, a line break kept, and cut at the box's bottom; the height counts all three.
    const Rect narrow{10, 5, 10 + MeasureText(kSans12, "I could not find the"), 5 + 2 * m.lineHeight};
    Surface s(200, 100);
    const std::string text = "I could not find the file you asked for.\nShall I look for it?";
    EXPECT_EQ(DrawTextBox(s, kSans12, narrow, text, kBlack, TextAlign::Left, true), 3 * m.lineHeight);
    EXPECT_TRUE(Inside(Touched(s), narrow));
    EXPECT_GT(Touched(s).bottom, narrow.top + m.lineHeight);  // the second line is there
}

TEST_F(FontTest, LogFontsBecomeFonts) {
    LogFont lf;
    std::snprintf(lf.faceName, sizeof lf.faceName, "%s", "Times New Roman");
    lf.weight = 700;
    lf.italic = 1;
    for (const auto& [height, sizePx] : {std::pair{-15, 15}, {-100000, kMaxFontPx}}) {
        lf.height = height;
        const TextFont f = TextFontFromLogFont(lf);
        EXPECT_EQ(std::make_tuple(f.face, f.sizePx, int{f.style}),
                  std::make_tuple(std::string("Times New Roman"), sizePx, int{kStyleBold | kStyleItalic}));
    }
    // A positive height asks for the cell: the font's lines are that tall.
    lf.height = 20;
    EXPECT_NEAR(GetTextMetrics(TextFontFromLogFont(lf)).lineHeight, 20, 1);
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
    EXPECT_TRUE(Touched(s).IsEmpty());
    SetHostFontFolder("");
    EXPECT_TRUE(FontAvailable(f));
}

}  // namespace
