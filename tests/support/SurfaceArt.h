// Small surfaces as text, for tests that pin every pixel: '.' white, '#' black, 'r', 'g', 'b' pure
// red, green and blue, '?' anything else. Rows end with '\n', so a failing comparison prints a
// picture.
#pragma once

#include <initializer_list>
#include <string>

#include "gfx/Surface.h"

inline constexpr uint32_t kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x0000FF;

inline std::string Art(const Surface& s) {
    std::string text;
    for (int32_t y = 0; y < s.height; ++y) {
        for (int32_t x = 0; x < s.width; ++x) {
            const uint32_t c = s.Row(y)[x];
            text += c == kWhite   ? '.'
                    : c == kBlack ? '#'
                    : c == kRed   ? 'r'
                    : c == kGreen ? 'g'
                    : c == kBlue  ? 'b'
                                  : '?';
        }
        text += '\n';
    }
    return text;
}

inline std::string Art(std::initializer_list<const char*> rows) {
    std::string text;
    for (const char* row : rows) (text += row) += '\n';
    return text;
}

// A surface drawn from such rows.
inline Surface FromArt(std::initializer_list<const char*> rows) {
    Surface s(static_cast<int32_t>(std::string(*rows.begin()).size()),
              static_cast<int32_t>(rows.size()));
    int32_t y = 0;
    for (const char* row : rows) {
        for (int32_t x = 0; row[x]; ++x) {
            const char c = row[x];
            s.Row(y)[x] = c == '#'   ? kBlack
                          : c == 'r' ? kRed
                          : c == 'g' ? kGreen
                          : c == 'b' ? kBlue
                                     : kWhite;
        }
        ++y;
    }
    return s;
}
