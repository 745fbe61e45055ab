#include "media/Extended80.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

std::string Hex(const uint8_t* b) {
    static const char kDigits[] = "0123456789ABCDEF";
    std::string s;
    for (uint32_t i = 0; i < kExtendedBytes; ++i) {
        s += kDigits[b[i] >> 4];
        s += kDigits[b[i] & 15];
    }
    return s;
}

// Rates both ways, bit for bit: the common rates, the home platform's 22254.5454... Hz (its 16.16 form), a
// negative and a fraction.
TEST(Extended80, ConvertsBothWays) {
    const struct {
        double value;
        const char* bytes;
    } kCases[] = {
        {8000, "400BFA00000000000000"},     {11025, "400CAC44000000000000"},
        {22050, "400DAC44000000000000"},    {44100, "400EAC44000000000000"},
        {48000, "400EBB80000000000000"},    {96000, "400FBB80000000000000"},
        {0x56EE8BA3 / 65536.0, "400DADDD174600000000"}, {1, "3FFF8000000000000000"},
        {-2, "C0008000000000000000"},      {0.75, "3FFEC000000000000000"},
        {0, "00000000000000000000"},
    };
    for (const auto& c : kCases) {
        uint8_t bytes[kExtendedBytes];
        DoubleToExtended(c.value, bytes);
        EXPECT_EQ(Hex(bytes), c.bytes) << c.value;
        EXPECT_EQ(ExtendedToDouble(bytes), c.value) << c.bytes;
    }
    uint8_t bytes[kExtendedBytes];
    DoubleToExtended(HUGE_VAL, bytes);
    EXPECT_EQ(Hex(bytes), "7FFF0000000000000000");
    EXPECT_EQ(ExtendedToDouble(bytes), HUGE_VAL);
}

}  // namespace
