// `quillbrook build` with pictures from PNG files: backgrounds at 8, 16 and 32 bits and graphics
// in both packings come back pixel for pixel through the stack reader and the picture codecs.
#ifdef QB_WITH_CLI

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "PngFile.h"
#include "StackBuilder.h"
#include "base/ByteOrder.h"
#include "card/CardPalette.h"
#include "gfx/DibImage.h"
#include "pictures/Background.h"
#include "pictures/PackedPixels.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackReader.h"
#include "support/CommandFixture.h"
#include "support/PictureMaker.h"
#include "support/StackBytes.h"

namespace {

using Json = nlohmann::ordered_json;
using Rgb = std::array<uint8_t, 3>;

constexpr int32_t kWidth = 17;  // not a multiple of 16: stored and display rows differ
constexpr int32_t kHeight = 3;

// A picture whose every pixel differs from its neighbours in every channel.
std::vector<Rgb> Colours() {
    std::vector<Rgb> colours;
    for (int32_t i = 0; i < kWidth * kHeight; ++i)
        colours.push_back({static_cast<uint8_t>(i * 5 + 3), static_cast<uint8_t>(255 - i * 3), static_cast<uint8_t>(i * 37)});
    return colours;
}

Bytes Rgba(const std::vector<Rgb>& colours) {
    Bytes rgba;
    for (const Rgb& c : colours) rgba.insert(rgba.end(), {c[0], c[1], c[2], 0xFF});
    return rgba;
}

Rgb RgbOf(const PaletteEntry& e) { return {e.red, e.green, e.blue}; }

// What a 16-bit and a 32-bit pixel hold for a colour.
uint32_t Word555(const Rgb& c) { return uint32_t{c[0]} >> 3 << 10 | uint32_t{c[1]} >> 3 << 5 | uint32_t{c[2]} >> 3; }
uint32_t Word888(const Rgb& c) { return uint32_t{c[0]} << 16 | uint32_t{c[1]} << 8 | c[2]; }

std::vector<uint32_t> Values(const std::vector<Rgb>& colours, uint32_t (*pixel)(const Rgb&)) {
    std::vector<uint32_t> values;
    for (const Rgb& c : colours) values.push_back(pixel(c));
    return values;
}

class BuildPicture : public CommandFixture {
protected:
    void SetUp() override {
        CommandFixture::SetUp();
        InitPathSlots();
    }
    void TearDown() override {
        CloseStack();
        CommandFixture::TearDown();
    }

    // Builds the description into a file and opens it; false with the builder's message.
    std::string BuildAndOpen(const std::string& json) {
        Bytes bytes;
        std::string error;
        if (!BuildStack(Json::parse(json), dir_, &bytes, &error)) return error;
        LoadFault fault;
        return ReadStackFile(WriteTempFile("built.stk", bytes), &fault) == 0 ? "" : "does not open: " + fault.detail;
    }

    // The first card's background as the card shows it: top row first, one value a pixel.
    static std::vector<uint32_t> Background(int32_t depth) {
        MemRef image = 0;
        EXPECT_EQ(GetCardBackground(GetCardByPosition(1), &image, depth, true, false), 0);
        if (!image) return {};
        const Bytes dib = TakeBytes(image);
        std::vector<uint32_t> values;
        for (int32_t y = kHeight - 1; y >= 0; --y)  // display rows run bottom-up
            for (int32_t x = 0; x < kWidth; ++x) values.push_back(GetPixel(dib.data(), x, y));
        return values;
    }
};

std::string PictureCard(const std::string& background, int32_t stackDepth = 8) {
    return R"({"depth": )" + std::to_string(stackDepth) + R"(, "cardWidth": 17, "cardHeight": 3,
               "cards": [{"id": 1, "background": )" + background + "}]}";
}

TEST_F(BuildPicture, BackgroundsKeepEveryPixelAtTheirDepth) {
    // An indexed file keeps its indices and its own colours at 8 bits; 16 and 32 bits hold colours.
    const std::vector<Rgb> palette = {{255, 255, 255}, {10, 20, 30}, {200, 100, 50}, {0, 255, 0}, {1, 2, 3}};
    Bytes indices;
    for (int32_t i = 0; i < kWidth * kHeight; ++i) indices.push_back(static_cast<uint8_t>((i * 7) % 5));
    ASSERT_TRUE(WriteIndexedPng(Path("indexed.png"), kWidth, kHeight, indices, palette));
    ASSERT_TRUE(WritePng(Path("deep.png"), kWidth, kHeight, Rgba(Colours())));
    struct Case { const char* file; int32_t depth; std::vector<uint32_t> pixels; };
    const Case cases[] = {
        {"indexed.png", 8, std::vector<uint32_t>(indices.begin(), indices.end())},
        {"deep.png", 16, Values(Colours(), Word555)},
        {"deep.png", 32, Values(Colours(), Word888)},
    };
    for (const Case& c : cases) {
        ASSERT_EQ(BuildAndOpen(PictureCard(std::string(R"({"png": ")") + c.file + R"(", "depth": )" + std::to_string(c.depth) + "}")), "");
        EXPECT_EQ(ReadS16(MemRefLock(GetCardByPosition(1)).data() + kCardDepth), c.depth);
        EXPECT_EQ(Background(c.depth), c.pixels) << c.depth;
        if (c.depth == 8) {
            const PaletteRef colours = GetCardPalette(GetCardByPosition(1));
            ASSERT_TRUE(colours && colours->count == 256u);
            for (size_t i = 0; i < palette.size(); ++i) EXPECT_EQ(RgbOf(colours->entries[i]), palette[i]) << i;
            EXPECT_EQ(RgbOf(colours->entries[5]), (Rgb{0, 0, 0})) << "entries the file lacks are black";
        }
        CloseStack();
    }
}

TEST_F(BuildPicture, GraphicsArePackedByRowsOrRunsAtTheStacksDepth) {
    const std::vector<Rgb> colours = Colours();
    ASSERT_TRUE(WritePng(Path("deep.png"), kWidth, kHeight, Rgba(colours)));
    Bytes indices;
    for (int32_t i = 0; i < kWidth * kHeight; ++i) indices.push_back(static_cast<uint8_t>(i * 3));
    std::vector<Rgb> palette(256, Rgb{9, 9, 9});
    ASSERT_TRUE(WriteIndexedPng(Path("indexed.png"), kWidth, kHeight, indices, palette));
    struct Case { int32_t depth; const char* file; const char* packing; uint16_t flag16; };
    // Rows by default.
    const Case cases[] = {{8, "indexed.png", "", kGraphicFlagRowPacked}, {16, "deep.png", R"(, "packing": "row")", kGraphicFlagRowPacked},
                          {32, "deep.png", R"(, "packing": "run")", 0}};
    for (const Case& c : cases) {
        const std::string json = R"({"depth": )" + std::to_string(c.depth) + R"(, "cards": [{"id": 1, "items": [
            {"kind": 16, "id": 5, "rect": [100, 50, 117, 53], "itemFlags": 16, "png": ")" + c.file + "\"" + c.packing + "}]}]}";
        ASSERT_EQ(BuildAndOpen(json), "") << c.depth;
        MemRefLock lock(GetCardByPosition(1));
        const uint8_t* g = lock.data() + ItemChainStart(lock.data());
        const uint16_t flags = Read16(g + kItemFlags);
        EXPECT_EQ(flags & kGraphicFlagRowPacked, c.flag16) << c.depth << c.packing;
        const uint32_t pictureSize = Read32(g + kGraphicPictureSize);
        const uint32_t pad = flags & kItemFlagOddPad ? 1 : 0;
        EXPECT_EQ(Read32(g + kItemLength), kGraphicHeadSize + pictureSize + pad);
        const uint8_t* picture = g + kGraphicHeadSize;
        EXPECT_EQ((std::array<uint32_t, 3>{Read16(picture), Read16(picture + 2), Read32(picture + 4)}), (std::array<uint32_t, 3>{17, 3, 0}));

        // Graphic pixels stay as stored: 16-bit words and 0, R, G, B high byte first.
        const MemRef image = NewDibImage(kWidth, kHeight, c.depth);
        ASSERT_EQ(DecodeGraphicPixels(image, flags, picture + 8, pictureSize - 8), 0) << c.depth << c.packing;
        {
            MemRefLock d(image);
            for (int32_t i = 0; i < kWidth * kHeight; ++i) {
                const uint8_t* row = DibPixels(d.data()) + DibImageRowBytes(d.data()) * static_cast<uint32_t>(i / kWidth);
                const int32_t x = i % kWidth;
                const Rgb& rgb = colours[static_cast<size_t>(i)];
                const uint32_t want = c.depth == 8 ? indices[static_cast<size_t>(i)] : c.depth == 16 ? Word555(rgb) : Word888(rgb);
                const uint32_t got = c.depth == 8 ? row[x] : c.depth == 16 ? ReadBE16(row + 2 * x) : ReadBE32(row + 4 * x);
                ASSERT_EQ(got, want) << c.depth << c.packing << " pixel " << i;
            }
        }
        FreeMemRef(image);
        CloseStack();
    }
}

TEST_F(BuildPicture, MistakesNameThePlace) {
    ASSERT_TRUE(WritePng(Path("deep.png"), kWidth, kHeight, Rgba(Colours())));
    struct Case { std::string json; std::string message; };
    const Case cases[] = {
        {PictureCard(R"({"png": "deep.png", "depth": 24})"), "cards[0].background.depth: a picture from PNG is of depth 8, 16 or 32, not 24"},
        {PictureCard(R"({"png": "deep.png", "hex": "00"})"), "cards[0].background: give either png or the stored bytes"},
        {R"({"cards": [{"background": {"png": "deep.png"}}]})", "cards[0].background.png: the picture is 17 x 3, the card 640 x 480"},
    };
    for (const Case& c : cases) EXPECT_EQ(BuildAndOpen(c.json).substr(0, c.message.size()), c.message) << c.json;
}

}  // namespace

#endif  // QB_WITH_CLI
