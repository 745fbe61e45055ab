// Fields as the user sees them, one golden image per group of states: the three families of fonts
// at many sizes and styles, the selection, fields that let the card show through, and the scroll
// bar in each of its states; and the highlight leaving nothing behind on the card.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "actions/ActionStack.h"
#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "card/FieldScroll.h"
#include "card/FieldSelection.h"
#include "gfx/Palette.h"
#include "support/FieldCard.h"
#include "text/Fontmap.h"
#if QB_GOLDEN_TESTS
#include "support/Golden.h"
#endif

namespace {

// The highlight of a line that the view cuts reaches down to the frame; leaving the field takes all
// of it away, the field as it was before the selection.
class FieldHighlightTest : public ActionStackTest {};
TEST_F(FieldHighlightTest, LeavingTheFieldTakesAwayAllOfItsHighlight) {
    Open(WriteActionStack("highlight.stk", {{1}}));
    const MemRef card =
        FieldCard({{10, 10, 130, 110}, 0, kTextViewFrame | kTextViewScrollBar, 0, 0, Lines(20), {}});
    DisplayItem* field = AddTextNode(card, kCardHeadSize, -1);
    FreeMemRef(card);
    ASSERT_TRUE(field);
    ScrollFieldTo(*field, field->layout.lines[2].top);
    const Surface before = GetHeadlessState().screen;
    SelectInField(*field, 14, 90);  // from the view's first line to below its last
    ASSERT_EQ(field->scrollValue, field->layout.lines[2].top);
    const Rect inside = FieldTextClip(*field);
    const int32_t x = inside.left + 4, y = inside.bottom - 1;
    EXPECT_NE(GetHeadlessState().screen.Row(y)[x], before.Row(y)[x]);
    LeaveActiveField();
    EXPECT_EQ(GetHeadlessState().screen.pixels, before.pixels);
}

#if QB_GOLDEN_TESTS
class FieldDrawTest : public testing::Test {
protected:
    void SetUp() override { ResetAllState(); }
    void TearDown() override { ResetAllState(); }

    DisplayItem& Load(const Field& f) {
        fields_.push_back(std::make_unique<DisplayItem>());
        EXPECT_TRUE(LoadField(f, fields_.back().get()));
        UpdateScrollThumb(*fields_.back());
        return *fields_.back();
    }
    static void Draw(Surface& s, const DisplayItem& field) { DrawTextField(s, s.Bounds(), field, Colors()); }
    static const uint32_t* Colors() {
        static const std::vector<uint32_t> colors(kPaletteSize, kWhite);
        return colors.data();
    }
    static int32_t Half(const DisplayItem& f) {
        return ScrollLimit(f.layout, f.textArea.bottom - f.textArea.top) / 2;
    }

    std::vector<std::unique_ptr<DisplayItem>> fields_;
};

// A row per family (serif, sans, mono): every size from 9 to 24 points, plain, bold, italic and
// underlined; the styles and their mixes in colours of their own; a centred and a right-aligned
// text whose first line is larger than the rest.
TEST_F(FieldDrawTest, TheThreeFamiliesInTheirSizesStylesColoursAndAlignments) {
    const uint16_t families[] = {AddFont({"Times New Roman"}, 0, 0), AddFont({"Arial"}, 0, 0),
                                 AddFont({"Courier New"}, 0, 0)};
    const std::string aligned = "Heading\rThe quick brown fox jumps over the lazy dog.";
    Surface s(640, 8 + 3 * 158, Rgb(216, 216, 216));
    for (int row = 0; row < 3; ++row) {
        const auto run = [font = families[row]](size_t start, uint8_t style, uint16_t points,
                                                uint32_t rgb = kBlack) {
            return Styled(static_cast<uint32_t>(start), style, points, rgb, font);
        };
        const int16_t top = static_cast<int16_t>(8 + 158 * row), bottom = static_cast<int16_t>(top + 150);
        std::string sizesText;
        std::vector<StyleRun> sizes;
        for (const uint16_t points : {9, 10, 12, 14, 18, 24}) {
            sizes.push_back(run(sizesText.size(), 0, points));
            sizesText += std::to_string(points) + " Ag";
            for (const uint8_t style : {kStyleBold, kStyleItalic, kStyleUnderline}) {
                sizesText += ' ';
                sizes.push_back(run(sizesText.size(), style, points));
                sizesText += "Ag";
            }
            sizesText += '\r';
        }
        sizesText.pop_back();
        const std::string styled = "Plain bold italic underlined bold-italic all-three\rSmall bold italic under";
        const std::vector<StyleRun> styles = {
            run(0, 0, 12), run(5, kStyleBold, 12, Rgb(200, 0, 0)), run(10, kStyleItalic, 12, Rgb(0, 130, 0)),
            run(18, kStyleUnderline, 12, Rgb(0, 0, 200)), run(28, kStyleBold | kStyleItalic, 12, Rgb(170, 0, 170)),
            run(41, kStyleBold | kStyleItalic | kStyleUnderline, 12, Rgb(220, 120, 0)),
            run(51, 0, 9), run(56, kStyleBold, 9), run(61, kStyleItalic, 9), run(69, kStyleUnderline, 9)};
        const std::vector<StyleRun> headed = {run(0, kStyleBold, 16, Rgb(0, 60, 140)), run(8, 0, 10)};
        const int16_t middle = static_cast<int16_t>(top + 71);
        const Field fields[] = {
            {{8, top, 304, bottom}, 0, kTextViewFrame, 0, 0, sizesText, sizes},
            {{312, top, 472, bottom}, 0, kTextViewFrame, 0, 0, styled, styles},
            {{480, top, 632, middle}, 0, kTextViewFrame, 0, 1, aligned, headed},
            {{480, int16_t(middle + 8), 632, bottom}, 0, kTextViewFrame, 0, -1, aligned, headed},
        };
        for (const Field& f : fields) Draw(s, Load(f));
    }
    ExpectMatchesGolden(s, "text-field-fonts");
}

// The active field's selection is inverted over what it covers and nothing else: within a line,
// over three lines with the first and last in part, in a centred text, and in a scrolled field
// whose selection runs on above and below the view; an insertion point on a line the view cuts.
TEST_F(FieldDrawTest, TheSelectionCoversItsTextInsideTheTextArea) {
    const std::string verse = "The quick brown fox jumps over the lazy dog, and the dog sleeps on in the sun.";
    const struct {
        Field field;
        size_t start, end;
        int32_t scrollLines;  // lines scrolled on after the selection is brought into view
    } cases[] = {
        {{{8, 8, 208, 48}, 0, kTextViewFrame, 0, 0, "A selection within one line", {Styled(0, 0, 12)}}, 2, 16, 0},
        {{{216, 8, 376, 108}, 0, kTextViewFrame, 0, 0, verse, {Styled(0, 0, 12)}}, 10, 58, 0},
        {{{8, 56, 208, 108}, 0, kTextViewFrame, 0, 1, verse, {Styled(0, 0, 10)}}, 20, 50, 0},
        {{{384, 8, 504, 108}, 0, kTextViewFrame | kTextViewScrollBar, 0, 0, Lines(20), {Styled(0, 0, 12)}}, 14,
         90, 3},
        {{{512, 8, 632, 108}, 0, kTextViewFrame | kTextViewScrollBar, 0, 0, Lines(20), {Styled(0, 0, 12)}}, 45,
         45, -1},
    };
    Surface s(640, 116, Rgb(216, 216, 216));
    for (const auto& c : cases) {
        DisplayItem& field = Load(c.field);
        SelectInField(field, c.start, c.end);
        if (c.scrollLines) {
            const int32_t visible = field.textArea.bottom - field.textArea.top;
            ScrollFieldTo(field, ScrollByLines(field.layout, field.scrollValue, c.scrollLines, visible));
        }
        Draw(s, field);
    }
    ExpectMatchesGolden(s, "text-field-selection");
}

// A transparent field draws no fill: the card's picture or its colour shows between the letters,
// the frame and the scroll bar are drawn as on any field, and a selection is inverted over the
// picture.
TEST_F(FieldDrawTest, TransparentFieldsShowTheCardBehindTheirText) {
    Surface s(400, 120, Rgb(90, 150, 90));
    for (int32_t y = 0; y < s.height; ++y)
        for (int32_t x = 0; x < 200; ++x) s.Row(y)[x] = Rgb(uint8_t(x), uint8_t(60 + y), uint8_t(255 - x));
    const std::vector<StyleRun> runs = {Styled(0, kStyleBold, 14, kWhite), Styled(12, 0, 12)};
    const std::string text = "Transparent\rThe card shows behind these words and between the lines.";
    DisplayItem& overPicture = Load({{8, 8, 192, 112}, kTextFlagTransparent, 0, 0, 0, text, runs});
    DisplayItem& framed =
        Load({{208, 8, 392, 112}, kTextFlagTransparent, kTextViewFrame | kTextViewScrollBar, 0, 0, text, runs});
    SelectInField(overPicture, 16, 40);
    Draw(s, overPicture);
    LeaveActiveField();
    Draw(s, framed);
    ExpectMatchesGolden(s, "text-field-transparent");
}

// Fields scrolled half way with the bar at rest, each arrow held down, the thumb's outline dragged
// down, the thumb at the end of its travel, and short fields whose arrows share the bar.
TEST_F(FieldDrawTest, TheScrollBarShowsEachOfItsStates) {
    enum class Press { None, UpArrow, DownArrow, Thumb, ToEnd };
    const struct {
        int16_t height;
        Press press;
    } cases[] = {{150, Press::None},      {150, Press::UpArrow}, {150, Press::DownArrow}, {150, Press::Thumb},
                 {150, Press::ToEnd},     {24, Press::None},     {24, Press::DownArrow}};
    Surface s(8 + 88 * 7, 166, Rgb(216, 216, 216));
    int16_t left = 8;
    for (const auto& c : cases) {
        DisplayItem& field = Load({{left, 8, int16_t(left + 80), int16_t(8 + c.height)}, 0,
                                   kTextViewFrame | kTextViewScrollBar, 0, 0, Lines(30), {Styled(0, 0, 12)}});
        left = static_cast<int16_t>(left + 88);
        ScrollFieldTo(field, Half(field));
        const Rect bar = FieldScrollBarRect(field);
        const int32_t x = bar.left + 8, arrow = FieldArrowHeight(field);
        switch (c.press) {
            case Press::UpArrow: ASSERT_TRUE(FieldScrollPress(field, x, bar.top + 2)); break;
            case Press::DownArrow: ASSERT_TRUE(FieldScrollPress(field, x, bar.bottom - 2)); break;
            case Press::Thumb: {
                const int32_t thumbTop = bar.top + arrow + field.thumbOffset;
                ASSERT_TRUE(FieldScrollPress(field, x, thumbTop + 4));
                FieldScrollDrag(x, thumbTop + 4 + 30);
                break;
            }
            case Press::ToEnd: ScrollFieldTo(field, 1 << 20); break;
            case Press::None: break;
        }
        Draw(s, field);
        FieldScrollRelease();
    }
    ExpectMatchesGolden(s, "text-field-scroll-bars");
}
#endif

}  // namespace
