// The independent fixture stacks, written by another tool from the format's tables: every header,
// card, item and record fact they list must come out of our reader.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/ByteOrder.h"
#include "stack/Blob.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/Names.h"
#include "stack/PathSlot.h"
#include "stack/StackHeader.h"
#include "stack/StackReader.h"
#include "stack/SubRecord.h"

namespace {

const std::string kFixtures = QB_FIXTURES_DIR;

struct ItemFact { int16_t id; std::string name; std::vector<int16_t> rect; int16_t shape; };

class FixtureStackTest : public testing::Test {
protected:
    void SetUp() override { InitPathSlots(); }
    void TearDown() override { CloseStack(); }

    void Open(const std::string& name) {
        LoadFault fault;
        ASSERT_EQ(ReadStackFile(kFixtures + "/" + name, &fault), 0) << fault.detail;
        ASSERT_TRUE(fault.opened);
    }
    static int16_t HeaderField(uint32_t at) { return ReadS16(MemRefLock(GetDocument().stackHeader).data() + at); }
    static std::vector<int16_t> Rect(const uint8_t* item) {
        std::vector<int16_t> rect;
        for (int k = 0; k < 4; ++k) rect.push_back(ReadS16(item + kItemRect + 2 * k));
        return rect;
    }
    // Offsets of the item chunks of a card, in chain order.
    static std::vector<uint32_t> ItemOffsets(const uint8_t* card) {
        std::vector<uint32_t> offsets;
        const uint32_t size = Read32(card + kCardSize);
        for (uint32_t at = ItemChainStart(card); at + kItemCommonHeadSize <= size && ReadS16(card + at) != 0;) {
            offsets.push_back(at);
            const uint32_t length = Read32(card + at + kItemLength);
            if (length < kItemCommonHeadSize) break;
            at += length;
        }
        return offsets;
    }
};

TEST_F(FixtureStackTest, SampleCardsHeaderCardsItemsAndRecords) {
    Open("sample-cards.stk");
    EXPECT_EQ((std::vector<int16_t>{HeaderField(kHdrCardCount), HeaderField(kHdrCardWidth), HeaderField(kHdrCardHeight),
                                    HeaderField(kHdrDepth)}), (std::vector<int16_t>{4, 640, 480, 8}));
    ASSERT_EQ(CardCount(), 4);

    struct CardFact { int16_t id, kind; std::string name; };
    const CardFact cards[] = {{2, 1, "Cover"}, {3, 3, "Shared"}, {4, 0, "Blank"}, {1, 0, "Last"}};
    for (int i = 0; i < 4; ++i) {
        MemRefLock lock(GetCardByPosition(i + 1));
        const uint8_t* c = lock.data();
        EXPECT_EQ(ReadS16(c + kCardId), cards[i].id) << "card " << i + 1;
        EXPECT_EQ(ReadS16(c + kCardKind), cards[i].kind) << "card " << i + 1;
        EXPECT_EQ(NameText(c + kCardName, 16), cards[i].name) << "card " << i + 1;
        EXPECT_EQ(Read32(c + kCardSize), GetMemRefSize(GetCardByPosition(i + 1)));
    }
    EXPECT_EQ(ReadS16(MemRefLock(GetCardByPosition(2)).data() + kCardOwnerId), 2);  // card 3 shows card 2's picture
    EXPECT_EQ(ReadS16(MemRefLock(GetCardByPosition(3)).data() + kCardArriveAction), 5);

    const ItemFact items[] = {{101, "Forward", {40, 420, 200, 460}, 0},
                              {102, "Round", {240, 420, 400, 460}, 2},
                              {103, "Plain", {440, 420, 600, 460}, 4}};
    MemRefLock cover(GetCardByPosition(1));
    const uint8_t* c = cover.data();
    EXPECT_EQ(ReadS16(c + kCardHeadSize + kBgFormat), 2);
    const std::vector<uint32_t> offsets = ItemOffsets(c);
    ASSERT_EQ(offsets.size(), 3u);
    for (size_t i = 0; i < 3; ++i) {
        const uint8_t* item = c + offsets[i];
        EXPECT_EQ(ReadS16(item + kItemKind), kItemKindButton);
        EXPECT_EQ(ReadS16(item + kItemId), items[i].id);
        EXPECT_EQ(NameText(item + kButtonName, 32), items[i].name);
        EXPECT_EQ(Rect(item), items[i].rect);
        EXPECT_EQ(ReadS16(item + kButtonShape), items[i].shape);
    }

    ASSERT_EQ(CountBlobEntries(GetDocument().storeRef), 1u);
    BlobEntryInfo e;
    ASSERT_TRUE(GetBlobEntry(GetDocument().storeRef, 0, &e));
    EXPECT_EQ(e.type, FourCC("Actn"));
    EXPECT_EQ(e.id, 5);
    EXPECT_EQ(NameText(e.name, kBlobNameSize), "back to last");
    EXPECT_NE(GetBlobById(FourCC("Actn"), 5), 0);
}

TEST_F(FixtureStackTest, SampleMediaTextFieldButtonAndSound) {
    Open("sample-media.stk");
    EXPECT_EQ(HeaderField(kHdrCardCount), 1);
    ASSERT_EQ(CardCount(), 1);
    MemRefLock card(GetCardByPosition(1));
    const uint8_t* c = card.data();
    const std::vector<uint32_t> offsets = ItemOffsets(c);
    ASSERT_EQ(offsets.size(), 2u);
    const uint8_t* field = c + offsets[0];
    EXPECT_EQ(ReadS16(field + kItemKind), kItemKindText);
    EXPECT_EQ(ReadS16(field + kItemId), 201);
    EXPECT_EQ(Rect(field), (std::vector<int16_t>{20, 20, 300, 90}));
    const uint8_t* button = c + offsets[1];
    EXPECT_EQ(ReadS16(button + kItemKind), kItemKindButton);
    EXPECT_EQ(ReadS16(button + kItemId), 202);
    EXPECT_EQ(ReadS16(button + kButtonHeadSize + kSubType), 83);  // plays a sound from the stack

    uint8_t name[kBlobNameSize];
    ASSERT_TRUE(GetBlobName(FourCC("Snd "), 7, name));
    MemRef sound = GetBlobById(FourCC("Snd "), 7);
    ASSERT_NE(sound, 0);
    EXPECT_EQ(GetMemRefSize(sound), GetBlobSize(GetDocument().storeRef, FourCC("Snd "), 7));
}

}  // namespace
