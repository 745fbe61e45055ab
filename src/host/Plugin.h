// The plug-in boundary: everything a browser sees of the player. Three exported entry points, the
// table of instance functions, and the intake of a stack as a stream into a temporary file, which
// the open flow takes up when the stream ends. From then on the plug-in is the player, in the
// browser's window. The web player feeds the same functions.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/PluginApi.h"

#define QB_PLUGIN_EXPORT __attribute__((visibility("default")))

struct HostFile;

// The module's version information: three parallel lists that declare the document type.
inline constexpr char kPluginMimeTypes[] = "Quillbrook|application/qbrk";
inline constexpr char kPluginFileExtents[] = "stk|stk";
inline constexpr char kPluginFileOpenNames[] = "Quillbrook (*.stk)|Quillbrook (*.stk)";
// The same, in the form a Unix browser lists: type, extensions, description.
inline constexpr char kPluginMimeDescription[] = "application/qbrk:stk:Quillbrook";
inline constexpr char kPluginName[] = "Quillbrook";
inline constexpr char kPluginDescription[] = "Quillbrook stack player (*.stk)";

// Instance data, hung on the browser's instance record: the window (pointer-sized) and the mode
// (16-bit), packed. Six bytes at a 32-bit layout.
inline constexpr size_t kInstanceWindow = 0;
inline constexpr size_t kInstanceMode = sizeof(void*);
inline constexpr size_t kInstanceDataSize = kInstanceMode + 2;

// Idle work runs on this timer from the moment the application starts on its window.
inline constexpr uint32_t kIdleTimerMs = 55;
// NPP_WriteReady: the plug-in takes anything the browser offers.
inline constexpr int32_t kWriteReadyBytes = 0x0FFFFFFF;
// The token line an embedded stack prints, in device units.
inline constexpr int16_t kPrintTokenEnd = 500;

extern "C" {
QB_PLUGIN_EXPORT NPError NP_GetEntryPoints(NPPluginFuncs* table);
QB_PLUGIN_EXPORT NPError NP_Initialize(NPNetscapeFuncs* browserTable);
QB_PLUGIN_EXPORT NPError NP_Shutdown();
QB_PLUGIN_EXPORT const char* NP_GetMIMEDescription();
QB_PLUGIN_EXPORT NPError NP_GetValue(void* future, NPPVariable variable, void* value);
}

NPError NPP_New(NPMIMEType pluginType, NPP instance, uint16_t mode, int16_t argc, char* argn[], char* argv[],
                NPSavedData* saved);
NPError NPP_Destroy(NPP instance, NPSavedData** save);
NPError NPP_SetWindow(NPP instance, NPWindow* window);
NPError NPP_NewStream(NPP instance, NPMIMEType type, NPStream* stream, NPBool seekable, uint16_t* stype);
NPError NPP_DestroyStream(NPP instance, NPStream* stream, NPReason reason);
void NPP_StreamAsFile(NPP instance, NPStream* stream, const char* fname);
int32_t NPP_WriteReady(NPP instance, NPStream* stream);
int32_t NPP_Write(NPP instance, NPStream* stream, int32_t offset, int32_t len, void* buffer);
void NPP_Print(NPP instance, NPPrint* printInfo);
// Exists, but is not in the table: the host delivers events to the application itself.
int16_t NPP_HandleEvent(NPP instance, void* event);

// The browser's services that the instance code uses.
void* NPN_MemAlloc(uint32_t size);
void NPN_MemFree(void* ptr);

// A line drawn on a print device. Printing draws nothing else yet, so the record is what there is.
struct PrintedLine {
    void* device = nullptr;
    int16_t fromX = 0, fromY = 0, toX = 0, toY = 0;
};

// One for the whole process: the player is global state, and one stream at a time comes in.
struct PluginState {
    NPNetscapeFuncs* browserFunctions = nullptr;
    void* moduleInstance = nullptr;
    // The stream's temporary file. Once set, the handle stays set after the stream ends, as the
    // system leaves it; only a failed NPP_NewStream clears it (the handle -1).
    bool streamFileSet = false;
    HostFile* streamFile = nullptr;  // open while data comes in
    std::string streamPath;          // host path of the last file made, in a private folder of its own
    uint32_t streamCount = 0;        // numbers the files
    // The application is started once per process, on the first window any instance gets.
    bool applicationStarted = false;
    // The window whose messages go to the application's handler first.
    void* handledWindow = nullptr;
    // The window is redrawn through the renderer; until it presents, the requests are counted.
    int32_t repaintRequests = 0;
    std::vector<PrintedLine> printedLines;
};

PluginState& GetPluginState();
// Closes an open stream file and forgets everything; the application state stays.
void ResetPluginState();

// Recorded when the module is loaded, cleared when it is unloaded.
void PluginModuleLoaded(void* moduleInstance);
void PluginModuleUnloaded();
