// The headless backend: a virtual clock that tests advance, alerts answered by script (or by their
// default button), file dialogs answered by script (or cancelled). Used by tests and the CLI.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

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

struct HeadlessState {
    uint32_t clockMs = 0;
    uint32_t timerPeriodMs = 0;
    std::deque<int> alertAnswers;           // taken in order; empty: the default button
    std::vector<HeadlessAlert> alertsShown;  // every alert shown, in order
    std::vector<HeadlessMessageBox> messageBoxesShown;  // every message box shown, in order
    std::deque<std::string> fileChoices;     // host paths; "" cancels; empty queue cancels
    int waitCursorDepth = 0;
};

HeadlessState& GetHeadlessState();
void ResetHeadlessState();
void AdvanceHeadlessClock(uint32_t ms);
