// `quillbrook export`: the backgrounds and graphics of a stack as PNG files, its sounds as WAV
// files; group cards, and damaged pictures and sounds that are reported and skipped.
#ifdef QB_WITH_CLI

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Commands.h"
#include "PngFile.h"
#include "gfx/DibImage.h"
#include "pictures/Background.h"
#include "pictures/PackedPixels.h"
#include "support/CommandFixture.h"
#include "support/PictureMaker.h"
#include "support/SpriteBytes.h"
#include "support/StackBytes.h"

namespace {

namespace fs = std::filesystem;
using Rgb = std::array<int, 3>;

struct Png : PngImage {
    Rgb At(int32_t x, int32_t y) const {
        const uint8_t* p = rgba.data() + 4 * (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x));
        return {p[0], p[1], p[2]};
    }
};

Png Read(const fs::path& path) { return {ReadImage(path.string())}; }

std::vector<std::string> FilesIn(const fs::path& dir) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

struct Outcome { int code = 0; std::string out, err; };

Outcome ExportTo(const std::string& stack, const fs::path& dir) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int code = RunExport(stack, dir.string());
    std::string out = testing::internal::GetCapturedStdout();
    return {code, out, testing::internal::GetCapturedStderr()};
}

// Export makes its folder: the fixture's is taken away first.
class Export : public CommandFixture {
protected:
    void SetUp() override {
        CommandFixture::SetUp();
        fs::remove_all(dir_);
    }
};

TEST_F(Export, FixtureBackgroundKeepsItsColoursGroupCardsDoNotRepeatItAndOtherFilesAreRefused) {
    const Outcome run = ExportTo(std::string(QB_FIXTURES_DIR) + "/sample-cards.stk", dir_);
    ASSERT_EQ(run.code, 0) << run.err;
    // Card 2 (the first) owns the picture; card 3 (the second) shows it; the last two are blank.
    EXPECT_EQ(FilesIn(dir_), std::vector<std::string>{"card-001-background.png"});
    const Png png = Read(dir_ / "card-001-background.png");
    ASSERT_EQ((std::array{png.width, png.height}), (std::array{640, 480}));
    struct Case { int32_t x, y; Rgb rgb; };
    for (const Case& c : {Case{5, 5, {77, 51, 117}}, Case{10, 70, {88, 168, 24}}, Case{30, 70, {228, 28, 4}},
                          Case{5, 470, {34, 222, 178}}})
        EXPECT_EQ(png.At(c.x, c.y), c.rgb) << c.x << "," << c.y;
    // A stack that does not open gives the alert and exit code 1, and no pictures.
    fs::remove_all(dir_);
    const std::string notAStack = WriteTempFile("not-a-stack.stk", Bytes(300, 0x41));
    const Outcome bad = ExportTo(notAStack, dir_);
    EXPECT_EQ(bad.code, 1);
    EXPECT_NE(bad.err.find("alert"), std::string::npos) << bad.err;
    EXPECT_FALSE(fs::exists(dir_ / "card-001-background.png"));
}

// The fixture's field comes out as its facts say, with CR as a new line, and as plain text.
TEST_F(Export, FieldsComeOutAsJsonAndPlainText) {
    const Outcome run = ExportTo(std::string(QB_FIXTURES_DIR) + "/sample-media.stk", dir_);
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(ReadWholeFile((dir_ / "card-001.txt").string()), Of("A sample field\nwith two lines.\n"));
    const Bytes json = ReadWholeFile((dir_ / "card-001-text.json").string());
    const auto field = nlohmann::json::parse(json.begin(), json.end())["fields"][0];
    EXPECT_EQ(field["id"], 201);
    EXPECT_EQ(field["rect"], nlohmann::json({20, 20, 300, 90}));
    EXPECT_EQ(field["runs"][0]["size"], 14);
}

// ---- A stack made by hand: cards of 64 by 48 pixels at 8 bits.

constexpr int32_t kWidth = 64, kHeight = 48;

// A ColorTable of 256 entries: index i is (i, 255 - i, 3 * i mod 256).
Bytes ColorTableBytes() {
    Bytes t = {0, 0, 0, 0, 0, 0, 0, 255};  // the last index, 255
    for (int i = 0; i < 256; ++i) Append(t, {0, uint8_t(i), uint8_t(i), 0, uint8_t(255 - i), 0, uint8_t(3 * i), 0});
    return t;
}

// A kind 1 card whose chunk holds `palette` and image `data` of `format`, as stored.
Bytes PictureCard(uint16_t id, uint16_t format, const Bytes& palette, const Bytes& data, const std::vector<Bytes>& items = {}) {
    Bytes card = StoredCard(id, "P" + std::to_string(id), {}, 1);
    card.resize(96);
    PutBE16(card, 18, 8);
    Bytes chunk(24, 0);
    PutBE16(chunk, 0, 8);
    PutBE16(chunk, 2, format);
    PutBE32(chunk, 16, static_cast<uint32_t>(palette.size()));
    Append(chunk, palette);
    Append(chunk, data);
    if (chunk.size() % 2) {
        chunk.push_back(0);
        PutBE16(chunk, 10, 0x200);
    }
    PutBE32(chunk, 12, static_cast<uint32_t>(chunk.size()));
    Append(card, chunk);
    for (const Bytes& item : items) Append(card, item);
    Append(card, {0, 0, 0xFA, 0xCE});
    PutBE32(card, 2, static_cast<uint32_t>(card.size()));
    return card;
}

// Format 2 image data as stored: the run lengths turn big-endian.
Bytes StoredRuns(MemRef picture) {
    Bytes data = TakeBytes(CompressBackground(picture, false));
    PutBE32(data, 4, Read32(data.data() + 4));
    PutBE32(data, 12, Read32(data.data() + 12));
    return data;
}

TEST_F(Export, PicturesOfEveryKindAreWrittenAndDamagedOnesReportedAndSkipped) {
    const Bytes palette = ColorTableBytes();
    // The card picture: index 7 everywhere but a gradient band in the middle rows.
    const MemRef background = MakePicture(kWidth, kHeight, 8, Fill::Single, 7);
    {
        MemRefLock lock(background);
        for (int32_t x = 0; x < kWidth; ++x) SetPixel(lock.data(), x, 20, static_cast<uint32_t>(x + 100));
    }
    // A 6 by 4 graphic of indices 0 to 23, run-packed, and a row-packed one cut short.
    const MemRef graphic = NewDibImage(6, 4, 8);
    {
        MemRefLock lock(graphic);
        for (int32_t i = 0; i < 24; ++i) SetPixel(lock.data(), i % 6, i / 6, static_cast<uint32_t>(i));
    }
    const Bytes runs = TakeBytes(EncodeRunPacked(graphic));
    const auto sized = [](const Bytes& packed) {  // behind the picture's 6 by 4 head
        Bytes picture = {0, 6, 0, 4, 0, 0, 0, 0};
        Append(picture, packed);
        return picture;
    };
    Bytes rows = TakeBytes(EncodeRowPacked(graphic));
    rows.resize(rows.size() - 3);
    // A good and a damaged format 2 picture.
    const Bytes goodRuns = StoredRuns(background);
    Bytes badRuns = goodRuns;
    badRuns[16] = 0;  // compressed, whatever the block was
    badRuns[16 + 4] = 0xFF, badRuns[16 + 5] = 0xFF, badRuns[16 + 6] = 0xFF, badRuns[16 + 7] = 0xFF;  // copies from before the start
    const Bytes stack = StoredStack({.cardCount = 3, .cardWidth = kWidth, .cardHeight = kHeight},
                                    {PictureCard(1, 2, palette, goodRuns,
                                                 {StoredGraphic(10, {5, 5, 11, 9}, sized(runs)), StoredGraphic(11, {20, 5, 26, 9}, sized(rows), 16)}),
                                     StoredCard(2, "member", {}, 3, 1), PictureCard(3, 2, palette, badRuns)}, {});
    const Outcome run = ExportTo(WriteTempFile("pictures.stk", stack), dir_);
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(FilesIn(dir_), (std::vector<std::string>{"card-001-background.png", "card-001-graphic-10.png"}));
    for (const char* report : {"card 1: graphic 11: its pixels are damaged; skipped", "card 3: background: the picture is damaged; skipped"})
        EXPECT_NE(run.err.find(report), std::string::npos) << report << "\n" << run.err;
    EXPECT_NE(run.out.find("2 pictures written to " + dir_.string() + ", 2 damaged and skipped"), std::string::npos) << run.out;

    // Indices through the card's palette.
    const Png card = Read(dir_ / "card-001-background.png");
    ASSERT_EQ((std::array{card.width, card.height}), (std::array{kWidth, kHeight}));
    EXPECT_EQ(card.At(63, 47), (Rgb{7, 248, 21}));
    EXPECT_EQ(card.At(3, 47 - 20), (Rgb{103, 152, 53})) << "the band of index x + 100, display row 20 from the bottom";
    const Png small = Read(dir_ / "card-001-graphic-10.png");
    ASSERT_EQ((std::array{small.width, small.height}), (std::array{6, 4}));
    for (int32_t i = 0; i < 24; ++i) EXPECT_EQ(small.At(i % 6, i / 6), (Rgb{i, 255 - i, 3 * i})) << i;

    for (MemRef r : {background, graphic}) FreeMemRef(r);
}

#ifdef QB_WITH_SOUND_TOOLS
// Files made by sox, built into records and exported, come back as the same files; a record that
// holds no sound is reported and skipped.
// A button's film comes out a PNG a frame, clear where the film is transparent.
TEST_F(Export, FilmFramesComeOutOneFileEach) {
    SpriteParts parts;
    parts.frameColors = {0x2040C0, 0xC04020};
    Bytes sub(32, 0);
    PutBE16(sub, 0, 56);
    const Bytes film = SpriteBytes(parts);
    sub.insert(sub.end(), film.begin(), film.end());
    PutBE32(sub, 12, static_cast<uint32_t>(sub.size()));
    const Bytes stack = StoredStack({.depth = 32, .cardWidth = 120, .cardHeight = 40},
                                    {StoredCard(1, "Film", {StoredButton(7, {0, 0, 40, 20}, 2, "B", 0, sub)})}, {});
    const Outcome o = ExportTo(WriteTempFile("film.stk", stack), dir_);
    ASSERT_EQ(o.code, 0) << o.err;
    const Png first = Read(dir_ / "card-001-button-7-frame-1.png"), second = Read(dir_ / "card-001-button-7-frame-2.png");
    EXPECT_EQ(first.At(3, 3), (Rgb{0x20, 0x40, 0xC0}));
    EXPECT_EQ(second.At(3, 3), (Rgb{0xC0, 0x40, 0x20}));
    EXPECT_EQ(first.rgba[3], 0) << "the transparent corner";
    EXPECT_EQ(first.rgba[7], 255);
}

TEST_F(Export, SoundFilesComeBackOutOfTheirRecords) {
    fs::create_directories(dir_);
    for (const char* args : {"-r 11025 -n -b 8 -c 1 sound-1.wav synth 1001s sine 300",  // odd, and shorter than a played sound
                             "-r 22050 -n -b 16 -c 2 sound-2.wav synth 1500s sine 440 sine 660 vol 0.5"})
        ASSERT_EQ(std::system(("cd " + dir_.string() + " && sox " + args).c_str()), 0) << args;
    const std::string json = Write("s.json", R"({"cards": [{}], "records": [{"type": "Snd ", "id": 1, "sound": "sound-1.wav"},
        {"type": "Snd ", "id": 2, "sound": "sound-2.wav"}, {"type": "Snd ", "id": 3, "hex": "0002"}]})");
    ASSERT_EQ(RunBuild(json, Path("s.stk")), 0);
    const Outcome run = ExportTo(Path("s.stk"), dir_ / "out");
    EXPECT_NE(run.err.find("'Snd ' record 3: the sound is damaged; skipped"), std::string::npos) << run.err;
    for (const char* name : {"sound-1.wav", "sound-2.wav"})
        EXPECT_TRUE(ReadWholeFile((dir_ / "out" / name).string()) == ReadWholeFile(Path(name))) << name;
}
#endif

}  // namespace

#endif  // QB_WITH_CLI
