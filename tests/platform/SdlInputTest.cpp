// What the desktop window does to input before the window procedure sees it: key names to the
// system's key codes, and window pixels to card pixels through the whole-number scale.
#ifdef QB_WITH_SDL

#include <gtest/gtest.h>

#include "platform/sdl/KeyNames.h"
#include "platform/sdl/ViewLayout.h"

namespace {

TEST(KeyNames, SdlNamesGiveTheSystemsKeyCodes) {
    struct Case { const char* name; uint16_t key; };
    // The names the table gives back are checked by the round trip below; here the other spellings.
    const Case cases[] = {{"return", 0x0D}, {"Keypad Enter", 0x0D}, {"z", 0x5A}, {"Keypad 7", 0x67}, {"F24", 0x87},
                          {"F25", 0}, {"F0", 0}, {"F01", 0}, {"Right Ctrl", 0x11}, {"", 0}, {"Keypad", 0}, {"Keypad 10", 0},
                          {"AB", 0}};
    for (const Case& c : cases) EXPECT_EQ(VirtualKeyFromName(c.name), c.key) << '"' << c.name << '"';

    // Every code the table knows comes back to a name that gives the same code.
    int named = 0;
    for (uint16_t key = 1; key < 256; ++key) {
        const std::string_view name = NameOfVirtualKey(key);
        if (name.empty()) continue;
        ++named;
        EXPECT_EQ(VirtualKeyFromName(name), key) << name;
    }
    EXPECT_GT(named, 100);
    EXPECT_EQ(NameOfVirtualKey(0x10), "Left Shift");
    EXPECT_EQ(NameOfVirtualKey(0xFF), "");
}

TEST(ViewLayout, TheCardTakesTheLargestWholeScaleCentred) {
    struct Case { int32_t cardW, cardH, outW, outH; int32_t scale; Rect dest; };
    const Case cases[] = {
        {640, 480, 1280, 960, 2, {0, 0, 1280, 960}},
        {640, 480, 1920, 1080, 2, {320, 60, 1600, 1020}},   // fullscreen: bars on all sides
        {640, 480, 1919, 1439, 2, {319, 239, 1599, 1199}},  // not quite 3: stays 2
        {640, 480, 600, 400, 1, {-20, -40, 620, 440}},      // smaller than the card: cut evenly
        {10, 10, 25, 25, 2, {2, 2, 22, 22}},                // an odd spare pixel goes right
        {0, 0, 100, 100, 100, {0, 0, 100, 100}},            // no card yet: taken as 1 x 1
    };
    for (const Case& c : cases) {
        const ViewLayout layout = FitCard(c.cardW, c.cardH, c.outW, c.outH);
        EXPECT_TRUE(layout.scale == c.scale && layout.dest == c.dest) << c.outW << "x" << c.outH;
    }
}

TEST(ViewLayout, OutputPixelsTurnBackIntoCardPixels) {
    const ViewLayout layout = FitCard(640, 480, 1920, 1080);  // scale 2 at (320, 60)
    struct Case { int32_t x, y; Point card; };
    // Left of the picture, a pixel pair still rounds down: -1 for both 319 and 318.
    const Case cases[] = {{321, 61, {0, 0}}, {322, 62, {1, 1}}, {1599, 1019, {639, 479}}, {319, 59, {-1, -1}},
                          {318, 58, {-1, -1}}, {317, 57, {-2, -2}}, {1600, 1020, {640, 480}}, {0, 0, {-160, -30}}};
    for (const Case& c : cases) EXPECT_EQ(CardPointFromOutput(layout, c.x, c.y), c.card) << c.x << "," << c.y;
}

}  // namespace

#endif  // QB_WITH_SDL
