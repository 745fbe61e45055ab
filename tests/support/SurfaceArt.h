// Small surfaces as text, for tests that pin every pixel: '.' white, '#' black, 'r', 'g', 'b' pure
// red, green and blue, '?' anything else. Rows end with '\n', so a failing comparison prints a
// picture.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>

#include "gfx/Surface.h"

inline constexpr uint32_t kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x0000FF;
inline constexpr std::pair<char, uint32_t> kArtColors[] = {{'.', kWhite}, {'#', kBlack}, {'r', kRed}, {'g', kGreen},
                                                           {'b', kBlue}};

inline std::string Art(const Surface& s) {
    std::string text;
    for (int32_t y = 0; y < s.height; ++y) {
        for (int32_t x = 0; x < s.width; ++x) {
            char c = '?';
            for (const auto& [letter, color] : kArtColors) c = s.Row(y)[x] == color ? letter : c;
            text += c;
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

// The box of the pixels in which two surfaces of one size differ; empty when none do.
inline Rect ChangedBox(const Surface& a, const Surface& b) {
    Rect r;
    for (int32_t y = 0; y < a.height; ++y) {
        for (int32_t x = 0; x < a.width; ++x) {
            if (a.Row(y)[x] != b.Row(y)[x]) r = UnionRect(r, {x, y, x + 1, y + 1});
        }
    }
    return r;
}

// A surface drawn from such rows; other letters are white.
inline Surface FromArt(std::initializer_list<const char*> rows) {
    Surface s(static_cast<int32_t>(std::string(*rows.begin()).size()), static_cast<int32_t>(rows.size()));
    int32_t y = 0;
    for (const char* row : rows) {
        for (int32_t x = 0; row[x]; ++x) {
            for (const auto& [letter, color] : kArtColors) s.Row(y)[x] = row[x] == letter ? color : s.Row(y)[x];
        }
        ++y;
    }
    return s;
}
