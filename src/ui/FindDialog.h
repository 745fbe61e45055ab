// Find Text: the dialog that asks what to look for and where, and the command that runs the search
// from it (or, for Find Again, straight from the last request).
#pragma once

#include "player/FindText.h"

// Runs the dialog on `request`: true with its text and options changed for OK, false for Cancel.
bool RunFindDialog(FindRequest* request);
// The menu's Find Text, and the extension command that finds: the dialog unless the request asks to
// go on from the last hit, then the search; "No match found." when there is none.
void FindCommand(FindRequest* request);
