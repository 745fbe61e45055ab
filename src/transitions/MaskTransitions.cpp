// Transitions through a 1-bit mask: each step copies the new picture's pixels where the mask is
// set and leaves the rest, so a mask only needs to name what is new at its step. The window keeps
// what it received, which makes it its own work image. Rain and the four 8 by 8 pattern effects.
#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

#include "gfx/BitMask.h"
#include "subsystems/Subsystems.h"
#include "transitions/Transition.h"
#include "transitions/TransitionFamilies.h"
#include "transitions/TransitionSteps.h"

namespace {

constexpr int32_t kPatternFrames = 8;

constexpr uint8_t kDiamondDissolve[kPatternFrames][8] = {
    {0x00, 0x00, 0x10, 0x38, 0x38, 0x10, 0x00, 0x00},
    {0x00, 0x10, 0x18, 0x3C, 0x7C, 0x38, 0x10, 0x00},
    {0x00, 0x10, 0x38, 0x7C, 0xFC, 0x7C, 0x38, 0x10},
    {0x10, 0x38, 0x7C, 0x7E, 0xFF, 0x7C, 0x38, 0x10},
    {0x10, 0x38, 0x7C, 0xFF, 0xFF, 0xFE, 0x7C, 0x38},
    {0x38, 0x7C, 0xFE, 0xFF, 0xFF, 0xFE, 0xFC, 0x78},
    {0x3E, 0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0x7C},
    {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},
};

constexpr uint8_t kBowTies[kPatternFrames][8] = {
    {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01},
    {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80},
    {0xC1, 0xE2, 0x64, 0x38, 0x18, 0x2C, 0x46, 0x83},
    {0xC3, 0xE7, 0x6E, 0x38, 0x38, 0x6C, 0xC6, 0x83},
    {0xC3, 0xE7, 0xFE, 0x78, 0x3C, 0x7E, 0xCF, 0x83},
    {0xC7, 0xEF, 0xFF, 0x7C, 0x7C, 0xFE, 0xEF, 0xC3},
    {0xE7, 0xFF, 0xFF, 0x7E, 0x7E, 0xFF, 0xFF, 0xE7},
    {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},
};

// Frame `frame` of effect `id`: eight rows, the top first, the leftmost pixel in the high bit.
void PatternFrame(int16_t id, int32_t frame, uint8_t rows[8]) {
    for (int32_t r = 0; r < 8; ++r) {
        const int32_t turn = (r + frame) % 8;
        switch (id) {
            case 23:
                rows[r] = static_cast<uint8_t>(1u << turn);
                break;  // Razor left
            case 24:
                rows[r] = static_cast<uint8_t>(1u << (7 - turn));
                break;  // Razor right
            case 25:
                rows[r] = kBowTies[frame][r];
                break;
            default:
                rows[r] = kDiamondDissolve[frame][r];
                break;
        }
    }
}

// Bits b to b + 7 of a row, the first byte's high bit on top; only `count` bytes are read.
uint64_t LoadBits(const uint8_t* bytes, int32_t count) {
    uint64_t word = 0;
    for (int32_t i = 0; i < count; ++i) word |= uint64_t{bytes[i]} << (56 - 8 * i);
    return word;
}

// Calls put(x) for each set bit x of [firstBit, firstBit + n) of `bits`, x counted from firstBit,
// and run(x, 64) for 64 set bits in a row. Words of 64 bits keep the loops short and their
// branches predictable on scattered bits.
template <class Put, class Run>
void ForEachSetBit(const uint8_t* bits, int32_t firstBit, int32_t n, Put&& put, Run&& run) {
    const int32_t endByte = (firstBit + n + 7) >> 3;
    for (int32_t b = firstBit >> 3; b < endByte; b += 8) {
        uint64_t word = LoadBits(bits + b, std::min(8, endByte - b));
        const int32_t x = b * 8 - firstBit;  // the pixel of the word's top bit
        if (x < 0) word &= ~uint64_t{0} >> -x;
        if (n - x < 64) word &= ~(~uint64_t{0} >> (n - x));
        if (word == ~uint64_t{0}) {
            run(x, 64);
            continue;
        }
        for (; word; word &= word - 1) put(x + 63 - std::countr_zero(word));
    }
}

// Rain's drawing is built for a tile of this size.
constexpr int32_t kRainTileWidth = 512;
constexpr int32_t kRainTileBytes = kRainTileWidth / 8;
constexpr int32_t kRainTileHeight = 342;
constexpr int32_t kRainPasses = 8;
constexpr int32_t kRainOrder[32] = {19, 3, 29, 24, 14, 20, 13, 23, 8, 15, 6, 25, 5,  16, 4,  12,
                                    27, 0, 28, 26, 17, 21, 18, 30, 9, 31, 1, 7,  22, 11, 10, 2};

}  // namespace

// The pixels a mask names lie all over the area, so the whole area is presented.
void MergeMaskRows(const Rect& area, const Surface* picture, uint32_t color,
                   const std::vector<const uint8_t*>& rows, int32_t firstBit) {
    TransitionState& s = GetTransitionState();
    GetSubsystems().UpdateSounds();
    const Rect part =
        IntersectRect(IntersectRect(area, s.window->Bounds()), picture ? picture->Bounds() : area);
    for (int32_t y = part.top; y < part.bottom && part.left < part.right; ++y) {
        const auto index = static_cast<size_t>(y - area.top);
        if (index >= rows.size() || !rows[index]) continue;
        const int32_t from = firstBit + part.left - area.left;
        uint32_t* d = s.window->Row(y) + part.left;
        if (picture) {
            const uint32_t* p = picture->Row(y) + part.left;
            ForEachSetBit(
                rows[index], from, part.Width(), [&](int32_t x) { d[x] = p[x]; },
                [&](int32_t x, int32_t count) {
                    std::memcpy(d + x, p + x, static_cast<size_t>(count) * sizeof *d);
                });
        } else {
            ForEachSetBit(
                rows[index], from, part.Width(), [&](int32_t x) { d[x] = color; },
                [&](int32_t x, int32_t count) { std::fill(d + x, d + x + count, color); });
        }
    }
    NoteChanged(area);
    TakeStep();
}

void RunPatternMask(int16_t id) {
    const Rect r = GetTransitionState().rect;
    // Eight rows of the tiled pattern, each for every eighth row of the rectangle.
    const auto rowBytes = static_cast<size_t>(r.Width() + 7) / 8;
    std::vector<uint8_t> tile(8 * rowBytes);
    std::vector<const uint8_t*> rows(static_cast<size_t>(r.Height()));
    for (size_t y = 0; y < rows.size(); ++y) rows[y] = tile.data() + y % 8 * rowBytes;
    BeginSteps(kPatternFrames);
    for (int32_t frame = 0; frame < kPatternFrames; ++frame) {
        uint8_t pattern[8];
        PatternFrame(id, frame, pattern);
        for (size_t row = 0; row < 8; ++row) {
            std::memset(tile.data() + row * rowBytes, pattern[row], rowBytes);
        }
        MergeMaskRows(r, GetTransitionState().source, 0, rows, 0);
    }
}

// Rain falls in the window's own coordinates: the mask stands at (0, 0) and reaches at least the
// rectangle's far corner, every row a repeat of the first 512 pixels and every row below 342 a
// repeat of the one 342 above. Eight passes of nibbles falling down the columns in a scattered
// order, each adding to the last; a step copies what its pass added.
void RunRain(int16_t) {
    const Rect r = GetTransitionState().rect;
    BitMask mask(std::max(r.right, kRainTileWidth), std::max(r.bottom, kRainTileHeight));
    if (mask.bits.empty()) {
        RunFastest(kTransitionFastest);
        return;
    }
    std::vector<uint8_t> shown(mask.bits.size()), added(mask.bits.size());
    const auto stride = static_cast<size_t>(mask.stride);
    std::vector<const uint8_t*> rows(static_cast<size_t>(r.Height()));
    for (size_t y = 0; y < rows.size(); ++y) {
        rows[y] = added.data() + (static_cast<size_t>(r.top) + y) * stride;
    }
    const auto wrap = [](int32_t row) { return row < 0 ? row + kRainTileHeight : row; };
    BeginSteps(kRainPasses);
    for (int32_t s = 0; s < 4 * kRainPasses; s += 4) {
        for (int32_t step = 0; step < kRainTileHeight + 2; ++step) {
            const int32_t t = kRainOrder[(step + s) % 32];
            const uint8_t nibble = t % 2 ? 0x0F : 0xF0;
            const int32_t k = t / 2;
            const int32_t p = wrap(kRainTileHeight - 1 - step);
            for (int32_t q = 0; q < 4; ++q) {
                uint8_t* row = mask.Row(wrap(p - q));
                row[k] |= nibble;
                row[31 - k] |= nibble;
                row[32 + k] |= nibble;
                row[63 - k] |= nibble;
            }
        }
        for (int32_t y = 0; y < kRainTileHeight; ++y) {
            uint8_t* row = mask.Row(y);
            for (size_t i = kRainTileBytes; i < stride; ++i) row[i] = row[i - kRainTileBytes];
        }
        for (int32_t y = kRainTileHeight; y < mask.height; ++y) {
            std::memcpy(mask.Row(y), mask.Row(y - kRainTileHeight), stride);
        }
        for (size_t i = 0; i < added.size(); ++i) {
            added[i] = static_cast<uint8_t>(mask.bits[i] & ~shown[i]);
            shown[i] = mask.bits[i];
        }
        MergeMaskRows(r, GetTransitionState().source, 0, rows, r.left);
    }
}
