// The few palette operations the picture codecs need, kept narrow until the palette module takes
// them over: reading and building the stored ColorTable record, and the system-to-stack index
// table. The record stays big-endian in memory.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

// ColorTable: seed (u32), flags (u16), entries - 1 (u16), then 8 bytes per entry: index, and
// red, green, blue words of which only the first byte counts.
inline constexpr uint32_t kColorTableHeadSize = 8;
inline constexpr uint32_t kColorTableCountField = 6;
inline constexpr uint32_t kColorTableEntrySize = 8;
inline constexpr uint32_t kColorTableEntries = 256;

// Entries the record holds, no more than its size allows.
uint32_t ColorTableEntryCount(const uint8_t* table, uint32_t size);
// Writes min(record entries, colorCount) entries as blue, green, red, 0.
void ColorTableToDibColors(const uint8_t* table, uint32_t size, uint8_t* colors, uint32_t colorCount);
// A 256-entry record from `colorCount` DIB colours (the rest black), with `seed` in its seed.
MemRef ColorTableFromDibColors(const uint8_t* colors, uint32_t colorCount, uint32_t seed);
// System order to stack order; nothing in this player changes it from the identity.
const uint8_t* SystemToStackIndexTable();
