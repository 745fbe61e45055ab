// Re-indexing pictures: an image's indices into another palette, and off the reserved entries that
// a fade cannot animate.
#pragma once

#include <cstdint>

#include "gfx/Palette.h"
#include "memory/MemRef.h"

// Turns each index of a 4- or 8-bit image into the index of `palette` nearest to the image's own
// colour for it (the first 16 entries at 4 bits), and then gives the image the palette's colours.
// 0, or -1 for an image of another depth.
int32_t RemapImageToPalette(MemRef image, const Palette& palette);

// Moves an 8-bit image off the 20 reserved entries (0 to 9 and 246 to 255) onto the colours of
// 10 to 245 nearest to theirs by the eye's weights (2 blue, 4 green, 3 red). The colour table
// stays. 0, or -1 for an image of another depth.
int32_t MapReservedColors(MemRef image);
