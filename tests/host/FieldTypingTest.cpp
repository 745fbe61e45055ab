// Typing into fields through the window procedure: clicks place the insertion point, keys type,
// move and delete, Tab goes from field to field, and the clipboard cuts and pastes.
#include <gtest/gtest.h>

#include "card/FieldEdit.h"
#include "card/FieldSelection.h"
#include "host/ActionRecorder.h"
#include "host/KeyFocus.h"
#include "stack/Document.h"
#include "text/StyledEdit.h"

namespace {

const TextFont kMono{"Courier New", 12};

class FieldTypingTest : public testing::Test {
protected:
    void SetUp() override {
        StartPlayerWithRecorders();
        Subsystems& hooks = GetSubsystems();
        hooks.ClickInField = FieldClick;
        hooks.DragInField = FieldDrag;
        hooks.ReleaseInField = FieldRelease;
        a_ = AddField(8, {10, 10, 310, 60}, "hello");
        b_ = AddField(9, {10, 70, 310, 120}, "second");
        c_ = MeasureText(kMono, "a");
        ASSERT_GT(c_, 0);
    }
    void TearDown() override { ResetAllState(); }

    static DisplayItem* AddField(int16_t id, const Rect& rect, const std::string& text) {
        DisplayItem* f = AddTestItem(kItemKindText, id, rect);
        f->document = {text, {{0, {kMono, kBlack}}}, TextAlign::Left};
        f->textArea = InflateRect(rect, -3, -3);
        f->layout = LayOutDocument(f->document, f->textArea.right - f->textArea.left);
        return f;
    }
    // The x on the window of the place before character `n` of a field's first line.
    int32_t X(const DisplayItem* f, int32_t n) const { return f->textArea.left + n * c_; }

    DisplayItem* a_ = nullptr;
    DisplayItem* b_ = nullptr;
    int32_t c_ = 0;
};

enum class Do { Click, ShiftClick, DoubleClick, Char, Key, CtrlKey, ShiftKey };
struct Step {
    Do what;
    int32_t value;  // the character or key; for clicks, the place in field A's first line
    const char* a;
    const char* b;
    const char* clipboard;  // null: not looked at
};

TEST_F(FieldTypingTest, ClicksKeysAndTheClipboardEditTheFields) {
    const Step steps[] = {
        {Do::Click, 5, "hello", "second", nullptr},
        {Do::Char, ' ', "hello ", "second", nullptr},
        {Do::Char, 'y', "hello y", "second", nullptr},
        {Do::Char, 8, "hello ", "second", nullptr},  // Backspace
        {Do::Key, kVkLeft, "hello ", "second", nullptr},
        {Do::Key, kVkLeft, "hello ", "second", nullptr},
        {Do::Char, '\r', "hell\ro ", "second", nullptr},
        {Do::Key, kVkUp, "hell\ro ", "second", nullptr},
        {Do::Char, 'X', "Xhell\ro ", "second", nullptr},  // Up keeps the column: the first line's start
        {Do::Key, kVkEnd, "Xhell\ro ", "second", nullptr},
        {Do::ShiftKey, kVkLeft, "Xhell\ro ", "second", nullptr},
        {Do::ShiftKey, kVkLeft, "Xhell\ro ", "second", nullptr},
        {Do::CtrlKey, 'X', "Xhe\ro ", "second", "ll"},
        {Do::Key, kVkDelete, "Xheo ", "second", "ll"},  // the character after the insertion point
        {Do::Char, '\t', "Xheo ", "second", "ll"},      // to field A, all of it selected
        {Do::Char, '\t', "Xheo ", "second", "ll"},      // to field B
        {Do::Char, 'n', "Xheo ", "n", "ll"},
        {Do::CtrlKey, 'V', "Xheo ", "nll", "ll"},
        {Do::DoubleClick, 1, "Xheo ", "nll", "ll"},  // A's first word
        {Do::CtrlKey, 'C', "Xheo ", "nll", "Xheo"},
        {Do::ShiftClick, 2, "Xheo ", "nll", "Xheo"},  // Shift narrows the selection to "Xh"
        {Do::Char, 8, "eo ", "nll", "Xheo"},
        {Do::CtrlKey, 'A', "eo ", "nll", "Xheo"},
        {Do::Char, 'Z', "Z", "nll", "Xheo"},
    };
    const auto key = [](uint16_t k, uint32_t mods) {
        HandleWindowMessage(nullptr, KeyEvent(HostEventKind::KeyDown, k, mods));
        HandleWindowMessage(nullptr, KeyEvent(HostEventKind::KeyUp, k, mods));
    };
    for (const Step& s : steps) {
        SCOPED_TRACE(testing::Message() << "step " << int(s.what) << " " << s.value);
        const int32_t x = X(a_, s.value), y = a_->textArea.top + 2;
        switch (s.what) {
            case Do::Click:
            case Do::ShiftClick:
            case Do::DoubleClick: {
                const uint32_t mods = s.what == Do::ShiftClick ? kModShift : 0;
                const int32_t clicks = s.what == Do::DoubleClick ? 2 : 1;
                HandleWindowMessage(nullptr, MouseEvent(HostEventKind::MouseDown, x, y, mods, clicks));
                HandleWindowMessage(nullptr, MouseEvent(HostEventKind::MouseUp, x, y, mods));
                break;
            }
            case Do::Char: HandleWindowMessage(nullptr, KeyEvent(HostEventKind::Char, 0, 0, uint8_t(s.value))); break;
            case Do::Key: key(uint16_t(s.value), 0); break;
            case Do::ShiftKey: key(uint16_t(s.value), kModShift); break;
            case Do::CtrlKey: key(uint16_t(s.value), kModCtrl); break;
        }
        EXPECT_EQ(a_->document.text, s.a);
        EXPECT_EQ(b_->document.text, s.b);
        std::string clipboard;
        if (s.clipboard) {
            EXPECT_TRUE(GetHost().GetClipboardText(&clipboard) && clipboard == s.clipboard) << clipboard;
        }
        // However it was edited, the field's lines are those a fresh layout makes.
        for (const DisplayItem* f : {a_, b_}) {
            EXPECT_EQ(f->layout.lines.size(), LayOutDocument(f->document, f->layout.width).lines.size());
        }
    }
    EXPECT_TRUE(a_->dirty && b_->dirty);
    EXPECT_TRUE(GetDocument().dirty);
}

// Moving through the text changes nothing to keep; a read-only field takes no insertion point, and
// the keys go on to the card.
TEST_F(FieldTypingTest, MovingAndReadOnlyTextLeaveTheStackUnchanged) {
    HandleWindowMessage(nullptr, MouseEvent(HostEventKind::MouseDown, X(a_, 2), a_->textArea.top + 2));
    HandleWindowMessage(nullptr, MouseEvent(HostEventKind::MouseUp, X(a_, 2), a_->textArea.top + 2));
    for (const uint16_t k : {kVkLeft, kVkRight, kVkDown, kVkHome, kVkEnd, kVkUp})
        HandleWindowMessage(nullptr, KeyEvent(HostEventKind::KeyDown, k));
    EXPECT_EQ(GetActiveField(), a_);
    EXPECT_FALSE(a_->dirty || GetDocument().dirty);
    // A press on the card leaves the field.
    HandleWindowMessage(nullptr, MouseEvent(HostEventKind::MouseDown, 400, 200));
    EXPECT_EQ(GetActiveField(), nullptr);

    b_->viewFlags |= kTextViewReadOnly;
    HandleWindowMessage(nullptr, MouseEvent(HostEventKind::MouseDown, X(b_, 2), b_->textArea.top + 2));
    HandleWindowMessage(nullptr, MouseEvent(HostEventKind::MouseUp, X(b_, 2), b_->textArea.top + 2));
    EXPECT_EQ(EditingField(), nullptr);
    HandleWindowMessage(nullptr, KeyEvent(HostEventKind::Char, 0, 0, 'q'));
    EXPECT_EQ(b_->document.text, "second");
}

TEST(PasteableText, LineEndsBecomeCrAndStrayOnesGo) {
    EXPECT_EQ(PasteableText("A\r\nB\rC\nD"), "A\rBCD");
    EXPECT_EQ(PasteableText("\r\n\r\n"), "\r\r");
}

// A drag selects from the press to the pointer, and a plain click is no selection, so that the
// hot words under it still answer.
TEST_F(FieldTypingTest, ADragSelectsAndAClickDoesNot) {
    const int32_t y = a_->textArea.top + 2;
    FieldClick(*a_, X(a_, 1), y, false, false);
    EXPECT_FALSE(FieldRelease());
    FieldClick(*a_, X(a_, 1), y, false, false);
    FieldDrag(X(a_, 4), y);
    EXPECT_TRUE(FieldRelease());
    EXPECT_EQ(std::make_pair(a_->selStart, a_->selEnd), std::make_pair(size_t{1}, size_t{4}));
}

}  // namespace
