// A stack as a quiz: buttons marked right or wrong leave an answer on their card, a button can ask
// the user's name, and when the stack closes the answers are appended to "QBTest.txt" beside it.
//
// The answers are kept here, beside the cards, rather than in the card's run-time field: a card's
// bytes come from the file and its writer keeps them, so a handle found there could be anything.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "memory/MemRef.h"

inline constexpr uint32_t kAnswerBlockSize = 260;  // u32 correct, then the zero-ended name
inline constexpr uint32_t kUserNameMax = 33;
inline constexpr int kStringTestReportFile = 2610;
inline constexpr const char* kAskNameLabel = "Hello, please enter your name.";

// Keeps the answer of a click on the current card; a later answer on the same card replaces it.
// Without memory the answer is dropped silently.
void RecordTestAnswer(bool correct, const std::string& name);
// Asks for the user's name; on OK it becomes the test user name.
void AskTestUserName();
// Appends the report of the answers to the file beside the stack, if any card has one, and frees
// them. 0, or the file error, already reported.
int32_t WriteTestReport();
// Forgets every answer (a stack that is closed or read again starts without).
void ClearTestAnswers();

// The report's clock: local date and time.
struct ReportTime {
    int month = 1, day = 1, year = 0;  // year: two digits
    int hour = 0, minute = 0, second = 0;
};
using ReportClock = ReportTime (*)();

struct QuizAnswer {
    MemRef card = 0;  // the card it was given on, with its id to tell a reused handle
    int16_t cardId = 0;
    MemRef block = 0;
};
struct QuizState {
    std::string userName;
    std::vector<QuizAnswer> answers;
    // The stack the answers were given on (path slot form): a move to another stack names the new
    // one in the stack's slot before the old one closes and writes its report.
    std::string stackPath;
    std::string stackName;
    ReportClock clock = nullptr;  // null: the local time
};
QuizState& GetQuizState();
// Frees the answers and forgets the name; the clock goes back to the local time.
void ResetQuiz();
