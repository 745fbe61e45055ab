// Inside the blob store: the store record and its table rows, shared by the files that read,
// change and move the typed-record area. Not for use outside the store.
#pragma once

#include <cstdint>
#include <string>

#include "memory/MemRef.h"

// Table row in memory, 56 bytes, native order.
inline constexpr uint32_t kRowSize = 56;
inline constexpr uint32_t kRowType = 0;
inline constexpr uint32_t kRowId = 4;
inline constexpr uint32_t kRowReserved = 6;
inline constexpr uint32_t kRowName = 8;
inline constexpr uint32_t kRowFlags = 40;
inline constexpr uint32_t kRowDataSize = 44;
inline constexpr uint32_t kRowHandle = 48;
inline constexpr uint32_t kRowPosition = 52;
static_assert(kRowPosition + 4 == kRowSize);

inline constexpr uint32_t kStoreInScratchFile = 1;

struct BlobStore {
    uint32_t ref = 0;
    uint32_t flags = 0;  // kStoreInScratchFile: the file is deleted when the store closes
    uint32_t areaOffset = 0;
    uint32_t count = 0;
    uint16_t nextId = 0;
    uint32_t countPosition = 0;
    uint32_t idPosition = 0;
    MemRef table = 0;  // 0 for a store in memory only, which has no file to add to
    BlobStore* next = nullptr;
    std::string hostPath;
};

struct StoreState {
    BlobStore* head = nullptr;     // the most recently opened
    BlobStore* current = nullptr;  // what fetching works on
    uint32_t nextRef = 1;
    bool loading = true;
    bool exitCleanupSet = false;  // the scratch files still open are deleted at exit
};
StoreState& BlobStores();

BlobStore* FindStore(uint32_t ref);
// Deletes the files of the scratch stores still open when the program ends.
void DeleteScratchFilesAtExit();
// Puts a store at the head of the list, makes it current and gives it its number.
uint32_t LinkStore(BlobStore* store);

inline uint8_t* Row(uint8_t* table, uint32_t index) { return table + index * kRowSize; }
bool IsDeleted(const uint8_t* row);
