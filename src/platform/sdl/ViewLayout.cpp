#include "platform/sdl/ViewLayout.h"

#include <algorithm>

namespace {

// Rounds towards minus infinity, so that the pixel left of the card is -1 and not 0.
int32_t FloorDiv(int32_t a, int32_t b) {
    const int32_t q = a / b;
    return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

}  // namespace

ViewLayout FitCard(int32_t cardWidth, int32_t cardHeight, int32_t outWidth, int32_t outHeight) {
    ViewLayout layout;
    const int32_t w = std::max(cardWidth, 1);
    const int32_t h = std::max(cardHeight, 1);
    layout.scale = std::max(1, std::min(outWidth / w, outHeight / h));
    const int32_t shownW = w * layout.scale;
    const int32_t shownH = h * layout.scale;
    // Halves rounded down on both axes: an odd spare pixel goes to the right and the bottom.
    layout.dest.left = FloorDiv(outWidth - shownW, 2);
    layout.dest.top = FloorDiv(outHeight - shownH, 2);
    layout.dest.right = layout.dest.left + shownW;
    layout.dest.bottom = layout.dest.top + shownH;
    return layout;
}

Point CardPointFromOutput(const ViewLayout& layout, int32_t x, int32_t y) {
    return {FloorDiv(x - layout.dest.left, layout.scale),
            FloorDiv(y - layout.dest.top, layout.scale)};
}
