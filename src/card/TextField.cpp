// Text fields on the card: the live record's document comes from the chunk's text sub-record, and
// drawing puts the fill, the frame and the laid-out text in the field's rectangle.
#include <algorithm>

#include "base/ByteOrder.h"
#include "card/DisplayList.h"
#include "card/FieldSelection.h"
#include "card/FieldStyles.h"
#include "gfx/Draw.h"
#include "gfx/Palette.h"
#include "messages/StringIds.h"
#include "messages/StringTable.h"
#include "platform/HostFile.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackFiles.h"
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

Rect TextAreaOf(const Rect& rect, uint16_t viewFlags) {
    Rect area = rect;
    if (viewFlags & kTextViewFrame) area = InflateRect(area, -1, -1);
    if (viewFlags & kTextViewScrollBar) area.right -= kFieldScrollBarWidth;
    area = InflateRect(area, -kTextMargin, -kTextMargin);
    if (area.right < area.left) area.right = area.left;
    if (area.bottom < area.top) area.bottom = area.top;
    return area;
}

// The file a field's text comes from, named by the reference in its first block, the text in the
// block's style tail. The file is looked for as other files a stack names are,
// the user asked at last; a file that can't be found or read leaves the field empty.
//
// Line ends are taken as the text's own platform wrote them: CR LF and a lone LF each end a
// paragraph as CR does, so that text files from any system show their lines.
bool ImportFieldText(const uint8_t* chunk, uint32_t length, TextRecord* out) {
    FileTextBlock block;
    if (!FindFileTextBlock(chunk, length, &block) ||
        !SetSlotFromReference(kSlotTextFile, chunk + block.reference, block.referenceLength))
        return false;
    LocateRequest request;
    request.titleStringId = kStringFindTextFile;
    request.filterName = GetString(kStringTextFiles);
    request.filterPattern = "*.txt;*.*";
    request.targetSlot = kSlotTextFile;
    std::string bytes;
    if (!LocateFile(request, kSlotTextFile, true) || ReadWholeHostFile(SlotHostPath(kSlotTextFile), &bytes) != 0)
        return false;
    out->text.clear();
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\n') {
            if (i == 0 || bytes[i - 1] != '\r') out->text += '\r';
        } else {
            out->text += bytes[i];
        }
    }
    if (block.tailLength >= kFileStyleSize)
        out->runs.push_back(ReadFileStyle(chunk + block.reference + block.referenceLength));
    return true;
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
        haveText = (Read16(chunk + kItemFlags) & kItemFlagFileRef)
                       ? ImportFieldText(chunk, length, &record)
                       : ReadFieldText(chunk, length, ShownCardId(card), &record);
    }
    item->chunkCard = card;
    item->document = StyledDocument{};
    item->document.align = AlignOf(align);
    item->storedRuns.clear();
    if (haveText) {
        item->document.text = std::move(record.text);
        for (const StyleRun& run : record.runs)
            item->document.runs.push_back({run.start, StyleOfRun(run)});
        item->storedRuns = std::move(record.runs);
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
    const Rect textClip = IntersectRect(area, FieldTextClip(item));
    DrawDocument(target, item.document, item.layout, item.textArea.left, item.textArea.top - item.scrollValue,
                 textClip);
    // The active field's selection and flashing hot words, inverted where the text shows and in the
    // field's place among the items, under whatever lies over it.
    const auto invert = [&](size_t start, size_t end) {
        for (const Rect& r : RangeRects(item.document, item.layout, start, end)) {
            InvertRect(target, Clip(textClip, clip.region),
                       OffsetRect(r, item.textArea.left, item.textArea.top - item.scrollValue));
        }
    };
    if (GetActiveField() == &item && item.selStart < item.selEnd) invert(item.selStart, item.selEnd);
    if (item.flashStart < item.flashEnd) invert(item.flashStart, item.flashEnd);
    if (GetActiveField() == &item && CaretShown()) {
        const Rect caret = IntersectRect(CaretOnWindow(item), area);
        if (!caret.IsEmpty()) InvertRect(target, Clip(caret, clip.region), caret);
    }
}

Rect FieldTextClip(const DisplayItem& item) {
    Rect inside = item.viewFlags & kTextViewFrame ? InflateRect(item.rect, -1, -1) : item.rect;
    if (item.viewFlags & kTextViewScrollBar) inside.right = FieldScrollBarRect(item).left;
    // Scrolled text is cut at the text area's top, so that the lines above it don't show in the margin.
    if (item.scrollValue > 0) inside.top = std::max(inside.top, item.textArea.top);
    return inside;
}
