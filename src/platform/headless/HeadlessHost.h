// The headless backend: a virtual clock that tests advance, alerts answered by script (or by their
// default button, or on request by the real in-window box fed with the scripted input), file
// dialogs answered by script (or cancelled), and a window that is a surface in memory, whose
// presented frames tests can look at. Used by tests and the CLI.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "gfx/Surface.h"
#include "platform/Host.h"

Host HeadlessHost();

struct HeadlessAlert {
    int stringId = 0;
    std::string text;
    int answer = 0;  // the button given back, 1 to 3
};

struct HeadlessMessageBox {
    std::string title;
    std::string text;
};

// A new headless window's size, until a test or the CLI sets another.
inline constexpr int32_t kHeadlessWindowWidth = 640;
inline constexpr int32_t kHeadlessWindowHeight = 480;
// The system's smallest window, on every host.
inline constexpr int32_t kMinWindowSide = 40;

struct HeadlessState {
    uint32_t clockMs = 0;
    uint32_t timerPeriodMs = 0;
    std::deque<int> alertAnswers;           // taken in order; empty: the default button
    std::vector<HeadlessAlert> alertsShown;  // every alert shown, in order
    std::vector<HeadlessMessageBox> messageBoxesShown;  // every message box shown, in order
    std::deque<std::string> fileChoices;     // host paths; "" cancels; empty queue cancels
    int waitCursorDepth = 0;
    // What the core draws into, and what has reached the "screen": each Present copies its
    // rectangle from `window` to `screen`, so drawing that was never presented does not show there.
    Surface window{kHeadlessWindowWidth, kHeadlessWindowHeight};
    Surface screen{kHeadlessWindowWidth, kHeadlessWindowHeight};
    std::vector<Rect> presents;  // every Present's rectangle, clipped to the window, in order
    std::string title;
    int32_t cursorId = 0;
    std::deque<HostEvent> events;  // scripted input, in time order; each comes due at its time
    // Alerts run the in-window modal box on the scripted input instead of taking alertAnswers.
    // When the script runs out, the box ends as cancelled.
    bool modalAlerts = false;
    // The wall clock reads this UTC time (milliseconds since 1970) plus the virtual clock, as
    // local time, so tests see the date they set whatever the machine's zone.
    int64_t wallClockStartMs = 946684800000;  // 2000-01-01 00:00:00
    uint32_t terminalFds = 0;            // bit n set: descriptor n is a terminal
    // Audio: while the device is open the mix is pulled into `audio` (stereo frames at
    // `audioRate`) as the virtual clock moves; a pause between two openings is kept as silence, up
    // to a minute, so that a long quiet run can't fill memory. Every opening gets the first one's
    // rate, so that `audio` is one recording.
    bool audioDevice = true;  // false: there is no device to detect or open
    uint32_t audioBufferFrames = 1024;
    AudioPull audioPull = nullptr;  // while the device is open
    uint32_t audioRate = 0;
    uint32_t audioOpenedMs = 0;     // the clock at the last opening, or at the last closing
    size_t audioFramesAtOpen = 0;
    std::vector<int16_t> audio;
};

HeadlessState& GetHeadlessState();
void ResetHeadlessState();
void AdvanceHeadlessClock(uint32_t ms);
// Queues scripted input; events must be queued in time order.
void QueueHeadlessEvent(const HostEvent& event);
// Gives the window (and the screen) a new size, at least kMinWindowSide each way, all white. The
// surface keeps its address.
void SetHeadlessWindowSize(int32_t width, int32_t height);
// The wall clock shows `at` now (its weekday is ignored) and moves on with the virtual clock.
void SetHeadlessWallClock(const HostDateTime& at);
