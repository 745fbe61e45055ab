// Where the card goes in the window: scaled by a whole number, centred, black around it. The same
// rule serves a window made to the card's size and a fullscreen display of any size, and turns
// pointer positions back into card pixels.
#pragma once

#include <cstdint>

#include "gfx/Surface.h"

struct ViewLayout {
    int32_t scale = 1;
    Rect dest;  // the card's place in the output, output pixels
};

// The largest whole scale at which a `cardWidth` x `cardHeight` card fits `outWidth` x `outHeight`
// (at least 1, even when the output is smaller than the card), centred.
ViewLayout FitCard(int32_t cardWidth, int32_t cardHeight, int32_t outWidth, int32_t outHeight);
// An output pixel's card pixel; positions left of or above the card come out negative.
Point CardPointFromOutput(const ViewLayout& layout, int32_t x, int32_t y);
