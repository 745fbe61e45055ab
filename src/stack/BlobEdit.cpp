// Changing the blob store: adding a record is a write at the end of the file at once, a deletion a
// flag set on disk at once. This part of a stack is live on disk even while its cards are unsaved.
#include <cstdlib>
#include <cstring>

#include "base/ByteOrder.h"
#include "base/ResultCodes.h"
#include "platform/HostFile.h"
#include "stack/Blob.h"
#include "stack/BlobStore.h"
#include "stack/RecordWriter.h"
#include "stack/StackHeader.h"

namespace {

// Writes the record's data as the file holds it: Actn and Hlnk through their writers, anything
// else straight from the block, including the bytes behind its end up to the padded length (the
// guard word: that is what such pad bytes have always held).
int32_t WriteRecordData(HostFile* file, uint32_t type, MemRef data) {
    const uint32_t size = GetMemRefSize(data);
    const uint32_t padded = (size + 3) & ~3u;
    if (type != FourCC("Actn") && type != FourCC("Hlnk")) {
        MemRefLock lock(data);
        return WriteHostFile(file, lock.data(), padded);
    }
    StagingBuffer buffer;
    int32_t result = NewStagingBuffer(&buffer, file);
    uint32_t written = 0;
    if (result == 0) {
        result = type == FourCC("Actn") ? WriteButtonRecord(buffer, data, 0, &written)
                                        : WriteHlnkRecord(buffer, data, &written);
    }
    static const uint8_t kZeros[4] = {};
    while (result == 0 && written < padded) {
        const uint32_t n = padded - written < 4 ? padded - written : 4;
        result = WriteBuffered(buffer, kZeros, n);
        written += n;
    }
    if (result == 0) result = FlushBuffered(buffer);
    FreeStagingBuffer(&buffer);
    return result;
}

int32_t WriteStoredCount(HostFile* file, const BlobStore& store) {
    uint8_t word[4];
    WriteBE32(word, store.count);
    int32_t result = SeekHostFile(file, store.countPosition);
    return result == 0 ? WriteHostFile(file, word, 4) : result;
}

}  // namespace

uint16_t NewBlobId(uint32_t ref) {
    BlobStore* store = FindStore(ref);
    if (!store || !store->table) return 1;
    uint16_t id = store->nextId;
    {
        MemRefLock lock(store->table);
        // Increment first, skip 0, and take the first value no entry of any type uses; this is
        // what repairs the zero that a full save leaves in the file.
        for (uint32_t tries = 0; tries < 0x10000; ++tries) {
            if (++id == 0) ++id;
            bool used = false;
            for (uint32_t i = 0; i < store->count && !used; ++i) used = Read16(Row(lock.data(), i) + kRowId) == id;
            if (!used) break;
        }
    }
    store->nextId = id;
    HostFile* file = nullptr;
    if (OpenHostFile(store->hostPath, FileMode::ReadWrite, &file) == 0) {
        uint8_t word[2];
        WriteBE16(word, id);
        if (SeekHostFile(file, store->idPosition) == 0) WriteHostFile(file, word, 2);
        CloseHostFile(file);
    }
    return id;
}

int32_t AddBlob(MemRef data, uint32_t flags, uint32_t type, uint16_t* id, const uint8_t* name) {
    BlobStore* store = BlobStores().current;
    if (!store || !data || type == 0) return kResultNoMemory;
    if (!store->table) return kResultNoMemory;  // a store in memory only has no file to add to
    const uint32_t index = store->count;
    // A row left unused by a failed add is taken again.
    if (SetMemRefSize(store->table, (index + 1) * kRowSize) != 0) return kResultNoMemory;
    const uint32_t size = GetMemRefSize(data);
    const uint16_t chosen = (id && *id) ? *id : NewBlobId(store->ref);
    if (id) *id = chosen;

    uint8_t head[kBlobHeadSize] = {};
    WriteBE32(head + kBlobHeadType, type);
    WriteBE16(head + kBlobHeadId, chosen);
    if (name) std::memcpy(head + kBlobHeadName, name, name[0] + 1u < kBlobNameSize ? name[0] + 1u : kBlobNameSize);
    WriteBE32(head + kBlobHeadFlags, flags);
    WriteBE32(head + kBlobHeadSizeField, size);
    WriteBE32(head + kBlobHeadNext, (size + 3) & ~3u);

    HostFile* file = nullptr;
    int32_t result = OpenHostFile(store->hostPath, FileMode::ReadWrite, &file);
    if (result != 0) return result;
    uint64_t position = 0;
    result = HostFileLength(file, &position);
    if (result == 0) result = SetHostFileLength(file, position + BlobFileLength(size));
    if (result == 0) result = SeekHostFile(file, position);
    if (result == 0) result = WriteHostFile(file, head, kBlobHeadSize);
    if (result == 0) result = WriteRecordData(file, type, data);
    if (result == 0) {
        MemRefLock lock(store->table);
        uint8_t* row = Row(lock.data(), index);
        std::memset(row, 0, kRowSize);
        Write32(row + kRowType, type);
        Write16(row + kRowId, chosen);
        std::memcpy(row + kRowName, head + kBlobHeadName, kBlobNameSize);
        Write32(row + kRowFlags, flags);
        Write32(row + kRowDataSize, size);
        Write32(row + kRowHandle, static_cast<uint32_t>(data));
        Write32(row + kRowPosition, static_cast<uint32_t>(position));
        ++store->count;
        result = WriteStoredCount(file, *store);
    } else {
        SetHostFileLength(file, position);
    }
    CloseHostFile(file);
    return result;
}

int32_t DeleteBlob(uint32_t type, uint16_t id) {
    BlobStore* store = BlobStores().current;
    if (!store || !store->table) return kResultNoMemory;
    MemRefLock lock(store->table);
    for (uint32_t i = 0; i < store->count; ++i) {
        uint8_t* row = Row(lock.data(), i);
        if (IsDeleted(row) || Read32(row + kRowType) != type || Read16(row + kRowId) != id) continue;
        const MemRef handle = static_cast<MemRef>(Read32(row + kRowHandle));
        if (handle) FreeMemRef(handle);
        Write32(row + kRowHandle, 0);
        const uint32_t flags = Read32(row + kRowFlags) | kBlobDeleted;
        Write32(row + kRowFlags, flags);
        HostFile* file = nullptr;
        int32_t result = OpenHostFile(store->hostPath, FileMode::ReadWrite, &file);
        if (result != 0) return result;
        uint8_t word[4];
        WriteBE32(word, flags);
        result = SeekHostFile(file, Read32(row + kRowPosition) + uint64_t{kBlobHeadFlags});
        if (result == 0) result = WriteHostFile(file, word, 4);
        CloseHostFile(file);
        return result;
    }
    return 0;
}

uint32_t NewScratchStore(const std::string& hostPath) {
    uint8_t header[kStackHeaderSize] = {};
    WriteBE32(header + kHdrBlobOffset, kStackHeaderSize);
    WriteBE32(header + kHdrNextBlobId, 1);
    HostFile* file = nullptr;
    if (OpenHostFile(hostPath, FileMode::Create, &file) != 0) return 0;
    const int32_t result = WriteHostFile(file, header, kStackHeaderSize);
    CloseHostFile(file);
    if (result != 0) {
        DeleteHostFile(hostPath);
        return 0;
    }
    const uint32_t ref = OpenBlobStoreAt(hostPath, kStackHeaderSize, kHdrBlobCount, kHdrNextBlobId);
    if (!ref) {
        DeleteHostFile(hostPath);
        return 0;
    }
    FindStore(ref)->flags |= kStoreInScratchFile;
    // A program may end with a new stack open, on any path: its file goes with the process.
    StoreState& stores = BlobStores();
    if (!stores.exitCleanupSet) stores.exitCleanupSet = std::atexit(DeleteScratchFilesAtExit) == 0;
    return ref;
}

