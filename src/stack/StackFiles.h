// What the stack room does with stack files on its own: writing a whole stack, finding a file a
// stack refers to, and reporting a file error. The flows that open and save (player/StackFlows.h)
// are built on these.
#pragma once

#include <cstdint>
#include <string>

#include "base/ResultCodes.h"

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

// The temporary file of a save in `folder` (host path): "QBTMP000.TMP", counting up while taken.
std::string TemporarySaveName(const std::string& folder);
