// The window procedure: every input the window gets, in the system's order of early exits; the
// 55 ms timer that drives all idle work; clicks and keys in the browse tool; the cursor; and the
// menu commands. The player offers the browse tool alone: its tool layer answers 18 and does
// nothing for the paint commands.
#pragma once

#include <cstdint>
#include <string>

#include "base/KeyCodes.h"
#include "messages/StringIds.h"
#include "platform/Host.h"

inline constexpr int16_t kBrowseTool = 18;

// Menu commands.
inline constexpr int32_t kCmdNewStack = 100;
inline constexpr int32_t kCmdOpenStack = 101;
inline constexpr int32_t kCmdSaveStack = 102;
inline constexpr int32_t kCmdSaveStackAs = 103;
inline constexpr int32_t kCmdExportScreen = 105;
inline constexpr int32_t kCmdSelectAll = 106;
inline constexpr int32_t kCmdPrint = 108;
inline constexpr int32_t kCmdExit = 110;
inline constexpr int32_t kCmdUndo = 150;
inline constexpr int32_t kCmdCut = 151;
inline constexpr int32_t kCmdCopy = 152;
inline constexpr int32_t kCmdPaste = 153;
inline constexpr int32_t kCmdClear = 154;
inline constexpr int32_t kCmdNewCard = 155;
inline constexpr int32_t kCmdBack = 200;
inline constexpr int32_t kCmdHome = 201;
inline constexpr int32_t kCmdFirstCard = 202;
inline constexpr int32_t kCmdPreviousCard = 203;
inline constexpr int32_t kCmdNextCard = 204;
inline constexpr int32_t kCmdLastCard = 205;
inline constexpr int32_t kCmdJumpToCard = 206;
inline constexpr int32_t kCmdFindText = 207;
inline constexpr int32_t kCmdAbout = 650;
inline constexpr int32_t kCmdPreferences = 651;
inline constexpr int32_t kCmdHelp = 652;


struct WindowProcState {
    uint32_t timerCount = 0;        // timer messages, modulo 5
    bool mouseDownHandled = false;  // the text layer took the press
    bool clickConsumed = false;     // the press ran an action: the pointer's moves are left alone
    bool shiftDown = false, ctrlDown = false;
    bool itemBorders = false;  // Shift and Ctrl held together while browsing
    // One-shot: the sprite layer and the transition layer set these when a click ended what they
    // were doing, so that the same click does nothing more.
    bool swallowClickForSprites = false;
    bool swallowClickForTransition = false;
    int32_t scrollX = 0, scrollY = 0;  // the scroll of a card larger than the window
    int32_t cursorId = -1;             // the cursor last set; -1 none yet
    bool closed = false;               // the window was closed: the main loop ends
};

WindowProcState& GetWindowProcState();
void ResetWindowProc();

// The tool layer of the player.
int16_t CurrentTool();

// Non-zero when the message was handled.
int32_t HandleWindowMessage(void* window, const HostEvent& event);
// The 55 ms timer message.
int32_t HandleTimerMessage(void* window);

// The command of a key pressed with Ctrl; 0 for none. `locked`: the stack's `locked` is set.
int32_t KeyToCommand(uint16_t key, bool shift, bool locked);
// The command of a key pressed alone: the keys that move through the cards; 0 for none.
int32_t NavigationKeyCommand(uint16_t key);
void DoCommand(void* window, int32_t commandId, int32_t source);
// What an action asks for by a menu item's text: the command found, run unless it is New Stack.
// Returns the command's id, 0 when no item has that name.
int32_t DoMenuItemByName(const std::string& menuTitle, const std::string& itemTitle);

// The cursor over (x, y): the item's, else the card's, else the stack's, else 0 for the tool's.
int32_t ItemCursor(int32_t x, int32_t y);
