// The life of a stack as a document: opening, saving in place or through a temporary file, making
// a new one, and every way in which that can fail, with the system's alert. A failure never leaves
// the program without a stack: what can't be loaded is replaced by a blank "Untitled" one.
#pragma once

#include <cstdint>
#include <string>

// Result codes of this layer.
inline constexpr int32_t kFlowOk = 0;
inline constexpr int32_t kFlowFailed = -1;     // any file or memory failure
inline constexpr int32_t kFlowReported = -12;  // a failure already reported to the user
inline constexpr int32_t kFlowNoMemory = 16;   // no memory or bad state
inline constexpr int32_t kFlowReadOnly = -2688;

// The File menu's Open (`ask`) and the end of a stream (slot 1 as it stands).
int32_t OpenStack(bool ask);
int32_t ReadStack();
int32_t PrepareOpenedStack();
// Opens a given path: the file if it is there, else the search and the open dialog.
int32_t OpenStackByName(const std::string& hostPath);
// Returns 1 when the user cancelled the question about the old stack.
int32_t NewStack(bool showHint);

// false: the user cancelled, and the caller stops what it was about to do.
bool CheckSave();
int32_t SaveStack();
int32_t SaveStackAs();
int32_t WriteStack(int slot, bool keepStoreOpen);
void ShowFileError(int32_t code);

// Finds a file a stack refers to by an old path; true if found (the target slot then holds it).
struct LocateRequest {
    int titleStringId = 0;
    std::string filterName;
    std::string filterPattern;
    int targetSlot = 0;
};
bool LocateFile(const LocateRequest& request, int slot, bool search);

// The Home stack names, and whether a file name is one of them (case ignored).
bool IsHomeStackName(const std::string& name);
// The temporary file of a save in `folder` (host path): "QBTMP000.TMP", counting up while taken.
std::string TemporarySaveName(const std::string& folder);
