#include "text/StyledText.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

const TextFont kMono{"Courier New", 12};

StyledDocument Plain(const std::string& text) { return {text, {{0, {kMono, kBlack}}}, TextAlign::Left}; }

// Each line as (start, visibleEnd, end).
using Offsets = std::vector<std::tuple<size_t, size_t, size_t>>;
Offsets OffsetsOf(const TextLayout& layout) {
    Offsets out;
    for (const LaidLine& l : layout.lines) out.emplace_back(l.start, l.visibleEnd, l.end);
    return out;
}

TEST(StyledTextTest, LinesBreakAfterSpacesAndInsideLongWords) {
    const int32_t c = MeasureText(kMono, "a");
    ASSERT_GT(c, 0);
    const struct {
        const char* text;
        int32_t columns;
        Offsets lines;
    } cases[] = {
        {"aaa bbb", 5, {{0, 3, 4}, {4, 7, 7}}},
        {"aaa bbb ccc", 7, {{0, 7, 8}, {8, 11, 11}}},  // a line just as wide fits
        {"aa   bb", 4, {{0, 2, 5}, {5, 7, 7}}},         // spaces hang past the margin
        {"abcdefgh", 3, {{0, 3, 3}, {3, 6, 6}, {6, 8, 8}}},
        {"ab abcdefgh", 4, {{0, 2, 3}, {3, 7, 7}, {7, 11, 11}}},
        {"a\r\rb", 10, {{0, 1, 2}, {2, 2, 3}, {3, 4, 4}}},
        {"ab\r", 10, {{0, 2, 3}, {3, 3, 3}}},
        {"", 10, {{0, 0, 0}}},
        {"wide", 0, {{0, 1, 1}, {1, 2, 2}, {2, 3, 3}, {3, 4, 4}}},
    };
    for (const auto& t : cases) {
        SCOPED_TRACE(t.text);
        const TextLayout layout = LayOutDocument(Plain(t.text), t.columns * c);
        EXPECT_EQ(OffsetsOf(layout), t.lines);
        for (const LaidLine& l : layout.lines) EXPECT_EQ(l.width, int32_t(l.visibleEnd - l.start) * c);
    }
}

// Ten lines of 10 pixels seen through a view 35 pixels tall: the text scrolls at most to the line at
// 70, from which the last 30 pixels fit.
TEST(StyledTextTest, ScrollingKeepsALineAtTheTopAndTheTextInView) {
    TextLayout layout;
    for (int32_t i = 0; i < 10; ++i) layout.lines.push_back({size_t(i), size_t(i), size_t(i + 1), i * 10, 10, 8, 0});
    layout.height = 100;
    EXPECT_EQ(ScrollLimit(layout, 35), 70);
    EXPECT_EQ(ScrollLimit(layout, 200), 0);
    struct Case { const char* what; int32_t got, want; };
    const Case cases[] = {
        {"a line on", ScrollByLines(layout, 0, 1, 35), 10},
        {"from inside a line", ScrollByLines(layout, 65, 1, 35), 70},
        {"past the end", ScrollByLines(layout, 70, 5, 35), 70},
        {"before the start", ScrollByLines(layout, 10, -3, 35), 0},
        {"a page on", ScrollByPage(layout, 0, true, 35), 30},
        {"a page on near the end", ScrollByPage(layout, 50, true, 35), 70},
        {"a page back", ScrollByPage(layout, 70, false, 35), 40},
        {"a page back near the start", ScrollByPage(layout, 10, false, 35), 0},
        {"a page back in a view shorter than a line", ScrollByPage(layout, 50, false, 5), 40},
        {"to a line's top", ScrollToLine(layout, 33, 35), 30},
        {"to the end", ScrollToLine(layout, 95, 35), 70},
    };
    for (const Case& c : cases) EXPECT_EQ(c.got, c.want) << c.what;
}

}  // namespace
