// Editing the active field: the mouse places the insertion point and drags out a selection, keys
// type, delete and move, and the clipboard cuts, copies and pastes. Every edit re-lays out only
// the paragraphs it touched, keeps the selection in view and marks the field and the stack changed.
//
// Fields whose text is read-only or comes from a file take no insertion point: a press on them
// only scrolls their bar, and keys pass them by to the card.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

struct DisplayItem;

// True for a field the user may type into.
bool FieldEditable(const DisplayItem& field);
// The editable field with the insertion point, or null.
DisplayItem* EditingField();

// A press at (x, y) on the card in `field`: its scroll bar, or its text. Shift extends the
// selection; a double click selects the word.
void FieldClick(DisplayItem& field, int32_t x, int32_t y, bool shift, bool doubleClick);
void FieldDrag(int32_t x, int32_t y);
// The press ends; true when it selected text (so that it is no click on a hot word).
bool FieldRelease();
// The tick: the insertion point blinks, and a selection dragged out of the field scrolls it.
void FieldIdle();

// A typed character (Windows-1252; 8 deletes backwards, 13 ends the paragraph). False, doing
// nothing, when no field is being edited.
bool FieldKey(uint8_t ch);
// A key pressed in the field being edited: the arrows, Home, End, Page Up and Down and Delete.
// False for any other key, and when no field is being edited.
bool FieldKeyDown(uint16_t virtualKey, bool shift);

enum class ClipCommand : uint8_t { Cut, Copy, Clear };
// Cut and Copy put the selection on the clipboard, as plain text with CR LF line ends and as
// styled text for pasting here; Cut and Clear then remove it. An empty selection takes the
// character after the insertion point. False when there is no active field.
bool FieldCutCopyClear(ClipCommand command);
// Pastes at the selection: the styled text last cut or copied here while the clipboard still holds
// it, else the clipboard's text (CR LF becomes CR, a lone CR or LF goes).
bool FieldPaste();
// The whole text of the field being edited, selected.
bool FieldSelectAll();

// What a style command changes; what is not given stays.
struct FieldStyleChange {
    std::string face;  // empty: keep
    int32_t sizePx = 0;  // 0: keep
    uint8_t setStyle = 0, clearStyle = 0, toggleStyle = 0;  // bold 1, italic 2, underline 4
    std::optional<uint32_t> colour;
};
// The one way style commands act on the field being edited: on the selection, or on the whole
// text when nothing is selected. False when no field is being edited.
bool SetActiveFieldStyle(const FieldStyleChange& change);

// Pasted text as a field keeps it: CR LF becomes CR, and a CR or LF standing alone goes.
std::string PasteableText(const std::string& clipboard);
