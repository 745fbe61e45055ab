// Bringing the program up on its window: the subsystems in a fixed order, each step using what the
// ones before set up. Steps of subsystems that don't exist yet keep their place as empty calls.
#pragma once

struct FindState;

bool InitApplication(void* window);
// Reads a key of the "user" section of the preferences file; "" when absent.
bool ReadUserPreferenceIsYes(const char* key);
