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
    const struct {
        const char* name;
        std::function<int64_t()> call;
        int64_t answer;
    } cases[] = {
        {"PlaySound", [&] { return s.PlaySound(nullptr, "a.wav", false, 0, 100, 0); }, 0},
        {"IsMovieDone", [&] { return int64_t{s.IsMovieDone(7)}; }, 1},
        {"IsAnimationDone", [&] { return int64_t{s.IsAnimationDone(7)}; }, 1},
        {"IsSpriteFilmRunning", [&] { return int64_t{s.IsSpriteFilmRunning(7)}; }, 0},
        {"IsNbaBusy", [&] { return int64_t{s.IsNbaBusy()}; }, 0},
        {"ActionDoesSomething", [&] { return int64_t{s.ActionDoesSomething(3)}; }, 0},
        {"ServeDueTick", [&] { return int64_t{s.ServeDueTick(nullptr)}; }, 0},
        {"AskText", [&] { return int64_t{s.AskText("name?", &text)} + 10 * int64_t(text.size()); }, 1},
        // What is handed over is freed, as the engine does when it fails.
        {"PlaySpriteFilm", [&] { return s.PlaySpriteFilm(NewMemRef(8), 1); }, 0},
        {"AddAnimation", [&] {
             const int16_t rect[4] = {0, 0, 8, 8};
             return s.AddAnimation(NewMemRef(34), rect, 1);
         }, 0},
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
    s.SendExtensionMessage(5);
    EXPECT_EQ(UnavailableSubsystemCalls("StopSounds"), 1u);
    EXPECT_EQ(UnavailableSubsystemCalls("SendExtensionMessage"), 1u);
}

// Tests put recorders in entries; a reset puts the installed table back and clears the counts.
TEST_F(SubsystemsTest, ResetGoesBackToTheInstalledTable) {
    InstallSubsystems(ApplicationSubsystems());
    const Subsystems installed = GetSubsystems();
    EXPECT_NE(installed.RunNamedAction, UnavailableSubsystems().RunNamedAction);
    EXPECT_NE(installed.PumpOneMessage, UnavailableSubsystems().PumpOneMessage);
    EXPECT_EQ(installed.PlaySound, UnavailableSubsystems().PlaySound);

    GetSubsystems().StopSounds(false);
    GetSubsystems().RunNamedAction = [](uint16_t, uint32_t, uint32_t, int16_t) -> int32_t { return 9; };
    EXPECT_EQ(GetSubsystems().RunNamedAction(1, 0, 0, 0), 9);
    ResetSubsystems();
    EXPECT_EQ(GetSubsystems().RunNamedAction, installed.RunNamedAction);
    EXPECT_EQ(UnavailableSubsystemCalls("StopSounds"), 0u);
}

}  // namespace
