#include "actions/Quiz.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "messages/StringTable.h"
#include "platform/Host.h"
#include "platform/HostFile.h"
#include "platform/HostPath.h"
#include "player/StackFlows.h"
#include "stack/CardList.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "subsystems/Subsystems.h"

namespace {

QuizState gQuiz;

bool StillOnCard(const QuizAnswer& answer) {
    return answer.block && GetCardPosition(answer.card) != 0 &&
           GetCardId(answer.card) == answer.cardId;
}

QuizAnswer* AnswerOf(MemRef card) {
    for (QuizAnswer& answer : gQuiz.answers) {
        if (answer.card == card && StillOnCard(answer)) return &answer;
    }
    return nullptr;
}

ReportTime LocalTime() {
    const HostDateTime t = GetHost().WallClock();
    ReportTime r;
    r.month = t.month;
    r.day = t.day;
    r.year = t.year % 100;
    r.hour = t.hour;
    r.minute = t.minute;
    r.second = t.second;
    return r;
}

// The report file beside the stack, as a host path; "" when the stack's drive maps to nothing.
std::string ReportPath() {
    const std::string& stack = gQuiz.stackPath;
    const size_t separator = stack.find_last_of('\\');
    const std::string folder = separator == std::string::npos ? "" : stack.substr(0, separator + 1);
    return HostPathFromDos(folder + GetString(kStringTestReportFile));
}

// The file opened at its end: the existing one, else a new one.
int32_t OpenForAppending(const std::string& hostPath, HostFile** file) {
    if (hostPath.empty()) return kResultFailed;
    const bool exists = GetHostFileStatus(hostPath).exists;
    if (OpenHostFile(hostPath, exists ? FileMode::ReadWrite : FileMode::Create, file) != 0)
        return kResultFailed;
    uint64_t length = 0;
    if (HostFileLength(*file, &length) != 0 || SeekHostFile(*file, length) != 0) {
        CloseHostFile(*file);
        return kResultFailed;
    }
    return kResultOk;
}

// The report's lines in order, each with its line end; the answers' blocks are read on the way.
std::vector<std::string> ReportLines() {
    const ReportTime t = gQuiz.clock ? gQuiz.clock() : LocalTime();
    std::vector<std::string> lines = {
        gQuiz.stackName + "\r\n",
        gQuiz.userName + "\r\n",
        fmt::format("{:02}/{:02}/{:02}    {:02}:{:02}:{:02}\r\n", t.month, t.day, t.year, t.hour,
                    t.minute, t.second),
    };
    uint32_t correct = 0, answered = 0;
    for (int32_t position = 1; position <= CardCount(); ++position) {
        const MemRef card = GetCardByPosition(position);
        const QuizAnswer* answer = AnswerOf(card);
        if (!answer) continue;
        MemRefLock lock(answer->block);
        if (!lock) continue;
        const char* name = reinterpret_cast<const char*>(lock.data() + 4);
        lines.push_back(fmt::format("{}\r\n", GetCardId(card)));
        lines.push_back(std::string(name, strnlen(name, kAnswerBlockSize - 4)) + "\r\n");
        correct += Read32(lock.data()) != 0 ? 1 : 0;
        ++answered;
    }
    lines.push_back("SCORE\r\n");
    lines.push_back(fmt::format("{}\r\n", correct));
    lines.push_back(fmt::format("{}\r\n", answered));
    lines.push_back("-END-\r\n");
    return lines;
}

}  // namespace

QuizState& GetQuizState() {
    return gQuiz;
}

void ClearTestAnswers() {
    for (QuizAnswer& answer : gQuiz.answers) FreeMemRef(answer.block);
    gQuiz.answers.clear();
}

void ResetQuiz() {
    ClearTestAnswers();
    gQuiz = QuizState{};
}

void RecordTestAnswer(bool correct, const std::string& name) {
    const MemRef card = GetDocument().currentCard;
    if (!card || GetCardPosition(card) == 0) return;
    gQuiz.stackPath = GetSlotPath(kSlotStack);
    gQuiz.stackName = GetSlotName(kSlotStack);
    QuizAnswer* answer = AnswerOf(card);
    if (!answer) {
        const MemRef block = NewMemRef(kAnswerBlockSize);
        if (!block) return;
        gQuiz.answers.push_back({card, GetCardId(card), block});
        answer = &gQuiz.answers.back();
    }
    MemRefLock lock(answer->block);
    if (!lock) return;
    std::memset(lock.data(), 0, kAnswerBlockSize);
    Write32(lock.data(), correct ? 1 : 0);
    std::memcpy(lock.data() + 4, name.data(), std::min<size_t>(name.size(), kAnswerBlockSize - 5));
}

void AskTestUserName() {
    std::string text;
    if (!GetSubsystems().AskText(kAskNameLabel, &text)) return;
    gQuiz.userName = text.substr(0, kUserNameMax);
}

int32_t WriteTestReport() {
    bool any = false;
    for (const QuizAnswer& answer : gQuiz.answers) any = any || StillOnCard(answer);
    if (!any) {
        ClearTestAnswers();
        return kResultOk;
    }
    const std::vector<std::string> lines = ReportLines();
    // The stack is closing: its answers go whether or not the file takes them.
    ClearTestAnswers();
    HostFile* file = nullptr;
    int32_t result = OpenForAppending(ReportPath(), &file);
    if (result == kResultOk) {
        for (const std::string& line : lines) {
            result = WriteHostFile(file, line.data(), static_cast<uint32_t>(line.size()));
            if (result != 0) break;
        }
        CloseHostFile(file);
    }
    ShowFileError(result);
    return result;
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Actions, ResetQuiz);
}  // namespace
