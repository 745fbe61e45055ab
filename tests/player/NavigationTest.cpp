// Moving between cards and stacks on hand-built stacks opened with the headless host: the order of
// the leave and arrive steps, the Back history, jumps, titles, new cards and other stacks.
#include "player/Navigation.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "platform/HostPath.h"
#include "platform/headless/HeadlessHost.h"
#include "player/StackFlows.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "subsystems/Subsystems.h"
#include "support/StackBytes.h"

namespace {

// Every action the moves ran, as "id/label/wait" and the window title at that moment.
std::vector<std::string> gRan;

int32_t RecordAction(uint16_t id, uint32_t, uint32_t wait, int16_t label) {
    gRan.push_back(std::to_string(id) + "/" + std::to_string(label) + "/" + std::to_string(wait) +
                   " " + GetHeadlessState().title);
    return 0;
}

struct CardSpec {
    uint16_t id;
    std::string name = "";
    uint16_t arrive = 0, leave = 0, flags = 0, kind = 0, owner = 0xFFFF;
};

struct StackSpec { uint16_t arrive = 0; uint16_t leave = 0; bool numbers = false; uint16_t nextCardId = 1; };

std::string WriteStack(const std::string& file, const std::vector<CardSpec>& cards, const StackSpec& s = {}) {
    std::vector<Bytes> stored;
    for (const CardSpec& c : cards) {
        stored.push_back(StoredCard(c.id, c.name, {}, c.kind, c.owner));
        PutBE16(stored.back(), 10, c.flags);
        PutBE16(stored.back(), 48, c.arrive);
        PutBE16(stored.back(), 50, c.leave);
    }
    Bytes bytes = StoredStack({.cardCount = static_cast<uint16_t>(cards.size())}, stored, {});
    PutBE16(bytes, 10, s.nextCardId);
    PutBE16(bytes, 26, s.numbers ? 1 : 0);
    PutBE16(bytes, 72, s.arrive);
    PutBE16(bytes, 74, s.leave);
    return WriteTempFile(file, bytes);
}

std::vector<CardSpec> Numbered(uint16_t count) {
    std::vector<CardSpec> cards;
    for (uint16_t id = 1; id <= count; ++id) cards.push_back({id});
    return cards;
}

class NavigationTest : public testing::Test {
protected:
    void SetUp() override {
        StartProgramAfresh();
        GetSubsystems().RunNamedAction = RecordAction;
        gRan.clear();
    }
    void TearDown() override { ResetAllState(); }

    static void Open(const std::string& path) {
        SetSlotPath(kSlotStack, DosPathFromHost(path));
        ASSERT_EQ(OpenStack(false), kResultOk);
    }
    static int16_t Current() { return GetDocument().currentCardId; }
    static std::string Where() { return GetDocument().stackName + " " + std::to_string(Current()); }
    static std::vector<int> Alerts() {
        std::vector<int> ids;
        for (const HeadlessAlert& a : GetHeadlessState().alertsShown) ids.push_back(a.stringId);
        GetHeadlessState().alertsShown.clear();
        return ids;
    }
    static std::vector<std::string> Ran() { return std::exchange(gRan, {}); }
};

TEST_F(NavigationTest, LeaveAndArriveRunTheirStepsInOrder) {
    const std::string path = WriteStack("order.stk", {{1, "", 11, 12}, {2, "", 21, 0}, {3}}, {.arrive = 7, .leave = 8, .numbers = true});
    Open(path);
    // The title is up before the arrive actions; the stack's comes before the card's.
    EXPECT_EQ(Ran(), (std::vector<std::string>{"7/2033/0 order.stk - Card 1", "11/2030/0 order.stk - Card 1"}));
    GoNext(kPlainEffect, kPlainSpeed);
    // The leave action runs (waiting) while the old card's title still shows; no stack action.
    EXPECT_EQ(Ran(), (std::vector<std::string>{"12/2032/1 order.stk - Card 1", "21/2030/0 order.stk - Card 2"}));
    GoNext(kPlainEffect, kPlainSpeed);
    EXPECT_EQ(Ran(), std::vector<std::string>{});  // action ids of 0 run nothing
    Open(path);
    EXPECT_EQ(Ran(), (std::vector<std::string>{"8/2034/0 order.stk - Card 3", "7/2033/0 order.stk - Card 1",
                                               "11/2030/0 order.stk - Card 1"}));
}

TEST_F(NavigationTest, BackKeepsSixteenRecordsAndNeverDropsTheLast) {
    Open(WriteStack("back.stk", Numbered(18)));
    for (int i = 0; i < 17; ++i) GoNext(kPlainEffect, kPlainSpeed);
    // Card 1, the oldest move, was dropped.
    EXPECT_EQ((std::vector<int>{BackDepth(), BackCardId(0), BackCardId(15)}), (std::vector<int>{kBackLimit, 17, 2}));
    std::vector<int16_t> visited;
    for (int i = 0; i < 17; ++i) {
        GoBack(kPlainEffect, kPlainSpeed);
        visited.push_back(Current());
    }
    EXPECT_EQ(visited, (std::vector<int16_t>{17, 16, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 2}));
    EXPECT_EQ(BackDepth(), 1);
    // Leaving the card of the newest record again doesn't record it twice.
    GoToCard(2, kPlainEffect, kPlainSpeed);
    EXPECT_EQ(BackDepth(), 1);
    GoToCard(5, kPlainEffect, kPlainSpeed);
    EXPECT_EQ(BackDepth(), 1);
    GoNext(kPlainEffect, kPlainSpeed);
    EXPECT_EQ((std::vector<int>{BackDepth(), BackCardId(0)}), (std::vector<int>{2, 5}));
    EXPECT_EQ(Alerts(), std::vector<int>{});
}

TEST_F(NavigationTest, UnknownCardsAndJumpTexts) {
    Open(WriteStack("jump.stk", {{1, "Alpha", 5}, {2, "Beta"}, {3}}));
    Ran();
    GoToCard(77, kPlainEffect, kPlainSpeed);
    EXPECT_EQ(Alerts(), std::vector<int>{2223});
    EXPECT_EQ(Current(), 1);
    EXPECT_EQ(Ran(), std::vector<std::string>{"5/2030/0 jump.stk"});  // arrived again

    const struct { const char* text; int16_t id; std::vector<int> alerts; } cases[] = {
        {"2", 2, {}}, {"0", 1, {2223}}, {"   ", 1, {2223}}, {"", 1, {}}, {"BETA", 2, {}}};
    for (const auto& c : cases) {
        GoToCardNoBack(1, kPlainEffect, kPlainSpeed);
        EXPECT_EQ(JumpToCardByText(c.text), c.alerts.empty() && c.text[0] != '\0') << c.text;
        EXPECT_EQ(Current(), c.id) << c.text;
        EXPECT_EQ(Alerts(), c.alerts) << c.text;
    }
}

TEST_F(NavigationTest, TitleCountsNumberedCardsAndMarksGroupCards) {
    Open(WriteStack("title.stk", {{1}, {2}, {3, "", 0, 0, 0, 3, 2}, {4, "", 0, 0, kCardFlagUnnumbered}, {5}}, {.numbers = true}));
    std::vector<std::string> titles = {GetHeadlessState().title};
    for (int i = 0; i < 4; ++i) {
        GoNext(kPlainEffect, kPlainSpeed);
        titles.push_back(GetHeadlessState().title);
    }
    EXPECT_EQ(titles, (std::vector<std::string>{"title.stk - Card 1", "title.stk - Card 2",
                                        "title.stk * Card 3", "title.stk", "title.stk - Card 4"}));
    // Without numbers an unforced update leaves a title alone.
    Open(WriteStack("plain.stk", Numbered(2)));
    GetHeadlessState().title = "elsewhere";
    GoNext(kPlainEffect, kPlainSpeed);
    EXPECT_EQ(GetHeadlessState().title, "elsewhere");
}

TEST_F(NavigationTest, NewCardsTakeFreshIdsAndTheTwentiethIsRemarked) {
    Open(WriteStack("new.stk", Numbered(18), {.nextCardId = 19}));
    ASSERT_NE(NewCard(false, false), 0);
    EXPECT_EQ(Current(), 19);
    EXPECT_EQ(GetCardPosition(GetCardById(19)), 2);  // behind the card we were on
    EXPECT_EQ(GetDocument().currentCard, GetCardById(19));
    // Deleting the newest card doesn't give its id out again.
    GoToCard(1, kPlainEffect, kPlainSpeed);
    MemRef doomed = GetCardById(19);
    ASSERT_EQ(DeleteBytes(GetDocument().cardList, 16, 16), 0);
    FreeMemRef(doomed);
    ASSERT_NE(NewCard(false, false), 0);
    EXPECT_EQ(Current(), 20);
    EXPECT_EQ(Alerts(), std::vector<int>{});
    // A card takes as owner the group owner of the card it was made from.
    MemRef member = NewCard(false, true);
    EXPECT_EQ((std::vector<int>{GetCardKind(member), ReadS16(MemRefLock(member).data() + kCardOwnerId), CardCount()}),
              (std::vector<int>{kCardKindGroupMember, 20, 20}));
    EXPECT_EQ(Alerts(), std::vector<int>{2303});
    ASSERT_NE(NewCard(false, false), 0);
    EXPECT_EQ(Current(), 22);
    EXPECT_EQ(Alerts(), std::vector<int>{});
}

TEST_F(NavigationTest, MovesBetweenStacksComeBackThroughBackMarkedAndHome) {
    const std::string home = WriteStack("Home.stk", {{1}, {2, "", 0, 0, kCardFlagMarked}, {3}});
    const std::string other = WriteStack("other.stk", {{7}, {8}}, {.arrive = 9});
    GoMarked(kPlainEffect, kPlainSpeed);
    EXPECT_EQ(Alerts(), std::vector<int>{2242});
    Open(home);
    GoNext(kPlainEffect, kPlainSpeed);
    GoNext(kPlainEffect, kPlainSpeed);  // leaves the marked card 2
    EXPECT_EQ(MarkedCardId(), 2);
    GoMarked(kPlainEffect, kPlainSpeed);
    EXPECT_EQ(Current(), 2);

    SetSlotPath(kSlotOtherStack, DosPathFromHost(other));
    Ran();
    EXPECT_EQ(GoToStack(kSlotOtherStack, 8, kPlainEffect, kPlainSpeed, true, false), kResultOk);
    EXPECT_EQ(Where(), "other.stk 8");
    EXPECT_EQ(Ran(), std::vector<std::string>{"9/2033/0 other.stk"});
    EXPECT_EQ(GoToStack(kSlotOtherStack, 55, kPlainEffect, kPlainSpeed, true, false), kResultOk);
    EXPECT_EQ(Current(), 7);  // an unknown card: the first

    GoBack(kPlainEffect, kPlainSpeed);  // the same stack
    EXPECT_EQ(Current(), 8);
    GoBack(kPlainEffect, kPlainSpeed);  // into Home again
    EXPECT_EQ(Where(), "Home.stk 2");

    SetSlotPath(kSlotOtherStack, "C:\\no\\such\\folder\\gone.stk");
    EXPECT_EQ(GoToStack(kSlotOtherStack, 1, kPlainEffect, kPlainSpeed, true, false), kStackMoveStopped);
    EXPECT_EQ(GetDocument().stackName, "Home.stk");

    SetSlotPath(kSlotOtherStack, DosPathFromHost(other));
    GoToStack(kSlotOtherStack, 7, kPlainEffect, kPlainSpeed, true, false);
    GoMarked(kPlainEffect, kPlainSpeed);  // the marked card is in the stack we left
    EXPECT_EQ(Where(), "Home.stk 2");
    GoNext(kPlainEffect, kPlainSpeed);
    GoToStack(kSlotOtherStack, 7, kPlainEffect, kPlainSpeed, true, false);
    GoHome(kPlainEffect, kPlainSpeed);  // to the card Home was left on
    EXPECT_EQ(Where(), "Home.stk 3");
    EXPECT_EQ(Alerts(), std::vector<int>{});
}

}  // namespace
