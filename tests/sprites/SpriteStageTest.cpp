// The sprite engine on the virtual clock: where an actor stands after each step, what reaches the
// window (behind items, over them, overlapping, stamping), and how actors start, end and stop.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "actions/RunAction.h"
#include "base/StateRegistry.h"
#include "card/OffscreenCard.h"
#include "gfx/Palette.h"
#include "platform/Host.h"
#include "platform/headless/HeadlessHost.h"
#include "player/Navigation.h"
#include "player/StackFlows.h"
#include "sprites/Sprites.h"
#include "sprites/Stage.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackReader.h"
#include "subsystems/Subsystems.h"
#include "support/SpriteBytes.h"
#include "support/StackBytes.h"
#include "transitions/Transition.h"

namespace {

constexpr uint32_t kRed = 0xC02020;
constexpr uint32_t kBlue = 0x2020C0;
const Rect kButton = {60, 0, 80, 40};

class SpriteStageTest : public testing::Test {
protected:
    void SetUp() override {
        InitPathSlots();
        SetHost(HeadlessHost());
        ResetAllState();
        SetHeadlessWindowSize(120, 40);
    }
    void TearDown() override {
        ResetAllState();
        RemoveTempFiles();
    }
    // A white card of 120 by 40 at 32 bits with one button over x 60 to 80, on show.
    void ShowCardWithButton() {
        const Bytes stack = StoredStack({.depth = 32, .cardWidth = 120, .cardHeight = 40},
                                        {StoredCard(1, "Film", {StoredButton(3, kButton, 2, "B")})}, {});
        LoadFault fault;
        ASSERT_EQ(ReadStackFile(WriteTempFile("film.stk", stack), &fault), 0) << fault.detail;
        ASSERT_EQ(PrepareOpenedStack(), 0);
        ASSERT_EQ(InitPalette(), 0);
        ASSERT_TRUE(InitDataBase(120, 40, 32, true));
        Document& doc = GetDocument();
        doc.currentCard = GetCardByPosition(1);
        DrawCard(doc.currentCard, kTransitionFastest, 8, true);
    }
    static void Start(const SpriteParts& parts, uint16_t owner = 7) {
        const Bytes bytes = SpriteBytes(parts);
        ASSERT_EQ(StartActor(bytes.data(), static_cast<uint32_t>(bytes.size()), owner), 0);
    }
    // Steps at `ms` after the start of the test's clock.
    void StepAt(uint32_t ms) {
        AdvanceHeadlessClock(ms - elapsed_);
        elapsed_ = ms;
        StepSprites();
    }
    static size_t ActorCount() {
        size_t n = 0;
        if (const auto& stage = GetSpriteState().stage) {
            for (const Layer& l : stage->layers) n += l.actors.size();
        }
        return n;
    }
    static Rect FirstActorRect() {
        const auto& stage = GetSpriteState().stage;
        if (!stage || stage->layers.empty() || stage->layers[0].actors.empty()) return {};
        return stage->layers[0].actors[0]->rect;
    }
    static Surface Window() { return GetHeadlessState().window; }
    static Surface Part(const Surface& s, const Rect& r) {
        Surface out(r.Width(), r.Height());
        for (int32_t y = r.top; y < r.bottom; ++y)
            for (int32_t x = r.left; x < r.right; ++x) out.Row(y - r.top)[x - r.left] = s.Row(y)[x];
        return out;
    }
    uint32_t elapsed_ = 0;
};

// Points 0, 20, 40, 60 on y 10, one each 100 ms; each step at a multiple of 100 ms. A row lists
// the actor's left edge at the start and after each step, -1 once it has ended: an actor ends in
// the step that finds it done, and leaves the stage in that step.
TEST_F(SpriteStageTest, ActorsFollowTheirPathAndTimers) {
    const struct {
        const char* what;
        std::vector<SpriteField> fields;
        std::vector<int32_t> lefts;
    } cases[] = {
        {"forward, to the end", {}, {0, 20, 40, 60, -1}},
        {"backward, from the last point", {{kSprtPathMode, 2, 2}, {kSprtStartPathIndex, 4, 3}}, {60, 40, 20, 0, -1}},
        {"ping-pong, there and back", {{kSprtPathMode, 2, 3}}, {0, 20, 40, 60, 40, 20, -1}},
        {"ping-pong, twice", {{kSprtPathMode, 2, 3}, {kSprtPathLoopLimit, 4, 2}}, {0, 20, 40, 60, 40, 20, 0, 20, 40, 60, 40, 20, -1}},
        {"loop, once round", {{kSprtPathMode, 2, 4}}, {0, 20, 40, 60, -1}},
        {"loop, twice round", {{kSprtPathMode, 2, 4}, {kSprtPathLoopLimit, 4, 2}}, {0, 20, 40, 60, 0, 20, 40, 60, -1}},
        {"until stopped", {{kSprtPathMode, 2, 4}, {kSprtEndMode, 2, 0}}, {0, 20, 40, 60, 0, 20, 40, 60, 0, 20}},
        {"end timer of no seconds", {{kSprtPathMode, 2, 4}, {kSprtEndMode, 2, 2}, {kSprtEndSeconds, 4, 0}}, {0, -1}},
        {"one pass", {{kSprtEndMode, 2, 1}}, {0, 20, 40, 60, -1}},
        // A timer is rearmed when its step is served, so late steps move the rest along.
        {"a step each 250 ms", {{kSprtPathRate, 4, 250}}, {0, 0, 0, 20, 20, 20, 40, 40, 40, 60, 60, 60, -1}},
        {"times by point at 200 %", {{kSprtPathTimeSource, 2, 1}, {kSprtSpeedPercent, 4, 200}}, {0, 0, 20, 20, 40, 40, 60, 60, -1}},
        {"a step of two", {{kSprtPathStep, 4, 2}}, {0, 40, -1}},
    };
    for (const auto& c : cases) {
        ResetAllState();
        elapsed_ = 0;
        SpriteParts parts;
        parts.fields = c.fields;
        Start(parts);
        std::vector<int32_t> lefts = {FirstActorRect().left};
        for (uint32_t t = 100; lefts.size() < c.lefts.size(); t += 100) {
            StepAt(t);
            lefts.push_back(ActorCount() ? FirstActorRect().left : -1);
            if (ActorCount()) {
                EXPECT_EQ(FirstActorRect(), OffsetRect({0, 10, 8, 18}, lefts.back(), 0)) << c.what;
            }
        }
        EXPECT_EQ(lefts, c.lefts) << c.what;
    }
}

TEST_F(SpriteStageTest, EndTimerRunsItsSeconds) {
    SpriteParts parts;
    parts.fields = {{kSprtPathMode, 2, 4}, {kSprtEndMode, 2, 2}, {kSprtEndSeconds, 4, 1}};
    Start(parts);
    StepAt(999);
    EXPECT_EQ(ActorCount(), 1u);
    StepAt(1000);
    EXPECT_EQ(ActorCount(), 0u);
    EXPECT_FALSE(GetSpriteState().stage) << "the last actor's end frees the stage";
}

// Frames: red, blue, green; frame loops end it after one pass of the three. A film stored a frame
// at a time shows the same, each frame from its own picture.
TEST_F(SpriteStageTest, FramesAdvanceOnTheirOwnTimer) {
    for (const bool perFrame : {false, true}) {
        ResetAllState();
        elapsed_ = 0;
        SpriteParts parts;
        parts.perFrame = perFrame;
        parts.frameColors = {kRed, kBlue, 0x20C020};
        parts.points = {{30, 5, 0}};
        parts.fields = {{kSprtEndMode, 2, 4}};
        Start(parts);
        std::vector<uint32_t> colors;
        for (uint32_t t = 0; t <= 300; t += 100) {
            StepAt(t);
            colors.push_back(Window().Row(8)[33]);
        }
        EXPECT_EQ(colors, (std::vector<uint32_t>{kRed, kBlue, 0x20C020, 0x20C020})) << perFrame;
        EXPECT_EQ(ActorCount(), 0u) << perFrame;
        EXPECT_EQ(Window().Row(5)[30], kWhite) << "the transparent corner shows what is under it";
    }
}

// A film stored a frame at a time whose rows point outside its frame data, or at bytes that are no
// picture, is not started; nor is one that would have to mirror.
TEST_F(SpriteStageTest, DamagedPerFrameRowsAreRefused) {
    SpriteParts parts;
    parts.perFrame = true;
    parts.frameColors = {kRed, kBlue, 0x20C020};
    const Bytes good = SpriteBytes(parts);
    const uint32_t filmAt = kSprtFixedSize + ReadBE32(&good[kSprtPathSize]);
    const auto row = [&](uint32_t frame, uint32_t at) {
        return filmAt + kFilmFrameRows + kFilmFrameRowSize * frame + at;
    };
    const uint32_t dataSize = ReadBE32(&good[filmAt + kFilmBlobSizes + 4]);
    const uint32_t lastAt = ReadBE32(&good[row(2, kFrameRowDataPosition)]);
    const struct {
        const char* what;
        uint32_t offset, value;  // a u32 written over the stored one; no offset leaves it whole
        int32_t result;
    } cases[] = {
        {"whole", 0, 0, 0},
        {"a later frame sharing an earlier frame's picture", row(2, kFrameRowDataPosition), 0, 0},
        {"position past the frame data", row(1, kFrameRowDataPosition), dataSize + 1, -1},
        {"size past the frame data", row(2, kFrameRowDataSize), dataSize - lastAt + 1, -1},
        {"position and size that wrap round", row(2, kFrameRowDataSize), 0xFFFFFFFF - lastAt + 2, -1},
        {"no bytes", row(1, kFrameRowDataSize), 0, -1},
        {"bytes that are no picture", row(1, kFrameRowDataPosition), 2, -1},
        {"a frame larger than its picture", row(1, kFrameRowSourceRect + 4), 0x00090008, -1},
        {"no frame data at all", filmAt + kFilmBlobSizes + 4, 0, -1},
        {"a kind past the known", filmAt + kFilmKind, 0x00030000, -1},
        {"mirroring at the end", kSprtMirrorAtEnd, 0x01000000, -1},
    };
    for (const auto& c : cases) {
        ResetAllState();
        Bytes bytes = good;
        if (c.offset) WriteBE32(&bytes[c.offset], c.value);
        EXPECT_EQ(StartActor(bytes.data(), static_cast<uint32_t>(bytes.size()), 7), c.result) << c.what;
        EXPECT_EQ(ActorCount(), c.result == 0 ? 1u : 0u) << c.what;
    }
}

// At the far end of a ping-pong path the return leg's settings come in: a change of overItems hides
// the actor for the one step of the turn, and a film that mirrors shows its frames flipped.
TEST_F(SpriteStageTest, APingPongTurnTakesTheReturnLegsSettings) {
    SpriteParts parts;
    parts.frameColors = {kRed};
    parts.points = {{0, 10, 0}, {20, 10, 0}, {40, 10, 0}};
    parts.fields = {{kSprtPathMode, 2, 3}, {kSprtOverItems + 2, 1, 1}, {kSprtMirrorAtEnd, 1, 1}, {kSprtPathLoopLimit, 4, 2}};
    Start(parts);
    std::vector<std::string> seen;
    for (uint32_t t = 100; t <= 400; t += 100) {
        StepAt(t);
        ASSERT_EQ(ActorCount(), 1u) << t;
        const Actor& a = *GetSpriteState().stage->layers[0].actors[0];
        seen.push_back(std::to_string(a.rect.left) + (a.visible ? "" : " hidden") + (a.overItems ? " over" : "") +
                       (a.images.showingMirrored ? " mirrored" : ""));
        if (t == 300) {
            EXPECT_EQ(Window().Row(10)[27], kWhite) << "a mirrored frame's transparent corner at its top right";
            EXPECT_EQ(Window().Row(10)[20], kRed);
        }
    }
    // Back at the start the forward leg comes in again, unmirrored.
    EXPECT_EQ(seen, (std::vector<std::string>{"20", "40 hidden over mirrored", "20 over mirrored", "0 hidden"}));
}

// Behaviour 4 links the frames to the path: one frame for each step, whatever the frame timer says.
TEST_F(SpriteStageTest, TheLinkedFormAdvancesAFrameWithEachStep) {
    SpriteParts parts;
    parts.frameColors = {kRed, kBlue, 0x20C020};
    parts.fields = {{kSprtBehaviour, 2, 4}, {kSprtFrameRate, 4, 1000}};
    Start(parts);
    std::vector<uint32_t> colors;
    for (uint32_t t = 50; t <= 350; t += 50) {
        StepAt(t);
        const Rect r = FirstActorRect();
        colors.push_back(Window().Row(r.top + 4)[r.left + 4]);
    }
    EXPECT_EQ(colors, (std::vector<uint32_t>{kRed, kBlue, kBlue, 0x20C020, 0x20C020, kRed, kRed}));
}

TEST_F(SpriteStageTest, AFilmShownWithItsCardStampsItsFirstFrame) {
    for (const uint32_t show : {0u, 1u}) {
        SpriteParts parts;
        parts.frameColors = {kBlue, kRed};
        parts.fields = {{kSprtShowWithCard, 1, show}};
        Bytes sub(32, 0);
        WriteBE16(&sub[0], 56);
        const Bytes film = SpriteBytes(parts);
        sub.insert(sub.end(), film.begin(), film.end());
        WriteBE32(&sub[12], static_cast<uint32_t>(sub.size()));
        WriteBE16(&sub[22], 0);
        const Bytes stack = StoredStack({.depth = 32, .cardWidth = 120, .cardHeight = 40},
                                        {StoredCard(1, "Film", {StoredButton(3, kButton, 2, "B", 0, sub)})}, {});
        LoadFault fault;
        ASSERT_EQ(ReadStackFile(WriteTempFile("shown.stk", stack), &fault), 0) << fault.detail;
        Surface card(120, 40);
        DrawCardSprites(GetCardByPosition(1), card);
        EXPECT_EQ(card.Row(14)[4], show ? kBlue : kWhite) << show;
        EXPECT_EQ(card.Row(10)[0], kWhite) << "its transparent corner";
        ResetAllState();
    }
}

TEST_F(SpriteStageTest, FilmsPassBehindItemsUnlessOverItems) {
    ShowCardWithButton();
    const Surface buttonBefore = Part(Window(), kButton);
    for (const bool over : {false, true}) {
        ResetAllState();
        ShowCardWithButton();
        elapsed_ = 0;
        SpriteParts parts;
        parts.points = {{40, 10, 0}, {56, 10, 0}, {66, 10, 0}, {76, 10, 0}, {90, 10, 0}};
        parts.fields = {{kSprtOverItems + 1, 1, over}};
        Start(parts);
        bool buttonTouched = false;
        for (uint32_t t = 100; t <= 500; t += 100) {
            StepAt(t);
            buttonTouched |= Part(Window(), kButton).pixels != buttonBefore.pixels;
        }
        EXPECT_EQ(buttonTouched, over) << (over ? "over items" : "behind items");
        EXPECT_EQ(Window().Row(12)[92], kRed) << "the film shows beside the button";
        EXPECT_EQ(Part(Window(), kButton).pixels, buttonBefore.pixels) << "the button whole again once it has passed";
    }
}

// A still red actor and a blue one moving over it: the red keeps every pixel where blue has left.
TEST_F(SpriteStageTest, OverlappingActorsKeepEachOtherIntact) {
    SpriteParts still;
    still.frameWidth = 16;
    still.points = {{40, 10, 0}};
    still.fields = {{kSprtEndMode, 2, 0}};
    Start(still, 1);
    SpriteParts moving;
    moving.frameColors = {kBlue};
    moving.points = {{30, 14, 0}, {38, 14, 0}, {46, 14, 0}, {54, 14, 0}, {70, 14, 0}};
    moving.fields = {{kSprtLayerMode, 2, 1}};
    Start(moving, 2);
    for (uint32_t t = 100; t <= 400; t += 100) {
        StepAt(t);
        const Rect blue = GetSpriteState().stage->layers.back().actors[0]->rect;
        for (int32_t y = 10; y < 18; ++y) {
            for (int32_t x = 40; x < 56; ++x) {
                const bool corner = x == 40 && y == 10;
                const bool underBlue = blue.Contains(x, y) && !(x == blue.left && y == blue.top);
                const uint32_t expected = underBlue ? kBlue : corner ? kWhite : kRed;
                ASSERT_EQ(Window().Row(y)[x], expected) << "at " << x << "," << y << " after " << t << " ms";
            }
        }
    }
}

TEST_F(SpriteStageTest, StampsLeaveATrailUntilTheCardIsRedrawn) {
    ShowCardWithButton();
    SpriteParts parts;
    parts.fields = {{kSprtStamps + 1, 1, 1}, {kSprtEndVisible, 1, 0}};
    Start(parts);
    for (uint32_t t = 50; t <= 450; t += 100) StepAt(t);
    EXPECT_EQ(ActorCount(), 0u);
    // Every place it stood, though it vanished at its end.
    for (const int32_t x : {3, 23, 43}) EXPECT_EQ(Window().Row(14)[x], kRed) << x;
    RepaintRect(0, 0, 120, 40);
    EXPECT_EQ(Window().Row(14)[3], kWhite);
    EXPECT_EQ(Window().Row(14)[43], kWhite);
}

TEST_F(SpriteStageTest, ASecondStartRunsASecondActorOnlyWhenRestartable) {
    for (const uint32_t restartable : {0u, 1u}) {
        ResetAllState();
        SpriteParts parts;
        parts.fields = {{kSprtRestartable, 1, restartable}};
        Start(parts, 5);
        Start(parts, 5);
        Start(parts, 6);
        EXPECT_EQ(ActorCount(), restartable ? 3u : 2u) << restartable;
    }
}

TEST_F(SpriteStageTest, RunningMeansWaitedFor) {
    const struct {
        const char* what;
        std::vector<SpriteField> fields;
        bool running;
    } cases[] = {
        {"a film on its path", {}, true},
        {"a still picture", {{kSprtBehaviour, 2, 0}}, false},
        {"a film that runs until stopped", {{kSprtEndMode, 2, 0}}, false},
    };
    for (const auto& c : cases) {
        ResetAllState();
        SpriteParts parts;
        parts.fields = c.fields;
        Start(parts, 9);
        EXPECT_EQ(IsSpriteRunning(9), c.running) << c.what;
        EXPECT_FALSE(IsSpriteRunning(8)) << c.what;
    }
}

// An action's wait holds until the film has gone its path; a still picture is not waited for.
TEST_F(SpriteStageTest, AnActionWaitsForItsFilm) {
    const struct {
        const char* what;
        std::vector<SpriteField> fields;
        uint32_t waitedMs;
    } cases[] = {
        {"a film on a path of 400 ms", {}, 408},  // the wait's rounds are 17 ms apart
        {"a still picture", {{kSprtBehaviour, 2, 0}}, 0},
    };
    for (const auto& c : cases) {
        ResetAllState();
        Subsystems& s = GetSubsystems();
        s.PlaySpriteFilm = PlaySpriteFilm;
        s.SpriteStep = StepSprites;
        s.RunSpriteTimers = TickSpriteTimers;
        s.IsSpriteFilmRunning = IsSpriteRunning;
        s.StopSprites = StopSprites;
        SpriteParts parts;
        parts.fields = c.fields;
        ASSERT_EQ(s.PlaySpriteFilm(BlockOf(SpriteBytes(parts)), 4), 1);
        const uint32_t start = GetHost().GetTickCount();
        WaitForActionMedia(true, false, false, 4);
        EXPECT_EQ(GetHost().GetTickCount() - start, c.waitedMs) << c.what;
        EXPECT_FALSE(GetSpriteState().stage) << c.what << ": the wait's end stops the sprites";
    }
}

TEST_F(SpriteStageTest, LeavingTheCardStopsEveryActor) {
    ShowCardWithButton();
    Start({}, 1);
    Start({}, 2);
    ASSERT_EQ(ActorCount(), 2u);
    GetSubsystems().StopSprites = StopSprites;
    LeaveCard(false);
    EXPECT_FALSE(GetSpriteState().stage);
    StepAt(100);
    EXPECT_FALSE(GetSpriteState().stage);
}

TEST_F(SpriteStageTest, APayloadThatIsNoFilmIsLeftToTheCaller) {
    const MemRef block = NewMemRef(40);
    EXPECT_EQ(PlaySpriteFilm(block, 1), 0);
    const Bytes film = SpriteBytes({});
    EXPECT_EQ(PlaySpriteFilm(BlockOf(film), 1), 1);
    EXPECT_EQ(ActorCount(), 1u);
    Bytes damaged = film;
    WriteBE32(&damaged[kSprtPathSize], 1u << 30);
    EXPECT_EQ(PlaySpriteFilm(BlockOf(damaged), 2), 1) << "a damaged film is taken and dropped";
    EXPECT_EQ(ActorCount(), 1u);
}

}  // namespace
