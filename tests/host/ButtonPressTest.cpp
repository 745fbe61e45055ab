// Presses and hover on live button records: what runs, and what the window shows meanwhile.
#include "host/ButtonPress.h"

#include <gtest/gtest.h>

#include "host/ActionRecorder.h"

namespace {

constexpr Rect kButton{20, 20, 80, 50};
constexpr Rect kHoverButton{100, 100, 140, 140};

class ButtonPressTest : public testing::Test {
protected:
    void SetUp() override { StartPlayerWithRecorders(); }
    void TearDown() override { ResetAllState(); }
    static void Send(HostEventKind kind, int32_t x, int32_t y) { HandleWindowMessage(nullptr, MouseEvent(kind, x, y)); }
    // What has reached the screen inside the button: the hilite is white turned black.
    static bool ShownInverted() { return GetHeadlessState().screen.Row(30)[30] == kBlack; }
};

struct PressStep { char kind; /* 'D' down, 'M' move, 'U' up */ int32_t x, y; };

TEST_F(ButtonPressTest, ARunsOnlyWhenReleasedInside) {
    struct Case { const char* name; bool hiliteOnPress; uint16_t flags; std::vector<PressStep> steps;
                  bool invertedBeforeRelease; const char* runs; };
    const Case cases[] = {
        {"press and release", true, 0, {{'D', 30, 30}, {'U', 30, 30}}, true, "item 5"},
        {"drag out", true, 0, {{'D', 30, 30}, {'M', 200, 200}, {'U', 200, 200}}, false, ""},
        {"released outside without a move", true, 0, {{'D', 30, 30}, {'U', 200, 30}}, true, ""},
        {"out and back in", true, 0, {{'D', 30, 30}, {'M', 90, 30}, {'M', 70, 45}, {'U', 70, 45}}, true, "item 5"},
        {"no hilite", false, 0, {{'D', 30, 30}, {'U', 30, 30}}, false, "item 5"},
        {"doesn't follow a press", true, kItemFlagNoPressTracking, {{'D', 30, 30}, {'U', 30, 30}}, false, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        SetUp();
        DisplayItem* button = AddTestItem(kItemKindButton, 5, kButton, 0, c.flags);
        button->hiliteOnPress = c.hiliteOnPress;
        bool invertedBeforeRelease = false;
        for (const PressStep& step : c.steps) {
            if (step.kind == 'U') invertedBeforeRelease = ShownInverted();
            Send(step.kind == 'D'   ? HostEventKind::MouseDown
                 : step.kind == 'M' ? HostEventKind::MouseMove
                                    : HostEventKind::MouseUp, step.x, step.y);
        }
        EXPECT_EQ(invertedBeforeRelease, c.invertedBeforeRelease);
        EXPECT_FALSE(ShownInverted()) << "the button is left inverted";
        EXPECT_EQ(RecordedCalls(), c.runs);
        EXPECT_FALSE(GetButtonPressState().pressing);
    }
}

TEST_F(ButtonPressTest, HoverButtonFiresOncePerEntryAndEndsAPress) {
    AddTestItem(kItemKindButton, 5, kButton);
    AddTestItem(kItemKindButton, 9, kHoverButton, 0, kItemFlagHover);
    const Point moves[] = {{110, 110}, {120, 130}, {200, 200}, {139, 139}, {10, 10}, {101, 101}, {30, 30}};
    for (const Point& m : moves) Send(HostEventKind::MouseMove, m.x, m.y);
    EXPECT_EQ(RecordedCalls(), "item 9; item 9; item 9");
    Send(HostEventKind::MouseDown, 30, 30);
    ASSERT_TRUE(ShownInverted());
    Send(HostEventKind::MouseMove, 120, 120);
    Send(HostEventKind::MouseMove, 30, 30);
    Send(HostEventKind::MouseUp, 30, 30);
    EXPECT_EQ(RecordedCalls(), "item 9");
    EXPECT_FALSE(ShownInverted());
}

TEST_F(ButtonPressTest, ButtonGoneDuringAPressRunsNothing) {
    AddTestItem(kItemKindButton, 5, kButton);
    Send(HostEventKind::MouseDown, 30, 30);
    ResetDisplayList();  // another card came up under the press
    AddTestItem(kItemKindButton, 6, kButton);
    Send(HostEventKind::MouseMove, 31, 31);
    Send(HostEventKind::MouseUp, 31, 31);
    EXPECT_EQ(RecordedCalls(), "");
}

}  // namespace
