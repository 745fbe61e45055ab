// The two packings of a picture's pixels, used by graphic items and by PixPak records. Both work
// on a DibImage of display rows taken in memory order (the caller flips), and both are laid out on
// stored rows.
//
// RowPackedPixels (PackType 4): per row, an LzrwBlock of one stored row whose bytes 2 and 3 hold
// the block's length, header included, big-endian; that length is the only framing.
// RunPackedPixels (PackType 6): one run stream over all the stored rows. A signed count c: for
// c >= 0, c + 1 literal bytes; for c < 0, one byte repeated 1 - c times. Runs cross row ends.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

inline constexpr uint16_t kPackTypeRows = 4;
inline constexpr uint16_t kPackTypeRuns = 6;
// Data that does not fit the picture, or runs out before it is full.
inline constexpr int32_t kPixelsDamaged = -1;

// A graphic item's flag 16: set, its pixels are row-packed; clear, run-packed.
inline constexpr uint16_t kGraphicFlagRowPacked = 16;

// New blocks of packed pixels, or 0 without memory.
MemRef EncodeRowPacked(MemRef image);
MemRef EncodeRunPacked(MemRef image);

// Fill an allocated image's pixels. 0, kPixelsDamaged, or -1 for an image that isn't one.
int32_t DecodeRowPacked(MemRef image, const uint8_t* data, uint32_t length);
int32_t DecodeRunPacked(MemRef image, const uint8_t* data, uint32_t length);
// A graphic item's pixels, in the packing its flags name.
int32_t DecodeGraphicPixels(MemRef image, uint16_t itemFlags, const uint8_t* data, uint32_t length);
