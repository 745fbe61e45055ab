#include "text/StyledEdit.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

const TextFont kMono{"Courier New", 12};
const TextFont kBig{"Courier New", 20};
const TextStyle kA{kMono, kBlack};
const TextStyle kB{kMono, 0xC02020};
const TextStyle kC{kBig, kBlack};

// A document with one style letter per character ('A', 'B', 'C'), and "|X" after them for a run
// kept at the very end.
StyledDocument Doc(const std::string& text, const std::string& styles) {
    StyledDocument d;
    d.text = text;
    const auto style = [](char c) { return c == 'A' ? kA : c == 'B' ? kB : kC; };
    for (size_t i = 0; i < styles.size(); ++i) {
        const bool atEnd = styles[i] == '|';
        if (atEnd) ++i;
        const size_t at = atEnd ? text.size() : i;
        if (d.runs.empty() || !(d.runs.back().style == style(styles[i]))) d.runs.push_back({at, style(styles[i])});
    }
    return d;
}

// The style letter of each character, as Doc takes them.
std::string Styles(const StyledDocument& d) {
    std::string out;
    for (size_t i = 0; i < d.text.size(); ++i) {
        const TextStyle& s = d.StyleAt(i);
        out += s == kA ? 'A' : s == kB ? 'B' : 'C';
    }
    return out;
}

TEST(StyledEditTest, EditsKeepEachCharacterItsStyle) {
    using Edit = void (*)(StyledDocument&);
    const struct {
        const char* what;
        Edit edit;
        const char* text;
        const char* styles;
    } cases[] = {
        {"typing inside takes the style before", [](StyledDocument& d) { InsertText(d, 3, "xy"); }, "abcxydef",
         "AAAAABBB"},
        {"typing at the start takes the first", [](StyledDocument& d) { InsertText(d, 0, "x"); }, "xabcdef", "AAAABBB"},
        {"typing at the end takes the last", [](StyledDocument& d) { InsertText(d, 6, "x"); }, "abcdefx", "AAABBBB"},
        {"deleting across runs", [](StyledDocument& d) { DeleteText(d, 2, 4); }, "abef", "AABB"},
        {"deleting a whole run", [](StyledDocument& d) { DeleteText(d, 3, 6); }, "abc", "AAA"},
        {"deleting everything", [](StyledDocument& d) { DeleteText(d, 0, 6); }, "", ""},
        {"restyling a middle piece", [](StyledDocument& d) { ChangeStyle(d, 1, 5, [](TextStyle& s) { s = kC; }); },
         "abcdef", "ACCCCB"},
        {"restyling nothing restyles all", [](StyledDocument& d) { ChangeStyle(d, 2, 2, [](TextStyle& s) { s = kC; }); },
         "abcdef", "CCCCCC"},
        {"a piece pasted keeps its styles", [](StyledDocument& d) { InsertDocument(d, 4, Doc("xyz", "ACA")); },
         "abcdxyzef", "AAABACABB"},
        {"a piece pasted at the end", [](StyledDocument& d) { InsertDocument(d, 6, Doc("xy", "CC")); }, "abcdefxy",
         "AAABBBCC"},
        {"a piece copied and pasted at the start",
         [](StyledDocument& d) { InsertDocument(d, 0, CopyRange(d, 2, 4)); }, "cdabcdef", "ABAAABBB"},
    };
    for (const auto& c : cases) {
        StyledDocument d = Doc("abcdef", "AAABBB");
        c.edit(d);
        EXPECT_EQ(d.text, c.text) << c.what;
        EXPECT_EQ(Styles(d), c.styles) << c.what;
        for (size_t i = 1; i < d.runs.size(); ++i) {
            EXPECT_LT(d.runs[i - 1].start, d.runs[i].start) << c.what;
            EXPECT_FALSE(d.runs[i - 1].style == d.runs[i].style) << c.what << ": alike runs merge";
        }
    }
}

// A run kept at the very end styles what is typed there, as stacks store it.
TEST(StyledEditTest, TypingAtTheEndTakesTheRunKeptThere) {
    StyledDocument d = Doc("ab", "AA|C");
    ASSERT_EQ(d.runs.back().start, 2u);
    InsertText(d, 2, "x");
    EXPECT_EQ(Styles(d), "AAC");
}

// However the text is edited, the lines brought up to date are those a fresh layout makes.
TEST(StyledEditTest, RelayingOutAnEditEqualsAFreshLayout) {
    const std::string text = "one two three four five six\rseven eight nine\r\rten eleven twelve thirteen\r";
    const struct {
        size_t at, removed;
        const char* inserted;
    } edits[] = {
        {0, 0, "x"},       {5, 0, "lengthy "}, {3, 1, ""},      {27, 1, ""},   {27, 0, "\r"},
        {44, 1, ""},       {45, 0, "new line\rand another "}, {70, 1, ""}, {72, 0, "z"},
        {10, 30, ""},      {0, 72, ""},        {73, 0, "end"},        {30, 0, "a-very-long-word-that-cannot-fit-on-any-line"},
    };
    for (const auto& e : edits) {
        StyledDocument d = Doc(text, std::string(text.size(), 'A'));
        ChangeStyle(d, 8, 13, [](TextStyle& s) { s = kC; });  // a taller line in the first paragraph
        const int32_t width = MeasureText(kMono, "abcdefghijkl");
        TextLayout layout = LayOutDocument(d, width);
        const size_t removed = std::min(e.removed, d.text.size() - std::min(e.at, d.text.size()));
        DeleteText(d, e.at, e.at + removed);
        InsertText(d, e.at, e.inserted);
        RelayOutEdit(d, layout, e.at, removed, std::string(e.inserted).size());
        const TextLayout fresh = LayOutDocument(d, width);
        SCOPED_TRACE(::testing::Message() << "at " << e.at << " removed " << removed << " inserted " << e.inserted);
        ASSERT_EQ(layout.lines.size(), fresh.lines.size());
        EXPECT_EQ(layout.height, fresh.height);
        for (size_t i = 0; i < fresh.lines.size(); ++i) {
            const LaidLine &a = layout.lines[i], &b = fresh.lines[i];
            EXPECT_EQ(std::make_tuple(a.start, a.visibleEnd, a.end, a.top, a.height, a.width),
                      std::make_tuple(b.start, b.visibleEnd, b.end, b.top, b.height, b.width))
                << "line " << i;
        }
    }
}

TEST(StyledEditTest, TheCaretStandsBeforeItsCharacterOnItsLine) {
    const StyledDocument d = Doc("aaa bbb\rcc", std::string(10, 'A'));
    const int32_t c = MeasureText(kMono, "a");
    const TextLayout layout = LayOutDocument(d, 5 * c);  // "aaa ", "bbb\r", "cc"
    const struct {
        size_t offset, line;
        int32_t x;
    } cases[] = {{0, 0, 0}, {2, 0, 2 * c}, {4, 1, 0}, {7, 1, 3 * c}, {8, 2, 0}, {10, 2, 2 * c}};
    for (const auto& t : cases) {
        EXPECT_EQ(LineOfOffset(layout, t.offset), t.line) << t.offset;
        const Rect caret = CaretRect(d, layout, t.offset);
        EXPECT_EQ(caret.left, t.x) << t.offset;
        EXPECT_EQ(caret.top, layout.lines[t.line].top) << t.offset;
        EXPECT_EQ(OffsetOnLine(d, layout, t.line, t.x), t.offset) << t.offset;
    }
    size_t start = 0, end = 0;
    WordAround(d, 5, &start, &end);
    EXPECT_EQ(std::make_pair(start, end), std::make_pair(size_t{4}, size_t{7}));
    WordAround(d, 3, &start, &end);
    EXPECT_EQ(std::make_pair(start, end), std::make_pair(size_t{3}, size_t{4})) << "a space is a word of its own";
}

}  // namespace
