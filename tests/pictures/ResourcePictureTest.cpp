#include "pictures/ResourcePicture.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "support/SurfaceArt.h"

namespace {

TEST(ResourcePictureTest, ReadsColoursTransparencyAndTheHotSpot) {
    // Comments and blanks before the rows, Windows line ends, blank lines after them.
    const char* text = "# a test picture\r\n\nsize 4 2\r\ncolor . none\r\ncolor K 000000\ncolor R Ff0000\n"
                       "color # 0000ff\nhotspot 3 1\nrows\nK..R\r\n#RK.\n\n";
    ResourcePicture picture;
    std::string error;
    ASSERT_TRUE(ParseResourcePicture(text, &picture, &error)) << error;
    EXPECT_EQ(Art(picture.pixels), Art({"#..r", "br#."}));
    BitMask opaque(4, 2);
    for (auto [x, y] : {std::pair{0, 0}, {3, 0}, {0, 1}, {1, 1}, {2, 1}}) opaque.Set(x, y, true);
    EXPECT_EQ(picture.mask.bits, opaque.bits);
    EXPECT_EQ((std::tuple{picture.hasHotSpot, picture.hotSpotX, picture.hotSpotY}), (std::tuple{true, 3, 1}));
    // Without the line there is none, and a reused record forgets an earlier one.
    ASSERT_TRUE(ParseResourcePicture("size 1 1\ncolor K 000000\nrows\nK\n", &picture));
    EXPECT_FALSE(picture.hasHotSpot);
    // The compiled-in pictures are drawn by the alert goldens and the cursor test.
    EXPECT_EQ(FindResourcePicture("no such picture"), nullptr);
}

TEST(ResourcePictureTest, RejectsMalformedTextsNamingTheLine) {
    struct Case { const char* why; const char* text; int line; };
    const Case cases[] = {
        {"empty", "", 0},
        {"colour before size", "color . none\nsize 1 1\nrows\n.\n", 1},
        {"size too large", "size 1025 1\n", 1},
        {"not hex", "size 1 1\ncolor K 00000g\n", 2},
        {"two characters", "size 1 1\ncolor KK 000000\n", 2},
        {"a character twice", "size 1 1\ncolor K 000000\ncolor K none\n", 3},
        {"unknown word", "size 1 1\ncolour K 000000\n", 2},
        {"no rows", "size 1 1\ncolor K 000000\n", 2},
        {"too few rows", "size 2 2\ncolor K 000000\nrows\nKK\n", 4},
        {"short row", "size 2 2\ncolor K 000000\nrows\nKK\nK\n", 5},
        {"character without colour", "size 2 1\ncolor K 000000\nrows\nKx\n", 4},
        {"too many rows", "size 2 1\ncolor K 000000\nrows\nKK\n\nKK\n", 6},
        {"hot spot past the height", "size 2 3\nhotspot 0 3\n", 2},
        {"hot spot without y", "size 2 3\nhotspot 1\n", 2},
        {"two hot spots", "size 2 3\nhotspot 0 0\ncolor K 000000\nhotspot 1 1\n", 4},
    };
    for (const Case& c : cases) {
        ResourcePicture picture;
        std::string error;
        EXPECT_FALSE(ParseResourcePicture(c.text, &picture, &error)) << c.why;
        EXPECT_EQ(error.substr(0, error.find(':')), "line " + std::to_string(c.line)) << c.why << ": " << error;
        EXPECT_EQ(picture.pixels.width, 0) << c.why;
    }
}

}  // namespace
