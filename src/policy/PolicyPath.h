// Paths as the Policy compares them: absolute, normal, links resolved as far as the path exists.
#pragma once

#include <string>

// "" for an empty path, one holding a NUL, or one that cannot be resolved (a link loop).
std::string NormalisePolicyPath(const std::string& hostPath);
// Whether normalised `path` is `folder` or lies below it.
bool IsInsideFolder(const std::string& path, const std::string& folder);
// The folder part of a normalised path ("/" for "/x"); "" for "".
std::string PolicyFolderOf(const std::string& path);
// The last part of a normalised path.
std::string PolicyNameOf(const std::string& path);
// Case-insensitive comparison of ASCII names.
bool SameNameIgnoringCase(const std::string& a, const std::string& b);
