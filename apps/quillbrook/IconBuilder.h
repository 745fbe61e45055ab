// 'Icon' records from PNG files for `quillbrook build`. A button's icon record is the image of an
// icon file, little-endian as such a file stands: the 6-byte directory head, one 16-byte entry that
// points at the picture, a bitmap information head whose height counts the colour and the mask rows
// together, the colour table, the colour rows bottom-up and the rows of the 1-bit mask bottom-up.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "PngFile.h"

// A mistake in a record's description: the key it concerns ("png", "depth") and what is wrong.
struct IconBuildError {
    std::string key;
    std::string text;
};

// The icon file image of a picture at `depth` (4 or 8 bits a pixel). The colour table holds the
// picture's own colours in the order they first occur, top row first. A pixel whose alpha is under
// 128 is transparent: its mask bit is set and its colour is black, which leaves the screen as it
// is. False with `*error` for a bad depth, a picture over 256 pixels a side, or more colours than
// the depth holds.
bool IconFileFromPicture(const PngImage& picture, int64_t depth, std::vector<uint8_t>* data,
                         std::string* error);

// The data of an 'Icon' record described by `record`: "png", a file relative to `baseDir`, and
// "depth", 4 (the default) or 8. False with `*error` naming the key at fault.
bool BuildIconRecord(const nlohmann::ordered_json& record, const std::filesystem::path& baseDir,
                     std::vector<uint8_t>* data, IconBuildError* error);
