// Transitions over a grid of cells: Blocks, in a fixed scattered order, and Bars, where even
// columns fill from the top and odd columns from the bottom.
#include "transitions/TransitionFamilies.h"
#include "transitions/TransitionSteps.h"

namespace {

constexpr int32_t kBlockColumns = 16;
constexpr int32_t kBlockRows = 10;
constexpr int32_t kBlockSteps = 41;
constexpr int32_t kBlocksPerStep = 4;
constexpr int32_t kBlockPairs = 163;

// The order of the cells: column a / 5 and row b / 20 for the bytes a and b of equal index. The
// grid has 160 cells; (0, 0) comes twice and (15, 3) three times.
constexpr uint8_t kBlockX[kBlockPairs] = {
    75, 0,  20, 15, 25, 40, 75, 70, 0,  15, 50, 45, 0,  65, 35, 5,  40, 60, 70, 45, 40, 70, 20, 25,
    55, 55, 65, 75, 45, 50, 65, 35, 25, 5,  35, 45, 55, 70, 70, 15, 15, 35, 10, 70, 10, 20, 70, 10,
    10, 50, 5,  25, 45, 30, 30, 45, 35, 60, 40, 15, 55, 50, 35, 30, 65, 25, 65, 70, 55, 65, 10, 0,
    45, 25, 20, 75, 55, 55, 10, 20, 15, 20, 65, 15, 5,  30, 10, 50, 70, 30, 60, 5,  60, 5,  45, 75,
    55, 50, 60, 5,  20, 60, 35, 65, 25, 40, 30, 50, 5,  25, 30, 25, 20, 45, 5,  40, 40, 0,  15, 40,
    40, 50, 0,  55, 20, 45, 15, 5,  30, 30, 40, 60, 50, 0,  35, 60, 0,  65, 10, 75, 70, 30, 75, 55,
    75, 35, 25, 20, 65, 0,  15, 60, 10, 60, 0,  35, 50, 75, 10, 0,  75, 75, 75};
constexpr uint8_t kBlockY[kBlockPairs] = {
    60,  160, 160, 60,  160, 0,   100, 160, 0,   40,  140, 100, 180, 160, 120, 0,   180, 20,  180,
    40,  120, 60,  0,   20,  180, 140, 100, 80,  140, 160, 60,  0,   40,  80,  40,  80,  100, 80,
    120, 180, 0,   140, 180, 0,   20,  40,  100, 140, 80,  100, 120, 180, 120, 80,  0,   60,  100,
    60,  40,  160, 160, 40,  180, 40,  20,  100, 180, 140, 0,   80,  160, 0,   20,  140, 180, 0,
    120, 20,  40,  100, 80,  120, 0,   140, 40,  120, 120, 120, 20,  140, 140, 160, 160, 60,  180,
    160, 80,  180, 80,  140, 20,  40,  60,  140, 120, 20,  180, 0,   100, 0,   100, 80,  80,  160,
    20,  140, 100, 20,  120, 160, 80,  20,  40,  40,  60,  0,   20,  180, 160, 60,  60,  120, 60,
    120, 20,  0,   140, 40,  100, 120, 40,  20,  140, 60,  20,  80,  60,  140, 120, 100, 100, 180,
    0,   100, 80,  160, 80,  60,  60,  60,  180, 60,  40};

constexpr int32_t kBarPairs = 8;
constexpr int32_t kBarRows = 32;

}  // namespace

void RunBlocks(int16_t) {
    const Rect r = GetTransitionState().rect;
    // Whole pixels, each cell a pixel larger than its pitch so that neighbours meet; the last
    // row is stretched to the bottom when the division leaves a few rows over.
    const auto cw = static_cast<float>(r.Width() / kBlockColumns + 1);
    const auto ch = static_cast<float>(r.Height() / kBlockRows);
    const auto cut = [](float v) { return static_cast<int32_t>(v); };
    BeginSteps(kBlockSteps);
    for (int32_t pair = 0; pair < kBlockPairs; ++pair) {
        Rect cell;
        cell.left = r.left + cut(static_cast<float>(kBlockX[pair] / 5) * cw);
        cell.top = r.top + cut(static_cast<float>(kBlockY[pair] / 20) * ch);
        cell.right = cell.left + cut(cw) + 1;
        cell.bottom = cell.top + cut(ch) + 1;
        const int32_t shortBy = r.bottom - cell.bottom;
        if (shortBy > 0 && static_cast<float>(shortBy) < ch) cell.bottom = r.bottom;
        CopyNewRect(cell);
        if (pair % kBlocksPerStep == 0) TakeStep();
    }
}

void RunBars(int16_t) {
    const Rect r = GetTransitionState().rect;
    const bool narrow = r.Width() < 2 * kBarPairs, low = r.Height() < kBarRows;
    const float dx = narrow ? 1.0f : static_cast<float>(r.Width()) / (2 * kBarPairs);
    const int32_t pairs = narrow ? r.Width() : kBarPairs;
    const float dy = low ? 1.0f : static_cast<float>(r.Height()) / kBarRows;
    const int32_t rows = low ? r.Height() : kBarRows;
    const auto cut = [](float v) { return static_cast<int32_t>(v); };
    float down = 0, up = 0;  // how far A has come from the top and B from the bottom
    BeginSteps(rows);
    for (int32_t k = 0; k < rows; ++k) {
        float x = 0;
        for (int32_t j = 0; j < pairs; ++j) {
            CopyNewRect(
                {r.left + cut(x), r.top + cut(down), r.left + cut(x + dx), r.top + cut(down + dy)});
            CopyNewRect({r.left + cut(x + dx), r.bottom - cut(up + dy), r.left + cut(x + 2 * dx),
                         r.bottom - cut(up)});
            x += 2 * dx;
        }
        TakeStep();
        down += dy;
        up += dy;
    }
}
