// `quillbrook logo` as its users start it: one line, a file, and lines piped into the REPL.
#if defined(QB_WITH_CLI) && defined(QB_QUILLBROOK)

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "support/StackBytes.h"

namespace {

struct ShellRun {
    std::string output;  // stdout then stderr, interleaved as written
    int exitCode = -1;
};

ShellRun Shell(const std::string& command) {
    ShellRun run;
    FILE* out = ::popen((command + " 2>&1").c_str(), "r");
    if (!out) return run;
    char buffer[256];
    while (std::fgets(buffer, sizeof buffer, out)) run.output += buffer;
    const int status = ::pclose(out);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

TEST(LogoCommand, RunsALineAFileAndTheRepl) {
    const std::string text = "TO SQ :N\nOP :N * :N\nEND\nPR SQ 4\nPR :NOSUCH\nPR 2\n";
    const std::string program = WriteTempFile("logo-batch.lg", Bytes(text.begin(), text.end()));
    struct Case {
        std::string command;
        std::string output;
        int exitCode;
    };
    const Case cases[] = {
        {QB_QUILLBROOK " logo -e 'PR 1 + 2 * 3'", "7\n", 0},
        {QB_QUILLBROOK " logo " + program, "16\nLogo Error: NOSUCH is undefined\n\nAt: PR :NOSUCH\n", 1},
        {"printf 'TO F\\nF\\nEND\\nF\\nPR 5\\n' | " QB_QUILLBROOK " logo", "Logo Error: Out of stack space\n\nAt: F\n5\n", 0},
    };
    for (const Case& c : cases) {
        const ShellRun run = Shell(c.command);
        EXPECT_EQ(run.output, c.output) << c.command;
        EXPECT_EQ(run.exitCode, c.exitCode) << c.command;
    }
}

// A script's files: the current folder and below; --allow-files opens one more folder.
TEST(LogoCommand, FilesStayInTheCurrentFolderUnlessAnotherIsAllowed) {
    char work[] = "/tmp/qbLogoCwdXXXXXX";
    char other[] = "/tmp/qbLogoOtherXXXXXX";
    ASSERT_TRUE(::mkdtemp(work) && ::mkdtemp(other));
    const std::string far = std::string(other) + "/far.txt";
    const std::string write = "OPEN \"" + far + " SETWRITE \"" + far + " TYPE 7 CLOSEALL";
    const std::string cd = "cd " + std::string(work) + " && " QB_QUILLBROOK " logo ";
    struct Case {
        std::string command;
        std::string output;
    };
    const Case cases[] = {
        {cd + "-e 'OPEN \"near.txt SETWRITE \"near.txt TYPE 5 CLOSEALL OPEN \"near.txt PR FILELEN \"near.txt'", "1\n"},
        {cd + "-e '" + write + "'", "Logo Error: Can't read from \"" + far + "\n\nAt: " + write + "\n"},
        {cd + "--allow-files " + other + " -e '" + write + " OPEN \"" + far + " PR FILELEN \"" + far + "'", "1\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(Shell(c.command).output, c.output) << c.command;
    Shell(std::string("rm -rf ") + work + " " + other);
}

}  // namespace

#endif
