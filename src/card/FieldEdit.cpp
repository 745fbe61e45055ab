#include "card/FieldEdit.h"

#include <algorithm>

#include "base/KeyCodes.h"
#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "card/FieldScroll.h"
#include "card/FieldSelection.h"
#include "card/OffscreenCard.h"
#include "platform/Host.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "text/StyledEdit.h"

namespace {

constexpr char kReturn = '\r';

struct FieldEditState {
    // The styled text last cut or copied, and the plain text it put on the clipboard.
    StyledDocument scrap;
    std::string scrapText;
    bool hasScrap = false;
    // Up and Down keep to the column they started from.
    int32_t goalX = -1;
    // A double click selected this word: the drag goes on by words, and keeps it.
    bool wordSelection = false;
    size_t wordStart = 0, wordEnd = 0;
};
FieldEditState gEdit;

void ResetFieldEdit() { gEdit = FieldEditState{}; }
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Card, ResetFieldEdit);

int32_t VisibleHeight(const DisplayItem& field) { return field.textArea.bottom - field.textArea.top; }

// (x, y) on the card as a place between two characters of the field's text.
size_t OffsetAtPoint(const DisplayItem& field, int32_t x, int32_t y) {
    // The point is taken no further right than the text area, as a drag past it would go.
    x = std::min(x, field.textArea.right);
    return CaretOffsetAt(field.document, field.layout, x - field.textArea.left,
                         y - field.textArea.top + field.scrollValue);
}

void RepaintField(const DisplayItem& field) {
    RepaintRect(field.rect.left, field.rect.top, field.rect.right, field.rect.bottom);
}

// After the text changed: the scroll stays within the text, the selection comes into view, the
// thumb follows and the field is drawn again.
void ShowEdit(DisplayItem& field) {
    field.dirty = true;
    field.scrollValue = ScrollToLine(field.layout, field.scrollValue, VisibleHeight(field));
    gEdit.goalX = -1;
    SelectFromAnchor(field, field.selStart, field.selEnd);
    UpdateScrollThumb(field);
    RepaintField(field);
}

// Replaces the selection by `piece` (styled) or by `bytes` (styled as typed text).
void ReplaceSelection(DisplayItem& field, const StyledDocument* piece, std::string_view bytes) {
    const size_t start = field.selStart, removed = field.selEnd - field.selStart;
    DeleteText(field.document, start, field.selEnd);
    size_t inserted = 0;
    if (piece) {
        InsertDocument(field.document, start, *piece);
        inserted = piece->text.size();
    } else {
        InsertText(field.document, start, bytes);
        inserted = bytes.size();
    }
    RelayOutEdit(field.document, field.layout, start, removed, inserted);
    field.selStart = field.selEnd = start + inserted;
    GetDocument().dirty = true;
    ShowEdit(field);
}

// Moves the insertion point (or, with Shift, the selection's moving end) to `to`.
void MoveTo(DisplayItem& field, size_t to, bool shift) {
    const size_t anchor = shift ? SelectionAnchor() : to;
    SelectFromAnchor(field, anchor, to);
}

// The place one line up or down from `from`, in the column the moves started in.
size_t LineStep(DisplayItem& field, size_t from, int direction) {
    const size_t line = LineOfOffset(field.layout, from);
    if (gEdit.goalX < 0) gEdit.goalX = CharacterLeft(field.document, field.layout, line, from);
    if (direction < 0 && line == 0) return 0;
    if (direction > 0 && line + 1 >= field.layout.lines.size()) return field.document.text.size();
    return OffsetOnLine(field.document, field.layout, direction < 0 ? line - 1 : line + 1, gEdit.goalX);
}

// Extends a drag to (x, y): by characters, or by whole words after a double click.
void DragSelectionTo(DisplayItem& field, int32_t x, int32_t y) {
    const size_t at = OffsetAtPoint(field, x, y);
    if (!gEdit.wordSelection) {
        SelectFromAnchor(field, SelectionAnchor(), at);
        return;
    }
    size_t start = 0, end = 0;
    WordAround(field.document, at, &start, &end);
    if (at < gEdit.wordStart) SelectFromAnchor(field, gEdit.wordEnd, start);
    else SelectFromAnchor(field, gEdit.wordStart, std::max(end, gEdit.wordEnd));
}

}  // namespace

bool FieldEditable(const DisplayItem& field) {
    return field.type == kItemKindText && !(field.viewFlags & kTextViewReadOnly) && !(field.flags & kItemFlagFileRef);
}

DisplayItem* EditingField() {
    DisplayItem* field = GetActiveField();
    return field && FieldEditable(*field) ? field : nullptr;
}

void FieldClick(DisplayItem& field, int32_t x, int32_t y, bool shift, bool doubleClick) {
    if (FieldScrollPress(field, x, y)) return;
    if (!FieldEditable(field)) {
        if (GetActiveField() != &field) LeaveActiveField();
        return;
    }
    const size_t at = OffsetAtPoint(field, x, y);
    gEdit.goalX = -1;
    gEdit.wordSelection = doubleClick;
    if (doubleClick) {
        WordAround(field.document, at, &gEdit.wordStart, &gEdit.wordEnd);
        SelectFromAnchor(field, gEdit.wordStart, gEdit.wordEnd);
    } else if (shift && GetActiveField() == &field) {
        SelectFromAnchor(field, SelectionAnchor(), at);
    } else {
        SelectFromAnchor(field, at, at);
    }
    FieldScrollState& press = GetFieldScrollState();
    press = FieldScrollState{};
    press.field = &field;
    press.dragKind = DragKind::Selection;
    press.lastX = x;
    press.lastY = y;
}

void FieldDrag(int32_t x, int32_t y) {
    FieldScrollState& press = GetFieldScrollState();
    if (press.dragKind != DragKind::Selection) {
        FieldScrollDrag(x, y);
        return;
    }
    press.lastX = x;
    press.lastY = y;
    if (press.field) DragSelectionTo(*press.field, x, y);
}

bool FieldRelease() {
    FieldScrollState& press = GetFieldScrollState();
    if (press.dragKind != DragKind::Selection) {
        FieldScrollRelease();
        return false;
    }
    const bool selected = press.field && press.field->selStart != press.field->selEnd;
    press = FieldScrollState{};
    gEdit.wordSelection = false;
    return selected;
}

void FieldIdle() {
    FieldScrollHold();
    BlinkCaret();
    // A selection dragged above or below the text scrolls it a line a tick, taking in what comes.
    FieldScrollState& press = GetFieldScrollState();
    if (press.dragKind != DragKind::Selection || !press.field) return;
    DisplayItem& field = *press.field;
    const int direction = press.lastY < field.textArea.top ? -1 : press.lastY >= field.textArea.bottom ? 1 : 0;
    if (!direction) return;
    const int32_t value = ScrollByLines(field.layout, field.scrollValue, direction, VisibleHeight(field));
    if (value == field.scrollValue) return;
    ScrollFieldTo(field, value);
    DragSelectionTo(field, press.lastX, press.lastY);
}

bool FieldKey(uint8_t ch) {
    DisplayItem* field = EditingField();
    if (!field || ch == 6) return false;
    if (ch == kVkBack) {
        if (field->selStart == field->selEnd) {
            if (field->selStart == 0) return true;
            --field->selStart;
        }
        ReplaceSelection(*field, nullptr, {});
        return true;
    }
    // Other control characters are not text.
    if (ch < 0x20 && ch != kReturn) return true;
    const char typed = static_cast<char>(ch);
    ReplaceSelection(*field, nullptr, std::string_view(&typed, 1));
    return true;
}

bool FieldKeyDown(uint16_t virtualKey, bool shift) {
    DisplayItem* field = EditingField();
    if (!field) return false;
    DisplayItem& f = *field;
    const size_t moving = SelectionMovingEnd(), length = f.document.text.size();
    const bool collapse = !shift && f.selStart != f.selEnd;
    switch (virtualKey) {
        case kVkLeft: MoveTo(f, collapse ? f.selStart : (moving > 0 ? moving - 1 : 0), shift); break;
        case kVkRight: MoveTo(f, collapse ? f.selEnd : std::min(moving + 1, length), shift); break;
        case kVkUp:
        case kVkDown:
            // The column stays for the next Up or Down.
            MoveTo(f, LineStep(f, moving, virtualKey == kVkUp ? -1 : 1), shift);
            return true;
        case kVkHome: MoveTo(f, f.layout.lines[LineOfOffset(f.layout, moving)].start, shift); break;
        case kVkEnd: MoveTo(f, f.layout.lines[LineOfOffset(f.layout, moving)].visibleEnd, shift); break;
        case kVkPageUp:
        case kVkPageDown:
            ScrollFieldTo(f, ScrollByPage(f.layout, f.scrollValue, virtualKey == kVkPageDown, VisibleHeight(f)));
            break;
        case kVkDelete: FieldCutCopyClear(ClipCommand::Clear); break;
        default: return false;
    }
    gEdit.goalX = -1;
    return true;
}

std::string PasteableText(const std::string& clipboard) {
    std::string out;
    out.reserve(clipboard.size());
    for (size_t i = 0; i < clipboard.size(); ++i) {
        const char c = clipboard[i];
        if (c == '\r' && i + 1 < clipboard.size() && clipboard[i + 1] == '\n') {
            out += kReturn;
            ++i;
        } else if (c != '\r' && c != '\n') {
            out += c;
        }
    }
    return out;
}

bool FieldCutCopyClear(ClipCommand command) {
    DisplayItem* field = command == ClipCommand::Copy ? GetActiveField() : EditingField();
    if (!field) return false;
    if (field->selStart == field->selEnd) {
        if (field->selEnd >= field->document.text.size()) return true;
        ++field->selEnd;
    }
    if (command != ClipCommand::Clear) {
        gEdit.scrap = CopyRange(field->document, field->selStart, field->selEnd);
        gEdit.hasScrap = true;
        // The system's clipboard gets the text with its own line ends.
        gEdit.scrapText.clear();
        for (const char c : gEdit.scrap.text) gEdit.scrapText += c == kReturn ? std::string("\r\n") : std::string(1, c);
        GetHost().SetClipboardText(gEdit.scrapText);
    }
    if (command == ClipCommand::Copy) {
        // Copying changes nothing: the selection shows as it was.
        SelectFromAnchor(*field, SelectionAnchor(), SelectionMovingEnd());
        return true;
    }
    ReplaceSelection(*field, nullptr, {});
    return true;
}

bool FieldPaste() {
    DisplayItem* field = EditingField();
    if (!field) return false;
    std::string text;
    const bool haveText = GetHost().GetClipboardText(&text);
    // The styled scrap stands for the clipboard as long as the clipboard holds what it put there.
    if (gEdit.hasScrap && haveText && text == gEdit.scrapText) {
        ReplaceSelection(*field, &gEdit.scrap, {});
    } else if (haveText) {
        ReplaceSelection(*field, nullptr, PasteableText(text));
    }
    return true;
}

bool FieldSelectAll() {
    DisplayItem* field = EditingField();
    if (!field) return false;
    SelectFromAnchor(*field, 0, field->document.text.size());
    return true;
}

bool SetActiveFieldStyle(const FieldStyleChange& change) {
    DisplayItem* field = EditingField();
    if (!field) return false;
    StyledDocument& document = field->document;
    size_t start = field->selStart, end = field->selEnd;
    if (start == end) start = 0, end = document.text.size();
    ChangeStyle(document, start, end, [&change](TextStyle& style) {
        if (!change.face.empty()) style.font.face = change.face;
        if (change.sizePx > 0) style.font.sizePx = change.sizePx;
        style.font.style = static_cast<uint8_t>(((style.font.style | change.setStyle) & ~change.clearStyle) ^
                                                change.toggleStyle);
        if (change.colour) style.colour = *change.colour;
    });
    RelayOutEdit(document, field->layout, start, end - start, end - start);
    GetDocument().dirty = true;
    ShowEdit(*field);
    return true;
}
