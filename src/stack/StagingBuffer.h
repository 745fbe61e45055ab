// All writing of a stack's header and cards goes through one 64 KB staging buffer, so a save makes
// few large writes whatever the records' sizes. The buffer is a MemRef whose first 8 bytes are its
// own bookkeeping (capacity and fill), as the save flow sizes it.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

struct HostFile;

inline constexpr uint32_t kStagingBufferSize = 65536;
inline constexpr uint32_t kStagingBookkeeping = 8;

struct StagingBuffer {
    MemRef ref = 0;
    HostFile* file = nullptr;  // where a flush writes, at the file's current position
};

// 16 if there is no memory for it.
int32_t NewStagingBuffer(StagingBuffer* buffer, HostFile* file);
void FreeStagingBuffer(StagingBuffer* buffer);
uint32_t StagingCapacity(const StagingBuffer& buffer);
uint32_t StagingFill(const StagingBuffer& buffer);
// Appends bytes, flushing first when they don't fit; a block larger than the buffer goes straight
// to the file. 0 or the file layer's error.
int32_t WriteBuffered(StagingBuffer& buffer, const void* bytes, uint32_t count);
int32_t FlushBuffered(StagingBuffer& buffer);
