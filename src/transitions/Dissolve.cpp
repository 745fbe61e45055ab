// Dissolve: the pixels of the rectangle in the order of a shift register, in 16 steps.
#include "transitions/Dissolve.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "gfx/BitMask.h"
#include "gfx/Blit.h"
#include "transitions/Transition.h"
#include "transitions/TransitionFamilies.h"
#include "transitions/TransitionSteps.h"

namespace {

// Maximal-length taps by register length.
constexpr uint32_t kTaps[kDissolveMaxBits + 1] = {
    0,       0,       3,       6,        0xC,      0x14,     0x30,     0x60,      0xB8,
    0x110,   0x240,   0x500,   0xCA0,    0x1B00,   0x3500,   0x6000,   0xB400,    0x12000,
    0x20400, 0x72000, 0x90000, 0x140000, 0x300000, 0x420000, 0xD80000, 0x1200000, 0x3880000,
};

constexpr int32_t kDissolveSteps = 16;
// The last step also sets these first bytes of the walk, which the register never reaches
// (value 0) or reaches late.
constexpr size_t kDissolveFinalBytes = 34;

// The base-2 logarithm of the smallest power of two that is at least `v` (v >= 1).
int32_t CeilLog2(int32_t v) {
    int32_t k = 0;
    while ((int64_t{1} << k) < v) ++k;
    return k;
}

}  // namespace

uint32_t DissolveTaps(int32_t k) {
    return k >= 2 && k <= kDissolveMaxBits ? kTaps[k] : 0;
}

// The walk covers a power-of-two area at least 16 pixels wide: bit b of the walk is bit b of a
// stream that the rectangle's rows cut, from the bottom row up, each the row length of a 1-bit
// picture of the rectangle's width. Bits the stream lacks are never reached. Each step sets one
// value fewer than it counts, so the last values of the walk are never reached either: those
// pixels keep the old picture, unless they are in the top row, which is copied at the end.
bool DissolveArea(const Rect& area, const Surface* picture, uint32_t color) {
    const int32_t w = area.Width(), h = area.Height();
    if (w <= 0 || h <= 0) return true;
    const int32_t k = CeilLog2(std::max(w, 16)) + CeilLog2(h);
    if (k > kDissolveMaxBits) return false;
    const uint32_t bits = 1u << k;
    const uint32_t taps = DissolveTaps(k);
    std::vector<uint8_t> stream(bits / 8);
    // The rows of a 1-bit picture of the area's width, bottom-up, as far as the stream goes.
    const auto rowBytes = static_cast<size_t>(MaskRowBytes(w));
    std::vector<const uint8_t*> rows(static_cast<size_t>(h));
    for (int32_t y = 0; y < h; ++y) {
        const size_t from = static_cast<size_t>(h - 1 - y) * rowBytes;
        if (from + rowBytes <= stream.size()) rows[static_cast<size_t>(y)] = stream.data() + from;
    }

    const uint32_t perStep = (bits - 1) / kDissolveSteps + 1;
    uint32_t remaining = bits - 1;
    uint32_t value = 1;
    BeginSteps(kDissolveSteps);
    while (remaining != 0) {
        // Only what is new at this step: the window keeps the rest.
        std::fill(stream.begin(), stream.end(), uint8_t{0});
        const uint32_t count = std::min(perStep, remaining);
        for (uint32_t i = 1; i < count; ++i) {
            stream[value >> 3] |= static_cast<uint8_t>(0x80u >> (value & 7));
            value = NextDissolveValue(value, taps);
        }
        remaining -= count;
        if (remaining == 0) {
            std::memset(stream.data(), 0xFF, std::min(kDissolveFinalBytes, stream.size()));
        }
        MergeMaskRows(area, picture, color, rows, 0);
    }
    TransitionState& s = GetTransitionState();
    const Rect topRow{area.left, area.top, area.right, area.top + 1};
    if (picture) {
        CopyRect(*s.window, topRow, topRow.left, topRow.top, *picture, topRow);
    } else {
        FillRect(*s.window, topRow, topRow, color);
    }
    NoteChanged(topRow);
    return true;
}

void RunDissolve(int16_t) {
    TransitionState& s = GetTransitionState();
    if (!DissolveArea(s.rect, s.source, 0)) RunFastest(kTransitionFastest);
}
