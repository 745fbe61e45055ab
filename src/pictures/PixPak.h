// PixPak: a self-describing record for a sprite or animation frame. A 58-byte header, big-endian
// on disk and read and written here as a whole, then a ColorTable, then packed pixels (PackType 4
// row-packed or 6 run-packed). 16- and 32-bit pixels are kept high byte first; this is the one
// record where pixel bytes are turned.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

inline constexpr uint32_t kPixPakHeadSize = 58;
inline constexpr uint32_t kPixPakMagic = 0;        // "PPak"
inline constexpr uint32_t kPixPakSize = 4;         // u32, the whole record
inline constexpr uint32_t kPixPakVersion = 8;      // u16, 100
inline constexpr uint32_t kPixPakWidth = 10;       // u16
inline constexpr uint32_t kPixPakHeight = 12;      // u16
inline constexpr uint32_t kPixPakDepth = 14;       // u16
inline constexpr uint32_t kPixPakZero16 = 16;      // u32, 0
inline constexpr uint32_t kPixPakRowBytes = 20;    // u32, sign-extended from 16 bits
inline constexpr uint32_t kPixPakPackType = 24;    // u16
inline constexpr uint32_t kPixPakPaletteSize = 26; // u32
inline constexpr uint32_t kPixPakPixelSize = 30;   // u32
inline constexpr uint32_t kPixPakReserved = 34;    // 24 zero bytes
static_assert(kPixPakReserved + 24 == kPixPakHeadSize);

inline constexpr uint32_t kPixPakMagicValue = 0x5050616B;  // "PPak"
inline constexpr uint16_t kPixPakVersionValue = 100;
inline constexpr int32_t kPixPakWrongSize = 1;

// The working handle of a decoded PixPak or sprite frame, owned by whoever made it. Without a
// platform bitmap the pixels are a DibImage in display form (rows bottom-up) with its colours,
// and the palette is the stored ColorTable record it came with.
struct OffscreenImage {
    uint16_t depth = 0;      // 1, 8, 16 or, for anything else, 32
    MemRef bitmap = 0;       // DibImage
    MemRef palette = 0;      // ColorTable record, or 0
    bool ownsPalette = false;
    bool selected = false;
};

// The depth an OffscreenImage keeps for a picture of `depth` bits.
uint16_t OffscreenDepth(int32_t depth);
// A zeroed image of the size; depth 1 gets black and white. 0 or -1.
int32_t NewOffscreenImage(OffscreenImage* image, int32_t width, int32_t height, int32_t depth);
void FreeOffscreenImage(OffscreenImage* image);

// A new record of the image's pixels and, at 8 bits, its palette. `type` is the PackType to write;
// the system's writers pass 4. 0, or -1 with *record 0.
int32_t EncodePixPak(const OffscreenImage& image, uint16_t type, MemRef* record, uint32_t* size);
// Makes *image from a record as stored, which must say it is `expectedSize` bytes long. 0,
// kPixPakWrongSize, or -1 with *image left empty.
int32_t DecodePixPak(const uint8_t* data, uint32_t expectedSize, OffscreenImage* image);
// Fills an existing image from a record of `size` bytes. An unknown PackType shows the message
// box "Unknown PixPak_Decompress type" and leaves the image as it was. 0 or -1.
int32_t DecodePixPakInto(OffscreenImage* image, const uint8_t* data, uint32_t size);
