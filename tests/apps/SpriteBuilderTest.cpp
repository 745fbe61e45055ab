// Animations built from PNG files: the player reads the film's frames and path back as drawn, the
// frame-delta frames land on the pictures' pixels at every depth, and mistakes name their key.
#ifdef QB_WITH_CLI

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "PngFile.h"
#include "SpriteBuilder.h"
#include "base/ByteOrder.h"
#include "sprites/FrameDelta.h"
#include "sprites/SpriteRecord.h"
#include "sprites/Stage.h"
#include "support/CommandFixture.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Json = nlohmann::ordered_json;

class SpriteBuilder : public CommandFixture {
protected:
    // A 5 by 3 picture: colours by `seed`, and with `clear` the pixel (1, 1) transparent. Its RGB.
    std::vector<uint32_t> WriteFrame(const std::string& name, uint32_t seed, bool clear) const {
        std::vector<uint32_t> rgb;
        Bytes rgba;
        for (int32_t i = 0; i < 15; ++i) {
            // Colours of the default palette's grey ramp keep 8-bit cards exact.
            const uint8_t v = static_cast<uint8_t>(0x11 * ((i * 7 + seed * 3) % 16));
            const bool see = clear && i == 6;
            rgb.push_back(see ? 0xFF00FF : Rgb(v, v, v));
            rgba.insert(rgba.end(), {v, v, v, see ? uint8_t{0} : uint8_t{255}});
        }
        EXPECT_TRUE(WritePng(Path(name), 5, 3, rgba));
        return rgb;
    }
    static AnimationCard Card(int64_t depth) {
        AnimationCard card{depth, std::vector<PaletteEntry>(kPaletteSize)};
        for (uint32_t i = 0; i < 16; ++i) card.colors[i] = {static_cast<uint8_t>(0x11 * i), static_cast<uint8_t>(0x11 * i), static_cast<uint8_t>(0x11 * i), 0};
        card.colors[16] = {255, 0, 255, 0};
        return card;
    }
};

TEST_F(SpriteBuilder, FilmsReadBackFrameByFrameWithTheirPath) {
    for (const int64_t depth : {8, 16, 32}) {
        SCOPED_TRACE(depth);
        const std::vector<uint32_t> first = WriteFrame("a.png", 1, true), second = WriteFrame("b.png", 2, false);
        const Json sprite = Json::parse(R"({"frames": ["a.png", "b.png"], "points": [[10, 20], [30, 40, 250]],
                                            "path": "pingpong", "overItems": true, "returnOverItems": false, "loops": 3})");
        Bytes payload;
        AnimationBuildError error;
        ASSERT_TRUE(BuildSpriteFilm(sprite, dir_, Card(depth), &payload, &error)) << error.key << ": " << error.text;
        SpriteRecord r;
        ASSERT_EQ(ExpandSpriteRecord(payload.data(), static_cast<uint32_t>(payload.size()), &r), 0);
        EXPECT_EQ(r.pathMode, 3);
        EXPECT_EQ((std::vector<int>{r.overItems[1], r.overItems[2]}), (std::vector<int>{1, 0}));
        EXPECT_EQ(r.pathLoopLimit, 3u);
        ASSERT_EQ(r.points.size(), 2u);
        EXPECT_EQ((std::vector<uint32_t>{uint32_t(r.points[1].x), uint32_t(r.points[1].y), r.points[1].timeMs}),
                  (std::vector<uint32_t>{30, 40, 250}));
        EXPECT_EQ(r.points[0].timeMs, 100u) << "the path's rate where a point gives no time";
        FilmImages images;
        ASSERT_EQ(MakeFilmImages(r.film, &images), 0);
        ASSERT_EQ(images.frames.size(), 2u);
        for (int32_t i = 0; i < 15; ++i) {
            const int32_t x = i % 5, y = i / 5;
            const auto show = [&](uint32_t c) { return depth == 16 ? c & 0xF8F8F8 : c; };
            EXPECT_EQ(images.masks[0].Get(x, y), i != 6) << i;
            if (i != 6) {
                EXPECT_EQ(show(images.frames[0].Row(y)[x]), show(first[i])) << i;
            }
            EXPECT_EQ(show(images.frames[1].Row(y)[x]), show(second[i])) << i;
        }
    }
}

TEST_F(SpriteBuilder, FrameDeltaFramesLandOnThePicturesPixels) {
    for (const int64_t depth : {8, 16, 32}) {
        SCOPED_TRACE(depth);
        std::vector<std::vector<uint32_t>> frames;
        for (uint32_t n = 0; n < 3; ++n) frames.push_back(WriteFrame(std::to_string(n) + ".png", n, false));
        Bytes payload;
        AnimationBuildError error;
        ASSERT_TRUE(BuildFrameDelta(Json::parse(R"({"frames": ["0.png", "1.png", "2.png"], "repeats": 2})"), dir_,
                                    Card(depth), &payload, &error)) << error.text;
        // The head and the frames' sizes as a loaded stack holds them: native.
        for (uint32_t i = 0; i < 7; ++i) Write16(&payload[2 * i], ReadBE16(&payload[2 * i]));
        for (uint32_t at = kDeltaHeadSize; at < payload.size(); at += Read32(&payload[at + kDeltaFrameSize])) {
            Write16(&payload[at], ReadBE16(&payload[at]));
            Write32(&payload[at + kDeltaFrameSize], ReadBE32(&payload[at + kDeltaFrameSize]));
        }
        DeltaHead head;
        ASSERT_TRUE(ReadDeltaHead(payload.data(), static_cast<uint32_t>(payload.size()), &head));
        EXPECT_EQ(head.repeats, 2);
        uint32_t colors[kPaletteSize] = {};
        for (uint32_t i = 0; i < 16; ++i) colors[i] = 0x111111 * i;
        Bytes picture;
        for (uint32_t n = 1; n <= 3; ++n) {
            ASSERT_TRUE(ApplyDeltaFrame(payload.data(), static_cast<uint32_t>(payload.size()), head, n, &picture));
            const Surface shown = DeltaPictureSurface(picture, head, colors);
            for (int32_t i = 0; i < 15; ++i) {
                const uint32_t mask = depth == 16 ? 0xF8F8F8 : 0xFFFFFF;
                ASSERT_EQ(shown.Row(i / 5)[i % 5] & mask, frames[n - 1][static_cast<size_t>(i)] & mask) << n << ", " << i;
            }
        }
    }
}

TEST_F(SpriteBuilder, MistakesNameTheirKey) {
    WriteFrame("a.png", 1, false);
    EXPECT_TRUE(WritePng(Path("big.png"), 2, 2, Bytes(16, 255)));
    const struct {
        const char* json;
        const char* key;
    } cases[] = {
        {R"({"points": [[0, 0]]})", "frames"},
        {R"({"frames": ["a.png", "missing.png"], "points": [[0, 0]]})", "frames[1]"},
        {R"({"frames": ["a.png", "big.png"], "points": [[0, 0]]})", "frames[1]"},
        {R"({"frames": ["a.png"]})", "points"},
        {R"({"frames": ["a.png"], "points": [[0, 0], [1]]})", "points[1]"},
        {R"({"frames": ["a.png"], "points": [[0, 70000]]})", "points[0]"},
        {R"({"frames": ["a.png"], "points": [[0, 0]], "path": "sideways"})", "path"},
        {R"({"frames": ["a.png"], "points": [[0, 0]], "loops": 0})", "loops"},
    };
    for (const auto& c : cases) {
        Bytes payload;
        AnimationBuildError error;
        EXPECT_FALSE(BuildSpriteFilm(Json::parse(c.json), dir_, Card(8), &payload, &error)) << c.json;
        EXPECT_EQ(error.key, c.key) << c.json;
    }
}

}  // namespace

#endif  // QB_WITH_CLI
