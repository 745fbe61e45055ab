// Block transfers onto 32-bit surfaces: copies between surfaces, raster operations, copies through
// 1-bit masks, stretching, and pictures (DibImage) drawn at every depth. Each is limited to a Clip
// and to the destination; parts of a source rectangle outside the source copy nothing.
#pragma once

#include <cstdint>

#include "gfx/BitMask.h"
#include "gfx/Draw.h"
#include "gfx/Region.h"
#include "gfx/Surface.h"

// Raster operations of a source S onto a destination D, bit by bit on 0x00RRGGBB pixels (the
// unused top byte stays 0). Named as the platform names them.
enum class Rop : uint8_t {
    SrcCopy,      // S
    NotSrcCopy,   // ~S
    SrcAnd,       // D & S
    SrcPaint,     // D | S
    SrcInvert,    // D ^ S
    SrcErase,     // S & ~D
    NotSrcErase,  // ~(D | S)
    MergePaint,   // ~S | D
    DstInvert,    // ~D
};

uint32_t ApplyRop(Rop rop, uint32_t dst, uint32_t src);

// The block `from` of `src` to (x, y) of `dst`. Safe when both are the same surface and overlap.
void CopyRect(Surface& dst, const Clip& clip, int32_t x, int32_t y, const Surface& src,
              const Rect& from);
void BlitRop(Surface& dst, const Clip& clip, int32_t x, int32_t y, const Surface& src,
             const Rect& from, Rop rop);

// As CopyRect, through a mask standing on the destination at (mask.left, mask.top): where a bit
// is set (1) the source pixel is copied; where it is clear, or outside the mask, the destination
// stays as it is.
void MaskedCopy(Surface& dst, const Clip& clip, int32_t x, int32_t y, const Surface& src,
                const Rect& from, const BitMask& mask);
// The mask as a picture of two colours, combined with the destination by `rop`: a set bit is
// `oneColor`, a clear bit `zeroColor`. (The platform turns a 1 into the background colour and a 0
// into the text colour.) Hilite of a picture button: (kWhite, kBlack, SrcInvert) inverts the set
// bits; (kBlack, kWhite, SrcAnd) paints them black.
void BlitMask(Surface& dst, const Clip& clip, const BitMask& mask, uint32_t oneColor,
              uint32_t zeroColor, Rop rop);
// Only the set bits, in `color`, or exclusive-ored with it.
void FillMask(Surface& dst, const Clip& clip, const BitMask& mask, uint32_t color,
              PenMode mode = PenMode::Copy);

// `from` of `src` scaled to `to` of `dst` by nearest neighbour, each destination pixel taking
// the source pixel under its centre: destination column to.left + i shows source column
// from.left + (2i + 1) * from.Width() / (2 * to.Width()), and the same for rows. Nothing unless
// `from` lies in `src`.
void StretchCopy(Surface& dst, const Clip& clip, const Rect& to, const Surface& src,
                 const Rect& from);

// Pictures. `dib` is a locked display image (DibImage.h) whose block holds its pixels. Pixels of
// 1, 4 and 8 bits are looked up in `colors`, 256 entries of 0x00RRGGBB (the card's palette, given
// by the caller); null takes the image's own colour table. 16-bit pixels are 5-5-5, 24 and 32 bits
// B, G, R(, 0). `from` is in picture coordinates, row 0 at the top. Each returns 0, or -1 for an
// image whose header can not be drawn from (nothing is drawn).
int32_t DrawDib(Surface& dst, const Clip& clip, int32_t x, int32_t y, const uint8_t* dib,
                const uint32_t* colors, Rop rop = Rop::SrcCopy);
int32_t DrawDibPart(Surface& dst, const Clip& clip, int32_t x, int32_t y, const uint8_t* dib,
                    const Rect& from, const uint32_t* colors, Rop rop = Rop::SrcCopy);
// Scaled as StretchCopy scales (the platform's StretchDIBits in colour-on-colour mode).
int32_t StretchDib(Surface& dst, const Clip& clip, const Rect& to, const uint8_t* dib,
                   const Rect& from, const uint32_t* colors, Rop rop = Rop::SrcCopy);
// The image's colour table as 256 colours 0x00RRGGBB, black past its last entry.
void LoadDibColors(const uint8_t* dib, uint32_t colors[256]);
// A surface of the image's size holding the image; empty for an image DrawDib refuses.
Surface SurfaceFromDib(const uint8_t* dib, const uint32_t* colors);
