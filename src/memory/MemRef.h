// Handle memory: movable, lockable blocks reached through a stable integer.
//
// Every block the system keeps for a stack lives behind a MemRef. A block is laid out as a 32-bit
// size word, the caller's data, and the guard word 0xFACEBEEF right behind the data. Records on
// disk are padded with whatever follows their data, so the guard must stay physically there.
#pragma once

#include <cstdint>

using MemRef = int32_t;

inline constexpr uint32_t kMemRefGuard = 0xFACEBEEF;
inline constexpr int16_t kMemRefSlotStep = 200;
// The table's counters are 16-bit; past this many blocks an allocation fails cleanly.
inline constexpr int32_t kMemRefMaxBlocks = 32600;

struct SystemBlock;  // what stands behind a MemRef (GlobalBlock.h)

// Table state, one per process. Exposed so tests can look at the round-robin search.
struct MemRefTable {
    SystemBlock** slots = nullptr;
    int16_t capacity = 0;
    int16_t used = 0;
    int16_t next = 0;
};
const MemRefTable& GetMemRefTable();

bool InitMemRefs();
// Frees every block and the table; `used` keeps its count, as the system leaves it.
void ShutdownMemRefs();
// What the table shows when it cannot grow (string 4067 in a plain message box). Handle memory
// sits below the host and the string table, so the program installs it; none shows nothing.
using MemRefsFailureNotice = void (*)();
void SetMemRefsFailureNotice(MemRefsFailureNotice notice);

MemRef NewMemRef(uint32_t size);
int32_t FreeMemRef(MemRef ref);

uint8_t* LockMemRef(MemRef ref);
void UnlockMemRef(MemRef ref);
uint32_t GetMemRefSize(MemRef ref);
int32_t SetMemRefSize(MemRef ref, uint32_t size);
bool IsMemRef(MemRef ref);
bool IsMemRefDiscarded(MemRef ref);
SystemBlock* GetMemRefBlock(MemRef ref);

bool MemRefsEqual(MemRef a, MemRef b);
int32_t AppendMemRef(MemRef src, MemRef dst);
int32_t DuplicateMemRef(MemRef* ref);

int32_t InsertBytes(MemRef dst, const void* source, uint32_t offset, uint32_t length);
int32_t InsertMemRef(MemRef dst, MemRef src, uint32_t offset, bool pad);
int32_t DeleteBytes(MemRef ref, uint32_t offset, uint32_t length);
int32_t ReplaceBytes(MemRef dst, MemRef src, uint32_t offset, uint32_t oldLength);
MemRef ExtractBytes(MemRef ref, uint32_t offset, uint32_t length);
MemRef CopyBytes(MemRef ref, uint32_t offset, uint32_t length);

// Holds one lock for a scope, so every path out of a function unlocks what it locked.
class MemRefLock {
public:
    explicit MemRefLock(MemRef ref) : ref_(ref), data_(LockMemRef(ref)) {}
    ~MemRefLock() {
        if (data_) UnlockMemRef(ref_);
    }
    MemRefLock(const MemRefLock&) = delete;
    MemRefLock& operator=(const MemRefLock&) = delete;
    uint8_t* data() const { return data_; }
    explicit operator bool() const { return data_ != nullptr; }

private:
    MemRef ref_;
    uint8_t* data_;
};
