// Golden images: a surface is compared, pixel by pixel after decoding, with tests/golden/NAME.png.
// On a mismatch NAME-actual.png is written beside the reference and the test fails; a missing
// reference is written and the test fails too, so that references are committed on purpose, after
// a look. Native builds only (PNG files through the command line's PngFile); the tests that use it
// sit inside #if QB_GOLDEN_TESTS.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "gfx/Surface.h"

testing::AssertionResult MatchesGolden(const Surface& surface, const std::string& name);
inline void ExpectMatchesGolden(const Surface& surface, const std::string& name) {
    EXPECT_TRUE(MatchesGolden(surface, name));
}
