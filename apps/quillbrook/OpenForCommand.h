// What the commands that work on an opened stack share: the program started headless, the stack
// opened through the full open flow, and every alert the user would have seen printed.
#pragma once

#include <string>

// Prints the alerts shown since the last call, each with the file it concerns.
void PrintShownAlerts(const std::string& path);
// Starts the program and opens `path`; false, having said why, when no stack came of it.
bool OpenStackForCommand(const std::string& path);
