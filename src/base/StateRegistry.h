// Module state starts clean in one call. Each module that keeps state registers its reset, at
// start-up, under the room it lives in; ResetAllState runs them from the top room down, so a
// module is reset before anything it holds from the rooms below it.
#pragma once

#include <cstdint>

// The rooms of src/, bottom to top (docs/architecture.md).
enum class Room : uint8_t {
    Base,
    Memory,
    Platform,
    Messages,
    Subsystems,
    Policy,
    Stack,
    Gfx,
    Pictures,
    Text,
    Transitions,
    Card,
    Player,
    Media,
    Sprites,
    Extensions,
    Logo,
    Actions,
    Ui,
    Host,
};

using StateReset = void (*)();

// Returns true, so that a module can register from the initialiser of a namespace-scope constant.
bool RegisterStateReset(Room room, StateReset reset);
// Every registered reset, from the top room down; within a room, in the order they registered.
void ResetAllState();
