// The blob store: the typed records of a stack (actions, links, sounds, sprites, icons, ...) in the
// area at the end of the stack file. Only the table is in memory; each record is read when first
// asked for. Fetching works on the current store; opening a store makes it current.
#pragma once

#include <cstdint>
#include <string>

#include "memory/MemRef.h"
#include "stack/StagingBuffer.h"

struct HostFile;

// Four-character codes, first character in the high byte: FourCC("Actn").
constexpr uint32_t FourCC(const char (&code)[5]) {
    return uint32_t(uint8_t(code[0])) << 24 | uint32_t(uint8_t(code[1])) << 16 |
           uint32_t(uint8_t(code[2])) << 8 | uint32_t(uint8_t(code[3]));
}
std::string FourCCText(uint32_t type);

// Entry head in the file.
inline constexpr uint32_t kBlobHeadSize = 68;
inline constexpr uint32_t kBlobHeadType = 0;
inline constexpr uint32_t kBlobHeadId = 4;
inline constexpr uint32_t kBlobHeadReserved6 = 6;
inline constexpr uint32_t kBlobHeadName = 8;  // 32 bytes, length-prefixed
inline constexpr uint32_t kBlobHeadFlags = 40;
inline constexpr uint32_t kBlobHeadSizeField = 44;
inline constexpr uint32_t kBlobHeadNext = 48;
inline constexpr uint32_t kBlobNameSize = 32;
inline constexpr uint32_t kBlobDeleted = 0x80000000u;
inline constexpr uint32_t kMaxBlobEntries = 0x10000;

// A record's length in the file: head plus data padded to a multiple of 4.
constexpr uint32_t BlobFileLength(uint32_t size) { return kBlobHeadSize + ((size + 3) & ~3u); }

// A table row, in native order.
struct BlobEntryInfo {
    uint32_t type = 0;
    uint16_t id = 0;
    uint16_t reserved = 0;
    uint8_t name[kBlobNameSize] = {};  // length-prefixed, as in the file
    uint32_t flags = 0;
    uint32_t size = 0;
    MemRef handle = 0;
    uint32_t position = 0;  // file offset of the entry's head
};

// Opens the store of the file in `slot`. Returns the store's number, or 0 on failure; on a table
// that leaves the file (a damaged stack) `*faultOffset`, if given, says where.
uint32_t OpenBlobStore(int slot, uint32_t areaOffset, uint32_t countPosition, uint32_t idPosition,
                       uint64_t* faultOffset = nullptr);
// The same on a file named by its host path.
uint32_t OpenBlobStoreAt(const std::string& hostPath, uint32_t areaOffset, uint32_t countPosition,
                         uint32_t idPosition, uint64_t* faultOffset = nullptr);
// A store in a scratch file of its own at `hostPath` (deleted when the store closes), for a new,
// unsaved stack: a header with blobOffset 128, blobCount 0, nextBlobId 1, and no records.
uint32_t NewScratchStore(const std::string& hostPath);
// The blobOffset of the header of the file in `slot`; 0 when it can't be read.
uint32_t GetBlobOffset(int slot);
// The store of the stack file in `slot` if it is another stack with records; otherwise a store in
// memory only, with no records and no file to add to. Either becomes current.
uint32_t OpenOrMakeStore(int slot);
// The store of "Samples.stk" in the program's folder; 0, after alert 2292, when it isn't there.
uint32_t OpenSamplesStore();
bool IsScratchStore(uint32_t ref);
std::string BlobStorePath(uint32_t ref);
uint32_t BlobAreaOffset(uint32_t ref);
uint16_t BlobNextId(uint32_t ref);
void CloseBlobStore(uint32_t ref);
void CloseAllBlobStores();
uint32_t CurrentBlobStore();

MemRef GetBlobById(uint32_t type, uint16_t id);
MemRef GetBlobByIndex(uint32_t type, uint32_t index);
MemRef GetBlobByName(uint32_t type, const uint8_t* name);  // length-prefixed
void SetBlobLoading(bool flag);

void DetachBlob(MemRef handle);
void ReleaseBlob(MemRef handle);
int32_t GetBlobInfo(MemRef handle, uint32_t* type, uint16_t* id, uint8_t* name, uint32_t* flags);
bool GetBlobName(uint32_t type, uint16_t id, uint8_t* name);
uint32_t GetBlobSize(uint32_t ref, uint32_t type, uint16_t id);
int16_t GetBlobPosition(uint32_t ref, uint32_t type, uint16_t id);
uint32_t CountBlobs(uint32_t type);
uint32_t TotalBlobBytes(uint32_t ref);

// Adds a record at the end of the file at once; `*id` of 0 takes a new id and gives it back.
// `name` is length-prefixed or null. 0, 16 (no store, no data, type 0) or the file layer's error.
int32_t AddBlob(MemRef data, uint32_t flags, uint32_t type, uint16_t* id, const uint8_t* name);
// Frees the cached data and marks the record deleted, in memory and in the file.
int32_t DeleteBlob(uint32_t type, uint16_t id);
uint16_t NewBlobId(uint32_t ref);
// For a save: compacts the live records to `newOffset` in the store's own file (down, or up from
// the last), drops deleted rows and writes the new count.
int32_t MoveBlobArea(uint32_t ref, uint32_t newOffset, StagingBuffer& buffer);
// For a save to another file: copies every entry, deleted ones too, to `offset` of `destination`.
int32_t CopyBlobArea(uint32_t ref, HostFile* source, HostFile* destination, uint32_t offset,
                     StagingBuffer& buffer);

// The whole table, deleted entries included, for listing a stack's records.
uint32_t CountBlobEntries(uint32_t ref);
bool GetBlobEntry(uint32_t ref, uint32_t index, BlobEntryInfo* entry);
