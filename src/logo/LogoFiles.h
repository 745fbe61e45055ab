// The script's open files: a table of eight slots, each an open file and its full path, and the
// slots chosen as reader and writer. Text a script prints goes to the writer when one is chosen.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Writes `text` to the chosen writer file, LF going out as CR; false when there is none.
bool WriteToLogoWriter(std::string_view text);
bool LogoReaderChosen();
// The next line of the reader file; nullopt at its end. LF reads as CR, and the byte 255 counts
// as the end of the file.
std::optional<std::string> ReadLogoReaderLine();
// Whether the reader file has more to read.
bool LogoReaderHasMore();
