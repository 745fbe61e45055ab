#include "messages/StringTable.h"

#include "base/Windows1252.h"

std::string GetStringUtf8(int id) {
    for (unsigned i = 0; i < kStringTableSize; ++i) {
        if (kStringTable[i].id == id) return kStringTable[i].text;
    }
    return "";
}

std::string GetString(int id) { return Windows1252FromUtf8(GetStringUtf8(id)); }
