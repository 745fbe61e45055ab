// Text in stacks is Windows-1252; what the programs print is UTF-8, converted at the edge.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

std::string Utf8FromWindows1252(std::string_view text);
// Characters without a Windows-1252 form become "?".
std::string Windows1252FromUtf8(std::string_view text);
// The Unicode code point of one byte; the five unassigned bytes keep their C1 code points.
uint32_t CodePointFromWindows1252(uint8_t byte);
