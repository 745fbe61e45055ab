#include "platform/headless/HeadlessHost.h"

#include <algorithm>
#include <ctime>

#include "base/StateRegistry.h"
#include "platform/AlertLayout.h"
#include "ui/AlertBox.h"

namespace {

HeadlessState gState;

uint32_t HeadlessTickCount() {
    return gState.clockMs;
}
bool Due(uint32_t time) {
    return static_cast<int32_t>(time - gState.clockMs) <= 0;
}

bool HeadlessPollEvent(HostEvent* event) {
    if (gState.events.empty() || !Due(gState.events.front().time)) return false;
    *event = gState.events.front();
    gState.events.pop_front();
    return true;
}

// Scripted input counts as queued only once it is due.
std::deque<HostEvent>::iterator EndOfDue() {
    return std::find_if(gState.events.begin(), gState.events.end(),
                        [](const HostEvent& e) { return !Due(e.time); });
}

bool HeadlessPeekEvent(HostEventMatch match, HostEvent* event) {
    const auto end = EndOfDue();
    const auto found = std::find_if(gState.events.begin(), end,
                                    [match](const HostEvent& e) { return !match || match(e); });
    if (found == end) return false;
    *event = *found;
    return true;
}

void HeadlessDropEvents(HostEventMatch match) {
    const auto end = EndOfDue();
    gState.events.erase(std::remove_if(gState.events.begin(), end,
                                       [match](const HostEvent& e) { return !match || match(e); }),
                        end);
}

inline constexpr uint32_t kLongestAudioPauseMs = 60000;

uint64_t AudioFramesIn(uint32_t ms) { return uint64_t{ms} * gState.audioRate / 1000; }

// The recording catches up with the virtual clock.
void ServeHeadlessAudio() {
    if (!gState.audioPull) return;
    const uint64_t due = gState.audioFramesAtOpen + AudioFramesIn(gState.clockMs - gState.audioOpenedMs);
    const size_t have = gState.audio.size() / 2;
    if (due <= have) return;
    gState.audio.resize(2 * due, 0);
    gState.audioPull(gState.audio.data() + 2 * have, static_cast<uint32_t>(due - have));
}

uint32_t HeadlessOpenAudio(uint32_t rate, AudioPull pull) {
    if (!gState.audioDevice || !pull) return 0;
    if (gState.audioRate == 0) gState.audioRate = rate;
    if (!gState.audio.empty()) {
        const uint32_t pause = std::min(gState.clockMs - gState.audioOpenedMs, kLongestAudioPauseMs);
        gState.audio.resize(gState.audio.size() + 2 * AudioFramesIn(pause), 0);
    }
    gState.audioPull = pull;
    gState.audioOpenedMs = gState.clockMs;
    gState.audioFramesAtOpen = gState.audio.size() / 2;
    return gState.audioRate;
}

void HeadlessCloseAudio() {
    ServeHeadlessAudio();
    gState.audioPull = nullptr;
    gState.audioOpenedMs = gState.clockMs;
}

// The virtual clock jumps to the deadline, or to the next scripted event if that comes first.
// Events already due have arrived before the wait and do not shorten it.
void HeadlessWaitUntil(uint32_t deadline) {
    const auto next = EndOfDue();
    if (next != gState.events.end() && static_cast<int32_t>(next->time - deadline) < 0) {
        deadline = next->time;
    }
    if (!Due(deadline)) gState.clockMs = deadline;
    ServeHeadlessAudio();
}
void HeadlessSetTimer(uint32_t periodMs) {
    gState.timerPeriodMs = periodMs;
}

int HeadlessShowAlert(const AlertLayout& layout) {
    int answer = layout.defaultButton;
    if (gState.modalAlerts) {
        answer = ShowModalAlert(layout);
    } else if (!gState.alertAnswers.empty()) {
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

bool HeadlessInputExhausted() {
    return gState.events.empty();
}

void HeadlessSetWaitCursor(bool wait) {
    gState.waitCursorDepth += wait ? 1 : -1;
}

Surface* HeadlessGetWindowSurface() {
    return &gState.window;
}

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

void HeadlessSetTitle(const std::string& title) {
    gState.title = title;
}
void HeadlessSetCursor(int32_t cursorId) {
    gState.cursorId = cursorId;
}

HostDateTime HeadlessWallClock() {
    return DateTimeAt((gState.wallClockStartMs + gState.clockMs) / 1000, false);
}

bool HeadlessIsTerminal(int fd) {
    return fd >= 0 && fd < 32 && (gState.terminalFds >> fd & 1u) != 0;
}

}  // namespace

Host HeadlessHost() {
    Host host;
    host.name = "headless";
    host.GetTickCount = HeadlessTickCount;
    host.PollEvent = HeadlessPollEvent;
    host.PeekEvent = HeadlessPeekEvent;
    host.DropEvents = HeadlessDropEvents;
    host.WaitUntil = HeadlessWaitUntil;
    host.SetTimer = HeadlessSetTimer;
    host.ShowAlert = HeadlessShowAlert;
    host.ShowMessageBox = HeadlessShowMessageBox;
    host.ChooseFile = HeadlessChooseFile;
    host.SetWaitCursor = HeadlessSetWaitCursor;
    host.GetWindowSurface = HeadlessGetWindowSurface;
    host.Present = HeadlessPresent;
    host.SetTitle = HeadlessSetTitle;
    host.SetCursor = HeadlessSetCursor;
    host.InputExhausted = HeadlessInputExhausted;
    host.WallClock = HeadlessWallClock;
    host.IsTerminal = HeadlessIsTerminal;
    host.DetectAudio = [] { return gState.audioDevice ? gState.audioBufferFrames : 0u; };
    host.OpenAudio = HeadlessOpenAudio;
    host.CloseAudio = HeadlessCloseAudio;
    return host;
}

HeadlessState& GetHeadlessState() {
    return gState;
}
void ResetHeadlessState() {
    gState = HeadlessState{};
}
void AdvanceHeadlessClock(uint32_t ms) {
    gState.clockMs += ms;
    ServeHeadlessAudio();
}
void QueueHeadlessEvent(const HostEvent& event) {
    gState.events.push_back(event);
}

void SetHeadlessWindowSize(int32_t width, int32_t height) {
    width = std::max(width, kMinWindowSide);
    height = std::max(height, kMinWindowSide);
    gState.window = Surface(width, height);
    gState.screen = Surface(width, height);
}

void SetHeadlessWallClock(const HostDateTime& at) {
    // Days since 1970 of a proleptic Gregorian date, in eras of 400 years (timegm is no standard).
    const int64_t year = at.year - (at.month <= 2 ? 1 : 0);
    const int64_t era = (year >= 0 ? year : year - 399) / 400;
    const int64_t yearOfEra = year - era * 400;
    const int64_t dayOfYear = (153 * (at.month + (at.month > 2 ? -3 : 9)) + 2) / 5 + at.day - 1;
    const int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    const int64_t days = era * 146097 + dayOfEra - 719468;
    const int64_t seconds = days * 86400 + at.hour * 3600 + at.minute * 60 + at.second;
    gState.wallClockStartMs = seconds * 1000 - gState.clockMs;
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Platform, ResetHeadlessState);
}  // namespace
