#include "text/StyledText.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr char kReturn = '\r';

const TextStyle kDefaultStyle{};

// The index of the run that holds `offset`.
size_t RunIndexAt(const StyledDocument& document, size_t offset) {
    const auto& runs = document.runs;
    auto after = std::upper_bound(runs.begin(), runs.end(), offset,
                                  [](size_t o, const StyledRun& run) { return o < run.start; });
    return after == runs.begin() ? 0 : static_cast<size_t>(after - runs.begin()) - 1;
}

// The end of the run that holds `offset`, or `limit` if that comes first.
size_t RunEnd(const StyledDocument& document, size_t offset, size_t limit) {
    const size_t next = RunIndexAt(document, offset) + 1;
    if (next >= document.runs.size()) return limit;
    return std::min(limit, document.runs[next].start);
}

int32_t Advance(const StyledDocument& document, size_t offset) {
    return MeasureText(document.StyleAt(offset).font, std::string_view(document.text).substr(offset, 1));
}

// The line's height and ascent from the fonts of its characters.
void MeasureLine(const StyledDocument& document, LaidLine* line) {
    int32_t ascent = 0, descent = 0;
    const auto take = [&](const TextFont& font) {
        const TextMetrics m = GetTextMetrics(font);
        ascent = std::max(ascent, m.ascent);
        descent = std::max(descent, m.descent);
    };
    if (line->visibleEnd == line->start) {
        take(document.StyleAt(line->start > 0 ? line->start - 1 : 0).font);
    } else {
        for (size_t at = line->start; at < line->visibleEnd; at = RunEnd(document, at, line->visibleEnd))
            take(document.StyleAt(at).font);
    }
    line->ascent = ascent;
    line->height = ascent + descent;
}

void AddLine(const StyledDocument& document, size_t start, size_t end, size_t paragraphEnd,
             TextLayout* layout) {
    LaidLine line;
    line.start = start;
    line.end = end;
    size_t visible = std::min(end, paragraphEnd);
    while (visible > start && document.text[visible - 1] == ' ') --visible;
    line.visibleEnd = visible;
    for (size_t i = start; i < visible; ++i) line.width += Advance(document, i);
    line.top = layout->height;
    MeasureLine(document, &line);
    layout->height += line.height;
    layout->lines.push_back(line);
}

// Breaks the paragraph [start, end) into lines; `next` is where the text goes on after it.
void BreakParagraph(const StyledDocument& document, size_t start, size_t end, size_t next,
                    int32_t width, TextLayout* layout) {
    size_t lineStart = start;
    size_t breakAt = start;  // after the last space of the line; start when there is none
    int32_t used = 0;
    for (size_t i = start; i < end; ++i) {
        const int32_t advance = Advance(document, i);
        if (document.text[i] == ' ') {
            used += advance;
            if (i + 1 < end && document.text[i + 1] != ' ') breakAt = i + 1;
            continue;
        }
        if (used + advance > width && i > lineStart) {
            const size_t lineEnd = breakAt > lineStart ? breakAt : i;
            AddLine(document, lineStart, lineEnd, end, layout);
            lineStart = lineEnd;
            breakAt = lineStart;
            used = 0;
            // The characters after the break are measured again on the new line.
            i = lineStart - 1;
            continue;
        }
        used += advance;
    }
    AddLine(document, lineStart, next, end, layout);
}

// Where a line's first character stands, by the document's alignment.
int32_t LineLeft(const StyledDocument& document, const TextLayout& layout, const LaidLine& line) {
    const int32_t room = layout.width - line.width;
    return document.align == TextAlign::Left ? 0 : document.align == TextAlign::Centre ? room / 2 : room;
}

// The x of the left edge of the character at `offset` of `line`.
int32_t OffsetX(const StyledDocument& document, const TextLayout& layout, const LaidLine& line, size_t offset) {
    int32_t x = LineLeft(document, layout, line);
    for (size_t i = line.start; i < std::min(offset, line.visibleEnd); ++i) x += Advance(document, i);
    return x;
}

}  // namespace

size_t CharacterAt(const StyledDocument& document, const TextLayout& layout, int32_t x, int32_t y) {
    if (layout.lines.empty()) return 0;
    auto line = std::find_if(layout.lines.begin(), layout.lines.end(),
                             [y](const LaidLine& l) { return y < l.top + l.height; });
    if (line == layout.lines.end()) --line;
    int32_t left = LineLeft(document, layout, *line);
    for (size_t i = line->start; i < line->visibleEnd; ++i) {
        left += Advance(document, i);
        if (x < left) return i;
    }
    return line->visibleEnd;
}

std::vector<Rect> RangeRects(const StyledDocument& document, const TextLayout& layout, size_t start, size_t end) {
    std::vector<Rect> rects;
    for (const LaidLine& line : layout.lines) {
        if (line.end <= start || line.start >= end) continue;
        const int32_t left = OffsetX(document, layout, line, std::max(start, line.start));
        const int32_t right = OffsetX(document, layout, line, std::min(end, line.visibleEnd));
        if (right > left) rects.push_back(Rect{left, line.top, right, line.top + line.height});
    }
    return rects;
}

namespace {

// The line whose cell holds `y`, or the last.
size_t LineIndexAt(const TextLayout& layout, int32_t y) {
    size_t i = 0;
    while (i + 1 < layout.lines.size() && y >= layout.lines[i].top + layout.lines[i].height) ++i;
    return i;
}

}  // namespace

int32_t ScrollLimit(const TextLayout& layout, int32_t visible) {
    for (const LaidLine& line : layout.lines) {
        if (layout.height - line.top <= visible) return line.top;
    }
    return layout.lines.empty() ? 0 : layout.lines.back().top;
}

int32_t ScrollToLine(const TextLayout& layout, int32_t value, int32_t visible) {
    if (layout.lines.empty() || value <= 0) return 0;
    return std::min(layout.lines[LineIndexAt(layout, value)].top, ScrollLimit(layout, visible));
}

int32_t ScrollByLines(const TextLayout& layout, int32_t value, int32_t lines, int32_t visible) {
    if (layout.lines.empty()) return 0;
    const int64_t at = static_cast<int64_t>(LineIndexAt(layout, value)) + lines;
    const size_t target = static_cast<size_t>(std::clamp<int64_t>(at, 0, int64_t(layout.lines.size()) - 1));
    return ScrollToLine(layout, layout.lines[target].top, visible);
}

int32_t ScrollByPage(const TextLayout& layout, int32_t value, bool forward, int32_t visible) {
    if (layout.lines.empty()) return 0;
    const size_t first = LineIndexAt(layout, value);
    const int32_t top = layout.lines[first].top;
    if (forward) {
        size_t next = first + 1;
        while (next < layout.lines.size() && layout.lines[next].top + layout.lines[next].height <= top + visible) ++next;
        return next < layout.lines.size() ? ScrollToLine(layout, layout.lines[next].top, visible)
                                          : ScrollLimit(layout, visible);
    }
    size_t back = first;
    while (back > 0 && layout.lines[back - 1].top >= top - visible) --back;
    if (back == first && first > 0) --back;
    return layout.lines[back].top;
}

const TextStyle& StyledDocument::StyleAt(size_t offset) const {
    return runs.empty() ? kDefaultStyle : runs[RunIndexAt(*this, offset)].style;
}

std::vector<LaidLine> LayOutParagraphs(const StyledDocument& document, size_t start, size_t next, int32_t width,
                                       int32_t top) {
    TextLayout layout;
    layout.width = width;
    layout.height = top;
    const std::string& text = document.text;
    for (;;) {
        const size_t cr = text.find(kReturn, start);
        const bool last = cr == std::string::npos || cr + 1 >= next;
        const size_t end = cr == std::string::npos ? text.size() : cr;
        const size_t after = cr == std::string::npos ? text.size() : cr + 1;
        BreakParagraph(document, start, end, after, width, &layout);
        // A text that ends with a CR has an empty line after it.
        if (last && !(cr != std::string::npos && after == text.size() && next == after)) break;
        start = after;
    }
    return std::move(layout.lines);
}

TextLayout LayOutDocument(const StyledDocument& document, int32_t width) {
    TextLayout layout;
    layout.width = width;
    layout.lines = LayOutParagraphs(document, 0, document.text.size(), width, 0);
    for (const LaidLine& line : layout.lines) layout.height += line.height;
    return layout;
}

int32_t CharacterLeft(const StyledDocument& document, const TextLayout& layout, size_t line, size_t offset) {
    return OffsetX(document, layout, layout.lines[line], offset);
}

void DrawDocument(Surface& surface, const StyledDocument& document, const TextLayout& layout,
                  int32_t left, int32_t top, const Rect& clip) {
    const std::string_view text = document.text;
    for (const LaidLine& line : layout.lines) {
        const int32_t lineTop = top + line.top;
        if (lineTop >= clip.bottom) break;
        if (lineTop + line.height <= clip.top) continue;
        int32_t x = left + LineLeft(document, layout, line);
        const int32_t baseline = lineTop + line.ascent;
        for (size_t at = line.start; at < line.visibleEnd;) {
            const size_t runEnd = RunEnd(document, at, line.visibleEnd);
            const TextStyle& style = document.StyleAt(at);
            const std::string_view piece = text.substr(at, runEnd - at);
            DrawText(surface, style.font, x, baseline, piece, style.colour, clip);
            x += MeasureText(style.font, piece);
            at = runEnd;
        }
    }
}
