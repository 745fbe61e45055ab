// A field's scroll bar is painted into the card at the field's right edge: fields are not windows.
// The arrows are our own drawings of the platform's: a raised grey button with a black triangle.
#include <algorithm>

#include "card/DisplayList.h"
#include "gfx/Draw.h"
#include "stack/CardRecord.h"

namespace {

constexpr uint32_t kFace = 0xC0C0C0;
constexpr uint32_t kShade = 0x808080;
// The track between the arrows, a little lighter than a button's face.
constexpr uint32_t kTrack = 0xE0E0E0;

// A raised button: white on the top and left, shade and black on the bottom and right, `bevel`
// pixels of highlight.
void DrawRaised(Surface& s, const Clip& clip, const Rect& r, int32_t bevel) {
    FillRect(s, clip, r, kFace);
    FillRect(s, clip, {r.left, r.bottom - 1, r.right, r.bottom}, kBlack);
    FillRect(s, clip, {r.right - 1, r.top, r.right, r.bottom}, kBlack);
    FillRect(s, clip, {r.left, r.bottom - 2, r.right - 1, r.bottom - 1}, kShade);
    FillRect(s, clip, {r.right - 2, r.top, r.right - 1, r.bottom - 1}, kShade);
    FillRect(s, clip, {r.left, r.top, r.right - 2, r.top + bevel}, kWhite);
    FillRect(s, clip, {r.left, r.top, r.left + bevel, r.bottom - 2}, kWhite);
}

// An arrow button; the triangle is four rows tall, its point up or down, and shrinks with a
// squeezed button. A pressed arrow is flat, with a shade rim, and its triangle one pixel lower and
// to the right.
void DrawArrow(Surface& s, const Clip& clip, const Rect& r, bool up, bool pressed) {
    if (pressed) {
        FillRect(s, clip, r, kFace);
        FrameRect(s, clip, r, Pen{kShade});
    } else {
        DrawRaised(s, clip, r, 1);
    }
    const int32_t rows = std::min(4, (r.bottom - r.top - 4) / 2);
    const int32_t cx = (r.left + r.right - 1) / 2 + (pressed ? 1 : 0);
    const int32_t top = (r.top + r.bottom - rows) / 2 + (pressed ? 1 : 0);
    for (int32_t i = 0; i < rows; ++i) {
        const int32_t half = up ? i : rows - 1 - i;
        FillRect(s, clip, {cx - half, top + i, cx + half + 1, top + i + 1}, kBlack);
    }
}

}  // namespace

Rect FieldScrollBarRect(const DisplayItem& item) {
    const Rect inner = item.viewFlags & kTextViewFrame ? InflateRect(item.rect, -1, -1) : item.rect;
    return {std::max(inner.left, inner.right - kFieldScrollBarWidth), inner.top, inner.right, inner.bottom};
}

int32_t FieldArrowHeight(const DisplayItem& item) {
    const Rect bar = FieldScrollBarRect(item);
    return std::min(kFieldScrollBarWidth, (bar.bottom - bar.top) / 2);
}

// A thumb only where there is room for it and half an arrow more.
bool FieldHasThumb(const DisplayItem& item) {
    const Rect bar = FieldScrollBarRect(item);
    return 2 * (bar.bottom - bar.top) > 7 * FieldArrowHeight(item);
}

void DrawFieldScrollBar(Surface& s, const Clip& clip, const DisplayItem& item) {
    const Rect bar = FieldScrollBarRect(item);
    if (bar.IsEmpty()) return;
    const int32_t arrow = FieldArrowHeight(item);
    FillRect(s, clip, bar, kWhite);
    DrawArrow(s, clip, {bar.left, bar.top, bar.right, bar.top + arrow}, true, item.pressedArrow == 1);
    DrawArrow(s, clip, {bar.left, bar.bottom - arrow, bar.right, bar.bottom}, false, item.pressedArrow == 2);
    if (!FieldHasThumb(item)) return;
    const Rect track{bar.left, bar.top + arrow, bar.right, bar.bottom - arrow};
    FillRect(s, clip, track, kTrack);
    FillRect(s, clip, {track.left, track.top, track.left + 1, track.bottom}, kBlack);
    const int32_t thumbTop = track.top + std::clamp(item.thumbOffset, 0, track.bottom - track.top - arrow);
    DrawRaised(s, clip, {track.left, thumbTop, track.right, thumbTop + arrow}, 2);
    // The dragged thumb's outline, drawn inverted so that it shows on the track and on the thumb;
    // it stands right of the track's left line, which inverting would erase.
    if (item.ghostTop >= 0) {
        const Rect ghost{track.left + 1, item.ghostTop, track.right, item.ghostTop + arrow};
        const Rect edges[] = {{ghost.left, ghost.top, ghost.right, ghost.top + 1},
                              {ghost.left, ghost.bottom - 1, ghost.right, ghost.bottom},
                              {ghost.left, ghost.top + 1, ghost.left + 1, ghost.bottom - 1},
                              {ghost.right - 1, ghost.top + 1, ghost.right, ghost.bottom - 1}};
        for (const Rect& edge : edges) InvertRect(s, clip, edge);
    }
}
