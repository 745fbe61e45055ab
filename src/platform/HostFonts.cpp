#include "platform/HostFonts.h"

#include <cstdlib>

namespace {

// Debian's fonts-liberation2 and fonts-dejavu-core put their files below this folder; the web
// tests read the same place through the real disk.
constexpr const char* kDefaultFontFolder = "/usr/share/fonts/truetype";

std::string gFontFolder;  // set by the host; empty means the default

}  // namespace

std::string HostFontFolder() {
    if (!gFontFolder.empty()) return gFontFolder;
    const char* fromEnvironment = std::getenv("QB_FONT_FOLDER");
    if (fromEnvironment && *fromEnvironment) return fromEnvironment;
    return kDefaultFontFolder;
}

void SetHostFontFolder(const std::string& folder) {
    gFontFolder = folder;
    while (gFontFolder.size() > 1 && gFontFolder.back() == '/') gFontFolder.pop_back();
}
