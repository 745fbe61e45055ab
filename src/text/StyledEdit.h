// Editing a styled document: inserting, deleting and restyling ranges, the styled piece that cut
// and copy keep, and the layout brought up to date after an edit by breaking again only the
// paragraphs the edit touched.
//
// Typed text takes the style of the character before it; at the start of the text, of the first
// character; at the very end, of a run that starts there, which stacks keep for just that.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

#include "text/StyledText.h"

// Inserts `bytes` at `at` (cut to the text's end), styled as typed text.
void InsertText(StyledDocument& document, size_t at, std::string_view bytes);
// Removes [start, end); the runs that stood wholly inside it go.
void DeleteText(StyledDocument& document, size_t start, size_t end);
// [start, end) as a document of its own, its runs from 0.
StyledDocument CopyRange(const StyledDocument& document, size_t start, size_t end);
// Inserts `piece` at `at` with its own styles.
void InsertDocument(StyledDocument& document, size_t at, const StyledDocument& piece);
// Changes the style of every character of [start, end) by `change`; for an empty range, of the
// whole text. Neighbouring runs left alike are merged.
void ChangeStyle(StyledDocument& document, size_t start, size_t end, const std::function<void(TextStyle&)>& change);

// Brings `layout` up to date after the bytes [start, start + removed) of the text were replaced by
// `inserted` bytes: the paragraphs from the one holding `start` to the one ending the new bytes
// are broken again, and the lines after them move. The result equals a layout made afresh.
void RelayOutEdit(const StyledDocument& document, TextLayout& layout, size_t start, size_t removed, size_t inserted);

// The line that holds offset `offset`: at a line's end, the next line, except at the text's end.
size_t LineOfOffset(const TextLayout& layout, size_t offset);
// The insertion point before the character at `offset`, one pixel wide and the line's height,
// from the text's top-left corner.
Rect CaretRect(const StyledDocument& document, const TextLayout& layout, size_t offset);
// The place between characters on line `line` nearest to x (from the text's left), no further
// than its visible end.
size_t OffsetOnLine(const StyledDocument& document, const TextLayout& layout, size_t line, int32_t x);
// The place between characters nearest to (x, y), on the line whose cell holds y (the first or
// the last line above or below the text).
size_t CaretOffsetAt(const StyledDocument& document, const TextLayout& layout, int32_t x, int32_t y);
// The word around `offset`: letters, digits and the apostrophe; the character itself for any other.
void WordAround(const StyledDocument& document, size_t offset, size_t* start, size_t* end);
