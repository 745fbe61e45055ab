#include "PluginProbe.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "host/Plugin.h"
#include "platform/Host.h"
#include "platform/HostFile.h"
#include "platform/headless/HeadlessHost.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"

namespace {

template <size_t N>
void CopyText(char (&to)[N], const std::string& from) {
    const size_t n = std::min(from.size(), N - 1);
    std::memcpy(to, from.data(), n);
    to[n] = '\0';
}

}  // namespace

extern "C" QB_PLUGIN_EXPORT void QB_TestState(QbPluginProbe* probe) {
    *probe = QbPluginProbe{};
    const Document& doc = GetDocument();
    probe->currentCardId = doc.currentCardId;
    probe->cardCount = doc.cardList ? CardCount() : 0;
    probe->hasFile = doc.hasFile;
    CopyText(probe->stackName, doc.stackName);

    const HeadlessState& headless = GetHeadlessState();
    probe->mainWindow = GetHost().window;
    probe->timerPeriodMs = headless.timerPeriodMs;
    probe->alertCount = static_cast<int32_t>(headless.alertsShown.size());
    for (size_t i = 0; i < headless.alertsShown.size() && i < std::size(probe->alertIds); ++i)
        probe->alertIds[i] = headless.alertsShown[i].stringId;

    const PluginState& plugin = GetPluginState();
    if (plugin.applicationStarted) CopyText(probe->artFolder, GetSlotPath(kSlotArt));
    probe->browserFunctions = plugin.browserFunctions;
    probe->moduleInstance = plugin.moduleInstance;
    probe->applicationStarted = plugin.applicationStarted;
    probe->handledWindow = plugin.handledWindow;
    probe->streamFileSet = plugin.streamFileSet;
    CopyText(probe->streamPath, plugin.streamPath);
    probe->repaintRequests = plugin.repaintRequests;
    probe->printedLineCount = static_cast<int32_t>(plugin.printedLines.size());
    if (!plugin.printedLines.empty()) {
        const PrintedLine& line = plugin.printedLines.back();
        probe->printDevice = line.device;
        probe->printLine[0] = line.fromX;
        probe->printLine[1] = line.fromY;
        probe->printLine[2] = line.toX;
        probe->printLine[3] = line.toY;
    }
}

extern "C" QB_PLUGIN_EXPORT void QB_TestClearAlerts() { GetHeadlessState().alertsShown.clear(); }

extern "C" QB_PLUGIN_EXPORT void QB_TestSetStreamFault(int32_t fault) {
    ResetFileFaults();
    FileFaults& faults = GetFileFaults();
    if (fault == kQbTempFolderLocked) faults.lockedFolder = HostTempFolder();
    if (fault == kQbNextOpenFails) faults.failOpenAt = 1;
}
