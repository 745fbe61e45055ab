// The window procedure on the headless host: where a click goes, what keys do, which cursor shows,
// and the main loop's beat.
#include "host/WindowProc.h"

#include <gtest/gtest.h>

#include "base/ByteOrder.h"
#include "card/OffscreenCard.h"
#include "host/ActionRecorder.h"
#include "host/KeyFocus.h"
#include "platform/headless/HeadlessHost.h"
#include "host/MenuTable.h"
#include "platform/HostPath.h"
#include "player/StackFlows.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackHeader.h"
#include "support/StackBytes.h"

namespace {

constexpr Rect kGraphic{10, 10, 50, 50};
constexpr Rect kField{60, 10, 100, 50};

void SetWord(MemRef ref, uint32_t offset, uint16_t value) { Write16(MemRefLock(ref).data() + offset, value); }

// A stack in memory: a header and a current card, no list; enough for clicks and cursors.
class WindowProcTest : public testing::Test {
protected:
    void SetUp() override {
        StartPlayerWithRecorders();
        Document& doc = GetDocument();
        doc.stackHeader = header_ = BlockOf(Bytes(kStackHeaderSize, 0));
        doc.currentCard = card_ = BlockOf(Bytes(kEmptyCardSize, 0));
    }
    void TearDown() override {
        FreeMemRef(card_);  // the document frees its header, but no card outside its list
        GetDocument().currentCard = 0;
        ResetAllState();
    }
    static void Click(int32_t x, int32_t y, uint32_t mods = 0, int32_t clicks = 1) {
        HandleWindowMessage(nullptr, MouseEvent(HostEventKind::MouseDown, x, y, mods, clicks));
        HandleWindowMessage(nullptr, MouseEvent(HostEventKind::MouseUp, x, y, mods));
    }
    MemRef header_ = 0;
    MemRef card_ = 0;
};

TEST_F(WindowProcTest, ClickGoesToTheItemElseTheCardElseTheStack) {
    struct Case { const char* name; Point at; uint32_t mods; bool doesSomething; int16_t graphicAction;
                  uint16_t cardAction, stackAction; const char* runs; };
    const Case cases[] = {
        {"graphic", {20, 20}, 0, false, 40, 50, 60, "byId 40 Item7"},
        {"ctrl, graphic's action works", {20, 20}, kModCtrl, true, 40, 50, 60, "byId 40 Item7"},
        {"ctrl, graphic's action does nothing", {20, 20}, kModCtrl, false, 40, 50, 60, "named 50 2032"},
        {"... and the card has none", {20, 20}, kModCtrl, false, 40, 0, 60, "named 60 2035"},
        {"nothing anywhere", {300, 300}, 0, false, 40, 0, 0, ""},
        {"field with a working action", {70, 20}, 0, true, 40, 50, 60, "byId 41 Item8"},
        {"ctrl: the field's text takes it", {70, 20}, kModCtrl, true, 40, 50, 60, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ResetDisplayList();
        AddTestItem(kItemKindGraphic, 7, kGraphic, c.graphicAction);
        AddTestItem(kItemKindText, 8, kField, 41);
        Recorder().doesSomething = c.doesSomething;
        SetWord(card_, kCardClickAction, c.cardAction);
        SetWord(header_, kHdrClickAction, c.stackAction);
        Click(c.at.x, c.at.y, c.mods);
        EXPECT_EQ(RecordedCalls(), c.runs);
        EXPECT_FALSE(GetWindowProcState().mouseDownHandled) << "the release ends the text's press";
    }
}

TEST_F(WindowProcTest, DoubleClickOnAButtonIsAPress) {
    AddTestItem(kItemKindButton, 5, {20, 20, 80, 50});
    SetWord(card_, kCardClickAction, 50);
    Click(30, 30);
    Click(30, 30, 0, 2);
    // A double click elsewhere is no second click on the card.
    HandleWindowMessage(nullptr, MouseEvent(HostEventKind::MouseDown, 300, 300, 0, 2));
    EXPECT_EQ(RecordedCalls(), "item 5; item 5");
}

TEST_F(WindowProcTest, ReturnRunsTheRingedButton) {
    AddTestItem(kItemKindButton, 5, {0, 0, 10, 10}, 0, 0, 2);
    AddTestItem(kItemKindButton, 6, {0, 20, 10, 30}, 0, kItemFlagHidden, 1);
    HandleWindowMessage(nullptr, KeyEvent(HostEventKind::Char, 0, 0, '\r'));
    EXPECT_EQ(RecordedCalls(), "") << "no default button on the card";
    AddTestItem(kItemKindButton, 7, {0, 40, 10, 50}, 0, 0, 1);
    AddTestItem(kItemKindButton, 8, {0, 60, 10, 70}, 0, 0, 1);
    HandleWindowMessage(nullptr, KeyEvent(HostEventKind::Char, 0, 0, 'a'));
    HandleWindowMessage(nullptr, KeyEvent(HostEventKind::Char, 0, 0, '\r'));
    EXPECT_EQ(RecordedCalls(), "item 7");
}

TEST_F(WindowProcTest, TabRingsTheVisibleItemsInDrawingOrderAndSpaceOrReturnPressTheButton) {
    AddTestItem(kItemKindButton, 5, {10, 10, 30, 30});
    AddTestItem(kItemKindGraphic, 9, {40, 10, 60, 30});
    AddTestItem(kItemKindText, 8, {70, 10, 90, 30});
    AddTestItem(kItemKindButton, 6, {100, 10, 120, 30}, 0, kItemFlagHidden);
    AddTestItem(kItemKindButton, 7, {130, 10, 150, 30}, 0, 0, 1);
    struct Step { uint8_t ch; uint32_t mods; int16_t focused; const char* runs; };
    const Step steps[] = {
        {'\t', 0, 5, ""},         {'\t', 0, 8, ""},  {'\t', 0, 7, ""},
        {'\t', 0, 0, ""},         // past the last: nothing, so the card's own Return is back
        {'\r', 0, 0, "item 7"},   // the default button
        {'\t', kModShift, 7, ""}, {'\t', kModShift, 8, ""},
        {'\r', 0, 8, "item 7"},   // a field has the ring: Return keeps its meaning
        {' ', 0, 8, ""},           {'\t', kModShift, 5, ""},
        {' ', 0, 5, "item 5"},     {'\r', 0, 5, "item 5"},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(testing::Message() << "char " << int{step.ch} << " mods " << step.mods);
        HandleWindowMessage(nullptr, KeyEvent(HostEventKind::Char, 0, step.mods, step.ch));
        EXPECT_EQ(FocusedItemId(), step.focused);
        EXPECT_EQ(RecordedCalls(), step.runs);
    }
    // The ring is drawn inverted around the item, and goes when the focus moves on.
    const Surface& window = GetHeadlessState().window;
    EXPECT_EQ(window.Row(20)[33] & kWhite, 0u);
    HandleWindowMessage(nullptr, KeyEvent(HostEventKind::Char, 0, 0, '\t'));
    EXPECT_EQ(window.Row(20)[33] & kWhite, kWhite);
    // On another card nothing has the focus.
    GetDocument().currentCardId = 42;
    EXPECT_EQ(FocusedItemId(), 0);
}

TEST_F(WindowProcTest, CursorComesFromTheItemThenTheCardThenTheStack) {
    struct Case { uint16_t itemCursor, cardCursor, stackCursor; int32_t shown; };
    const Case cases[] = {{28016, 28032, 28048, 28016}, {0, 28032, 28048, 28032}, {0, 0, 28048, 28048}, {0, 0, 0, 0}};
    int32_t y = 20;
    for (const Case& c : cases) {
        ResetDisplayList();
        AddTestItem(kItemKindGraphic, 7, kGraphic)->cursorId = c.itemCursor;
        SetWord(card_, kCardCursor, c.cardCursor);
        SetWord(header_, kHdrStackCursor, c.stackCursor);
        GetHeadlessState().cursorId = -1;
        GetWindowProcState().cursorId = -1;
        HandleWindowMessage(nullptr, MouseEvent(HostEventKind::MouseMove, 20, y++));
        EXPECT_EQ(GetHeadlessState().cursorId, c.shown) << c.itemCursor << c.cardCursor;
    }
}

TEST_F(WindowProcTest, ShiftAndCtrlTogetherShowTheItemBorders) {
    const auto key = [](HostEventKind kind, uint16_t k, uint32_t mods) {
        HandleWindowMessage(nullptr, KeyEvent(kind, k, mods));
        return GetOffscreenState().itemBorders;
    };
    // Shift alone; Ctrl joins it; another key meanwhile; Shift goes; Ctrl goes.
    EXPECT_EQ((std::vector<bool>{key(HostEventKind::KeyDown, kVkShift, kModShift),
                                 key(HostEventKind::KeyDown, kVkLeftControl, kModShift | kModCtrl),
                                 key(HostEventKind::KeyDown, 'A', kModShift | kModCtrl), key(HostEventKind::KeyUp, kVkShift, kModCtrl)}),
              (std::vector<bool>{false, true, true, false}));
    EXPECT_FALSE(key(HostEventKind::KeyUp, kVkLeftControl, 0));
    // The keys let go in another window send no key-up here: losing the focus lets them go.
    EXPECT_TRUE(key(HostEventKind::KeyDown, kVkControl, kModShift | kModCtrl));
    EXPECT_FALSE(key(HostEventKind::FocusLost, 0, 0));
    EXPECT_FALSE(GetWindowProcState().shiftDown || GetWindowProcState().ctrlDown);
}

TEST(KeyToCommand, CtrlKeysWithTheirExceptions) {
    struct Case { uint16_t key; bool shift, locked; int32_t command; };
    const Case cases[] = {{'1', true, false, 0}, {'A', false, false, 106}, {'A', false, true, 0}, {'A', true, false, 106},
                          {'S', false, true, kCmdSaveStack}, {kVkSemicolon, false, false, 651}, {'Q', false, false, 0}};
    for (const Case& c : cases)
        EXPECT_EQ(KeyToCommand(c.key, c.shift, c.locked), c.command) << c.key << " " << c.shift << c.locked;
}

Bytes WithMenu(Bytes card) {
    PutBE16(card, kCardMenuShown, 1);
    return card;
}

// A stack of three cards that show the menu, opened from a file, for the keys that move through it and the loop.
class WindowProcStackTest : public testing::Test {
protected:
    void SetUp() override {
        StartProgramAfresh();
        const Bytes stack = StoredStack(
            {.cardCount = 3}, {WithMenu(StoredCard(11, "1")), WithMenu(StoredCard(12, "2")), WithMenu(StoredCard(13, "3"))}, {});
        SetSlotPath(kSlotStack, DosPathFromHost(WriteTempFile("keys.stk", stack)));
        ASSERT_EQ(OpenStack(false), kResultOk);
    }
    void TearDown() override { ResetAllState(); }
    static void Press(uint16_t key, uint32_t mods = 0) {
        HandleWindowMessage(nullptr, KeyEvent(HostEventKind::KeyDown, key, mods));
        HandleWindowMessage(nullptr, KeyEvent(HostEventKind::KeyUp, key, mods));
    }
};

TEST_F(WindowProcStackTest, KeysMoveThroughTheCards) {
    struct Step { uint16_t key; uint32_t mods; int16_t cardId; };
    const Step steps[] = {{kVkRight, 0, 12}, {kVkDown, 0, 13}, {kVkPageDown, 0, 11}, {kVkLeft, 0, 13}, {kVkHome, 0, 11},
                          {kVkEnd, 0, 13}, {'1', kModCtrl, 11}, {kVkPeriod, kModCtrl, 12}, {kVkComma, kModCtrl, 11},
                          {'9', kModCtrl, 13}, {kVkBackQuote, kModCtrl, 11}, {kVkRight, kModShift, 11}};
    for (const Step& s : steps) {
        Press(s.key, s.mods);
        EXPECT_EQ(GetDocument().currentCardId, s.cardId) << "key " << s.key << " mods " << s.mods;
    }
    // A menu item is found by its text in any case, without the accelerator mark and the ellipsis.
    EXPECT_EQ(DoMenuItemByName(" &go ", "LAST CARD..."), kCmdLastCard);
    EXPECT_EQ(GetDocument().currentCardId, 13);
    // Without the menu the keys are no menu commands, and a kiosk's cards stay where they are;
    // an action still reaches the menu's items.
    GetDocument().menuShown = 0;
    for (const Step& s : steps) Press(s.key, s.mods);
    EXPECT_EQ(GetDocument().currentCardId, 13);
    EXPECT_EQ(DoMenuItemByName("Go", "First Card"), kCmdFirstCard);
    EXPECT_EQ(GetDocument().currentCardId, 11);
}

TEST_F(WindowProcStackTest, LoopServesInputAndTicksUntilItsTimeAndExitCloses) {
    QueueHeadlessEvent({.kind = HostEventKind::KeyDown, .time = 200, .key = kVkRight});
    EXPECT_EQ(RunMainLoop(550), 0);
    EXPECT_EQ((std::vector<uint32_t>{GetHeadlessState().clockMs, GetMainLoopState().ticksServed}), (std::vector<uint32_t>{550, 10}));
    EXPECT_EQ(GetDocument().currentCardId, 12);
    EXPECT_FALSE(GetWindowProcState().closed);
    DoCommand(nullptr, kCmdExit, 0);
    EXPECT_EQ(RunMainLoop(5000), 0);
    EXPECT_TRUE(GetWindowProcState().closed);
    EXPECT_EQ(GetHeadlessState().clockMs, 550u) << "Exit closes at once";
}

}  // namespace
