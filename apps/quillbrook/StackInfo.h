// The stack as JSON: the header's fields by their names, the cards with their items, and the
// typed records. `quillbrook build` reads the same shape back.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

// The open stack as the program sees it, after the byte-order normalisation.
nlohmann::ordered_json DescribeOpenStack();

// The stack file's own bytes, read as stored, with everything behind the heads as hex (`hex` of a
// background, a sub-record and a record; `raw` of a graphic's or text field's body): building the
// result gives these bytes back. Returns false with `*problem` if the file's chains do not hold.
bool DescribeStoredStack(const std::vector<uint8_t>& file, nlohmann::ordered_json* description,
                         std::string* problem);
