#include "text/TextSplice.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "base/ByteOrder.h"
#include "base/ResultCodes.h"
#include "stack/CardRecord.h"

namespace {

// Replaces `oldLength` bytes at `offset` of `block` with `bytes`; the block is as it was when it
// can't change size.
int32_t ReplaceRange(MemRef block, uint32_t offset, uint32_t oldLength, const std::vector<uint8_t>& bytes) {
    const uint32_t newLength = static_cast<uint32_t>(bytes.size());
    if (newLength > oldLength) {
        if (InsertBytes(block, bytes.data() + oldLength, offset + oldLength, newLength - oldLength) != 0)
            return kResultNoMemory;
    } else if (newLength < oldLength) {
        std::vector<uint8_t> cut;
        {
            MemRefLock lock(block);
            cut.assign(lock.data() + offset + newLength, lock.data() + offset + oldLength);
        }
        if (DeleteBytes(block, offset + newLength, oldLength - newLength) != 0) {
            // The bytes behind moved down before the block refused to shrink: they go back.
            MemRefLock lock(block);
            const uint32_t size = GetMemRefSize(block);
            uint8_t* d = lock.data();
            std::memmove(d + offset + oldLength, d + offset + newLength, size - offset - oldLength);
            std::memcpy(d + offset + newLength, cut.data(), cut.size());
            return kResultNoMemory;
        }
    }
    MemRefLock lock(block);
    std::memcpy(lock.data() + offset, bytes.data(), std::min(oldLength, newLength));
    return kResultOk;
}

}  // namespace

int32_t SpliceTextRecord(MemRef card, uint32_t chunkOffset, bool perCard, const TextRecord& record, bool macCharset) {
    uint32_t at = kTextHeadSize;
    uint32_t oldSize = 0;
    uint32_t keptFlags = 0;
    TextRecord written = record;
    {
        MemRefLock lock(card);
        const uint32_t size = GetMemRefSize(card);
        if (!lock || size < kCardHeadSize || chunkOffset > size || size - chunkOffset < kTextHeadSize)
            return kResultFailed;
        const uint8_t* chunk = lock.data() + chunkOffset;
        const uint32_t length = Read32(chunk + kItemLength);
        if (length < kTextHeadSize || length > size - chunkOffset) return kResultFailed;
        for (uint32_t whole = 0; (whole = TextRecordSizeAt(chunk, length, at)) != 0; at += whole) {
            if (!perCard || Read16(chunk + at + kTextRecordCardId) == record.cardId) {
                oldSize = whole;
                break;
            }
        }
        if (oldSize != 0) {
            written.cardId = Read16(chunk + at + kTextRecordCardId);
            keptFlags = Read32(chunk + at + kTextRecordFlags) & ~kTextRecordFlagPad;
        } else if (!perCard) {
            at = kTextHeadSize;  // a missing or damaged first record: the new one goes first
        }
    }
    std::vector<uint8_t> bytes = MakeTextRecord(written, macCharset);
    Write32(&bytes[kTextRecordFlags], Read32(&bytes[kTextRecordFlags]) | keptFlags);
    const int32_t result = ReplaceRange(card, chunkOffset + at, oldSize, bytes);
    if (result != kResultOk) return result;
    MemRefLock lock(card);
    uint8_t* chunk = lock.data() + chunkOffset;
    Write32(chunk + kItemLength, Read32(chunk + kItemLength) - oldSize + static_cast<uint32_t>(bytes.size()));
    Write32(lock.data() + kCardSize, GetMemRefSize(card));
    return kResultOk;
}
