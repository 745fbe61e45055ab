#include "stack/Document.h"

#include "base/ByteOrder.h"
#include "base/ResultCodes.h"
#include "base/StateRegistry.h"
#include "stack/Blob.h"
#include "stack/CardRecord.h"
#include "subsystems/Subsystems.h"

namespace {
Document gDocument;
inline constexpr uint32_t kCardRowSize = 16;

void FreeStackRecords() {
    for (int32_t i = 1; i <= CardCount(); ++i) FreeMemRef(GetCardByPosition(i));
    if (gDocument.cardList) FreeMemRef(gDocument.cardList);
    if (gDocument.stackHeader) FreeMemRef(gDocument.stackHeader);
    if (gDocument.storeRef) CloseBlobStore(gDocument.storeRef);
    gDocument.cardList = 0;
    gDocument.stackHeader = 0;
    gDocument.storeRef = 0;
    gDocument.hasFile = false;
    gDocument.convertedFlags = 0;
    gDocument.dirty = false;
    gDocument.currentCard = 0;
    gDocument.currentCardId = 0;
}

}  // namespace

Document& GetDocument() {
    return gDocument;
}

int16_t CardCount() {
    return gDocument.cardList
               ? static_cast<int16_t>(GetMemRefSize(gDocument.cardList) / kCardRowSize)
               : 0;
}

MemRef GetCardByPosition(int32_t position) {
    if (position < 1 || position > CardCount()) return 0;
    MemRefLock lock(gDocument.cardList);
    return static_cast<MemRef>(Read32(lock.data() + (position - 1) * kCardRowSize));
}

int32_t InsertCardAt(int32_t position, MemRef card) {
    if (!gDocument.cardList) {
        gDocument.cardList = NewMemRef(0);
        if (!gDocument.cardList) return kResultNoMemory;
    }
    if (position < 0 || position > CardCount()) return -1;
    uint8_t row[kCardRowSize] = {};
    Write32(row, static_cast<uint32_t>(card));
    return InsertBytes(gDocument.cardList, row, position * kCardRowSize, kCardRowSize);
}

void StoreCurrentCard() {
    const MemRef card = gDocument.currentCard;
    bool listed = false;
    for (int32_t i = 1; i <= CardCount() && !listed; ++i) listed = GetCardByPosition(i) == card;
    if (!card || !listed) return;
    {
        MemRefLock lock(card);
        Write16(lock.data() + kCardMenuShown, static_cast<uint16_t>(gDocument.menuShown));
        Write16(lock.data() + kCardDepth, static_cast<uint16_t>(gDocument.depth));
    }
    GetSubsystems().StoreChangedPicture();
}

void CloseStack() {
    // Its leave action runs and the quiz report is written before anything of it is freed.
    GetSubsystems().StackClosing();
    FreeStackRecords();
}

void ResetDocument() {
    FreeStackRecords();
    CloseAllBlobStores();
    gDocument = Document{};
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Stack, ResetDocument);
}  // namespace
