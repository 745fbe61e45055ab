// What the web backend's files share: the window surface, the input queue and the clock's origin.
// Only the files of this folder include it.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "gfx/Surface.h"
#include "platform/Host.h"

struct WebState {
    Surface surface{1, 1};  // what the core draws into; the canvas shows it
    // A band of the surface's rows as the canvas takes them (R, G, B, A bytes), on their way to it.
    std::vector<uint32_t> canvasBand;
    // Input from the page, translated, waiting for the main loop or a dialog.
    std::deque<HostEvent> events;
    // Counts the input put into `events`: a wait ends when this changes, not on input that was
    // already waiting.
    uint32_t arrivals = 0;
    // The page asked the loop to give way (to run an entry point of its own): every wait ends.
    bool yieldRequested = false;
    double startMs = 0;
    uint32_t timerPeriodMs = 0;
    int32_t cursorId = 0;
    int waitCursorDepth = 0;
    // The player's own clipboard (Windows-1252, CR LF): what it copied last, or what the page's
    // clipboard brought to its last paste.
    std::string clipboard;
    bool clipboardHoldsText = false;
};
WebState& GetWebState();

// WebInput.cpp: one event into the queue; a move replaces a move still waiting.
void QueueWebEvent(const HostEvent& event);
// A key pressed (`down` 1) or let go, as the page hands it in.
extern "C" void QbWebKey(int down, int key, int mods);
// WebAudio.cpp
uint32_t WebDetectAudio();
uint32_t WebOpenAudio(uint32_t rate, AudioPull pull);
void WebCloseAudio();
// WebAccess.cpp: tells the page what the card on show says, when another card has come up.
void DescribeCardIfChanged();
// WebFiles.cpp
void WebFetchFile(const std::string& hostPath);
bool WebChooseFile(const FileChoice& choice, std::string* hostPath);
// WebClipboard.cpp
void WebSetClipboardText(const std::string& text);
bool WebGetClipboardText(std::string* text);
