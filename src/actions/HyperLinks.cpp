#include "actions/HyperLinks.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>

#include "actions/RunAction.h"
#include "base/ByteOrder.h"
#include "card/DisplayList.h"
#include "card/FieldEdit.h"
#include "card/FieldSelection.h"
#include "card/OffscreenCard.h"
#include "platform/Host.h"
#include "stack/Blob.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/Normalise.h"

namespace {

inline constexpr uint32_t kLinkTextBuffer = 256;

struct LinkHead {
    uint16_t linkId = 0, fieldId = 0, padLength = 0, textLength = 0;
    bool hasAction = false;
    std::string text;
};

bool ReadLink(MemRef record, LinkHead* link) {
    MemRefLock lock(record);
    const uint32_t size = GetMemRefSize(record);
    if (!lock || size < kHlnkText) return false;
    const uint8_t* h = lock.data();
    link->linkId = Read16(h + kHlnkLinkId);
    link->fieldId = Read16(h + kHlnkFieldId);
    link->padLength = Read16(h + kHlnkPadLength);
    link->textLength = Read16(h + kHlnkTextLength);
    link->hasAction = Read16(h + kHlnkHasAction) != 0;
    if (link->textLength > size - kHlnkText) return false;
    link->text.assign(reinterpret_cast<const char*>(h + kHlnkText), link->textLength);
    return true;
}

bool SameIgnoringCase(const char* a, const std::string& b) {
    for (size_t i = 0; i < b.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    }
    return true;
}

// The words are looked for in a window of twice their length around the point's character (the
// selection's start): the point must fall strictly inside them, a selection wholly within them.
int16_t MatchHyperLink(const LinkHead& link, uint16_t fieldId, const std::string& text, int64_t position,
                       const size_t* selection, size_t* start, size_t* end) {
    if (link.fieldId != fieldId || position < 0 || link.textLength == 0) return -1;
    const int64_t length = link.textLength;
    const int64_t windowStart = position - length;
    const int64_t from = std::max<int64_t>(windowStart, 0);
    const int64_t to = std::min<int64_t>(windowStart + 2 * length, static_cast<int64_t>(text.size()));
    const int64_t last = std::min<int64_t>(length, windowStart + length);
    for (int64_t i = 0; i <= last && from + i + length <= to; ++i) {
        const int64_t at = from + i;
        if (!SameIgnoringCase(text.data() + at, link.text)) continue;
        const bool hit = selection ? int64_t(selection[0]) >= at && int64_t(selection[1]) <= at + length
                                   : position > at && position < at + length;
        if (!hit) continue;
        if (!link.hasAction) return 0;
        *start = static_cast<size_t>(at);
        *end = static_cast<size_t>(at + length);
        return static_cast<int16_t>(link.linkId);
    }
    return -1;
}

// Shows the words, hides them, shows them again and hides them, 300 ms apart. The field draws them
// inverted in its place among the items, so that what lies over the words stays as it is.
void FlashHyperLink(DisplayItem& field, size_t start, size_t end) {
    Host& host = GetHost();
    Rect area;
    for (const Rect& r : RangeRects(field.document, field.layout, start, end))
        area = UnionRect(area, OffsetRect(r, field.textArea.left, field.textArea.top - field.scrollValue));
    area = IntersectRect(area, FieldTextClip(field));
    if (area.IsEmpty()) return;
    for (int flash = 0; flash < 4; ++flash) {
        const bool shown = flash % 2 == 0;
        field.flashStart = shown ? start : 0;
        field.flashEnd = shown ? end : 0;
        RepaintRect(area.left, area.top, area.right, area.bottom);
        if (flash < 3) host.WaitUntil(host.GetTickCount() + kLinkFlashMs);
    }
}

}  // namespace

int16_t FindHyperLink(const DisplayItem& field, int32_t x, int32_t y, size_t* start, size_t* end) {
    const uint32_t count = CountBlobs(FourCC("Hlnk"));
    if (count == 0 || field.id == 0) return 0;
    // In a field being typed into, the selection the click made decides; elsewhere the point.
    const size_t selection[2] = {field.selStart, field.selEnd};
    const bool bySelection = GetActiveField() == &field && FieldEditable(field);
    int64_t position = bySelection ? static_cast<int64_t>(field.selStart) : -1;
    if (!bySelection && field.textArea.Contains(x, y)) {
        // The text stands scrolled up by the field's scroll value.
        const int32_t textX = x - field.textArea.left, textY = y - field.textArea.top + field.scrollValue;
        position = static_cast<int64_t>(CharacterAt(field.document, field.layout, textX, textY));
    }
    for (const uint16_t fieldId : {static_cast<uint16_t>(field.id), uint16_t{0}}) {
        for (uint32_t index = 1; index <= count; ++index) {
            LinkHead link;
            if (!ReadLink(GetBlobByIndex(FourCC("Hlnk"), index), &link)) continue;
            const int16_t found = MatchHyperLink(link, fieldId, field.document.text, position,
                                                 bySelection ? selection : nullptr, start, end);
            if (found > 0) return found;
        }
    }
    return 0;
}

int32_t RunHyperLink(uint16_t id, uint32_t wait) {
    if (id == 0 || !IsBrowsing()) return 0;
    const MemRef record = GetBlobById(FourCC("Hlnk"), id);
    LinkHead link;
    if (!record || !ReadLink(record, &link)) return 0;
    const std::string buffer = link.text.substr(0, kLinkTextBuffer);
    uint8_t* name = GetActionState().currentItemName;
    std::memset(name, 0, sizeof GetActionState().currentItemName);
    name[0] = static_cast<uint8_t>(std::min<size_t>(buffer.size(), sizeof GetActionState().currentItemName - 1));
    std::memcpy(name + 1, buffer.data(), name[0]);
    RunAction(GetHost().window, record, kHlnkText + link.padLength + link.textLength, id, 1, wait, buffer);
    return 1;
}

bool ClickHyperLink(void* window, int32_t x, int32_t y) {
    if (!IsBrowsing() || !GetDocument().autoTimers) return false;
    DisplayItem* item = FindItemAt(x, y, false, nullptr);
    if (!item || item->type != kItemKindText) return false;
    size_t start = 0, end = 0;
    const int16_t id = FindHyperLink(*item, x, y, &start, &end);
    if (id <= 0) return false;
    FlashHyperLink(*item, start, end);
    return RunHyperLink(static_cast<uint16_t>(id), 0) == 1;
}
