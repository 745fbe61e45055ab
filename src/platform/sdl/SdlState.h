// What the SDL backend's files share: the window, its texture and the input queue. Only the files
// of this folder include it.
#pragma once

#include <SDL.h>

#include <deque>

#include "gfx/Surface.h"
#include "platform/Host.h"
#include "platform/sdl/ViewLayout.h"

struct AlertLayout;

struct SdlState {
    SDL_Window* window = nullptr;
    SDL_Renderer* renderer = nullptr;
    SDL_Texture* texture = nullptr;
    int32_t textureWidth = 0, textureHeight = 0;
    Surface surface;  // what the core draws into
    int32_t scale = 1;
    bool fullscreen = false;
    ViewLayout layout;
    // Input translated but not yet taken: SDL's queue is emptied into this one, so that a wait
    // that sees input can leave it for the main loop.
    std::deque<HostEvent> events;
    // Counts the input put into `events` (a move folded into the last one too): a wait ends when
    // this changes, not on input that was already waiting.
    uint32_t arrivals = 0;
    uint32_t timerPeriodMs = 0;
    int32_t cursorId = 0;
    int waitCursorDepth = 0;
    SDL_Cursor* arrowCursor = nullptr;
    SDL_Cursor* waitCursor = nullptr;
    SDL_Cursor* shownCursor = nullptr;
};
SdlState& GetSdlState();

// SdlHost.cpp: the texture shown again, scaled, after a change of size, mode or exposure.
void UpdateSdlLayout();
void RedrawSdlWindow();
void ToggleSdlFullscreen();
// SdlInput.cpp: one SDL event into the queue (or handled here, for window events).
void TakeSdlEvent(const SDL_Event& event);
// SdlCursors.cpp
void SdlSetCursor(int32_t cursorId);
void SdlSetWaitCursor(bool wait);
void CreateSdlCursors();
void FreeSdlCursors();
// SdlAudio.cpp
uint32_t SdlDetectAudio();
uint32_t SdlOpenAudio(uint32_t rate, AudioPull pull);
void SdlCloseAudio();
void SdlLockAudio(bool lock);
// SdlDialogs.cpp
int SdlShowAlert(const AlertLayout& layout);
void SdlShowMessageBox(const std::string& title, const std::string& text);
bool SdlChooseFile(const FileChoice& choice, std::string* hostPath);
// SdlClipboard.cpp
void SdlSetClipboardText(const std::string& text);
bool SdlGetClipboardText(std::string* text);
