// The player's CPU use on a static card: the real SDL window and main loop, the sample stack's
// first card, 10 seconds of wall time, and the process's user + system time from /proc/self/stat
// over the same span. The target is at most 1%. Without a display it runs itself again under
// xvfb-run (a virtual X server), so SDL waits on a real X connection as on a desktop.
//
// Usage: qb_player_cpu_bench [STACK] [SECONDS]
#include <fmt/format.h>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "CardWindow.h"
#include "host/Application.h"
#include "host/MainLoop.h"
#include "memory/MemRef.h"
#include "platform/Host.h"
#include "platform/HostPath.h"
#include "platform/sdl/SdlHost.h"
#include "player/StackFlows.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"

namespace {

constexpr double kTargetPercent = 1.0;
constexpr int kDefaultSeconds = 10;

// utime + stime of this process, in seconds: fields 14 and 15 of /proc/self/stat, counted after
// the command name, which is in parentheses and may hold blanks.
double CpuSeconds() {
    std::ifstream in("/proc/self/stat");
    std::string line;
    std::getline(in, line);
    const size_t close = line.rfind(')');
    if (close == std::string::npos) return 0;
    std::istringstream fields(line.substr(close + 2));
    std::string field;
    unsigned long long utime = 0, stime = 0;
    for (int i = 3; i <= 15 && fields >> field; ++i) {
        if (i == 14) utime = std::stoull(field);
        if (i == 15) stime = std::stoull(field);
    }
    return static_cast<double>(utime + stime) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

bool HaveDisplay() {
    const char* x = std::getenv("DISPLAY");
    const char* wayland = std::getenv("WAYLAND_DISPLAY");
    return (x && *x) || (wayland && *wayland);
}

// Runs this program again under xvfb-run; returns only when that cannot be done.
void RerunUnderXvfb(int argc, char** argv) {
    setenv("QB_BENCH_UNDER_XVFB", "1", 1);
    std::vector<char*> args;
    std::string a = "xvfb-run", b = "-a", c = "-s", d = "-screen 0 1280x1024x24";
    for (std::string* s : {&a, &b, &c, &d}) args.push_back(s->data());
    for (int i = 0; i < argc; ++i) args.push_back(argv[i]);
    args.push_back(nullptr);
    execvp("xvfb-run", args.data());
}

}  // namespace

int main(int argc, char** argv) {
    if (!HaveDisplay() && !std::getenv("QB_BENCH_UNDER_XVFB")) {
        RerunUnderXvfb(argc, argv);
        fmt::print(
            stderr,
            "No display, and xvfb-run could not be started (Debian: apt-get install xvfb xauth)\n");
        return 2;
    }
    const std::string stack = argc > 1 ? argv[1] : QB_BENCH_STACK;
    const int seconds = argc > 2 ? std::max(1, std::atoi(argv[2])) : kDefaultSeconds;
    if (!InitMemRefs() || !InitPathSlots()) return 2;

    SdlHostOptions options;
    options.title = "Quillbrook";
    std::string error;
    if (!StartSdlHost(options, &error)) {
        fmt::print(stderr, "no window: {}\n", error);
        return 2;
    }
    SetHost(SdlHost());
    InitApplication(SdlWindowHandle());
    SetSlotPath(kSlotStack, DosPathFromHost(stack));
    OpenStack(false);
    if (!GetDocument().hasFile) {
        fmt::print(stderr, "{}: the stack did not open\n", stack);
        StopSdlHost();
        return 2;
    }
    FitWindowToCard();
    ShowSdlWindow();

    // Only the idle card is measured, not the start.
    const double cpuBefore = CpuSeconds();
    const auto wallBefore = std::chrono::steady_clock::now();
    RunMainLoop(GetHost().GetTickCount() + static_cast<uint32_t>(seconds) * 1000u);
    const double cpu = CpuSeconds() - cpuBefore;
    const double wall =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - wallBefore).count();
    const std::string driver = SdlDriverName();
    StopSdlHost();

    const double percent = wall > 0 ? 100.0 * cpu / wall : 0;
    fmt::print("player CPU on a static card: {:.2f}% ({:.0f} ms of CPU over {:.0f} ms; SDL {}{})\n",
               percent, cpu * 1000, wall * 1000, driver,
               std::getenv("QB_BENCH_UNDER_XVFB") ? ", under Xvfb" : "");
    fmt::print("target <= {:.0f}%: {}\n", kTargetPercent,
               percent <= kTargetPercent ? "met" : "NOT met");
    return percent <= kTargetPercent ? 0 : 1;
}
