// Sprite films as the rest of the program starts and serves them. A film comes as the payload of
// an action's animation step; its actor moves over the card on the host clock, stepped from the
// tick and from the waits of actions, and draws only where something changed.
#pragma once

#include <cstdint>

#include "gfx/Surface.h"
#include "memory/MemRef.h"

// Takes the payload block `film` (it is freed here, also when refused) and starts its actor for the
// item `itemId`. 1 when the block was a 'Sprt' film, whether it could start or not; 0 otherwise.
int32_t PlaySpriteFilm(MemRef film, uint16_t itemId);
// Starts an actor from a stored 'Sprt' payload. 0; -1 without memory or for a damaged record.
int32_t StartActor(const uint8_t* data, uint32_t size, uint16_t ownerId);
// Sets the fired flags of the timers due at `now`.
void TickSpriteTimers(uint32_t now);
// One step of the stage at the host clock's time: timers, actors, the changed rectangles drawn
// and presented. Nothing without a stage.
void StepSprites();
// Ends every actor and frees the stage (leaving a card, a wait's end).
void StopSprites();
// An actor of this owner is on the stage and waited for: not one that runs until stopped, not a
// still picture.
bool IsSpriteRunning(uint16_t itemId);
// The first frame of a film shown with its card, stamped into `destination` (the card's picture).
void DrawSpriteOnCard(const uint8_t* data, uint32_t size, Surface& destination);
// The films of a card's buttons that are set to show with the card, drawn into `destination`.
void DrawCardSprites(MemRef card, Surface& destination);

void ResetSpriteState();
