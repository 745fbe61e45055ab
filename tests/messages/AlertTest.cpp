#include "messages/Alert.h"

#include <gtest/gtest.h>

#include <string>
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

    static std::vector<std::string> Labels(const AlertLayout& layout) {
        std::vector<std::string> labels;
        for (int i = 0; i < layout.buttonCount; ++i) labels.push_back(layout.buttons[i].label);
        return labels;
    }
};

// The box of each size class is AlertDrawTest's golden image; here the class each prefix selects.
TEST_F(AlertTest, PrefixButtonsAndDefaultAreReadFromTheString) {
    using P = AlertPicture;
    struct Case {
        const char* text; int sizeClass; AlertPicture picture; std::vector<std::string> labels; int defaultButton;
    };
    const Case cases[] = {
        {"34Not a stack.~^OK", 3, P::Dog, {"OK"}, 1},
        {"03Changed?~Save~Cancel~Don't", 0, P::Exclamation, {"Save", "Cancel", "Don't"}, 1},
        {"33Delete it?~OK~^Cancel", 3, P::Exclamation, {"OK", "Cancel"}, 2},
        {"34Pick one~A~B~C~D", 3, P::Dog, {"A", "B", "C"}, 1},
        {"34Two marks~A~^B~^C", 3, P::Dog, {"A", "B", "C"}, 2},
        {"11Stop~OK", 1, P::Stop, {"OK"}, 1},
        {"35No such picture~OK", 3, P::None, {"OK"}, 1},
        {"X4A letter is class 0~OK", 0, P::Dog, {"OK"}, 1},
        {"34Empty label~", 3, P::Dog, {""}, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        AlertLayout layout;
        ASSERT_TRUE(BuildAlertLayout(7, c.text, true, &layout));
        EXPECT_EQ(layout.stringId, 7);
        EXPECT_EQ(layout.sizeClass, c.sizeClass);
        EXPECT_EQ(layout.picture, c.picture);
        EXPECT_EQ(Labels(layout), c.labels);
        EXPECT_EQ(layout.defaultButton, c.defaultButton);
    }
    AlertLayout layout;
    ASSERT_TRUE(BuildAlertLayout(7, "34Without icons~OK", false, &layout));
    EXPECT_EQ(layout.picture, P::None);
}

TEST_F(AlertTest, PartsArePlacedFromTheFrameInward) {
    AlertLayout layout;
    ASSERT_TRUE(BuildAlertLayout(0, "03Changed?~Save~Cancel~Don't Save", true, &layout));
    // 400 x 130 with a frame of 3: the client area is 394 x 124.
    EXPECT_EQ(layout.frame, 3);
    auto rect = [](const AlertRect& r) { return std::vector<int>{r.left, r.top, r.right, r.bottom}; };
    EXPECT_EQ(rect(layout.pictureRect), (std::vector<int>{4, 4, 68, 68}));
    EXPECT_EQ(rect(layout.buttons[0].rect), (std::vector<int>{315, 97, 390, 120}));  // Save, rightmost
    EXPECT_EQ(rect(layout.buttons[1].rect), (std::vector<int>{225, 97, 300, 120}));
    EXPECT_EQ(rect(layout.buttons[2].rect), (std::vector<int>{126, 97, 210, 120}));  // 10 x 6 + 24
    EXPECT_EQ(rect(layout.textRect), (std::vector<int>{76, 12, 390, 89}));

    // 250 x 100, no picture: the text takes the width, down to 8 above the buttons.
    ASSERT_TRUE(BuildAlertLayout(0, "10No picture~OK", true, &layout));
    EXPECT_EQ(rect(layout.pictureRect), (std::vector<int>{0, 0, 0, 0}));
    EXPECT_EQ(rect(layout.buttons[0].rect), (std::vector<int>{165, 67, 240, 90}));
    EXPECT_EQ(rect(layout.textRect), (std::vector<int>{4, 12, 240, 59}));
}

TEST_F(AlertTest, LongLabelsWidenTheirButtonsAndTheBox) {
    const std::string forty(40, 'w');
    struct Case { std::vector<std::string> labels; std::vector<int> buttonWidths; int16_t boxWidth; };
    const Case cases[] = {
        {{"8 chars!"}, {75}, 320},    // 72 stays at the template's width
        {{"Try Again"}, {78}, 320},   // 9 x 6 + 24
        {{"^Try Again"}, {78}, 320},  // the mark is not measured
        {{forty, "OK"}, {264, 75}, 368},
        {{forty, forty, forty}, {264, 264, 264}, 836},  // 3 x 264 + 2 x 15 + 2 x (3 + 4)
    };
    for (const Case& c : cases) {
        std::string text = "34Message";
        for (const std::string& label : c.labels) text += "~" + label;
        SCOPED_TRACE(text);
        AlertLayout layout;
        ASSERT_TRUE(BuildAlertLayout(0, text, true, &layout));
        ASSERT_EQ(layout.buttonCount, static_cast<int>(c.buttonWidths.size()));
        for (int i = 0; i < layout.buttonCount; ++i)
            EXPECT_EQ(layout.buttons[i].rect.right - layout.buttons[i].rect.left, c.buttonWidths[i]);
        EXPECT_EQ(layout.width, c.boxWidth);
        // The leftmost button keeps the margin inside the frame.
        EXPECT_GE(layout.buttons[layout.buttonCount - 1].rect.left, kAlertMarginPx);
    }
}

TEST_F(AlertTest, TextsWithoutButtonsMakeNoBoxAndAnswerTheFirstButton) {
    AlertLayout layout;
    EXPECT_FALSE(BuildAlertLayout(0, "34No buttons here", true, &layout));
    EXPECT_FALSE(BuildAlertLayout(0, "3", true, &layout));
    EXPECT_FALSE(BuildAlertLayout(0, "3~OK", true, &layout));  // the "~" is taken as the picture digit
    EXPECT_EQ(layout.buttonCount, 0);

    EXPECT_EQ(AlertText("34No buttons here"), 1);
    EXPECT_EQ(Alert(4041), 1);  // a plain string
    EXPECT_EQ(Alert(1), 1);     // no such string
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
        {"nor hints marked once", true, true, false, 0},
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

    // Alert is forced: it shows for the experienced user too.
    ResetHeadlessState();
    SetAdvancedUser(true);
    EXPECT_EQ(Alert(2268), 1);
    EXPECT_EQ(Shown().size(), 1u);
}

TEST_F(AlertTest, HintsHeldBackOrReleasedCanShowAgain) {
    constexpr int kHint = 2280;
    // Held back for the experienced user, the hint isn't remembered as shown.
    SetAdvancedUser(true);
    ShowMessage(kHint, true, false, true);
    SetAdvancedUser(false);
    ShowMessage(kHint, true, false, true);
    EXPECT_EQ(Shown().size(), 1u);

    ReleaseAlertStore();
    ShowMessage(kHint, true, false, true);
    EXPECT_EQ(Shown().size(), 2u);
}

TEST_F(AlertTest, TheShownSetRemembersAtMost501Hints) {
    constexpr int kHint = 2280;
    // Hints without a string before it: remembered but never shown.
    for (const auto& [othersBefore, shownAfterTwoCalls] : {std::pair{500, 1u}, std::pair{501, 2u}}) {
        SCOPED_TRACE(othersBefore);
        ResetAlertState();
        ResetHeadlessState();
        for (int id = 100000; id < 100000 + othersBefore; ++id) ShowMessage(id, true, false, true);
        ShowMessage(kHint, true, false, true);
        ShowMessage(kHint, true, false, true);
        EXPECT_EQ(Shown().size(), shownAfterTwoCalls);
    }
}

TEST_F(AlertTest, CardSizeStringsTakeTheTwoNumbers) {
    SetAlertNumbers(40, 41);
    struct Case { int id; const char* text; const char* expected; };
    const Case cases[] = {
        {2334, "34at least %d wide and %d high.~Yes~No", "at least 40 wide and 41 high."},
        {2334, "34%d, %d, %d~OK", "40, 41, %d"},
        {2268, "34at least %d wide~OK", "at least %d wide"},  // other strings keep their text
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        AlertLayout layout;
        ASSERT_TRUE(BuildAlertLayout(c.id, c.text, true, &layout));
        EXPECT_EQ(layout.text, c.expected);
    }

    GetHeadlessState().alertAnswers = {2};
    EXPECT_EQ(Alert(2334), 2);  // No
    ASSERT_EQ(Shown().size(), 1u);
    EXPECT_EQ(Shown()[0].text, "The stack's card size must be at least 40 wide and 41 high. Do you want to convert it to "
                               "the minimum size?");
}

TEST_F(AlertTest, AlertTextShowsAPreparedTextCutToTheBuffer) {
    EXPECT_EQ(AlertText("14Prepared elsewhere~^OK"), 1);
    ASSERT_EQ(Shown().size(), 1u);
    EXPECT_EQ(Shown()[0].stringId, 0);
    EXPECT_EQ(Shown()[0].text, "Prepared elsewhere");

    GetHeadlessState().alertAnswers = {2};
    EXPECT_EQ(AlertText("34" + std::string(249, 'x') + "~A~B"), 2);  // 255 bytes: both buttons kept
    EXPECT_EQ(AlertText("34" + std::string(253, 'x') + "~A"), 1);    // the "~" is cut off
    EXPECT_EQ(Shown().size(), 2u);
}

TEST_F(AlertTest, MessageTextIsTheBareMessageInUtf8) {
    SetAlertNumbers(40, 40);
    struct Case { int id; const char* expected; };
    const Case cases[] = {
        {2268, "I'm sorry, I can't load this file because it is not a stack."},
        {2334, "The stack's card size must be at least 40 wide and 40 high. Do you want to convert it to "
               "the minimum size?"},
        {2816, "In\303\255cio.stk"},  // a plain string stays whole
        {1, ""},
    };
    for (const Case& c : cases) EXPECT_EQ(AlertMessageText(c.id), c.expected) << c.id;
}

}  // namespace
