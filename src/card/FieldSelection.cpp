#include "card/FieldSelection.h"

#include <algorithm>

#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "card/FieldScroll.h"
#include "card/OffscreenCard.h"
#include "platform/Host.h"
#include "stack/CardRecord.h"
#include "text/StyledEdit.h"

namespace {

struct SelectionState {
    DisplayItem* active = nullptr;
    size_t anchor = 0, moving = 0;
    bool caretShown = true;
    uint32_t caretChangedAt = 0;
};
SelectionState gSelection;

void ResetSelection() { gSelection = SelectionState{}; }
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Card, ResetSelection);

// Where the text shows, which is more than the text area: a cut line's highlight reaches the frame.
void RepaintText(const DisplayItem& field) {
    const Rect shown = FieldTextClip(field);
    RepaintRect(shown.left, shown.top, shown.right, shown.bottom);
}

}  // namespace

Rect CaretOnWindow(const DisplayItem& field) {
    if (field.selStart != field.selEnd || (field.viewFlags & kTextViewReadOnly)) return {};
    const Rect caret = CaretRect(field.document, field.layout, field.selStart);
    return IntersectRect(OffsetRect(caret, field.textArea.left, field.textArea.top - field.scrollValue),
                         FieldTextClip(field));
}

DisplayItem* GetActiveField() { return gSelection.active; }

void LeaveActiveField() {
    DisplayItem* field = gSelection.active;
    gSelection.active = nullptr;
    if (field && field->selStart != field->selEnd) RepaintText(*field);
}

void ForgetActiveField(const DisplayItem* field) {
    if (!field || gSelection.active == field) gSelection.active = nullptr;
}

void ScrollSelectionIntoView(DisplayItem& field) {
    const std::vector<Rect> rects = RangeRects(field.document, field.layout, field.selStart,
                                               std::max(field.selEnd, field.selStart + 1));
    if (rects.empty()) return;
    const int32_t visible = field.textArea.bottom - field.textArea.top;
    const Rect& first = rects.front();
    int32_t value = field.scrollValue;
    if (first.top < value) value = first.top;
    else if (first.bottom > value + visible) value = first.bottom - visible;
    // Up to the line's top, then the line below it if the line still ends out of view.
    value = ScrollToLine(field.layout, value, visible);
    if (first.bottom > value + visible) value = ScrollByLines(field.layout, value, 1, visible);
    if (value != field.scrollValue) ScrollFieldTo(field, value);
}

void SelectInField(DisplayItem& field, size_t start, size_t end) {
    SelectFromAnchor(field, start, std::max(start, end));
}

void SelectFromAnchor(DisplayItem& field, size_t anchor, size_t moving) {
    if (gSelection.active != &field) LeaveActiveField();
    const size_t length = field.document.text.size();
    gSelection.anchor = std::min(anchor, length);
    gSelection.moving = std::min(moving, length);
    field.selStart = std::min(gSelection.anchor, gSelection.moving);
    field.selEnd = std::max(gSelection.anchor, gSelection.moving);
    gSelection.active = &field;
    gSelection.caretShown = true;
    gSelection.caretChangedAt = GetHost().GetTickCount();
    ScrollSelectionIntoView(field);
    RepaintText(field);
}

size_t SelectionAnchor() { return gSelection.anchor; }
size_t SelectionMovingEnd() { return gSelection.moving; }

bool CaretShown() { return gSelection.caretShown; }

void BlinkCaret() {
    const DisplayItem* field = gSelection.active;
    const uint32_t now = GetHost().GetTickCount();
    if (!field || now - gSelection.caretChangedAt < kCaretBlinkMs) return;
    const Rect caret = CaretOnWindow(*field);
    if (caret.IsEmpty()) return;
    gSelection.caretShown = !gSelection.caretShown;
    gSelection.caretChangedAt = now;
    RepaintRect(caret.left, caret.top, caret.right, caret.bottom);
}
