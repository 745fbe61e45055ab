#include "stack/Names.h"

namespace {
uint8_t Fold(uint8_t c) { return (c >= 'A' && c <= 'Z') ? static_cast<uint8_t>(c + 32) : c; }
}  // namespace

bool EqualNames(const uint8_t* a, const uint8_t* b) {
    if (a[0] != b[0]) return false;
    for (uint32_t i = a[0]; i >= 1; --i) {
        if (Fold(a[i]) != Fold(b[i])) return false;
    }
    return true;
}

std::string NameText(const uint8_t* name, uint32_t fieldSize) {
    if (fieldSize == 0) return "";
    const uint32_t length = name[0] < fieldSize ? name[0] : fieldSize - 1;
    return std::string(reinterpret_cast<const char*>(name + 1), length);
}
