// Closing the player: the end splash stands centred for the host's time, or the window closes at
// once; input that comes meanwhile ends nothing.
#include "ui/EndSplash.h"

#include <gtest/gtest.h>

#include "base/StateRegistry.h"
#include "host/Application.h"
#include "host/WindowProc.h"
#include "pictures/ResourcePicture.h"
#include "platform/headless/HeadlessHost.h"

namespace {

TEST(EndSplash, CloseShowsItForTheHostsTimeOnly) {
    const ResourcePicture* splash = FindResourcePicture("end-splash");
    ASSERT_NE(splash, nullptr);
    for (const uint32_t splashMs : {kEndSplashMs, 0u}) {
        SCOPED_TRACE(splashMs);
        ResetHeadlessState();
        Host host = HeadlessHost();
        host.endSplashMs = splashMs;
        SetHost(host);
        ResetAllState();
        InitApplication(nullptr);
        QueueHeadlessEvent({.kind = HostEventKind::KeyDown, .time = 100, .key = 'A'});
        HandleWindowMessage(nullptr, {.kind = HostEventKind::Close});
        EXPECT_TRUE(GetWindowProcState().closed);
        EXPECT_EQ(GetHeadlessState().clockMs, splashMs);
        // The 160 by 100 picture's middle at the 640 by 480 window's middle.
        const Surface& screen = GetHeadlessState().screen;
        EXPECT_EQ(screen.Row(240)[320] == splash->pixels.Row(50)[80], splashMs != 0);
        EXPECT_EQ(screen.Row(0)[0] == kWhite, splashMs == 0) << "the card goes";
    }
    SetHost(HeadlessHost());
    ResetHeadlessState();
}

}  // namespace
