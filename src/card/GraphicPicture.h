// A graphic item's own picture, and the head fields of a graphic chunk that drawing reads.
//
// The picture stands at the very end of the chunk, before the pad byte: width and height (16-bit),
// four zero bytes, then the pixels, packed by rows or by runs as item flag 16 says, on the card's
// picture depth.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

inline constexpr uint32_t kGraphicPictureHeadSize = 8;

// Head fields of a graphic chunk that the reader keeps native as plain words.
inline constexpr uint32_t kGraphicFrameColor = 16;  // 1-based palette index; 0 names no colour
inline constexpr uint32_t kGraphicFrameWidth = 18;  // pixels; 0 draws no frame
inline constexpr uint32_t kGraphicCursorId = 58;    // cursor over the graphic; 0 none
// itemFlags of a graphic: its zero pixels let the card show through.
inline constexpr uint16_t kGraphicFlagTransparent = 2;

// ReadGraphicPicture's results besides 0.
inline constexpr int32_t kGraphicPictureNoMemory = -1;
inline constexpr int32_t kGraphicPictureNone = 1;     // pictureSize 0: no pixels of its own
inline constexpr int32_t kGraphicPictureMisfit = 2;   // the picture does not fit its chunk
inline constexpr int32_t kGraphicPictureBadSize = 3;  // a side of 0 or less, or too large
inline constexpr int32_t kGraphicPictureDamaged = 4;  // the packed pixels do not make the picture

struct GraphicPictureHead {
    int32_t width = 0, height = 0, depth = 0;
    uint16_t itemFlags = 0;
};

// The depth a card's pictures are laid out at: the card's own depth field, else the stack's; 24 is
// kept as 32, as the display keeps it. 8 when neither names a picture depth.
int32_t CardPictureDepth(const uint8_t* card);

// The graphic chunk at `itemOffset` of `card` as a new display image at the card's picture depth:
// rows bottom-up when `flip` is set (else top-down in memory), 16- and 32-bit pixels in working
// order, and below 9 bits the colour table from the card's palette (the default palette for a card
// without one; at 1 bit black and white). 0 with *image set, or a result above with *image 0;
// `head`, when given, tells what was found of the picture even on failure.
int32_t ReadGraphicPicture(MemRef card, uint32_t itemOffset, MemRef* image, bool flip,
                           GraphicPictureHead* head = nullptr);
