// The active field and its selection. One field of the card at most is active: the one the user
// clicked or Find showed a hit in. Its selection shows inverted; leaving the field takes the
// highlight away and keeps the selection for when it is active again.
#pragma once

#include <cstddef>

struct DisplayItem;

DisplayItem* GetActiveField();
// Makes `field` the active one (leaving another), selects [start, end) of its text, scrolls the
// selection into view and repaints what changed. Offsets past the text's end are cut to it.
void SelectInField(DisplayItem& field, size_t start, size_t end);
// No field is active any more; its highlight goes.
void LeaveActiveField();
// The active field's record is going (null: any).
void ForgetActiveField(const DisplayItem* field);
// Scrolls `field` the least that brings the first line of its selection into view.
void ScrollSelectionIntoView(DisplayItem& field);
