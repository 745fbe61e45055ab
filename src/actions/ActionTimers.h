// Automatic timers: the card's and the stack's click actions and the actions of the card's items can
// each fire by themselves some seconds after the card has come up, once or again and again, while
// the stack's "Automatic Timers & HyperLinks" preference is on and the browse tool is in use.
// A pass counts every pending timer down before it fires those at 0, so a timer of n seconds fires
// on pass n, and one of 0 seconds on the first pass too.
#pragma once

#include <cstdint>

inline constexpr uint32_t kActionTimerRows = 20;
// A pass runs at most once per this many ticks of 17 ms, about a second.
inline constexpr uint32_t kTimerPassTicks = 61;
inline constexpr uint32_t kTimerTickMs = 17;
// An action's timerMode.
inline constexpr uint16_t kTimerOff = 0;
inline constexpr uint16_t kTimerRepeat = 2;

struct ActionTimer {
    uint32_t actionId = 0;  // 0: the row is free
    bool isRecord = false;  // an 'Actn' record, else a button of the card
    int32_t remaining = 0;  // seconds still to wait; negative: never
    int32_t interval = 0;
    bool repeat = false;
};

// The card on show's timers, from scratch: its click action, the stack's, then its items' in the
// order the card walks them. A card's 21st timer is dropped without a word.
void BuildActionTimers();
void ClearActionTimers();
// Every tick: a pass counts the pending timers down and fires those that are due.
void TickActionTimers(void* window);
const ActionTimer& GetActionTimer(uint32_t row);
