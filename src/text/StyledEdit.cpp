#include "text/StyledEdit.h"

#include <algorithm>

namespace {

constexpr char kReturn = '\r';

// Runs that start where a later one starts say nothing, and a run like the one before it neither;
// runs are kept rising.
void TidyRuns(StyledDocument& document) {
    std::vector<StyledRun>& runs = document.runs;
    std::vector<StyledRun> kept;
    kept.reserve(runs.size());
    for (size_t i = 0; i < runs.size(); ++i) {
        if (i + 1 < runs.size() && runs[i + 1].start <= runs[i].start) continue;
        if (!kept.empty() && kept.back().style == runs[i].style) continue;
        kept.push_back(runs[i]);
    }
    if (!kept.empty()) kept.front().start = 0;
    runs = std::move(kept);
}

// Splits the run holding `offset` so that a run starts there; returns that run's index.
size_t SplitRunAt(StyledDocument& document, size_t offset) {
    std::vector<StyledRun>& runs = document.runs;
    if (runs.empty()) runs.push_back({0, TextStyle{}});
    size_t i = 0;
    while (i + 1 < runs.size() && runs[i + 1].start <= offset) ++i;
    if (runs[i].start == offset) return i;
    StyledRun split = runs[i];
    split.start = offset;
    runs.insert(runs.begin() + static_cast<std::ptrdiff_t>(i) + 1, split);
    return i + 1;
}

bool IsWordCharacter(char c) {
    const auto u = static_cast<unsigned char>(c);
    return (u >= '0' && u <= '9') || (u >= 'A' && u <= 'Z') || (u >= 'a' && u <= 'z') || u == '\'' || u >= 0xC0;
}

}  // namespace

void InsertText(StyledDocument& document, size_t at, std::string_view bytes) {
    const size_t length = document.text.size();
    at = std::min(at, length);
    document.text.insert(at, bytes);
    for (StyledRun& run : document.runs) {
        // A run starting at the insertion point moves on, so that the new text takes the style
        // before it; at the start and at the very end the run there takes the new text.
        if (run.start > at || (run.start == at && at > 0 && at < length)) run.start += bytes.size();
    }
}

void DeleteText(StyledDocument& document, size_t start, size_t end) {
    end = std::min(end, document.text.size());
    if (start >= end) return;
    document.text.erase(start, end - start);
    for (StyledRun& run : document.runs) {
        if (run.start >= end) run.start -= end - start;
        else if (run.start > start) run.start = start;
    }
    TidyRuns(document);
}

StyledDocument CopyRange(const StyledDocument& document, size_t start, size_t end) {
    end = std::min(end, document.text.size());
    start = std::min(start, end);
    StyledDocument piece;
    piece.align = document.align;
    piece.text = document.text.substr(start, end - start);
    piece.runs.push_back({0, document.StyleAt(start)});
    for (const StyledRun& run : document.runs) {
        if (run.start > start && run.start < end) piece.runs.push_back({run.start - start, run.style});
    }
    TidyRuns(piece);
    return piece;
}

void InsertDocument(StyledDocument& document, size_t at, const StyledDocument& piece) {
    if (piece.text.empty()) return;
    at = std::min(at, document.text.size());
    const size_t first = SplitRunAt(document, at);
    std::vector<StyledRun>& runs = document.runs;
    // The text after the piece keeps its own style; at the very end the piece's style goes on.
    if (at == document.text.size()) runs.erase(runs.begin() + static_cast<std::ptrdiff_t>(first), runs.end());
    for (size_t i = first; i < runs.size(); ++i) runs[i].start += piece.text.size();
    std::vector<StyledRun> added;
    if (piece.runs.empty()) added.push_back({at, TextStyle{}});
    for (const StyledRun& run : piece.runs) added.push_back({at + run.start, run.style});
    added.front().start = at;
    runs.insert(runs.begin() + static_cast<std::ptrdiff_t>(first), added.begin(), added.end());
    document.text.insert(at, piece.text);
    TidyRuns(document);
}

void ChangeStyle(StyledDocument& document, size_t start, size_t end,
                 const std::function<void(TextStyle&)>& change) {
    end = std::min(end, document.text.size());
    if (start >= end) {
        start = 0;
        end = document.text.size();
    }
    const size_t first = SplitRunAt(document, start);
    const size_t stop = end < document.text.size() ? SplitRunAt(document, end) : document.runs.size();
    // Up to the text's end, a run kept there for typing changes too.
    for (size_t i = first; i < stop; ++i) change(document.runs[i].style);
    TidyRuns(document);
}

void RelayOutEdit(const StyledDocument& document, TextLayout& layout, size_t start, size_t removed, size_t inserted) {
    const std::string& text = document.text;
    start = std::min(start, text.size());
    // The text before `start` is as it was, and so are the lines of the paragraphs before it.
    const size_t paragraph = start == 0 ? std::string::npos : text.rfind(kReturn, start - 1);
    const size_t from = paragraph == std::string::npos ? 0 : paragraph + 1;
    const size_t cr = text.find(kReturn, std::min(start + inserted, text.size()));
    const size_t next = cr == std::string::npos ? text.size() : cr + 1;
    const size_t oldNext = next - inserted + removed;
    const bool toTheEnd = next == text.size();

    std::vector<LaidLine>& lines = layout.lines;
    auto first = std::lower_bound(lines.begin(), lines.end(), from,
                                  [](const LaidLine& l, size_t o) { return l.start < o; });
    auto last = toTheEnd ? lines.end()
                         : std::lower_bound(first, lines.end(), oldNext,
                                            [](const LaidLine& l, size_t o) { return l.start < o; });
    const int32_t top = first == lines.end() ? layout.height : first->top;
    int32_t oldHeight = 0;
    for (auto l = first; l != last; ++l) oldHeight += l->height;
    std::vector<LaidLine> fresh = LayOutParagraphs(document, from, next, layout.width, top);
    int32_t newHeight = 0;
    for (const LaidLine& l : fresh) newHeight += l.height;
    const auto shift = static_cast<std::ptrdiff_t>(inserted) - static_cast<std::ptrdiff_t>(removed);
    for (auto l = last; l != lines.end(); ++l) {
        l->start = static_cast<size_t>(static_cast<std::ptrdiff_t>(l->start) + shift);
        l->visibleEnd = static_cast<size_t>(static_cast<std::ptrdiff_t>(l->visibleEnd) + shift);
        l->end = static_cast<size_t>(static_cast<std::ptrdiff_t>(l->end) + shift);
        l->top += newHeight - oldHeight;
    }
    const auto at = lines.erase(first, last);
    lines.insert(at, fresh.begin(), fresh.end());
    layout.height += newHeight - oldHeight;
}

size_t LineOfOffset(const TextLayout& layout, size_t offset) {
    const auto& lines = layout.lines;
    if (lines.empty()) return 0;
    auto after = std::upper_bound(lines.begin(), lines.end(), offset,
                                  [](size_t o, const LaidLine& l) { return o < l.start; });
    return after == lines.begin() ? 0 : static_cast<size_t>(after - lines.begin()) - 1;
}

Rect CaretRect(const StyledDocument& document, const TextLayout& layout, size_t offset) {
    if (layout.lines.empty()) return {};
    const size_t index = LineOfOffset(layout, offset);
    const LaidLine& line = layout.lines[index];
    const int32_t x = CharacterLeft(document, layout, index, offset);
    return Rect{x, line.top, x + 1, line.top + line.height};
}

size_t OffsetOnLine(const StyledDocument& document, const TextLayout& layout, size_t line, int32_t x) {
    if (layout.lines.empty()) return 0;
    line = std::min(line, layout.lines.size() - 1);
    const LaidLine& l = layout.lines[line];
    const size_t at = CharacterAt(document, layout, x, l.top);
    if (at >= l.visibleEnd) return at;
    // Past the middle of its character, the place after it is nearer.
    const int32_t left = CharacterLeft(document, layout, line, at);
    const int32_t right = CharacterLeft(document, layout, line, at + 1);
    return x - left > right - x ? at + 1 : at;
}

size_t CaretOffsetAt(const StyledDocument& document, const TextLayout& layout, int32_t x, int32_t y) {
    size_t line = 0;
    while (line + 1 < layout.lines.size() && y >= layout.lines[line].top + layout.lines[line].height) ++line;
    return OffsetOnLine(document, layout, line, x);
}

void WordAround(const StyledDocument& document, size_t offset, size_t* start, size_t* end) {
    const std::string& text = document.text;
    offset = std::min(offset, text.size());
    *start = *end = offset;
    if (offset == text.size() || !IsWordCharacter(text[offset])) {
        *end = std::min(offset + 1, text.size());
        return;
    }
    while (*start > 0 && IsWordCharacter(text[*start - 1])) --*start;
    while (*end < text.size() && IsWordCharacter(text[*end])) ++*end;
}
