// Recorded input, as `play --record` writes it and `render --replay` reads it: a JSON array with
// one object per event, in time order,
//   {"at": 120, "event": "mousedown", "x": 40, "y": 12, "button": 1, "clicks": 2, "mods":
//   ["shift"]}
// "at" counts milliseconds from the stack's first card showing; x and y are card pixels; keys
// ("keydown", "keyup") carry their SDL name in "key" ("Right", "Return", "A"), and a "char" carries
// the character itself, in UTF-8. "clicks" appears on the second press of a double click only.
#pragma once

#include <string>
#include <vector>

#include "platform/Host.h"

// The events of a script's text, `time` holding "at". False, with the reason, for text that isn't
// such a script; the reason names the event at fault, counted from 1.
bool ParseEventScript(const std::string& text, std::vector<HostEvent>* events, std::string* error);
// The script of input events whose `time` is already "at". Other kinds of events are left out.
std::string EventScriptText(const std::vector<HostEvent>& events);
