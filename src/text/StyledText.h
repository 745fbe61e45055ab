// Styled text for fields: a document of text with style runs, laid out into lines of a given
// width and drawn onto a surface.
//
// Line breaking: a paragraph ends at each CR. Inside a paragraph a line breaks after the last space
// that lets the line fit; spaces at the end of a line hang past the margin and neither count in
// the line's width nor start a new line. A word longer than the line breaks at the last character
// that fits, and a line always holds at least one character. Widths are the glyph advances of the
// FreeType layer, whole pixels with no kerning, so a line measures the same on every host.
//
// A line stands as tall as the tallest ascent and the deepest descent among the fonts of its
// characters; an empty line takes the font of the character before it (or of the document's start).
//
// The layout keeps each line's offsets in the text so that hit testing, selection and scrolling
// can be built on it; only drawing is done here.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "gfx/Surface.h"
#include "text/Font.h"

struct TextStyle {
    TextFont font;
    uint32_t colour = kBlack;
    friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

struct StyledRun {
    size_t start = 0;  // the style holds from here to the next run's start
    TextStyle style;
};

struct StyledDocument {
    std::string text;  // Windows-1252; CR ends a paragraph
    std::vector<StyledRun> runs;  // rising starts; the first is taken to start at 0
    TextAlign align = TextAlign::Left;

    // The style of the character at `offset`; the default style for a document without runs.
    const TextStyle& StyleAt(size_t offset) const;
};

struct LaidLine {
    size_t start = 0;       // first character
    size_t visibleEnd = 0;  // past the last character drawn: hanging spaces and the CR are not
    size_t end = 0;         // where the next line starts
    int32_t top = 0;        // from the top of the text
    int32_t height = 0;
    int32_t ascent = 0;
    int32_t width = 0;  // of the characters drawn
};

struct TextLayout {
    int32_t width = 0;  // the width the lines were broken for
    int32_t height = 0;
    std::vector<LaidLine> lines;  // an empty document has one empty line
};

TextLayout LayOutDocument(const StyledDocument& document, int32_t width);
// The offset of the character whose cell holds (x, y), both from the text's top-left corner: on
// the nearest line when y is above or below the lines, the line's visible end right of its last
// character, its start left of its first.
size_t CharacterAt(const StyledDocument& document, const TextLayout& layout, int32_t x, int32_t y);
// The x of the left edge of the character at `offset` on line `line` (its visible end at most),
// from the text's left.
int32_t CharacterLeft(const StyledDocument& document, const TextLayout& layout, size_t line, size_t offset);
// The lines of the text [start, next) laid out one after another, the first with its top at `top`:
// `start` begins a paragraph and `next` follows a CR or is the text's end.
std::vector<LaidLine> LayOutParagraphs(const StyledDocument& document, size_t start, size_t next, int32_t width,
                                       int32_t top);
// The rectangles, one per line, that the characters [start, end) cover, from the text's top-left.
std::vector<Rect> RangeRects(const StyledDocument& document, const TextLayout& layout, size_t start, size_t end);
// Scrolling keeps a line's top at the top of the view. The scroll value is that line's top in
// pixels, from 0 to ScrollLimit: the top of the first line from which the rest of the text fits in
// `visible` pixels (0 for a text that fits).
int32_t ScrollLimit(const TextLayout& layout, int32_t visible);
// `lines` lines further on (negative: back), kept between 0 and the limit.
int32_t ScrollByLines(const TextLayout& layout, int32_t value, int32_t lines, int32_t visible);
// A page on: the first line not wholly in view comes to the top (at least one line moves). A page
// back: the earliest line whose top is within `visible` pixels above the view's top.
int32_t ScrollByPage(const TextLayout& layout, int32_t value, bool forward, int32_t visible);
// The line top nearest above `value`, kept between 0 and the limit.
int32_t ScrollToLine(const TextLayout& layout, int32_t value, int32_t visible);
// Draws the lines with the text's top-left corner at (left, top), each aligned in the layout's
// width; nothing outside `clip` changes, and the background stays as it is.
void DrawDocument(Surface& surface, const StyledDocument& document, const TextLayout& layout,
                  int32_t left, int32_t top, const Rect& clip);
