// Transitions on the headless virtual clock: how long each effect takes and in how many steps,
// the ids and speeds that fall back, the colour fades at 8 bits, and Escape in the display fade.
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "gfx/Palette.h"
#include "platform/Host.h"
#include "platform/headless/HeadlessHost.h"
#include "support/TransitionFixture.h"
#include "transitions/Transition.h"
#include "transitions/TransitionSteps.h"

namespace {

constexpr uint32_t kOld = 0xC0C0C0, kNew = 0x2040C0;
constexpr uint32_t kStartMs = 1000;  // not on a tick: the clock counts from the tick it is in
constexpr uint32_t kStartTick = kStartMs / kStepTickMs;

class TransitionTest : public TransitionFixture {
protected:
    // A window of the old colour, a new picture of the new colour, the clock at kStartMs.
    Surface Scene(int32_t width, int32_t height) {
        SetHeadlessWindowSize(width, height);
        HeadlessState& h = GetHeadlessState();
        h.window = Surface(width, height, kOld);
        h.screen = h.window;
        h.presents.clear();
        h.clockMs = kStartMs;
        return Surface(width, height, kNew);
    }
};

// The end of n steps at `speed` taken `taken` times, as BeginSteps and TakeStep count: each step
// is worth (speed * 32) / n quarter ticks, measured from the tick the effect started in.
uint32_t StepsEnd(uint32_t startTick, int32_t speed, int32_t n, int32_t taken) {
    const uint32_t budget = n < 1 ? 0 : static_cast<uint32_t>(speed * 32 / n);
    return (startTick + (budget * static_cast<uint32_t>(taken) + 3) / 4) * kStepTickMs;
}

enum Timing { kSteps, kFastest, kInstant, kZoom, kDisplayFade };

// The steps BeginSteps counts, and those taken (one more for some).
struct TimingCase { int16_t id; Timing timing; int32_t steps, taken; };

// Over a 301 x 203 rectangle at depth 32, every id at every speed.
TEST_F(TransitionTest, EachEffectTakesTheTimeOfItsSteps) {
    const TimingCase cases[] = {
        {0, kFastest, 4, 4}, {1, kSteps, 64, 64}, {2, kSteps, 64, 64}, {3, kFastest, 4, 4}, {4, kSteps, 64, 64},
        {5, kInstant, 4, 4}, {6, kInstant, 4, 4}, {7, kSteps, 41, 41}, {8, kSteps, 64, 64}, {9, kSteps, 64, 64},
        {10, kSteps, 207, 207}, {11, kSteps, 64, 64}, {12, kSteps, 32, 32}, {13, kSteps, 8, 8}, {14, kSteps, 16, 16},
        {15, kSteps, 64, 64}, {16, kSteps, 64, 65}, {17, kSteps, 64, 64}, {18, kSteps, 64, 64}, {19, kSteps, 32, 32},
        {20, kSteps, 32, 32}, {21, kZoom, 4, 4}, {22, kZoom, 4, 4}, {23, kSteps, 8, 8}, {24, kSteps, 8, 8},
        {25, kSteps, 8, 8}, {26, kSteps, 8, 8}, {27, kInstant, 4, 4}, {28, kDisplayFade, 16, 16}, {29, kFastest, 4, 4},
        {-1, kFastest, 4, 4},
    };
    for (const TimingCase& c : cases) {
        for (const int32_t speed : {8, 16, 32}) {
            SCOPED_TRACE(testing::Message() << "id " << c.id << " speed " << speed);
            const Surface picture = Scene(320, 240);
            RunTransition(c.id, static_cast<int16_t>(speed), {3, 5, 304, 208}, picture, false);
            // Fastest: twice as fast, and at 8 no wait at all. Zoom: eighteen rounds of speed + 1
            // ticks, then Fastest at 8. The display fade: two dissolves with a second between them.
            const uint32_t end = c.timing == kSteps ? StepsEnd(kStartTick, speed, c.steps, c.taken)
                : c.timing == kFastest ? (speed == 8 ? kStartMs : StepsEnd(kStartTick, speed / 2, c.steps, c.taken))
                : c.timing == kZoom    ? (kStartTick + 18 * static_cast<uint32_t>(speed + 1)) * kStepTickMs
                : c.timing == kDisplayFade
                    ? StepsEnd((StepsEnd(kStartTick, speed, 16, 16) + 1000) / kStepTickMs, speed, 16, 16)
                    : kStartMs;
            const TransitionState& state = GetTransitionState();
            EXPECT_EQ((std::vector<int64_t>{GetHeadlessState().clockMs, state.stepCount, state.stepIndex}),
                      (std::vector<int64_t>{end, c.steps, c.taken}));
        }
    }
}

TEST_F(TransitionTest, OddSpeedsRunAtTheFastest) {
    for (const int16_t speed : {12, 0, -8, 64}) {
        const Surface picture = Scene(640, 480);
        RunTransition(1, speed, {0, 0, 640, 480}, picture, false);
        EXPECT_EQ(GetHeadlessState().clockMs, StepsEnd(kStartTick, 8, 64, 64)) << speed;
    }
}

TEST_F(TransitionTest, BlindsStepOncePerRowOfEachPass) {
    const struct { int32_t height; int16_t speed, steps; uint32_t end; } cases[] = {
        {19, 8, 27, StepsEnd(kStartTick, 8, 27, 27)},  // three rows a pass, some below the rectangle
        {300, 8, 306, kStartMs},  // a tall card at the fastest speed has no time to give a step
    };
    for (const auto& c : cases) {
        const Surface picture = Scene(100, 400);
        RunTransition(10, c.speed, {10, 20, 90, 20 + c.height}, picture, false);
        EXPECT_EQ(GetTransitionState().stepIndex, c.steps) << c.height;
        EXPECT_EQ(GetHeadlessState().clockMs, c.end) << c.height;
        // One present per row inside the rectangle, none for the rows below it.
        EXPECT_EQ(GetHeadlessState().presents.size(), static_cast<size_t>(c.height)) << c.height;
    }
}

TEST_F(TransitionTest, NothingRunsWithoutAPictureOrAnArea) {
    const Surface empty;
    Scene(64, 64);
    RunTransition(1, 32, {0, 0, 64, 64}, empty, false);
    RunTransition(14, 32, {10, 10, 10, 40}, Surface(64, 64, kNew), false);
    RunTransition(14, 32, {100, 100, 140, 140}, Surface(64, 64, kNew), false);  // off the window
    EXPECT_EQ(GetHeadlessState().clockMs, kStartMs);
    EXPECT_TRUE(GetHeadlessState().presents.empty());
    EXPECT_EQ(GetHeadlessState().window.pixels, Surface(64, 64, kOld).pixels);
}

std::vector<std::vector<PaletteEntry>> gAnimated;
void RecordAnimated(const Palette*, uint32_t first, uint32_t count, const PaletteEntry* entries) {
    EXPECT_EQ(first, 0u);
    ASSERT_EQ(count, kPaletteSize);
    gAnimated.emplace_back(entries, entries + count);
}
std::vector<uint32_t> gPausedOn;  // the first pixel on screen at each wait
void WaitAndLook(uint32_t deadline) {
    gPausedOn.push_back(GetHeadlessState().screen.pixels[0]);
    HeadlessHost().WaitUntil(deadline);
}

bool SameColor(const PaletteEntry& a, const PaletteEntry& b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

// At 8 bits: 32 steps to the target colour over the old picture, the new picture, 31 steps on
// to the new colours, and the new colours.
TEST_F(TransitionTest, ColourFadesRampThroughTheirTargetAt8Bits) {
    ForceDisplayDepth(8);
    GetPaletteState().animate = RecordAnimated;
    Host host = HeadlessHost();
    host.WaitUntil = WaitAndLook;
    SetHost(host);
    PaletteEntry oldColors[kPaletteSize], newColors[kPaletteSize];
    for (uint32_t i = 0; i < kPaletteSize; ++i) {
        oldColors[i] = {static_cast<uint8_t>(i), 100, 0, 0};
        newColors[i] = {0, static_cast<uint8_t>(255 - i), 200, 0};
    }
    NoteColors(oldColors);
    NoteColors(newColors);
    const struct { int16_t id; bool setColor; PaletteEntry target; } cases[] = {
        {5, true, {0, 0, 0, 0}},  // the button colour plays no part
        {6, false, {255, 255, 255, 0}},
        {27, true, {10, 20, 30, 0}},
        {27, false, {0, 0, 0, 0}},  // cleared by the last transition
        {28, true, {0, 0, 0, 0}},   // the whole display, through black
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "id " << c.id);
        gAnimated.clear();
        gPausedOn.clear();
        const Surface picture = Scene(64, 48);
        if (c.setColor) SetTransitionFadeColor(10, 20, 30);
        RunTransition(c.id, 16, {0, 0, 64, 48}, picture, false);
        ASSERT_EQ(gAnimated.size(), 64u);
        const auto firstStep = [](int32_t from, int32_t to) { return static_cast<uint8_t>((31 * from + to) / 32); };
        EXPECT_TRUE(SameColor(gAnimated[0][7], {firstStep(7, c.target.red), firstStep(100, c.target.green),
                                               firstStep(0, c.target.blue), 0}));
        EXPECT_EQ(gAnimated[0][7].flags, kPaletteReserved);
        for (uint32_t i = 0; i < kPaletteSize; ++i) {
            ASSERT_TRUE(SameColor(gAnimated[31][i], c.target)) << i;
            ASSERT_TRUE(SameColor(gAnimated[63][i], newColors[i])) << i;
        }
        // (16 + 2) * 32 quarter ticks, then (16 + 2) * 31 from the tick the second ramp began.
        const uint32_t middle = kStartTick + 18 * 32 / 4;
        EXPECT_EQ(GetHeadlessState().clockMs, (middle + (18 * 31 + 3) / 4) * kStepTickMs);
        ASSERT_EQ(gPausedOn.size(), 63u);
        EXPECT_EQ((std::vector<uint32_t>{gPausedOn[31], gPausedOn[32]}), (std::vector<uint32_t>{kOld, kNew}));
        EXPECT_EQ(GetHeadlessState().screen.pixels, picture.pixels);
    }
}

// Escape cuts the second in black short and stays queued; other input that comes meanwhile, or
// a key let go, does not.
TEST_F(TransitionTest, EscapeEndsThePauseOfTheDisplayFade) {
    const Surface picture = Scene(64, 48);
    const uint32_t pauseStart = StepsEnd(kStartTick, 8, 16, 16);
    using K = HostEventKind;
    for (const auto& [kind, at, key] : {std::tuple{K::KeyDown, 100u, 0x0D}, {K::MouseMove, 200u, 0},
                                        {K::KeyUp, 300u, 0x1B}, {K::KeyDown, 400u, 0x1B}})
        QueueHeadlessEvent({.kind = kind, .time = pauseStart + at, .key = static_cast<uint16_t>(key)});
    RunTransition(28, 8, {0, 0, 64, 48}, picture, false);
    EXPECT_EQ(GetHeadlessState().clockMs, StepsEnd((pauseStart + 400) / kStepTickMs, 8, 16, 16));
    EXPECT_EQ(GetHeadlessState().events.size(), 4u);
}

// Each step hands the blend so far to the fade hook, reaching the new colours on the last.
TEST_F(TransitionTest, AFadingPaletteBlendsAtEveryStep) {
    gAnimated.clear();
    GetPaletteState().animate = RecordAnimated;
    PaletteEntry black[kPaletteSize] = {}, white[kPaletteSize];
    for (PaletteEntry& e : white) e = {255, 255, 255, 0};
    NoteColors(black);
    NoteColors(white);
    const Surface picture = Scene(64, 64);
    RunTransition(11, 8, {0, 0, 64, 40}, picture, true);
    ASSERT_EQ(gAnimated.size(), 40u);
    // 255 * (256 / 40) / 256 first.
    EXPECT_EQ((std::vector<int>{gAnimated[0][0].red, gAnimated[19][0].red, gAnimated[39][0].red}),
              (std::vector<int>{5, 127, 255}));
}

TEST_F(TransitionTest, PrepareFadeMovesPixelsOffColoursOnlyReservedEntriesHave) {
    ForceDisplayDepth(8);
    PaletteRef palette = NewPalette(kPaletteSize);
    for (uint32_t i = 0; i < kPaletteSize; ++i) {
        const auto grey = static_cast<uint8_t>(i >= 10 && i < 246 ? i - 10 : 200);
        palette->entries[i] = {grey, grey, grey, 0};
    }
    palette->entries[0] = {0x12, 0x34, 0x56, 0};    // in no other entry
    palette->entries[255] = {0x80, 0x80, 0x80, 0};  // a grey as well
    RealizePalette(*palette);
    const uint32_t lone = 0x123456, shared = 0x808080, unlisted = 0xFF00FF;
    const auto run = [&](int16_t id) {
        Scene(3, 1);
        Surface& window = GetHeadlessState().window = Surface(3, 1);  // below the window's least size
        window.pixels = {lone, shared, unlisted};
        PrepareFade(id);
        return window.pixels;
    };
    // The grey nearest by the eye's weights: (2 * 0x56 + 4 * 0x34 + 3 * 0x12) / 9 = 48.
    EXPECT_EQ(run(5), (std::vector<uint32_t>{0x303030, shared, unlisted}));
    EXPECT_EQ(GetHeadlessState().screen.pixels[0], 0x303030u);
    EXPECT_EQ(run(27), (std::vector<uint32_t>{0x303030, shared, unlisted}));
    EXPECT_EQ(run(14), (std::vector<uint32_t>{lone, shared, unlisted}));
    ForceDisplayDepth(16);
    EXPECT_EQ(run(6), (std::vector<uint32_t>{lone, shared, unlisted}));
}

}  // namespace
