// The keys of input events, as every host hands them to the core.
#pragma once

#include <cstdint>

// Virtual-key codes, as the system numbers them.
inline constexpr uint16_t kVkBack = 0x08;
inline constexpr uint16_t kVkTab = 0x09;
inline constexpr uint16_t kVkReturn = 0x0D;
inline constexpr uint16_t kVkShift = 0x10;
inline constexpr uint16_t kVkControl = 0x11;
inline constexpr uint16_t kVkEscape = 0x1B;
inline constexpr uint16_t kVkPageUp = 0x21;
inline constexpr uint16_t kVkPageDown = 0x22;
inline constexpr uint16_t kVkEnd = 0x23;
inline constexpr uint16_t kVkHome = 0x24;
inline constexpr uint16_t kVkLeft = 0x25;
inline constexpr uint16_t kVkUp = 0x26;
inline constexpr uint16_t kVkRight = 0x27;
inline constexpr uint16_t kVkDown = 0x28;
inline constexpr uint16_t kVkDelete = 0x2E;
inline constexpr uint16_t kVkLeftShift = 0xA0;
inline constexpr uint16_t kVkRightShift = 0xA1;
inline constexpr uint16_t kVkLeftControl = 0xA2;
inline constexpr uint16_t kVkRightControl = 0xA3;
inline constexpr uint16_t kVkSemicolon = 0xBA;
inline constexpr uint16_t kVkComma = 0xBC;
inline constexpr uint16_t kVkPeriod = 0xBE;
inline constexpr uint16_t kVkBackQuote = 0xC0;
