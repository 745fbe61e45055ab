// The stored ColorTable against hand-worked bytes, and its palettes at each emulated display depth.
// The writer is read back by the reader the hand-worked bytes pin.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "gfx/ColorTable.h"
#include "gfx/DibImage.h"
#include "platform/Host.h"
#include "stack/Document.h"
#include "support/PictureMaker.h"

namespace {

using Rgb = std::array<uint8_t, 3>;

Rgb RgbOf(const PaletteEntry& e) { return {e.red, e.green, e.blue}; }

uint32_t gTicks = 0;
uint32_t FixedTicks() { return gTicks; }

class ColorTable : public testing::Test {
protected:
    void SetUp() override {
        ResetPaletteState();
        savedHost_ = GetHost();
        Host host = savedHost_;
        host.GetTickCount = FixedTicks;
        SetHost(host);
    }
    void TearDown() override {
        SetHost(savedHost_);
        ResetPaletteState();
        GetDocument().depth = 8;
    }

private:
    Host savedHost_;
};

TEST_F(ColorTable, ReadersTakeTheFirstByteAndNoMoreEntriesThanTheRecordHolds) {
    // A Macintosh writer copies each value into the second byte; index fields are not read. The
    // count says 10 entries where there are 2.
    const Bytes mac = {0, 0, 0x12, 0x34, 0, 0, 0, 9,
                       0, 9, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                       0, 7, 0x80, 0x80, 0x40, 0x40, 0x20, 0x21};
    const std::array<uint32_t, 3> cases[] = {{24, 16, 2}, {23, 16, 1}, {24, 1, 1}, {7, 16, 0}};  // size, room, count
    for (const auto& [size, room, count] : cases) {
        PaletteEntry entries[16];
        EXPECT_EQ(ReadColorTable(mac.data(), size, entries, room), count) << size << " bytes, room for " << room;
    }
    PaletteEntry entries[2];
    ASSERT_EQ(ReadColorTable(mac.data(), 24, entries, 2), 2u);
    EXPECT_EQ((std::array{RgbOf(entries[0]), RgbOf(entries[1])}),
              (std::array{Rgb{0xFF, 0xFF, 0xFF}, Rgb{0x80, 0x40, 0x20}}));
}

TEST_F(ColorTable, PalettesFromRecordsAreWhatTheDisplayShows) {
    // White, a colour off the 16-bit grid, and 10 more so that the no-collapse flag shows at 10.
    std::vector<PaletteEntry> colors = {{0xFF, 0xFF, 0xFF, 0}, {0x8F, 0x47, 0x0B, 0}};
    for (uint8_t i = 0; i < 10; ++i) colors.push_back({i, i, 0xFE, 0});
    Bytes table(ColorTableSize(12));
    WriteColorTable(table.data(), colors.data(), 12, 0);
    const Rgb white = {0xFF, 0xFF, 0xFF};
    const std::pair<int32_t, Rgb> cases[] = {{8, {0x8F, 0x47, 0x0B}}, {32, {0x8F, 0x47, 0x0B}}, {16, {0x8C, 0x42, 0x08}}};
    for (const auto& [displayDepth, odd] : cases) {
        ASSERT_EQ(ForceDisplayDepth(displayDepth), 0);
        const PaletteRef palette = PaletteFromColorTable(table.data(), static_cast<uint32_t>(table.size()));
        ASSERT_TRUE(palette);
        EXPECT_EQ(palette->count, 12u);
        EXPECT_EQ((std::array{RgbOf(palette->entries[0]), RgbOf(palette->entries[1])}), (std::array{white, odd})) << displayDepth;
        EXPECT_EQ((std::array{palette->entries[9].flags, palette->entries[10].flags, palette->entries[11].flags}),
                  (std::array<uint8_t, 3>{0, kPaletteNoCollapse, kPaletteNoCollapse}));
    }
    EXPECT_FALSE(PaletteFromColorTable(table.data(), 8)) << "a record without entries";
}

TEST_F(ColorTable, RecordsFromPalettesTakeTheirSizeFromTheStackAndTheirSourceFromTheDisplay) {
    ASSERT_EQ(InitPalette(), 0);  // CurrentPalette: the default, white first
    PaletteRef shown = NewPalette(256);
    shown->entries[0] = {1, 2, 3, 0};
    shown->entries[255] = {4, 5, 6, 0};
    PaletteRef given = NewPalette(2);
    given->entries[1] = {7, 8, 9, 0};
    struct Case { const char* name; int16_t stackDepth; int32_t displayDepth; const Palette* palette; uint32_t count; Rgb first, second, last; };
    const Case cases[] = {
        {"16 entries in a 4-bit stack, the rest black", 4, 8, given.get(), 16, {0, 0, 0}, {7, 8, 9}, {0, 0, 0}},
        {"the display's colours at 8 bits", 8, 8, nullptr, 256, {1, 2, 3}, {0, 0, 0}, {4, 5, 6}},
        {"CurrentPalette above 8 bits", 8, 32, nullptr, 256, {255, 255, 255}, {0xFC, 0xF3, 0x05}, {0, 0, 0}},
    };
    for (const Case& c : cases) {
        GetDocument().depth = c.stackDepth;
        ASSERT_EQ(ForceDisplayDepth(8), 0);
        RealizePalette(*shown);
        ASSERT_EQ(ForceDisplayDepth(c.displayDepth), 0);
        gTicks = 0xCAFE0000u + c.count;
        const Bytes table = TakeBytes(ColorTableFromPalette(c.palette, false));
        ASSERT_EQ(table.size(), ColorTableSize(c.count)) << c.name;
        EXPECT_EQ(ReadBE32(table.data()), gTicks) << c.name << ": the tick count is the seed";
        PaletteEntry read[256];
        ASSERT_EQ(ReadColorTable(table.data(), static_cast<uint32_t>(table.size()), read, 256), c.count);
        EXPECT_EQ((std::array{RgbOf(read[0]), RgbOf(read[1]), RgbOf(read[c.count - 1])}),
                  (std::array{c.first, c.second, c.last}))
            << c.name;
        EXPECT_EQ(ReadBE16(table.data() + ColorTableSize(c.count - 1)), c.count - 1) << c.name << ": the last index";
    }
}

}  // namespace
