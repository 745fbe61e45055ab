#include "stack/Blob.h"

#include "base/ResultCodes.h"

#include <cstring>

#include "base/ByteOrder.h"
#include "platform/HostFile.h"
#include "stack/BlobStore.h"
#include "stack/Names.h"
#include "stack/Normalise.h"
#include "stack/PathSlot.h"

namespace {

StoreState gStores;

// Reads one record's data and normalises it by type. 0 if the read or the record fails.
MemRef ReadRecord(const BlobStore& store, const uint8_t* row) {
    const uint32_t size = Read32(row + kRowDataSize);
    MemRef data = NewMemRef(size);
    if (!data) return 0;
    HostFile* file = nullptr;
    int32_t result = OpenHostFile(store.hostPath, FileMode::Read, &file);
    if (result == 0) result = SeekHostFile(file, uint64_t{Read32(row + kRowPosition)} + kBlobHeadSize);
    if (result == 0) {
        MemRefLock lock(data);
        result = ReadHostFile(file, lock.data(), size);
    }
    CloseHostFile(file);
    const uint32_t type = Read32(row + kRowType);
    if (result == 0 && type == FourCC("Actn")) result = NormaliseActn(data);
    if (result == 0 && type == FourCC("Hlnk")) result = NormaliseHlnk(data);
    if (result != 0) {
        FreeMemRef(data);
        return 0;
    }
    return data;
}

// The common end of every fetch: the cached data, read now if need be.
MemRef Materialise(BlobStore& store, uint32_t index) {
    MemRefLock lock(store.table);
    uint8_t* row = Row(lock.data(), index);
    MemRef handle = static_cast<MemRef>(Read32(row + kRowHandle));
    if (handle && (IsMemRefDiscarded(handle) || (GetMemRefSize(handle) == 0 && gStores.loading))) {
        FreeMemRef(handle);
        handle = 0;
    }
    if (!handle) {
        handle = gStores.loading ? ReadRecord(store, row) : NewMemRef(0);
        Write32(row + kRowHandle, static_cast<uint32_t>(handle));
    }
    return handle;
}

// Walks the live rows of the current store; `match` picks the row. Returns the row's index or -1.
template <typename Match>
int64_t FindRow(BlobStore* store, Match match) {
    if (!store || !store->table) return -1;
    MemRefLock lock(store->table);
    for (uint32_t i = 0; i < store->count; ++i) {
        const uint8_t* row = Row(lock.data(), i);
        if (!IsDeleted(row) && match(row)) return i;
    }
    return -1;
}

MemRef FetchWhere(int64_t index) {
    return index < 0 ? 0 : Materialise(*gStores.current, static_cast<uint32_t>(index));
}

// The row whose cached data is `handle`, in any open store.
bool FindHandle(MemRef handle, BlobStore** storeOut, uint32_t* indexOut) {
    if (!handle) return false;
    for (BlobStore* s = gStores.head; s; s = s->next) {
        if (!s->table) continue;
        MemRefLock lock(s->table);
        for (uint32_t i = 0; i < s->count; ++i) {
            if (static_cast<MemRef>(Read32(Row(lock.data(), i) + kRowHandle)) == handle) {
                *storeOut = s;
                *indexOut = i;
                return true;
            }
        }
    }
    return false;
}

void FreeStore(BlobStore* store) {
    if (store->table) {
        MemRefLock lock(store->table);
        for (uint32_t i = 0; i < store->count; ++i) {
            MemRef handle = static_cast<MemRef>(Read32(Row(lock.data(), i) + kRowHandle));
            if (handle) FreeMemRef(handle);
        }
    }
    if (store->table) FreeMemRef(store->table);
    if (store->flags & kStoreInScratchFile) DeleteHostFile(store->hostPath);
    delete store;
}

// Reads the table of the area; false, with the offset of the fault, when it leaves the file.
bool ReadTable(HostFile* file, BlobStore& store, uint64_t* faultOffset) {
    uint64_t fileLength = 0;
    if (HostFileLength(file, &fileLength) != 0) return false;
    uint8_t word[4];
    if (store.countPosition + 4 > fileLength || SeekHostFile(file, store.countPosition) != 0 ||
        ReadHostFile(file, word, 4) != 0) {
        *faultOffset = store.countPosition;
        return false;
    }
    store.count = ReadBE32(word);
    if (store.idPosition + 2 > fileLength || SeekHostFile(file, store.idPosition) != 0 ||
        ReadHostFile(file, word, 2) != 0) {
        *faultOffset = store.idPosition;
        return false;
    }
    store.nextId = ReadBE16(word);
    if (store.count > kMaxBlobEntries) {
        *faultOffset = store.countPosition;
        return false;
    }
    store.table = NewMemRef(store.count * kRowSize);
    if (!store.table) return false;
    MemRefLock lock(store.table);
    uint64_t position = store.areaOffset;
    for (uint32_t i = 0; i < store.count; ++i) {
        uint8_t head[kBlobHeadSize];
        *faultOffset = position;
        if (position + kBlobHeadSize > fileLength || SeekHostFile(file, position) != 0 ||
            ReadHostFile(file, head, kBlobHeadSize) != 0)
            return false;
        const uint32_t size = ReadBE32(head + kBlobHeadSizeField);
        const uint32_t next = ReadBE32(head + kBlobHeadNext);
        if (size > next || next > fileLength - position - kBlobHeadSize) return false;
        uint8_t* row = Row(lock.data(), i);
        Write32(row + kRowType, ReadBE32(head + kBlobHeadType));
        Write16(row + kRowId, ReadBE16(head + kBlobHeadId));
        std::memcpy(row + kRowReserved, head + kBlobHeadReserved6, 2);
        std::memcpy(row + kRowName, head + kBlobHeadName, kBlobNameSize);
        Write32(row + kRowFlags, ReadBE32(head + kBlobHeadFlags));
        Write32(row + kRowDataSize, size);
        Write32(row + kRowHandle, 0);
        Write32(row + kRowPosition, static_cast<uint32_t>(position));
        position += kBlobHeadSize + next;
    }
    return true;
}

}  // namespace

StoreState& BlobStores() { return gStores; }

BlobStore* FindStore(uint32_t ref) {
    for (BlobStore* s = gStores.head; s; s = s->next) {
        if (s->ref == ref) return s;
    }
    return nullptr;
}

bool IsDeleted(const uint8_t* row) { return (Read32(row + kRowFlags) & kBlobDeleted) != 0; }

void DeleteScratchFilesAtExit() {
    for (BlobStore* s = gStores.head; s; s = s->next) {
        if (s->flags & kStoreInScratchFile) DeleteHostFile(s->hostPath);
    }
}

uint32_t LinkStore(BlobStore* store) {
    store->ref = gStores.nextRef++;
    store->next = gStores.head;
    gStores.head = store;
    gStores.current = store;
    return store->ref;
}

std::string FourCCText(uint32_t type) {
    std::string text(4, ' ');
    for (int i = 0; i < 4; ++i) text[i] = static_cast<char>(type >> (24 - 8 * i));
    return text;
}

uint32_t OpenBlobStore(int slot, uint32_t areaOffset, uint32_t countPosition, uint32_t idPosition,
                       uint64_t* faultOffset) {
    return OpenBlobStoreAt(SlotHostPath(slot), areaOffset, countPosition, idPosition, faultOffset);
}

uint32_t OpenBlobStoreAt(const std::string& hostPath, uint32_t areaOffset, uint32_t countPosition,
                         uint32_t idPosition, uint64_t* faultOffset) {
    uint64_t ignored = 0;
    if (!faultOffset) faultOffset = &ignored;
    *faultOffset = areaOffset;
    auto* store = new BlobStore;
    store->hostPath = hostPath;
    store->areaOffset = areaOffset;
    store->countPosition = countPosition;
    store->idPosition = idPosition;
    HostFile* file = nullptr;
    if (OpenHostFile(store->hostPath, FileMode::Read, &file) != 0) {
        delete store;
        return 0;
    }
    const bool read = ReadTable(file, *store, faultOffset);
    CloseHostFile(file);
    if (!read) {
        if (store->table) FreeMemRef(store->table);
        delete store;
        return 0;
    }
    return LinkStore(store);
}

bool IsScratchStore(uint32_t ref) {
    const BlobStore* store = FindStore(ref);
    return store && (store->flags & kStoreInScratchFile);
}

std::string BlobStorePath(uint32_t ref) {
    const BlobStore* store = FindStore(ref);
    return store ? store->hostPath : "";
}

uint32_t BlobAreaOffset(uint32_t ref) {
    const BlobStore* store = FindStore(ref);
    return store ? store->areaOffset : 0;
}

uint16_t BlobNextId(uint32_t ref) {
    const BlobStore* store = FindStore(ref);
    return store ? store->nextId : 0;
}

void CloseBlobStore(uint32_t ref) {
    BlobStore** link = &gStores.head;
    while (*link && (*link)->ref != ref) link = &(*link)->next;
    BlobStore* store = *link;
    if (!store) return;
    *link = store->next;
    if (gStores.current == store) gStores.current = gStores.head;
    FreeStore(store);
}

void CloseAllBlobStores() {
    while (gStores.head) CloseBlobStore(gStores.head->ref);
    gStores.loading = true;
}

uint32_t CurrentBlobStore() { return gStores.current ? gStores.current->ref : 0; }

MemRef GetBlobById(uint32_t type, uint16_t id) {
    return FetchWhere(FindRow(gStores.current, [&](const uint8_t* row) {
        return Read32(row + kRowType) == type && Read16(row + kRowId) == id;
    }));
}

MemRef GetBlobByIndex(uint32_t type, uint32_t index) {
    uint32_t seen = 0;
    return FetchWhere(FindRow(gStores.current, [&](const uint8_t* row) {
        return Read32(row + kRowType) == type && ++seen == index;
    }));
}

MemRef GetBlobByName(uint32_t type, const uint8_t* name) {
    return FetchWhere(FindRow(gStores.current, [&](const uint8_t* row) {
        // A stored name's length byte may claim more than its field: such a name matches nothing.
        return Read32(row + kRowType) == type && row[kRowName] < kBlobNameSize &&
               EqualNames(row + kRowName, name);
    }));
}

void SetBlobLoading(bool flag) { gStores.loading = flag; }

void DetachBlob(MemRef handle) {
    BlobStore* store;
    uint32_t index;
    if (!FindHandle(handle, &store, &index)) return;
    MemRefLock lock(store->table);
    Write32(Row(lock.data(), index) + kRowHandle, 0);
}

void ReleaseBlob(MemRef handle) {
    BlobStore* store;
    uint32_t index;
    if (!FindHandle(handle, &store, &index)) return;
    FreeMemRef(handle);
    MemRefLock lock(store->table);
    Write32(Row(lock.data(), index) + kRowHandle, 0);
}

int32_t GetBlobInfo(MemRef handle, uint32_t* type, uint16_t* id, uint8_t* name, uint32_t* flags) {
    BlobStore* store;
    uint32_t index;
    if (!FindHandle(handle, &store, &index)) return kResultNoMemory;
    MemRefLock lock(store->table);
    const uint8_t* row = Row(lock.data(), index);
    if (type) *type = Read32(row + kRowType);
    if (id) *id = Read16(row + kRowId);
    if (name) std::memcpy(name, row + kRowName, kBlobNameSize);
    if (flags) *flags = Read32(row + kRowFlags);
    return 0;
}

bool GetBlobName(uint32_t type, uint16_t id, uint8_t* name) {
    BlobStore* store = gStores.current;
    const int64_t index = FindRow(store, [&](const uint8_t* row) {
        return Read32(row + kRowType) == type && Read16(row + kRowId) == id;
    });
    if (index < 0) return false;
    MemRefLock lock(store->table);
    std::memcpy(name, Row(lock.data(), static_cast<uint32_t>(index)) + kRowName, kBlobNameSize);
    return true;
}

uint32_t GetBlobSize(uint32_t ref, uint32_t type, uint16_t id) {
    BlobStore* store = FindStore(ref);
    const int64_t index = FindRow(store, [&](const uint8_t* row) {
        return Read32(row + kRowType) == type && Read16(row + kRowId) == id;
    });
    if (index < 0) return 0;
    MemRefLock lock(store->table);
    return Read32(Row(lock.data(), static_cast<uint32_t>(index)) + kRowDataSize);
}

int16_t GetBlobPosition(uint32_t ref, uint32_t type, uint16_t id) {
    int16_t position = 0;
    const int64_t index = FindRow(FindStore(ref), [&](const uint8_t* row) {
        if (Read32(row + kRowType) != type) return false;
        ++position;
        return Read16(row + kRowId) == id;
    });
    return index < 0 ? 0 : position;
}

uint32_t CountBlobs(uint32_t type) {
    uint32_t count = 0;
    FindRow(gStores.current, [&](const uint8_t* row) {
        if (Read32(row + kRowType) == type) ++count;
        return false;
    });
    return count;
}

uint32_t TotalBlobBytes(uint32_t ref) {
    BlobStore* store = FindStore(ref);
    if (!store || !store->table) return 0;
    MemRefLock lock(store->table);
    uint32_t total = 0;
    for (uint32_t i = 0; i < store->count; ++i) total += BlobFileLength(Read32(Row(lock.data(), i) + kRowDataSize));
    return total;
}

uint32_t CountBlobEntries(uint32_t ref) {
    BlobStore* store = FindStore(ref);
    return store ? store->count : 0;
}

bool GetBlobEntry(uint32_t ref, uint32_t index, BlobEntryInfo* entry) {
    BlobStore* store = FindStore(ref);
    if (!store || !store->table || index >= store->count) return false;
    MemRefLock lock(store->table);
    const uint8_t* row = Row(lock.data(), index);
    entry->type = Read32(row + kRowType);
    entry->id = Read16(row + kRowId);
    entry->reserved = Read16(row + kRowReserved);
    std::memcpy(entry->name, row + kRowName, kBlobNameSize);
    entry->flags = Read32(row + kRowFlags);
    entry->size = Read32(row + kRowDataSize);
    entry->handle = static_cast<MemRef>(Read32(row + kRowHandle));
    entry->position = Read32(row + kRowPosition);
    return true;
}
