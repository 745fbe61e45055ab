// The text of a card's fields for `quillbrook export`: one JSON object per card and its plain text.
#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>

#include "memory/MemRef.h"

// The fields that `card` (at `position`, from 1) shows, in the order the card draws them, each with
// its id, name, rectangle, text (UTF-8) and runs (face, points, style bits, colour "#rrggbb"), and
// their texts one after the other, a blank line between, in `*plain`. False when it shows no field.
bool CardText(MemRef card, int32_t position, nlohmann::ordered_json* json, std::string* plain);
