// Automatic timers on a card of timed buttons, served by the tick on the headless clock.
#include "actions/ActionTimers.h"

#include "actions/ActionStack.h"
#include "stack/SubRecord.h"

namespace {

// A button whose action runs the script "b ID" after `seconds`, once or (mode 2) again and again.
Bytes TimedButton(uint16_t id, int16_t seconds, uint16_t mode) {
    Bytes b = StoredAction(id, {.flags = kActLogo, .subs = {StoredSub(64, Of("b " + N(id)))}});
    PutBE16(b, 24, static_cast<uint16_t>(seconds));
    PutBE16(b, 26, mode);
    return b;
}

class ActionTimersTest : public ActionStackTest {
protected:
    // Whole passes of the tick, a second and a bit each.
    static void Passes(int count) {
        for (int i = 0; i < count; ++i) {
            AdvanceHeadlessClock(kTimerPassTicks * kTimerTickMs);
            TickActionTimers(nullptr);
        }
    }
};

TEST_F(ActionTimersTest, TimersFireOnTheirPassAndRepeatOnlyWhenAskedTo) {
    std::vector<Bytes> buttons = {TimedButton(5, 0, 1), TimedButton(6, 2, 1), TimedButton(7, 1, kTimerRepeat),
                                  TimedButton(8, 1, kTimerOff)};
    // Twenty more: the card's 21st timer and those after it are dropped.
    for (uint16_t id = 10; id < 30; ++id) buttons.push_back(TimedButton(id, 100, 1));
    Open(WriteActionStack("timers.stk", {{1, buttons}}));
    BuildActionTimers();
    EXPECT_EQ(GetActionTimer(19).actionId, 26u);
    // A pass counts down before it fires: one second's timer fires on the first pass, as 0 does.
    Passes(1);
    EXPECT_EQ(Logged(), "logo b 5; logo b 7");
    Passes(1);
    EXPECT_EQ(Logged(), "logo b 6; logo b 7");
    Passes(1);
    EXPECT_EQ(Logged(), "logo b 7");
    // With the preference off, the countdown stands still.
    GetDocument().autoTimers = false;
    Passes(3);
    EXPECT_EQ(Logged(), "");
}

}  // namespace
