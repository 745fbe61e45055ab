#include "messages/Alert.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "base/StateRegistry.h"
#include "platform/Host.h"
#include "platform/headless/HeadlessHost.h"

namespace {

class AlertTest : public testing::Test {
protected:
    void SetUp() override {
        SetHost(HeadlessHost());
        ResetAllState();
    }
    void TearDown() override { ResetAllState(); }

    static const std::vector<HeadlessAlert>& Shown() { return GetHeadlessState().alertsShown; }
};

// Where the box's parts stand and how wide its buttons grow is AlertDrawTest's golden images; here
// what the prefix selects.
TEST_F(AlertTest, PrefixButtonsAndDefaultAreReadFromTheString) {
    using P = AlertPicture;
    using Labels = std::vector<std::string>;
    struct Case { const char* text; int sizeClass; P picture; Labels labels; int defaultButton; };
    const Case cases[] = {
        {"34Not a stack.~^OK", 3, P::Dog, {"OK"}, 1},
        {"03Changed?~Save~Cancel~Don't", 0, P::Exclamation, {"Save", "Cancel", "Don't"}, 1},
        {"33Delete it?~OK~^Cancel", 3, P::Exclamation, {"OK", "Cancel"}, 2},
        {"34Pick one~A~B~C~D", 3, P::Dog, {"A", "B", "C"}, 1},
        {"34Two marks~A~^B~^C", 3, P::Dog, {"A", "B", "C"}, 2},
        {"35No such picture~OK", 3, P::None, {"OK"}, 1},
        {"X4A letter is class 0~OK", 0, P::Dog, {"OK"}, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        AlertLayout layout;
        ASSERT_TRUE(BuildAlertLayout(7, c.text, true, &layout));
        Labels labels;
        for (int i = 0; i < layout.buttonCount; ++i) labels.push_back(layout.buttons[i].label);
        EXPECT_EQ(std::tie(layout.sizeClass, layout.picture, labels, layout.defaultButton),
                  std::tie(c.sizeClass, c.picture, c.labels, c.defaultButton));
    }
    AlertLayout layout;
    ASSERT_TRUE(BuildAlertLayout(7, "34Without icons~OK", false, &layout));
    EXPECT_EQ(layout.picture, P::None);
}

TEST_F(AlertTest, TextsWithoutButtonsMakeNoBoxAndAnswerTheFirstButton) {
    AlertLayout layout;
    EXPECT_FALSE(BuildAlertLayout(0, "3", true, &layout));
    EXPECT_FALSE(BuildAlertLayout(0, "3~OK", true, &layout));  // the "~" is taken as the picture digit
    EXPECT_EQ(layout.buttonCount, 0);

    EXPECT_EQ(AlertText("34No buttons here"), 1);
    EXPECT_EQ(Alert(4041), 1);  // a plain string
    EXPECT_EQ(ShowMessage(1, false, true, true), kAlertFirstButtonId);
    EXPECT_TRUE(Shown().empty());
}

TEST_F(AlertTest, AlertShowsTheTableStringAndReturnsTheButtonInStringOrder) {
    EXPECT_EQ(Alert(2268), 1);
    ASSERT_EQ(Shown().size(), 1u);
    EXPECT_EQ(Shown()[0].stringId, 2268);
    EXPECT_EQ(Shown()[0].text, "I'm sorry, I can't load this file because it is not a stack.");

    struct Case { int answer; int alert; int16_t message; };
    // 2229 has three buttons; an answer the box doesn't have falls back to its default, Save.
    const Case cases[] = {{2, 2, 53}, {3, 3, 54}, {4, 1, 52}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer);
        GetHeadlessState().alertAnswers = {c.answer};
        EXPECT_EQ(Alert(2229), c.alert);
        GetHeadlessState().alertAnswers = {c.answer};
        EXPECT_EQ(ShowMessage(2229, false, true, true), c.message);
    }
}

TEST_F(AlertTest, HintsRespectOnceAndTheExperiencedUser) {
    constexpr int kHint = 2280;
    struct Case { const char* name; bool advanced, once, force; size_t shownAfterTwoCalls; };
    const Case cases[] = {
        {"a hint with once shows once", false, true, false, 1},
        {"a hint without once shows each time", false, false, false, 2},
        {"an experienced user sees no hints", true, false, false, 0},
        {"a forced message always shows", true, false, true, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ResetAlertState();
        ResetHeadlessState();
        SetAdvancedUser(c.advanced);
        EXPECT_EQ(ShowMessage(kHint, c.once, c.force, true), kAlertFirstButtonId);
        EXPECT_EQ(ShowMessage(kHint, c.once, c.force, true), kAlertFirstButtonId);
        EXPECT_EQ(Shown().size(), c.shownAfterTwoCalls);
    }
}

TEST_F(AlertTest, MessageTextIsTheBareMessageInUtf8) {
    SetAlertNumbers(40, 40);
    struct Case { int id; const char* expected; };
    const Case cases[] = {
        // the card-size string takes the two numbers
        {2334, "The stack's card size must be at least 40 wide and 40 high. Do you want to convert it to "
               "the minimum size?"},
        {2816, "In\303\255cio.stk"},  // a plain string stays whole
        {1, ""},
    };
    for (const Case& c : cases) EXPECT_EQ(AlertMessageText(c.id), c.expected) << c.id;
}

}  // namespace
