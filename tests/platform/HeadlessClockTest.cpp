// The headless wall clock: what a test sets, moving on with the virtual clock.
#include <gtest/gtest.h>

#include <vector>

#include "platform/Host.h"
#include "platform/headless/HeadlessHost.h"

namespace {

class HeadlessClock : public testing::Test {
protected:
    void SetUp() override { ResetHeadlessState(); SetHost(HeadlessHost()); }
    void TearDown() override { ResetHeadlessState(); }
};

TEST_F(HeadlessClock, WallClockFollowsTheVirtualClock) {
    struct Case { HostDateTime set; uint32_t advanceMs; HostDateTime expected; };
    const Case cases[] = {
        {{2000, 1, 1, 0, 0, 0, 0}, 61999, {2000, 1, 1, 0, 1, 1, 6}},
        {{1999, 12, 31, 23, 59, 58, 0}, 3000, {2000, 1, 1, 0, 0, 1, 6}},
        {{2024, 2, 28, 23, 0, 0, 0}, 3600 * 1000, {2024, 2, 29, 0, 0, 0, 4}},
    };
    for (const Case& c : cases) {
        ResetHeadlessState();
        AdvanceHeadlessClock(12345);  // a date set later shows as set, whatever the clock says
        SetHeadlessWallClock(c.set);
        AdvanceHeadlessClock(c.advanceMs);
        const HostDateTime t = GetHost().WallClock(), e = c.expected;
        EXPECT_EQ((std::vector<int32_t>{t.year, t.month, t.day, t.hour, t.minute, t.second, t.weekday}),
                  (std::vector<int32_t>{e.year, e.month, e.day, e.hour, e.minute, e.second, e.weekday})) << c.set.year;
    }
}

}  // namespace
