// The Host seam: what the core needs from a platform, and nothing more. Each backend (headless,
// sdl, web) fills one table of functions; the core calls through GetHost(). Files have their own
// door in HostFile.h.
#pragma once

#include <cstdint>
#include <string>

struct AlertLayout;  // ui/AlertLayout.h

// What a file dialog asks for.
struct FileChoice {
    bool save = false;         // a save dialog, else an open dialog
    std::string title;         // Windows-1252
    std::string filterName;    // "Stacks (*.STK)"
    std::string filterPattern; // "*.stk"
    std::string proposed;      // host path proposed (folder and name)
};

struct Host {
    const char* name = "none";
    // Milliseconds since start.
    uint32_t (*GetTickCount)() = nullptr;
    // Starts or stops (0) the periodic timer whose messages drive the tick.
    void (*SetTimer)(uint32_t periodMs) = nullptr;
    // Shows a modal alert; returns the button pressed, 1 to 3 in the order of the string.
    int (*ShowAlert)(const AlertLayout& layout) = nullptr;
    // Shows a plain message box with an OK button (texts in Windows-1252).
    void (*ShowMessageBox)(const std::string& title, const std::string& text) = nullptr;
    // Shows an open or save dialog; false when cancelled.
    bool (*ChooseFile)(const FileChoice& choice, std::string* hostPath) = nullptr;
    // Shows or restores the wait cursor.
    void (*SetWaitCursor)(bool wait) = nullptr;
    // The window the stack lives in: an opaque, pointer-sized host handle.
    void* window = nullptr;
};

Host& GetHost();
void SetHost(const Host& host);
