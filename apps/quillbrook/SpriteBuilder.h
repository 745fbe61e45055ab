// Animation payloads from PNG files for `quillbrook build`: a sprite film (a strip of frames, a
// path of points and the record's settings) and a frame-delta animation (a first picture and the
// changed pixels of each next one). Both are written in their stored, big-endian form, ready to be
// the body of a type-56 sub-record.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "gfx/Palette.h"

// A mistake in a description: the key it concerns ("frames[1]", "points") and what is wrong.
struct AnimationBuildError {
    std::string key;
    std::string text;
};

// What the card gives a picture: its depth (8, 16 or 32) and, at 8 bits, its colours.
struct AnimationCard {
    int64_t depth = 8;
    std::vector<PaletteEntry> colors;
};

// A 'Sprt' payload from `sprite` (see docs/stack-json.md). Frames are stored at the card's depth
// in one strip; a pixel whose alpha is under 128 takes the film's transparent colour.
bool BuildSpriteFilm(const nlohmann::ordered_json& sprite, const std::filesystem::path& baseDir,
                     const AnimationCard& card, std::vector<uint8_t>* payload, AnimationBuildError* error);
// A frame-delta payload from `animation`: frames of one size at the card's depth, word changes
// unless an offset can only be said in long ones.
bool BuildFrameDelta(const nlohmann::ordered_json& animation, const std::filesystem::path& baseDir,
                     const AnimationCard& card, std::vector<uint8_t>* payload, AnimationBuildError* error);
