// The browser's plug-in interface as the player uses it: the two function tables, the instance and
// stream records, and the result codes. Declared here from the interface's own description, with
// pointer-sized slots: a 32-bit build lays the tables out exactly as the 32-bit browsers did.
#pragma once

#include <cstddef>
#include <cstdint>

using NPError = int16_t;
using NPReason = int16_t;
using NPBool = uint8_t;
using NPMIMEType = char*;

// Result codes of the entry points.
inline constexpr NPError NPERR_NO_ERROR = 0;
inline constexpr NPError NPERR_GENERIC_ERROR = 1;
inline constexpr NPError NPERR_INVALID_INSTANCE_ERROR = 2;
inline constexpr NPError NPERR_INVALID_FUNCTABLE_ERROR = 3;
inline constexpr NPError NPERR_MODULE_LOAD_FAILED_ERROR = 4;
inline constexpr NPError NPERR_OUT_OF_MEMORY_ERROR = 5;
inline constexpr NPError NPERR_INVALID_PLUGIN_ERROR = 6;
inline constexpr NPError NPERR_INVALID_PLUGIN_DIR_ERROR = 7;
inline constexpr NPError NPERR_INCOMPATIBLE_VERSION_ERROR = 8;
inline constexpr NPError NPERR_INVALID_PARAM = 9;

// Reasons for the end of a stream.
inline constexpr NPReason NPRES_DONE = 0;
inline constexpr NPReason NPRES_NETWORK_ERR = 1;
inline constexpr NPReason NPRES_USER_BREAK = 2;

// The table version this module speaks: 0.6, major in the high byte.
inline constexpr uint16_t NP_VERSION_MAJOR = 0;
inline constexpr uint16_t NP_VERSION_MINOR = 6;

// Instance modes, and the print record's mode.
inline constexpr uint16_t NP_EMBED = 1;
inline constexpr uint16_t NP_FULL = 2;

// Stream delivery types; the plug-in leaves the browser's choice, plain streaming.
inline constexpr uint16_t NP_NORMAL = 1;
inline constexpr uint16_t NP_SEEK = 2;
inline constexpr uint16_t NP_ASFILE = 3;
inline constexpr uint16_t NP_ASFILEONLY = 4;

// The browser's record of one instance: `pdata` is the plug-in's, `ndata` the browser's.
struct NPP_t {
    void* pdata;
    void* ndata;
};
using NPP = NPP_t*;

struct NPStream {
    void* pdata;
    void* ndata;
    const char* url;
    uint32_t end;
    uint32_t lastmodified;
    void* notifyData;
};

struct NPByteRange {
    int32_t offset;
    uint32_t length;
    NPByteRange* next;
};

struct NPSavedData {
    int32_t len;
    void* buf;
};

struct NPRect {
    uint16_t top;
    uint16_t left;
    uint16_t bottom;
    uint16_t right;
};

enum NPWindowType { NPWindowTypeWindow = 1, NPWindowTypeDrawable = 2 };

// The window an instance lives in; `window` is the host's opaque, pointer-sized handle.
struct NPWindow {
    void* window;
    int32_t x;
    int32_t y;
    uint32_t width;
    uint32_t height;
    NPRect clipRect;
    NPWindowType type;
};

struct NPFullPrint {
    NPBool pluginPrinted;  // false: the browser prints the page itself
    NPBool printOne;
    void* platformPrint;
};

struct NPEmbedPrint {
    NPWindow window;
    void* platformPrint;  // the device to draw on
};

struct NPPrint {
    uint16_t mode;  // NP_FULL or NP_EMBED
    union {
        NPFullPrint fullPrint;
        NPEmbedPrint embedPrint;
    } print;
};

// What NP_GetValue can be asked for.
enum NPPVariable { NPPVpluginNameString = 1, NPPVpluginDescriptionString = 2 };

// The plug-in's functions, as the browser calls them.
using NPP_NewProcPtr = NPError (*)(NPMIMEType pluginType, NPP instance, uint16_t mode, int16_t argc,
                                   char* argn[], char* argv[], NPSavedData* saved);
using NPP_DestroyProcPtr = NPError (*)(NPP instance, NPSavedData** save);
using NPP_SetWindowProcPtr = NPError (*)(NPP instance, NPWindow* window);
using NPP_NewStreamProcPtr = NPError (*)(NPP instance, NPMIMEType type, NPStream* stream, NPBool seekable,
                                         uint16_t* stype);
using NPP_DestroyStreamProcPtr = NPError (*)(NPP instance, NPStream* stream, NPReason reason);
using NPP_StreamAsFileProcPtr = void (*)(NPP instance, NPStream* stream, const char* fname);
using NPP_WriteReadyProcPtr = int32_t (*)(NPP instance, NPStream* stream);
using NPP_WriteProcPtr = int32_t (*)(NPP instance, NPStream* stream, int32_t offset, int32_t len, void* buffer);
using NPP_PrintProcPtr = void (*)(NPP instance, NPPrint* platformPrint);
using NPP_HandleEventProcPtr = int16_t (*)(NPP instance, void* event);

// The browser's functions, as the plug-in calls them.
using NPN_GetURLProcPtr = NPError (*)(NPP instance, const char* url, const char* window);
using NPN_PostURLProcPtr = NPError (*)(NPP instance, const char* url, const char* window, uint32_t len,
                                       const char* buf, NPBool file);
using NPN_RequestReadProcPtr = NPError (*)(NPStream* stream, NPByteRange* rangeList);
using NPN_NewStreamProcPtr = NPError (*)(NPP instance, NPMIMEType type, const char* window, NPStream** stream);
using NPN_WriteProcPtr = int32_t (*)(NPP instance, NPStream* stream, int32_t len, void* buffer);
using NPN_DestroyStreamProcPtr = NPError (*)(NPP instance, NPStream* stream, NPReason reason);
using NPN_StatusProcPtr = void (*)(NPP instance, const char* message);
using NPN_UserAgentProcPtr = const char* (*)(NPP instance);
using NPN_MemAllocProcPtr = void* (*)(uint32_t size);
using NPN_MemFreeProcPtr = void (*)(void* ptr);
using NPN_MemFlushProcPtr = uint32_t (*)(uint32_t size);
using NPN_ReloadPluginsProcPtr = void (*)(NPBool reloadPages);

// Filled by NP_GetEntryPoints. A browser's table may go on past these slots; the module never
// touches what follows the tenth.
struct NPPluginFuncs {
    uint16_t size;
    uint16_t version;
    NPP_NewProcPtr newp;
    NPP_DestroyProcPtr destroy;
    NPP_SetWindowProcPtr setwindow;
    NPP_NewStreamProcPtr newstream;
    NPP_DestroyStreamProcPtr destroystream;
    NPP_StreamAsFileProcPtr asfile;
    NPP_WriteReadyProcPtr writeready;
    NPP_WriteProcPtr write;
    NPP_PrintProcPtr print;
    NPP_HandleEventProcPtr event;
};

// Given to NP_Initialize: its first twelve slots, as far as the module needs to know it.
struct NPNetscapeFuncs {
    uint16_t size;
    uint16_t version;
    NPN_GetURLProcPtr geturl;
    NPN_PostURLProcPtr posturl;
    NPN_RequestReadProcPtr requestread;
    NPN_NewStreamProcPtr newstream;
    NPN_WriteProcPtr write;
    NPN_DestroyStreamProcPtr destroystream;
    NPN_StatusProcPtr status;
    NPN_UserAgentProcPtr uagent;
    NPN_MemAllocProcPtr memalloc;
    NPN_MemFreeProcPtr memfree;
    NPN_MemFlushProcPtr memflush;
    NPN_ReloadPluginsProcPtr reloadplugins;
};

// The end of the last slot `slots` of a table that starts with a 16-bit size and a 16-bit version
// followed by slots of `pointerSize` bytes, each at its natural alignment.
constexpr uint16_t FunctionTableEnd(size_t pointerSize, int slots) {
    const size_t head = (4 + pointerSize - 1) / pointerSize * pointerSize;
    return static_cast<uint16_t>(head + static_cast<size_t>(slots) * pointerSize);
}

inline constexpr int kPluginTableSlots = 10;   // NPP_New .. NPP_HandleEvent
inline constexpr int kBrowserTableSlots = 12;  // NPN_GetURL .. NPN_ReloadPlugins
// The smallest size field each table may carry, at this platform's layout.
inline constexpr uint16_t kPluginTableMinSize = FunctionTableEnd(sizeof(void*), kPluginTableSlots);
inline constexpr uint16_t kBrowserTableMinSize = FunctionTableEnd(sizeof(void*), kBrowserTableSlots);

// A 32-bit layout gives the sizes the browsers of the time sent.
static_assert(FunctionTableEnd(4, kPluginTableSlots) == 44);
static_assert(FunctionTableEnd(4, kBrowserTableSlots) == 52);
static_assert(kPluginTableMinSize == offsetof(NPPluginFuncs, event) + sizeof(NPP_HandleEventProcPtr));
static_assert(kBrowserTableMinSize == offsetof(NPNetscapeFuncs, reloadplugins) + sizeof(NPN_ReloadPluginsProcPtr));

// 3 (invalid table) when a table's size field stops short of the end of its last slot in use.
constexpr NPError CheckTableSize(uint16_t size, size_t pointerSize, int slots) {
    return size < FunctionTableEnd(pointerSize, slots) ? NPERR_INVALID_FUNCTABLE_ERROR : NPERR_NO_ERROR;
}
