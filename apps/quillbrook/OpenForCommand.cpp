#include "OpenForCommand.h"

#include <fmt/format.h>

#include <cstdio>

#include "host/Application.h"
#include "messages/Alert.h"
#include "platform/HostFile.h"
#include "platform/HostPath.h"
#include "platform/headless/HeadlessHost.h"
#include "player/StackFlows.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"

void PrintShownAlerts(const std::string& path) {
    for (const HeadlessAlert& alert : GetHeadlessState().alertsShown) {
        fmt::print(stderr, "{}: alert {}: \"{}\"\n", path, alert.stringId, AlertMessageText(alert.stringId));
    }
    GetHeadlessState().alertsShown.clear();
}

bool OpenStackForCommand(const std::string& path) {
    InitApplication(nullptr);
    if (!GetHostFileStatus(path).exists) {
        fmt::print(stderr, "{}: no such file\n", path);
        return false;
    }
    SetSlotPath(kSlotStack, DosPathFromHost(path));
    OpenStack(false);
    PrintShownAlerts(path);
    if (!GetDocument().hasFile) {
        fmt::print(stderr, "{}: the stack did not open\n", path);
        return false;
    }
    return true;
}
