#include "stack/CardRecord.h"

#include <cstring>

#include "base/ByteOrder.h"

MemRef NewCardMemRef(uint32_t size) {
    if (size > UINT32_MAX - 8) return 0;
    MemRef ref = NewMemRef(size + 2);
    if (!ref) return 0;
    // A 32-bit store of 0xFACE: the sentinel's bytes at `size`, the rest spills into the guard.
    const uint32_t sentinel = 0xFACE;
    MemRefLock lock(ref);
    std::memcpy(lock.data() + size, &sentinel, 4);
    return ref;
}

uint32_t ItemChainStart(const uint8_t* card) {
    if (ReadS16(card + kCardKind) != kCardKindPicture) return kCardHeadSize;
    return kCardHeadSize + Read32(card + kCardHeadSize + kBgLength);
}
