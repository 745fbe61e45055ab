// The language's evaluator on arbitrary programs, within a budget: at most 64 blocks of nodes and
// a few hundred thousand polls of a loop, after which the run is broken off as Escape would.
// Every input starts from a clean workspace.
#include <cstdint>
#include <string>
#include <string_view>

#include "FuzzImage.h"
#include "base/StateRegistry.h"
#include "logo/Evaluator.h"
#include "logo/NodeHeap.h"
#include "subsystems/Subsystems.h"

namespace {

inline constexpr uint32_t kPumpBudget = 64;
uint32_t gPumps = 0;

void CountPump() {
    if (++gPumps >= kPumpBudget) RequestLogoBreak();
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
    SetLogoErrorSink([](const std::string&) {});
    const std::string text(reinterpret_cast<const char*>(data), size);
    RunLogoLines(text, nullptr, [](std::string_view) {});
    return 0;
}
