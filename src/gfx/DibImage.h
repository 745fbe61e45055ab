// DibImage: the one working form of a picture. A MemRef holding a 40-byte BITMAPINFOHEADER, the
// colour table (blue, green, red, 0 per entry) and the pixels, allocated 4 bytes longer than that
// so that a reader may look one word past the last pixel.
//
// Two row layouts share this shape. Display rows (DibRowBytes) run bottom-up and are what the
// platform is handed; stored rows (StoredRowBytes) run top-down and are what every compressed
// form is laid out on.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

// BITMAPINFOHEADER, native order.
inline constexpr uint32_t kDibHeaderSize = 40;
inline constexpr uint32_t kDibSize = 0;         // u32, 40
inline constexpr uint32_t kDibWidth = 4;        // i32
inline constexpr uint32_t kDibHeight = 8;       // i32, positive
inline constexpr uint32_t kDibPlanes = 12;      // u16, 1
inline constexpr uint32_t kDibBitCount = 14;    // u16
inline constexpr uint32_t kDibCompression = 16; // u32, 0
inline constexpr uint32_t kDibSizeImage = 20;   // u32, bytes of pixels
inline constexpr uint32_t kDibClrUsed = 32;     // u32; 0 means 1 << depth below 9 bits
inline constexpr uint32_t kDibColorSize = 4;
inline constexpr uint32_t kDibSlackBytes = 4;
static_assert(kDibClrUsed + 8 == kDibHeaderSize);

// Sides are 16-bit fields in every record that holds a picture.
inline constexpr int32_t kDibMaxSide = 32767;

// Bytes in a row: display rows are padded to 32 bits, stored rows to 16 pixels.
uint32_t DibRowBytes(int32_t depth, int32_t width);
uint32_t StoredRowBytes(int32_t depth, int32_t width);
bool IsDibDepth(int32_t depth);  // 1, 4, 8, 16, 24 or 32

// Zeroed images of display rows or stored rows; 0 on a bad size or depth, or without memory.
MemRef NewDibImage(int32_t width, int32_t height, int32_t depth);
MemRef NewStoredImage(int32_t width, int32_t height, int32_t depth);
// A new image of the other layout: colour table copied below 9 bits, each row copying
// min(source row, target row) bytes. The source is left as it is.
MemRef StoredToDib(MemRef image);
MemRef DibToStored(MemRef image);
// Exchanges row k with row height-1-k. 0, or -1 with nothing flipped.
int32_t FlipDibRows(MemRef image);
// The same while passing every byte through `table` (256 entries); 8-bit images only. The middle
// row of an odd height goes through the table too.
int32_t FlipDibRowsMapped(MemRef image, const uint8_t* table);
// Turns 16- and 32-bit pixels between their stored order (a big-endian word; zero, red, green,
// blue) and their working order (a native word; blue, green, red, zero). Its own inverse; other
// depths are left alone.
int32_t SwapStoredPixelOrder(MemRef image);

// Accessors on a locked image.
int32_t DibWidth(const uint8_t* dib);
int32_t DibHeight(const uint8_t* dib);
int32_t DibDepth(const uint8_t* dib);
uint32_t DibColorCount(const uint8_t* dib);
uint32_t DibImageBytes(const uint8_t* dib);  // biSizeImage
// The row length the image was made with: biSizeImage / height, for either layout.
uint32_t DibImageRowBytes(const uint8_t* dib);
uint8_t* DibColors(uint8_t* dib);
const uint8_t* DibColors(const uint8_t* dib);
uint8_t* DibPixels(uint8_t* dib);
const uint8_t* DibPixels(const uint8_t* dib);
// The header agrees with itself and with a block of `blockSize` bytes.
bool IsDibLayoutValid(const uint8_t* dib, uint32_t blockSize);
