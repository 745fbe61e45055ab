// Format 3 pictures: an image description and a JPEG stream behind the card's ColorTable
// (FindJpegStream in Background.h locates the stream). The JPEG codec comes with picture import;
// until it is wired in, JpegBackground.cpp answers kJpegUnsupported.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

inline constexpr int32_t kJpegUnsupported = 4;
// The quality at which converted stacks write their pictures.
inline constexpr int32_t kJpegBackgroundQuality = 50;

// The card's format 3 picture as GetCardBackground would give it: a display image of `depth` bits,
// flipped to bottom-up rows when `flip` is set. 0 with *image set, or an error with *image 0.
int32_t DecodeJpegBackground(MemRef card, MemRef* image, int32_t depth, bool flip);
// Format 3 image data for a display image: the description, then the JPEG stream. 0 on failure.
MemRef EncodeJpegBackground(MemRef image, int32_t quality);
