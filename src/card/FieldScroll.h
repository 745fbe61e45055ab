// Scrolling a field through its scroll bar. A press on an arrow steps the text a line, a press on
// the track above or below the thumb a page, and the step repeats on the tick while the button is
// held inside the area it began on. The thumb is dragged as an outline and sets the place when it
// is let go. The thumb always shows how far the text is scrolled.
#pragma once

#include <cstdint>

struct DisplayItem;

// What the press being followed is doing.
enum class DragKind : uint8_t { None, UpArrow, DownArrow, Thumb, Selection, PageUp, PageDown };

struct FieldScrollState {
    DragKind dragKind = DragKind::None;
    DisplayItem* field = nullptr;
    bool mouseInArea = false;  // the pointer is inside the area the press began on
    bool startedOnThumb = false;
    int32_t grabOffset = 0;  // from the thumb's top to the press
    int32_t lastX = 0, lastY = 0;
};
FieldScrollState& GetFieldScrollState();

// True when (x, y) is in the scroll bar of a field that has one.
bool ClickInScrollBar(const DisplayItem& field, int32_t x, int32_t y);
// Takes a press at (x, y) in the field's scroll bar; false, doing nothing, when it isn't in it.
bool FieldScrollPress(DisplayItem& field, int32_t x, int32_t y);
void FieldScrollDrag(int32_t x, int32_t y);
void FieldScrollRelease();
// The tick while a press goes on: the arrows and the page areas step again.
void FieldScrollHold();
// Puts the text at `value` (kept on a line's top and within the text), moves the thumb to match
// and repaints the field.
void ScrollFieldTo(DisplayItem& field, int32_t value);
// A press on `field` (any field for null) is forgotten: the record is going.
void ForgetScrollingField(const DisplayItem* field);
// The thumb's place for the field's scroll value.
void UpdateScrollThumb(DisplayItem& field);
