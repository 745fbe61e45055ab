// What the action interpreter asks of the subsystems that carry its steps out: sound, movies,
// sprite films, frame-delta animations, extension modules (NBAs), the language, the laser disc,
// launching, the menu bar and the name prompt. All of it is reached through this one table, so a
// subsystem joins by filling its entries and a test can put recorders in their place.
//
// Until a subsystem fills its entries, each default answers as that subsystem would when it has
// nothing to play ("done", "not busy", nothing started) and counts its call under the entry's name,
// so a test can see what was asked for. Nothing is shown to the user.
#pragma once

#include <cstdint>
#include <string>

#include "memory/MemRef.h"

struct HostEvent;

struct ActionServices {
    // Sound. `hostPath` is the file to play, "" for a 'Snd ' record handed over in `record`.
    int32_t (*PlaySound)(void* window, const std::string& hostPath, bool fromRecord, MemRef record,
                         uint16_t volume, int16_t soundFlags);
    // Stops the sounds that are not marked to outlive an action, or every sound with `all`.
    void (*StopSounds)(bool all);
    // The sound library's update, due on every round of a wait.
    void (*UpdateSounds)();

    // Movies. `sub` points at the tag-89 sub-record (`length` bytes), valid only during the call.
    // The movie layer adds its own availability flags.
    int32_t (*PrepareMovie)(const uint8_t* sub, uint32_t length, uint16_t itemId, int32_t options);
    int32_t (*StartMovie)(uint16_t itemId);
    void (*StopMovies)(int32_t which);
    bool (*IsMovieDone)(uint16_t itemId);
    // A press or key waiting in the queue, offered to the movie controllers while it stays there;
    // true when one took it.
    bool (*OfferMovieEvent)(void* window, const HostEvent* event);

    // Sprite films: the film block is handed over (and freed by the engine, also on failure).
    int32_t (*PlaySpriteFilm)(MemRef film, uint16_t itemId);
    void (*StopSprites)();
    // One step of the sprite engine.
    void (*SpriteStep)();
    // The run-time timers of the sprite engine that are due at `tick`.
    void (*RunSpriteTimers)(uint32_t tick);
    // A film of owner `itemId` is in the engine and has not ended.
    bool (*IsSpriteFilmRunning)(uint16_t itemId);

    // Frame-delta animations: the 34-byte block is handed over (freed by the list, also on
    // failure); `rect` is left, top, right, bottom.
    int32_t (*AddAnimation)(MemRef block, const int16_t rect[4], uint16_t itemId);
    void (*StepAnimations)(void* window);
    void (*StopAllAnimations)();
    bool (*IsAnimationDone)(uint16_t itemId);

    // Extension modules.
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
    // With Alt held, the menu bar hidden and allowed: shows the bar for a script, true if it did.
    bool (*ShowMenuBarForScript)();
    void (*HideMenuBarAfterScript)();

    // The laser disc. `sub` points at the tag-119 sub-record, the record locked during the call.
    int32_t (*RunLaserAction)(void* window, const uint8_t* sub, uint32_t length);
    void (*ReleaseLaserPlayer)();

    // Launches what path slots 15 (document) and 9 (program) name.
    int32_t (*LaunchProgram)(uint16_t launchFlags);

    // The name prompt of a quiz: `label` above an edit box and "OK". True on OK with the text.
    bool (*AskText)(const std::string& label, std::string* text);
};

ActionServices& GetActionServices();
// Every entry back to its default, and the counts cleared.
void ResetActionServices();
// How often the default of entry `name` ("StartMovie") was called since the last reset.
uint32_t UnavailableServiceCalls(const std::string& name);
