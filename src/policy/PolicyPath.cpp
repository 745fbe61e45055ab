#include "policy/PolicyPath.h"

#include <cctype>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

std::string NormalisePolicyPath(const std::string& hostPath) {
    // The OS would stop reading at a NUL that normalisation steps over.
    if (hostPath.empty() || hostPath.find('\0') != std::string::npos) return "";
    std::error_code error;
    const fs::path absolute = fs::absolute(hostPath, error);
    if (error) return "";
    const fs::path resolved = fs::weakly_canonical(absolute, error);
    if (error) return "";
    std::string path = resolved.lexically_normal().string();
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

bool IsInsideFolder(const std::string& path, const std::string& folder) {
    if (path.empty() || folder.empty()) return false;
    if (folder == "/") return path.front() == '/';
    return path.compare(0, folder.size(), folder) == 0 &&
           (path.size() == folder.size() || path[folder.size()] == '/');
}

std::string PolicyFolderOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) return "";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string PolicyNameOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

bool SameNameIgnoringCase(const std::string& a, const std::string& b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    }
    return true;
}
