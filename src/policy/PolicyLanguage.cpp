// Where a script's files may be: one folder and what lies below it.
#include "policy/Policy.h"
#include "policy/PolicyPath.h"
#include "platform/HostPath.h"

void SetPolicyLanguageFolder(const std::string& hostFolder) {
    GetPolicyState().languageFolder = hostFolder;
}

void AllowPolicyLanguageFolder(const std::string& hostFolder) {
    GetPolicyState().languageFoldersAllowed.push_back(hostFolder);
}

std::string PolicyLanguageFolder() {
    const std::string& folder = GetPolicyState().languageFolder;
    return folder.empty() ? PolicySandboxFolder() : NormalisePolicyPath(folder);
}

std::string PolicyLanguageFilePath(const std::string& name) {
    const std::string folder = PolicyLanguageFolder();
    if (name.empty() || folder.empty()) return "";
    std::string path;
    if (name.size() >= 2 && name[1] == ':') {
        path = HostPathFromDos(name);  // only the drive the host maps
        if (path.empty()) return "";
    } else {
        path = name;
        for (char& c : path) {
            if (c == '\\') c = '/';
        }
        if (path[0] != '/') path = folder + "/" + path;
    }
    path = NormalisePolicyPath(path);
    if (path.empty()) return "";
    if (path != folder && IsInsideFolder(path, folder)) return path;
    for (const std::string& other : GetPolicyState().languageFoldersAllowed) {
        const std::string allowed = NormalisePolicyPath(other);
        if (!allowed.empty() && path != allowed && IsInsideFolder(path, allowed)) return path;
    }
    return "";
}
