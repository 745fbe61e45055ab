// The Jump To Card dialog: one text box of 15 characters for a card's number or name, OK and
// Cancel, drawn in the window.
#pragma once

#include <cstddef>
#include <string>

inline constexpr size_t kJumpTextMax = 15;

// Runs the dialog; true with the text typed for OK, false for Cancel.
bool RunJumpDialog(std::string* text);
// The menu's Jump To Card: the dialog, then the jump by the text.
void AskJumpToCard();
