// Text fields on the card: the live record's document comes from the chunk's text sub-record, and
// drawing puts the fill, the frame and the laid-out text in the field's rectangle.
#include <algorithm>

#include "base/ByteOrder.h"
#include "card/DisplayList.h"
#include "card/FieldSelection.h"
#include "gfx/Draw.h"
#include "gfx/Palette.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "text/Fontmap.h"
#include "text/TextRecord.h"

namespace {

// The text stands this far inside the field's rectangle, its frame and its scroll bar.
constexpr int32_t kTextMargin = 3;

// The card whose text a per-card field shows: the card on show.
uint16_t ShownCardId(MemRef chunkCard) {
    const MemRef current = GetDocument().currentCard;
    return static_cast<uint16_t>(GetCardId(current ? current : chunkCard));
}

TextStyle StyleOfRun(const StyleRun& run) {
    LogFont logFont;
    FontToLogFont(run.fontId, &logFont, run.size);
    TextStyle style;
    style.font = TextFontFromLogFont(logFont);
    style.font.style |= run.style & (kStyleBold | kStyleItalic | kStyleUnderline);
    // The record keeps 16-bit components; the high byte is the colour.
    style.colour = Rgb(static_cast<uint8_t>(run.red >> 8), static_cast<uint8_t>(run.green >> 8),
                       static_cast<uint8_t>(run.blue >> 8));
    return style;
}

TextAlign AlignOf(int16_t stored) {
    return stored < 0 ? TextAlign::Right : stored > 0 ? TextAlign::Centre : TextAlign::Left;
}

Rect TextAreaOf(const Rect& rect, uint16_t viewFlags) {
    Rect area = rect;
    if (viewFlags & kTextViewFrame) area = InflateRect(area, -1, -1);
    if (viewFlags & kTextViewScrollBar) area.right -= kFieldScrollBarWidth;
    area = InflateRect(area, -kTextMargin, -kTextMargin);
    if (area.right < area.left) area.right = area.left;
    if (area.bottom < area.top) area.bottom = area.top;
    return area;
}

}  // namespace

void LoadTextField(DisplayItem* item, MemRef card, uint32_t offset) {
    TextRecord record;
    bool haveText = false;
    int16_t align = 0;
    {
        MemRefLock lock(card);
        const uint32_t size = GetMemRefSize(card);
        // ReadItemHead has checked that the head lies in the card.
        const uint8_t* chunk = lock.data() + offset;
        const uint32_t length = std::min(Read32(chunk + kItemLength), size - offset);
        item->viewFlags = Read16(chunk + kTextViewFlags);
        item->backColor = static_cast<int16_t>(Read16(chunk + kTextBackColor) - 1);
        align = ReadS16(chunk + kTextAlign);
        item->transparent = (Read16(chunk + kItemFlags) & kTextFlagTransparent) != 0;
        // A field whose text comes from a file shows it when text import is here.
        haveText = ReadFieldText(chunk, length, ShownCardId(card), &record);
    }
    item->document = StyledDocument{};
    item->document.align = AlignOf(align);
    if (haveText) {
        item->document.text = std::move(record.text);
        for (const StyleRun& run : record.runs)
            item->document.runs.push_back({run.start, StyleOfRun(run)});
    }
    item->textArea = TextAreaOf(item->rect, item->viewFlags);
    item->layout = LayOutDocument(item->document, item->textArea.right - item->textArea.left);
}

void DrawTextField(Surface& target, const Clip& clip, const DisplayItem& item, const uint32_t* colors) {
    const Rect area = IntersectRect(clip.rect, item.rect);
    if (area.IsEmpty()) return;
    const Clip fieldClip(area, clip.region);
    if (!item.transparent) {
        const uint32_t fill = item.backColor >= 0 && item.backColor < int32_t(kPaletteSize)
                                  ? colors[item.backColor]
                                  : kWhite;
        FillRect(target, fieldClip, item.rect, fill);
    }
    if (item.viewFlags & kTextViewScrollBar) DrawFieldScrollBar(target, fieldClip, item);
    if (item.viewFlags & kTextViewFrame) FrameRect(target, fieldClip, item.rect, Pen{});
    // Glyphs stay inside the text area, so that none is drawn over the frame or the scroll bar.
    // Scrolled text is cut at the text area's top, so that the lines above it don't show in the margin.
    Rect textClip = IntersectRect(area, InflateRect(item.textArea, kTextMargin, kTextMargin));
    if (item.scrollValue > 0) textClip.top = std::max(textClip.top, item.textArea.top);
    DrawDocument(target, item.document, item.layout, item.textArea.left, item.textArea.top - item.scrollValue,
                 textClip);
    // The active field's selection, inverted over the text and cut to the text area.
    if (GetActiveField() == &item && item.selStart < item.selEnd) {
        const Rect selectionClip = IntersectRect(area, item.textArea);
        for (const Rect& r : RangeRects(item.document, item.layout, item.selStart, item.selEnd)) {
            InvertRect(target, Clip(selectionClip, clip.region),
                       OffsetRect(r, item.textArea.left, item.textArea.top - item.scrollValue));
        }
    }
}
