// Format 3 pictures: an image description and a JPEG stream behind the card's ColorTable
// (FindJpegStream in Background.h locates the stream; only the description's first word, its
// length, is read). libjpeg-turbo decodes and encodes the stream in memory.
//
// GetCardBackground leaves format 3 to these functions: a caller that gets kBackgroundJpeg from it
// asks DecodeJpegBackground with the same card, depth and flip.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

// A depth the codec does not make (1 and 4 bits).
inline constexpr int32_t kJpegUnsupported = 4;
// The quality at which converted stacks write their pictures.
inline constexpr int32_t kJpegBackgroundQuality = 50;

// The card's format 3 picture as GetCardBackground would give it: a new display image of `depth`
// bits (8, 16, 24 or 32) at the owner's card size, rows bottom-up when `flip` is set, 16- and
// 32-bit pixels in working order. At 8 bits the colours are quantised to at most 256 and the
// colour table holds them. A damaged stream, one of another size than the card, or any warning of
// libjpeg about the data gives kBackgroundDamaged and no image: the card shows without its
// picture. 0 with *image set, or kBackgroundNone, kBackgroundDamaged, kBackgroundNoMemory or
// kJpegUnsupported with *image 0.
int32_t DecodeJpegBackground(MemRef card, MemRef* image, int32_t depth, bool flip);

// The same from a bare JPEG stream, which must be `width` by `height` pixels.
int32_t DecodeJpegStream(const uint8_t* data, uint32_t length, int32_t width, int32_t height, int32_t depth,
                         bool flip, MemRef* image);

// Format 3 image data for a display image (rows bottom-up; 16- and 32-bit pixels in working order;
// 8 bits and under through its colour table): the 86-byte description for the image's size and
// depth, then a baseline JPEG stream at `quality` (1 to 100). 0 on failure.
MemRef EncodeJpegBackground(MemRef image, int32_t quality);
