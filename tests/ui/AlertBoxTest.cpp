// The alert as a modal box in the window, fed with scripted input on the headless host.
#include "ui/AlertBox.h"

#include <gtest/gtest.h>

#include "base/StateRegistry.h"
#include "card/OffscreenCard.h"
#include "gfx/Draw.h"
#include "host/MainLoop.h"
#include "host/WindowProc.h"
#include "messages/Alert.h"
#include "platform/AlertLayout.h"
#include "platform/headless/HeadlessHost.h"
#include "ui/AlertDraw.h"
#include "ui/ModalLoop.h"

namespace {

constexpr char kThreeButtons[] = "03This stack was changed, do you want to save it?~Save~Cancel~^Don't Save";
constexpr char kNoCancel[] = "34Shall we?~OK~^Later";

class AlertBoxTest : public testing::Test {
protected:
    void SetUp() override {
        SetHost(HeadlessHost());
        // No offscreen card: the window comes back from what the box saved of it.
        ResetAllState();
        GetHeadlessState().modalAlerts = true;
    }
    void TearDown() override { ResetAllState(); }

    static void Queue(HostEvent e, uint32_t time) { e.time = time; QueueHeadlessEvent(e); }
    static void Key(uint16_t key, uint32_t time) { Queue({.kind = HostEventKind::KeyDown, .key = key}, time); }
    static void Mouse(HostEventKind kind, const Point& at, uint32_t time) {
        Queue({.kind = kind, .x = at.x, .y = at.y}, time);
    }
    // The middle of button `n` (1-3) of the box for `text`, in window coordinates.
    static Point ButtonCentre(const char* text, int n) {
        AlertLayout layout;
        EXPECT_TRUE(BuildAlertLayout(0, text, true, &layout));
        const Rect box = CentredBox(layout.width, layout.height);
        const AlertRect& r = layout.buttons[n - 1].rect;
        const Point p{box.left + layout.frame + (r.left + r.right) / 2,
                      box.top + layout.frame + (r.top + r.bottom) / 2};
        EXPECT_EQ(AlertButtonAt(layout, p.x - box.left, p.y - box.top), n);
        return p;
    }
};

TEST_F(AlertBoxTest, KeysAndClicksAnswer) {
    const Point save = ButtonCentre(kThreeButtons, 1);
    const Point cancel = ButtonCentre(kThreeButtons, 2);
    using P = const Point&;
    struct Case { const char* name; const char* text; void (*script)(P save, P cancel); int answer; };
    // clang-format off
    const Case cases[] = {
        {"Return: the default button", kThreeButtons, [](P, P) { Key(kVkReturn, 100); }, 3},
        {"Escape: Cancel", kThreeButtons, [](P, P) { Key(kVkEscape, 100); }, 2},
        {"Escape without Cancel does nothing", kNoCancel, [](P, P) { Key(kVkEscape, 100), Key(kVkReturn, 200); }, 2},
        {"a click on a button", kThreeButtons,
         [](P s, P) { Mouse(HostEventKind::MouseDown, s, 100), Mouse(HostEventKind::MouseUp, s, 150); }, 1},
        {"pressed on one button, released on another, then outside the box", kThreeButtons, [](P s, P c) {
             Mouse(HostEventKind::MouseDown, s, 100), Mouse(HostEventKind::MouseMove, c, 120);
             Mouse(HostEventKind::MouseUp, c, 150), Mouse(HostEventKind::MouseDown, {5, 5}, 200);
             Mouse(HostEventKind::MouseUp, {5, 5}, 210), Key(kVkReturn, 300); }, 3},
        {"the script runs out: Cancel", kThreeButtons, [](P, P) {}, 2},
        {"the script runs out without Cancel: the default", kNoCancel, [](P, P) {}, 2},
        {"the window closes", kThreeButtons,
         [](P, P) { Queue({.kind = HostEventKind::Close}, 100), Key(kVkReturn, 200); }, 2},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        SetUp();
        c.script(save, cancel);
        EXPECT_EQ(AlertText(c.text), c.answer);
    }
}

TEST_F(AlertBoxTest, TimersRunUnderTheBoxAndTheWindowComesBack) {
    Surface& window = GetHeadlessState().window;
    FillRect(window, window.Bounds(), {0, 0, 320, 480}, Rgb(0, 0x80, 0));
    GetHost().Present(window.Bounds());
    const Surface before = GetHeadlessState().screen;
    Key(kVkReturn, 1000);
    EXPECT_EQ(AlertText(kThreeButtons), 3);
    EXPECT_EQ(GetMainLoopState().ticksServed, 1000u / kTickMs);

    AlertLayout layout;
    ASSERT_TRUE(BuildAlertLayout(0, kThreeButtons, true, &layout));
    const Rect box = CentredBox(layout.width, layout.height);
    const std::vector<Rect>& presents = GetHeadlessState().presents;
    EXPECT_NE(std::find(presents.begin(), presents.end(), box), presents.end()) << "the box was never shown";
    EXPECT_EQ(GetHeadlessState().screen.pixels, before.pixels) << "the window wasn't restored";
}

}  // namespace
