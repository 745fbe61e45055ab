// The subcommands of the quillbrook program. Each returns the process's exit code.
#pragma once

#include <string>

int RunInfo(const std::string& path, bool json);
// `info --json --raw`: the stack as stored in its file, with the contents behind every head, in the
// shape that `build` takes back.
int RunInfoRaw(const std::string& path);
int RunValidate(const std::string& path);
// Writes the stack described by the JSON file at `jsonPath` to `outPath`. On any mistake nothing new
// is left at `outPath`.
int RunBuild(const std::string& jsonPath, const std::string& outPath);
// Opens FILE through the full open flow and saves it to `outPath` through the full writer.
int RunResave(const std::string& path, const std::string& outPath);
// Writes every card background and every graphic picture of FILE as PNG files into `outDir`.
int RunExport(const std::string& path, const std::string& outDir);
