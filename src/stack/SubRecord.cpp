// Walking an action's sub-records with every length checked: the records come from stack files.
#include "stack/SubRecord.h"

#include "base/ByteOrder.h"

uint32_t ActionEnd(const uint8_t* head, uint32_t available) {
    if (available < kActionHeadSize) return 0;
    const uint32_t length = Read32(head + kActionLength);
    if (length < kActionHeadSize) return kActionHeadSize;
    return length < available ? length : available;
}

bool FindSubRecord(const uint8_t* head, uint32_t available, int16_t tag, uint32_t* position) {
    const uint32_t end = ActionEnd(head, available);
    uint32_t at = kActionHeadSize;
    while (at < end && end - at >= kSubHeadSize) {
        const uint32_t length = Read32(head + at + kSubLength);
        if (length < kSubHeadSize || length > end - at) return false;
        if (ReadS16(head + at + kSubType) == tag) {
            *position = at;
            return true;
        }
        at += length;
    }
    return false;
}

uint32_t SubRecordPayloadSize(const uint8_t* sub) {
    const uint32_t length = Read32(sub + kSubLength);
    if (length <= kSubHeadSize) return 0;
    const uint32_t pad = (Read16(sub + kSubFlags) & kSubFlagOddPad) ? 1 : 0;
    return length - kSubHeadSize - pad;
}
