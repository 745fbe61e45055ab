// The headless window: what the core draws reaches the "screen" only through Present, rectangle
// by rectangle, and every present is recorded.
#include <gtest/gtest.h>

#include "gfx/Draw.h"
#include "platform/Host.h"
#include "platform/headless/HeadlessHost.h"

namespace {

class HeadlessWindow : public ::testing::Test {
protected:
    void SetUp() override {
        ResetHeadlessState();
        SetHost(HeadlessHost());
    }
    void TearDown() override { ResetHeadlessState(); }
};

TEST_F(HeadlessWindow, PresentShowsOnlyTheDirtyRectangle) {
    Host& host = GetHost();
    Surface* window = host.GetWindowSurface();
    ASSERT_EQ(window, &GetHeadlessState().window);
    EXPECT_EQ(window->Bounds(), (Rect{0, 0, kHeadlessWindowWidth, kHeadlessWindowHeight}));

    FillRect(*window, window->Bounds(), {10, 10, 30, 30}, kBlack);
    host.Present({0, 0, 20, 20});
    host.Present({600, 470, 700, 500});
    const HeadlessState& state = GetHeadlessState();
    ASSERT_EQ(state.presents.size(), 2u);
    EXPECT_EQ(state.presents[1], (Rect{600, 470, 640, 480}));
    EXPECT_EQ(state.screen.Row(19)[19], kBlack);
    EXPECT_EQ(state.screen.Row(20)[20], kWhite) << "drawn but never presented";
    EXPECT_EQ(state.screen.Row(9)[9], kWhite);
}

TEST_F(HeadlessWindow, SizeTitleAndCursor) {
    Host& host = GetHost();
    Surface* window = host.GetWindowSurface();
    SetHeadlessWindowSize(320, 10);  // 40 is the smallest side
    EXPECT_EQ(host.GetWindowSurface(), window) << "the surface keeps its address";
    EXPECT_EQ(window->Bounds(), (Rect{0, 0, 320, 40}));
    EXPECT_EQ(GetHeadlessState().screen.Bounds(), (Rect{0, 0, 320, 40}));
    host.SetTitle("Caf\xE9 stack");
    host.SetCursor(1003);
    EXPECT_EQ(GetHeadlessState().title, "Caf\xE9 stack");
    EXPECT_EQ(GetHeadlessState().cursorId, 1003);
}

}  // namespace
