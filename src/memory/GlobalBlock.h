// The system blocks behind MemRefs: movable, zero-filled, with a nesting lock count and flags in
// the shape the handle layer expects (lock count in the low 8 bits, bit 14 for discarded).
#pragma once

#include <cstddef>
#include <cstdint>

struct SystemBlock {
    uint8_t* bytes = nullptr;
    size_t size = 0;
    uint8_t lockCount = 0;
    bool discarded = false;
};

inline constexpr uint32_t kBlockDiscardedFlag = 0x4000;

SystemBlock* GlobalAlloc(size_t size);
// Grows or shrinks the block; the bytes may move. Growth is zero-filled. False if refused, with
// the block unchanged.
bool GlobalReAlloc(SystemBlock* block, size_t size);
uint8_t* GlobalLock(SystemBlock* block);
void GlobalUnlock(SystemBlock* block);
uint32_t GlobalFlags(const SystemBlock* block);
size_t GlobalSize(const SystemBlock* block);
void GlobalFree(SystemBlock* block);

// Fault seam for tests: after this many more successful allocations or reallocations, the next
// one is refused. Negative means never.
void SetGlobalAllocFailAfter(int32_t count);
