// The shift register behind Dissolve: from 1, a register of k bits with these taps steps through
// every non-zero value below 2^k once before it comes back, which scatters the pixels of a
// power-of-two area in an order that looks random.
#pragma once

#include <cstdint>

inline constexpr int32_t kDissolveMaxBits = 26;

// The taps for a register of `k` bits, 2 to 26; 0 for other lengths.
uint32_t DissolveTaps(int32_t k);
// The next value: shifted right by one, with the taps folded in when a 1 falls out.
inline uint32_t NextDissolveValue(uint32_t value, uint32_t taps) {
    return (value >> 1) ^ (value & 1u ? taps : 0u);
}
