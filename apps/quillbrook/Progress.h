// Progress of a command over many files, on a terminal only: one line on stderr, redrawn in place.
// When stderr is no terminal nothing is drawn, so scripts and tests see plain lines.
#pragma once

#include <cstddef>
#include <string>

class Progress {
public:
    explicit Progress(size_t total);
    bool terminal() const { return terminal_; }
    // `done` of the total are finished; `name` is the one under way.
    void Show(size_t done, const std::string& name) const;
    // Wipes the line, before a message or at the end.
    void Clear() const;

private:
    size_t total_;
    bool terminal_;
};
