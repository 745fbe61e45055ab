// POSIX folders; emscripten provides the same calls over its file system.
#include "platform/HostFolder.h"

#include <dirent.h>
#include <sys/stat.h>
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

int32_t MakeHostFolders(const std::string& hostPath) {
    if (hostPath.empty()) return -1;
    struct stat info {};
    if (::stat(hostPath.c_str(), &info) == 0) return S_ISDIR(info.st_mode) ? 0 : -1;
    const size_t slash = hostPath.find_last_of('/');
    if (slash != std::string::npos && slash > 0 && MakeHostFolders(hostPath.substr(0, slash)) != 0) return -1;
    if (!GetFileFaults().lockedFolder.empty() && hostPath.substr(0, slash) == GetFileFaults().lockedFolder) return -1;
    return ::mkdir(hostPath.c_str(), 0700) == 0 ? 0 : -1;
}

int32_t RemoveHostFolder(const std::string& hostPath) { return ::rmdir(hostPath.c_str()) == 0 ? 0 : -1; }

std::string HostConfigFolder() {
    const char* config = std::getenv("XDG_CONFIG_HOME");
    if (config && *config == '/') return std::string(config) + "/quillbrook";
    const char* home = std::getenv("HOME");
    if (home && *home == '/') return std::string(home) + "/.config/quillbrook";
    return "";
}

bool ListHostFolder(const std::string& hostPath, std::vector<HostFolderEntry>* entries) {
    entries->clear();
    DIR* dir = ::opendir(hostPath.c_str());
    if (!dir) return false;
    while (const dirent* entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..") continue;
        struct stat info {};
        const std::string path = hostPath == "/" ? "/" + name : hostPath + "/" + name;
        // A link counts as what it points at; one that points nowhere is left out.
        if (::stat(path.c_str(), &info) != 0) continue;
        entries->push_back({name, S_ISDIR(info.st_mode)});
    }
    ::closedir(dir);
    return true;
}

std::string HostCurrentFolder() {
    std::vector<char> buffer(4096);
    if (!::getcwd(buffer.data(), buffer.size())) return "/";
    return buffer.data();
}
