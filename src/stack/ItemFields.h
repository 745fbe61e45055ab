// The numeric head fields of each item kind beyond the common head: the words and long words that
// are turned between stored and native order, at their offsets in the chunk. The reader and the
// writer both turn them through TurnItemFields, so the list stands in one place.
#pragma once

#include <cstdint>
#include <span>

#include "base/ByteOrder.h"

struct ItemFieldTable {
    std::span<const uint32_t> words;  // 16-bit
    std::span<const uint32_t> longs;  // 32-bit
};

inline constexpr uint32_t kGraphicWords[] = {16, 18, 20, 24, 28, 54, 56, 58};
inline constexpr uint32_t kGraphicLongs[] = {60};
inline constexpr uint32_t kButtonWords[] = {16, 18, 20, 24, 26, 60, 62, 64, 66, 68, 70, 74, 76, 78, 80};
inline constexpr uint32_t kTextWords[] = {20, 24, 26, 28, 30, 32, 34, 36, 38, 44, 50, 56, 58, 60,
                                          62, 64, 66, 68, 70, 88, 102, 104};
inline constexpr uint32_t kTextLongs[] = {16, 40, 46, 52};

inline constexpr ItemFieldTable kGraphicFields{kGraphicWords, kGraphicLongs};
inline constexpr ItemFieldTable kButtonFields{kButtonWords, {}};
inline constexpr ItemFieldTable kTextFields{kTextWords, kTextLongs};

// Turning is its own inverse: the same call reads a stored head and stores a native one.
inline void TurnItemFields(uint8_t* head, const ItemFieldTable& table) {
    for (uint32_t o : table.words) Swap16(head + o);
    for (uint32_t o : table.longs) Swap32(head + o);
}
