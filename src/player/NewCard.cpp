// A new card behind the current one, with the next id of the stack.
#include "base/ByteOrder.h"
#include "messages/Alert.h"
#include "messages/StringIds.h"
#include "player/Navigation.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/StackHeader.h"
#include "subsystems/Subsystems.h"

namespace {

inline constexpr int32_t kTwentiethCard = 20;

// The header's nextCardId, counted up. An id some card already has (a damaged counter) is passed
// over, so ids stay unique.
int16_t TakeNextCardId() {
    MemRefLock lock(GetDocument().stackHeader);
    int16_t id = ReadS16(lock.data() + kHdrNextCardId);
    for (int32_t tries = 0; tries < 0x10000 && (id == 0 || GetCardById(id)); ++tries) ++id;
    Write16(lock.data() + kHdrNextCardId, static_cast<uint16_t>(id + 1));
    return id;
}

}  // namespace

MemRef NewCard(bool first, bool asGroupMember) {
    Document& doc = GetDocument();
    if (!doc.stackHeader || GetMemRefSize(doc.stackHeader) < kStackHeaderSize) return 0;
    Subsystems& subsystems = GetSubsystems();
    subsystems.StopPendingEditing();
    StoreCurrentCard();
    subsystems.RememberPreviousCard(doc.currentCardId);

    MemRef card = NewCardMemRef(kEmptyCardSize - 2);
    if (!card) {
        Alert(kAlertNoMemory);
        return 0;
    }
    const MemRef current = GetCardPosition(doc.currentCard) != 0 ? doc.currentCard : 0;
    const int16_t ownerId = current ? GetGroupOwnerId(current) : -1;
    if (InsertCard(card, current ? GetCardPosition(current) : 0)) {
        FreeMemRef(card);
        return 0;
    }
    const int16_t id = TakeNextCardId();
    {
        MemRefLock lock(card);
        uint8_t* c = lock.data();
        Write16(c + kCardId, static_cast<uint16_t>(id));
        Write32(c + kCardSize, kEmptyCardSize);
        Write16(c + kCardOwnerId, static_cast<uint16_t>(ownerId));
        Write16(c + kCardMenuShown, static_cast<uint16_t>(doc.menuShown));
        Write16(c + kCardDepth, static_cast<uint16_t>(doc.depth));
        Write16(c + kCardWidth, static_cast<uint16_t>(doc.cardWidth));
        Write16(c + kCardHeight, static_cast<uint16_t>(doc.cardHeight));
        if (asGroupMember) Write16(c + kCardKind, kCardKindGroupMember);
    }
    if (!current) {
        doc.currentCard = card;
        doc.currentCardId = id;
    }
    subsystems.ClearChangeFlags();
    if (!asGroupMember) subsystems.ClearWindowAndStoreEmptyPicture();
    doc.dirty = true;

    GoToCard(id, kPlainEffect, kPlainSpeed);
    if (first) subsystems.TellToolLayerFirstCard();
    if (CardCount() == kTwentiethCard && !IsAdvancedUser()) Alert(kAlertTwentiethCard);
    return card;
}
