// The action interpreter: what a click, an arrival or a timer asks for, carried out in one order.
// Actions nest (a script or an NBA can run another), so the interpreter keeps what it works on in
// locals and finds its record again after every step that could have moved or deleted it.
#pragma once

#include <cstdint>
#include <string>

#include "memory/MemRef.h"

// Runs the action head at `offset` of `record`. `name` is the owner's name, or a label for a card
// or stack action; `spare` is passed along and never read; with `wait` the media the action
// started are waited for at its end. Always 0.
int32_t RunAction(void* window, MemRef record, uint32_t offset, uint16_t itemId, uint32_t spare,
                  uint32_t wait, const std::string& name);
// A button's actions, the button found by id on the current card first, then on every card: 1
// when it was found and run, else 0.
int32_t RunItemAction(void* window, uint16_t itemId, uint32_t spare);
// The 'Actn' record `id`, in the browse tool only: 0 when nothing was asked (id 0, another tool),
// 1 otherwise, also when there is no such record.
int32_t RunActionById(uint16_t id, uint32_t spare, uint32_t wait, const std::string& name);
// The same, with the label string `labelStringId` (0: none) as the name.
int32_t RunNamedAction(uint16_t id, uint32_t spare, uint32_t wait, int16_t labelStringId);

// The moves of an action's destination inside the stack: a card id, or a negative code.
inline constexpr int16_t kGoNextCard = -1;      // wraps from the last card to the first
inline constexpr int16_t kGoPreviousCard = -2;  // wraps from the first card to the last
inline constexpr int16_t kGoHomeStack = -3;     // nothing if no Home stack is known
inline constexpr int16_t kGoBack = -4;
inline constexpr int16_t kGoMarkedCard = -5;
void GoToCardCode(int16_t destination, int16_t effect, int16_t speed);

// Waits until the movie, animation, sprite film or NBA of `itemId` that the action started is done,
// or until a click or key is waiting (it stays queued); then stops every animation, sprite and
// movie, also when there was nothing to wait for. The wait sleeps on the host between rounds and
// only peeks at the input: the tick is not served under it.
void WaitForActionMedia(bool animationStarted, bool movieStarted, bool nbaCalled, uint16_t itemId);
// The step of what actions left running, served by every timer tick in the browse tool.
void ServeActionStep(void* window);
// What leaving a card ends of the actions' play-out: the sounds not marked to outlive it, the
// movies, the sprites and the animations.
void StopActionPlayout();

struct ActionState {
    bool inItemAction = false;  // only during RunItemAction
    // The name of the button or link whose action runs now, length-prefixed as in the record.
    uint8_t currentItemName[32] = {};
};
ActionState& GetActionState();
void ResetActionState();
