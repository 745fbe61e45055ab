#include "platform/headless/HeadlessHost.h"

#include <algorithm>

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

Surface* HeadlessGetWindowSurface() { return &gState.window; }

void HeadlessPresent(const Rect& dirty) {
    const Rect part = IntersectRect(dirty, gState.window.Bounds());
    const Rect shown = part.IsEmpty() ? Rect{} : part;
    gState.presents.push_back(shown);
    if (gState.screen.width != gState.window.width ||
        gState.screen.height != gState.window.height) {
        gState.screen = Surface(gState.window.width, gState.window.height);
    }
    for (int32_t y = shown.top; y < shown.bottom; ++y) {
        std::copy(gState.window.Row(y) + shown.left, gState.window.Row(y) + shown.right,
                  gState.screen.Row(y) + shown.left);
    }
}

void HeadlessSetTitle(const std::string& title) { gState.title = title; }
void HeadlessSetCursor(int32_t cursorId) { gState.cursorId = cursorId; }

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
    host.GetWindowSurface = HeadlessGetWindowSurface;
    host.Present = HeadlessPresent;
    host.SetTitle = HeadlessSetTitle;
    host.SetCursor = HeadlessSetCursor;
    return host;
}

HeadlessState& GetHeadlessState() { return gState; }
void ResetHeadlessState() { gState = HeadlessState{}; }
void AdvanceHeadlessClock(uint32_t ms) { gState.clockMs += ms; }

void SetHeadlessWindowSize(int32_t width, int32_t height) {
    width = std::max(width, kMinWindowSide);
    height = std::max(height, kMinWindowSide);
    gState.window = Surface(width, height);
    gState.screen = Surface(width, height);
}
