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

}  // namespace

bool FindRecordSubRecord(MemRef record, uint32_t offset, int16_t tag, uint32_t* relative) {
    const uint32_t size = GetMemRefSize(record);
    if (offset > size) return false;
    MemRefLock lock(record);
    return lock && FindSubRecord(lock.data() + offset, size - offset, tag, relative);
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
