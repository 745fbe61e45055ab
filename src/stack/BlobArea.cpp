// Moving and copying the typed-record area, for a save: the records follow the cards, wherever the
// cards end. Everything passes through the save's one 64 KB buffer, whatever the records' sizes.
#include <cstring>

#include "base/ByteOrder.h"
#include "base/ResultCodes.h"
#include "platform/HostFile.h"
#include "stack/Blob.h"
#include "stack/BlobStore.h"

namespace {

struct Chunk {
    uint8_t* bytes;
    uint32_t capacity;
};

Chunk ChunkOf(StagingBuffer& buffer) {
    // The buffer's data area serves as the window that bytes move through.
    return {LockMemRef(buffer.ref) + kStagingBookkeeping, GetMemRefSize(buffer.ref) - kStagingBookkeeping};
}

// Moves `length` bytes within one file; overlapping ranges are safe in either direction.
int32_t MoveBytes(HostFile* file, uint64_t from, uint64_t to, uint64_t length, const Chunk& chunk) {
    if (from == to || length == 0) return 0;
    uint64_t done = 0;
    while (done < length) {
        const uint32_t n = static_cast<uint32_t>(length - done < chunk.capacity ? length - done : chunk.capacity);
        // Moving down goes from the start upwards; moving up from the end backwards.
        const uint64_t at = to < from ? done : length - done - n;
        int32_t result = SeekHostFile(file, from + at);
        if (result == 0) result = ReadHostFile(file, chunk.bytes, n);
        if (result == 0) result = SeekHostFile(file, to + at);
        if (result == 0) result = WriteHostFile(file, chunk.bytes, n);
        if (result != 0) return result;
        done += n;
    }
    return 0;
}

uint32_t EntryLength(const uint8_t* row) { return BlobFileLength(Read32(row + kRowDataSize)); }

// Moves every live entry down to a running offset from `start`; returns the end of the last.
int32_t CompactDown(HostFile* file, BlobStore& store, uint64_t start, const Chunk& chunk, uint64_t* end) {
    MemRefLock lock(store.table);
    uint64_t at = start;
    for (uint32_t i = 0; i < store.count; ++i) {
        uint8_t* row = Row(lock.data(), i);
        if (IsDeleted(row)) continue;
        const int32_t result = MoveBytes(file, Read32(row + kRowPosition), at, EntryLength(row), chunk);
        if (result != 0) return result;
        Write32(row + kRowPosition, static_cast<uint32_t>(at));
        at += EntryLength(row);
    }
    *end = at;
    return 0;
}

// Takes deleted entries out of the table; true if any was.
bool DropDeletedRows(BlobStore& store) {
    uint32_t kept = 0;
    {
        MemRefLock lock(store.table);
        for (uint32_t i = 0; i < store.count; ++i) {
            uint8_t* row = Row(lock.data(), i);
            if (IsDeleted(row)) continue;
            if (kept != i) std::memmove(Row(lock.data(), kept), row, kRowSize);
            ++kept;
        }
    }
    const bool dropped = kept != store.count;
    store.count = kept;
    if (dropped) SetMemRefSize(store.table, kept * kRowSize);
    return dropped;
}

}  // namespace

int32_t MoveBlobArea(uint32_t ref, uint32_t newOffset, StagingBuffer& buffer) {
    BlobStore* store = FindStore(ref);
    if (!store) return kResultNoMemory;
    if (!store->table) {
        store->areaOffset = newOffset;
        return 0;
    }
    HostFile* file = nullptr;
    int32_t result = OpenHostFile(store->hostPath, FileMode::ReadWrite, &file);
    if (result != 0) return result;
    const Chunk chunk = ChunkOf(buffer);
    uint64_t live = 0;
    {
        MemRefLock lock(store->table);
        for (uint32_t i = 0; i < store->count; ++i) {
            if (!IsDeleted(Row(lock.data(), i))) live += EntryLength(Row(lock.data(), i));
        }
    }
    uint64_t end = 0;
    if (newOffset <= store->areaOffset) {
        result = CompactDown(file, *store, newOffset, chunk, &end);
        if (result == 0) result = SetHostFileLength(file, end);
    } else {
        uint64_t fileLength = 0;
        result = HostFileLength(file, &fileLength);
        if (result == 0 && live <= fileLength - store->areaOffset)
            result = CompactDown(file, *store, store->areaOffset, chunk, &end);
        if (result == 0) result = SetHostFileLength(file, newOffset + live);
        end = newOffset + live;
        MemRefLock lock(store->table);
        for (uint32_t i = store->count; result == 0 && i-- > 0;) {
            uint8_t* row = Row(lock.data(), i);
            if (IsDeleted(row)) continue;
            end -= EntryLength(row);
            result = MoveBytes(file, Read32(row + kRowPosition), end, EntryLength(row), chunk);
            Write32(row + kRowPosition, static_cast<uint32_t>(end));
        }
    }
    UnlockMemRef(buffer.ref);
    if (result == 0) {
        store->areaOffset = newOffset;
        if (DropDeletedRows(*store)) {
            uint8_t word[4];
            WriteBE32(word, store->count);
            result = SeekHostFile(file, store->countPosition);
            if (result == 0) result = WriteHostFile(file, word, 4);
        }
    }
    CloseHostFile(file);
    return result;
}

int32_t CopyBlobArea(uint32_t ref, HostFile* source, HostFile* destination, uint32_t offset,
                     StagingBuffer& buffer) {
    BlobStore* store = FindStore(ref);
    if (!store) return kResultNoMemory;
    if (!store->table || store->count == 0) return 0;
    const Chunk chunk = ChunkOf(buffer);
    int32_t result = SeekHostFile(destination, offset);
    {
        MemRefLock lock(store->table);
        if (result == 0) result = SeekHostFile(source, Read32(Row(lock.data(), 0) + kRowPosition));
        // Deleted entries are carried along; the compaction that follows drops them.
        for (uint32_t i = 0; result == 0 && i < store->count; ++i) {
            uint64_t left = EntryLength(Row(lock.data(), i));
            while (result == 0 && left > 0) {
                const uint32_t n = static_cast<uint32_t>(left < chunk.capacity ? left : chunk.capacity);
                result = ReadHostFile(source, chunk.bytes, n);
                if (result == 0) result = WriteHostFile(destination, chunk.bytes, n);
                left -= n;
            }
        }
    }
    UnlockMemRef(buffer.ref);
    return result;
}
