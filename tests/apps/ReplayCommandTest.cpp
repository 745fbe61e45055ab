// `render --replay` and `play --record`: the events file read and written, and a live headless
// session whose recording replays, frame by frame, to its final frame.
#ifdef QB_WITH_CLI

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "CardWindow.h"
#include "Commands.h"
#include "EventRecorder.h"
#include "EventScript.h"
#include "OpenForCommand.h"
#include "PngFile.h"
#include "card/DisplayList.h"
#include "host/MainLoop.h"
#include "host/WindowProc.h"
#include "platform/headless/HeadlessHost.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "support/CommandFixture.h"
#include "support/HeardSound.h"
#if QB_GOLDEN_TESTS
#include "support/Golden.h"
#endif

namespace {

namespace fs = std::filesystem;

const std::string kStack = std::string(QB_FIXTURES_DIR) + "/sample-cards.stk";

TEST(EventScript, RejectsWhatIsNotAScriptAndNamesTheEvent) {
    struct Case { const char* text; const char* error; /* a part of the reason given */ };
    const Case cases[] = {
        {"[{\"at\": 0,", "not valid JSON"},
        {"[{\"at\": 0}]", "event 1: no \"event\" name"},
        {"[{\"at\": 0, \"event\": \"wiggle\"}]", "event 1: unknown event \"wiggle\""},
        {"[{\"at\": -5, \"event\": \"mousedown\"}]", "\"at\" must be a whole number"},
        {"[{\"at\": 0, \"event\": \"mousemove\", \"mods\": [\"meta\"]}]", "unknown modifier \"meta\""},
        {"[{\"at\": 0, \"event\": \"keydown\", \"key\": \"Nope\"}]", "unknown key \"Nope\""},
        {"[{\"at\": 50, \"event\": \"mousemove\"}, {\"at\": 10, \"event\": \"mousemove\"}]", "event 2: \"at\" goes back in time"},
    };
    for (const Case& c : cases) {
        std::vector<HostEvent> events;
        std::string error;
        EXPECT_FALSE(ParseEventScript(c.text, &events, &error)) << c.text;
        EXPECT_NE(error.find(c.error), std::string::npos) << c.text << " gave: " << error;
    }
}

// Every field a script carries, for comparing events whole.
auto Fields(const HostEvent& e) {
    return std::make_tuple(static_cast<int>(e.kind), e.time, e.x, e.y, e.mods, e.button, e.clicks, e.key, e.ch);
}

TEST(EventScript, WhatIsWrittenReadsBackAsTheSameEvents) {
    using K = HostEventKind;
    const std::vector<HostEvent> events = {
        {.kind = K::MouseDown, .x = -3, .y = 479, .mods = kModShift | kModAlt},
        {.kind = K::MouseDown, .time = 40, .button = 2, .clicks = 2},  // a double click's second press, right button
        {.kind = K::KeyDown, .time = 100, .mods = kModCtrl, .key = 0x27},  // Right
        {.kind = K::Char, .time = 150, .ch = 0x80},                        // €
        {.kind = K::FocusLost, .time = 160},                               // no key: Shift and Ctrl let go
    };
    std::vector<HostEvent> back;
    std::string error;
    const std::string text = EventScriptText(events);
    ASSERT_TRUE(ParseEventScript(text, &back, &error)) << error << "\n" << text;
    ASSERT_EQ(back.size(), events.size()) << text;
    for (size_t i = 0; i < events.size(); ++i) EXPECT_EQ(Fields(back[i]), Fields(events[i])) << i;
    // The keys are written by the names SDL gives them.
    EXPECT_NE(text.find("\"key\":\"Right\""), std::string::npos) << text;
    EXPECT_NE(text.find("\"mods\":[\"shift\",\"alt\"]"), std::string::npos) << text;
}

// A PNG's pixels as a surface holds them.
std::vector<uint32_t> ReadPixels(const std::string& path) {
    const PngImage image = ReadImage(path);
    std::vector<uint32_t> pixels(image.rgba.size() / 4);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = Rgb(image.rgba[i * 4], image.rgba[i * 4 + 1], image.rgba[i * 4 + 2]);
    return pixels;
}

// A click on "Forward" moves on from the picture card "Cover"; End, on cards without the menu,
// does nothing.
constexpr const char* kKeysScript = R"([
  {"at": 100, "event": "mousedown", "x": 120, "y": 440, "mods": []},
  {"at": 160, "event": "mouseup", "x": 120, "y": 440, "mods": []},
  {"at": 400, "event": "mousemove", "x": 320, "y": 200, "button": 0, "mods": []},
  {"at": 500, "event": "keydown", "key": "End", "mods": []},
  {"at": 540, "event": "keyup", "key": "End", "mods": []}
])";

class Replay : public CommandFixture {
protected:
    RenderOptions Options(const std::string& events, const std::string& out) const {
        RenderOptions options;
        options.path = kStack;
        options.replay = events;
        options.output = (dir_ / out).string();
        options.settleMs = 500;
        return options;
    }
};

// The demo greets with its chime from the first frame on; a contents button clicks when pressed.
TEST_F(Replay, AudioHoldsWhatTheDemoPlayed) {
    RenderOptions options = Options(Write("click.json", R"([
      {"at": 2500, "event": "mousedown", "x": 250, "y": 230, "mods": []},
      {"at": 2560, "event": "mouseup", "x": 250, "y": 230, "mods": []}])"), "end.png");
    options.path = QB_DEMO_STACK;
    options.audio = Path("heard.wav");
    ASSERT_EQ(RunQuietly(options), 0) << err_;
    SoundInfo info;
    MemRef wave = 0;
    ASSERT_EQ(ReadSoundFile(options.audio, &wave, &info), 1);
    EXPECT_EQ(std::vector<uint32_t>({info.bits, info.channels, info.rate}), std::vector<uint32_t>({16, 2, 22050}));
    std::vector<int16_t> heard(info.frames * 2);
    {
        MemRefLock lock(wave);
        std::memcpy(heard.data(), lock.data() + kWaveHeaderBytes, heard.size() * 2);
    }
    FreeMemRef(wave);
    EXPECT_EQ(FindInLeft(heard, DemoSoundAsPlayed("welcome.wav", 20000)), 0);
    EXPECT_NEAR(FindInLeft(heard, DemoSoundAsPlayed("click.wav", 800)), 2500 * 22050 / 1000, 22050 / 10);
}

// "Pictures" in the welcome text is a hot word that goes to the Pictures card (id 5); a click on its
// first letter is not on it.
TEST_F(Replay, AHotWordOfTheDemoGoesToItsCard) {
    const struct { int x; int16_t card; } clicks[] = {{62, 5}, {44, 1}};
    for (const auto& click : clicks) {
        RenderOptions options = Options(Write("hot.json", fmt::format(R"([
          {{"at": 2000, "event": "mousedown", "x": {0}, "y": 100, "mods": []}},
          {{"at": 2060, "event": "mouseup", "x": {0}, "y": 100, "mods": []}}])", click.x)), "hot.png");
        options.path = QB_DEMO_STACK;
        ASSERT_EQ(RunQuietly(options), 0) << err_;
        EXPECT_EQ(GetDocument().currentCardId, click.card) << click.x;
    }
}

// The About card's long field: a press on the track pages, and the lower arrow held down steps on
// with the tick until the last line is in view.
TEST_F(Replay, TheDemosLongFieldScrollsToItsEndWithItsBar) {
    RenderOptions options = Options(Write("scroll.json", R"([
      {"at": 2000, "event": "mousedown", "x": 390, "y": 380, "mods": []},
      {"at": 2060, "event": "mouseup", "x": 390, "y": 380, "mods": []},
      {"at": 5000, "event": "mousedown", "x": 590, "y": 340, "mods": []},
      {"at": 5060, "event": "mouseup", "x": 590, "y": 340, "mods": []},
      {"at": 5500, "event": "mousedown", "x": 590, "y": 360, "mods": []},
      {"at": 6500, "event": "mouseup", "x": 590, "y": 360, "mods": []}])"), "scroll.png");
    options.path = QB_DEMO_STACK;
    ASSERT_EQ(RunQuietly(options), 0) << err_;
    const DisplayItem* field = FindDisplayItem(kItemKindText, 405);
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->scrollValue, ScrollLimit(field->layout, field->textArea.bottom - field->textArea.top));
    EXPECT_GT(field->scrollValue, 0);
    EXPECT_EQ(field->pressedArrow, 0);
}
// The demo's Text card: a click below the text of its notes field puts the insertion point at
// the end, typing adds to it in the last run's style, and Backspace takes the last character back.
TEST_F(Replay, TheDemosNotesFieldTakesTyping) {
    RenderOptions options = Options(Write("typing.json", R"([
      {"at": 2000, "event": "mousedown", "x": 300, "y": 390, "mods": []},
      {"at": 2060, "event": "mouseup", "x": 300, "y": 390, "mods": []},
      {"at": 2100, "event": "char", "key": " ", "mods": []},
      {"at": 2150, "event": "char", "key": "é", "mods": []},
      {"at": 2200, "event": "char", "key": "t", "mods": []},
      {"at": 2250, "event": "char", "key": "é", "mods": []},
      {"at": 2300, "event": "char", "key": "\b", "mods": []}])"), "typing.png");
    options.path = QB_DEMO_STACK;
    options.card = 15;
    ASSERT_EQ(RunQuietly(options), 0) << err_;
    const DisplayItem* field = FindDisplayItem(kItemKindText, 1502);
    ASSERT_NE(field, nullptr);
    const std::string& text = field->document.text;
    EXPECT_EQ(text.substr(text.size() - 16), "in the stack. \xE9t");
    EXPECT_TRUE(field->dirty);
    EXPECT_EQ(field->selStart, text.size());
    EXPECT_FALSE(field->document.StyleAt(text.size() - 1).font.style & kStyleBold);
}
#if QB_GOLDEN_TESTS
// The demo's Sprites card (reached through Transitions and Next) with all four of its animations
// started: the bird behind the post, the balloon in front, the ball bouncing, the flag waving. Three
// moments after the last press, compared as pixels.
TEST_F(Replay, TheDemosSpritesMoveOverTheirCard) {
    const std::string events = Write("sprites.json", R"([
      {"at": 100, "event": "mousedown", "x": 390, "y": 330, "mods": []},
      {"at": 160, "event": "mouseup", "x": 390, "y": 330, "mods": []},
      {"at": 3000, "event": "mousedown", "x": 555, "y": 450, "mods": []},
      {"at": 3060, "event": "mouseup", "x": 555, "y": 450, "mods": []},
      {"at": 6000, "event": "mousedown", "x": 100, "y": 388, "mods": []},
      {"at": 6060, "event": "mouseup", "x": 100, "y": 388, "mods": []},
      {"at": 6100, "event": "mousedown", "x": 240, "y": 388, "mods": []},
      {"at": 6160, "event": "mouseup", "x": 240, "y": 388, "mods": []},
      {"at": 6200, "event": "mousedown", "x": 380, "y": 388, "mods": []},
      {"at": 6260, "event": "mouseup", "x": 380, "y": 388, "mods": []},
      {"at": 6300, "event": "mousedown", "x": 520, "y": 388, "mods": []},
      {"at": 6360, "event": "mouseup", "x": 520, "y": 388, "mods": []}])");
    for (const int32_t settle : {200, 700, 1200}) {
        RenderOptions options = Options(events, "sprites.png");
        options.path = QB_DEMO_STACK;
        options.settleMs = settle;
        ASSERT_EQ(RunQuietly(options), 0) << err_;
        EXPECT_EQ(GetDocument().currentCardId, 14);
        PngImage png;
        std::string error;
        ASSERT_TRUE(ReadPng(options.output, &png, &error)) << error;
        Surface shown(png.width, png.height);
        for (size_t i = 0; i < shown.pixels.size(); ++i) {
            shown.pixels[i] = Rgb(png.rgba[4 * i], png.rgba[4 * i + 1], png.rgba[4 * i + 2]);
        }
        ExpectMatchesGolden(shown, fmt::format("demo-sprites-{}", settle));
    }
}
#endif

TEST_F(Replay, BadEventFilesExitTwoAndSayWhy) {
    EXPECT_EQ(RunQuietly(Options(Write("bad.json", "[{\"at\": 1, \"event\": \"keydown\", \"key\": \"Nope\"}]"), "x.png")), 2);
    EXPECT_NE(err_.find("bad.json: event 1: unknown key \"Nope\""), std::string::npos) << err_;
    EXPECT_FALSE(fs::exists(dir_ / "x.png"));
}

// A session run live on the headless host, recorded as `play --record` records, replays to the
// frame the live session ended on, which is the last of the frames the replay writes.
TEST_F(Replay, ARecordedLiveSessionReplaysToItsLastFrame) {
    std::vector<HostEvent> script;
    std::string error;
    ASSERT_TRUE(ParseEventScript(kKeysScript, &script, &error)) << error;

    ResetHeadlessState();
    SetHost(HeadlessHost());
    ResetMainLoop();
    ResetWindowProc();
    testing::internal::CaptureStderr();
    const bool opened = OpenStackForCommand(kStack);
    err_ = testing::internal::GetCapturedStderr();
    ASSERT_TRUE(opened) << err_;
    FitWindowToCard();
    const uint32_t start = GetHost().GetTickCount();
    StartRecording(start);
    for (HostEvent e : script) {
        e.time += start;
        QueueHeadlessEvent(e);
    }
    RunMainLoop(start + script.back().time + 500);
    const std::vector<HostEvent> recorded = StopRecording();
    const Surface live = GetHeadlessState().screen;
    ASSERT_EQ(recorded.size(), script.size());
    EXPECT_EQ(recorded[3].time, 500u);

    RenderOptions replay = Options(Write("recorded.json", EventScriptText(recorded)), "replayed.png");
    replay.framesDir = (dir_ / "frames").string();
    ASSERT_EQ(RunQuietly(replay), 0) << err_;
    EXPECT_TRUE(ReadPixels(replay.output) == live.pixels);
    std::vector<std::string> frames;
    for (const auto& entry : fs::directory_iterator(replay.framesDir)) frames.push_back(entry.path().string());
    ASSERT_GE(frames.size(), 3u) << "the first card, and one card change per key at least";
    EXPECT_TRUE(ReadPixels(*std::max_element(frames.begin(), frames.end())) == live.pixels);
}

}  // namespace

#endif  // QB_WITH_CLI
