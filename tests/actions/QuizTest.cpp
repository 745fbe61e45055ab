// A stack as a quiz: the answers, the name prompt, the report appended to "QBTest.txt" beside it.
#include "actions/Quiz.h"

#include <filesystem>

#include "actions/ActionStack.h"

namespace {

class QuizTest : public ActionStackTest {
protected:
    void SetUp() override {
        ActionStackTest::SetUp();
        GetQuizState().clock = [] {
            return ReportTime{.month = 3, .day = 7, .year = 4, .hour = 9, .minute = 5, .second = 30};
        };
        GetSubsystems().AskText = [](const std::string& label, std::string* text) {
            Log("ask " + label);
            *text = "Ada Augusta King, Countess of Lovelace";
            return true;
        };
        // Two cards of questions; the second comes first in the file, so card order shows.
        const auto button = [](uint16_t id, int16_t code, const std::string& name) {
            return StoredAction(id, {.testCode = code, .name = name});
        };
        stack = WriteActionStack("quiz.stk", {{2, {button(21, 2, "Nice")}},
                         {1, {button(11, 1, "Paris"), button(12, 2, "Lyon"), button(13, 3, "Me")}},
                         {3}});
        report = (std::filesystem::path(stack).parent_path() / "QBTest.txt").string();
        DeleteHostFile(report);
        Open(stack);
    }
    void TearDown() override { DeleteHostFile(report); ActionStackTest::TearDown(); }
    std::string Report() const {
        const Bytes bytes = ReadWholeFile(report);
        return std::string(bytes.begin(), bytes.end());
    }
    static void Click(int16_t card, uint16_t button) {
        GoToCardNoBack(card, kPlainEffect, kPlainSpeed);
        RunItemAction(nullptr, button, 0);
    }
    std::string stack;
    std::string report;
};

TEST_F(QuizTest, AnswersOnTheirCardsAndTheReportInCardOrder) {
    Click(1, 13);
    EXPECT_EQ(Logged(), "stop sounds; stop movies; ask Hello, please enter your name.");  // leaving the card stops its media
    EXPECT_EQ(GetQuizState().userName, "Ada Augusta King, Countess of Lov");  // 33 bytes kept
    Click(1, 12);
    Click(1, 11);  // replaces the wrong answer on the same card
    Click(2, 21);
    EXPECT_EQ(WriteTestReport(), 0);
    const std::string head = "quiz.stk\r\nAda Augusta King, Countess of Lov\r\n03/07/04    09:05:30\r\n";
    const std::string block = head + "2\r\nNice\r\n1\r\nParis\r\nSCORE\r\n1\r\n2\r\n-END-\r\n";
    EXPECT_EQ(Report(), block);

    // The answers went with the report: a later round is appended as a block of its own.
    Click(2, 21);
    EXPECT_EQ(WriteTestReport(), 0);
    EXPECT_EQ(Report(), block + head + "2\r\nNice\r\nSCORE\r\n0\r\n1\r\n-END-\r\n");
    EXPECT_EQ(Alerts(), std::vector<int>{});
}

TEST_F(QuizTest, AMoveToAnotherStackReportsTheStackTheAnswersWereGivenOn) {
    Click(1, 11);
    SetSlotPath(kSlotOtherStack, DosPathFromHost(WriteActionStack("other.stk", {{1}})));
    ASSERT_EQ(GoToStack(kSlotOtherStack, kFirstCardOfStack, kPlainEffect, kPlainSpeed, false, false), 0);
    EXPECT_EQ(Report().substr(0, 10), "quiz.stk\r\n");
}

}  // namespace
