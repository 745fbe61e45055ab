// Clicks on the demo's transition buttons, replayed headless: from the first card to the
// Transitions card, then each button and Back again. Every change to the Arrived card runs its
// effect (frames between the two cards are presented) and ends on that card as `render --card`
// draws it.
#if defined(QB_WITH_CLI) && defined(QB_DEMO_STACK)

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Commands.h"
#include "PngFile.h"
#include "gfx/Surface.h"
#include "platform/headless/HeadlessHost.h"
#include "support/CommandFixture.h"

namespace {

namespace fs = std::filesystem;

const std::string kDemo = QB_DEMO_STACK;

// Cards of the demo, counted from 1.
constexpr int kTransitionsCard = 11;
constexpr int kArrivedCard = 13;

// A PNG's pixels, each as the four bytes of its RGBA in one word: equal words, equal pixels.
struct Picture {
    int32_t width = 0;
    std::vector<uint32_t> pixels;
};

Picture ReadPicture(const std::string& path) {
    PngImage image;
    std::string error;
    if (!ReadPng(path, &image, &error)) {
        ADD_FAILURE() << path << ": " << error;
        return {};
    }
    Picture picture;
    picture.width = image.width;
    picture.pixels.resize(image.rgba.size() / 4);
    std::memcpy(picture.pixels.data(), image.rgba.data(), picture.pixels.size() * 4);
    return picture;
}

// The pixels in which two pictures of the same size differ; every one of them for other sizes.
size_t Differences(const Picture& a, const Picture& b) {
    if (a.width != b.width || a.pixels.size() != b.pixels.size()) return a.pixels.size() + 1;
    size_t count = 0;
    for (size_t i = 0; i < a.pixels.size(); ++i) count += a.pixels[i] != b.pixels[i] ? 1 : 0;
    return count;
}

bool Same(const Picture& a, const Picture& b) { return Differences(a, b) == 0; }

// Whether `a` and `b` are the same picture apart from what lies inside `except`.
bool SameOutside(const Picture& a, const Picture& b, const Rect& except) {
    if (a.width != b.width || a.pixels.size() != b.pixels.size() || a.width <= 0) return false;
    const auto width = static_cast<size_t>(a.width);
    for (size_t i = 0; i < a.pixels.size(); ++i) {
        if (a.pixels[i] != b.pixels[i] &&
            !except.Contains(static_cast<int32_t>(i % width), static_cast<int32_t>(i / width)))
            return false;
    }
    return true;
}

// Whether some row of `frame` is neither that row of `from` nor that of `to`. A change of card
// without an effect copies whole rows, band by band, and never shows such a frame.
bool HasRowOfNeither(const Picture& frame, const Picture& from, const Picture& to) {
    if (frame.width <= 0 || frame.pixels.size() != from.pixels.size() ||
        frame.pixels.size() != to.pixels.size())
        return true;
    const auto width = static_cast<size_t>(frame.width);
    for (size_t row = 0; row < frame.pixels.size(); row += width) {
        const auto begin = frame.pixels.begin() + static_cast<std::ptrdiff_t>(row);
        const auto end = begin + static_cast<std::ptrdiff_t>(width);
        if (!std::equal(begin, end, from.pixels.begin() + static_cast<std::ptrdiff_t>(row)) &&
            !std::equal(begin, end, to.pixels.begin() + static_cast<std::ptrdiff_t>(row)))
            return true;
    }
    return false;
}

struct Button {
    const char* name;
    Rect rect;  // on the Transitions card
    // Dissolve's walk never reaches a few of its values, and those pixels keep the old card
    // until the next repaint; every other effect ends on the new card exactly.
    size_t leftOver = 0;
};

// Buttons of the Transitions card.
constexpr Button kLeftToRight = {"Left to right", {60, 120, 300, 160}};
constexpr Button kDissolve = {"Dissolve (slow)", {340, 120, 580, 160}, 16};
constexpr Button kFadeToButtonColor = {"Fade to button color", {340, 352, 580, 392}};
// The Welcome card's button to the Transitions card, and the Arrived card's Back.
constexpr Rect kContentsTransitions = {325, 312, 455, 348};
constexpr Rect kBack = {230, 270, 410, 306};

// Long enough for the slowest change of the tour to end before the next click.
constexpr uint32_t kChangeMs = 2500;

std::string Click(uint32_t at, const Rect& rect) {
    const std::string where = "\"x\": " + std::to_string((rect.left + rect.right) / 2) +
                              ", \"y\": " + std::to_string((rect.top + rect.bottom) / 2);
    return "{\"at\": " + std::to_string(at) + ", \"event\": \"mousedown\", " + where +
           ", \"button\": 1},\n{\"at\": " + std::to_string(at + 60) + ", \"event\": \"mouseup\", " +
           where + ", \"button\": 1}";
}

// The tour: to the Transitions card, then each button followed by Back.
std::string TourScript(const std::vector<Button>& buttons) {
    std::string script = "[" + Click(100, kContentsTransitions);
    uint32_t at = 100 + kChangeMs;
    for (const Button& button : buttons) {
        script += ",\n" + Click(at, button.rect) + ",\n" + Click(at + kChangeMs, kBack);
        at += 2 * kChangeMs;
    }
    return script + "]";
}

class DemoClick : public CommandFixture {
protected:
    Picture RenderCard(int card) {
        RenderOptions options;
        options.path = kDemo;
        options.card = card;
        options.output = Path("card-" + std::to_string(card) + ".png");
        EXPECT_EQ(RunQuietly(options), 0) << err_;
        return ReadPicture(options.output);
    }

    // Replays the tour of `buttons` and follows it through the frames it presented.
    void CheckTour(const std::vector<Button>& buttons);
};

void DemoClick::CheckTour(const std::vector<Button>& buttons) {
    const Picture transitions = RenderCard(kTransitionsCard);
    const Picture arrived = RenderCard(kArrivedCard);
    ASSERT_FALSE(transitions.pixels.empty());
    ASSERT_FALSE(Same(transitions, arrived));

    RenderOptions replay;
    replay.path = kDemo;
    replay.replay = Path("tour.json");
    std::ofstream(replay.replay) << TourScript(buttons);
    replay.output = Path("last.png");
    replay.framesDir = Path("frames");
    replay.settleMs = static_cast<int>(kChangeMs);
    ASSERT_EQ(RunQuietly(replay), 0) << err_;

    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(replay.framesDir))
        names.push_back(entry.path().string());
    std::sort(names.begin(), names.end());
    std::vector<Picture> frames;
    for (const std::string& name : names) frames.push_back(ReadPicture(name));

    // Walks the frames in order: each button's change starts from the Transitions card (the
    // tour's first arrival there, then each Back) and ends on the Arrived card.
    size_t at = 0;
    for (const Button& button : buttons) {
        SCOPED_TRACE(button.name);
        size_t shown = at;
        while (shown < frames.size() && !Same(frames[shown], transitions)) ++shown;
        ASSERT_LT(shown, frames.size()) << "the Transitions card did not show before the click";
        size_t arrival = shown + 1;
        const auto onArrived = [&](size_t i) {
            return Differences(frames[i], arrived) <= button.leftOver;
        };
        while (arrival < frames.size() && !onArrived(arrival)) ++arrival;
        ASSERT_LT(arrival, frames.size()) << "the Arrived card never showed as render draws it";
        // The change may end with a frame of its own: Dissolve's top row.
        while (arrival + 1 < frames.size() && onArrived(arrival + 1)) ++arrival;
        // The change begins after the last frame of the Transitions card, button pressed or not.
        size_t left = arrival - 1;
        while (left > shown && !SameOutside(frames[left], transitions, button.rect)) --left;
        bool between = false;
        for (size_t i = left + 1; i < arrival && !between; ++i)
            between = HasRowOfNeither(frames[i], transitions, arrived);
        EXPECT_TRUE(between) << "none of the change's " << arrival - left
                             << " frames lies between the cards: the effect did not run";
        // Nothing changed after the arrival until Back was pressed on it.
        ASSERT_LT(arrival + 1, frames.size());
        EXPECT_TRUE(SameOutside(frames[arrival + 1], frames[arrival], kBack) &&
                    !Same(frames[arrival + 1], frames[arrival]))
            << "frame " << arrival + 1 << " is not Back pressed on the arrived card";
        at = arrival + 1;
    }
    // The last Back came back to where the tour clicked.
    EXPECT_TRUE(Same(ReadPicture(replay.output), transitions));
}

// A wipe, the dissolve that leaves a few pixels, and a fade to the button's own colour.
TEST_F(DemoClick, ChangesRunTheirEffectAndArrive) {
    CheckTour({kLeftToRight, kDissolve, kFadeToButtonColor});
}

}  // namespace

#endif
