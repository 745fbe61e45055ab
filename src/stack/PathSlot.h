// Path slots: 20 records of 368 bytes through which every file name travels. Paths in them keep
// the drive form the format expects ("C:\Stacks\art.bmp"); the host maps them to real files.
#pragma once

#include <cstdint>
#include <string>

inline constexpr int kSlotCount = 20;
inline constexpr uint32_t kSlotSize = 368;
inline constexpr uint32_t kSlotFilterIndex = 0;  // 32-bit
inline constexpr uint32_t kSlotPath = 4;         // 260 bytes, zero-terminated
inline constexpr uint32_t kSlotPathMax = 260;
inline constexpr uint32_t kSlotPresent = 264;  // 1 byte
inline constexpr uint32_t kSlotRefWord = 266;  // 16-bit field of a stored file reference
inline constexpr uint32_t kSlotRefLong = 268;  // 32-bit field of a stored file reference
inline constexpr uint32_t kSlotName = 304;     // 64 bytes, zero-terminated
static_assert(kSlotName + 64 == kSlotSize);

// Slot numbers by use.
inline constexpr int kSlotScratch = 0;
inline constexpr int kSlotStack = 1;
inline constexpr int kSlotSounds = 2;
inline constexpr int kSlotTextFile = 3;  // the file a field imports its text from
inline constexpr int kSlotArt = 4;
inline constexpr int kSlotSamples = 6;
inline constexpr int kSlotOtherStack = 8;
inline constexpr int kSlotSaveStart = 11;
inline constexpr int kSlotNbas = 12;
inline constexpr int kSlotHome = 13;
inline constexpr int kSlotMovies = 14;
inline constexpr int kSlotSaveAs = 16;

bool InitPathSlots();
uint8_t* GetSlot(int slot);
std::string GetSlotPath(int slot);
// Sets the path and the name behind its last "\"; a path longer than a slot holds is refused.
bool SetSlotPath(int slot, const std::string& dosPath);
std::string GetSlotName(int slot);
void CopySlot(int from, int to);
// The real file behind a slot, or "" when its drive maps to nothing.
std::string SlotHostPath(int slot);
// A file reference in native form (path, zero-terminated, a pad to even, six bytes of reference
// fields, the name, zero-terminated) of `length` bytes put into path slot `slot`. False for bytes
// that don't hold one; the slot is then left as it was.
bool SetSlotFromReference(int slot, const uint8_t* reference, uint32_t length);
// Empties a path slot: no path, no name, not set by the user.
void ClearSlot(int slot);
// The current stack's drive letter, which a path from the other platform takes on.
char CurrentStackDrive();
