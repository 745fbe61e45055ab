// The browser's side of the plug-in boundary, played by the page: quillbrook.js calls these with
// the element's size and the stack's bytes as fetch delivers them, and they drive the same entry
// points a browser drives in the plug-in module (NP_Initialize, NPP_New, NPP_SetWindow,
// NPP_NewStream, NPP_Write, NPP_DestroyStream). Each player on a page is a module instance of its
// own, so the process-wide player state is per element.
//
// Entry points that may wait (a window that starts the player, a stream whose end opens the stack)
// run only while the main loop is away: the page asks the loop to give way (QbRequestYield), calls
// the entry point, and starts the loop again (QbRun).
#include <emscripten.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "gfx/Surface.h"
#include "host/MainLoop.h"
#include "host/Plugin.h"
#include "platform/Host.h"
#include "platform/HostFonts.h"
#include "platform/web/WebHost.h"
#include "policy/Policy.h"
#include "stack/StackHeader.h"

namespace {

// The folder in memory the font files are fetched into, as the page's script knows it.
inline constexpr char kWebFontFolder[] = "/fonts";
inline constexpr char kStackType[] = "application/qbrk";

struct WebBrowser {
    NPNetscapeFuncs browser{};
    NPPluginFuncs plugin{};
    NPP_t instance{};
    NPWindow window{};
    NPStream stream{};
    std::string url;
};
WebBrowser gBrowser;

void* MemAlloc(uint32_t size) { return std::malloc(size); }
void MemFree(void* ptr) { std::free(ptr); }

bool LoopMustGiveWay() { return WebYieldRequested(); }

char* StackType() { return const_cast<char*>(kStackType); }

}  // namespace

extern "C" {

// The module is loaded and an instance made for an element of `width` x `height` pixels.
// Returns the entry points' error code, 0 for none.
EMSCRIPTEN_KEEPALIVE int QbNew(int width, int height) {
    SetHost(WebHost());
    SetPolicyPlace(PolicyPlace::Web);
    SetHostFontFolder(kWebFontFolder);
    SetWebWindowSize(width, height);
    WebBrowser& b = gBrowser;
    b.browser.size = sizeof(b.browser);
    b.browser.version = NP_VERSION_MINOR;
    b.browser.memalloc = MemAlloc;
    b.browser.memfree = MemFree;
    NPError error = NP_Initialize(&b.browser);
    if (error != NPERR_NO_ERROR) return error;
    b.plugin.size = sizeof(b.plugin);
    error = NP_GetEntryPoints(&b.plugin);
    if (error != NPERR_NO_ERROR) return error;
    return b.plugin.newp(StackType(), &b.instance, NP_EMBED, 0, nullptr, nullptr, nullptr);
}

// The canvas becomes the instance's window: the player starts on it. May wait (an alert).
EMSCRIPTEN_KEEPALIVE int QbSetWindow() {
    WebBrowser& b = gBrowser;
    const Surface* surface = GetHost().GetWindowSurface();
    b.window.window = WebWindowHandle();
    b.window.width = static_cast<uint32_t>(surface->width);
    b.window.height = static_cast<uint32_t>(surface->height);
    b.window.clipRect = {0, 0, static_cast<uint16_t>(surface->height), static_cast<uint16_t>(surface->width)};
    b.window.type = NPWindowTypeDrawable;
    return b.plugin.setwindow(&b.instance, &b.window);
}

EMSCRIPTEN_KEEPALIVE int QbNewStream(const char* url, uint32_t length) {
    WebBrowser& b = gBrowser;
    b.url = url ? url : "";
    b.stream = NPStream{};
    b.stream.url = b.url.c_str();
    b.stream.end = length;
    uint16_t type = NP_NORMAL;
    return b.plugin.newstream(&b.instance, StackType(), &b.stream, false, &type);
}

// One chunk as it arrived; returns what the plug-in took.
EMSCRIPTEN_KEEPALIVE int QbWrite(int offset, int length, void* bytes) {
    WebBrowser& b = gBrowser;
    const int32_t ready = b.plugin.writeready(&b.instance, &b.stream);
    if (length > ready) length = ready;
    return b.plugin.write(&b.instance, &b.stream, offset, length, bytes);
}

// The stream ended (`reason` 0) or broke off: the stack opens, and the window is drawn as a
// browser asks a plug-in to after the stream. May wait (a transition, an alert).
EMSCRIPTEN_KEEPALIVE int QbDestroyStream(int reason) {
    WebBrowser& b = gBrowser;
    const NPError error = b.plugin.destroystream(&b.instance, &b.stream, static_cast<NPReason>(reason));
    InvalidateWebWindow();
    return error;
}

// The player's main loop, until the page asks it to give way.
EMSCRIPTEN_KEEPALIVE void QbRun() {
    SetWebYieldRequested(false);
    RunMainLoop(0, LoopMustGiveWay);
}

EMSCRIPTEN_KEEPALIVE void QbRequestYield() { SetWebYieldRequested(true); }

// The element left the page: the instance goes, as when a browser leaves a page.
EMSCRIPTEN_KEEPALIVE int QbDestroy() {
    WebBrowser& b = gBrowser;
    NPSavedData* saved = nullptr;
    return b.plugin.destroy(&b.instance, &saved);
}

// Whether the first bytes of a file could start a stack: the page shows its own message for a file
// that is no stack at all, and leaves a damaged stack to the player's alerts.
EMSCRIPTEN_KEEPALIVE int QbLooksLikeStack(const uint8_t* bytes, uint32_t length) {
    if (length < kStackHeaderSize) return 0;
    uint8_t header[kStackHeaderSize];
    std::memcpy(header, bytes, kStackHeaderSize);
    NormaliseHeader(header);
    return HeaderIsPlausible(header) ? 1 : 0;
}

}  // extern "C"
