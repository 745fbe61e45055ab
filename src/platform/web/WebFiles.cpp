// Files the web player brings in from the page: font files fetched on first use (from beside
// quillbrook.js, kept in memory for every later face), and the page's file input as the host's
// open dialog.
#include <emscripten.h>

#include <cstdlib>
#include <string>

#include "platform/HostFile.h"
#include "platform/web/WebState.h"

// Both answer once the page has the file (or knows it has none): the core waits meanwhile,
// through Asyncify, while the page runs on.
EM_ASYNC_JS(int, QbJsFetchFile, (const char* path), { return await Module.qbFetchFile(UTF8ToString(path)); });
EM_ASYNC_JS(char*, QbJsChooseFile, (const char* pattern), {
    const path = await Module.qbChooseFile(UTF8ToString(pattern));
    return path ? allocateUTF8(path) : 0;
});

void WebFetchFile(const std::string& hostPath) {
    if (GetHostFileStatus(hostPath).exists) return;
    (void)QbJsFetchFile(hostPath.c_str());
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
