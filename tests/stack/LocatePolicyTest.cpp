// The locator takes only what the Policy lets the stack read, found or chosen; an opened stack
// becomes the one the Policy judges for.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/HostFile.h"
#include "platform/HostPath.h"
#include "platform/headless/HeadlessHost.h"
#include "policy/Policy.h"
#include "stack/Blob.h"
#include "stack/Document.h"
#include "player/Navigation.h"
#include "stack/PathSlot.h"
#include "player/StackFlows.h"
#include "support/StackBytes.h"

namespace {

namespace fs = std::filesystem;

class LocatePolicyTest : public testing::Test {
protected:
    void SetUp() override {
        StartProgramAfresh();
        outside_ = fs::temp_directory_path() / ("qb-outside-" + std::to_string(::getpid()));
        fs::create_directories(outside_);
    }
    void TearDown() override {
        CloseStack();
        CloseAllBlobStores();
        ResetPolicyState();
        fs::remove_all(outside_);
    }
    fs::path outside_;
};

TEST_F(LocatePolicyTest, OtherStacksComeOnlyFromAllowedFolders) {
    const std::string home = WriteTempFile("home.stk", StoredStack({}, {StoredCard(1, "")}, {}));
    const std::string beside = WriteTempFile("beside.stk", StoredStack({}, {StoredCard(1, "")}, {}));
    const std::string far = (outside_ / "far.stk").string();
    fs::copy_file(beside, far);
    SetSlotPath(kSlotStack, DosPathFromHost(home));
    ASSERT_EQ(OpenStack(false), kResultOk);
    EXPECT_EQ(GetPolicyState().context.stackPath, home);

    struct Case { std::string target, chosen; int32_t result; const char* stackAfter; };  // chosen "": cancelled
    const Case cases[] = {
        {far, "", kStackMoveStopped, "home.stk"},  // there, but outside
        {far, far, kStackMoveStopped, "home.stk"},
        {far, beside, kResultOk, "beside.stk"},
        {home, "", kResultOk, "home.stk"},
    };
    for (const Case& c : cases) {
        SetSlotPath(kSlotOtherStack, DosPathFromHost(c.target));
        if (!c.chosen.empty()) GetHeadlessState().fileChoices.push_back(c.chosen);
        EXPECT_EQ(GoToStack(kSlotOtherStack, 1, kPlainEffect, kPlainSpeed, false, false), c.result)
            << c.target << " / " << c.chosen;
        EXPECT_EQ(GetDocument().stackName, c.stackAfter) << c.target << " / " << c.chosen;
        EXPECT_TRUE(GetHeadlessState().fileChoices.empty());
    }
    EXPECT_EQ(GetPolicyState().context.stackPath, home);
    NewStack(false);
    EXPECT_EQ(GetPolicyState().context.stackPath, "");
}

// A host that keeps files elsewhere (the web) is asked for a missing file only where the stack may
// read; what it brings in is then found like any file.
struct FetchRecorder {
    std::vector<std::string> asked;
    std::string bringsIn;  // written when asked for
    Bytes bytes;
};
FetchRecorder gFetch;

TEST_F(LocatePolicyTest, MissingFilesAreFetchedOnlyWhereTheStackMayRead) {
    const std::string home = WriteTempFile("home.stk", StoredStack({}, {StoredCard(1, "")}, {}));
    const std::string beside = fs::path(home).replace_filename("fetched.stk").string();
    const std::string far = (outside_ / "far.stk").string();
    gFetch = FetchRecorder{{}, beside, StoredStack({}, {StoredCard(1, "")}, {})};
    GetHost().FetchFile = [](const std::string& path) {
        gFetch.asked.push_back(path);
        if (path == gFetch.bringsIn) WriteWholeHostFile(path, gFetch.bytes.data(), gFetch.bytes.size());
    };
    SetSlotPath(kSlotStack, DosPathFromHost(home));
    ASSERT_EQ(OpenStack(false), kResultOk);

    SetSlotPath(kSlotOtherStack, DosPathFromHost(far));
    EXPECT_EQ(GoToStack(kSlotOtherStack, 1, kPlainEffect, kPlainSpeed, false, false), kStackMoveStopped);
    for (const std::string& path : gFetch.asked) EXPECT_EQ(path.find(outside_.string()), std::string::npos) << path;

    SetSlotPath(kSlotOtherStack, DosPathFromHost(beside));
    EXPECT_EQ(GoToStack(kSlotOtherStack, 1, kPlainEffect, kPlainSpeed, false, false), kResultOk);
    EXPECT_EQ(GetDocument().stackName, "fetched.stk");
    CloseStack();
    fs::remove(beside);
    GetHost().FetchFile = [](const std::string&) {};
}

}  // namespace
