// The module's load and unload, and its version information: what the browser's loader sees of the
// module before the first entry point and after the last.
#include <cstddef>

#include "host/Plugin.h"
#include "platform/headless/HeadlessHost.h"

namespace {

// Key and value pairs, each zero-terminated, as a version resource lists them. Kept in a section of
// their own, so that `readelf -p .qbversion libnpqbw.so` shows the declared document type.
template <size_t N>
struct Entry {
    char text[N];
};
template <size_t N>
constexpr Entry<N> MakeEntry(const char (&text)[N]) {
    Entry<N> entry{};
    for (size_t i = 0; i < N; ++i) entry.text[i] = text[i];
    return entry;
}

struct VersionInfo {
    Entry<sizeof("MIMEType")> mimeTypeKey;
    Entry<sizeof(kPluginMimeTypes)> mimeType;
    Entry<sizeof("FileExtents")> fileExtentsKey;
    Entry<sizeof(kPluginFileExtents)> fileExtents;
    Entry<sizeof("FileOpenName")> fileOpenNameKey;
    Entry<sizeof(kPluginFileOpenNames)> fileOpenName;
};

[[gnu::used, gnu::section(".qbversion")]] constexpr VersionInfo kVersionInfo = {
    MakeEntry("MIMEType"),    MakeEntry(kPluginMimeTypes),     MakeEntry("FileExtents"),
    MakeEntry(kPluginFileExtents), MakeEntry("FileOpenName"), MakeEntry(kPluginFileOpenNames),
};

// Its address stands for the module, the way an instance handle does.
char kModuleMark = 0;

// A browser window is no window of ours to draw in: the module runs on the headless host.
[[gnu::constructor]] void ModuleLoaded() {
    SetHost(HeadlessHost());
    PluginModuleLoaded(&kModuleMark);
}
[[gnu::destructor]] void ModuleUnloaded() { PluginModuleUnloaded(); }

}  // namespace
