// `quillbrook play` in a real X window, on a virtual X server: at --scale 2 the window shows the
// card as `quillbrook render` draws it, each card pixel a 2 x 2 block, and real input recorded
// there replays headless to the same frame. Skipped where xvfb-run (or, for input, xdotool) is not
// installed.
#if defined(QB_WITH_CLI) && defined(QB_QUILLBROOK)

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "PngFile.h"
#include "support/CommandFixture.h"
#include "support/HeardSound.h"

namespace {

class XvfbPlay : public CommandFixture {
protected:
    void SetUp() override {
        CommandFixture::SetUp();
        if (std::system("command -v xvfb-run >/dev/null 2>&1 && command -v Xvfb >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "xvfb-run or Xvfb is not installed (Debian: apt-get install xvfb xauth)";
    }
    // X, D-Bus and the GL driver keep allocations to the end of the process, which a sanitizer
    // build's leak check would blame on the player. A 24-bit screen shows the card's colours as
    // they are; -a takes a free display number. What the session prints goes to the test's output.
    // SDL's disk driver is the sound device: what the player plays lands in heard.raw.
    int RunUnderXvfb(const std::string& script) {
        std::ofstream(Path("session.sh"))
            << "set -e\nexport ASAN_OPTIONS=\"${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0\"\n"
            << "export SDL_AUDIODRIVER=disk SDL_DISKAUDIOFILE=" << Path("heard.raw") << "\n" << script;
        const std::string command = "timeout 120 xvfb-run -a -s '-screen 0 1600x1200x24' sh " + Path("session.sh");
        return std::system(command.c_str());
    }
    // The pixels of `shown` that differ from `card` scaled by `scale`.
    static int Differences(const PngImage& shown, const PngImage& card, int32_t scale) {
        EXPECT_EQ(shown.width, scale * card.width);
        EXPECT_EQ(shown.height, scale * card.height);
        if (shown.width != scale * card.width || shown.height != scale * card.height) return -1;
        int differences = 0;
        for (int32_t y = 0; y < shown.height; ++y) {
            for (int32_t x = 0; x < shown.width; ++x) {
                const uint8_t* a = &shown.rgba[4 * (static_cast<size_t>(y) * shown.width + x)];
                const uint8_t* b = &card.rgba[4 * (static_cast<size_t>(y / scale) * card.width + x / scale)];
                differences += a[0] != b[0] || a[1] != b[1] || a[2] != b[2];
            }
        }
        return differences;
    }
    const std::string qb_ = QB_QUILLBROOK;
    const std::string stack_ = std::string(QB_FIXTURES_DIR) + "/sample-cards.stk";
};

TEST_F(XvfbPlay, TheWindowShowsTheCardAsRenderDrawsIt) {
    ASSERT_EQ(RunUnderXvfb(qb_ + " play '" + stack_ + "' --exit-after 1500 --scale 2 --screenshot " +
                           Path("shown.png")),
              0);
    const std::string render = qb_ + " render '" + stack_ + "' --card 1 -o " + Path("card.png") + " >/dev/null";
    ASSERT_EQ(std::system(render.c_str()), 0) << render;
    const PngImage card = ReadImage(Path("card.png"));
    ASSERT_EQ(card.width, 640);
    EXPECT_EQ(Differences(ReadImage(Path("shown.png")), card, 2), 0);
}

// Real X input through SDL: the pointer, a click, a typed letter and two keys, recorded by the
// player and replayed headless, end on the frame the window showed.
TEST_F(XvfbPlay, ASessionRecordedInTheWindowReplaysToTheSameFrame) {
    if (std::system("command -v xdotool >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "xdotool is not installed (Debian: apt-get install xdotool)";
    const std::string play = qb_ + " play '" + stack_ + "' --exit-after 8000 --record " + Path("session.json") +
                             " --screenshot " + Path("live.png");
    ASSERT_EQ(RunUnderXvfb(play + " &\npid=$!\nw=$(xdotool search --sync --onlyvisible --class quillbrook | head -1)\n"
                                  "xdotool mousemove --window $w 320 200\nsleep 0.3\nxdotool key Right\nsleep 0.3\n"
                                  "xdotool mousemove --window $w 100 100 click 1\nxdotool type a\n"
                                  "xdotool key End\nwait $pid\n"),
              0);
    std::ifstream recorded(Path("session.json"));
    const std::string events{std::istreambuf_iterator<char>(recorded), std::istreambuf_iterator<char>()};
    for (const char* expected : {R"("event":"keydown","key":"Right")", R"("event":"mousedown","x":100,"y":100)",
                                 R"("event":"char","key":"a")", R"("event":"keydown","key":"End")"})
        EXPECT_NE(events.find(expected), std::string::npos) << expected << " not in\n" << events;
    const std::string replay = qb_ + " render '" + stack_ + "' --replay " + Path("session.json") + " -o " +
                               Path("replayed.png") + " >/dev/null";
    ASSERT_EQ(std::system(replay.c_str()), 0) << replay;
    EXPECT_EQ(Differences(ReadImage(Path("live.png")), ReadImage(Path("replayed.png")), 1), 0);
}

// A contents button of the demo clicks through SDL's audio device, here its disk driver, which
// keeps what the last opening of the device played.
TEST_F(XvfbPlay, TheDemosButtonIsHeardThroughTheAudioDevice) {
    if (std::system("command -v xdotool >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "xdotool is not installed (Debian: apt-get install xdotool)";
    const std::string play = qb_ + " play '" + QB_DEMO_STACK + "' --exit-after 3000";
    ASSERT_EQ(RunUnderXvfb(play + " &\npid=$!\nw=$(xdotool search --sync --onlyvisible --class quillbrook | head -1)\n"
                                  "sleep 0.5\nxdotool mousemove --window $w 250 230 click 1\nwait $pid\n"),
              0);
    std::ifstream raw(Path("heard.raw"), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(raw), std::istreambuf_iterator<char>()};
    std::vector<int16_t> heard(bytes.size() / 2);
    std::memcpy(heard.data(), bytes.data(), heard.size() * 2);
    EXPECT_GE(FindInLeft(heard, DemoSoundAsPlayed("click.wav", 800)), 0) << heard.size() << " samples heard";
}

}  // namespace

#endif
