// Finding a file that a stack refers to by an old path: beside the current stack, on the other
// drives, and at last by asking the user.
#include <vector>

#include "messages/StringTable.h"
#include "platform/Host.h"
#include "platform/HostFile.h"
#include "platform/HostPath.h"
#include "policy/Policy.h"
#include "stack/PathSlot.h"
#include "stack/StackFiles.h"

namespace {

inline constexpr int kFirstNamedTitle = 2413;
inline constexpr int kLastNamedTitle = 2418;
inline constexpr char kDriveOrder[] = "CDABEFGHI";

// A candidate counts only where the stack may read it. Only then may a host that keeps the stack's
// neighbours elsewhere (the web, beside the stack's URL) bring it in.
bool Exists(const std::string& dosPath) {
    const std::string host = HostPathFromDos(dosPath);
    if (host.empty() || !PolicyAllowsRead(host)) return false;
    GetHost().FetchFile(host);
    return GetHostFileStatus(host).exists;
}

std::vector<std::string> Split(const std::string& path) {
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t i = 0; i <= path.size(); ++i) {
        if (i == path.size() || path[i] == '\\') {
            if (i > start) parts.push_back(path.substr(start, i - start));
            start = i + 1;
        }
    }
    return parts;
}

// The path's tail, one more leading folder each time, against the current stack's folder and then
// against its parent.
bool SearchBesideStack(int slot) {
    const std::vector<std::string> wanted = Split(GetSlotPath(slot));
    std::vector<std::string> base = Split(GetSlotPath(kSlotStack));
    if (wanted.size() < 2 || base.size() < 2) return false;
    base.pop_back();  // the stack's own name
    for (int round = 0; round < 2 && base.size() > 1; ++round, base.pop_back()) {
        std::string folder;
        for (const std::string& part : base) folder += part + "\\";
        std::string tail;
        for (size_t k = wanted.size() - 1; k >= 1; --k) {
            tail = wanted[k] + (tail.empty() ? "" : "\\" + tail);
            if (Exists(folder + tail)) return SetSlotPath(slot, folder + tail);
        }
    }
    return false;
}

bool TryOtherDrives(int slot) {
    const std::string path = GetSlotPath(slot);
    if (path.size() < 3 || path[1] != ':') return false;
    for (const char* drive = kDriveOrder; *drive; ++drive) {
        if (*drive == path[0]) continue;
        std::string moved = path;
        moved[0] = *drive;
        if (Exists(moved)) return SetSlotPath(slot, moved);
    }
    return false;
}

}  // namespace

bool LocateFile(const LocateRequest& request, int slot, bool search) {
    if (search) SearchBesideStack(slot);
    if (Exists(GetSlotPath(slot)) || TryOtherDrives(slot)) {
        CopySlot(slot, request.targetSlot);
        return true;
    }
    CopySlot(slot, kSlotScratch);
    const std::string name = GetSlotName(kSlotScratch);
    FileChoice choice;
    choice.title = GetString(request.titleStringId);
    if (request.titleStringId >= kFirstNamedTitle && request.titleStringId <= kLastNamedTitle) choice.title += name;
    choice.filterName = request.filterName;
    choice.filterPattern = request.filterPattern;
    choice.proposed = name;
    std::string chosen;
    if (!GetHost().ChooseFile(choice, &chosen)) return false;
    if (!PolicyAllowsRead(chosen)) return false;
    if (!SetSlotPath(kSlotScratch, DosPathFromHost(chosen))) return false;
    CopySlot(kSlotScratch, request.targetSlot);
    return true;
}
