// Moving through a card from the keyboard: Tab and Shift+Tab put a focus ring on the card's
// visible buttons and fields in drawing order, and Return or Space press the button with the ring
// as a click would. The ring belongs to one card: on another card nothing has it.
#pragma once

#include <cstdint>

#include "gfx/Surface.h"

struct KeyFocusState {
    int16_t cardId = 0;  // the card the focus was given on
    int16_t itemId = 0;  // 0: nothing has the focus
    Rect ring;           // where the ring is drawn on the window; empty when none is
};

KeyFocusState& GetKeyFocusState();
void ResetKeyFocus();

// Tab (`backwards` for Shift+Tab): the ring goes to the next visible button or field, or from the
// last back to none, so that the card's own Return comes back. A field that can be typed into
// becomes the active one with its whole text selected. Returns the item now focused, 0
// for none.
int16_t MoveKeyFocus(bool backwards);
// The focused item on the card on show, or 0.
int16_t FocusedItemId();
// Presses the focused button: its hilite, then its actions. False when no button has the focus.
bool PressFocusedButton(void* window);
