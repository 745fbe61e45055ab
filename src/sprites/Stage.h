// The run-time of sprite films: one Stage with its back buffer, Layers drawn in order, and Actors
// in them. An actor's behaviour is a row of small handlers chosen when it starts
// (BindActorHandlers), so the frame loop never tests modes.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "gfx/BitMask.h"
#include "gfx/Surface.h"
#include "sprites/SpriteRecord.h"

// A timer of an actor, on the host clock: when its deadline has passed the tick sets `fired`,
// again on every tick until the handler rearms it. A deadline of 0 is disarmed.
struct SpriteTimer {
    uint32_t deadline = 0;
    bool entered = false;  // in the list the tick walks
    bool fired = false;
};

// The film's frames cut out once at start, at the display's colours, with their masks and, for a
// film that mirrors at the ends of its path, their mirrored twins.
struct FilmImages {
    std::vector<Surface> frames, mirrored;
    std::vector<BitMask> masks, mirroredMasks;
    bool mirrorReady = false, showingMirrored = false;
};

struct Actor;
struct ActorHandlers {
    bool (*stillGoing)(Actor&) = nullptr;
    void (*onEnd)(Actor&) = nullptr;
    bool (*advanceFrame)(Actor&) = nullptr;
    void (*rearmFrame)(Actor&) = nullptr;
    void (*advancePath)(Actor&) = nullptr;  // the linked form only
    void (*stepPath)(Actor&) = nullptr;
    void (*rearmPath)(Actor&) = nullptr;
};

struct Actor {
    uint16_t ownerId = 0;  // the item whose action started it
    SpriteRecord record;
    FilmImages images;
    ActorHandlers h;
    uint16_t behaviour = 0;  // the row in force, "pick" resolved

    bool restartable = false, hiddenOneStep = false, alive = false, visible = false, moved = false,
         erase = false, stamps = false, overItems = false;
    int32_t frame = 0, frameStep = 0, pathIndex = 0, pathStep = 0;
    uint32_t frameLoops = 0, pathLoops = 0, frameInterval = 0, pathInterval = 0;
    Rect rect, oldRect, dirtyRect;
    int32_t hotspotX = 0, hotspotY = 0;
    SpriteTimer frameTimer, pathTimer, endTimer;
    Actor* nextDirty = nullptr;
};

struct Layer {
    int16_t number = 0;
    std::vector<std::unique_ptr<Actor>> actors;  // drawn first to last
};

struct Stage {
    std::vector<Layer> layers;  // drawn first to last
    Surface background;         // the clean card, items included; stamps draw into it too
    Surface buffer;             // the back buffer: background and actors
    BitMask cardMask;           // set where the card shows, clear under items
};

// Handler rows (ActorHandlers.cpp).
void BindActorHandlers(Actor& actor);
// Sets the frame's source, hotspot and size; false for a frame the film doesn't have.
bool SelectFrame(Actor& actor);
void SetVisible(Actor& actor, bool on);
void PlaceActor(Actor& actor, int32_t x, int32_t y);
// Draws the actor's frame, or the part of it at `part` (a rectangle of the card), into `target`.
void DrawActorFrame(const Actor& actor, Surface& target, const Rect& part);

// Timers (SpriteTimers.cpp).
void EnterSpriteTimer(SpriteTimer& timer);
void ArmSpriteTimer(SpriteTimer& timer, uint32_t ms);
void RemoveActorTimers(Actor& actor);

// The film's frames (FilmImages.cpp). 0, or kSpriteDamaged for a film that can't be shown.
int32_t MakeFilmImages(const SpriteFilm& film, FilmImages* images);
// Mirrored twins of every frame, flipped as asked. 0, or 1 for a film that can't mirror (any but
// kind 0).
int32_t PrepareMirrorImages(const SpriteFilm& film, FilmImages& images, bool horizontal, bool vertical);
void ToggleMirror(FilmImages& images);

// The module's state: the stage, when there is one, and the clock of the last step.
struct SpriteState {
    std::unique_ptr<Stage> stage;
    uint32_t now = 0;
};
SpriteState& GetSpriteState();
