// The list of frame-delta animations that are playing: each draws its next frame onto the window
// when its time in ticks has come, repeats as often as its head says, and drops out at the end.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

// Entry flags beside the head's own.
inline constexpr uint16_t kAnimationRepaintAtEnd = 0x0001;
inline constexpr uint16_t kAnimationReplaceOthers = 0x0010;
inline constexpr uint16_t kAnimationFinished = 0x0020;

// Takes the payload `block` (freed here, also on failure) of item `itemId` to play at `rect` (left,
// top, right, bottom in card pixels). 0, or -1 for a damaged head or without memory.
int32_t AddAnimation(MemRef block, const int16_t rect[4], uint16_t itemId);
// Draws the frames that are due; `window` is the host's handle, unused by our renderer.
void StepAnimations(void* window);
// Marks the item's animations (every one for 0) to drop out at their next turn; nothing is drawn.
void FinishAnimations(uint16_t itemId);
void StopAllAnimations();
// No animation of the item is still playing.
bool IsAnimationDone(uint16_t itemId);

void ResetAnimationState();
