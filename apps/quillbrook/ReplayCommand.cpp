// `quillbrook render --replay`: recorded input played on the headless host. The virtual clock
// starts when the first card shows, each event comes due at its time, and the frame on the screen
// once the last event has had `--settle` milliseconds is written; with `--audio`, what was heard
// up to then, as a 16-bit stereo WAV file at the rate the first sound opened the device with.
#include <fmt/format.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "CardWindow.h"
#include "Commands.h"
#include "EventScript.h"
#include "OpenForCommand.h"
#include "gfx/Palette.h"
#include "host/MainLoop.h"
#include "host/WindowProc.h"
#include "media/SoundWave.h"
#include "platform/Host.h"
#include "platform/HostFile.h"
#include "platform/headless/HeadlessHost.h"
#include "player/Navigation.h"
#include "stack/CardList.h"
#include "stack/Document.h"

namespace {

namespace fs = std::filesystem;

// --frames: every present, as the screen stood after it.
struct FrameState {
    std::string folder;
    int count = 0;
    bool failed = false;
    void (*present)(const Rect&) = nullptr;  // the headless host's own
};
FrameState gFrames;

void PresentAndKeep(const Rect& dirty) {
    gFrames.present(dirty);
    if (gFrames.failed) return;
    const std::string file =
        (fs::path(gFrames.folder) / fmt::format("frame-{:04}.png", gFrames.count++)).string();
    if (!WriteSurfacePng(file, GetHeadlessState().screen)) gFrames.failed = true;
}

bool ReadScript(const std::string& path, std::vector<HostEvent>* events) {
    std::string text;
    if (ReadWholeHostFile(path, &text) != 0) {
        fmt::print(stderr, "{}: cannot read the events\n", path);
        return false;
    }
    std::string error;
    if (!ParseEventScript(text, events, &error)) {
        fmt::print(stderr, "{}: {}\n", path, error);
        return false;
    }
    return true;
}

// Nothing heard is an empty recording at the lowest device rate.
bool WriteHeardAudio(const std::string& path) {
    const HeadlessState& h = GetHeadlessState();
    const auto frames = static_cast<uint32_t>(h.audio.size() / 2);
    const SoundInfo info{16, 2, h.audioRate ? h.audioRate : 11025, frames, frames * 4, 0};
    std::vector<uint8_t> file(kWaveHeaderBytes + info.dataBytes);
    WriteWaveHeader(file.data(), info, info.dataBytes);
    if (frames) std::memcpy(file.data() + kWaveHeaderBytes, h.audio.data(), info.dataBytes);
    if (WriteWholeHostFile(path, file.data(), file.size()) == 0) return true;
    fmt::print(stderr, "{}: could not write\n", path);
    return false;
}

}  // namespace

int RunReplay(const RenderOptions& options) {
    std::vector<HostEvent> events;
    if (!ReadScript(options.replay, &events)) return 2;
    if (options.settleMs < 0) {
        fmt::print(stderr, "--settle must not be negative\n");
        return 2;
    }
    // A replay starts from a program that has seen nothing yet, however often it runs in a process.
    ResetHeadlessState();
    SetHost(HeadlessHost());
    ResetMainLoop();
    ResetWindowProc();
    if (options.depth) ForceDisplayDepth(options.depth);
    gFrames = FrameState{};
    if (!options.framesDir.empty()) {
        std::error_code error;
        fs::create_directories(options.framesDir, error);
        if (error) {
            fmt::print(stderr, "{}: {}\n", options.framesDir, error.message());
            return 1;
        }
        gFrames.folder = options.framesDir;
        gFrames.present = GetHost().Present;
        GetHost().Present = PresentAndKeep;
    }
    if (!OpenStackForCommand(options.path)) return 1;
    // --card starts the session on that card, reached as the player goes to a card.
    if (options.card != 1) {
        const MemRef card = GetCardByPosition(options.card);
        if (!card) {
            fmt::print(stderr, "{}: no card {} (the stack has {})\n", options.path, options.card, CardCount());
            return 2;
        }
        GoToCardNoBack(static_cast<int16_t>(GetCardId(card)), kPlainEffect, kPlainSpeed);
    }
    FitWindowToCard();
    const uint32_t start = GetHost().GetTickCount();
    for (HostEvent event : events) {
        event.time += start;
        QueueHeadlessEvent(event);
    }
    const uint32_t last = events.empty() ? 0 : events.back().time;
    const uint32_t until = start + last + static_cast<uint32_t>(options.settleMs);
    // 0 would mean "until the window closes".
    RunMainLoop(until == 0 ? 1 : until);
    PrintShownAlerts(options.path);
    if (!options.audio.empty() && !WriteHeardAudio(options.audio)) return 1;
    if (gFrames.present) GetHost().Present = gFrames.present;
    if (gFrames.failed) return 1;
    if (!gFrames.folder.empty())
        fmt::print("{} frames written to {}\n", gFrames.count, gFrames.folder);
    return WriteSurfacePng(options.output, GetHeadlessState().screen) ? 0 : 1;
}
