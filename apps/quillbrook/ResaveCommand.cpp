// `quillbrook resave FILE -o OUT`: open through the full open flow, save through the full writer.
#include <fmt/format.h>

#include <cstdio>

#include "Commands.h"
#include "host/Application.h"
#include "platform/HostFile.h"
#include "platform/HostPath.h"
#include "platform/headless/HeadlessHost.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackFlows.h"
#include "ui/Alert.h"

namespace {

// What the user would have seen: every alert the flows showed, in order.
void PrintAlerts(const std::string& path) {
    for (const HeadlessAlert& alert : GetHeadlessState().alertsShown) {
        fmt::print(stderr, "{}: alert {}: \"{}\"\n", path, alert.stringId, AlertMessageText(alert.stringId));
    }
    GetHeadlessState().alertsShown.clear();
}

}  // namespace

int RunResave(const std::string& path, const std::string& out) {
    InitApplication(nullptr);
    if (!GetHostFileStatus(path).exists) {
        fmt::print(stderr, "{}: no such file\n", path);
        return 1;
    }
    SetSlotPath(kSlotStack, DosPathFromHost(path));
    OpenStack(false);
    PrintAlerts(path);
    if (!GetDocument().hasFile) {
        fmt::print(stderr, "{}: the stack did not open; nothing was written\n", path);
        return 1;
    }
    GetHeadlessState().fileChoices.push_back(out);
    const int32_t result = SaveStackAs();
    PrintAlerts(out);
    if (result != kFlowOk || !GetDocument().hasFile || SlotHostPath(kSlotStack) != HostPathFromDos(DosPathFromHost(out))) {
        fmt::print(stderr, "{}: the save failed\n", out);
        return 1;
    }
    return 0;
}
