// The Jump To Card dialog fed with scripted input.
#include "ui/JumpDialog.h"

#include <gtest/gtest.h>

#include "host/WindowProc.h"
#include "platform/headless/HeadlessHost.h"
#include "support/ScriptedInput.h"

namespace {

// The buttons' middles on a 640 by 480 window, where the 260 by 104 box stands at (190, 188).
constexpr int32_t kOkX = 190 + 123, kCancelX = 190 + 208, kButtonsY = 188 + 80;
HostEvent Down(int32_t x) { return {.kind = HostEventKind::MouseDown, .x = x, .y = kButtonsY}; }
HostEvent Up(int32_t x, int32_t y = kButtonsY) { return {.kind = HostEventKind::MouseUp, .x = x, .y = y}; }

TEST(JumpDialog, TypingAndAnswers) {
    struct Case { const char* name; std::vector<HostEvent> script; bool ok; const char* text; };
    std::vector<HostEvent> tooLong;
    for (const char c : std::string("Sixteen letters!")) tooLong.push_back(Type(c));
    tooLong.push_back(Key(kVkReturn));
    const Case cases[] = {
        {"Return", {Type('1'), Type('2'), Key(kVkBack), Type('3'), Key(kVkReturn)}, true, "13"},
        {"15 characters at most", tooLong, true, "Sixteen letters"},
        {"Escape", {Type('4'), Key(kVkEscape)}, false, ""},
        {"OK clicked", {Type('x'), Down(kOkX), Up(kOkX)}, true, "x"},
        {"Cancel clicked", {Type('x'), Down(kCancelX), Up(kCancelX)}, false, ""},
        {"OK pressed, released off it", {Down(kOkX), Up(kOkX, kButtonsY + 40)}, false, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        StartScript(c.script);
        std::string text;
        EXPECT_EQ(RunJumpDialog(&text), c.ok);
        EXPECT_EQ(text, c.text);
    }
    ResetHeadlessState();
}

}  // namespace
