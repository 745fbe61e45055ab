// `quillbrook play` in a real X window, on a virtual X server: what the window shows is the card
// as `quillbrook render` draws it, pixel for pixel (at --scale 2 each card pixel is a 2 x 2 block),
// and real input recorded there replays headless to the same frame. Skipped where xvfb-run (or, for
// the input, xdotool) is not installed.
#if defined(QB_WITH_CLI) && defined(QB_QUILLBROOK)

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "PngFile.h"
#include "support/CommandFixture.h"

namespace {

namespace fs = std::filesystem;

bool OnPath(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}

PngImage Read(const fs::path& path) {
    PngImage image;
    std::string error;
    EXPECT_TRUE(ReadPng(path.string(), &image, &error)) << path << ": " << error;
    return image;
}

// The number of pixels of `shown` that differ from `card` scaled by `scale`; the first is named.
int CountDifferences(const PngImage& shown, const PngImage& card, int32_t scale,
                     std::string* first) {
    int differences = 0;
    for (int32_t y = 0; y < shown.height; ++y) {
        for (int32_t x = 0; x < shown.width; ++x) {
            const uint8_t* a = &shown.rgba[4 * (static_cast<size_t>(y) * shown.width + x)];
            const uint8_t* b =
                &card.rgba[4 * (static_cast<size_t>(y / scale) * card.width + x / scale)];
            if (a[0] == b[0] && a[1] == b[1] && a[2] == b[2]) continue;
            if (differences++ == 0) *first = std::to_string(x) + "," + std::to_string(y);
        }
    }
    return differences;
}

class XvfbPlay : public CommandFixture {
protected:
    void SetUp() override {
        CommandFixture::SetUp();
        if (!OnPath("xvfb-run") || !OnPath("Xvfb"))
            GTEST_SKIP() << "xvfb-run or Xvfb is not installed (Debian: apt-get install xvfb xauth)";
    }
    // Runs a shell script on a virtual X server: a 24-bit screen shows the card's colours as they
    // are, and -a takes a free display number. The script's errors are kept for the failure
    // message.
    int RunUnderXvfb(const std::string& script) {
        const fs::path file = dir_ / "session.sh";
        // X, D-Bus and the GL driver keep allocations to the end of the process, which a sanitizer
        // build's leak check would blame on the player; the headless commands keep the check.
        std::ofstream(file)
            << "set -e\nexport ASAN_OPTIONS=\"${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0\"\n"
            << script;
        const std::string command = "timeout 120 xvfb-run -a -s '-screen 0 1600x1200x24' sh " +
                                    file.string() + " >" + (dir_ / "session.log").string() +
                                    " 2>&1";
        return std::system(command.c_str());
    }
    std::string Log() const {
        std::ifstream in(dir_ / "session.log");
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    const std::string qb_ = QB_QUILLBROOK;
    const std::string stack_ = std::string(QB_FIXTURES_DIR) + "/sample-cards.stk";
};

TEST_F(XvfbPlay, TheWindowShowsTheCardAsRenderDrawsIt) {
    const std::string play = qb_ + " play '" + stack_ + "' --exit-after 1500";
    ASSERT_EQ(RunUnderXvfb(play + " --screenshot " + Path("x1.png") + "\n" + play +
                           " --scale 2 --screenshot " + Path("x2.png") + "\n"),
              0)
        << Log();
    const std::string render =
        qb_ + " render '" + stack_ + "' --card 1 -o " + Path("card.png") + " >/dev/null";
    ASSERT_EQ(std::system(render.c_str()), 0) << render;

    const PngImage card = Read(Path("card.png"));
    ASSERT_EQ(card.width, 640);
    ASSERT_EQ(card.height, 480);
    for (const int32_t scale : {1, 2}) {
        const PngImage shown = Read(Path("x" + std::to_string(scale) + ".png"));
        ASSERT_EQ(shown.width, card.width * scale);
        ASSERT_EQ(shown.height, card.height * scale);
        std::string first;
        EXPECT_EQ(CountDifferences(shown, card, scale, &first), 0)
            << "at scale " << scale << ", first at " << first;
    }
}

// Real X input through SDL: the pointer, a click, a typed letter and two navigation keys, recorded
// by the player and replayed headless, end on the frame the window showed.
TEST_F(XvfbPlay, ASessionRecordedInTheWindowReplaysToTheSameFrame) {
    if (!OnPath("xdotool"))
        GTEST_SKIP() << "xdotool is not installed (Debian: apt-get install xdotool)";
    const std::string script =
        qb_ + " play '" + stack_ + "' --exit-after 4000 --record " + Path("session.json") +
        " --screenshot " + Path("live.png") +
        " &\n"
        "pid=$!\n"
        "w=$(xdotool search --sync --onlyvisible --class quillbrook | head -1)\n"
        "xdotool mousemove --window $w 320 200\n"
        "sleep 0.3\n"
        "xdotool key Right\n"
        "sleep 0.3\n"
        "xdotool mousemove --window $w 100 100 click 1\n"
        "xdotool type a\n"
        "xdotool key End\n"
        "wait $pid\n";
    ASSERT_EQ(RunUnderXvfb(script), 0) << Log();
    std::ifstream recorded(Path("session.json"));
    const std::string events{std::istreambuf_iterator<char>(recorded),
                             std::istreambuf_iterator<char>()};
    for (const char* expected :
         {R"("event":"keydown","key":"Right")", R"("event":"mousedown","x":100,"y":100)",
          R"("event":"char","key":"a")", R"("event":"keydown","key":"End")"}) {
        EXPECT_NE(events.find(expected), std::string::npos) << expected << " not in\n" << events;
    }
    const std::string replay = qb_ + " render '" + stack_ + "' --replay " + Path("session.json") +
                               " -o " + Path("replayed.png") + " >/dev/null";
    ASSERT_EQ(std::system(replay.c_str()), 0) << replay;
    const PngImage live = Read(Path("live.png"));
    const PngImage replayed = Read(Path("replayed.png"));
    ASSERT_EQ(live.width, replayed.width);
    ASSERT_EQ(live.height, replayed.height);
    std::string first;
    EXPECT_EQ(CountDifferences(live, replayed, 1, &first), 0) << "first at " << first;
}

}  // namespace

#endif
