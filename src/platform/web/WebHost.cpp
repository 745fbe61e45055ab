#include "platform/web/WebHost.h"

#include <emscripten.h>

#include <algorithm>

#include "base/Windows1252.h"
#include "platform/AlertLayout.h"
#include "platform/HostInput.h"
#include "platform/web/WebState.h"
#include "ui/AlertBox.h"

// The JavaScript half lives in WebHost.js (linked in as --pre-js): each player's own Module object
// carries its canvas and its wake-up.

// One band of a frame (`width` by `rows` pixels at `left`, `top`) onto the canvas, which is the
// window's size; `last` ends the frame.
EM_JS(void, QbJsPresent,
      (const uint32_t* pixels, int width, int rows, int left, int top, int windowWidth,
       int windowHeight, int last),
      { Module.qbPresent(pixels, width, rows, left, top, windowWidth, windowHeight, last); });
// A wait suspends the wasm until the page's promise settles (Module.qbSuspend, in WebHost.js).
EM_JS(void, QbJsWait, (double ms), { return Module.qbSuspend(function() { return Module.qbWait(ms); }); });
EM_JS(void, QbJsSetTitle, (const char* title), { Module.qbSetTitle(UTF8ToString(title)); });
EM_JS(void, QbJsSetCursor, (int wait), { Module.qbSetCursor(wait); });
EM_JS(void, QbJsMessage, (const char* title, const char* text),
      { Module.qbMessage(UTF8ToString(title), UTF8ToString(text)); });

namespace {

WebState gState;

uint32_t WebTickCount() {
    return static_cast<uint32_t>(emscripten_get_now() - gState.startMs);
}

bool WebPollEvent(HostEvent* event) {
    if (gState.events.empty()) return false;
    *event = gState.events.front();
    gState.events.pop_front();
    return true;
}

bool WebPeekEvent(HostEventMatch match, HostEvent* event) {
    return PeekQueuedEvent(gState.events, match, event);
}

void WebDropEvents(HostEventMatch match) {
    DropQueuedEvents(gState.events, match);
}

// The browser gets its turn first, even when the deadline has passed: a loop that only polls must
// still let the page paint and take input. Then the wait sleeps until the deadline, new input, or
// the page's request to give way.
void WebWaitUntil(uint32_t deadline) {
    const uint32_t before = gState.arrivals;
    for (bool first = true;; first = false) {
        if (!first && (gState.arrivals != before || gState.yieldRequested)) return;
        const int32_t remaining = static_cast<int32_t>(deadline - WebTickCount());
        if (!first && remaining <= 0) return;
        QbJsWait(remaining > 0 ? remaining : 0);
    }
}

void WebSetTimer(uint32_t periodMs) {
    gState.timerPeriodMs = periodMs;
}

Surface* WebGetWindowSurface() {
    return &gState.surface;
}

// The canvas takes a frame a band of rows at a time, through a buffer small enough to stay in the
// cache: a copy of the whole window would be another megabyte of fresh memory to touch before the
// first card shows.
constexpr int32_t kPresentBandRows = 64;

// The surface's 0x00RRGGBB words become the canvas's R, G, B, A bytes here rather than in the
// page's script: the first frames come before the script's loop would have been optimised.
void WebPresent(const Rect& dirty) {
    const Surface& surface = gState.surface;
    const Rect part = IntersectRect(dirty, surface.Bounds());
    if (part.IsEmpty()) return;
    const int32_t width = part.right - part.left;
    std::vector<uint32_t>& band = gState.canvasBand;
    band.resize(std::max(band.size(), static_cast<size_t>(width) * kPresentBandRows));
    for (int32_t top = part.top; top < part.bottom; top += kPresentBandRows) {
        const int32_t bottom = std::min(part.bottom, top + kPresentBandRows);
        uint32_t* out = band.data();
        for (int32_t y = top; y < bottom; ++y) {
            const uint32_t* row = surface.Row(y) + part.left;
            for (int32_t x = 0; x < width; ++x) {
                const uint32_t p = row[x];
                *out++ = 0xFF000000u | ((p & 0xFFu) << 16) | (p & 0xFF00u) | ((p >> 16) & 0xFFu);
            }
        }
        QbJsPresent(band.data(), width, bottom - top, part.left, top, surface.width, surface.height,
                    bottom == part.bottom ? 1 : 0);
    }
    DescribeCardIfChanged();
}

void WebSetTitle(const std::string& title) {
    QbJsSetTitle(Utf8FromWindows1252(title).c_str());
}

void ShowCursor() {
    QbJsSetCursor(gState.waitCursorDepth > 0 ? 1 : 0);
}

void WebSetCursor(int32_t cursorId) {
    gState.cursorId = cursorId;
    ShowCursor();
}

void WebSetWaitCursor(bool wait) {
    gState.waitCursorDepth = std::max(0, gState.waitCursorDepth + (wait ? 1 : -1));
    ShowCursor();
}

// A plain message does not stop the page: it shows over the player until dismissed.
void WebShowMessageBox(const std::string& title, const std::string& text) {
    QbJsMessage(Utf8FromWindows1252(title).c_str(), Utf8FromWindows1252(text).c_str());
}

}  // namespace

WebState& GetWebState() {
    return gState;
}

void SetWebWindowSize(int32_t width, int32_t height) {
    gState.surface = Surface(std::max(width, 1), std::max(height, 1), kWhite);
}

void* WebWindowHandle() {
    return &gState;
}

void SetWebYieldRequested(bool requested) {
    gState.yieldRequested = requested;
    if (requested) ++gState.arrivals;
}

bool WebYieldRequested() {
    return gState.yieldRequested;
}

Host WebHost() {
    if (gState.startMs == 0) gState.startMs = emscripten_get_now();
    Host host;
    host.name = "web";
    host.GetTickCount = WebTickCount;
    host.PollEvent = WebPollEvent;
    host.PeekEvent = WebPeekEvent;
    host.DropEvents = WebDropEvents;
    host.WaitUntil = WebWaitUntil;
    host.SetTimer = WebSetTimer;
    // Alerts are drawn in the canvas by the player's own box, whose loop waits like any other.
    host.ShowAlert = ShowModalAlert;
    host.ShowMessageBox = WebShowMessageBox;
    host.ChooseFile = WebChooseFile;
    host.SetWaitCursor = WebSetWaitCursor;
    host.GetWindowSurface = WebGetWindowSurface;
    host.Present = WebPresent;
    host.SetTitle = WebSetTitle;
    host.SetCursor = WebSetCursor;
    // A person at the page can always give more input.
    host.InputExhausted = [] { return false; };
    host.DetectAudio = WebDetectAudio;
    host.OpenAudio = WebOpenAudio;
    host.CloseAudio = WebCloseAudio;
    host.FetchFile = WebFetchFile;
    host.SetClipboardText = WebSetClipboardText;
    host.GetClipboardText = WebGetClipboardText;
    host.window = WebWindowHandle();
    return host;
}

void InvalidateWebWindow() {
    HostEvent paint;
    paint.kind = HostEventKind::Paint;
    paint.time = WebTickCount();
    paint.areaRight = gState.surface.width;
    paint.areaBottom = gState.surface.height;
    QueueWebEvent(paint);
}
