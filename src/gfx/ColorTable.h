// ColorTable: the stored form of a palette, in a BackgroundChunk, a PixPak and wherever a palette
// is saved. It is laid out as a Macintosh colour table and stays big-endian in memory too.
//
//   0  u32  seed: the writer puts the tick count
//   4  u16  flags: 0
//   6  u16  number of entries - 1
//   8       8 bytes an entry: index (the entry's own number), then red, green and blue words whose
//           first byte is the 8-bit value; we write 0 in the second byte, a Macintosh writer a copy.
#pragma once

#include <cstdint>

#include "gfx/Palette.h"
#include "memory/MemRef.h"

inline constexpr uint32_t kColorTableSeed = 0;
inline constexpr uint32_t kColorTableFlags = 4;
inline constexpr uint32_t kColorTableCountField = 6;
inline constexpr uint32_t kColorTableHeadSize = 8;
inline constexpr uint32_t kColorEntryIndex = 0;
inline constexpr uint32_t kColorEntryRed = 2;
inline constexpr uint32_t kColorEntryGreen = 4;
inline constexpr uint32_t kColorEntryBlue = 6;
inline constexpr uint32_t kColorTableEntrySize = 8;
static_assert(kColorEntryBlue + 2 == kColorTableEntrySize);

// The bytes of a record of `count` entries.
constexpr uint32_t ColorTableSize(uint32_t count) { return kColorTableHeadSize + count * kColorTableEntrySize; }
// The entries a record says it has, no more than its `size` holds; 0 for a record without a head.
uint32_t ColorTableEntryCount(const uint8_t* table, uint32_t size);
// Reads at most `maxCount` entries, flags 0; returns how many.
uint32_t ReadColorTable(const uint8_t* table, uint32_t size, PaletteEntry* entries, uint32_t maxCount);
// Writes a record of `count` entries, 1 to 256 (ColorTableSize(count) bytes), to `out`.
void WriteColorTable(uint8_t* out, const PaletteEntry* entries, uint32_t count, uint32_t seed);

// A platform palette of the record: flags 4 from index 10 on, as the display shows the colours.
// Null for a record without entries, or without memory.
PaletteRef PaletteFromColorTable(const uint8_t* table, uint32_t size);
// A new record of 256 entries, 16 in a stack of depth 4, with the tick count in its seed. Without
// a `palette`, the display's own colours at 8 bits and CurrentPalette above. `mapped` takes entry
// i from the palette's entry in system order. 0 without memory.
MemRef ColorTableFromPalette(const Palette* palette, bool mapped);
// Fills a locked DibImage's colour table (blue, green, red, 0) from the record, for as many entries
// as both have, as the display shows them.
void ColorTableToDib(const uint8_t* table, uint32_t size, uint8_t* dib);
// A 256-entry palette of a locked DibImage's colours; null without memory.
PaletteRef PaletteFromDib(const uint8_t* dib);
