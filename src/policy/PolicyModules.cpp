// Which extension modules a stack may load, and from where.
#include <string>

#include "platform/HostFile.h"
#include "policy/Policy.h"
#include "policy/PolicyPath.h"

namespace {

inline constexpr size_t kModuleNameMax = 255;

// A name and nothing else: no folder, no drive, no way up.
bool IsBareModuleName(const std::string& name) {
    if (name.empty() || name.size() > kModuleNameMax || name.find("..") != std::string::npos)
        return false;
    for (char c : name) {
        if (c == '/' || c == '\\' || c == ':' || c == '\0') return false;
    }
    return true;
}

bool ModuleFileIn(const std::string& folder, const std::string& name, std::string* hostPath) {
    if (folder.empty()) return false;
    const std::string candidate = folder + "/NBAs/" + name;
    const HostFileStatus status = GetHostFileStatus(candidate);
    if (!status.exists || status.isFolder) return false;
    *hostPath = candidate;
    return true;
}

}  // namespace

void RegisterBuiltInModule(const std::string& name) {
    if (IsBareModuleName(name)) GetPolicyState().builtInModules.push_back(name);
}

bool PolicyAllowsLoad(const std::string& moduleName, std::string* hostPath) {
    hostPath->clear();
    if (!IsBareModuleName(moduleName)) return false;
    const PolicyState& state = GetPolicyState();
    for (const std::string& builtIn : state.builtInModules) {
        if (SameNameIgnoringCase(builtIn, moduleName)) return true;
    }
    if (PolicyOnWeb()) return false;
    return ModuleFileIn(state.context.installFolder, moduleName, hostPath) ||
           ModuleFileIn(state.context.configFolder, moduleName, hostPath);
}
