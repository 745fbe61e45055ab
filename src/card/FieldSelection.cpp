#include "card/FieldSelection.h"

#include <algorithm>

#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "card/FieldScroll.h"
#include "card/OffscreenCard.h"

namespace {

struct SelectionState {
    DisplayItem* active = nullptr;
};
SelectionState gSelection;

void ResetSelection() { gSelection = SelectionState{}; }
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Card, ResetSelection);

void RepaintText(const DisplayItem& field) {
    RepaintRect(field.textArea.left, field.textArea.top, field.textArea.right, field.textArea.bottom);
}

}  // namespace

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
    if (gSelection.active != &field) LeaveActiveField();
    const size_t length = field.document.text.size();
    field.selStart = std::min(start, length);
    field.selEnd = std::clamp(end, field.selStart, length);
    gSelection.active = &field;
    ScrollSelectionIntoView(field);
    RepaintText(field);
}
