// `play --record`: every input event the program takes from its host, whatever the host, kept with
// its time from a start of our choosing (the first card showing).
#pragma once

#include <cstdint>
#include <vector>

#include "platform/Host.h"

// Puts a recorder in front of the current host's PollEvent.
void StartRecording(uint32_t startMs);
// Puts the host's own PollEvent back and hands over the events taken, `time` counted from the
// start (0 for anything older).
std::vector<HostEvent> StopRecording();
