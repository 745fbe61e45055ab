// What the parts of navigation share among themselves: the Back list's push, the action runner
// and the resets of their state.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

// Records the current card in the Back list (and as the marked card if it is marked).
void PushBack();
// Runs action `id` through the installed runner; an id of 0 runs nothing.
void RunMoveAction(uint16_t id, uint32_t wait, int16_t labelStringId);

// A copy of a path slot's file: the path, zero-terminated, a pad byte when that is of odd length,
// the slot's 16-bit and 32-bit reference fields, the name, zero-terminated. 0 without memory.
MemRef MakeFileRef(int slot);
// Puts a copy made by MakeFileRef back into a slot; false for a copy that doesn't parse.
bool ApplyFileRef(int slot, MemRef ref);
// Two slots name the same file.
bool SameFile(int slotA, int slotB);

void ResetBackHistory();
void ResetTitleState();
