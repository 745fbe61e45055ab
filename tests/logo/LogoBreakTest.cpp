// A button's endless script stops on Escape, and the card takes the next click.
#include "actions/ActionStack.h"
#include "base/KeyCodes.h"
#include "host/Application.h"
#include "host/MainLoop.h"
#include "logo/Evaluator.h"
#include "stack/SubRecord.h"

namespace {

class LogoBreakTest : public ActionStackTest {};

TEST_F(LogoBreakTest, AnEndlessScriptStopsOnEscapeAndTheCardGoesOn) {
    GetSubsystems().RunLogoText = ApplicationSubsystems().RunLogoText;
    const Bytes endless = StoredAction(5, {.flags = kActLogo, .rect = {0, 0, 100, 50},
                                           .subs = {StoredSub(64, Of("MAKE \"N 0 REPEAT 5000000 [MAKE \"N :N + 1]"))}});
    const Bytes onwards = StoredAction(6, {.flags = kActGo, .destination = 2, .rect = {200, 0, 300, 50}});
    Open(WriteActionStack("endless.stk", {{1, {endless, onwards}}, {2}}));
    const uint32_t t = GetHost().GetTickCount();
    using K = HostEventKind;
    for (const HostEvent& e : {HostEvent{.kind = K::MouseDown, .time = t, .x = 50, .y = 25},
                               HostEvent{.kind = K::MouseUp, .time = t, .x = 50, .y = 25},
                               HostEvent{.kind = K::KeyDown, .time = t, .key = kVkEscape},
                               HostEvent{.kind = K::MouseDown, .time = t + 100, .x = 250, .y = 25},
                               HostEvent{.kind = K::MouseUp, .time = t + 100, .x = 250, .y = 25}})
        QueueHeadlessEvent(e);
    RunMainLoop(t + 1000);
    EXPECT_EQ(Current(), 2);
    static std::string printed;
    RunLogoLines("PR :N < 5000000", nullptr, [](std::string_view text) { printed += text; });
    EXPECT_EQ(printed, "TRUE\n");
}

}  // namespace
