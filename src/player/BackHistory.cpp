// The Back history: up to 16 records of cards left, newest first, each with a copy of its stack's
// file; the marked card; and the moves that go back to them or to the Home stack.
#include <cstring>
#include <string>

#include "base/ByteOrder.h"
#include "messages/Alert.h"
#include "messages/StringIds.h"
#include "player/Navigation.h"
#include "player/NavigationInternal.h"
#include "player/StackFlows.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"

namespace {

// The Back record.
inline constexpr uint32_t kBackCardId = 0;   // 16-bit
inline constexpr uint32_t kBackHadFile = 2;  // 32-bit
inline constexpr uint32_t kBackFileRef = 6;  // 32-bit MemRef, 0 none
inline constexpr uint32_t kBackNext = 10;    // 32-bit MemRef of the next older record, 0 none
inline constexpr uint32_t kBackRecordSize = 14;

inline constexpr int kSlotBackStack = 7;
inline constexpr int kSlotMarkedStack = 10;

struct BackState {
    MemRef backList = 0;  // the newest record
    int32_t backDepth = 0;
    int16_t markedCardId = 0;
};
BackState gBack;

struct BackRecord {
    int16_t cardId = 0;
    bool hadFile = false;
    MemRef fileRef = 0;
    MemRef next = 0;
};

BackRecord ReadRecord(MemRef record) {
    BackRecord r;
    MemRefLock lock(record);
    if (!lock || GetMemRefSize(record) < kBackRecordSize) return r;
    r.cardId = ReadS16(lock.data() + kBackCardId);
    r.hadFile = Read32(lock.data() + kBackHadFile) != 0;
    r.fileRef = static_cast<MemRef>(Read32(lock.data() + kBackFileRef));
    r.next = static_cast<MemRef>(Read32(lock.data() + kBackNext));
    return r;
}

void FreeRecord(MemRef record) {
    const BackRecord r = ReadRecord(record);
    if (r.fileRef) FreeMemRef(r.fileRef);
    FreeMemRef(record);
}

// Cuts the oldest record off the list.
void DropOldest() {
    MemRef record = gBack.backList;
    if (!record) return;
    MemRef next = ReadRecord(record).next;
    if (!next) return;  // a single record is never dropped here
    while (MemRef after = ReadRecord(next).next) {
        record = next;
        next = after;
    }
    FreeRecord(next);
    MemRefLock lock(record);
    Write32(lock.data() + kBackNext, 0);
}

// The newest record is for the card we are on, in the stack we are in.
bool SameAsNewest() {
    const Document& doc = GetDocument();
    if (!gBack.backList) return false;
    const BackRecord newest = ReadRecord(gBack.backList);
    if (newest.cardId != doc.currentCardId) return false;
    if (!doc.hasFile) return !newest.hadFile;
    if (!newest.fileRef) return false;
    return ApplyFileRef(kSlotScratch, newest.fileRef) && SameFile(kSlotScratch, kSlotStack);
}

void NoteMarkedCard() {
    const Document& doc = GetDocument();
    if (!(GetCardFlags(doc.currentCard) & kCardFlagMarked)) return;
    gBack.markedCardId = doc.currentCardId;
    if (doc.hasFile) {
        CopySlot(kSlotStack, kSlotMarkedStack);
        GetSlot(kSlotMarkedStack)[kSlotPresent] = 1;
    } else {
        GetSlot(kSlotMarkedStack)[kSlotPresent] = 0;
    }
}

bool HomeStackKnown() {
    return IsHomeStackName(GetSlotName(kSlotHome));
}

}  // namespace

MemRef MakeFileRef(int slot) {
    const std::string path = GetSlotPath(slot);
    const std::string name = GetSlotName(slot);
    const uint32_t pathPart = static_cast<uint32_t>(path.size()) + 1;
    const uint32_t padded = pathPart + (pathPart & 1);
    MemRef ref = NewMemRef(padded + 6 + static_cast<uint32_t>(name.size()) + 1);
    if (!ref) return 0;
    MemRefLock lock(ref);
    uint8_t* p = lock.data();
    std::memcpy(p, path.c_str(), pathPart);
    const uint8_t* s = GetSlot(slot);
    std::memcpy(p + padded, s + kSlotRefWord, 2);
    std::memcpy(p + padded + 2, s + kSlotRefLong, 4);
    std::memcpy(p + padded + 6, name.c_str(), name.size() + 1);
    return ref;
}

bool ApplyFileRef(int slot, MemRef ref) {
    if (!ref || !IsMemRef(ref)) return false;
    const uint32_t size = GetMemRefSize(ref);
    MemRefLock lock(ref);
    const char* p = reinterpret_cast<const char*>(lock.data());
    const uint32_t pathLength = static_cast<uint32_t>(strnlen(p, size));
    const uint32_t padded = (pathLength + 1) + ((pathLength + 1) & 1);
    if (pathLength >= size || padded + 6 >= size) return false;
    const uint32_t nameLength = static_cast<uint32_t>(strnlen(p + padded + 6, size - padded - 6));
    if (padded + 6 + nameLength >= size || nameLength >= kSlotSize - kSlotName) return false;
    if (!SetSlotPath(slot, std::string(p, pathLength))) return false;
    uint8_t* s = GetSlot(slot);
    std::memcpy(s + kSlotRefWord, p + padded, 2);
    std::memcpy(s + kSlotRefLong, p + padded + 2, 4);
    std::memset(s + kSlotName, 0, kSlotSize - kSlotName);
    std::memcpy(s + kSlotName, p + padded + 6, nameLength);
    s[kSlotPresent] = 1;
    return true;
}

bool SameFile(int slotA, int slotB) {
    return GetSlotPath(slotA) == GetSlotPath(slotB);
}

void PushBack() {
    const Document& doc = GetDocument();
    if (GetCardPosition(doc.currentCard) == 0) return;  // nothing to come back to
    NoteMarkedCard();
    if (SameAsNewest()) return;
    if (++gBack.backDepth > kBackLimit) {
        gBack.backDepth = kBackLimit;
        DropOldest();
    }
    MemRef record = NewMemRef(kBackRecordSize);
    MemRef fileRef = record && doc.hasFile ? MakeFileRef(kSlotStack) : 0;
    if (!record || (doc.hasFile && !fileRef)) {
        if (record) FreeMemRef(record);
        --gBack.backDepth;
        return;
    }
    MemRefLock lock(record);
    Write16(lock.data() + kBackCardId, static_cast<uint16_t>(doc.currentCardId));
    Write32(lock.data() + kBackHadFile, doc.hasFile ? 1 : 0);
    Write32(lock.data() + kBackFileRef, static_cast<uint32_t>(fileRef));
    Write32(lock.data() + kBackNext, static_cast<uint32_t>(gBack.backList));
    gBack.backList = record;
}

void GoBack(int16_t effect, int16_t speed) {
    if (!gBack.backList) return;
    const Document& doc = GetDocument();
    const BackRecord newest = ReadRecord(gBack.backList);
    bool otherStack = doc.hasFile;
    if (newest.fileRef) {
        const bool applied = ApplyFileRef(kSlotBackStack, newest.fileRef);
        otherStack = applied && (!doc.hasFile || !SameFile(kSlotBackStack, kSlotStack));
    }
    // The oldest record stays, so that Back can always return to where the history starts.
    if (newest.next) {
        FreeRecord(gBack.backList);
        gBack.backList = newest.next;
        --gBack.backDepth;
    }
    if (otherStack) {
        GoToStack(kSlotBackStack, newest.cardId, effect, speed, false, false);
    } else {
        GoToCardNoBack(newest.cardId, effect, speed);
    }
}

void GoHome(int16_t effect, int16_t speed) {
    if (HomeStackKnown()) {
        GoToStack(kSlotHome, GetDocument().homeCardId, effect, speed, true, false);
    }
}

void GoMarked(int16_t effect, int16_t speed) {
    if (gBack.markedCardId == 0) {
        Alert(kAlertNoMarkedCard);
        return;
    }
    const bool here = GetDocument().hasFile ? SameFile(kSlotMarkedStack, kSlotStack)
                                            : GetSlot(kSlotMarkedStack)[kSlotPresent] == 0;
    if (here) {
        GoToCard(gBack.markedCardId, effect, speed);
    } else {
        GoToStack(kSlotMarkedStack, gBack.markedCardId, effect, speed, true, false);
    }
}

int32_t BackDepth() {
    return gBack.backDepth;
}

int16_t BackCardId(int32_t index) {
    MemRef record = gBack.backList;
    for (int32_t i = 0; record && i < index; ++i) record = ReadRecord(record).next;
    return record ? ReadRecord(record).cardId : 0;
}

int16_t MarkedCardId() {
    return gBack.markedCardId;
}

void ResetBackHistory() {
    for (MemRef record = gBack.backList; record;) {
        const MemRef next = ReadRecord(record).next;
        FreeRecord(record);
        record = next;
    }
    gBack = BackState{};
}
