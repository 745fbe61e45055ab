// The language's evaluator on arbitrary programs, within a budget: at most 64 blocks of nodes and
// a few hundred thousand polls of a loop, after which the run is broken off as Escape would.
// Every input starts from a clean workspace, with the whole vocabulary: the file primitives reach
// a temporary folder of the fuzzer's own, emptied before each input, and nothing else.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "FuzzImage.h"
#include "base/StateRegistry.h"
#include "logo/Evaluator.h"
#include "logo/NodeHeap.h"
#include "policy/Policy.h"
#include "subsystems/Subsystems.h"

namespace {

inline constexpr uint32_t kPumpBudget = 64;
uint32_t gPumps = 0;

void CountPump() {
    if (++gPumps >= kPumpBudget) RequestLogoBreak();
}

const std::string& Sandbox() {
    static const std::string folder = [] {
        static std::string pattern = (std::filesystem::temp_directory_path() / "qbFuzzLogoXXXXXX").string();
        if (!::mkdtemp(pattern.data())) return std::string();
        // The folder goes with the process.
        std::atexit([] {
            std::error_code error;
            std::filesystem::remove_all(pattern, error);
        });
        return pattern;
    }();
    return folder;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 2048) return 0;
    ResetAllState();
    Subsystems table = UnavailableSubsystems();
    table.PumpOneMessage = CountPump;
    InstallSubsystems(table);
    gPumps = 0;
    SetNodeBlockLimit(64);
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(Sandbox(), error)) std::filesystem::remove_all(entry.path(), error);
    SetPolicyLanguageFolder(Sandbox());
    SetLogoErrorSink([](const std::string&) {});
    const std::string text(reinterpret_cast<const char*>(data), size);
    RunLogoLines(text, nullptr, [](std::string_view) {});
    return 0;
}
