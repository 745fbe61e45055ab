// Pictures the system names but does not supply (the alert pictures, and later cursors, arrows,
// patterns, the end splash) are our own drawings, kept as text under resources/pictures/ and
// compiled into the program, so that every host draws the same pixels without files.
//
// A picture's text, line by line:
//   # a comment (only before "rows"); blank lines are skipped there too
//   size W H             1 to 1024 each; the first line that isn't a comment
//   color C RRGGBB       one character (printable, not a blank) and its colour in hex
//   color C none         a transparent character
//   hotspot X Y          optional, for a cursor: the point that aims, inside the picture
//   rows                 then exactly H rows of W characters, each one given a colour above
// Nothing but blank lines may follow the rows. A "\r" before a line's end is ignored.
#pragma once

#include <string>
#include <string_view>

#include "gfx/BitMask.h"
#include "gfx/Region.h"
#include "gfx/Surface.h"

struct ResourcePicture {
    std::string name;
    Surface pixels;  // transparent pixels are white here
    BitMask mask;    // set where the picture is opaque, at (0, 0)
    bool hasHotSpot = false;
    int32_t hotSpotX = 0, hotSpotY = 0;
};

// Reads a picture's text into `out`. False for a text that breaks the rules above; `error` (if
// given) then says which line and why.
bool ParseResourcePicture(std::string_view text, ResourcePicture* out,
                          std::string* error = nullptr);

// The compiled-in picture called `name` (its file name without ".txt"); null for an unknown name
// or a text that doesn't parse. The pictures are read at the first call and stay for the run.
const ResourcePicture* FindResourcePicture(std::string_view name);

// Draws the opaque pixels of `picture` with its top-left corner at (x, y).
void DrawResourcePicture(Surface& target, const Clip& clip, int32_t x, int32_t y,
                         const ResourcePicture& picture);

// The generated table of texts, ended by a row of nulls.
struct EmbeddedPicture {
    const char* name;
    const char* text;
};
extern const EmbeddedPicture kEmbeddedPictures[];
