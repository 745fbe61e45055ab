#include "card/FieldSave.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "base/ByteOrder.h"
#include "base/ResultCodes.h"
#include "card/DisplayList.h"
#include "card/FieldStyles.h"
#include "messages/Alert.h"
#include "messages/StringIds.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "text/TextRecord.h"
#include "text/TextSplice.h"

namespace {

struct ShownField {
    MemRef card;  // holding the chunk
    uint32_t offset;
    DisplayItem* item;
};

DisplayItem* LiveField(MemRef card, int16_t id) {
    for (DisplayItem* item = DisplayListHead(); item; item = item->next.get()) {
        if (item->type == kItemKindText && item->id == id && item->chunkCard == card) return item;
    }
    return nullptr;
}

// The text chunks `card` shows that have a live field, in the walk's order.
std::vector<ShownField> ShownFields(MemRef card) {
    std::vector<ShownField> fields;
    ItemWalker walker;
    BeginItemWalk(&walker, card, true);
    MemRef at = 0;
    uint32_t offset = 0;
    while (NextItem(&walker, &at, &offset, false)) {
        int16_t kind = 0, id = 0;
        {
            MemRefLock lock(at);
            const uint8_t* chunk = lock.data() + offset;
            if (GetMemRefSize(at) - offset < kTextHeadSize || Read32(chunk + kItemLength) < kTextHeadSize) continue;
            kind = ReadS16(chunk + kItemKind);
            id = ReadS16(chunk + kItemId);
        }
        if (kind != kItemKindText) continue;
        if (DisplayItem* item = LiveField(at, id)) fields.push_back({at, offset, item});
    }
    EndItemWalk(&walker);
    return fields;
}

// The alignment, and for a field of a file its style tail, as the field has them now. True when a
// byte changed.
bool StoreHeadAndTail(const ShownField& f, uint16_t* flags) {
    MemRefLock lock(f.card);
    uint8_t* chunk = lock.data() + f.offset;
    const uint32_t length = std::min(Read32(chunk + kItemLength), GetMemRefSize(f.card) - f.offset);
    *flags = Read16(chunk + kItemFlags);
    bool changed = false;
    // A stored value that already means the field's alignment stays, whatever its number.
    if (AlignOf(ReadS16(chunk + kTextAlign)) != f.item->document.align) {
        Write16(chunk + kTextAlign, static_cast<uint16_t>(StoredAlign(f.item->document.align)));
        changed = true;
    }
    FileTextBlock block;
    if (!(*flags & kItemFlagFileRef) || !FindFileTextBlock(chunk, length, &block) ||
        block.tailLength < kFileStyleSize || f.item->document.runs.empty())
        return changed;
    uint8_t style[kFileStyleSize];
    WriteFileStyle(style, StoredRunsOf(f.item->document, f.item->storedRuns).front());
    uint8_t* tail = chunk + block.reference + block.referenceLength;
    if (std::memcmp(tail, style, kFileStyleSize) == 0) return changed;
    std::memcpy(tail, style, kFileStyleSize);
    return true;
}

}  // namespace

int32_t SaveFieldEdits(MemRef card) {
    if (!card || !IsMemRef(card)) return kResultOk;
    const uint16_t cardId = static_cast<uint16_t>(GetCardId(card));
    const std::vector<ShownField> fields = ShownFields(card);
    int32_t result = kResultOk;
    bool changed = false;
    // From the last chunk back: a splice moves only the chunks behind the one it changes.
    for (auto f = fields.rbegin(); f != fields.rend(); ++f) {
        DisplayItem& item = *f->item;
        uint16_t flags = 0;
        changed = StoreHeadAndTail(*f, &flags) || changed;
        // Nothing typed in a field of a file is kept; the text of a group's card is written only
        // where the field has a text for each card.
        const bool perCard = (flags & kTextFlagPerCard) != 0;
        if ((flags & kItemFlagFileRef) || !item.dirty || (f->card != card && !perCard)) {
            if (flags & kItemFlagFileRef) item.dirty = false;
            continue;
        }
        TextRecord record{cardId, item.document.text, StoredRunsOf(item.document, item.storedRuns)};
        const int32_t spliced = SpliceTextRecord(f->card, f->offset, perCard, record, StackTextIsMacintosh());
        if (spliced == kResultNoMemory) {
            Alert(kAlertFieldNotStored);
            result = spliced;
            continue;
        }
        if (spliced != kResultOk) continue;
        item.storedRuns = std::move(record.runs);
        item.dirty = false;
        changed = true;
    }
    if (changed) GetDocument().dirty = true;
    return result;
}
