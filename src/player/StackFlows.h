// The life of a stack as a document: opening, saving in place or through a temporary file, making
// a new one, and every way in which that can fail, with the system's alert. A failure never leaves
// the program without a stack: what can't be loaded is replaced by a blank "Untitled" one.
#pragma once

#include <cstdint>
#include <string>

#include "stack/StackFiles.h"

// The File menu's Open (`ask`) and the end of a stream (slot 1 as it stands).
int32_t OpenStack(bool ask);
int32_t ReadStack();
int32_t PrepareOpenedStack();
// Opens a given path: the file if it is there, else the Home stack in the program's folder (each
// Home name in turn), else the search and the open dialog; cancelled, a new stack.
int32_t OpenStackByName(const std::string& hostPath);
// Returns 1 when the user cancelled the question about the old stack.
int32_t NewStack(bool showHint);

// false: the user cancelled, and the caller stops what it was about to do.
bool CheckSave();
int32_t SaveStack();
int32_t SaveStackAs();

// The Home stack names, and whether a file name is one of them (case ignored).
bool IsHomeStackName(const std::string& name);
// After a stack is opened or saved under a name: a Home name makes it the Home stack, whose
// remembered card is then the first.
void MakeHomeTest();
