// Paths in memory keep the drive form the stack format expects ("C:\Stacks\art.bmp"). The host
// maps the virtual drive C: to "/"; other drive letters map to nothing.
#pragma once

#include <string>

// "C:\a\b.stk" -> "/a/b.stk"; "" for any other drive or a path without one.
std::string HostPathFromDos(const std::string& dosPath);
// "/a/b.stk" (or a relative path, made absolute) -> "C:\a\b.stk".
std::string DosPathFromHost(const std::string& hostPath);
