// Where the tests of the commands start: a folder of the test's own, removed afterwards, and the
// commands run with their output kept out of the test's (what they printed on stderr is in err_).
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "Commands.h"
#include "PngFile.h"
#include "platform/headless/HeadlessHost.h"

inline PngImage ReadImage(const std::string& path) {
    PngImage image;
    std::string error;
    EXPECT_TRUE(ReadPng(path, &image, &error)) << path << ": " << error;
    return image;
}

class CommandFixture : public testing::Test {
protected:
    void SetUp() override {
        dir_ = std::filesystem::temp_directory_path() /
               ("qb-command-" + std::to_string(::getpid()) + "-" +
                testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(dir_);
        std::filesystem::create_directories(dir_);
    }
    void TearDown() override {
        std::filesystem::remove_all(dir_);
        ResetHeadlessState();
    }
    std::string Path(const std::string& name) const { return (dir_ / name).string(); }
    std::string Write(const std::string& name, const std::string& text) const {
        std::ofstream(Path(name), std::ios::binary) << text;
        return Path(name);
    }
    // `render`, or `render --replay` when the options name events.
    int RunQuietly(const RenderOptions& options) const {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int code = options.replay.empty() ? RunRender(options) : RunReplay(options);
        testing::internal::GetCapturedStdout();
        err_ = testing::internal::GetCapturedStderr();
        return code;
    }
    std::filesystem::path dir_;
    mutable std::string err_;
};
