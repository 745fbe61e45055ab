#include "card/FieldScroll.h"

#include <algorithm>

#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "card/OffscreenCard.h"
#include "stack/CardRecord.h"

namespace {

FieldScrollState gScroll;

void ResetFieldScroll() { gScroll = FieldScrollState{}; }
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Card, ResetFieldScroll);

int32_t VisibleHeight(const DisplayItem& field) { return field.textArea.bottom - field.textArea.top; }

// How far the thumb can travel: the bar less the two arrows and the thumb itself.
int32_t ThumbTravel(const DisplayItem& field) {
    const Rect bar = FieldScrollBarRect(field);
    return std::max(0, bar.bottom - bar.top - 3 * FieldArrowHeight(field));
}

int32_t ThumbTop(const DisplayItem& field) {
    return FieldScrollBarRect(field).top + FieldArrowHeight(field) + field.thumbOffset;
}

void RepaintField(const DisplayItem& field) { RepaintRect(field.rect.left, field.rect.top, field.rect.right, field.rect.bottom); }

void RepaintBar(const DisplayItem& field) {
    const Rect bar = FieldScrollBarRect(field);
    RepaintRect(bar.left, bar.top, bar.right, bar.bottom);
}

// The area of the bar a press at y falls in.
DragKind AreaAt(const DisplayItem& field, int32_t y) {
    const Rect bar = FieldScrollBarRect(field);
    const int32_t arrow = FieldArrowHeight(field);
    if (y < bar.top + arrow) return DragKind::UpArrow;
    if (y >= bar.bottom - arrow) return DragKind::DownArrow;
    if (!FieldHasThumb(field)) return DragKind::None;
    const int32_t thumb = ThumbTop(field);
    if (y < thumb) return DragKind::PageUp;
    if (y >= thumb + arrow) return DragKind::PageDown;
    return DragKind::Thumb;
}

void Step(DisplayItem& field, DragKind kind) {
    const int32_t visible = VisibleHeight(field);
    int32_t value = field.scrollValue;
    switch (kind) {
        case DragKind::UpArrow: value = ScrollByLines(field.layout, value, -1, visible); break;
        case DragKind::DownArrow: value = ScrollByLines(field.layout, value, 1, visible); break;
        case DragKind::PageUp: value = ScrollByPage(field.layout, value, false, visible); break;
        case DragKind::PageDown: value = ScrollByPage(field.layout, value, true, visible); break;
        default: return;
    }
    if (value != field.scrollValue) ScrollFieldTo(field, value);
}

// The thumb's outline follows the pointer, kept between the arrows; outside the bar it goes.
void MoveGhost(DisplayItem& field, int32_t x, int32_t y) {
    const Rect bar = FieldScrollBarRect(field);
    const int32_t arrow = FieldArrowHeight(field);
    const bool inside = x >= bar.left && x < bar.right;
    const int32_t ghost = inside ? std::clamp(y - gScroll.grabOffset, bar.top + arrow, bar.bottom - 2 * arrow) : -1;
    gScroll.mouseInArea = inside;
    if (ghost == field.ghostTop) return;
    field.ghostTop = ghost;
    RepaintBar(field);
}

}  // namespace

FieldScrollState& GetFieldScrollState() { return gScroll; }

void ForgetScrollingField(const DisplayItem* field) {
    if (!field || gScroll.field == field) gScroll = FieldScrollState{};
}

bool ClickInScrollBar(const DisplayItem& field, int32_t x, int32_t y) {
    if (field.type != kItemKindText || !(field.viewFlags & kTextViewScrollBar)) return false;
    const Rect bar = FieldScrollBarRect(field);
    return x >= bar.left && x < bar.right && y >= bar.top && y < bar.bottom;
}

void UpdateScrollThumb(DisplayItem& field) {
    const int32_t limit = ScrollLimit(field.layout, VisibleHeight(field));
    const double ratio = limit > 0 ? double(field.scrollValue) / limit : 0.0;
    field.thumbOffset = static_cast<int32_t>(ThumbTravel(field) * ratio);
}

void ScrollFieldTo(DisplayItem& field, int32_t value) {
    field.scrollValue = ScrollToLine(field.layout, value, VisibleHeight(field));
    UpdateScrollThumb(field);
    RepaintField(field);
}

bool FieldScrollPress(DisplayItem& field, int32_t x, int32_t y) {
    if (!ClickInScrollBar(field, x, y)) return false;
    const DragKind kind = AreaAt(field, y);
    gScroll = FieldScrollState{};
    gScroll.field = &field;
    gScroll.dragKind = kind;
    gScroll.mouseInArea = true;
    gScroll.lastX = x;
    gScroll.lastY = y;
    if (kind == DragKind::Thumb) {
        gScroll.startedOnThumb = true;
        gScroll.grabOffset = y - ThumbTop(field);
        MoveGhost(field, x, y);
        return true;
    }
    if (kind == DragKind::UpArrow || kind == DragKind::DownArrow) {
        field.pressedArrow = kind == DragKind::UpArrow ? 1 : 2;
        RepaintBar(field);
    }
    Step(field, kind);
    return true;
}

void FieldScrollDrag(int32_t x, int32_t y) {
    DisplayItem* field = gScroll.field;
    if (!field) return;
    gScroll.lastX = x;
    gScroll.lastY = y;
    const Rect bar = FieldScrollBarRect(*field);
    const bool inBar = x >= bar.left && x < bar.right && y >= bar.top && y < bar.bottom;
    switch (gScroll.dragKind) {
        case DragKind::UpArrow:
        case DragKind::DownArrow: {
            const bool inArrow = inBar && AreaAt(*field, y) == gScroll.dragKind;
            gScroll.mouseInArea = inArrow;
            const int8_t pressed = inArrow ? (gScroll.dragKind == DragKind::UpArrow ? 1 : 2) : 0;
            if (pressed != field->pressedArrow) {
                field->pressedArrow = pressed;
                RepaintBar(*field);
            }
            break;
        }
        case DragKind::PageUp:
        case DragKind::PageDown: {
            const int32_t arrow = FieldArrowHeight(*field);
            gScroll.mouseInArea = inBar && y >= bar.top + arrow && y < bar.bottom - arrow;
            break;
        }
        case DragKind::Thumb: MoveGhost(*field, x, y); break;
        default: break;
    }
}

void FieldScrollHold() {
    DisplayItem* field = gScroll.field;
    if (!field || !gScroll.mouseInArea) return;
    const int32_t y = gScroll.lastY;
    const int32_t thumb = ThumbTop(*field);
    const int32_t arrow = FieldArrowHeight(*field);
    switch (gScroll.dragKind) {
        case DragKind::UpArrow:
        case DragKind::DownArrow: Step(*field, gScroll.dragKind); break;
        // A page area repeats until the thumb reaches the pointer.
        case DragKind::PageUp:
            if (y < thumb) Step(*field, DragKind::PageUp);
            break;
        case DragKind::PageDown:
            if (y >= thumb + arrow) Step(*field, DragKind::PageDown);
            break;
        default: break;
    }
}

void FieldScrollRelease() {
    DisplayItem* field = gScroll.field;
    if (!field) return;
    if (gScroll.dragKind == DragKind::Thumb && field->ghostTop >= 0) {
        const int32_t travel = ThumbTravel(*field);
        const int32_t offset = field->ghostTop - FieldScrollBarRect(*field).top - FieldArrowHeight(*field);
        const double ratio = travel >= 1 ? double(std::max(0, offset)) / travel : 1.0;
        const int32_t limit = ScrollLimit(field->layout, VisibleHeight(*field));
        field->ghostTop = -1;
        ScrollFieldTo(*field, static_cast<int32_t>(limit * ratio));
    } else if (field->pressedArrow || field->ghostTop >= 0) {
        field->pressedArrow = 0;
        field->ghostTop = -1;
        RepaintBar(*field);
    }
    gScroll = FieldScrollState{};
}
