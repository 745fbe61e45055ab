// `render --replay` and `play --record`: the events file read and written, a replay that gives the
// same frame every time, and a live headless session whose recording replays to its final frame.
#ifdef QB_WITH_CLI

#include <gtest/gtest.h>


#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>
#include <vector>

#include "CardWindow.h"
#include "Commands.h"
#include "EventRecorder.h"
#include "EventScript.h"
#include "OpenForCommand.h"
#include "PngFile.h"
#include "host/MainLoop.h"
#include "host/WindowProc.h"
#include "platform/headless/HeadlessHost.h"
#include "support/CommandFixture.h"

namespace {

namespace fs = std::filesystem;

const std::string kStack = std::string(QB_FIXTURES_DIR) + "/sample-cards.stk";

struct ErrorCase {
    const char* text;
    const char* error;  // a part of the reason given
};

TEST(EventScript, RejectsWhatIsNotAScriptAndNamesTheEvent) {
    const ErrorCase cases[] = {
        {"[{\"at\": 0,", "not valid JSON"},
        {"{\"at\": 0}", "must be a JSON list"},
        {"[{\"at\": 0}]", "event 1: no \"event\" name"},
        {"[{\"at\": 0, \"event\": \"wiggle\"}]", "event 1: unknown event \"wiggle\""},
        {"[{\"event\": \"mousedown\"}]", "no \"at\" time"},
        {"[{\"at\": -5, \"event\": \"mousedown\"}]", "\"at\" must be a whole number"},
        {"[{\"at\": 0, \"event\": \"mousedown\", \"button\": 3}]", "\"button\" must be"},
        {"[{\"at\": 0, \"event\": \"mousemove\", \"mods\": [\"meta\"]}]",
         "unknown modifier \"meta\""},
        {"[{\"at\": 0, \"event\": \"mousemove\", \"mods\": \"shift\"}]", "\"mods\" must be a list"},
        {"[{\"at\": 0, \"event\": \"keydown\"}]", "no \"key\""},
        {"[{\"at\": 0, \"event\": \"keydown\", \"key\": \"Nope\"}]", "unknown key \"Nope\""},
        {"[{\"at\": 0, \"event\": \"char\", \"key\": \"ab\"}]", "one character"},
        {"[{\"at\": 50, \"event\": \"mousemove\"}, {\"at\": 10, \"event\": \"mousemove\"}]",
         "event 2: \"at\" goes back in time"},
    };
    for (const ErrorCase& c : cases) {
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

HostEvent Event(HostEventKind kind, uint32_t time, int32_t x, int32_t y, uint32_t mods, int32_t button,
                int32_t clicks, uint16_t key, uint8_t ch) {
    HostEvent e;
    std::tie(e.kind, e.time, e.x, e.y, e.mods, e.button, e.clicks, e.key, e.ch) =
        std::make_tuple(kind, time, x, y, mods, button, clicks, key, ch);
    return e;
}

TEST(EventScript, WhatIsWrittenReadsBackAsTheSameEvents) {
    using K = HostEventKind;
    // Kind, time, x, y, mods, button, clicks, key, character.
    const std::vector<HostEvent> events = {
        Event(K::MouseDown, 0, -3, 479, kModShift | kModAlt, 1, 1, 0, 0),
        Event(K::MouseDown, 40, 0, 0, 0, 2, 2, 0, 0),  // a double click's second press, right button
        Event(K::MouseMove, 41, 7, 0, 0, 0, 1, 0, 0),  // no button held
        Event(K::KeyDown, 100, 0, 0, kModCtrl, 1, 1, 0x27, 0),  // Right
        Event(K::KeyUp, 100, 0, 0, 0, 1, 1, 0x10, 0),           // Shift
        Event(K::Char, 150, 0, 0, 0, 1, 1, 0, 0xE9),            // é
        Event(K::Char, 150, 0, 0, 0, 1, 1, 0, '\r'),
        Event(K::Char, 150, 0, 0, 0, 1, 1, 0, 0x80),            // €
        Event(K::FocusLost, 160, 0, 0, 0, 1, 1, 0, 0),          // no key: Shift and Ctrl let go
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

std::vector<uint32_t> ReadPixels(const std::string& path) {
    PngImage image;
    std::string error;
    if (!ReadPng(path, &image, &error)) {
        ADD_FAILURE() << path << ": " << error;
        return {};
    }
    std::vector<uint32_t> pixels(image.rgba.size() / 4);
    for (size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = Rgb(image.rgba[i * 4], image.rgba[i * 4 + 1], image.rgba[i * 4 + 2]);
    }
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
    std::string Write(const std::string& name, const std::string& text) const {
        const std::string path = (dir_ / name).string();
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }
    RenderOptions Options(const std::string& events, const std::string& out) const {
        RenderOptions options;
        options.path = kStack;
        options.replay = events;
        options.output = (dir_ / out).string();
        options.settleMs = 500;
        return options;
    }
};

TEST_F(Replay, GivesTheSameFrameEveryTimeAndTheLastFrameIsTheOneWritten) {
    const std::string events = Write("keys.json", kKeysScript);
    RenderOptions first = Options(events, "first.png");
    first.framesDir = (dir_ / "frames").string();
    ASSERT_EQ(RunQuietly(first), 0) << err_;
    ASSERT_EQ(RunQuietly(Options(events, "second.png")), 0) << err_;
    const std::vector<uint32_t> a = ReadPixels(first.output);
    ASSERT_EQ(a.size(), 640u * 480u);
    EXPECT_TRUE(a == ReadPixels((dir_ / "second.png").string()));

    // The events did something: without them the first card's picture stays.
    ASSERT_EQ(RunQuietly(Options(Write("none.json", "[]"), "none.png")), 0) << err_;
    EXPECT_FALSE(a == ReadPixels((dir_ / "none.png").string()));

    std::vector<std::string> frames;
    for (const auto& entry : fs::directory_iterator(first.framesDir))
        frames.push_back(entry.path().string());
    std::sort(frames.begin(), frames.end());
    ASSERT_GE(frames.size(), 3u) << "the first card, and the card change";
    EXPECT_EQ(fs::path(frames.front()).filename(), "frame-0000.png");
    EXPECT_TRUE(ReadPixels(frames.back()) == a);
}

TEST_F(Replay, BadEventFilesExitTwoAndSayWhy) {
    EXPECT_EQ(RunQuietly(Options(
                  Write("bad.json", "[{\"at\": 1, \"event\": \"keydown\", \"key\": \"Nope\"}]"),
                  "x.png")),
              2);
    EXPECT_NE(err_.find("bad.json: event 1: unknown key \"Nope\""), std::string::npos) << err_;
    EXPECT_EQ(RunQuietly(Options((dir_ / "missing.json").string(), "x.png")), 2);
    EXPECT_NE(err_.find("cannot read"), std::string::npos) << err_;
    EXPECT_FALSE(fs::exists(dir_ / "x.png"));
}

// A session run live on the headless host, recorded as `play --record` records, replays to the
// frame the live session ended on.
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

    ASSERT_EQ(
        RunQuietly(Options(Write("recorded.json", EventScriptText(recorded)), "replayed.png")), 0)
        << err_;
    EXPECT_TRUE(ReadPixels((dir_ / "replayed.png").string()) == live.pixels);
}

}  // namespace

#endif  // QB_WITH_CLI
