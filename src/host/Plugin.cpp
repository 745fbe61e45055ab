#include "host/Plugin.h"

#include <cstdio>
#include <cstring>

#include "base/StateRegistry.h"
#include "host/Application.h"
#include "memory/MemRef.h"
#include "platform/Host.h"
#include "platform/HostFile.h"
#include "platform/HostFolder.h"
#include "platform/HostPath.h"
#include "player/StackFlows.h"
#include "stack/PathSlot.h"

namespace {

// Made on first use: the module's load records itself here before other statics are set up.
PluginState& State() {
    static PluginState state;
    return state;
}

inline constexpr char kStreamFolderPrefix[] = "qbstream-";
inline constexpr char kStreamFilePrefix[] = "stk";

void* InstanceWindow(const void* data) {
    void* window = nullptr;
    std::memcpy(&window, static_cast<const uint8_t*>(data) + kInstanceWindow, sizeof(window));
    return window;
}

void SetInstanceWindow(void* data, void* window) {
    std::memcpy(static_cast<uint8_t*>(data) + kInstanceWindow, &window, sizeof(window));
}

void SetInstanceMode(void* data, uint16_t mode) {
    std::memcpy(static_cast<uint8_t*>(data) + kInstanceMode, &mode, sizeof(mode));
}

std::string FolderOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

void CloseStreamFile() {
    if (!State().streamFile) return;
    CloseHostFile(State().streamFile);
    State().streamFile = nullptr;
}

// A new file named "stk" and a number, alone in a new private folder under the temporary folder:
// the stack's folder is where it may look for media, and a streamed stack gets nothing beside it.
// `path` changes only when the file is made, so that a failed stream doesn't orphan the last one.
HostFile* CreateStreamFile(std::string* path) {
    const std::string folder = MakePrivateHostFolder(HostTempFolder(), kStreamFolderPrefix);
    if (folder.empty()) return nullptr;
    char name[16];
    const unsigned number = ++State().streamCount & 0xFFFF;
    std::snprintf(name, sizeof(name), "%s%04X.tmp", kStreamFilePrefix, number);
    const std::string file = folder + "/" + name;
    HostFile* handle = nullptr;
    // The path must fit the stack slot that the open flow reads.
    if (DosPathFromHost(file).size() >= kSlotPathMax || OpenHostFile(file, FileMode::Create, &handle) != 0) {
        RemoveHostFolder(folder);
        return nullptr;
    }
    *path = file;
    return handle;
}

// Brings the player up on the window that an instance was given.
void StartApplicationOnWindow(void* window) {
    // Any handle the host hands over is a window; a null one never gets here.
    GetHost().window = window;
    if (!State().applicationStarted) {
        // A stream that ended before any window already holds blocks; a new table would orphan them.
        if (!GetMemRefTable().slots) InitMemRefs();
        InitApplication(window);
        State().applicationStarted = true;
    }
    // A later instance's window takes over the running player: starting memory and settings again
    // would drop the blocks that the open stack still holds.
    GetHost().SetTimer(kIdleTimerMs);
    State().handledWindow = window;
    // The palette translation tables start as the identity with the palette layer.
}

}  // namespace

PluginState& GetPluginState() { return State(); }

void ResetPluginState() {
    CloseStreamFile();
    State() = PluginState{};
}

void PluginModuleLoaded(void* moduleInstance) { State().moduleInstance = moduleInstance; }
void PluginModuleUnloaded() { State().moduleInstance = nullptr; }

// --- Exported entry points --------------------------------------------------------------------

NPError NP_GetEntryPoints(NPPluginFuncs* table) {
    if (!table || CheckTableSize(table->size, sizeof(void*), kPluginTableSlots) != NPERR_NO_ERROR)
        return NPERR_INVALID_FUNCTABLE_ERROR;
    table->version = static_cast<uint16_t>((NP_VERSION_MAJOR << 8) | NP_VERSION_MINOR);
    table->newp = NPP_New;
    table->destroy = NPP_Destroy;
    table->setwindow = NPP_SetWindow;
    table->newstream = NPP_NewStream;
    table->destroystream = NPP_DestroyStream;
    table->asfile = NPP_StreamAsFile;
    table->writeready = NPP_WriteReady;
    table->write = NPP_Write;
    table->print = NPP_Print;
    table->event = nullptr;
    return NPERR_NO_ERROR;
}

NPError NP_Initialize(NPNetscapeFuncs* browserTable) {
    if (!browserTable) return NPERR_INVALID_FUNCTABLE_ERROR;
    // Kept whatever the checks below say.
    State().browserFunctions = browserTable;
    if ((browserTable->version >> 8) != 0) return NPERR_INCOMPATIBLE_VERSION_ERROR;
    return CheckTableSize(browserTable->size, sizeof(void*), kBrowserTableSlots);
}

NPError NP_Shutdown() {
    // The player itself lives on until the process ends.
    State().browserFunctions = nullptr;
    return NPERR_NO_ERROR;
}

const char* NP_GetMIMEDescription() { return kPluginMimeDescription; }

NPError NP_GetValue(void* future, NPPVariable variable, void* value) {
    if (!value) return NPERR_INVALID_PARAM;
    switch (variable) {
    case NPPVpluginNameString:
        *static_cast<const char**>(value) = kPluginName;
        return NPERR_NO_ERROR;
    case NPPVpluginDescriptionString:
        *static_cast<const char**>(value) = kPluginDescription;
        return NPERR_NO_ERROR;
    }
    return NPERR_INVALID_PARAM;
}

// --- Browser services -------------------------------------------------------------------------

void* NPN_MemAlloc(uint32_t size) {
    const NPNetscapeFuncs* browser = State().browserFunctions;
    return browser && browser->memalloc ? browser->memalloc(size) : nullptr;
}

void NPN_MemFree(void* ptr) {
    const NPNetscapeFuncs* browser = State().browserFunctions;
    if (browser && browser->memfree) browser->memfree(ptr);
}

// --- Instance functions -----------------------------------------------------------------------

NPError NPP_New(NPMIMEType pluginType, NPP instance, uint16_t mode, int16_t argc, char* argn[], char* argv[],
                NPSavedData* saved) {
    if (!instance) return NPERR_INVALID_INSTANCE_ERROR;
    void* data = NPN_MemAlloc(kInstanceDataSize);
    if (!data) return NPERR_OUT_OF_MEMORY_ERROR;
    SetInstanceWindow(data, nullptr);
    SetInstanceMode(data, mode);
    instance->pdata = data;
    return NPERR_NO_ERROR;
}

NPError NPP_Destroy(NPP instance, NPSavedData** save) {
    if (!instance) return NPERR_INVALID_INSTANCE_ERROR;
    void* data = instance->pdata;
    if (!data) return NPERR_NO_ERROR;
    // The window's messages stop going to the player; the timer and the player itself stay.
    const void* window = InstanceWindow(data);
    if (window && State().handledWindow == window) State().handledWindow = nullptr;
    SetInstanceWindow(data, nullptr);
    NPN_MemFree(data);
    instance->pdata = nullptr;
    // A stream cut off by the page's end leaves its file open; it goes with the instance too.
    CloseStreamFile();
    if (!State().streamPath.empty()) {
        DeleteHostFile(State().streamPath);
        RemoveHostFolder(FolderOf(State().streamPath));
    }
    return NPERR_NO_ERROR;
}

NPError NPP_SetWindow(NPP instance, NPWindow* window) {
    if (!instance) return NPERR_INVALID_INSTANCE_ERROR;
    if (!window || !instance->pdata) return NPERR_GENERIC_ERROR;
    // Only the first window counts: a resize or another window later changes nothing.
    if (InstanceWindow(instance->pdata) || !window->window) return NPERR_NO_ERROR;
    SetInstanceWindow(instance->pdata, window->window);
    StartApplicationOnWindow(window->window);
    return NPERR_NO_ERROR;
}

NPError NPP_NewStream(NPP instance, NPMIMEType type, NPStream* stream, NPBool seekable, uint16_t* stype) {
    if (!instance) return NPERR_INVALID_INSTANCE_ERROR;
    // One stream at a time: a stream that never ended gives way to the new one.
    CloseStreamFile();
    State().streamFile = CreateStreamFile(&State().streamPath);
    State().streamFileSet = State().streamFile != nullptr;
    // *stype stays as the browser set it: plain streamed delivery is what the plug-in wants.
    return State().streamFileSet ? NPERR_NO_ERROR : NPERR_GENERIC_ERROR;
}

int32_t NPP_WriteReady(NPP instance, NPStream* stream) { return kWriteReadyBytes; }

int32_t NPP_Write(NPP instance, NPStream* stream, int32_t offset, int32_t len, void* buffer) {
    // Delivery is in order, so `offset` says nothing new; a failed write is not reported, and the
    // full length is always taken so that the browser never stalls.
    if (State().streamFile && len > 0 && buffer)
        (void)WriteHostFile(State().streamFile, buffer, static_cast<uint32_t>(len));
    return len;
}

NPError NPP_DestroyStream(NPP instance, NPStream* stream, NPReason reason) {
    if (!instance) return NPERR_INVALID_INSTANCE_ERROR;
    if (!State().streamFileSet) return NPERR_NO_ERROR;
    CloseStreamFile();
    // `reason` is not looked at: a stream that broke off fails in the open flow's header check.
    SetSlotPath(kSlotStack, DosPathFromHost(State().streamPath));
    OpenStack(false);
    ++State().repaintRequests;
    return NPERR_NO_ERROR;
}

void NPP_StreamAsFile(NPP instance, NPStream* stream, const char* fname) {}

void NPP_Print(NPP instance, NPPrint* printInfo) {
    if (!instance || !printInfo) return;
    if (printInfo->mode == NP_FULL) {
        printInfo->print.fullPrint.pluginPrinted = false;  // the browser prints the page
        return;
    }
    // An embedded stack prints a token, one diagonal line, and nothing else.
    State().printedLines.push_back({printInfo->print.embedPrint.platformPrint, 0, 0, kPrintTokenEnd, kPrintTokenEnd});
}

int16_t NPP_HandleEvent(NPP instance, void* event) { return 0; }

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Host, ResetPluginState);
}  // namespace
