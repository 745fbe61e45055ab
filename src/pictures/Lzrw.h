// LZRW1-A, the one compressor behind every stored picture.
//
// LzrwBlock: a flag byte (0 compressed, 1 stored), three bytes the block itself leaves at 0 (row
// packing keeps its length in the last two), then the item stream or the raw bytes. The stream is
// groups of a 16-bit control word, low byte first, and up to 16 items, bit 0 for the first: a clear
// bit is one literal byte, a set bit a copy of two bytes b0, b1 with offset ((b0 & 0xF0) << 4) | b1
// (1 to 4095) back into the output and length (b0 & 0x0F) + 3.
#pragma once

#include <cstdint>

inline constexpr uint32_t kLzrwHeadSize = 4;
inline constexpr uint8_t kLzrwCompressed = 0;
inline constexpr uint8_t kLzrwStored = 1;
// The work block callers hand the compressor; its hash table starts at the next multiple of 4.
inline constexpr uint32_t kLzrwWorkSize = 17000;
// The compressor notices a block that does not shrink only between groups, so it may write this
// far past srcLen before it falls back to the stored form: dst must hold srcLen + this.
inline constexpr uint32_t kLzrwOutputSlack = 32;
// A stream that reads or writes outside its buffers, or copies from before the output's start.
inline constexpr int32_t kLzrwDamaged = -1;

// Compresses srcLen bytes into dst (srcLen + kLzrwOutputSlack bytes of room) and sets *dstLen:
// at most srcLen when compressed, srcLen + 4 when stored. `work` is kLzrwWorkSize bytes and is
// not cleared between calls: a stale entry can only cost a missed match.
void LzrwCompress(uint8_t* work, const uint8_t* src, uint32_t srcLen, uint8_t* dst, uint32_t* dstLen);

// Expands a block of srcLen bytes into dst, which holds dstCapacity bytes, and sets *dstLen to the
// bytes made. A srcLen of 0 does nothing. 0, or kLzrwDamaged with *dstLen at what was made. Bytes
// of dst past *dstLen (never past dstCapacity) may be overwritten: copies run in whole chunks.
int32_t LzrwDecompress(const uint8_t* src, uint32_t srcLen, uint8_t* dst, uint32_t dstCapacity,
                       uint32_t* dstLen);
