// The Host seam: what the core needs from a platform, and nothing more. Each backend (headless,
// sdl, web) fills one table of functions and a program installs it with SetHost; the core calls
// through GetHost(). Every slot is always filled: until a program installs a backend the core runs
// on the null host, and a slot a backend leaves empty is the null host's. Files have their own door
// in HostFile.h.
#pragma once

#include <cstdint>
#include <string>

struct AlertLayout;  // platform/AlertLayout.h
struct Rect;         // gfx/Surface.h
struct Surface;

// What a file dialog asks for.
struct FileChoice {
    bool save = false;          // a save dialog, else an open dialog
    std::string title;          // Windows-1252
    std::string filterName;     // "Stacks (*.STK)"
    std::string filterPattern;  // "*.stk"
    std::string proposed;       // host path proposed (folder and name)
};

// Input, as the window procedure takes it. Keys are virtual-key codes as the system numbers them
// (0x0D Return, 0x25-0x28 the arrows, 0x41 'A', 0x70 F1); characters are Windows-1252.
enum class HostEventKind : uint8_t {
    None,
    MouseDown,
    MouseUp,
    MouseMove,
    KeyDown,
    KeyUp,
    Char,
    Paint,  // `area` must be repainted
    Close,
    FocusLost,  // the window no longer gets the keys: keys held now are let go unseen
};
inline constexpr uint32_t kModShift = 1;
inline constexpr uint32_t kModCtrl = 2;
inline constexpr uint32_t kModAlt = 4;

struct HostEvent {
    HostEventKind kind = HostEventKind::None;
    uint32_t time = 0;     // GetTickCount when it happened
    int32_t x = 0, y = 0;  // window pixels (card pixels at scale 1)
    uint32_t mods = 0;
    int32_t button = 1;  // 1 left, 2 right
    int32_t clicks = 1;  // 2 for the second press of a double click
    uint16_t key = 0;
    uint8_t ch = 0;
    int32_t areaLeft = 0, areaTop = 0, areaRight = 0, areaBottom = 0;  // Paint
};
// Audio out: the host pulls `count` frames of stereo 16-bit samples (left, right) at the rate it
// opened the device with. A host may call it on a thread of its own: the core then changes what it
// mixes only between LockAudio(true) and LockAudio(false).
using AudioPull = void (*)(int16_t* frames, uint32_t count);

// Picks queued events by their content, for PeekEvent and DropEvents.
using HostEventMatch = bool (*)(const HostEvent& event);

// The local date and time, for the quiz report and the language's clock.
struct HostDateTime {
    int32_t year = 0;     // 1999
    int32_t month = 0;    // 1 to 12
    int32_t day = 0;      // 1 to 31
    int32_t hour = 0;     // 0 to 23
    int32_t minute = 0;
    int32_t second = 0;
    int32_t weekday = 0;  // 0 Sunday
};
// The machine's own answers (time/localtime_r and isatty): every Host starts with them.
HostDateTime MachineWallClock();
// The date and time `secondsSince1970` stands for, in the machine's zone or (`local` false) in UTC.
HostDateTime DateTimeAt(int64_t secondsSince1970, bool local);
bool MachineIsTerminal(int fd);

struct Host {
    const char* name = "none";
    // Milliseconds since start.
    uint32_t (*GetTickCount)() = nullptr;
    // Takes the next queued event; false when there is none.
    bool (*PollEvent)(HostEvent* event) = nullptr;
    // The first queued event that `match` accepts (any event when null), left in the queue; false
    // when there is none. Waits that must not take input look with this: a filter, because a move
    // queued before a click would otherwise hide the click.
    bool (*PeekEvent)(HostEventMatch match, HostEvent* event) = nullptr;
    // Removes every queued event that `match` accepts (all when null); the rest keep their order.
    void (*DropEvents)(HostEventMatch match) = nullptr;
    // Waits until GetTickCount reaches `deadline`, or until new input arrives (it stays queued).
    // Input that was queued before the call does not end the wait. On the web the wait yields to
    // the browser first.
    void (*WaitUntil)(uint32_t deadline) = nullptr;
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
    // True when no more input can ever come (a scripted run has used up its script): a modal
    // dialog then gives up as if cancelled instead of waiting for ever.
    bool (*InputExhausted)() = nullptr;
    // The local date and time now.
    HostDateTime (*WallClock)() = MachineWallClock;
    // True when file descriptor `fd` is a terminal (progress is drawn only there).
    bool (*IsTerminal)(int fd) = MachineIsTerminal;
    // Whether sound can be heard at all: the device's least buffer in frames, 0 with no device.
    uint32_t (*DetectAudio)() = nullptr;
    // Opens the audio device for `rate` frames a second with `pull` as its source; the rate the
    // pull runs at (the host may give another), 0 when no device opens.
    uint32_t (*OpenAudio)(uint32_t rate, AudioPull pull) = nullptr;
    void (*CloseAudio)() = nullptr;
    void (*LockAudio)(bool lock) = nullptr;
    // Makes sure a file the core is about to read is in the host's file system, for a host that
    // keeps such files elsewhere until they are needed (the web player's font files come over the
    // network on first use). May wait; a file that cannot be had is simply left missing.
    void (*FetchFile)(const std::string& hostPath) = nullptr;
    // The system clipboard's plain text, in Windows-1252 with the system's line ends (CR LF). A
    // host without a clipboard of its own keeps one in memory, so that cut and paste still work
    // within the player.
    void (*SetClipboardText)(const std::string& text) = nullptr;
    // False when the clipboard holds no text.
    bool (*GetClipboardText)(std::string* text) = nullptr;
    // How long closing the player shows the end splash: kEndSplashMs on the desktop, 0 (close at
    // once) for the command line and the web.
    uint32_t endSplashMs = 0;
};
inline constexpr uint32_t kEndSplashMs = 3000;

Host& GetHost();
// Installs a backend; its empty slots take the null host's.
void SetHost(const Host& host);
