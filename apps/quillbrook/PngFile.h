// PNG files for the command line: the pictures that `build` turns into stack pictures, and the
// files that `export` writes.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

struct PngImage {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint8_t> rgba;  // 4 bytes a pixel, rows top-down
    // An indexed file's own colours and its pixels as indices into them, one byte each, rows
    // top-down; both empty for a file of another kind.
    std::vector<std::array<uint8_t, 3>> palette;
    std::vector<uint8_t> indices;
};

// Reads any PNG into 8-bit RGBA (grey turned to RGB, 16-bit channels cut to 8, an alpha of 255
// where the file has none). Sides over 32767 are refused, since no stack picture has them. On
// failure returns false with `*error` saying why.
bool ReadPng(const std::string& path, PngImage* image, std::string* error);

// Writes `width` * `height` RGBA pixels, rows top-down. False if the file cannot be written.
bool WritePng(const std::string& path, int32_t width, int32_t height, const std::vector<uint8_t>& rgba);
// Writes an indexed PNG of one byte a pixel, with `palette` (1 to 256 colours) as its own.
bool WriteIndexedPng(const std::string& path, int32_t width, int32_t height, const std::vector<uint8_t>& indices,
                     const std::vector<std::array<uint8_t, 3>>& palette);
