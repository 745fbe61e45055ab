// The wait for what an action started, the extra clicks an action may throw away, and the launch,
// which waits first and may close the window.
#include <utility>
#include <vector>

#include "actions/ActionStack.h"
#include "host/MainLoop.h"

namespace {

int gRoundsToGo = 0;  // the movie is done when this reaches 0

class ActionMediaTest : public ActionStackTest {
protected:
    void SetUp() override {
        ActionStackTest::SetUp();
        gRoundsToGo = 0;
        Subsystems& s = GetSubsystems();
        s.IsMovieDone = [](uint16_t) { return --gRoundsToGo <= 0; };
        s.StopAllAnimations = [] { Log("stop animations"); };
        s.StopSprites = [] { Log("stop sprites"); };
    }
};

// Eight rounds sleep one tick each on the host's virtual clock between them, 119 ms, two ticks' time:
// the tick's work still waits for the main loop, and each round steps the animations once.
TEST_F(ActionMediaTest, RoundsSleepOnTheHostAndServeOnlyTheirOwnSteps) {
    Subsystems& s = GetSubsystems();
    s.ServeAutoTimers = [](void*) { Log("auto timers"); };
    s.SendExtensionMessage = [](int32_t message) { Log("extensions " + N(message)); };
    s.StepAnimations = [](void*) { Log("step"); };
    gRoundsToGo = 8;
    WaitForActionMedia(false, true, false, 5);
    std::string rounds;
    for (int i = 0; i < 8; ++i) rounds += "round; step; ";
    EXPECT_EQ(Logged(), rounds + "stop animations; stop sprites; stop movies");
    EXPECT_EQ(GetHeadlessState().clockMs, 119u);
}

HostEvent Input(HostEventKind kind, uint32_t time) { return {.kind = kind, .time = time}; }

std::vector<HostEventKind> QueuedKinds() {
    std::vector<HostEventKind> kinds;
    for (const HostEvent& e : GetHeadlessState().events) kinds.push_back(e.kind);
    return kinds;
}

// A press or a key ends the wait; a move, a release, a key let go or a character does not.
// Whatever ended it stays queued, with all that came before.
TEST_F(ActionMediaTest, OnlyAPressOrAKeyEndsTheWaitAndItStaysQueued) {
    using K = HostEventKind;
    struct Case { std::vector<HostEvent> input; uint32_t endMs; };
    const Case cases[] = {
        {{Input(K::MouseMove, 20), Input(K::MouseDown, 40)}, 40},
        {{Input(K::MouseUp, 20), Input(K::KeyUp, 25), Input(K::Char, 27), Input(K::KeyDown, 60)}, 60},
        // Ten rounds, the second sleep cut short by the move: 0, 17, 20, 37, ... 139.
        {{Input(K::MouseMove, 20)}, 139},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "ends at " << c.endMs);
        ResetHeadlessState();
        for (const HostEvent& e : c.input) QueueHeadlessEvent(e);
        const std::vector<K> queued = QueuedKinds();
        gRoundsToGo = 10;
        WaitForActionMedia(true, false, false, 5);
        EXPECT_EQ(GetHeadlessState().clockMs, c.endMs);
        EXPECT_EQ(QueuedKinds(), queued);
    }
}

// "Ignore extra mouse clicks" throws away the presses and releases that came while the action
// ran; moves and keys stay, and without the setting everything does.
TEST_F(ActionMediaTest, IgnoringExtraClicksDropsOnlyButtonInput) {
    using K = HostEventKind;
    Open(WriteActionStack("plain.stk", {{1}}, {StoredRecord("Actn", 9, "", StoredAction(9, {}))}));
    const std::vector<K> input = {K::MouseDown, K::MouseMove, K::MouseUp, K::KeyDown};
    for (const bool ignore : {false, true}) {
        SCOPED_TRACE(ignore);
        ResetHeadlessState();
        for (const K kind : input) QueueHeadlessEvent(Input(kind, 0));
        QueueHeadlessEvent(Input(K::MouseDown, 500));  // still to come: not touched
        GetDocument().ignoreExtraClicks = ignore;
        RunActionById(9, 0, 0, "");
        using Ks = std::vector<K>;
        EXPECT_EQ(QueuedKinds(), (ignore ? Ks{K::MouseMove, K::KeyDown, K::MouseDown}
                                         : Ks{K::MouseDown, K::MouseMove, K::MouseUp, K::KeyDown, K::MouseDown}));
    }
}

TEST_F(ActionMediaTest, LaunchWaitsFillsItsSlotsAndMayQuit) {
    const std::string document = WriteTempFile("notes.txt", Bytes(4, 0));
    const std::string program = WriteTempFile("viewer.exe", Bytes(4, 0));
    const ActionSpec launch{.flags = 0x8000, .subs = {LaunchSub(document, program, 0x4000)}};
    Open(WriteActionStack("launch.stk", {{1}}, {StoredRecord("Actn", 9, "", StoredAction(9, launch))}));
    RunActionById(9, 0, 0, "");
    EXPECT_EQ(Logged(), "stop animations; stop sprites; stop movies; release laser; launch 16384");
    EXPECT_EQ(GetSlotName(15), "notes.txt");
    EXPECT_EQ(GetSlotName(9), "viewer.exe");
    EXPECT_TRUE(GetMainLoopState().closePosted);
}

}  // namespace
