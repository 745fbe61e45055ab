// A script run as a user types it, into one text: what it printed, with every error's message
// after a "!".
#pragma once

#include <string>

struct LogoCase {
    const char* script;
    const char* transcript;
};

// Starts from a clean state each time; `collectAlways` collects before every allocation, so a
// value neither pinned nor reachable is freed at the first chance and its use shows.
std::string RunLogoTranscript(const char* script, bool collectAlways = false);
// Runs in the workspace as it stands, without a reset.
std::string ContinueLogoTranscript(const char* script);
