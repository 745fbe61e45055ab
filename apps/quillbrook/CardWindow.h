// What `play` and `render --replay` do once the stack is open, on any host.
#pragma once

#include <string>

#include "gfx/Surface.h"

// Gives the window the card's size and shows the card in it again from the offscreen card, when
// the open left the window at another size.
void FitWindowToCard();
// Writes a surface as an RGB PNG; false, having said so, when the file can't be written.
bool WriteSurfacePng(const std::string& path, const Surface& surface);
