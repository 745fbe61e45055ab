// Keys by the names SDL gives them ("Right", "Return", "A", "Keypad 5") and the virtual-key codes
// the window procedure takes. Recorded sessions store the names, so the table has no SDL in it: a
// headless replay reads the same names.
#pragma once

#include <cstdint>
#include <string_view>

// 0 for a name the system has no key for. Case is ignored, as SDL ignores it.
uint16_t VirtualKeyFromName(std::string_view name);
// The first name of the key (left and right Shift are both "Left Shift"); "" for an unknown code.
std::string_view NameOfVirtualKey(uint16_t key);
