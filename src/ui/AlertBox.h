// The alert as a modal box in the window, for the hosts that show it themselves (desktop and web):
// the box centred over the card, a click on a button, Return for the default button and Escape
// for Cancel where there is one; the app's timers run on underneath.
#pragma once

struct AlertLayout;

// Returns the button pressed, 1 to 3 in the order of the string.
int ShowModalAlert(const AlertLayout& layout);
// The button labelled "Cancel", 1 to 3; 0 when the box has none.
int AlertCancelButton(const AlertLayout& layout);
