#include "pictures/ResourcePicture.h"

#include <gtest/gtest.h>

#include <string>

#include "support/SurfaceArt.h"

namespace {

TEST(ResourcePictureTest, ReadsColoursAndTransparency) {
    // Comments and blanks before the rows, Windows line ends, blank lines after them.
    const char* text =
        "# a test picture\r\n"
        "\n"
        "size 4 2\r\n"
        "color . none\r\n"
        "color K 000000\n"
        "color R Ff0000\n"
        "color # 0000ff\n"
        "rows\n"
        "K..R\r\n"
        "#RK.\n"
        "\n";
    ResourcePicture picture;
    std::string error;
    ASSERT_TRUE(ParseResourcePicture(text, &picture, &error)) << error;
    EXPECT_EQ(Art(picture.pixels), Art({"#..r", "br#."}));
    ASSERT_EQ(picture.mask.width, 4);
    ASSERT_EQ(picture.mask.height, 2);
    const bool opaque[2][4] = {{true, false, false, true}, {true, true, true, false}};
    for (int32_t y = 0; y < 2; ++y) {
        for (int32_t x = 0; x < 4; ++x) EXPECT_EQ(picture.mask.Get(x, y), opaque[y][x]) << x << y;
    }
}

TEST(ResourcePictureTest, ReadsTheHotSpot) {
    ResourcePicture picture;
    std::string error;
    ASSERT_TRUE(ParseResourcePicture("size 3 2\ncolor K 000000\nhotspot 2 1\nrows\nKKK\nKKK\n",
                                     &picture, &error))
        << error;
    EXPECT_TRUE(picture.hasHotSpot);
    EXPECT_EQ(picture.hotSpotX, 2);
    EXPECT_EQ(picture.hotSpotY, 1);
    // Without the line there is none, and a reused record forgets an earlier one.
    ASSERT_TRUE(ParseResourcePicture("size 1 1\ncolor K 000000\nrows\nK\n", &picture));
    EXPECT_FALSE(picture.hasHotSpot);
}

TEST(ResourcePictureTest, RejectsMalformedTextsNamingTheLine) {
    struct Case {
        const char* why;
        const char* text;
        int line;
    };
    const Case cases[] = {
        {"empty", "", 0},
        {"colour before size", "color . none\nsize 1 1\nrows\n.\n", 1},
        {"size too large", "size 1025 1\n", 1},
        {"size not a number", "size 1x 1\n", 1},
        {"size without height", "# note\nsize 4\n", 2},
        {"not hex", "size 1 1\ncolor K 00000g\n", 2},
        {"two characters", "size 1 1\ncolor KK 000000\n", 2},
        {"a character twice", "size 1 1\ncolor K 000000\ncolor K none\n", 3},
        {"unknown word", "size 1 1\ncolour K 000000\n", 2},
        {"no rows", "size 1 1\ncolor K 000000\n", 2},
        {"too few rows", "size 2 2\ncolor K 000000\nrows\nKK\n", 4},
        {"short row", "size 2 2\ncolor K 000000\nrows\nKK\nK\n", 5},
        {"character without colour", "size 2 1\ncolor K 000000\nrows\nKx\n", 4},
        {"too many rows", "size 2 1\ncolor K 000000\nrows\nKK\n\nKK\n", 6},
        {"a comment among the rows", "size 2 2\ncolor K 000000\nrows\nKK\n#K\n", 5},
        {"hot spot past the width", "size 2 3\nhotspot 2 0\n", 2},
        {"hot spot past the height", "size 2 3\nhotspot 0 3\n", 2},
        {"hot spot negative", "size 2 3\nhotspot -1 0\n", 2},
        {"hot spot without y", "size 2 3\nhotspot 1\n", 2},
        {"hot spot before size", "hotspot 0 0\nsize 2 3\n", 1},
        {"two hot spots", "size 2 3\nhotspot 0 0\ncolor K 000000\nhotspot 1 1\n", 4},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        ResourcePicture picture;
        std::string error;
        EXPECT_FALSE(ParseResourcePicture(c.text, &picture, &error));
        EXPECT_EQ(error.substr(0, error.find(':')), "line " + std::to_string(c.line)) << error;
        EXPECT_EQ(picture.pixels.width, 0);
    }
}

TEST(ResourcePictureTest, CompiledInPicturesAllParse) {
    int count = 0;
    for (const EmbeddedPicture* e = kEmbeddedPictures; e->name; ++e, ++count) {
        ResourcePicture picture;
        std::string error;
        EXPECT_TRUE(ParseResourcePicture(e->text, &picture, &error)) << e->name << ": " << error;
        EXPECT_NE(FindResourcePicture(e->name), nullptr) << e->name;
    }
    EXPECT_GE(count, 3);
    EXPECT_EQ(FindResourcePicture("no such picture"), nullptr);

    // The alert pictures: icons of the usual size, standing free of their corners.
    for (const char* name : {"stop", "exclamation", "dog"}) {
        SCOPED_TRACE(name);
        const ResourcePicture* picture = FindResourcePicture(name);
        ASSERT_NE(picture, nullptr);
        EXPECT_EQ(picture->name, name);
        ASSERT_EQ(picture->pixels.width, 32);
        ASSERT_EQ(picture->pixels.height, 32);
        EXPECT_FALSE(picture->mask.Get(0, 0));
        EXPECT_FALSE(picture->mask.Get(31, 0));
        EXPECT_TRUE(picture->mask.Get(16, 16));
    }
}

TEST(ResourcePictureTest, DrawingLeavesTransparentPixelsAndStaysInTheClip) {
    ResourcePicture picture;
    ASSERT_TRUE(
        ParseResourcePicture("size 3 2\ncolor . none\ncolor K 000000\nrows\n.K.\nKKK\n", &picture));
    Surface s(5, 3, kBlue);
    DrawResourcePicture(s, Rect{0, 0, 4, 3}, 2, 1, picture);  // the clip cuts the last column
    DrawResourcePicture(s, s.Bounds(), -1, -1, picture);      // only its bottom row shows, in part
    EXPECT_EQ(Art(s), Art({"##bbb", "bbb#b", "bb##b"}));
}

}  // namespace
