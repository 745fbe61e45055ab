#include "media/Extended80.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

// The common rates, the home platform's 22254.5454... Hz (its 16.16 form), a sign, a fraction,
// zero and infinity, both ways and bit for bit.
TEST(Extended80, ConvertsBothWays) {
    const struct { double value; std::vector<uint8_t> bytes; } kCases[] = {
        {8000, {0x40, 0x0B, 0xFA, 0, 0, 0, 0, 0, 0, 0}},
        {11025, {0x40, 0x0C, 0xAC, 0x44, 0, 0, 0, 0, 0, 0}},
        {22050, {0x40, 0x0D, 0xAC, 0x44, 0, 0, 0, 0, 0, 0}},
        {44100, {0x40, 0x0E, 0xAC, 0x44, 0, 0, 0, 0, 0, 0}},
        {0x56EE8BA3 / 65536.0, {0x40, 0x0D, 0xAD, 0xDD, 0x17, 0x46, 0, 0, 0, 0}},
        {-2, {0xC0, 0x00, 0x80, 0, 0, 0, 0, 0, 0, 0}},
        {0.75, {0x3F, 0xFE, 0xC0, 0, 0, 0, 0, 0, 0, 0}},
        {0, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {HUGE_VAL, {0x7F, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0}},
    };
    for (const auto& c : kCases) {
        std::vector<uint8_t> bytes(kExtendedBytes);
        DoubleToExtended(c.value, bytes.data());
        EXPECT_EQ(bytes, c.bytes) << c.value;
        EXPECT_EQ(ExtendedToDouble(c.bytes.data()), c.value) << c.value;
    }
}

}  // namespace
