#include "memory/GlobalBlock.h"

#include <cstdlib>
#include <cstring>

namespace {
int32_t gFailAfter = -1;

bool AllocationRefused() {
    if (gFailAfter < 0) return false;
    if (gFailAfter == 0) return true;
    --gFailAfter;
    return false;
}
}  // namespace

void SetGlobalAllocFailAfter(int32_t count) { gFailAfter = count; }

SystemBlock* GlobalAlloc(size_t size) {
    if (AllocationRefused()) return nullptr;
    auto* block = static_cast<SystemBlock*>(std::calloc(1, sizeof(SystemBlock)));
    if (!block) return nullptr;
    // calloc(0) may return null; one byte keeps "a block of size 0" a real block.
    block->bytes = static_cast<uint8_t*>(std::calloc(size ? size : 1, 1));
    if (!block->bytes) {
        std::free(block);
        return nullptr;
    }
    block->size = size;
    return block;
}

bool GlobalReAlloc(SystemBlock* block, size_t size) {
    if (!block || AllocationRefused()) return false;
    auto* bytes = static_cast<uint8_t*>(std::realloc(block->bytes, size ? size : 1));
    if (!bytes) return false;
    if (size > block->size) std::memset(bytes + block->size, 0, size - block->size);
    block->bytes = bytes;
    block->size = size;
    return true;
}

uint8_t* GlobalLock(SystemBlock* block) {
    if (!block || block->discarded) return nullptr;
    if (block->lockCount < 255) ++block->lockCount;
    return block->bytes;
}

void GlobalUnlock(SystemBlock* block) {
    if (block && block->lockCount > 0) --block->lockCount;
}

uint32_t GlobalFlags(const SystemBlock* block) {
    if (!block) return 0;
    return block->lockCount | (block->discarded ? kBlockDiscardedFlag : 0u);
}

size_t GlobalSize(const SystemBlock* block) { return block ? block->size : 0; }

void GlobalFree(SystemBlock* block) {
    if (!block) return;
    std::free(block->bytes);
    std::free(block);
}
