// `quillbrook play`: the desktop player. The stack opens in an SDL window of the card's size and
// the main loop runs until the window is closed.
#include <fmt/format.h>

#include <string>

#include "CardWindow.h"
#include "Commands.h"
#include "EventRecorder.h"
#include "EventScript.h"
#include "gfx/Palette.h"
#include "host/Application.h"
#include "host/MainLoop.h"
#include "host/WindowProc.h"
#include "platform/Host.h"
#include "platform/HostFile.h"
#include "platform/HostPath.h"
#include "platform/headless/HeadlessHost.h"
#include "platform/sdl/SdlHost.h"
#include "player/StackFlows.h"
#include "policy/Policy.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "ui/AlertBox.h"
#include "ui/FileChooser.h"

namespace {

bool OpenInWindow(const std::string& path) {
    InitApplication(SdlWindowHandle());
    if (!GetHostFileStatus(path).exists) {
        fmt::print(stderr, "{}: no such file\n", path);
        return false;
    }
    SetSlotPath(kSlotStack, DosPathFromHost(path));
    OpenStack(false);
    if (!GetDocument().hasFile) {
        fmt::print(stderr, "{}: the stack did not open\n", path);
        return false;
    }
    return true;
}

bool WriteText(const std::string& path, const std::string& text) {
    if (WriteWholeHostFile(path, text.data(), text.size()) == 0) return true;
    fmt::print(stderr, "{}: could not write\n", path);
    return false;
}

// --exit-after: its wait starts again at every key or mouse button, so that however late a test's
// input comes, the whole wait follows it before the screenshot. The loop looks at the time only
// between messages, so a card change that a click started always ends before the shot.
struct QuietState {
    bool (*poll)(HostEvent*) = nullptr;  // the host's own
    uint32_t lastInputMs = 0;
};
QuietState gQuiet;

bool PollNotingInput(HostEvent* event) {
    if (!gQuiet.poll || !gQuiet.poll(event)) return false;
    switch (event->kind) {
        case HostEventKind::MouseDown:
        case HostEventKind::MouseUp:
        case HostEventKind::KeyDown:
        case HostEventKind::KeyUp:
        case HostEventKind::Char:
            gQuiet.lastInputMs = GetHost().GetTickCount();
            break;
        default:
            break;
    }
    return true;
}

// The main loop until the window closes, or until `quietMs` have passed since `start` and since the
// last key or button.
int RunUntilQuiet(uint32_t start, uint32_t quietMs) {
    if (quietMs == 0) return RunMainLoop(0);
    Host& host = GetHost();
    gQuiet = QuietState{host.PollEvent, start};
    host.PollEvent = PollNotingInput;
    int code = 0;
    for (;;) {
        uint32_t until = gQuiet.lastInputMs + quietMs;
        if (static_cast<int32_t>(host.GetTickCount() - until) >= 0) break;
        if (until == 0) until = 1;  // 0 would mean "until the window closes"
        code = RunMainLoop(until);
        if (GetWindowProcState().closed) break;
    }
    host.PollEvent = gQuiet.poll;
    gQuiet = QuietState{};
    return code;
}

int Play(const PlayOptions& options) {
    if (!OpenInWindow(options.path)) return 1;
    FitWindowToCard();
    ShowSdlWindow();
    // Alerts and the file chooser from now on are drawn in the window; while it was hidden SDL's
    // message box showed the alerts.
    GetHost().ShowAlert = ShowModalAlert;
    GetHost().ChooseFile = RunFileChooser;
    const uint32_t start = GetHost().GetTickCount();
    if (!options.record.empty()) StartRecording(start);
    const int code = RunUntilQuiet(
        start, options.exitAfterMs > 0 ? static_cast<uint32_t>(options.exitAfterMs) : 0);
    bool written = true;
    if (!options.screenshot.empty()) {
        Surface shown;
        written = ReadSdlWindowPixels(&shown) && WriteSurfacePng(options.screenshot, shown);
    }
    if (!options.record.empty())
        written = WriteText(options.record, EventScriptText(StopRecording())) && written;
    return written ? code : 1;
}

}  // namespace

int RunPlay(const PlayOptions& options) {
    if (options.depth) ForceDisplayDepth(options.depth);
    SdlHostOptions window;
    window.scale = options.scale;
    window.fullscreen = options.fullscreen;
    window.title = "Quillbrook";
    std::string error;
    if (!StartSdlHost(window, &error)) {
        fmt::print(stderr, "play: no window could be opened: {}\n", error);
        return 1;
    }
    SetHost(SdlHost());
    SetPolicyPlace(PolicyPlace::Desktop);
    const int code = Play(options);
    StopSdlHost();
    SetHost(HeadlessHost());
    return code;
}
