// Transitions: the 28 ways a new picture replaces what the window shows, step by step on the host
// clock. Id 3 is "Fastest", four bands, and also what every other id falls back to; ids outside
// 1-28 run as 3.
#pragma once

#include <cstdint>

#include "gfx/Surface.h"

inline constexpr int16_t kTransitionFastest = 3;
inline constexpr int16_t kTransitionCount = 28;

// Shows `rect` of `source` (window coordinates on both) on the window with effect `id` at `speed`
// (8, 16 or 32: the whole effect takes speed * 8 ticks; any other value counts as 8). With
// `fadePalette` every step also blends the palette from the old card's colours to the new.
void RunTransition(int16_t id, int16_t speed, const Rect& rect, const Surface& source,
                   bool fadePalette);
// Before a card change: readies the colour fades (5, 6, 27) at 8 bits by moving the window's
// pixels off the colours a fade could not animate.
void PrepareFade(int16_t id);

// Set by each action before it runs: the centre of its rectangle, where the zooms start and end,
// and the colour of "Fade to button color". The colour goes back to black after every transition.
void SetActionCenter(Point center);
void SetTransitionFadeColor(uint8_t red, uint8_t green, uint8_t blue);
