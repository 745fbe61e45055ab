// POSIX folders; emscripten provides the same calls over its file system.
#include "platform/HostFolder.h"

#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "platform/HostFile.h"

std::string MakePrivateHostFolder(const std::string& parent, const std::string& prefix) {
    if (!GetFileFaults().lockedFolder.empty() && parent == GetFileFaults().lockedFolder) return "";
    const std::string pattern = parent + "/" + prefix + "XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    // mkdtemp makes the folder with mode 0700.
    if (!::mkdtemp(name.data())) return "";
    return name.data();
}

int32_t RemoveHostFolder(const std::string& hostPath) { return ::rmdir(hostPath.c_str()) == 0 ? 0 : -1; }

std::string HostConfigFolder() {
    const char* config = std::getenv("XDG_CONFIG_HOME");
    if (config && *config == '/') return std::string(config) + "/quillbrook";
    const char* home = std::getenv("HOME");
    if (home && *home == '/') return std::string(home) + "/.config/quillbrook";
    return "";
}
