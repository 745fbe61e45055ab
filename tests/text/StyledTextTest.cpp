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

}  // namespace
