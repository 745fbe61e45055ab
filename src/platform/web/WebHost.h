// The web backend: a <canvas> shows the window surface, the page's mouse and keys come in through
// functions the page calls (WebInput.cpp), the clock is the page's, and every wait gives the
// browser its turn, the wasm's stack suspended on a promise of the page (by the browser itself, or
// by Asyncify where it cannot), so that nothing the core does blocks the page. Sound goes
// out through WebAudio, font files come over the network on first use, and the temporary folder
// is in memory (MEMFS).
#pragma once

#include <cstdint>

#include "platform/Host.h"

Host WebHost();
// Gives the window surface the element's size (at least 1 x 1), all white.
void SetWebWindowSize(int32_t width, int32_t height);
// The handle the plug-in entry points take for the window: the canvas stands behind it.
void* WebWindowHandle();
// Every wait ends at once until the request is cleared, so that the main loop comes back to the
// page (which then calls an entry point that may itself wait).
void SetWebYieldRequested(bool requested);
bool WebYieldRequested();
// The whole window must be drawn again, as a browser asks of a plug-in's window.
void InvalidateWebWindow();
