// The one kind of picture the renderer draws into: 32-bit pixels in memory, the same on every host.
// A pixel is 0x00RRGGBB in a native 32-bit word (bytes B, G, R, 0 in memory), rows top-down.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

struct Rect {
    int32_t left = 0, top = 0, right = 0, bottom = 0;
    int32_t Width() const { return right - left; }
    int32_t Height() const { return bottom - top; }
    bool IsEmpty() const { return right <= left || bottom <= top; }
    bool Contains(int32_t x, int32_t y) const {
        return x >= left && x < right && y >= top && y < bottom;
    }
    friend bool operator==(const Rect& a, const Rect& b) {
        return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
    }
    friend bool operator!=(const Rect& a, const Rect& b) { return !(a == b); }
};

struct Point {
    int32_t x = 0, y = 0;
    friend bool operator==(const Point& a, const Point& b) { return a.x == b.x && a.y == b.y; }
};

// The common part; empty rectangles may come out with right < left, so test with IsEmpty().
inline Rect IntersectRect(const Rect& a, const Rect& b) {
    return {a.left > b.left ? a.left : b.left, a.top > b.top ? a.top : b.top,
            a.right < b.right ? a.right : b.right, a.bottom < b.bottom ? a.bottom : b.bottom};
}
// The smallest rectangle holding both; an empty one adds nothing.
inline Rect UnionRect(const Rect& a, const Rect& b) {
    if (a.IsEmpty()) return b;
    if (b.IsEmpty()) return a;
    return {a.left < b.left ? a.left : b.left, a.top < b.top ? a.top : b.top,
            a.right > b.right ? a.right : b.right, a.bottom > b.bottom ? a.bottom : b.bottom};
}
inline Rect OffsetRect(const Rect& r, int32_t dx, int32_t dy) {
    return {r.left + dx, r.top + dy, r.right + dx, r.bottom + dy};
}
// Grows by dx, dy on each side (shrinks for negative amounts).
inline Rect InflateRect(const Rect& r, int32_t dx, int32_t dy) {
    return {r.left - dx, r.top - dy, r.right + dx, r.bottom + dy};
}

inline constexpr uint32_t Rgb(uint8_t r, uint8_t g, uint8_t b) {
    return uint32_t{r} << 16 | uint32_t{g} << 8 | b;
}
inline constexpr uint8_t RedOf(uint32_t c) { return static_cast<uint8_t>(c >> 16); }
inline constexpr uint8_t GreenOf(uint32_t c) { return static_cast<uint8_t>(c >> 8); }
inline constexpr uint8_t BlueOf(uint32_t c) { return static_cast<uint8_t>(c); }

inline constexpr uint32_t kWhite = 0xFFFFFF;
inline constexpr uint32_t kBlack = 0x000000;

struct Surface {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint32_t> pixels;  // width * height, row by row from the top

    Surface() = default;
    Surface(int32_t w, int32_t h, uint32_t fill = kWhite)
        : width(w), height(h), pixels(static_cast<size_t>(w > 0 ? w : 0) * (h > 0 ? h : 0), fill) {}
    uint32_t* Row(int32_t y) { return pixels.data() + static_cast<size_t>(y) * width; }
    const uint32_t* Row(int32_t y) const { return pixels.data() + static_cast<size_t>(y) * width; }
    Rect Bounds() const { return {0, 0, width, height}; }
};
