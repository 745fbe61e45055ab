// The desktop backend: one SDL window that shows the window surface through a streaming texture,
// scaled by a whole number (and letterboxed in fullscreen), with SDL's input turned into the
// window procedure's events in card pixels. No SDL type crosses this header.
#pragma once

#include <cstdint>
#include <string>

#include "gfx/Surface.h"
#include "platform/Host.h"

struct SdlHostOptions {
    int32_t width = 640;  // the window surface, card pixels
    int32_t height = 480;
    int32_t scale = 1;  // window pixels per card pixel, 1 to kMaxSdlScale
    bool fullscreen = false;
    std::string title;  // Windows-1252
};
inline constexpr int32_t kMaxSdlScale = 8;

// Opens the window, hidden until ShowSdlWindow. False, with SDL's reason, when no display answers.
bool StartSdlHost(const SdlHostOptions& options, std::string* error);
// Closes the window and SDL; the state is as before StartSdlHost.
void StopSdlHost();
Host SdlHost();
// What the Host table's `window` holds: the SDL window, opaque.
void* SdlWindowHandle();
void ShowSdlWindow();
// "x11 / opengl": SDL's video driver and renderer, for reports.
std::string SdlDriverName();
// What the window shows now, at the window's own pixel size (the card scaled, any border black).
bool ReadSdlWindowPixels(Surface* out);
