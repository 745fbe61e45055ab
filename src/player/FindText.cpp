#include "player/FindText.h"

#include <algorithm>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "card/FieldSave.h"
#include "card/FieldSelection.h"
#include "player/Navigation.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "text/TextRecord.h"

namespace {

FindRequest gRequest;

void ResetFindRequest() { gRequest = FindRequest{}; }
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Player, ResetFindRequest);

int Fold(unsigned char c) { return c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c; }

bool TakesField(uint16_t options, uint16_t viewFlags) {
    if (options & kFindAllFields) return true;
    return (viewFlags & kTextViewReadOnly) ? (options & kFindReadOnlyFields) != 0 : (options & kFindEditableFields) != 0;
}

// The text a field shows on the card `cardId`, as its record stores it (the search is on the stored
// bytes); false for a field that has none of its own there.
bool FieldTextOnCard(MemRef card, uint32_t offset, uint16_t cardId, std::string* text) {
    MemRefLock lock(card);
    const uint32_t size = GetMemRefSize(card);
    const uint8_t* chunk = lock.data() + offset;
    const uint32_t length = std::min(Read32(chunk + kItemLength), size - offset);
    uint32_t at = 0;
    if (!FindTextRecord(chunk, length, cardId, (Read16(chunk + kItemFlags) & kTextFlagPerCard) != 0, &at)) return false;
    TextRecord record;
    if (ReadTextRecord(chunk + at, length - at, false, &record) != 0 || record.cardId != cardId) return false;
    *text = std::move(record.text);
    return true;
}

void ShowHit(const FindRequest& hit) {
    if (hit.card != static_cast<uint16_t>(GetDocument().currentCardId)) {
        GoToCard(static_cast<int16_t>(hit.card), 3, 8);
    } else {
        LeaveActiveField();
    }
    if (DisplayItem* field = FindDisplayItem(kItemKindText, static_cast<int16_t>(hit.field))) {
        SelectInField(*field, hit.offset, hit.offset + hit.text.size());
    }
}

}  // namespace

FindRequest& GetFindRequest() { return gRequest; }

bool FindInBytes(const std::string& text, const std::string& needle, size_t from, bool matchCase, size_t* at) {
    if (needle.empty() || needle.size() > text.size()) return false;
    for (size_t i = from; i + needle.size() <= text.size(); ++i) {
        size_t n = 0;
        while (n < needle.size() &&
               (matchCase ? text[i + n] == needle[n]
                          : Fold(static_cast<unsigned char>(text[i + n])) == Fold(static_cast<unsigned char>(needle[n]))))
            ++n;
        if (n == needle.size()) {
            *at = i;
            return true;
        }
    }
    return false;
}

// Cards are visited from the one on show to the last; with wrap on, round past the first and back
// to the one on show, so that a hit above the last one on the first card is found too.
bool FindInStack(FindRequest* request) {
    // The search reads the records, so what was typed on the card on show goes into them first.
    SaveFieldEdits(GetDocument().currentCard);
    const int32_t count = CardCount();
    const int32_t start = std::max<int32_t>(1, GetCardPosition(GetDocument().currentCard));
    if (count <= 0 || request->text.empty()) return false;
    const int32_t visits = (request->options & kFindWrap) ? count + 2 : count - start + 1;
    bool again = (request->options & kFindAgain) != 0;
    request->options &= static_cast<uint16_t>(~kFindAgain);
    for (int32_t v = 0; v < visits; ++v) {
        const MemRef card = GetCardByPosition((start - 1 + v) % count + 1);
        const uint16_t cardId = static_cast<uint16_t>(GetCardId(card));
        ItemWalker walker;
        BeginItemWalk(&walker, card, true);
        MemRef at = 0;
        uint32_t offset = 0;
        for (uint32_t index = 0; NextItem(&walker, &at, &offset, false); ++index) {
            if (again && index < request->index) continue;
            size_t from = 0;
            if (again) {
                from = request->offset + 1;
                again = false;
            }
            int16_t kind = 0;
            uint16_t flags = 0, viewFlags = 0, id = 0;
            {
                // The walk has checked that an item's head lies in its card; a text item's longer
                // head is checked here.
                MemRefLock lock(at);
                const uint8_t* chunk = lock.data() + offset;
                kind = static_cast<int16_t>(Read16(chunk + kItemKind));
                flags = Read16(chunk + kItemFlags);
                id = Read16(chunk + kItemId);
                if (GetMemRefSize(at) - offset < kTextHeadSize) kind = 0;
                if (kind == kItemKindText) viewFlags = Read16(chunk + kTextViewFlags);
            }
            if (kind != kItemKindText || (flags & kItemFlagHidden) || !TakesField(request->options, viewFlags)) continue;
            std::string text;
            size_t hit = 0;
            if (!FieldTextOnCard(at, offset, cardId, &text) ||
                !FindInBytes(text, request->text, from, (request->options & kFindMatchCase) != 0, &hit))
                continue;
            EndItemWalk(&walker);
            request->card = cardId;
            request->field = id;
            request->offset = static_cast<uint32_t>(hit);
            request->index = index;
            ShowHit(*request);
            return true;
        }
        EndItemWalk(&walker);
    }
    return false;
}
