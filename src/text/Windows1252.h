// Text in stacks is Windows-1252; what the programs print is UTF-8, converted at the edge.
#pragma once

#include <string>
#include <string_view>

std::string Utf8FromWindows1252(std::string_view text);
// Characters without a Windows-1252 form become "?".
std::string Windows1252FromUtf8(std::string_view text);
