// The active field and its selection. One field of the card at most is active: the one the user
// clicked or Find showed a hit in. Its selection shows inverted; leaving the field takes the
// highlight away and keeps the selection for when it is active again.
#pragma once

#include <cstddef>
#include <cstdint>

#include "gfx/Surface.h"

struct DisplayItem;

DisplayItem* GetActiveField();
// Makes `field` the active one (leaving another), selects [start, end) of its text, scrolls the
// selection into view and repaints what changed. Offsets past the text's end are cut to it.
void SelectInField(DisplayItem& field, size_t start, size_t end);
// The same for the text between `anchor`, the end that stays, and `moving`, the end the mouse or
// Shift with the keys moves.
void SelectFromAnchor(DisplayItem& field, size_t anchor, size_t moving);
size_t SelectionAnchor();
size_t SelectionMovingEnd();
// The insertion point of an empty selection blinks: shown for this long, hidden as long.
inline constexpr uint32_t kCaretBlinkMs = 530;
bool CaretShown();
// Where the field's insertion point stands on the card, where its text shows; empty for a
// selection that isn't empty and for read-only text.
Rect CaretOnWindow(const DisplayItem& field);
// The tick: the insertion point turns on or off when its time is up.
void BlinkCaret();
// No field is active any more; its highlight goes.
void LeaveActiveField();
// The active field's record is going (null: any).
void ForgetActiveField(const DisplayItem* field);
// Scrolls `field` the least that brings the first line of its selection into view.
void ScrollSelectionIntoView(DisplayItem& field);
