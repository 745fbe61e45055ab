// The player's loop: input to the window procedure, the 55 ms tick, repaints; no spinning.
#pragma once

#include <cstdint>

inline constexpr uint32_t kTickMs = 55;

// Runs until the window is closed, or until GetTickCount reaches `untilMs` when it is given
// (headless replays), or until `stop`, asked after each round, says so (the web player gives the
// page its turn). Returns the process's exit code.
int RunMainLoop(uint32_t untilMs = 0, bool (*stop)() = nullptr);
// Serves the timer work that is due and leaves input queued: what long-running code calls.
void PumpOneMessage();

// Runs the tick's work when its time has come (never inside itself), and gives the time of the
// next tick. `ran`, when given, says whether it ran. The main loop, PumpOneMessage and the modal
// dialogs' loops share it, so the timers keep one beat whoever waits.
uint32_t ServeDueTick(bool* ran = nullptr);
// The menu's Exit: the loop gets a Close as if the window's own had been clicked.
void PostCloseRequest();

struct MainLoopState {
    uint32_t nextTickMs = 0;
    bool started = false;  // nextTickMs is set
    bool inTick = false;
    bool closePosted = false;
    uint32_t ticksServed = 0;
};
MainLoopState& GetMainLoopState();
void ResetMainLoop();
