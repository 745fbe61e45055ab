// The file chooser on scripted input, over a folder made for the test:
//   Art/c.stk, A.STK, b.stk, notes.txt, .hidden.stk, Many/f00.stk ... f19.stk
// The list shows "..", Art, Many, A.STK, b.stk: the text file and the hidden one are left out.
#include "ui/FileChooser.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/KeyCodes.h"
#include "platform/headless/HeadlessHost.h"
#include "support/ScriptedInput.h"

namespace {

namespace fs = std::filesystem;
using K = HostEventKind;

HostEvent Mouse(K kind, int32_t x, int32_t y, int32_t clicks = 1) {
    return {.kind = kind, .x = x, .y = y, .clicks = clicks};
}
// On a 640 by 480 window the 420 by 330 box stands at (110, 75): list row i in view is centred at
// y 136 + 16 i, the list's bar at x 503 to 517, OK and Cancel at (395, 381) and (480, 381).
int32_t RowY(int row) { return 136 + 16 * row; }
std::vector<HostEvent> Click(int32_t x, int32_t y, int32_t clicks = 1) {
    return {Mouse(K::MouseDown, x, y, clicks), Mouse(K::MouseUp, x, y)};
}
std::vector<HostEvent> operator+(std::vector<HostEvent> a, const std::vector<HostEvent>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

class FileChooserTest : public testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("qb-chooser-" + std::to_string(::getpid()));
        fs::remove_all(dir_);
        fs::create_directories(dir_ / "Art");
        fs::create_directories(dir_ / "Many");
        for (const char* name : {"Art/c.stk", "A.STK", "b.stk", "notes.txt", ".hidden.stk"}) Touch(name);
        for (int i = 0; i < 20; ++i) Touch("Many/f" + std::string(i < 10 ? "0" : "") + std::to_string(i) + ".stk");
    }
    void TearDown() override {
        fs::remove_all(dir_);
        ResetHeadlessState();
    }
    void Touch(const std::string& name) const { std::ofstream(dir_ / name) << "x"; }
    fs::path dir_;
};

TEST_F(FileChooserTest, KeysTypingAndClicksChooseAFile) {
    // The proposal and the choice are in the test's folder; no choice is a cancel.
    struct Case { const char* name; bool save; const char* proposed; std::vector<HostEvent> script; const char* chosen; };
    const Case cases[] = {
        {"Return takes the proposal", false, "b.stk", {Key(kVkReturn)}, "b.stk"},
        {"Up", false, "b.stk", {Key(kVkUp), Key(kVkReturn)}, "A.STK"},
        {"typing selects", false, "b.stk", {Type('a'), Type('.'), Key(kVkReturn)}, "A.STK"},
        {"into a folder", false, "b.stk", {Key(kVkHome), Key(kVkDown), Key(kVkReturn), Key(kVkReturn)}, "Art/c.stk"},
        {"and back up by ..", false, "b.stk",
         {Key(kVkHome), Key(kVkDown), Key(kVkReturn), Key(kVkHome), Key(kVkReturn), Key(kVkDown),
          Key(kVkDown), Key(kVkReturn)}, "A.STK"},
        {"double click", false, "b.stk", Click(210, RowY(3)) + Click(210, RowY(3), 2), "A.STK"},
        {"the bar pages the list", false, "Many/f00.stk",
         Click(510, 325) + Click(210, RowY(0)) + Click(395, 381), "Many/f07.stk"},
        {"Escape", false, "b.stk", {Key(kVkDown), Key(kVkEscape)}, ""},
        {"Cancel", false, "b.stk", Click(480, 381), ""},
        {"save: the proposal takes the extension", true, "Untitled", {Key(kVkReturn)}, "Untitled.stk"},
        {"save: typing replaces it", true, "Untitled",
         {Type('n'), Type('e'), Type('e'), Key(kVkBack), Type('w'), Key(kVkReturn)}, "new.stk"},
        {"save: a file picked", true, "Untitled", {Key(kVkEnd), Key(kVkReturn)}, "b.stk"},
        {"save: into a folder", true, "Untitled",
         {Key(kVkDown), Key(kVkDown), Key(kVkReturn), Type('x'), Key(kVkReturn)}, "Art/x.stk"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        StartScript(c.script);
        const FileChoice choice{.save = c.save, .title = "", .filterName = "Stacks (*.STK)", .filterPattern = "*.stk",
                                .proposed = (dir_ / c.proposed).string()};
        std::string chosen;
        EXPECT_EQ(RunFileChooser(choice, &chosen), *c.chosen != 0);
        EXPECT_EQ(chosen, *c.chosen ? (dir_ / c.chosen).string() : "");
    }
}

}  // namespace
