// The default palette, nearest-colour matching, the emulated display depth, and the fades' colours.
#include <gtest/gtest.h>

#include <array>
#include <tuple>
#include <vector>

#include "gfx/Palette.h"
#include "stack/Document.h"

namespace {

using Rgb = std::array<uint8_t, 3>;

Rgb RgbOf(const PaletteEntry& e) { return {e.red, e.green, e.blue}; }
Rgb RgbOf(uint32_t rgb) { return {static_cast<uint8_t>(rgb >> 16), static_cast<uint8_t>(rgb >> 8), static_cast<uint8_t>(rgb)}; }

// What the fade hook was handed, last call only.
struct Animated { int calls = 0; const Palette* palette = nullptr; uint32_t first = 0, count = 0; std::vector<PaletteEntry> entries; } gAnimated;

void RecordAnimated(const Palette* palette, uint32_t first, uint32_t count, const PaletteEntry* entries) {
    gAnimated = {gAnimated.calls + 1, palette, first, count, std::vector<PaletteEntry>(entries, entries + count)};
}

class Palette : public testing::Test {
protected:
    void SetUp() override { ResetPaletteState(); }
    void TearDown() override {
        ResetPaletteState();
        GetDocument().depth = 8;
    }
};

TEST_F(Palette, DefaultPaletteIsDefpalWithTheSystemColoursReversedOnTop) {
    const PaletteRef palette = LoadDefaultPalette();
    ASSERT_TRUE(palette);
    EXPECT_EQ(palette->count, 256u);
    const std::tuple<uint32_t, uint32_t, uint8_t> cases[] = {
        // The classic colours, white first, almost-black, DEFPAL's last; then the system's reversed:
        // 255 white, 246 cream, 9 sky blue, 1 dark red, 0 black.
        {0, 0xFFFFFF, 1},   {15, 0x010101, 1},  {235, 0xFF3366, 1}, {236, 0xFFFFFF, 0},
        {245, 0xFFFBF0, 0}, {246, 0xA6CAF0, 0}, {254, 0x800000, 0}, {255, 0x000000, 0},
    };
    for (const auto& [index, rgb, flags] : cases) {
        EXPECT_EQ(RgbOf(palette->entries[index]), RgbOf(rgb)) << index;
        EXPECT_EQ(palette->entries[index].flags, flags) << index;
    }
}

TEST_F(Palette, NearestColourIsTheLeastSquaredDistanceAndTheLowestIndexOfEquals) {
    // 2 is the same as 1; 3 is as far from (105, 95, 100) as 1 is.
    const PaletteEntry entries[] = {
        {0, 0, 0, 0}, {100, 100, 100, 0}, {100, 100, 100, 0}, {110, 90, 100, 0}, {0, 0, 200, 0}, {255, 255, 255, 0}};
    const std::tuple<Rgb, uint32_t, uint32_t> cases[] = {
        {{100, 100, 100}, 6, 1},  // exact, and 2 is equal: the lower wins
        {{105, 95, 100}, 6, 1},   // 1 and 3 both at 50
        {{200, 200, 200}, 6, 5},  // 3 * 55^2 against 3 * 100^2
        {{200, 200, 200}, 5, 1},  // without white: 1 at 30000 before 3 at 30200
        {{1, 2, 3}, 0, 0},        // an empty palette
    };
    for (const auto& [color, count, index] : cases) {
        EXPECT_EQ(NearestColorIndex(entries, count, color[0], color[1], color[2]), index)
            << int{color[0]} << "," << int{color[1]} << "," << int{color[2]} << " of " << count;
    }
}

TEST_F(Palette, DisplayDepthFollowsTheStackUnlessForced) {
    const std::tuple<int16_t, int32_t, int32_t> cases[] = {{4, 0, 8}, {16, 0, 16}, {24, 0, 32}, {8, 16, 16}, {32, 8, 8}};
    for (const auto& [stackDepth, forced, display] : cases) {
        GetDocument().depth = stackDepth;
        ASSERT_EQ(ForceDisplayDepth(forced), 0);
        EXPECT_EQ(DisplayDepth(), display) << stackDepth << " forced " << forced;
    }
    EXPECT_EQ(ForceDisplayDepth(24), -1);
    EXPECT_EQ(DisplayDepth(), 8) << "a refused depth changes nothing";
}

TEST_F(Palette, BlendsMixOldAndNewColoursAndGoToTheFadeHook) {
    ASSERT_EQ(InitPalette(), 0);
    GetPaletteState().animate = RecordAnimated;
    gAnimated = {};
    PaletteEntry before[256] = {}, after[256] = {};
    before[0] = {0, 255, 10, 0}, after[0] = {255, 0, 13, 4};
    before[255] = after[255] = {9, 9, 9, 0};
    NoteColors(before);
    NoteColors(after);
    // ((256 - k) * old + k * new) / 256 in whole numbers; k outside 0 to 256 is held to it.
    const std::pair<int32_t, Rgb> cases[] = {{0, {0, 255, 10}},    {1, {0, 254, 10}},   {128, {127, 127, 11}},
                                             {255, {254, 0, 12}}, {300, {255, 0, 13}}, {-5, {0, 255, 10}}};
    for (const auto& [k, first] : cases) {
        BlendPalette(k);
        ASSERT_EQ(gAnimated.entries.size(), 256u);
        EXPECT_EQ((std::array{RgbOf(gAnimated.entries[0]), RgbOf(gAnimated.entries[255])}), (std::array{first, Rgb{9, 9, 9}}))
            << k;
        EXPECT_EQ(gAnimated.entries[0].flags, kPaletteReserved);
    }
    EXPECT_EQ((std::array{gAnimated.first, gAnimated.count}), (std::array{0u, 256u}));
    EXPECT_EQ(gAnimated.palette, GetPaletteState().current.get());
    EXPECT_EQ(gAnimated.calls, 6);
}

}  // namespace
