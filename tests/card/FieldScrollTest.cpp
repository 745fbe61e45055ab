// Presses in a field's scroll bar move its text a line, a page or to where the thumb is let go.
#include "card/FieldScroll.h"

#include <gtest/gtest.h>

#include <string>

#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "stack/CardRecord.h"
#include "support/FieldCard.h"

namespace {

class FieldScrollTest : public testing::Test {
protected:
    // A framed field 100 pixels tall with a scroll bar, holding 30 lines of one size.
    void SetUp() override {
        ResetAllState();
        Load(Lines(30));
    }
    void TearDown() override { FreeMemRef(card_); }

    void Load(const std::string& text) {
        if (card_) FreeMemRef(card_);
        card_ = FieldCard({{10, 10, 210, 110}, 0, kTextViewFrame | kTextViewScrollBar, 0, 0, text, {}});
        ASSERT_TRUE(ReadItemHead(card_, kCardHeadSize, kTextHeadSize, &field_));
        LoadTextField(&field_, card_, kCardHeadSize);
        UpdateScrollThumb(field_);
    }
    int32_t LineTop(size_t i) const { return field_.layout.lines[i].top; }
    int32_t BarX() const { return FieldScrollBarRect(field_).left + 4; }
    int32_t Travel() const {
        const Rect bar = FieldScrollBarRect(field_);
        return bar.bottom - bar.top - 3 * FieldArrowHeight(field_);
    }
    // Lines wholly in view: the first one not is the top after a page.
    size_t LinesInView() const {
        const int32_t visible = field_.textArea.bottom - field_.textArea.top;
        size_t n = 0;
        while (LineTop(n) + field_.layout.lines[n].height <= visible) ++n;
        return n;
    }

    MemRef card_ = 0;
    DisplayItem field_;
};

TEST_F(FieldScrollTest, ArrowsStepALineAndRepeatWhileHeldInside) {
    const Rect bar = FieldScrollBarRect(field_);
    EXPECT_FALSE(FieldScrollPress(field_, bar.left - 5, bar.bottom - 4));
    ASSERT_TRUE(FieldScrollPress(field_, BarX(), bar.bottom - 4));
    EXPECT_EQ(field_.scrollValue, LineTop(1));
    EXPECT_EQ(field_.pressedArrow, 2);
    FieldScrollHold();
    FieldScrollHold();
    EXPECT_EQ(field_.scrollValue, LineTop(3));
    // Off the arrow the press stops stepping and the arrow comes up; back on it, both resume.
    FieldScrollDrag(BarX(), bar.top + 40);
    EXPECT_EQ(field_.pressedArrow, 0);
    FieldScrollHold();
    EXPECT_EQ(field_.scrollValue, LineTop(3));
    FieldScrollDrag(BarX(), bar.bottom - 2);
    FieldScrollHold();
    EXPECT_EQ(field_.scrollValue, LineTop(4));
    FieldScrollRelease();
    EXPECT_EQ(field_.pressedArrow, 0);
    EXPECT_EQ(GetFieldScrollState().dragKind, DragKind::None);
    EXPECT_GT(field_.thumbOffset, 0);

    ASSERT_TRUE(FieldScrollPress(field_, BarX(), bar.top + 2));
    EXPECT_EQ(field_.scrollValue, LineTop(3));
    FieldScrollRelease();
}

TEST_F(FieldScrollTest, TheTrackPagesUntilTheThumbReachesThePointer) {
    const Rect bar = FieldScrollBarRect(field_);
    const int32_t arrow = FieldArrowHeight(field_);
    ASSERT_TRUE(FieldScrollPress(field_, BarX(), bar.bottom - arrow - 2));
    EXPECT_EQ(field_.scrollValue, LineTop(LinesInView()));
    for (int i = 0; i < 40; ++i) FieldScrollHold();
    // The text is at its end, whose last line stands at the bottom of the view.
    const TextLayout& layout = field_.layout;
    EXPECT_EQ(field_.scrollValue, ScrollLimit(layout, field_.textArea.bottom - field_.textArea.top));
    EXPECT_EQ(field_.thumbOffset, Travel());
    FieldScrollRelease();

    // From the end, a press just under the upper arrow pages back only while the thumb is below it.
    ASSERT_TRUE(FieldScrollPress(field_, BarX(), bar.top + arrow + 1));
    for (int i = 0; i < 40; ++i) FieldScrollHold();
    EXPECT_EQ(field_.scrollValue, 0);
    EXPECT_EQ(field_.thumbOffset, 0);
    FieldScrollRelease();
}

TEST_F(FieldScrollTest, TheThumbIsDraggedAsAnOutlineAndPlacesTheTextWhereItIsLetGo) {
    const Rect bar = FieldScrollBarRect(field_);
    const int32_t arrow = FieldArrowHeight(field_);
    ASSERT_TRUE(FieldScrollPress(field_, BarX(), bar.top + arrow + 2));
    EXPECT_EQ(GetFieldScrollState().dragKind, DragKind::Thumb);
    // Dragged past the end, the outline stops at the lower arrow and the text isn't moved yet.
    FieldScrollDrag(BarX(), bar.bottom + 50);
    EXPECT_EQ(field_.ghostTop, bar.bottom - 2 * arrow);
    EXPECT_EQ(field_.scrollValue, 0);
    FieldScrollRelease();
    EXPECT_EQ(field_.ghostTop, -1);
    EXPECT_EQ(field_.scrollValue, ScrollLimit(field_.layout, field_.textArea.bottom - field_.textArea.top));
    EXPECT_EQ(field_.thumbOffset, Travel());

    // Let go halfway, the text stands on the line nearest above halfway.
    ASSERT_TRUE(FieldScrollPress(field_, BarX(), bar.bottom - 2 * arrow + 1));
    FieldScrollDrag(BarX(), bar.top + arrow + Travel() / 2 + 1);
    FieldScrollRelease();
    const int32_t limit = ScrollLimit(field_.layout, field_.textArea.bottom - field_.textArea.top);
    EXPECT_EQ(field_.scrollValue, ScrollToLine(field_.layout, limit * (Travel() / 2) / Travel(),
                                               field_.textArea.bottom - field_.textArea.top));
    EXPECT_GT(field_.scrollValue, 0);

    // An outline taken off the bar is put away and the release changes nothing.
    const int32_t before = field_.scrollValue;
    ASSERT_TRUE(FieldScrollPress(field_, BarX(), FieldScrollBarRect(field_).top + arrow + field_.thumbOffset + 1));
    FieldScrollDrag(bar.left - 30, bar.top + arrow + 1);
    EXPECT_EQ(field_.ghostTop, -1);
    FieldScrollRelease();
    EXPECT_EQ(field_.scrollValue, before);
}

TEST_F(FieldScrollTest, ATextThatFitsDoesNotScrollAndItsThumbStaysAtTheTop) {
    Load("");
    const Rect bar = FieldScrollBarRect(field_);
    ASSERT_TRUE(FieldScrollPress(field_, BarX(), bar.bottom - 4));
    FieldScrollHold();
    FieldScrollRelease();
    EXPECT_EQ(field_.scrollValue, 0);
    EXPECT_EQ(field_.thumbOffset, 0);
}

}  // namespace
