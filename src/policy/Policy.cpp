// The Policy's state and its rules for reading and writing files.
#include "policy/Policy.h"

#include <cstdint>

#include "base/StateRegistry.h"
#include "platform/HostFile.h"
#include "policy/PolicyPath.h"

namespace {

PolicyState gPolicy;

#ifdef __EMSCRIPTEN__
inline constexpr bool kWebBuild = true;
#else
inline constexpr bool kWebBuild = false;
#endif

inline constexpr const char* kMediaFolders[] = {"QBArt", "QBSounds", "Movies", "QBAnim"};
inline constexpr char kSandboxes[] = "Sandboxes";

// Whether `path` lies in one of the media folders directly inside `base` (both normalised).
bool InsideMediaFolder(const std::string& path, const std::string& base) {
    if (base.empty() || !IsInsideFolder(path, base) || path.size() == base.size()) return false;
    const size_t start = base == "/" ? 1 : base.size() + 1;
    const size_t end = path.find('/', start);
    const std::string folder =
        path.substr(start, end == std::string::npos ? std::string::npos : end - start);
    for (const char* media : kMediaFolders) {
        if (SameNameIgnoringCase(folder, media)) return true;
    }
    return false;
}

// The save's temporary file: "QBTMP" and three digits, ".TMP".
bool IsSaveTemporary(const std::string& name) {
    if (name.size() != 12 || name.compare(0, 5, "QBTMP") != 0 || name.compare(8, 4, ".TMP") != 0)
        return false;
    for (size_t i = 5; i < 8; ++i) {
        if (name[i] < '0' || name[i] > '9') return false;
    }
    return true;
}

uint64_t PathHash(const std::string& text) {
    uint64_t hash = 0xcbf29ce484222325u;  // FNV-1a: stable across runs and builds
    for (unsigned char c : text) {
        hash ^= c;
        hash *= 0x100000001b3u;
    }
    return hash;
}

}  // namespace

PolicyState& GetPolicyState() {
    return gPolicy;
}
void ResetPolicyState() {
    gPolicy = PolicyState{};
}

void SetPolicyStack(const std::string& hostPath) {
    gPolicy.context.stackPath = hostPath;
}

void SetPolicyFolders(const std::string& installFolder, const std::string& configFolder) {
    gPolicy.context.installFolder = installFolder;
    gPolicy.context.configFolder = configFolder;
}

void SetPolicyPlace(PolicyPlace place) {
    gPolicy.context.place = place;
}

bool PolicyOnWeb() {
    return kWebBuild || gPolicy.context.place == PolicyPlace::Web;
}

std::string PolicySandboxFolder() {
    const std::string stack = NormalisePolicyPath(gPolicy.context.stackPath);
    const std::string config = NormalisePolicyPath(gPolicy.context.configFolder);
    if (stack.empty() || config.empty()) return "";
    std::string name = PolicyNameOf(stack);
    const size_t dot = name.find_last_of('.');
    if (dot != std::string::npos && dot > 0) name.resize(dot);
    std::string hex(16, '0');
    uint64_t hash = PathHash(stack);
    for (size_t i = hex.size(); i-- > 0; hash >>= 4) hex[i] = "0123456789abcdef"[hash & 15];
    return config + "/" + kSandboxes + "/" + name + "-" + hex;
}

bool PolicyAllowsRead(const std::string& hostPath) {
    const std::string path = NormalisePolicyPath(hostPath);
    if (path.empty()) return false;
    const std::string install = NormalisePolicyPath(gPolicy.context.installFolder);
    if (InsideMediaFolder(path, install)) return true;
    const std::string stack = NormalisePolicyPath(gPolicy.context.stackPath);
    if (stack.empty()) return false;
    if (path == stack) return true;
    const std::string folder = PolicyFolderOf(stack);
    if (folder != "/" && IsInsideFolder(path, folder)) return true;
    const std::string parent = PolicyFolderOf(folder);
    if (folder != "/" && parent != NormalisePolicyPath(HostTempFolder()) &&
        InsideMediaFolder(path, parent))
        return true;
    const std::string sandbox = PolicySandboxFolder();
    return !sandbox.empty() && IsInsideFolder(path, sandbox);
}

bool PolicyAllowsWrite(const std::string& hostPath) {
    const std::string path = NormalisePolicyPath(hostPath);
    const std::string stack = NormalisePolicyPath(gPolicy.context.stackPath);
    if (path.empty() || stack.empty()) return false;
    if (path == stack) return true;
    if (PolicyFolderOf(path) == PolicyFolderOf(stack) && IsSaveTemporary(PolicyNameOf(path)))
        return true;
    const std::string sandbox = PolicySandboxFolder();
    return !sandbox.empty() && path != sandbox && IsInsideFolder(path, sandbox);
}

bool PolicyAllows(PolicyAct act, const std::string& subject) {
    std::string modulePath;
    switch (act) {
        case PolicyAct::Read:
            return PolicyAllowsRead(subject);
        case PolicyAct::Write:
            return PolicyAllowsWrite(subject);
        case PolicyAct::Load:
            return PolicyAllowsLoad(subject, &modulePath);
        case PolicyAct::Launch:
            return PolicyAllowsLaunch(subject);
    }
    return false;
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Policy, ResetPolicyState);
}  // namespace
