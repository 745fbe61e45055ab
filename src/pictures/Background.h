// The picture of a card: the BackgroundChunk behind the card head, in formats 1 (one LzrwBlock of
// stored rows), 2 (a RunHeader, then one LzrwBlock without the head and tail runs; what we write)
// and 3 (an image description and a JPEG stream; see JpegBackground.h).
//
// In memory the chunk head is native; the ColorTable behind it stays big-endian; of the RunHeader
// the two lengths are native and the two values are raw pixel bytes, never turned.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

inline constexpr uint16_t kBgChunkTag = 8;
inline constexpr uint16_t kBgFormatWhole = 1;
inline constexpr uint16_t kBgFormatRuns = 2;
inline constexpr uint16_t kBgFormatJpeg = 3;

// RunHeader, at the start of format 2 image data.
inline constexpr uint32_t kRunHeaderSize = 16;
inline constexpr uint32_t kRunHeadValue = 0;   // 4 raw bytes
inline constexpr uint32_t kRunHeadLength = 4;  // u32
inline constexpr uint32_t kRunTailValue = 8;   // 4 raw bytes
inline constexpr uint32_t kRunTailLength = 12; // u32
// A middle of 0 bytes leaves the compressed block at its first size, all zeros.
inline constexpr uint32_t kEmptyMiddleBlock = 128;

// Image description of format 3, 86 bytes, big-endian in memory as on disk.
inline constexpr uint32_t kImageDescriptionSize = 86;

// GetCardBackground's results.
inline constexpr int32_t kBackgroundNoMemory = -1;
inline constexpr int32_t kBackgroundNone = 1;     // kind 0, no owner, or a record without a picture
inline constexpr int32_t kBackgroundDamaged = 2;  // the chunk or its stream does not fit the picture
inline constexpr int32_t kBackgroundJpeg = 3;     // format 3: DecodeJpegBackground reads it

// What a decode did, for callers that report on a picture.
struct BackgroundDecode {
    uint16_t format = 0;
    uint32_t headBytes = 0;
    uint32_t tailBytes = 0;
    uint32_t blockBytes = 0;    // the LzrwBlock's length
    bool decompressed = false;  // false when the runs alone made the picture
};

// Format 2 image data of a display image: RunHeader and LzrwBlock. `fromScreen`: the image is the
// screen bitmap, one row taller than the card, in system colour order. 16- and 32-bit pixels are
// turned from working to stored order. The image is not changed. 0 without memory.
MemRef CompressBackground(MemRef image, bool fromScreen);

// The card itself for kind 1, otherwise the card whose id stands in its shared-picture field; 0
// when there is none.
MemRef GetPictureOwner(MemRef card);

// The card's picture as a new display image of `depth` bits: rows bottom-up when `flip` is set,
// 16- and 32-bit pixels in working order, and the colour table from the owner's ColorTable
// (`withPalette`) or the identity (entry i is the value i, for use as indices). 0 with *image set,
// or one of the results above with *image 0.
int32_t GetCardBackground(MemRef card, MemRef* image, int32_t depth, bool flip, bool withPalette,
                          BackgroundDecode* decode = nullptr);

// Fills a stored image's pixels from format 1 or 2 image data. 0 or kBackgroundDamaged.
int32_t DecodeBackgroundData(MemRef storedImage, uint16_t format, const uint8_t* data, uint32_t length,
                             BackgroundDecode* decode);

// Replaces the card's picture by format 2 `imageData` and `palette` (a ColorTable, or 0) at
// `depth`. A card of kind 0 becomes kind 1; a card of kind 3 is refused. On failure the old
// picture stays. 0 or -1.
int32_t StoreBackground(MemRef card, MemRef imageData, MemRef palette, int32_t depth);

// Where the JPEG stream of a format 3 chunk starts in the owner's record, and its length.
// 0, kBackgroundNone or kBackgroundDamaged.
int32_t FindJpegStream(MemRef owner, uint32_t* offset, uint32_t* length);
// Writes the 86-byte image description that precedes a JPEG stream.
void WriteImageDescription(uint8_t* out, int32_t width, int32_t height, int32_t depth);
