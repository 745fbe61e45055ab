#include "platform/Host.h"

#include "base/StateRegistry.h"
#include "platform/AlertLayout.h"

namespace {

uint32_t gNullClockMs = 0;

// The clipboard of a host that has none of its own.
struct MemoryClipboard {
    std::string text;
    bool holdsText = false;
};
MemoryClipboard gClipboard;
[[maybe_unused]] const bool kClipboardReset =
    RegisterStateReset(Room::Platform, [] { gClipboard = MemoryClipboard{}; });

// Constant, so that the host is in place before any program code runs, even a module constructor.
constexpr Host MakeNullHost() {
    Host host;
    host.name = "none";
    host.GetTickCount = [] { return gNullClockMs; };
    host.PollEvent = [](HostEvent*) { return false; };
    host.PeekEvent = [](HostEventMatch, HostEvent*) { return false; };
    host.DropEvents = [](HostEventMatch) {};
    // Nothing can arrive, so a wait always lasts to its deadline.
    host.WaitUntil = [](uint32_t deadline) {
        if (static_cast<int32_t>(deadline - gNullClockMs) > 0) gNullClockMs = deadline;
    };
    host.SetTimer = [](uint32_t) {};
    host.ShowAlert = [](const AlertLayout& layout) { return layout.defaultButton; };
    host.ShowMessageBox = [](const std::string&, const std::string&) {};
    host.ChooseFile = [](const FileChoice&, std::string*) { return false; };
    host.SetWaitCursor = [](bool) {};
    host.GetWindowSurface = []() -> Surface* { return nullptr; };
    host.Present = [](const Rect&) {};
    host.SetTitle = [](const std::string&) {};
    host.SetCursor = [](int32_t) {};
    host.InputExhausted = [] { return true; };
    host.DetectAudio = [] { return 0u; };
    host.OpenAudio = [](uint32_t, AudioPull) { return 0u; };
    host.CloseAudio = [] {};
    host.LockAudio = [](bool) {};
    host.FetchFile = [](const std::string&) {};
    host.SetClipboardText = [](const std::string& text) { gClipboard = {text, true}; };
    host.GetClipboardText = [](std::string* text) {
        if (gClipboard.holdsText) *text = gClipboard.text;
        return gClipboard.holdsText;
    };
    return host;
}

template <typename Slot>
void FillEmpty(Slot& slot, Slot fallback) {
    if (!slot) slot = fallback;
}

constinit Host gHost = MakeNullHost();

}  // namespace

Host& GetHost() {
    return gHost;
}

void SetHost(const Host& host) {
    const Host null = MakeNullHost();
    gHost = host;
    FillEmpty(gHost.GetTickCount, null.GetTickCount);
    FillEmpty(gHost.PollEvent, null.PollEvent);
    FillEmpty(gHost.PeekEvent, null.PeekEvent);
    FillEmpty(gHost.DropEvents, null.DropEvents);
    FillEmpty(gHost.WaitUntil, null.WaitUntil);
    FillEmpty(gHost.SetTimer, null.SetTimer);
    FillEmpty(gHost.ShowAlert, null.ShowAlert);
    FillEmpty(gHost.ShowMessageBox, null.ShowMessageBox);
    FillEmpty(gHost.ChooseFile, null.ChooseFile);
    FillEmpty(gHost.SetWaitCursor, null.SetWaitCursor);
    FillEmpty(gHost.GetWindowSurface, null.GetWindowSurface);
    FillEmpty(gHost.Present, null.Present);
    FillEmpty(gHost.SetTitle, null.SetTitle);
    FillEmpty(gHost.SetCursor, null.SetCursor);
    FillEmpty(gHost.InputExhausted, null.InputExhausted);
    FillEmpty(gHost.WallClock, null.WallClock);
    FillEmpty(gHost.IsTerminal, null.IsTerminal);
    FillEmpty(gHost.DetectAudio, null.DetectAudio);
    FillEmpty(gHost.OpenAudio, null.OpenAudio);
    FillEmpty(gHost.CloseAudio, null.CloseAudio);
    FillEmpty(gHost.LockAudio, null.LockAudio);
    FillEmpty(gHost.FetchFile, null.FetchFile);
    FillEmpty(gHost.SetClipboardText, null.SetClipboardText);
    FillEmpty(gHost.GetClipboardText, null.GetClipboardText);
}
