// The families of transitions, each run on the state of TransitionSteps.h. RunTransition picks
// one by id; those that can not get what they need run Fastest instead.
#pragma once

#include <cstdint>
#include <vector>

#include "gfx/Surface.h"

// Wipes.cpp: 3 Fastest; 1, 2, 4, 11 wipes; 8, 9 diagonals; 10 Blinds.
void RunFastest(int16_t id);
void RunWipe(int16_t id);
void RunDiagonal(int16_t id);
void RunBlinds(int16_t id);
// Bands.cpp: 15-18 barns and mouths; 19, 20 irises.
void RunBarn(int16_t id);
void RunIris(int16_t id);
// Cells.cpp: 7 Blocks, 12 Bars.
void RunBlocks(int16_t id);
void RunBars(int16_t id);
// MaskTransitions.cpp: 13 Rain; 23-26 pattern masks; and what all mask effects share.
void RunRain(int16_t id);
void RunPatternMask(int16_t id);
// The merge of a mask step: where a bit is set, the window takes the pixel of `picture` (window
// coordinates), or `color` when there is no picture; elsewhere it keeps what it has. Row y of
// `area` reads rows[y] (null: nothing), from bit `firstBit` on, the leftmost pixel in the high bit
// of a byte. Presents the area and takes the step.
void MergeMaskRows(const Rect& area, const Surface* picture, uint32_t color,
                   const std::vector<const uint8_t*>& rows, int32_t firstBit);
// Dissolve.cpp: 14.
void RunDissolve(int16_t id);
// Dissolves `area` of the window into `picture` (window coordinates), or into `color` without
// one, in 16 steps; false, with nothing done, when the area is too large to walk.
bool DissolveArea(const Rect& area, const Surface* picture, uint32_t color);
// Fades.cpp: 5, 6, 27 colour fades; 28 the fade of the whole display.
void RunColorFade(int16_t id);
void RunDisplayFade(int16_t id);
// Zoom.cpp: 21, 22.
void RunZoom(int16_t id);
