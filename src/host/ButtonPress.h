// Following a press on a button and the pointer passing over hover buttons. A press inverts the
// button while the pointer is inside it and runs the button's actions only when it is released
// there; a hover button runs its actions once each time the pointer enters it.
#pragma once

#include <cstdint>

struct DisplayItem;

inline constexpr uint16_t kNoHover = 65535;

struct ButtonPressState {
    // The button the press started on, found again by id at each step: an action run meanwhile
    // can change the card under it.
    int16_t pressedId = 0;
    bool pressing = false;
    bool inside = false;
    bool inverted = false;        // the press's hilite is on the window
    uint16_t hoverId = kNoHover;  // the hover button the pointer last entered
};

ButtonPressState& GetButtonPressState();
void ResetButtonPress();

// Starts following a press on `item` (a button), with its hilite when it has one.
void TrackButtonPress(void* window, DisplayItem* item);
// On every pointer move while browsing: fires a hover button on entry, and follows a press in and
// out of its button. True when it took the point (the cursor is then left as it is).
bool TrackHover(void* window, int32_t x, int32_t y);
// Follows a press to (x, y) alone, without the hover test: the release's own position.
bool FollowPress(int32_t x, int32_t y);
// Ends a press; the button's actions run when the pointer was inside it.
void ReleaseButtonPress(void* window);
