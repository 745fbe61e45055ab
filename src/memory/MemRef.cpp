#include "memory/MemRef.h"

#include <cstring>

#include "memory/GlobalBlock.h"

namespace {

MemRefTable gTable;
SystemBlock* gSlotBlock = nullptr;  // the slot array is itself a movable block
MemRefsFailureNotice gFailureNotice = nullptr;

inline constexpr uint32_t kSizeWord = 4;
inline constexpr uint32_t kOverhead = 8;  // size word + guard

SystemBlock* SlotOf(MemRef ref) {
    if (ref <= 0 || ref > gTable.capacity || !gTable.slots) return nullptr;
    return gTable.slots[ref - 1];
}

void WriteSizeAndGuard(SystemBlock* block, uint32_t size) {
    std::memcpy(block->bytes, &size, 4);
    const uint32_t guard = kMemRefGuard;
    std::memcpy(block->bytes + kSizeWord + size, &guard, 4);
}

bool GrowTable() {
    const size_t newCount = static_cast<size_t>(gTable.capacity) + kMemRefSlotStep;
    // The table cannot grow past what its 16-bit counters hold; the allocation then fails.
    if (newCount > static_cast<size_t>(kMemRefMaxBlocks) + kMemRefSlotStep) return false;
    if (!GlobalReAlloc(gSlotBlock, newCount * sizeof(SystemBlock*))) return false;
    gTable.slots = reinterpret_cast<SystemBlock**>(gSlotBlock->bytes);
    gTable.capacity = static_cast<int16_t>(newCount);
    return true;
}

// Enters a block in the table; the search starts at `next` and moves round-robin, so a freed
// value is not handed out again until the search comes round.
MemRef EnterBlock(SystemBlock* block) {
    if (!gTable.slots && !InitMemRefs()) return 0;
    if (gTable.used >= kMemRefMaxBlocks) return 0;
    if (gTable.used == gTable.capacity && !GrowTable()) {
        if (gFailureNotice) gFailureNotice();
        return 0;
    }
    int32_t i = gTable.next;
    while (gTable.slots[i] != nullptr) {
        if (++i >= gTable.capacity) i = 0;
    }
    gTable.slots[i] = block;
    gTable.next = static_cast<int16_t>(i);
    ++gTable.used;
    return i + 1;
}

MemRef NewBlockCopy(const uint8_t* bytes, uint32_t size) {
    MemRef ref = NewMemRef(size);
    if (!ref) return 0;
    if (size) std::memcpy(GetMemRefBlock(ref)->bytes + kSizeWord, bytes, size);
    return ref;
}

}  // namespace

const MemRefTable& GetMemRefTable() { return gTable; }

bool InitMemRefs() {
    if (gSlotBlock) ShutdownMemRefs();
    gTable = MemRefTable{};
    gSlotBlock = GlobalAlloc(kMemRefSlotStep * sizeof(SystemBlock*));
    if (!gSlotBlock) return false;
    gTable.slots = reinterpret_cast<SystemBlock**>(gSlotBlock->bytes);
    gTable.capacity = kMemRefSlotStep;
    return true;
}

void ShutdownMemRefs() {
    if (!gSlotBlock) return;
    for (int32_t i = gTable.capacity - 1; i >= 0; --i) {
        if (gTable.slots[i]) GlobalFree(gTable.slots[i]);
        gTable.slots[i] = nullptr;
    }
    GlobalFree(gSlotBlock);
    gSlotBlock = nullptr;
    gTable.slots = nullptr;
    gTable.capacity = 0;
}

void SetMemRefsFailureNotice(MemRefsFailureNotice notice) { gFailureNotice = notice; }

MemRef NewMemRef(uint32_t size) {
    if (size > UINT32_MAX - kOverhead) return 0;
    SystemBlock* block = GlobalAlloc(size_t{size} + kOverhead);
    if (!block) return 0;
    WriteSizeAndGuard(block, size);
    MemRef ref = EnterBlock(block);
    if (!ref) GlobalFree(block);
    return ref;
}

int32_t FreeMemRef(MemRef ref) {
    SystemBlock* block = SlotOf(ref);
    if (!block) return 0;
    // Freeing succeeds whatever the lock state; the slot number is not given back to `next`.
    for (uint32_t locks = GlobalFlags(block) & 0xFF; locks > 0; --locks) GlobalUnlock(block);
    GlobalFree(block);
    gTable.slots[ref - 1] = nullptr;
    --gTable.used;
    return 0;
}

uint8_t* LockMemRef(MemRef ref) {
    uint8_t* bytes = GlobalLock(SlotOf(ref));
    return bytes ? bytes + kSizeWord : nullptr;
}

void UnlockMemRef(MemRef ref) { GlobalUnlock(SlotOf(ref)); }

uint32_t GetMemRefSize(MemRef ref) {
    SystemBlock* block = SlotOf(ref);
    if (!block || block->discarded) return 0;
    uint32_t size;
    std::memcpy(&size, block->bytes, 4);
    return size;
}

int32_t SetMemRefSize(MemRef ref, uint32_t size) {
    SystemBlock* block = SlotOf(ref);
    if (!block || size > UINT32_MAX - kOverhead) return -1;
    // Growth zero-fills behind the old block, so the old guard stays inside the data area.
    if (!GlobalReAlloc(block, size_t{size} + kOverhead)) return -1;
    WriteSizeAndGuard(block, size);
    return 0;
}

bool IsMemRef(MemRef ref) { return SlotOf(ref) != nullptr; }

bool IsMemRefDiscarded(MemRef ref) {
    return (GlobalFlags(SlotOf(ref)) & kBlockDiscardedFlag) != 0;
}

SystemBlock* GetMemRefBlock(MemRef ref) { return SlotOf(ref); }

bool MemRefsEqual(MemRef a, MemRef b) {
    const uint32_t size = GetMemRefSize(a);
    if (size != GetMemRefSize(b)) return false;
    MemRefLock la(a), lb(b);
    if (!la || !lb) return false;
    return size == 0 || std::memcmp(la.data(), lb.data(), size) == 0;
}

int32_t AppendMemRef(MemRef src, MemRef dst) {
    return InsertMemRef(dst, src, GetMemRefSize(dst), false);
}

int32_t DuplicateMemRef(MemRef* ref) {
    MemRef copy = CopyBytes(*ref, 0, GetMemRefSize(*ref));
    if (!copy) return -1;
    *ref = copy;
    return 0;
}

int32_t InsertBytes(MemRef dst, const void* source, uint32_t offset, uint32_t length) {
    const uint32_t size = GetMemRefSize(dst);
    if (offset > size || length > UINT32_MAX - kOverhead - size) return -1;
    const int32_t result = SetMemRefSize(dst, size + length);
    if (result != 0) return result;
    uint8_t* data = GetMemRefBlock(dst)->bytes + kSizeWord;
    std::memmove(data + offset + length, data + offset, size - offset);
    if (length) std::memcpy(data + offset, source, length);
    // The move overwrote the guard's place only if length was 0; it is rewritten either way.
    WriteSizeAndGuard(GetMemRefBlock(dst), size + length);
    return 0;
}

int32_t InsertMemRef(MemRef dst, MemRef src, uint32_t offset, bool pad) {
    uint32_t length = GetMemRefSize(src);
    // Padding copies one byte beyond the data (the first guard byte), keeping records even.
    if (pad && (length & 1)) ++length;
    SystemBlock* block = SlotOf(src);
    if (!block) return -1;
    // Copy the source out first: it may be the destination itself, which the resize can move.
    MemRef scratch = NewBlockCopy(block->bytes + kSizeWord, length);
    if (!scratch) return -1;
    const int32_t result = InsertBytes(dst, GetMemRefBlock(scratch)->bytes + kSizeWord, offset, length);
    FreeMemRef(scratch);
    return result;
}

int32_t DeleteBytes(MemRef ref, uint32_t offset, uint32_t length) {
    const uint32_t size = GetMemRefSize(ref);
    if (offset > size || length > size - offset) return -1;
    uint8_t* data = GetMemRefBlock(ref)->bytes + kSizeWord;
    std::memmove(data + offset, data + offset + length, size - offset - length);
    return SetMemRefSize(ref, size - length);
}

int32_t ReplaceBytes(MemRef dst, MemRef src, uint32_t offset, uint32_t oldLength) {
    const uint32_t newLength = GetMemRefSize(src);
    const uint32_t size = GetMemRefSize(dst);
    if (offset > size || oldLength > size - offset) return -1;
    if (newLength == oldLength) {
        if (newLength) {
            std::memmove(GetMemRefBlock(dst)->bytes + kSizeWord + offset,
                         GetMemRefBlock(src)->bytes + kSizeWord, newLength);
        }
        return 0;
    }
    if (newLength > oldLength) {
        // Grow and shrink back at once: a test that the memory is to be had before anything moves.
        int32_t result = SetMemRefSize(dst, size + (newLength - oldLength));
        if (result != 0) return result;
        result = SetMemRefSize(dst, size);
        if (result != 0) return result;
    }
    int32_t result = DeleteBytes(dst, offset, oldLength);
    if (result != 0) return result;
    return InsertMemRef(dst, src, offset, false);
}

MemRef ExtractBytes(MemRef ref, uint32_t offset, uint32_t length) {
    MemRef copy = CopyBytes(ref, offset, length);
    if (copy && DeleteBytes(ref, offset, length) != 0) {
        FreeMemRef(copy);
        return 0;
    }
    return copy;
}

MemRef CopyBytes(MemRef ref, uint32_t offset, uint32_t length) {
    const uint32_t size = GetMemRefSize(ref);
    SystemBlock* block = SlotOf(ref);
    if (!block || offset > size || length > size - offset) return 0;
    return NewBlockCopy(block->bytes + kSizeWord + offset, length);
}
