// `render`: one PNG per card named by position and name, a contact sheet, and the frames of one
// card change whose last frame is the new card as `render --card` draws it.
#ifdef QB_WITH_CLI

#include <gtest/gtest.h>


#include <filesystem>
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

// --all draws its progress on a terminal only; a card that cannot be written is named by the
// stack and the card.
TEST_F(RenderCommandTest, ProgressOnATerminalAndFailuresNameTheCard) {
    struct Case { bool all; int card; bool terminal; const char* inTheWay; int code; const char* err; };
    const Case cases[] = {
        {true, 1, true, nullptr, 0, "] 3/4 Last"},
        {true, 1, false, nullptr, 0, ""},
        {true, 1, true, "002-Shared.png", 1, "sample-cards.stk: card 2 \"Shared\" was not rendered"},
        {false, 3, false, "three.png", 1, "sample-cards.stk: card 3 \"Blank\" was not rendered"},
    };
    int run = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(run);
        const fs::path out = dir_ / std::to_string(run++);
        fs::create_directories(c.inTheWay ? out / c.inTheWay : out);
        RenderOptions options;
        options.path = kStack;
        options.all = c.all;
        options.card = c.card;
        options.output = c.all ? out.string() : (out / "three.png").string();
        GetHeadlessState().terminalFds = c.terminal ? 1u << 2 : 0;
        EXPECT_EQ(RunQuietly(options), c.code);
        if (*c.err) {
            EXPECT_NE(err_.find(c.err), std::string::npos) << err_;
        } else {
            EXPECT_EQ(err_, "");
        }
    }
}

}  // namespace

#endif  // QB_WITH_CLI
