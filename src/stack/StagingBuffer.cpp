#include "stack/StagingBuffer.h"

#include "base/ResultCodes.h"

#include <cstring>

#include "base/ByteOrder.h"
#include "platform/HostFile.h"

int32_t NewStagingBuffer(StagingBuffer* buffer, HostFile* file) {
    buffer->ref = NewMemRef(kStagingBufferSize);
    buffer->file = file;
    if (!buffer->ref) return kResultNoMemory;
    MemRefLock lock(buffer->ref);
    Write32(lock.data(), kStagingBufferSize - kStagingBookkeeping);
    Write32(lock.data() + 4, 0);
    return 0;
}

void FreeStagingBuffer(StagingBuffer* buffer) {
    if (buffer->ref) FreeMemRef(buffer->ref);
    buffer->ref = 0;
}

uint32_t StagingCapacity(const StagingBuffer& buffer) {
    MemRefLock lock(buffer.ref);
    return Read32(lock.data());
}

uint32_t StagingFill(const StagingBuffer& buffer) {
    MemRefLock lock(buffer.ref);
    return Read32(lock.data() + 4);
}

int32_t FlushBuffered(StagingBuffer& buffer) {
    MemRefLock lock(buffer.ref);
    const uint32_t fill = Read32(lock.data() + 4);
    Write32(lock.data() + 4, 0);
    return WriteHostFile(buffer.file, lock.data() + kStagingBookkeeping, fill);
}

int32_t WriteBuffered(StagingBuffer& buffer, const void* bytes, uint32_t count) {
    const uint32_t capacity = StagingCapacity(buffer);
    if (StagingFill(buffer) + count > capacity) {
        const int32_t result = FlushBuffered(buffer);
        if (result != 0) return result;
        if (count > capacity) return WriteHostFile(buffer.file, bytes, count);
    }
    MemRefLock lock(buffer.ref);
    const uint32_t fill = Read32(lock.data() + 4);
    std::memcpy(lock.data() + kStagingBookkeeping + fill, bytes, count);
    Write32(lock.data() + 4, fill + count);
    return 0;
}
