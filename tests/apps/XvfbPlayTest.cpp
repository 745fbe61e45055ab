// `quillbrook play` in a real X window, on a virtual X server: at --scale 2 the window shows the
// card as `quillbrook render` draws it, each card pixel a 2 x 2 block. Skipped where xvfb-run is
// not installed.
#if defined(QB_WITH_CLI) && defined(QB_QUILLBROOK)

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "PngFile.h"
#include "support/CommandFixture.h"

namespace {

class XvfbPlay : public CommandFixture {
protected:
    void SetUp() override {
        CommandFixture::SetUp();
        if (std::system("command -v xvfb-run >/dev/null 2>&1 && command -v Xvfb >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "xvfb-run or Xvfb is not installed (Debian: apt-get install xvfb xauth)";
    }
};

TEST_F(XvfbPlay, TheWindowShowsTheCardAsRenderDrawsIt) {
    const std::string qb = QB_QUILLBROOK;
    const std::string stack = std::string(QB_FIXTURES_DIR) + "/sample-cards.stk";
    // X, D-Bus and the GL driver keep allocations to the end of the process, which a sanitizer
    // build's leak check would blame on the player. A 24-bit screen shows the card's colours as
    // they are; -a takes a free display number. What the session prints goes to the test's output.
    const std::string play = "ASAN_OPTIONS=\"${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0\" timeout 120 "
                             "xvfb-run -a -s '-screen 0 1600x1200x24' " + qb + " play '" + stack +
                             "' --exit-after 1500 --scale 2 --screenshot " + Path("shown.png");
    ASSERT_EQ(std::system(play.c_str()), 0) << play;
    const std::string render = qb + " render '" + stack + "' --card 1 -o " + Path("card.png") + " >/dev/null";
    ASSERT_EQ(std::system(render.c_str()), 0) << render;

    const PngImage card = ReadImage(Path("card.png"));
    const PngImage shown = ReadImage(Path("shown.png"));
    ASSERT_EQ(card.width, 640);
    ASSERT_EQ(shown.width, 2 * card.width);
    ASSERT_EQ(shown.height, 2 * card.height);
    int differences = 0;
    for (int32_t y = 0; y < shown.height; ++y) {
        for (int32_t x = 0; x < shown.width; ++x) {
            const uint8_t* a = &shown.rgba[4 * (static_cast<size_t>(y) * shown.width + x)];
            const uint8_t* b = &card.rgba[4 * (static_cast<size_t>(y / 2) * card.width + x / 2)];
            differences += a[0] != b[0] || a[1] != b[1] || a[2] != b[2];
        }
    }
    EXPECT_EQ(differences, 0);
}

}  // namespace

#endif
