// The palettes of cards: which card has which, re-indexing a card and the cards that share its
// picture, and the fixture stack's colours. The palette side of a change of card shows in the golden
// pictures of the fixture's cards.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "card/CardPalette.h"
#include "card/GraphicPicture.h"
#include "gfx/ColorTable.h"
#include "pictures/Background.h"
#include "pictures/PackedPixels.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackReader.h"
#include "support/PictureMaker.h"
#include "support/StackBytes.h"

namespace {

using Rgb = std::array<uint8_t, 3>;

Rgb RgbOf(const PaletteEntry& e) { return {e.red, e.green, e.blue}; }

// Format 2 image data of a one-colour picture.
MemRef PlainPicture(int32_t width, int32_t height) {
    const MemRef image = MakePicture(width, height, 8, Fill::Single, 1);
    const MemRef data = CompressBackground(image, false);
    FreeMemRef(image);
    return data;
}

MemRef TableOf(const std::vector<PaletteEntry>& colors) {
    Bytes table(ColorTableSize(static_cast<uint32_t>(colors.size())));
    WriteColorTable(table.data(), colors.data(), static_cast<uint32_t>(colors.size()), 0);
    return BlockOf(table);
}

// A button head behind the common head: the action flags, the two colours, nothing else.
Bytes ButtonRest(uint16_t actionFlags, uint16_t textColor, uint16_t fillColor) {
    Bytes rest(kButtonHeadSize - 16, 0);
    PutBE16(rest, 20 - 16, actionFlags);
    PutBE16(rest, kButtonTextColor - 16, textColor);
    PutBE16(rest, kButtonFillColor - 16, fillColor);
    return rest;
}


struct ItemView { uint32_t at; uint16_t flags; };

std::vector<ItemView> Items(MemRef card) {
    MemRefLock lock(card);
    const uint8_t* c = lock.data();
    std::vector<ItemView> items;
    for (uint32_t at = ItemChainStart(c); ReadS16(c + at) != 0; at += Read32(c + at + kItemLength))
        items.push_back({at, Read16(c + at + kItemFlags)});
    return items;
}

uint16_t Field(MemRef card, uint32_t at) { return Read16(MemRefLock(card).data() + at); }

std::vector<uint32_t> gSpriteCalls;
int32_t RecordSprite(MemRef, uint32_t itemOffset, const Palette&, const Palette&) {
    gSpriteCalls.push_back(itemOffset);
    return 0;
}

class PaletteCards : public testing::Test {
protected:
    void SetUp() override {
        InitPathSlots();
        ResetPaletteState();
    }
    void TearDown() override {
        CloseStack();
        ResetPaletteState();
    }
    void Open(const std::string& path) {
        LoadFault fault;
        ASSERT_EQ(ReadStackFile(path, &fault), 0) << fault.detail;
    }
    void OpenFixture() { Open(std::string(QB_FIXTURES_DIR) + "/sample-cards.stk"); }
};

TEST_F(PaletteCards, APaletteComesFromThePictureOwnersColorTable) {
    OpenFixture();
    const MemRef bare = NewCardMemRef(kEmptyCardSize - 2), noTable = NewCardMemRef(kEmptyCardSize - 2);
    Write16(MemRefLock(bare).data() + kCardKind, kCardKindPicture);  // kind 1, but 100 bytes: no picture
    const MemRef data = PlainPicture(16, 2);
    ASSERT_EQ(StoreBackground(noTable, data, 0, 8), 0);
    struct Case { const char* name; MemRef card; bool has; };
    const Case cases[] = {
        {"the picture card", GetCardByPosition(1), true},
        {"a card sharing its picture", GetCardByPosition(2), true},
        {"a blank card", GetCardByPosition(3), false},
        {"no card", 0, false},
        {"a record of 100 bytes", bare, false},
        {"a picture without a table", noTable, false},
    };
    for (const Case& c : cases) {
        const PaletteRef palette = GetCardPalette(c.card);
        EXPECT_EQ(palette != nullptr, c.has) << c.name;
        if (!palette) continue;
        // White first, black last, as the stack's home platform has it; the entries above 9 are
        // kept apart from the system's colours.
        EXPECT_EQ((std::array{RgbOf(palette->entries[0]), RgbOf(palette->entries[255])}),
                  (std::array{Rgb{255, 255, 255}, Rgb{0, 0, 0}})) << c.name;
        EXPECT_EQ((std::array{palette->entries[9].flags, palette->entries[10].flags}),
                  (std::array<uint8_t, 2>{0, kPaletteNoCollapse}));
    }
    for (MemRef r : {bare, noTable, data}) FreeMemRef(r);
}

TEST_F(PaletteCards, ReplacingAPaletteReindexesTheCardAndTheCardsSharingItsPicture) {
    // Card 5: a button, a graphic, a button; card 6 shares card 5's picture and has a button. The
    // graphic: 4 by 2 pixels of 8 bits, run-packed, rows 0 1 2 3 and 3 2 1 0 on 16-byte stored rows,
    // framed in blue (index 2, stored + 1).
    const Bytes graphic = StoredGraphic(
        11, {10, 10, 14, 12}, {0, 4, 0, 2, 0, 0, 0, 0, 3, 0, 1, 2, 3, 0xF5, 0, 3, 3, 2, 1, 0, 0xF5, 0}, 0, 3);
    const Bytes first = StoredItem(kItemKindButton, 10, 0, 0, 40, 20, ButtonRest(0, 2, 0));
    const Bytes last = StoredItem(kItemKindButton, 12, 0, 30, 40, 50, ButtonRest(0x80, 3, 300));
    const Bytes memberButton = StoredItem(kItemKindButton, 13, 0, 0, 40, 20, ButtonRest(0, 2, 1));
    Open(WriteTempFile("replace-palette.stk",
                       StoredStack({.cardCount = 3},
                                   {StoredCard(5, "Owner", {first, graphic, last}),
                                    StoredCard(6, "Member", {memberButton}, 3, 5),
                                    StoredCard(7, "Other", {memberButton})},
                                   {})));
    const MemRef owner = GetCardByPosition(1), shares = GetCardByPosition(2), other = GetCardByPosition(3);
    // The owner's picture and its palette: white, red, blue, green, then black.
    std::vector<PaletteEntry> oldColors = {{255, 255, 255, 0}, {200, 0, 0, 0}, {0, 0, 200, 0}, {0, 200, 0, 0}};
    oldColors.resize(256);
    const MemRef table = TableOf(oldColors), data = PlainPicture(640, 480);
    ASSERT_EQ(StoreBackground(owner, data, table, 8), 0);
    for (MemRef r : {table, data}) FreeMemRef(r);
    ASSERT_EQ(Items(owner).size(), 3u);

    // The new palette: black, blue, red, white, green.
    const PaletteEntry next[] = {{0, 0, 0, 0}, {0, 0, 255, 0}, {255, 0, 0, 0}, {255, 255, 255, 0}, {0, 255, 0, 0}};
    PaletteRef palette = NewPalette(5);
    std::copy(std::begin(next), std::end(next), palette->entries);
    GetPaletteState().remapButtonSprite = RecordSprite;
    gSpriteCalls.clear();
    const Bytes otherBefore = BlockBytes(other);
    ASSERT_EQ(ReplaceCardPalette(owner, *palette), 0);

    // Colour fields hold an index + 1: red 2 -> 3, blue 3 -> 2, white 1 -> 4; 0 and 300 name no
    // colour of the old palette and stay.
    const std::vector<ItemView> items = Items(owner);
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ((std::array{Field(owner, items[0].at + kButtonTextColor), Field(owner, items[0].at + kButtonFillColor),
                          Field(owner, items[2].at + kButtonTextColor), Field(owner, items[2].at + kButtonFillColor)}),
              (std::array<uint16_t, 4>{3, 0, 2, 300}));
    const std::vector<ItemView> member = Items(shares);
    ASSERT_EQ(member.size(), 1u);
    EXPECT_EQ((std::array{Field(shares, member[0].at + kButtonTextColor), Field(shares, member[0].at + kButtonFillColor)}),
              (std::array<uint16_t, 2>{3, 4}));
    EXPECT_EQ(BlockBytes(other), otherBefore) << "a card that does not share the picture";
    EXPECT_EQ(gSpriteCalls, (std::vector<uint32_t>{items[2].at})) << "the sprite of the button whose action has one";

    // The graphic's pixels are re-indexed (white 3, red 2, blue 1, green 4) and packed by rows.
    EXPECT_EQ(items[1].flags & (kGraphicFlagRowPacked | kItemFlagOddPad), kGraphicFlagRowPacked);
    EXPECT_EQ(Field(owner, items[1].at + kGraphicFrameColor), 2) << "the frame follows its colour";
    const Bytes record = BlockBytes(owner);
    const uint8_t* g = record.data() + items[1].at;
    const uint32_t pictureSize = Read32(g + kGraphicPictureSize);
    EXPECT_EQ(Read32(g + kItemLength), kGraphicHeadSize + pictureSize);
    EXPECT_EQ((std::array{Read16(g + kGraphicHeadSize), Read16(g + kGraphicHeadSize + 2)}),
              (std::array<uint16_t, 2>{4, 2}));
    const MemRef image = NewDibImage(4, 2, 8);
    ASSERT_EQ(DecodeGraphicPixels(image, items[1].flags, g + kGraphicHeadSize + 8, pictureSize - 8), 0);
    const Bytes pixels = TakeBytes(image);
    const uint8_t* px = DibPixels(pixels.data());
    EXPECT_EQ(Bytes(px, px + 8), (Bytes{3, 2, 1, 4, 4, 1, 2, 3}));
    EXPECT_EQ(Read32(record.data() + kCardSize), record.size());
    EXPECT_EQ(Bytes(record.end() - 4, record.end()), (Bytes{0, 0, 0xFA, 0xCE})) << "the tail follows the items";
}

}  // namespace
