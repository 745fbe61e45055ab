// `render`: one PNG per card named by position and name, a contact sheet, and the frames of one
// card change whose last frame is the new card as `render --card` draws it.
#ifdef QB_WITH_CLI

#include <gtest/gtest.h>


#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "Commands.h"
#include "PngFile.h"
#include "support/CommandFixture.h"

namespace {

namespace fs = std::filesystem;

const std::string kStack = std::string(QB_FIXTURES_DIR) + "/sample-cards.stk";

class RenderCommandTest : public CommandFixture {
protected:
    static PngImage Read(const std::string& path) {
        PngImage image;
        std::string error;
        EXPECT_TRUE(ReadPng(path, &image, &error)) << path << ": " << error;
        return image;
    }
};

TEST_F(RenderCommandTest, EveryCardByPositionAndNameAndASheetOfThemAll) {
    RenderOptions options;
    options.path = kStack;
    options.output = dir_.string();
    options.all = true;
    options.contactSheet = true;
    ASSERT_EQ(RunQuietly(options), 0);
    for (const char* name : {"001-Cover.png", "002-Shared.png", "003-Blank.png", "004-Last.png", "contact-sheet.png"}) {
        EXPECT_TRUE(fs::exists(dir_ / name)) << name;
    }
    // A card rendered alone is the same picture as in the set.
    options.all = false;
    options.card = 2;
    options.output = Path("two.png");
    ASSERT_EQ(RunQuietly(options), 0);
    const PngImage alone = Read(options.output), inSet = Read(Path("002-Shared.png"));
    EXPECT_EQ(alone.width, inSet.width);
    EXPECT_EQ(alone.rgba, inSet.rgba);
}

TEST_F(RenderCommandTest, ACardChangeWritesItsFramesAndEndsOnTheNewCard) {
    RenderOptions options;
    options.path = kStack;
    options.card = 1;
    options.toCard = 3;
    options.transition = 7;  // Blocks: 41 steps
    options.speed = 8;
    options.framesDir = Path("frames");
    options.output = Path("last.png");
    ASSERT_EQ(RunQuietly(options), 0);
    EXPECT_TRUE(fs::exists(fs::path(options.framesDir) / "frame-0002.png"));

    RenderOptions plain;
    plain.path = kStack;
    plain.card = 3;
    plain.output = Path("three.png");
    ASSERT_EQ(RunQuietly(plain), 0);
    EXPECT_EQ(Read(options.output).rgba, Read(plain.output).rgba);
}

TEST_F(RenderCommandTest, ACardThatIsNotThereIsRefused) {
    RenderOptions options;
    options.path = kStack;
    options.output = Path("none.png");
    for (int card : {0, 5}) {
        options.card = card;
        EXPECT_EQ(RunQuietly(options), 2) << card;
    }
    options.card = 1;
    options.toCard = 9;
    options.framesDir = dir_.string();
    EXPECT_EQ(RunQuietly(options), 2);
    EXPECT_FALSE(fs::exists(options.output));
}

#ifdef QB_QUILLBROOK
// A failed open puts a new stack on a scratch file in the temporary folder; no run of the program
// leaves one behind.
TEST_F(RenderCommandTest, NoScratchFileOutlivesTheProgram) {
    const fs::path temp = dir_ / "tmp";
    fs::create_directories(temp);
    const auto files = [&temp] { return std::distance(fs::directory_iterator(temp), fs::directory_iterator()); };
    const std::string damaged = Path("damaged.stk");
    std::ofstream(damaged) << "shorter than a stack's header";
    const struct {
        const char* name;
        std::string arguments;
    } cases[] = {
        {"a failed open", "resave '" + damaged + "' -o '" + Path("out.stk") + "'"},
        {"a render of a damaged stack", "render '" + damaged + "' -o '" + Path("out.png") + "'"},
        {"a normal play", "play '" + kStack + "' --exit-after 300"},
    };
    for (const auto& c : cases) {
        const auto before = files();
        const std::string command = "TMPDIR='" + temp.string() + "' SDL_VIDEODRIVER=dummy '" QB_QUILLBROOK "' " +
                                    c.arguments + " >/dev/null 2>&1";
        std::system(command.c_str());
        EXPECT_EQ(files(), before) << c.name;
    }
}
#endif

}  // namespace

#endif  // QB_WITH_CLI
