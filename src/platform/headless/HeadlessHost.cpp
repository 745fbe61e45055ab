#include "platform/headless/HeadlessHost.h"

#include "ui/AlertLayout.h"

namespace {

HeadlessState gState;

uint32_t HeadlessTickCount() { return gState.clockMs; }
void HeadlessSetTimer(uint32_t periodMs) { gState.timerPeriodMs = periodMs; }

int HeadlessShowAlert(const AlertLayout& layout) {
    int answer = layout.defaultButton;
    if (!gState.alertAnswers.empty()) {
        answer = gState.alertAnswers.front();
        gState.alertAnswers.pop_front();
    }
    gState.alertsShown.push_back({layout.stringId, layout.text, answer});
    return answer;
}

void HeadlessShowMessageBox(const std::string& title, const std::string& text) {
    gState.messageBoxesShown.push_back({title, text});
}

bool HeadlessChooseFile(const FileChoice&, std::string* hostPath) {
    if (gState.fileChoices.empty()) return false;
    *hostPath = gState.fileChoices.front();
    gState.fileChoices.pop_front();
    return !hostPath->empty();
}

void HeadlessSetWaitCursor(bool wait) { gState.waitCursorDepth += wait ? 1 : -1; }

}  // namespace

Host HeadlessHost() {
    Host host;
    host.name = "headless";
    host.GetTickCount = HeadlessTickCount;
    host.SetTimer = HeadlessSetTimer;
    host.ShowAlert = HeadlessShowAlert;
    host.ShowMessageBox = HeadlessShowMessageBox;
    host.ChooseFile = HeadlessChooseFile;
    host.SetWaitCursor = HeadlessSetWaitCursor;
    return host;
}

HeadlessState& GetHeadlessState() { return gState; }
void ResetHeadlessState() { gState = HeadlessState{}; }
void AdvanceHeadlessClock(uint32_t ms) { gState.clockMs += ms; }
