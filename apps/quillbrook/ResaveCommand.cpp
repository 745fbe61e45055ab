// `quillbrook resave FILE -o OUT`: open through the full open flow, save through the full writer.
#include <fmt/format.h>

#include <cstdio>

#include "Commands.h"
#include "OpenForCommand.h"
#include "platform/HostPath.h"
#include "platform/headless/HeadlessHost.h"
#include "player/StackFlows.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"

int RunResave(const std::string& path, const std::string& out) {
    if (!OpenStackForCommand(path)) return 1;
    GetHeadlessState().fileChoices.push_back(out);
    const int32_t result = SaveStackAs();
    PrintShownAlerts(out);
    if (result != kResultOk || !GetDocument().hasFile || SlotHostPath(kSlotStack) != HostPathFromDos(DosPathFromHost(out))) {
        fmt::print(stderr, "{}: the save failed\n", out);
        return 1;
    }
    return 0;
}
