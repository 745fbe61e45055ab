#include "media/Extended80.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

namespace {

std::string Hex(const uint8_t* b) {
    std::string s;
    char digits[3];
    for (uint32_t i = 0; i < kExtendedBytes; ++i) {
        std::snprintf(digits, sizeof digits, "%02X", b[i]);
        s += digits;
    }
    return s;
}

// The common rates, the home platform's 22254.5454... Hz (its 16.16 form), a sign, a fraction,
// zero and infinity, both ways and bit for bit.
TEST(Extended80, ConvertsBothWays) {
    const struct {
        double value;
        const char* bytes;
    } kCases[] = {
        {8000, "400BFA00000000000000"},
        {11025, "400CAC44000000000000"},
        {22050, "400DAC44000000000000"},
        {44100, "400EAC44000000000000"},
        {0x56EE8BA3 / 65536.0, "400DADDD174600000000"},
        {-2, "C0008000000000000000"},
        {0.75, "3FFEC000000000000000"},
        {0, "00000000000000000000"},
        {HUGE_VAL, "7FFF0000000000000000"},
    };
    for (const auto& c : kCases) {
        uint8_t bytes[kExtendedBytes];
        DoubleToExtended(c.value, bytes);
        EXPECT_EQ(Hex(bytes), c.bytes) << c.value;
        EXPECT_EQ(ExtendedToDouble(bytes), c.value) << c.bytes;
    }
}

}  // namespace
