#include "media/Extended80.h"

#include <cmath>
#include <cstring>

#include "base/ByteOrder.h"

namespace {
constexpr int32_t kExponentMax = 32767;
// The exponent of the mantissa's top half taken as a whole number: bias 16383 plus 31.
constexpr int32_t kHighHalfBias = 16414;
}  // namespace

double ExtendedToDouble(const uint8_t* bytes) {
    const uint16_t head = ReadBE16(bytes);
    const int32_t exponent = head & 0x7FFF;
    const uint32_t high = ReadBE32(bytes + 2), low = ReadBE32(bytes + 6);
    double value = 0;
    if (exponent == 0 && high == 0 && low == 0) {
        value = 0;
    } else if (exponent == kExponentMax) {
        value = HUGE_VAL;
    } else {
        value = std::ldexp(static_cast<double>(high), exponent - kHighHalfBias) +
                std::ldexp(static_cast<double>(low), exponent - kHighHalfBias - 32);
    }
    return head & 0x8000 ? -value : value;
}

void DoubleToExtended(double value, uint8_t* bytes) {
    std::memset(bytes, 0, kExtendedBytes);
    uint16_t sign = 0;
    if (value < 0) {
        sign = 0x8000;
        value = -value;
    }
    if (value == 0) {
        WriteBE16(bytes, sign);
        return;
    }
    int exponent = 0;
    double mantissa = std::frexp(value, &exponent);  // in [0.5, 1)
    int32_t biased = exponent + 16382;
    if (biased >= kExponentMax || std::isinf(value) || std::isnan(value)) {
        WriteBE16(bytes, static_cast<uint16_t>(sign | kExponentMax));
        return;
    }
    if (biased < 0) {
        // Below the smallest exponent: the mantissa moves down instead.
        mantissa = std::ldexp(mantissa, biased);
        biased = 0;
    }
    const double highPart = std::floor(std::ldexp(mantissa, 32));
    const double lowPart = std::floor(std::ldexp(std::ldexp(mantissa, 32) - highPart, 32));
    WriteBE16(bytes, static_cast<uint16_t>(sign | biased));
    WriteBE32(bytes + 2, static_cast<uint32_t>(highPart));
    WriteBE32(bytes + 6, static_cast<uint32_t>(lowPart));
}
