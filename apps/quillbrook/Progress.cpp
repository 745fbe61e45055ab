#include "Progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>

#include "platform/Host.h"

Progress::Progress(size_t total) : total_(total), terminal_(GetHost().IsTerminal(STDERR_FILENO)) {}

void Progress::Show(size_t done, const std::string& name) const {
    if (!terminal_) return;
    constexpr size_t kBarWidth = 30;
    const size_t filled = total_ ? done * kBarWidth / total_ : kBarWidth;
    fmt::print(stderr, "\r[{}{}] {}/{} {:<32.32}", std::string(filled, '#'),
               std::string(kBarWidth - filled, '.'), done, total_, name);
    std::fflush(stderr);
}

void Progress::Clear() const {
    if (terminal_) fmt::print(stderr, "\r{:80}\r", "");
}
