// Whole-file reads and writes go through the file layer, so its faults reach them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "platform/HostFile.h"

namespace {

namespace fs = std::filesystem;

class HostFileWhole : public testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("qb-whole-" + std::to_string(::getpid()));
        fs::create_directories(dir_);
        ResetFileFaults();
    }
    void TearDown() override { ResetFileFaults(); fs::remove_all(dir_); }
    std::string At(const char* name) const { return (dir_ / name).string(); }
    fs::path dir_;
};

// What is written reads back in the command tests, which keep their PNGs and stacks this way.
TEST_F(HostFileWhole, FailuresAndFaults) {
    const struct { const char* what; uint32_t FileFaults::*counter; int32_t read, write; } cases[] = {
        {"open fails", &FileFaults::failOpenAt, -1, -1},
        {"read fails", &FileFaults::failReadAt, -1, 0},
        {"write fails", &FileFaults::failWriteAt, 0, -1},
    };
    for (const auto& c : cases) {
        ResetFileFaults();
        ASSERT_EQ(WriteWholeHostFile(At("f.bin"), "abc", 3), 0);  // a failed write leaves it empty
        ResetFileFaults();
        GetFileFaults().*c.counter = 1;
        std::string back = "old";
        EXPECT_EQ(ReadWholeHostFile(At("f.bin"), &back), c.read) << c.what;
        EXPECT_EQ(back, c.read == 0 ? "abc" : "") << c.what;
        ResetFileFaults();
        GetFileFaults().*c.counter = 1;
        EXPECT_EQ(WriteWholeHostFile(At("f.bin"), "abc", 3), c.write) << c.what;
    }
}

}  // namespace
