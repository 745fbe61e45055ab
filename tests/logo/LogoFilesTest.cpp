// Files from a script: the table of open files, the reader and the writer, LOAD and SAVE, and the
// walls around them: a script reaches its own folder and nothing outside it.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "base/StateRegistry.h"
#include "policy/Policy.h"
#include "support/LogoTranscript.h"

namespace fs = std::filesystem;

namespace {

std::string MakeTempFolder() {
    std::string pattern = (fs::temp_directory_path() / "qbLogoFilesXXXXXX").string();
    return ::mkdtemp(pattern.data()) ? pattern : std::string();
}

void WriteFile(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string ReadFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

class LogoFiles : public ::testing::Test {
protected:
    void SetUp() override {
        folder = MakeTempFolder();
        ASSERT_FALSE(folder.empty());
    }
    void TearDown() override { fs::remove_all(folder); }
    // A clean start with the script's files in `folder`, as the command line has them.
    std::string Run(const char* script) {
        ResetAllState();
        SetPolicyLanguageFolder(folder);
        return ContinueLogoTranscript(script);
    }
    std::string folder;
};

const LogoCase kFileCases[] = {
    // The writer takes what PRINT and TYPE write, LF as CR; the reader gives it back line by line,
    // and the empty list once the file is used up. Reader and writer share the file's place.
    {"OPEN \"a.txt\nSETWRITE \"a.txt\nPR [hello world]\nTYPE 42\nSETWRITE []\nPR FILELEN \"a.txt\nSETREAD \"a.txt\n"
     "PR READPOS\nSETREADPOS 0\nSHOW READLIST\nPR KEYP\nPR READWORD\nSHOW READWORD\nPR KEYP\nSHOW READLIST",
     "14\n14\n[hello world]\nTRUE\n42\n[]\nFALSE\n[]\n"},
    {"OPEN \"a.txt\nOPEN \"b.txt\nPR COUNT ALLOPEN\nSETREAD \"B.TXT\nPR EQUALP READER ITEM 2 ALLOPEN\nCLOSE \"b.txt\nSHOW READER\nCLOSEALL\nSHOW ALLOPEN",
     "2\nTRUE\n[]\n[]\n"},
    {"PR FILEP \"a.txt\nOPEN \"a.txt\nCLOSE \"a.txt\nPR FILEP \"a.txt\nERASEFILE \"a.txt\nPR FILEP \"a.txt", "FALSE\nTRUE\nFALSE\n"},
    {"CLOSE \"nope.txt", "!nope.txt is not open"},
    {"SETREAD \"nope.txt", "!nope.txt is not open"},
    {"PR READPOS", "!READPOS wants a reader file"},
    {"SETWRITEPOS 3", "!SETWRITEPOS wants a writer file"},
    {"REPEAT 9 [OPEN WORD \"f REPCOUNT]", "!I don't know how to REPCOUNT"},
    {"MAKE \"I 0\nREPEAT 9 [MAKE \"I :I + 1 OPEN WORD \"f :I]", "!Too many files are open"},
    {"ERASEFILE \"nope.txt", "!Disk IO Error"},
    {"LOAD \"nope.lg", "!Can't read from \"nope.lg"},
    {"MAKE \"X [1 \"two]\nPPROP \"P \"K \"V\nTO SQ :N\nOP :N * :N\nEND\nSAVE \"ws.lg\nERALL\nPR NAMEP \"X\nLOAD \"ws.lg\n"
     "PR SQ 3\nSHOW :X\nSHOW PLIST \"P",
     "FALSE\n9\n[1 \"two]\n[K V]\n"},
};

TEST_F(LogoFiles, OpenReadWriteLoadAndSave) {
    for (const LogoCase& c : kFileCases) {
        EXPECT_EQ(Run(c.script), c.transcript) << c.script;
        Run("CLOSEALL");
        for (const auto& entry : fs::directory_iterator(folder)) fs::remove_all(entry.path());
    }
}

// A read that meets the byte 255 ends there as at the end of the file; the next read goes on.
TEST_F(LogoFiles, TheByte255EndsAReadAndLinesEndAtCrOrLf) {
    WriteFile(fs::path(folder) / "in.txt", "one\ntwo\rthree\xFFrest\xFF");
    EXPECT_EQ(Run("OPEN \"in.txt\nSETREAD \"in.txt\nREPEAT 5 [SHOW READWORD]"), "one\ntwo\nthree\nrest\n[]\n");
}

// In the player a script reaches the stack's sandbox and nothing else: not by "..", not by an
// absolute path, not through a link, and nothing outside is read, made or deleted.
TEST_F(LogoFiles, ThePlayersScriptsStayInTheSandbox) {
    const fs::path root(folder);
    WriteFile(root / "stacks" / "tour.stk", "stack");
    WriteFile(root / "outside.txt", "keep");
    ResetAllState();
    SetPolicyStack((root / "stacks" / "tour.stk").string());
    SetPolicyFolders("", (root / "config").string());
    const fs::path sandbox = PolicySandboxFolder();
    ASSERT_EQ(sandbox.parent_path(), root / "config" / "Sandboxes");
    fs::create_directories(sandbox);
    fs::create_symlink(root / "outside.txt", sandbox / "link.txt");
    const std::string outside = (root / "outside.txt").string();
    const std::string up = "../../../outside.txt";
    struct Refusal {
        std::string script;
        std::string transcript;
    };
    const Refusal refusals[] = {
        {"OPEN \"../x", "!Can't read from \"../x"},
        {"OPEN \"" + up, "!Can't read from \"" + up},
        {"OPEN \"" + outside, "!Can't read from \"" + outside},
        {"OPEN \"link.txt", "!Can't read from \"link.txt"},
        {"LOAD \"link.txt", "!Can't read from \"link.txt"},
        {"PR FILEP \"" + outside, "FALSE\n"},
        {"ERASEFILE \"" + up, "!Can't write to \"" + up},
        {"ERASEFILE \"link.txt", "!Can't write to \"link.txt"},
        {"SAVE \"../../../saved.lg", "!Can't write to \"../../../saved.lg"},
        {"SAVE \"link.txt", "!Can't write to \"link.txt"},
    };
    for (const Refusal& r : refusals) EXPECT_EQ(ContinueLogoTranscript(r.script.c_str()), r.transcript) << r.script;
    EXPECT_EQ(ReadFile(root / "outside.txt"), "keep");
    EXPECT_FALSE(fs::exists(root / "x"));
    EXPECT_FALSE(fs::exists(root / "saved.lg"));
    EXPECT_FALSE(fs::exists(root / "config" / "x"));
    // A name of its own lands in the sandbox.
    EXPECT_EQ(ContinueLogoTranscript("OPEN \"notes.txt\nSETWRITE \"notes.txt\nTYPE \"hi\nCLOSE \"notes.txt"), "");
    EXPECT_EQ(ReadFile(sandbox / "notes.txt"), "hi");
}

}  // namespace
