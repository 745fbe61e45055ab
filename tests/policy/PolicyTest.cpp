// What a stack may read, write, load and launch, on a disk made at test time: a stack with its art,
// media beside it, a secret next door, a link out of its folder, an installation and a config folder.
#include "policy/Policy.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

class PolicyTest : public testing::Test {
protected:
    void SetUp() override {
        root_ = fs::temp_directory_path() / ("qb-policy-" + std::to_string(::getpid()));
        fs::remove_all(root_);
        for (const char* file :
             {"site/Stacks/game.stk", "site/Stacks/art/pic.bmp", "site/QBSounds/ding.wav",
              "site/Other/secret.txt", "install/QBArt/logo.bmp", "install/Extras/extra.bmp",
              "install/NBAs/Sound.nba", "config/NBAs/Sound.nba", "config/NBAs/Mine.nba"}) {
            fs::create_directories((root_ / file).parent_path());
            std::ofstream(root_ / file) << "x";
        }
        fs::create_symlink(root_ / "site/Other/secret.txt", root_ / "site/Stacks/leak.bmp");
        ResetPolicyState();
        SetPolicyFolders(At("install"), At("config"));
        SetPolicyStack(At("site/Stacks/game.stk"));
    }
    void TearDown() override { ResetPolicyState(); fs::remove_all(root_); }

    std::string At(const std::string& relative) const { return (root_ / relative).string(); }

    fs::path root_;
};

struct PathCase { const char* path; bool allowed; };  // the path is under the test root

TEST_F(PolicyTest, ReadsStayInTheStacksFoldersAndTheMediaFolders) {
    // Media folders match in any case; a link out of the stack's folder does not count.
    const PathCase cases[] = {
        {"site/Stacks/art/pic.bmp", true},
        {"site/qbsounds/ding.wav", true},
        {"install/QBArt/logo.bmp", true},
        {"site/Stacks/leak.bmp", false},
        {"site/StacksMore/a.bmp", false},
        {"install/Extras/extra.bmp", false},
    };
    for (const PathCase& c : cases) EXPECT_EQ(PolicyAllowsRead(At(c.path)), c.allowed) << c.path;

    const std::string sandbox = PolicySandboxFolder();
    EXPECT_TRUE(PolicyAllowsRead(sandbox + "/notes.txt"));
    // The OS stops at the NUL, so the part behind it must not make the path look inside.
    std::string cut = "/etc/passwd";
    cut += '\0';
    EXPECT_FALSE(PolicyAllowsRead(cut + "/../.." + At("site/Stacks/art/pic.bmp")));
}

TEST_F(PolicyTest, WritesOnlyInTheStacksOwnSandboxAndTheStackItself) {
    const std::string sandbox = PolicySandboxFolder();
    ASSERT_EQ(sandbox.rfind(fs::canonical(root_ / "config").string() + "/Sandboxes/game-", 0), 0u)
        << sandbox;
    fs::create_directories(sandbox);
    fs::create_directory_symlink(root_ / "site/Other", sandbox + "/escape");
    const PathCase cases[] = {
        {"site/Stacks/game.stk", true},     {"site/Stacks/QBTMP000.TMP", true},
        {"site/Stacks/QBTMP12.TMP", false}, {"site/Stacks/art/QBTMP000.TMP", false},
        {"site/QBSounds/ding.wav", false},  {"config/Sandboxes", false},
    };
    for (const PathCase& c : cases) EXPECT_EQ(PolicyAllowsWrite(At(c.path)), c.allowed) << c.path;
    const std::pair<const char*, bool> inSandbox[] = {
        {"/sub/deeper.txt", true},
        {"/", false},
        {"/escape/secret.txt", false},
    };
    for (const auto& [tail, allowed] : inSandbox) EXPECT_EQ(PolicyAllowsWrite(sandbox + tail), allowed) << tail;

    SetPolicyStack(At("site/Stacks/art/../game.stk"));
    EXPECT_EQ(PolicySandboxFolder(), sandbox) << "the same stack finds its files again";
    SetPolicyStack(At("site/Other/game.stk"));
    EXPECT_FALSE(PolicyAllowsWrite(sandbox + "/notes.txt")) << "another stack of the same name";
    SetPolicyFolders(At("install"), "");
    EXPECT_EQ(PolicySandboxFolder(), "");
    EXPECT_TRUE(PolicyAllowsWrite(At("site/Other/game.stk")));
}

TEST_F(PolicyTest, ModulesLoadByBareNameFromTheNbaFoldersOrCompiledIn) {
    RegisterBuiltInModule("Quiz.nba");
    RegisterBuiltInModule("../Evil.nba");  // never a name to load
    std::string file = "unchanged";
    EXPECT_TRUE(PolicyAllowsLoad("QUIZ.NBA", &file));
    EXPECT_EQ(file, "");
    EXPECT_FALSE(PolicyAllowsLoad("../Evil.nba", &file));
    SetPolicyPlace(PolicyPlace::Web);
    EXPECT_FALSE(PolicyAllows(PolicyAct::Load, "Mine.nba")) << "no module files on the web";
    SetPolicyPlace(PolicyPlace::Desktop);
    if (PolicyOnWeb()) GTEST_SKIP() << "a web build has no module files";

    // The installation's folder is asked first; anything but a bare name is refused.
    const std::pair<std::string, const char*> cases[] = {
        {"Sound.nba", "install/NBAs/Sound.nba"},
        {"Mine.nba", "config/NBAs/Mine.nba"},
        {"Missing.nba", nullptr},
        {At("install/NBAs/Sound.nba"), nullptr},
        {std::string("Sound.nba\0x", 11), nullptr},
    };
    for (const auto& [name, found] : cases) {
        file = "unchanged";
        EXPECT_EQ(PolicyAllowsLoad(name, &file), found != nullptr) << name;
        EXPECT_EQ(file, found ? At(found) : "") << name;
    }
}

std::vector<std::string> gAsked;
bool gAnswer = false;
bool Confirm(const std::string& program, const std::string&) { gAsked.push_back(program); return gAnswer; }

TEST_F(PolicyTest, LaunchesNeverRunOnTheWebAreRecordedHeadlessAndAskedOnTheDesktop) {
    SetPolicyConfirmLaunch(Confirm);
    gAnswer = true;
    for (PolicyPlace place : {PolicyPlace::Web, PolicyPlace::Headless}) {
        SetPolicyPlace(place);
        EXPECT_FALSE(PolicyAllowsLaunch("/usr/bin/xcalc")) << static_cast<int>(place);
    }
    ASSERT_EQ(GetPolicyState().launchesRecorded.size(), PolicyOnWeb() ? 0u : 1u);
    if (PolicyOnWeb()) GTEST_SKIP() << "a web build never launches";
    EXPECT_EQ(GetPolicyState().launchesRecorded[0].program, "/usr/bin/xcalc");
    EXPECT_TRUE(gAsked.empty());

    SetPolicyPlace(PolicyPlace::Desktop);
    EXPECT_TRUE(PolicyAllowsLaunch("/usr/bin/xcalc"));
    gAnswer = false;
    EXPECT_TRUE(PolicyAllowsLaunch("/usr/bin/xcalc")) << "asked once per stack and program";
    EXPECT_FALSE(PolicyAllowsLaunch("/usr/bin/xterm"));
    SetPolicyStack(At("site/Other/other.stk"));
    EXPECT_FALSE(PolicyAllows(PolicyAct::Launch, "/usr/bin/xcalc")) << "another stack asks again";
    EXPECT_EQ(gAsked, (std::vector<std::string>{"/usr/bin/xcalc", "/usr/bin/xterm", "/usr/bin/xcalc"}));
    SetPolicyConfirmLaunch(nullptr);
    EXPECT_FALSE(PolicyAllowsLaunch("/usr/bin/xclock")) << "no one to ask";
    EXPECT_FALSE(PolicyAllowsLaunch(""));
}

}  // namespace
