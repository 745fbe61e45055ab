// Questions about an 'Actn' record that the window procedure asks before it runs one.
#pragma once

#include <cstdint>

// Whether 'Actn' `id` exists and asks for something to be done: a test, a sound, an extension
// call, a move, an animation, a movie, a script or the laser disc. A record that only launches a
// program counts as doing nothing, so that a click on a text field with such an action edits it.
bool ActionDoesSomething(uint16_t id);
