#include "host/MainLoop.h"

#include "base/StateRegistry.h"
#include "host/WindowProc.h"
#include "platform/Host.h"

namespace {

MainLoopState gLoop;

bool Reached(uint32_t now, uint32_t time) { return static_cast<int32_t>(now - time) >= 0; }

// Input that is due goes to the window procedure; false once the window has closed.
bool DispatchInput(void* window) {
    const Host& host = GetHost();
    HostEvent event;
    if (gLoop.closePosted) {
        gLoop.closePosted = false;
        event.kind = HostEventKind::Close;
        HandleWindowMessage(window, event);
    }
    while (!GetWindowProcState().closed && host.PollEvent(&event)) {
        HandleWindowMessage(window, event);
    }
    return !GetWindowProcState().closed;
}

}  // namespace

MainLoopState& GetMainLoopState() { return gLoop; }
void ResetMainLoop() { gLoop = MainLoopState{}; }

uint32_t ServeDueTick(bool* ran) {
    if (ran) *ran = false;
    const uint32_t now = GetHost().GetTickCount();
    if (!gLoop.started) {
        gLoop.started = true;
        gLoop.nextTickMs = now + kTickMs;
    }
    if (gLoop.inTick || !Reached(now, gLoop.nextTickMs)) return gLoop.nextTickMs;
    // A loop that fell behind (a long action) takes up the beat from now rather than catching up
    // with a burst of ticks.
    gLoop.nextTickMs += kTickMs;
    if (Reached(now, gLoop.nextTickMs)) gLoop.nextTickMs = now + kTickMs;
    gLoop.inTick = true;
    ++gLoop.ticksServed;
    HandleTimerMessage(GetHost().window);
    gLoop.inTick = false;
    if (ran) *ran = true;
    return gLoop.nextTickMs;
}

void PostCloseRequest() { gLoop.closePosted = true; }

void PumpOneMessage() { ServeDueTick(); }

int RunMainLoop(uint32_t untilMs, bool (*stop)()) {
    Host& host = GetHost();
    void* window = host.window;
    host.SetTimer(kTickMs);
    while (DispatchInput(window)) {
        uint32_t deadline = ServeDueTick();
        if (GetWindowProcState().closed || gLoop.closePosted) continue;
        if (untilMs && Reached(GetHost().GetTickCount(), untilMs)) break;
        if (stop && stop()) break;
        if (untilMs && !Reached(untilMs, deadline)) deadline = untilMs;
        // The host sleeps until the next tick or until input comes: no busy waiting.
        host.WaitUntil(deadline);
    }
    host.SetTimer(0);
    return 0;
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Host, ResetMainLoop);
}  // namespace
