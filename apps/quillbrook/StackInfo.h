// The open stack as JSON: the header's fields by their names, the cards with their items, and the
// typed records. `quillbrook build` reads the same shape back.
#pragma once

#include <nlohmann/json.hpp>

nlohmann::ordered_json DescribeOpenStack();
