#include "subsystems/Subsystems.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "host/Application.h"
#include "memory/MemRef.h"

namespace {

class SubsystemsTest : public testing::Test {
protected:
    void SetUp() override {
        InstallSubsystems(UnavailableSubsystems());
        ResetSubsystems();  // the counts of earlier tests in this process go
    }
    void TearDown() override { InstallSubsystems(ApplicationSubsystems()); }
};

// An entry nobody filled answers as a subsystem with nothing to do, and is counted by its name.
TEST_F(SubsystemsTest, UnavailableEntriesAnswerNothingToDoAndAreCounted) {
    Subsystems& s = GetSubsystems();
    std::string text = "kept";
    const struct { const char* name; std::function<int64_t()> call; int64_t answer; } cases[] = {
        {"PlaySound", [&] { return s.PlaySound(nullptr, "a.wav", false, 0, 100, 0); }, 0},
        {"IsMovieDone", [&] { return int64_t{s.IsMovieDone(7)}; }, 1},
        {"AskText", [&] { return int64_t{s.AskText("name?", &text)} + 10 * int64_t(text.size()); }, 1},
        // What is handed over is freed, as the engine does when it fails.
        {"PlaySpriteFilm", [&] { return s.PlaySpriteFilm(NewMemRef(8), 1); }, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const uint32_t before = UnavailableSubsystemCallsInAll();
        EXPECT_EQ(c.call(), c.answer);
        EXPECT_EQ(c.call(), c.answer);
        EXPECT_EQ(UnavailableSubsystemCalls(c.name), 2u);
        EXPECT_EQ(UnavailableSubsystemCallsInAll(), before + 2);
    }
    s.StopSounds(true);
    EXPECT_EQ(UnavailableSubsystemCalls("StopSounds"), 1u);
}

}  // namespace
