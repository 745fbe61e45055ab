// Where an action goes: the destination codes, and another stack through its file reference.
#include "actions/ActionStack.h"

namespace {

class GoToCardCodeTest : public ActionStackTest {};

TEST_F(GoToCardCodeTest, CodesMoveToTheirCards) {
    // Card 3 is marked: leaving it makes it the marked card.
    Open(WriteActionStack("codes.stk", {{1}, {2}, {3, {}, 0, 128}, {4}}));
    // The wraps of the moves, and the alerts of an unknown or unmarked card, are NavigationTest's.
    const struct { int16_t code, current; std::vector<int> alerts; } steps[] = {
        {-1, 2, {}}, {-2, 1, {}},
        {-3, 1, {}},                                  // no Home stack known: silently nothing
        {3, 3, {}},  {-1, 4, {}},    {-5, 3, {}},     // the marked card
        {-4, 4, {}},                                  // back to where the last move came from
    };
    for (const auto& s : steps) {
        GoToCardCode(s.code, kPlainEffect, kPlainSpeed);
        EXPECT_EQ(Current(), s.current) << s.code;
        EXPECT_EQ(Alerts(), s.alerts) << s.code;
    }
}

TEST_F(GoToCardCodeTest, AnotherStackThroughItsReference) {
    const std::string other = WriteActionStack("other.stk", {{5, {}, 55}, {6, {}, 66}});
    const auto to = [&](const std::string& path, int16_t destination) {
        return StoredAction(40, {.flags = 0x0020, .destination = destination, .subs = {StoredSub(60, StoredRef(path))}});
    };
    const std::string home = WriteActionStack(
        "start.stk", {{1, {to(other, 6)}}, {2, {to(other, -6)}}, {4, {to(other + ".gone", 6)}}});
    const struct { int16_t startCard, arrived; std::string stack, log; } cases[] = {
        {1, 6, "other.stk", "stop movies; stop sounds; stop movies; arrive 66"},
        {2, 5, "other.stk", "stop movies; stop sounds; stop movies; arrive 55"},  // -6: the first card
        // Not found (the dialog is cancelled): the card is drawn again, its sounds and movies stopped.
        {4, 4, "start.stk", "stop movies; stop sounds; stop movies; stop sounds; stop movies"},
    };
    for (const auto& c : cases) {
        Open(home);
        GoToCardNoBack(c.startCard, kPlainEffect, kPlainSpeed);
        Logged();
        EXPECT_EQ(RunItemAction(nullptr, 40, 0), 1);
        EXPECT_EQ(Current(), c.arrived) << c.startCard;
        EXPECT_EQ(GetDocument().stackName, c.stack) << c.startCard;
        EXPECT_EQ(Logged(), c.log) << c.startCard;
    }
    EXPECT_EQ(Alerts(), std::vector<int>{});
}

}  // namespace
