// Bringing the program up on its window: the subsystem table installed, then the subsystems in a
// fixed order, each step using what the ones before set up.
#pragma once

struct Subsystems;

bool InitApplication(void* window);
// The subsystem table as the program fills it: the main loop's pump, the action interpreter and
// the closing of a stack; what is not built yet stays "not available".
Subsystems ApplicationSubsystems();
// Reads a key of the "user" section of the preferences file; "" when absent.
bool ReadUserPreferenceIsYes(const char* key);
