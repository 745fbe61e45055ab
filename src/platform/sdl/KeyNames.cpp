#include "platform/sdl/KeyNames.h"

#include <array>
#include <cstddef>
#include <string>

namespace {

struct NamedKey {
    std::string_view name;
    uint16_t key;
};

// Keys whose names are not a single letter, digit or function key. Where two names share a code,
// the first one is the name written back.
// clang-format off
inline constexpr NamedKey kNamedKeys[] = {
    {"Backspace", 0x08},    {"Tab", 0x09},         {"Clear", 0x0C},        {"Return", 0x0D},
    {"Keypad Enter", 0x0D}, {"Left Shift", 0x10},  {"Right Shift", 0x10},  {"Left Ctrl", 0x11},
    {"Right Ctrl", 0x11},   {"Left Alt", 0x12},    {"Right Alt", 0x12},    {"Pause", 0x13},
    {"CapsLock", 0x14},     {"Escape", 0x1B},      {"Space", 0x20},        {"PageUp", 0x21},
    {"PageDown", 0x22},     {"End", 0x23},         {"Home", 0x24},         {"Left", 0x25},
    {"Up", 0x26},           {"Right", 0x27},       {"Down", 0x28},         {"PrintScreen", 0x2C},
    {"Insert", 0x2D},       {"Delete", 0x2E},      {"Help", 0x2F},         {"Left GUI", 0x5B},
    {"Right GUI", 0x5C},    {"Application", 0x5D}, {"Menu", 0x5D},         {"Keypad *", 0x6A},
    {"Keypad +", 0x6B},     {"Keypad -", 0x6D},    {"Keypad .", 0x6E},     {"Keypad /", 0x6F},
    {"Numlock", 0x90},      {"ScrollLock", 0x91},  {";", 0xBA},            {"=", 0xBB},
    {",", 0xBC},            {"-", 0xBD},           {".", 0xBE},            {"/", 0xBF},
    {"`", 0xC0},            {"[", 0xDB},           {"\\", 0xDC},          {"]", 0xDD},
    {"'", 0xDE},
};
// clang-format on

inline constexpr uint16_t kKeyDigit0 = 0x30;
inline constexpr uint16_t kKeyA = 0x41;
inline constexpr uint16_t kKeyPad0 = 0x60;
inline constexpr uint16_t kKeyF1 = 0x70;
inline constexpr int kFunctionKeys = 24;
inline constexpr std::string_view kKeypadPrefix = "Keypad ";

char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool SameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (Upper(a[i]) != Upper(b[i])) return false;
    }
    return true;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// "F1" to "F24" -> 1 to 24; 0 otherwise.
int FunctionKeyNumber(std::string_view name) {
    if (name.size() < 2 || name.size() > 3 || Upper(name[0]) != 'F') return 0;
    int n = 0;
    for (size_t i = 1; i < name.size(); ++i) {
        if (!IsDigit(name[i])) return 0;
        n = n * 10 + (name[i] - '0');
    }
    if (name[1] == '0') return 0;
    return n >= 1 && n <= kFunctionKeys ? n : 0;
}

// The names made by rule rather than by table, kept for NameOfVirtualKey's answers.
struct RuleNames {
    std::array<std::string, 256> names;
    RuleNames() {
        for (int i = 0; i < 10; ++i) {
            names[kKeyDigit0 + i] = std::string(1, static_cast<char>('0' + i));
            names[kKeyPad0 + i] = std::string(kKeypadPrefix) + static_cast<char>('0' + i);
        }
        for (int i = 0; i < 26; ++i) names[kKeyA + i] = std::string(1, static_cast<char>('A' + i));
        for (int i = 0; i < kFunctionKeys; ++i) names[kKeyF1 + i] = "F" + std::to_string(i + 1);
    }
};

const RuleNames& GetRuleNames() {
    static const RuleNames names;
    return names;
}

}  // namespace

uint16_t VirtualKeyFromName(std::string_view name) {
    if (name.size() == 1) {
        const char c = Upper(name[0]);
        if (IsDigit(c)) return static_cast<uint16_t>(kKeyDigit0 + (c - '0'));
        if (c >= 'A' && c <= 'Z') return static_cast<uint16_t>(kKeyA + (c - 'A'));
    }
    if (name.size() == kKeypadPrefix.size() + 1 &&
        SameName(name.substr(0, kKeypadPrefix.size()), kKeypadPrefix) && IsDigit(name.back())) {
        return static_cast<uint16_t>(kKeyPad0 + (name.back() - '0'));
    }
    if (const int f = FunctionKeyNumber(name)) return static_cast<uint16_t>(kKeyF1 + f - 1);
    for (const NamedKey& k : kNamedKeys) {
        if (SameName(k.name, name)) return k.key;
    }
    return 0;
}

std::string_view NameOfVirtualKey(uint16_t key) {
    for (const NamedKey& k : kNamedKeys) {
        if (k.key == key) return k.name;
    }
    if (key < 256) return GetRuleNames().names[key];
    return {};
}
