// The emulated display depth: what the system believes the screen has. The renderer always draws
// 32-bit pixels; these give them the look of a shallower display.
#pragma once

#include <cstdint>

#include "gfx/Surface.h"

// A 16-bit display pixel (0RRRRRGGGGGBBBBB, as a 16-bit picture holds it) as 0x00RRGGBB. Each
// 5-bit level repeats its top bits below, so 31 is 255 and white stays white.
inline constexpr uint32_t Rgb555ToRgb(uint16_t v) {
    const uint32_t r = v >> 10 & 31, g = v >> 5 & 31, b = v & 31;
    return (r << 3 | r >> 2) << 16 | (g << 3 | g >> 2) << 8 | (b << 3 | b >> 2);
}
inline constexpr uint16_t RgbToRgb555(uint32_t c) {
    return static_cast<uint16_t>((c >> 9 & 0x7C00) | (c >> 6 & 0x03E0) | (c >> 3 & 0x001F));
}
// What a colour becomes on a 16-bit display: Rgb555ToRgb(RgbToRgb555(c)), a channel at a time.
// The one 16-bit rule: display pixels and the palette a 16-bit display reports both go through it.
inline constexpr uint32_t QuantizeTo555(uint32_t c) {
    const uint32_t high = c & 0xF8F8F8;
    return high | (high >> 5 & 0x070707);
}

// Gives the rectangle's pixels the colours a display of `depth` bits shows. At 16 each pixel goes
// through 5-5-5. At 8 nothing changes: an 8-bit picture is drawn through the card's palette, which
// the emulated display realises exactly, so its pixels already hold the display's colours. At 24
// and 32 nothing changes either.
void QuantizeToDepth(Surface& s, const Rect& r, int32_t depth);
