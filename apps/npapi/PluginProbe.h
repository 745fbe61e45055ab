// A test-only window into the module: the module carries its own copy of the player's state, so a
// harness that loads it asks the module itself what the player shows.
#pragma once

#include <cstdint>

struct QbPluginProbe {
    // The document.
    int32_t currentCardId;
    int32_t cardCount;
    int32_t hasFile;
    char stackName[64];
    // The host.
    void* mainWindow;
    uint32_t timerPeriodMs;
    int32_t alertCount;  // alerts shown since the last clear; the first 16 numbers below
    int32_t alertIds[16];
    char artFolder[260];  // path slot 4, as the start-up sets it
    // The plug-in.
    void* browserFunctions;
    void* moduleInstance;
    int32_t applicationStarted;
    void* handledWindow;
    int32_t streamFileSet;
    char streamPath[1024];
    int32_t repaintRequests;
    int32_t printedLineCount;
    void* printDevice;  // of the last line
    int16_t printLine[4];
};

// What the next stream file creation meets.
enum QbStreamFault : int32_t {
    kQbNoFault = 0,
    kQbTempFolderLocked = 1,  // no folder can be made in the temporary folder
    kQbNextOpenFails = 2,     // the next file open fails
};

extern "C" {
void QB_TestState(QbPluginProbe* probe);
void QB_TestClearAlerts();
void QB_TestSetStreamFault(int32_t fault);
}
using QB_TestStateProc = void (*)(QbPluginProbe*);
using QB_TestClearAlertsProc = void (*)();
using QB_TestSetStreamFaultProc = void (*)(int32_t);
