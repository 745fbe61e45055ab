// `quillbrook logo`: the language at a terminal, over a file, or for one line. PRINT goes to
// stdout; an error's text goes to stderr instead of a box. At a terminal libedit reads the lines,
// with editing and a history of what was typed.
#include <editline/readline.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "Commands.h"
#include "logo/Evaluator.h"
#include "platform/Host.h"
#include "platform/HostFolder.h"
#include "policy/Policy.h"

namespace {

bool gInteractive = false;

void WriteOut(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

void WriteError(const std::string& text) {
    std::fprintf(stderr, "%s\n", text.c_str());
}

std::optional<std::string> ReadConsoleLine(char prompt) {
    if (gInteractive) {
        // A script's own reads (READWORD and the like) show no prompt.
        const char shown[] = {prompt, prompt ? ' ' : '\0', '\0'};
        char* typed = readline(shown);
        if (!typed) return std::nullopt;
        std::string line(typed);
        std::free(typed);
        if (!line.empty()) add_history(line.c_str());
        return line;
    }
    std::string line;
    if (!std::getline(std::cin, line)) return std::nullopt;
    return line;
}

// A file or a -e line has no console behind it: a TO that runs out of text ends there.
std::optional<std::string> NoConsole(char) { return std::nullopt; }

}  // namespace

int RunLogo(const std::string& path, const std::string& line, const std::vector<std::string>& allowFiles) {
    SetLogoErrorSink(WriteError);
    // A script's files: the current folder and below, and the folders the user allows besides.
    SetPolicyLanguageFolder(HostCurrentFolder());
    for (const std::string& folder : allowFiles) AllowPolicyLanguageFolder(folder);
    // Ctrl+C stops the running script, not the program.
    std::signal(SIGINT, [](int) { RequestLogoBreak(); });
    if (!line.empty()) return RunLogoLines(line, NoConsole, WriteOut) ? 1 : 0;
    if (!path.empty()) {
        std::ifstream in(path, std::ios::binary);
        if (!in) {
            std::fprintf(stderr, "quillbrook: cannot read %s\n", path.c_str());
            return 2;
        }
        const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        return RunLogoLines(text, NoConsole, WriteOut) ? 1 : 0;
    }
    // The REPL goes on after an error: each line is a run of its own, the workspace stays.
    gInteractive = GetHost().IsTerminal(0);
    for (;;) {
        const std::optional<std::string> typed = ReadConsoleLine('?');
        if (!typed) break;
        RunLogoLines(*typed, ReadConsoleLine, WriteOut);
    }
    if (gInteractive) std::printf("\n");
    return 0;
}
