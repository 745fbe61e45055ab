// Names in records are length-prefixed strings (length byte first).
#pragma once

#include <cstdint>
#include <string>

// The comparison of all length-prefixed names: equal lengths, then the characters from the last
// to the first with A-Z folded to lower case and every other byte as it is.
bool EqualNames(const uint8_t* a, const uint8_t* b);
// The text of a length-prefixed name kept in a field of `fieldSize` bytes (length clipped to it).
std::string NameText(const uint8_t* name, uint32_t fieldSize);
