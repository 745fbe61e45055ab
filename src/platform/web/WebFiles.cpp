// Files the web player brings in from the page: font files fetched on first use (from beside
// quillbrook.js, kept in memory for every later face), the files a streamed stack names beside
// itself (fetched relative to the stack's URL, once the Policy has allowed the read), and the
// page's file input as the host's open dialog.
#include <emscripten.h>

#include <cstdlib>
#include <string>

#include "host/Plugin.h"
#include "platform/HostFile.h"
#include "platform/HostFonts.h"
#include "platform/web/WebState.h"

// Both answer once the page has the file (or knows it has none): the core waits meanwhile,
// suspended on the page's promise (Module.qbSuspend), while the page runs on.
EM_JS(int, QbJsFetchFile, (const char* path, int base, const char* relative), {
    const file = UTF8ToString(path), name = UTF8ToString(relative);
    return Module.qbSuspend(function() { return Module.qbFetchFile(file, base, name); });
});
EM_JS(char*, QbJsChooseFile, (const char* pattern), {
    const filter = UTF8ToString(pattern);
    return Module.qbSuspend(function() {
        return Module.qbChooseFile(filter).then(function(chosen) {
            return chosen ? allocateUTF8(chosen) : 0;
        });
    });
});

namespace {

// Where the page fetches a file from; the numbers are WebHost.js's.
enum class FetchBase { Fonts = 0, Stack = 1 };

// The rest of `path` below `folder`, or "" when it is not below it.
std::string Below(const std::string& folder, const std::string& path) {
    if (folder.empty() || path.size() <= folder.size() + 1 || path.compare(0, folder.size(), folder) != 0 ||
        path[folder.size()] != '/')
        return "";
    return path.substr(folder.size() + 1);
}

std::string StreamFolder() {
    const std::string& stream = GetPluginState().streamPath;
    const size_t slash = stream.find_last_of('/');
    return slash == std::string::npos ? std::string() : stream.substr(0, slash);
}

}  // namespace

void WebFetchFile(const std::string& hostPath) {
    if (GetHostFileStatus(hostPath).exists) return;
    std::string relative = Below(HostFontFolder(), hostPath);
    if (!relative.empty()) {
        (void)QbJsFetchFile(hostPath.c_str(), static_cast<int>(FetchBase::Fonts), relative.c_str());
        return;
    }
    relative = Below(StreamFolder(), hostPath);
    if (!relative.empty())
        (void)QbJsFetchFile(hostPath.c_str(), static_cast<int>(FetchBase::Stack), relative.c_str());
}

// Only an open dialog has a page counterpart; a save is cancelled (the page has no folder to
// write into).
bool WebChooseFile(const FileChoice& choice, std::string* hostPath) {
    if (choice.save) return false;
    char* chosen = QbJsChooseFile(choice.filterPattern.c_str());
    if (!chosen) return false;
    *hostPath = chosen;
    free(chosen);
    return !hostPath->empty();
}
