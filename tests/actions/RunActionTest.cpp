// The interpreter's fixed step order, its checks after an NBA and a script, and the ways in.
#include "actions/RunAction.h"

#include "actions/ActionQuery.h"
#include "actions/ActionStack.h"
#include "gfx/Palette.h"
#include "stack/CardRecord.h"

namespace {

class RunActionTest : public ActionStackTest {
protected:
    void SetUp() override { ActionStackTest::SetUp(); ding = WriteTempFile("ding.wav", Bytes(16, 0)); }
    // Three cards; the second and third say when they are arrived at. `actions` are 'Actn'
    // records with ids from 101; `card1` are the first card's items.
    void OpenWith(const std::vector<ActionSpec>& actions, const std::vector<Bytes>& card1 = {}) {
        std::vector<Bytes> records = {StoredRecord("Snd ", 7, "", Bytes(8, 0))};
        uint16_t id = 101;
        for (const ActionSpec& a : actions)
            records.push_back(StoredRecord("Actn", id, "", StoredAction(id, a))), ++id;
        Open(WriteActionStack("actions.stk", {{1, card1}, {2, {}, 22}, {3, {}, 33}}, records));
    }
    std::string ding;
};

TEST_F(RunActionTest, StepsRunInTheirOrderWhateverTheOrderOfTheSubRecords) {
    const Bytes laser(64, 0);
    const ActionSpec every{
        .flags = 0x0001 | 0x0004 | 0x0008 | 0x0020 | 0x0080 | 0x0100 | 0x1000 | 0x4000 | 0x8000, .destination = 2,
        .subs = {StoredSub(64, Of("fd 10")), LaunchSub(ding, ding, 0),
                 StoredSub(51, Of("args"), {{16, 1234}}), StoredSub(119, laser),
                 StoredSub(56, Bytes(34, 0)), StoredSub(89, StoredRef(ding + ".avi"), {{2, 5}}),
                 StoredSub(83, {}, {{4, 200}, {16, 7}}), StoredSub(82, StoredRef(ding), {{4, 100}})}};
    // clang-format off
    const struct { const char* what; ActionSpec action; uint32_t wait; std::string expected; } cases[] = {
        {"every bit", every, 0, "stop sounds; sound record v200; stop sounds; sound ding.wav; prepare movie 101; "
                                "animation; laser; start movie 101; nba 1234/4; logo fd 10; round; stop movies; stop sounds; stop movies; arrive 22"},
        {"go and launch: only the move", {.flags = 0x8020, .destination = 3, .subs = {LaunchSub(ding, ding, 0)}}, 0,
         "stop movies; stop sounds; stop movies; arrive 33"},
        {"movie without its sub-record", {.flags = 0x0100}, 1, "start movie 103; round; stop movies"},
        {"bits without sub-records; a tag 60 without the go bit",
         {.flags = 0x0001 | 0x0004 | 0x0008 | 0x0080 | 0x1000 | 0x4000 | 0x8000, .subs = {StoredSub(60, StoredRef(ding))}},
         0, ""},
        {"a stop order", {.flags = 0x0004, .subs = {StoredSub(83, {}, {{16, 7}, {24, 0xFFFF}})}}, 0, "stop sounds"},
        {"a sprite film", {.flags = 0x0080, .subs = {StoredSub(56, Of("Sprt and more"))}}, 1, "film; round; stop movies"},
        {"a sound file not found", {.flags = 0x0001, .subs = {StoredSub(82, StoredRef(ding + ".gone"))}}, 0, "stop sounds"},
        {"a wait with nothing started", {}, 1, "stop movies"},
    };
    // clang-format on
    std::vector<ActionSpec> actions;
    for (const auto& c : cases) actions.push_back(c.action);
    OpenWith(actions);
    uint16_t id = 101;
    for (const auto& c : cases) {
        GoToCardNoBack(1, kPlainEffect, kPlainSpeed);
        Logged();
        EXPECT_EQ(RunActionById(id++, 0, c.wait, "owner"), 1) << c.what;
        EXPECT_EQ(Logged(), c.expected) << c.what;
    }
    // The missing sound file was asked for once; nothing else was shown.
    EXPECT_EQ(Alerts(), std::vector<int>{});
    EXPECT_EQ(GetSlotName(kSlotOtherStack), "");
}

TEST_F(RunActionTest, ActionCenterAndFadeColor) {
    OpenWith({{.transitionColor = 3, .rect = {10, 20, 31, 45}}, {.transitionColor = 0, .rect = {-7, -7, 0, 0}}});
    GetPaletteState().current = NewPalette(4);
    GetPaletteState().current->entries[2] = {0x12, 0x34, 0x56, 0};
    RunActionById(101, 0, 0, "");
    EXPECT_EQ(GetTransitionState().actionCenter, (Point{20, 32}));
    EXPECT_EQ(GetTransitionState().fadeColor.red, 0x12);
    EXPECT_EQ(GetTransitionState().fadeColor.blue, 0x56);
    RunActionById(102, 0, 0, "");
    EXPECT_EQ(GetTransitionState().actionCenter, (Point{-4, -4}));  // divisions cut toward zero
    EXPECT_EQ(GetTransitionState().fadeColor.red, 0);               // no colour index: black
}

// What the NBA or the script under test does to the record that runs.
enum class Mischief { None, Free, GrowByOne, RemoveButton };
Mischief gNba = Mischief::None, gLogo = Mischief::None;
MemRef gRunning = 0;

void DoMischief(Mischief m) {
    uint32_t offset = 0;
    if (m == Mischief::Free) FreeMemRef(gRunning);
    if (m == Mischief::GrowByOne) SetMemRefSize(gRunning, GetMemRefSize(gRunning) + 1);
    // The button's id changes: it is gone, and the card keeps its size.
    if (m == Mischief::RemoveButton && FindItemOnCard(kItemKindButton, 40, gRunning, &offset)) {
        LockMemRef(gRunning)[offset + kItemId] = 41;
        UnlockMemRef(gRunning);
    }
}

TEST_F(RunActionTest, AfterTheNbaTheRecordAndTheButtonAfterTheScriptOnlyTheButton) {
    GetSubsystems().CallStackNba = [](uint16_t, int32_t, int32_t) {
        DoMischief(gNba);
        return Log(GetActionState().inItemAction ? "nba in item" : "nba");
    };
    GetSubsystems().RunLogoText = [](void*, MemRef*) { DoMischief(gLogo); return Log("logo"); };
    const ActionSpec action{
        .flags = 0x1028, .destination = 2, .subs = {StoredSub(51, Of("p"), {{16, 9}}), StoredSub(64, Of("x"))}};
    const std::string all = "; logo; round; stop movies; stop sounds; stop movies; arrive 22";
    // clang-format off
    // `button`: run as the button on card 1, else as a copy of the 'Actn' record.
    const struct { const char* what; bool button; Mischief nba, logo; std::string expected; } cases[] = {
        {"the NBA frees the record", false, Mischief::Free, Mischief::None, "nba"},
        {"the NBA grows it by a byte", false, Mischief::GrowByOne, Mischief::None, "nba"},
        {"the script grows it by a byte", false, Mischief::None, Mischief::GrowByOne, "nba" + all},
        {"a button", true, Mischief::None, Mischief::None, "nba in item" + all},
        {"the NBA removes the button", true, Mischief::RemoveButton, Mischief::None, "nba in item"},
        {"the script removes the button", true, Mischief::None, Mischief::RemoveButton, "nba in item; logo"},
    };
    // clang-format on
    for (const auto& c : cases) {
        OpenWith({action}, {StoredAction(40, action)});
        gNba = c.nba;
        gLogo = c.logo;
        if (c.button) {
            gRunning = GetDocument().currentCard;
            RunItemAction(nullptr, 40, 0);
        } else {
            const MemRef stored = GetBlobById(FourCC("Actn"), 101);
            gRunning = CopyBytes(stored, 0, GetMemRefSize(stored));
            RunAction(nullptr, gRunning, 0, 101, 0, 0, "");
            if (c.nba != Mischief::Free) FreeMemRef(gRunning);
        }
        EXPECT_EQ(Logged(), c.expected) << c.what;
        EXPECT_FALSE(GetActionState().inItemAction) << c.what;
    }
}

TEST_F(RunActionTest, ButtonsByIdAndNameAndActionsById) {
    OpenWith({{.flags = 0x0020, .destination = 3}, {.flags = 0x8000}, {.testCode = 2}},
             {StoredAction(40, {.flags = 0x0020, .destination = 2, .name = "Onward"})});
    EXPECT_EQ(RunItemAction(nullptr, 40, 0), 1);
    EXPECT_EQ(Current(), 2);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(GetActionState().currentItemName), 7), "\x06Onward");
    EXPECT_EQ(RunItemAction(nullptr, 49, 0), 0);  // no such button

    EXPECT_EQ(RunActionById(0, 0, 0, ""), 0);
    // A missing record runs nothing and still answers 1.
    EXPECT_EQ(RunActionById(999, 0, 0, ""), 1);
    EXPECT_EQ(Current(), 2);
    EXPECT_EQ(RunNamedAction(101, 0, 0, 2030), 1);
    EXPECT_EQ(Current(), 3);
    EXPECT_EQ(Logged(), "stop movies; stop sounds; stop movies; arrive 22; stop movies; stop sounds; stop movies; arrive 33");

    // What a click on a text field counts as doing something: launching alone is not.
    const struct { uint16_t id; bool does; } queries[] = {{101, true}, {102, false}, {103, true}, {999, false}};
    for (const auto& q : queries) EXPECT_EQ(ActionDoesSomething(q.id), q.does) << q.id;
}

}  // namespace
