// The subcommands of the quillbrook program. Each returns the process's exit code.
#pragma once

#include <string>

int RunInfo(const std::string& path, bool json);
int RunValidate(const std::string& path);
