// The Host seam: what the core needs from a platform, and nothing more. Each backend (headless,
// sdl, web) fills one table of functions; the core calls through GetHost(). Files have their own
// door in HostFile.h.
#pragma once

#include <cstdint>
#include <string>

struct AlertLayout;  // ui/AlertLayout.h
struct Rect;         // imaging/Surface.h
struct Surface;

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
    // The window's pixels, 32-bit, its client area's size: the core draws here and nowhere else
    // on the screen. The pointer stays the same for the life of the backend; the size may change.
    Surface* (*GetWindowSurface)() = nullptr;
    // Puts a rectangle of the window surface on the screen (window coordinates; the host clips it).
    void (*Present)(const Rect& dirty) = nullptr;
    // The window's title (Windows-1252).
    void (*SetTitle)(const std::string& title) = nullptr;
    // The pointer's shape: 0 the arrow, else a cursor resource id of the system's; the host shows
    // the arrow for an id it has no picture for.
    void (*SetCursor)(int32_t cursorId) = nullptr;
    // The window the stack lives in: an opaque, pointer-sized host handle.
    void* window = nullptr;
};

Host& GetHost();
void SetHost(const Host& host);
