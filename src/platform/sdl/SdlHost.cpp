#include "platform/sdl/SdlHost.h"

#include <algorithm>

#include "base/Windows1252.h"
#include "platform/HostInput.h"
#include "platform/sdl/SdlState.h"

namespace {

SdlState gState;

bool CreateTexture(SdlState& s) {
    if (s.texture) SDL_DestroyTexture(s.texture);
    s.textureWidth = s.surface.width;
    s.textureHeight = s.surface.height;
    s.texture = SDL_CreateTexture(s.renderer, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_STREAMING,
                                  std::max(s.textureWidth, 1), std::max(s.textureHeight, 1));
    return s.texture != nullptr;
}

void UploadRect(SdlState& s, const Rect& dirty) {
    const Rect part = IntersectRect(dirty, s.surface.Bounds());
    if (part.IsEmpty() || !s.texture) return;
    const SDL_Rect r{part.left, part.top, part.Width(), part.Height()};
    SDL_UpdateTexture(s.texture, &r, s.surface.Row(part.top) + part.left,
                      s.surface.width * static_cast<int>(sizeof(uint32_t)));
}

void FitWindowToSurface(SdlState& s) {
    if (s.fullscreen) return;
    SDL_SetWindowSize(s.window, std::max(s.surface.width, 1) * s.scale,
                      std::max(s.surface.height, 1) * s.scale);
}

uint32_t SdlTickCount() {
    return SDL_GetTicks();
}

void PumpSdlEvents() {
    SDL_Event event;
    while (SDL_PollEvent(&event)) TakeSdlEvent(event);
}

bool SdlPollEvent(HostEvent* event) {
    PumpSdlEvents();
    if (gState.events.empty()) return false;
    *event = gState.events.front();
    gState.events.pop_front();
    return true;
}

bool SdlPeekEvent(HostEventMatch match, HostEvent* event) {
    PumpSdlEvents();
    return PeekQueuedEvent(gState.events, match, event);
}

void SdlDropEvents(HostEventMatch match) {
    PumpSdlEvents();
    DropQueuedEvents(gState.events, match);
}

// Sleeps in SDL until the deadline or until something new for the main loop arrives; window
// events in between (exposure, resizing) are served here and the wait goes on. Input left queued
// by the caller does not count, or a wait that only peeks would spin.
void SdlWaitUntil(uint32_t deadline) {
    const uint32_t before = gState.arrivals;
    for (;;) {
        PumpSdlEvents();
        if (gState.arrivals != before) return;
        const int32_t remaining = static_cast<int32_t>(deadline - SDL_GetTicks());
        if (remaining <= 0) return;
        SDL_Event event;
        if (SDL_WaitEventTimeout(&event, remaining)) TakeSdlEvent(event);
    }
}

// The main loop keeps its own time against GetTickCount; the period is kept for it to read back.
void SdlSetTimer(uint32_t periodMs) {
    gState.timerPeriodMs = periodMs;
}

Surface* SdlGetWindowSurface() {
    return &gState.surface;
}

void SdlPresent(const Rect& dirty) {
    SdlState& s = gState;
    if (!s.renderer) return;
    // The core may give the surface a new size; the window follows at the next present.
    if (s.surface.width != s.textureWidth || s.surface.height != s.textureHeight) {
        if (!CreateTexture(s)) return;
        FitWindowToSurface(s);
        UpdateSdlLayout();
        UploadRect(s, s.surface.Bounds());
    } else {
        UploadRect(s, dirty);
    }
    RedrawSdlWindow();
}

void SdlSetTitle(const std::string& title) {
    if (gState.window) SDL_SetWindowTitle(gState.window, Utf8FromWindows1252(title).c_str());
}

}  // namespace

SdlState& GetSdlState() {
    return gState;
}

void UpdateSdlLayout() {
    SdlState& s = gState;
    int w = 0, h = 0;
    if (SDL_GetRendererOutputSize(s.renderer, &w, &h) != 0) return;
    s.layout = FitCard(s.textureWidth, s.textureHeight, w, h);
}

void RedrawSdlWindow() {
    SdlState& s = gState;
    if (!s.renderer || !s.texture) return;
    SDL_SetRenderDrawColor(s.renderer, 0, 0, 0, 255);
    SDL_RenderClear(s.renderer);
    const SDL_Rect dest{s.layout.dest.left, s.layout.dest.top, s.layout.dest.Width(),
                        s.layout.dest.Height()};
    SDL_RenderCopy(s.renderer, s.texture, nullptr, &dest);
    SDL_RenderPresent(s.renderer);
}

void ToggleSdlFullscreen() {
    SdlState& s = gState;
    s.fullscreen = !s.fullscreen;
    SDL_SetWindowFullscreen(s.window, s.fullscreen ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
    FitWindowToSurface(s);
    UpdateSdlLayout();
    RedrawSdlWindow();
}

bool StartSdlHost(const SdlHostOptions& options, std::string* error) {
    StopSdlHost();
    SdlState& s = gState;
    // A click that activates the window is a click on the card too, as in the system's window.
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    // Whole-number scales of pixels stay sharp: nearest pixel, never filtered.
    SDL_SetHint(SDL_HINT_RENDER_SCALE_QUALITY, "nearest");
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
        *error = SDL_GetError();
        return false;
    }
    // Without a display SDL falls back to a window nobody sees, which would play on unseen for
    // ever; that is only had by asking for it.
    const char* driver = SDL_GetCurrentVideoDriver();
    const bool invisible =
        driver && (SDL_strcmp(driver, "offscreen") == 0 || SDL_strcmp(driver, "dummy") == 0);
    if (invisible && !SDL_GetHint(SDL_HINT_VIDEODRIVER)) {
        *error =
            "no display (DISPLAY and WAYLAND_DISPLAY are not set; SDL_VIDEODRIVER=offscreen runs "
            "unseen)";
        SDL_Quit();
        return false;
    }
    s.scale = std::clamp(options.scale, 1, kMaxSdlScale);
    s.fullscreen = options.fullscreen;
    s.surface = Surface(std::max(options.width, 1), std::max(options.height, 1));
    Uint32 flags = SDL_WINDOW_HIDDEN;
    if (s.fullscreen) flags |= SDL_WINDOW_FULLSCREEN_DESKTOP;
    s.window = SDL_CreateWindow(Utf8FromWindows1252(options.title).c_str(), SDL_WINDOWPOS_CENTERED,
                                SDL_WINDOWPOS_CENTERED, s.surface.width * s.scale,
                                s.surface.height * s.scale, flags);
    if (s.window) {
        s.renderer = SDL_CreateRenderer(s.window, -1, SDL_RENDERER_ACCELERATED);
        if (!s.renderer) s.renderer = SDL_CreateRenderer(s.window, -1, SDL_RENDERER_SOFTWARE);
    }
    if (!s.window || !s.renderer || !CreateTexture(s)) {
        *error = SDL_GetError();
        StopSdlHost();
        return false;
    }
    UpdateSdlLayout();
    UploadRect(s, s.surface.Bounds());
    CreateSdlCursors();
    return true;
}

void StopSdlHost() {
    SdlState& s = gState;
    SdlCloseAudio();
    FreeSdlCursors();
    if (s.texture) SDL_DestroyTexture(s.texture);
    if (s.renderer) SDL_DestroyRenderer(s.renderer);
    if (s.window) SDL_DestroyWindow(s.window);
    const bool started = SDL_WasInit(SDL_INIT_VIDEO) != 0;
    s = SdlState{};
    if (started) SDL_Quit();
}

Host SdlHost() {
    Host host;
    host.name = "sdl";
    host.GetTickCount = SdlTickCount;
    host.PollEvent = SdlPollEvent;
    host.PeekEvent = SdlPeekEvent;
    host.DropEvents = SdlDropEvents;
    host.WaitUntil = SdlWaitUntil;
    host.SetTimer = SdlSetTimer;
    host.ShowAlert = SdlShowAlert;
    host.ShowMessageBox = SdlShowMessageBox;
    host.ChooseFile = SdlChooseFile;
    host.SetWaitCursor = SdlSetWaitCursor;
    host.GetWindowSurface = SdlGetWindowSurface;
    host.Present = SdlPresent;
    host.SetTitle = SdlSetTitle;
    host.SetCursor = SdlSetCursor;
    // A person at the window can always give more input.
    host.InputExhausted = [] { return false; };
    host.WallClock = MachineWallClock;
    host.IsTerminal = MachineIsTerminal;
    host.endSplashMs = kEndSplashMs;
    host.DetectAudio = SdlDetectAudio;
    host.OpenAudio = SdlOpenAudio;
    host.CloseAudio = SdlCloseAudio;
    host.LockAudio = SdlLockAudio;
    host.SetClipboardText = SdlSetClipboardText;
    host.GetClipboardText = SdlGetClipboardText;
    host.window = gState.window;
    return host;
}

void* SdlWindowHandle() {
    return gState.window;
}

void ShowSdlWindow() {
    if (!gState.window) return;
    SDL_ShowWindow(gState.window);
    UpdateSdlLayout();
    RedrawSdlWindow();
}

std::string SdlDriverName() {
    const char* video = SDL_GetCurrentVideoDriver();
    SDL_RendererInfo info{};
    const bool rendered = gState.renderer && SDL_GetRendererInfo(gState.renderer, &info) == 0;
    return std::string(video ? video : "none") + " / " + (rendered ? info.name : "none");
}

bool ReadSdlWindowPixels(Surface* out) {
    SdlState& s = gState;
    int w = 0, h = 0;
    if (!s.renderer || SDL_GetRendererOutputSize(s.renderer, &w, &h) != 0) return false;
    *out = Surface(w, h);
    // The back buffer is undefined after a present: draw the frame again and read it before
    // showing.
    SDL_SetRenderDrawColor(s.renderer, 0, 0, 0, 255);
    SDL_RenderClear(s.renderer);
    const SDL_Rect dest{s.layout.dest.left, s.layout.dest.top, s.layout.dest.Width(),
                        s.layout.dest.Height()};
    SDL_RenderCopy(s.renderer, s.texture, nullptr, &dest);
    const int read =
        SDL_RenderReadPixels(s.renderer, nullptr, SDL_PIXELFORMAT_RGB888, out->pixels.data(),
                             w * static_cast<int>(sizeof(uint32_t)));
    SDL_RenderPresent(s.renderer);
    for (uint32_t& p : out->pixels) p &= 0xFFFFFF;
    return read == 0;
}
