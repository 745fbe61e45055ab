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

std::string PlainName(const uint8_t* field, uint32_t fieldSize) {
    const uint32_t length = field[0] < fieldSize ? field[0] : fieldSize - 1;
    return std::string(reinterpret_cast<const char*>(field + 1), length);
}
