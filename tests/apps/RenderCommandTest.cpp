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

class RenderCommandTest : public CommandFixture {
protected:
    // One card of the fixture stack into `output`.
    RenderOptions Card(int card, const std::string& output) const {
        RenderOptions options;
        options.path = std::string(QB_FIXTURES_DIR) + "/sample-cards.stk";
        options.card = card;
        options.output = Path(output);
        return options;
    }
};

TEST_F(RenderCommandTest, EveryCardByPositionAndNameAndASheetOfThemAll) {
    RenderOptions all = Card(0, "");
    all.all = true;
    all.contactSheet = true;
    ASSERT_EQ(RunQuietly(all), 0);
    for (const char* name : {"001-Cover.png", "002-Shared.png", "003-Blank.png", "004-Last.png", "contact-sheet.png"})
        EXPECT_TRUE(fs::exists(dir_ / name)) << name;
    // A card rendered alone is the same picture as in the set.
    ASSERT_EQ(RunQuietly(Card(2, "two.png")), 0);
    EXPECT_EQ(ReadImage(Path("two.png")).rgba, ReadImage(Path("002-Shared.png")).rgba);
}

TEST_F(RenderCommandTest, ACardChangeWritesItsFramesAndEndsOnTheNewCard) {
    RenderOptions change = Card(1, "last.png");
    change.toCard = 3;
    change.transition = 7;  // Blocks: 41 steps
    change.speed = 8;
    change.framesDir = Path("frames");
    ASSERT_EQ(RunQuietly(change), 0);
    EXPECT_TRUE(fs::exists(fs::path(change.framesDir) / "frame-0002.png"));
    ASSERT_EQ(RunQuietly(Card(3, "three.png")), 0);
    EXPECT_EQ(ReadImage(change.output).rgba, ReadImage(Path("three.png")).rgba);
}

TEST_F(RenderCommandTest, ACardThatIsNotThereIsRefused) {
    for (int card : {0, 5}) EXPECT_EQ(RunQuietly(Card(card, "none.png")), 2) << card;
    RenderOptions change = Card(1, "none.png");
    change.toCard = 9;
    change.framesDir = dir_.string();
    EXPECT_EQ(RunQuietly(change), 2);
    EXPECT_FALSE(fs::exists(Path("none.png")));
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
    const struct { const char* name; std::string arguments; } cases[] = {
        {"a failed open", "resave '" + damaged + "' -o '" + Path("out.stk") + "'"},
        {"a render of a damaged stack", "render '" + damaged + "' -o '" + Path("out.png") + "'"},
        {"a normal play", "play '" + Card(1, "").path + "' --exit-after 300"},
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
        RenderOptions options = Card(c.card, "");
        options.all = c.all;
        options.output = c.all ? out.string() : (out / "three.png").string();
        GetHeadlessState().terminalFds = c.terminal ? 1u << 2 : 0;
        EXPECT_EQ(RunQuietly(options), c.code);
        EXPECT_TRUE(*c.err ? err_.find(c.err) != std::string::npos : err_.empty()) << err_;
    }
}

}  // namespace

#endif  // QB_WITH_CLI
