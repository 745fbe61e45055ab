#include "stack/PathSlot.h"

#include <algorithm>
#include <cstring>

#include "memory/MemRef.h"
#include "platform/HostPath.h"

namespace {
MemRef gSlots = 0;
}

bool InitPathSlots() {
    if (gSlots && IsMemRef(gSlots)) FreeMemRef(gSlots);
    gSlots = NewMemRef(kSlotCount * kSlotSize);
    return gSlots != 0;
}

uint8_t* GetSlot(int slot) {
    if (!gSlots || !IsMemRef(gSlots)) InitPathSlots();
    if (slot < 0 || slot >= kSlotCount) return nullptr;
    // The slot block is never resized, so its address is stable between calls.
    MemRefLock lock(gSlots);
    return lock.data() + slot * kSlotSize;
}

std::string GetSlotPath(int slot) {
    const uint8_t* s = GetSlot(slot);
    return std::string(reinterpret_cast<const char*>(s + kSlotPath),
                       strnlen(reinterpret_cast<const char*>(s + kSlotPath), kSlotPathMax - 1));
}

bool SetSlotPath(int slot, const std::string& dosPath) {
    if (dosPath.size() >= kSlotPathMax) return false;
    uint8_t* s = GetSlot(slot);
    std::memset(s + kSlotPath, 0, kSlotPathMax);
    std::memcpy(s + kSlotPath, dosPath.data(), dosPath.size());
    const size_t sep = dosPath.find_last_of('\\');
    const std::string name = sep == std::string::npos ? dosPath : dosPath.substr(sep + 1);
    std::memset(s + kSlotName, 0, kSlotSize - kSlotName);
    std::memcpy(s + kSlotName, name.data(), std::min<size_t>(name.size(), kSlotSize - kSlotName - 1));
    return true;
}

std::string GetSlotName(int slot) {
    const uint8_t* s = GetSlot(slot);
    return std::string(reinterpret_cast<const char*>(s + kSlotName),
                       strnlen(reinterpret_cast<const char*>(s + kSlotName), kSlotSize - kSlotName - 1));
}

void CopySlot(int from, int to) {
    if (from == to) return;
    std::memcpy(GetSlot(to), GetSlot(from), kSlotSize);
}

std::string SlotHostPath(int slot) { return HostPathFromDos(GetSlotPath(slot)); }

char CurrentStackDrive() {
    const std::string path = GetSlotPath(kSlotStack);
    if (path.size() >= 3 && path[1] == ':' && path[2] == '\\') return path[0];
    return 'C';
}

namespace {
inline constexpr uint32_t kReferenceGap = 6;  // the reference's 16- and 32-bit fields
}  // namespace

bool SetSlotFromReference(int slot, const uint8_t* reference, uint32_t length) {
    const char* p = reinterpret_cast<const char*>(reference);
    const uint32_t pathLength = static_cast<uint32_t>(strnlen(p, length));
    if (pathLength >= length) return false;
    const uint32_t padded = (pathLength + 1) + ((pathLength + 1) & 1);
    if (padded + kReferenceGap >= length) return false;
    const uint32_t rest = length - padded - kReferenceGap;
    const uint32_t nameLength = static_cast<uint32_t>(strnlen(p + padded + kReferenceGap, rest));
    if (nameLength >= rest || nameLength >= kSlotSize - kSlotName) return false;
    if (!SetSlotPath(slot, std::string(p, pathLength))) return false;
    uint8_t* s = GetSlot(slot);
    std::memcpy(s + kSlotRefWord, p + padded, 2);
    std::memcpy(s + kSlotRefLong, p + padded + 2, 4);
    std::memset(s + kSlotName, 0, kSlotSize - kSlotName);
    std::memcpy(s + kSlotName, p + padded + kReferenceGap, nameLength);
    s[kSlotPresent] = 1;
    return true;
}

void ClearSlot(int slot) {
    SetSlotPath(slot, "");
    if (uint8_t* s = GetSlot(slot)) s[kSlotPresent] = 0;
}
