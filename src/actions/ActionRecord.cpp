// Walking an action's sub-records and taking their payloads out, with every length checked: the
// records come from stack files.
#include "actions/ActionRecord.h"

#include <cstring>

#include "base/ByteOrder.h"
#include "stack/Blob.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Normalise.h"
#include "stack/PathSlot.h"

namespace {

inline constexpr uint32_t kReferenceGap = 6;  // the reference's 16- and 32-bit fields

// The head of the action behind an 'Hlnk' record's head, if it has one.
bool LinkActionOffset(MemRef link, uint32_t* offset) {
    const uint32_t size = GetMemRefSize(link);
    MemRefLock lock(link);
    if (!lock || size < kHlnkText) return false;
    const uint8_t* p = lock.data();
    if (Read16(p + kHlnkHasAction) == 0) return false;
    *offset = kHlnkText + Read16(p + kHlnkPadLength) + Read16(p + kHlnkTextLength);
    return *offset <= size && size - *offset >= kActionHeadSize;
}

}  // namespace

bool FindRecordSubRecord(MemRef record, uint32_t offset, int16_t tag, uint32_t* relative) {
    const uint32_t size = GetMemRefSize(record);
    if (offset > size) return false;
    MemRefLock lock(record);
    return lock && FindSubRecord(lock.data() + offset, size - offset, tag, relative);
}

bool FindOwnerSubRecord(uint16_t id, int16_t tag, MemRef* record, uint32_t* offset) {
    MemRef card = 0;
    uint32_t itemOffset = 0;
    uint32_t relative = 0;
    if (FindItem(kItemKindButton, static_cast<int16_t>(id), &card, &itemOffset) &&
        FindRecordSubRecord(card, itemOffset, tag, &relative)) {
        *record = card;
        *offset = itemOffset + relative;
        return true;
    }
    if (const MemRef action = GetBlobById(FourCC("Actn"), id);
        action && FindRecordSubRecord(action, 0, tag, &relative)) {
        *record = action;
        *offset = relative;
        return true;
    }
    uint32_t actionOffset = 0;
    if (const MemRef link = GetBlobById(FourCC("Hlnk"), id);
        link && LinkActionOffset(link, &actionOffset) &&
        FindRecordSubRecord(link, actionOffset, tag, &relative)) {
        *record = link;
        *offset = actionOffset + relative;
        return true;
    }
    return false;
}

MemRef CopySubRecordPayload(MemRef record, uint32_t subOffset) {
    const uint32_t size = GetMemRefSize(record);
    uint32_t payload = 0;
    {
        MemRefLock lock(record);
        if (!lock || subOffset > size || size - subOffset < kSubHeadSize) return 0;
        payload = SubRecordPayloadSize(lock.data() + subOffset);
    }
    if (payload > size - subOffset - kSubHeadSize) return 0;
    // CopyBytes checks the range again and gives a fresh block of exactly the payload.
    return CopyBytes(record, subOffset + kSubHeadSize, payload);
}

bool SetSlotFromReference(int slot, const uint8_t* reference, uint32_t length) {
    const char* p = reinterpret_cast<const char*>(reference);
    const uint32_t pathLength = static_cast<uint32_t>(strnlen(p, length));
    if (pathLength >= length) return false;
    const uint32_t padded = (pathLength + 1) + ((pathLength + 1) & 1);
    if (padded + kReferenceGap >= length) return false;
    const uint32_t rest = length - padded - kReferenceGap;
    const uint32_t nameLength = static_cast<uint32_t>(strnlen(p + padded + kReferenceGap, rest));
    if (nameLength >= rest || nameLength >= kSlotSize - kSlotName) return false;
    if (!SetSlotPath(slot, std::string(p, pathLength))) return false;
    uint8_t* s = GetSlot(slot);
    std::memcpy(s + kSlotRefWord, p + padded, 2);
    std::memcpy(s + kSlotRefLong, p + padded + 2, 4);
    std::memset(s + kSlotName, 0, kSlotSize - kSlotName);
    std::memcpy(s + kSlotName, p + padded + kReferenceGap, nameLength);
    s[kSlotPresent] = 1;
    return true;
}

void ClearSlot(int slot) {
    SetSlotPath(slot, "");
    if (uint8_t* s = GetSlot(slot)) s[kSlotPresent] = 0;
}

std::string PlainName(const uint8_t* field, uint32_t fieldSize) {
    const uint32_t length = field[0] < fieldSize ? field[0] : fieldSize - 1;
    return std::string(reinterpret_cast<const char*>(field + 1), length);
}
