// The 80-bit extended floating-point numbers of AIFF sample rates and of sound records: sign and a
// 15-bit exponent biased by 16383, then a 64-bit mantissa with its leading 1 explicit; big-endian.
#pragma once

#include <cstdint>

inline constexpr uint32_t kExtendedBytes = 10;

// All zero gives 0, the largest exponent infinity.
double ExtendedToDouble(const uint8_t* bytes);
// 0 gives all zeros; a value too large for the format its infinity; one too small a denormal.
void DoubleToExtended(double value, uint8_t* bytes);
