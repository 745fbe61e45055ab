// The numbered string table. The ids are part of the design: alerts and messages name them.
#pragma once

#include <string>

struct StringEntry {
    int id;
    const char* text;  // UTF-8 as stored in the resource file
};
extern const StringEntry kStringTable[];
extern const unsigned kStringTableSize;

// The text of string `id` in Windows-1252, or "" when there is none.
std::string GetString(int id);
// The same text in UTF-8, for what the programs print.
std::string GetStringUtf8(int id);
