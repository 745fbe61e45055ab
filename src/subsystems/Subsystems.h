// The subsystem table: how a lower room starts work that belongs to a higher one. The action
// interpreter, the main loop, sound, movies, sprites, extension modules (NBAs), the language and text
// fields each fill their entries when InitApplication installs the table; whoever needs them calls
// through it, so no room includes one above it and a test can put recorders in their place.
//
// An entry that no subsystem has filled is "not available": it answers as that subsystem would
// with nothing to do ("done", "not busy", nothing started, the event not taken), and its calls are
// counted under the entry's name, so a test can see what was asked for. Nothing is shown to the user.
#pragma once

#include <cstdint>
#include <string>

#include "memory/MemRef.h"

struct DisplayItem;  // card/DisplayList.h
struct HostEvent;    // platform/Host.h
struct Surface;      // gfx/Surface.h

struct Subsystems {
    // The pump. Long-running work calls PumpOneMessage; ServeDueTick runs the tick's work when its
    // time has come and gives the time of the next tick (`ran` says whether it ran); the menu's
    // Exit posts a Close as if the window's own had been clicked.
    void (*PumpOneMessage)();
    uint32_t (*ServeDueTick)(bool* ran);
    void (*PostCloseRequest)();

    // The action interpreter, as input and moves between cards reach it.
    int32_t (*RunItemAction)(void* window, uint16_t itemId, uint32_t spare);
    int32_t (*RunActionById)(uint16_t id, uint32_t spare, uint32_t wait, const std::string& name);
    // The arrive and leave actions of cards and stacks; `labelStringId` names them in messages.
    int32_t (*RunNamedAction)(uint16_t id, uint32_t spare, uint32_t wait, int16_t labelStringId);
    bool (*ActionDoesSomething)(uint16_t id);
    // The running action sequence ends where it stands (leaving a card stops it).
    void (*StopActionPlayout)();
    // A stack is about to close: its leave action runs and the quiz report is written, before
    // anything of it is freed.
    void (*StackClosing)();

    // Sound. `hostPath` is the file to play, "" for a 'Snd ' record handed over in `record`.
    int32_t (*PlaySound)(void* window, const std::string& hostPath, bool fromRecord, MemRef record,
                         uint16_t volume, int16_t soundFlags);
    // Stops the sounds that are not marked to outlive an action, or every sound with `all`.
    void (*StopSounds)(bool all);
    // The sound library's update: every fifth tick, and on every round of a wait or a transition.
    void (*UpdateSounds)();

    // Movies. `sub` points at the tag-89 sub-record (`length` bytes), valid only during the call.
    int32_t (*PrepareMovie)(const uint8_t* sub, uint32_t length, uint16_t itemId, int32_t options);
    int32_t (*StartMovie)(uint16_t itemId);
    void (*StopMovies)(int32_t which);
    bool (*IsMovieDone)(uint16_t itemId);
    // A press or key waiting in the queue, offered to the movie controllers while it stays there;
    // true when one took it.
    bool (*OfferMovieEvent)(void* window, const HostEvent* event);

    // The laser disc. `sub` points at the tag-119 sub-record, the record locked during the call.
    int32_t (*RunLaserAction)(void* window, const uint8_t* sub, uint32_t length);
    void (*ReleaseLaserPlayer)();
    // A new card stops what the player is playing.
    void (*StopLaserDisc)();

    // Sprite films: the film block is handed over (and freed by the engine, also on failure).
    int32_t (*PlaySpriteFilm)(MemRef film, uint16_t itemId);
    void (*StopSprites)();
    // One step of the sprite engine.
    void (*SpriteStep)();
    // The run-time timers of the sprite engine that are due at `tick`.
    void (*RunSpriteTimers)(uint32_t tick);
    // A film of owner `itemId` is in the engine and has not ended.
    bool (*IsSpriteFilmRunning)(uint16_t itemId);
    // The browse-time sprites of a card that has just come up.
    void (*StartBrowseSprites)();

    // Frame-delta animations: a copy of the whole payload, head and frames, is handed over (freed
    // by the list, also on failure); `rect` is left, top, right, bottom.
    int32_t (*AddAnimation)(MemRef block, const int16_t rect[4], uint16_t itemId);
    void (*StepAnimations)(void* window);
    void (*StopAllAnimations)();
    bool (*IsAnimationDone)(uint16_t itemId);
    // The card's own animations: drawn into the offscreen picture, started once it shows.
    void (*DrawCardAnimations)(MemRef card, Surface& screen);
    void (*StartCardAnimations)(MemRef card);

    // Extension modules. Messages: 5 every tick, 9 leaving a card, 10 arriving.
    void (*SendExtensionMessage)(int32_t message);
    // Input offered to the extensions first; true when one took it.
    bool (*OfferToExtensions)(const HostEvent& event);
    void (*ClearNbaBlock)();
    // The NBA block's param1 (the copied parameter block, 0 if the copy failed).
    void (*SetNbaParam1)(MemRef block);
    // The NBA block's itemId and param2 (the parameter block's size).
    void (*SetNbaCall)(uint16_t itemId, uint32_t param2);
    // Id 3145: the host's own button-tab feature takes the list.
    void (*StartButtonTab)(MemRef list);
    int32_t (*CallStackNba)(uint16_t nbaId, int32_t message, int32_t extra);
    // 1 while an NBA still works on what it was asked.
    int32_t (*IsNbaBusy)();

    // The language: runs the script text in `*script` to its end.
    int32_t (*RunLogoText)(void* window, MemRef* script);
    // Ends the procedures that are running (leaving a card does).
    void (*StopLogoProcedures)();
    // Input offered to the language's own windows first; true when one took it.
    bool (*OfferToLanguageWindows)(const HostEvent& event);
    // With Alt held, the menu bar hidden and allowed: shows the bar for a script, true if it did.
    bool (*ShowMenuBarForScript)();
    void (*HideMenuBarAfterScript)();

    // Text fields, their automatic timers and hot words.
    void (*GiveFocusToField)(DisplayItem* field);
    // True when the text layer takes a click on `item` itself (a hot word, a field being edited).
    bool (*TextLayerTakesClick)(DisplayItem& item);
    // A press at (x, y) in the field, card coordinates; Shift extends the selection, a double click
    // selects a word.
    void (*ClickInField)(DisplayItem& item, int32_t x, int32_t y, bool shift, bool doubleClick);
    void (*DragInField)(int32_t x, int32_t y);
    // The press in a field ends: true when it was editing the field (false on read-only text).
    bool (*ReleaseInField)();
    // A field scrolling under a held button.
    void (*ServeFieldDragScroll)();
    // The card's automatic timers: served every tick, rebuilt for each card.
    void (*ServeAutoTimers)(void* window);
    void (*RebuildAutoTimers)();
    // Timers and idle work start again for a card that has come up.
    void (*RestartIdle)();
    void (*ShowFindDialog)();

    // The authoring tools behind the browse tool: what was being edited ends, what was painted is
    // stored into the card, the record of what changed is cleared.
    void (*StopPendingEditing)();
    // The undo layer's "previous card", kept when a new card is made.
    void (*RememberPreviousCard)(int16_t cardId);
    void (*StopPendingHilites)();
    void (*StoreChangedPicture)();
    void (*ClearChangeFlags)();
    // A new card starts with an empty picture; the tools learn of a stack's first card.
    void (*ClearWindowAndStoreEmptyPicture)();
    void (*TellToolLayerFirstCard)();
    // A click on a graphic item under the tools.
    void (*ClickOnGraphic)(DisplayItem& item);

    // Launches what path slots 15 (document) and 9 (program) name.
    int32_t (*LaunchProgram)(uint16_t launchFlags);
    // The name prompt of a quiz: `label` above an edit box and "OK". True on OK with the text.
    bool (*AskText)(const std::string& label, std::string* text);

    // The program's own windows and menu commands.
    void (*PaintFrameWithoutTitle)();
    void (*ShowEndSplash)();
    void (*ExportScreen)();
    void (*ShowAboutBox)();
    void (*ShowPreferences)();
    void (*OpenHelp)();
};

Subsystems& GetSubsystems();
// Makes `table` the one in force and the one ResetSubsystems goes back to: InitApplication's.
void InstallSubsystems(const Subsystems& table);
// The table every entry of which is "not available".
Subsystems UnavailableSubsystems();
// Back to the installed table (the unavailable one before any was installed); counts cleared.
void ResetSubsystems();
// How often the unavailable entry `name` ("StartMovie") was called since the last reset.
uint32_t UnavailableSubsystemCalls(const std::string& name);
// All calls of unavailable entries since the last reset.
uint32_t UnavailableSubsystemCallsInAll();
