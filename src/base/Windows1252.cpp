#include "base/Windows1252.h"

#include <cstdint>

namespace {

// 0x80-0x9F differ from Latin-1; 0 marks the five unassigned bytes, kept as their C1 code points.
constexpr uint16_t kHighControls[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

void AppendUtf8(std::string& out, uint32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

inline constexpr uint32_t kNotAChar = 0xFFFFFFFF;

// The code point of the sequence at `i` and its length in bytes. A byte that starts no well-formed
// sequence (a stray continuation, a cut or overlong sequence, a surrogate) is one byte of kNotAChar,
// so text from outside that is not UTF-8 after all becomes '?', never stray Latin-1.
size_t DecodeUtf8(std::string_view text, size_t i, uint32_t* cp) {
    const auto lead = static_cast<uint8_t>(text[i]);
    *cp = kNotAChar;
    if (lead < 0x80) {
        *cp = lead;
        return 1;
    }
    const size_t extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
    if (extra == 0 || lead > 0xF4 || i + extra >= text.size()) return 1;
    uint32_t value = lead & (0x3F >> extra);
    for (size_t k = 1; k <= extra; ++k) {
        const auto next = static_cast<uint8_t>(text[i + k]);
        if ((next & 0xC0) != 0x80) return 1;
        value = value << 6 | (next & 0x3F);
    }
    static constexpr uint32_t kLeast[4] = {0, 0x80, 0x800, 0x10000};
    if (value < kLeast[extra] || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return 1;
    *cp = value;
    return extra + 1;
}

}  // namespace

uint32_t CodePointFromWindows1252(uint8_t byte) {
    if (byte >= 0x80 && byte < 0xA0 && kHighControls[byte - 0x80]) return kHighControls[byte - 0x80];
    return byte;
}

std::string Utf8FromWindows1252(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) AppendUtf8(out, CodePointFromWindows1252(static_cast<uint8_t>(c)));
    return out;
}

std::string Windows1252FromUtf8(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size();) {
        uint32_t cp = 0;
        i += DecodeUtf8(text, i, &cp);
        char byte = '?';
        if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) {
            byte = static_cast<char>(cp);
        } else {
            for (int k = 0; k < 32; ++k) {
                if (kHighControls[k] == cp || (kHighControls[k] == 0 && cp == 0x80u + k)) {
                    byte = static_cast<char>(0x80 + k);
                    break;
                }
            }
        }
        out += byte;
    }
    return out;
}
