// Where the font files are. Every host reads the same files, so text is drawn alike everywhere;
// only the folder that holds them differs (the system's font folder natively, the embedded files
// on the web).
#pragma once

#include <string>

// The folder the font table's relative paths ("liberation2/LiberationSans-Regular.ttf") start
// from, without a trailing "/". QB_FONT_FOLDER in the environment overrides the default.
std::string HostFontFolder();
// Points the font table at another folder ("" goes back to the default), for a host that carries
// its own copies of the files.
void SetHostFontFolder(const std::string& folder);
