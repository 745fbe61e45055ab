// Buttons: the live record built from a chunk, its hit region, drawing of shapes 0-7 with name and
// icon, the press feedback, and the masks of picture buttons.
#pragma once

#include <cstdint>

#include "gfx/BitMask.h"
#include "gfx/Region.h"
#include "gfx/Surface.h"
#include "memory/MemRef.h"

struct DisplayItem;

// Fills the button fields of `item` from the native chunk at `offset` of `card` (name, shape,
// colours, icon, mask of shapes 5-7, region). False when the chunk can't be read. The icon is a
// private copy of the 'Icon' record of the current store, which the live record then owns.
bool FillButtonItem(DisplayItem* item, MemRef card, uint32_t offset);
// Shapes 0-3 by their outline; shape 4 and the picture buttons by their icon and name.
Region HitRegion(const DisplayItem& item);
// The region of a chunk for drawing: a rectangle unless a button of shape below 4 or, withShape,
// of any shape but 4.
Region ItemRegion(MemRef card, uint32_t offset, bool withShape);

// `palette`: the card's 256 colours. `itemBorders`: the authoring option that outlines shapes 4-7.
void DrawButton(Surface& target, const Clip& clip, const DisplayItem& item, const uint32_t* palette,
                bool itemBorders);
// Its own undoing: region, rectangle or mask inverted.
void InvertItem(Surface& target, const Clip& clip, const DisplayItem& item);

// A mask from a picture button's 24-byte head and rows; false for a head that doesn't fit.
bool MakeMask(const uint8_t* source, uint32_t size, BitMask* mask, int32_t* width, int32_t* height);

// Icon records: the image of an icon file, little-endian as it stands. `height` is the header's,
// which counts the colour and the mask rows: twice the picture's own. Not valid (and of no size)
// for a record that isn't an icon file or whose picture doesn't lie inside it.
struct IconInfo {
    int32_t width = 0, height = 0, depth = 0;
    bool valid = false;
};
IconInfo ReadIconInfo(const uint8_t* record, uint32_t size);
// The picture with its top-left corner at (x, y), transparent where its mask is set.
void DrawIcon(Surface& target, const Clip& clip, int32_t x, int32_t y, const uint8_t* record,
              uint32_t size, const uint32_t* palette);
