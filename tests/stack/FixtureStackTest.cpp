// The fixture stacks, written by another tool: every fact they list must come out of our reader.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "base/ByteOrder.h"
#include "stack/Blob.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/Names.h"
#include "stack/PathSlot.h"
#include "stack/StackHeader.h"
#include "stack/StackReader.h"
#include "stack/SubRecord.h"
#include "text/TextRecord.h"

namespace {

class FixtureStackTest : public testing::Test {
protected:
    void SetUp() override { InitPathSlots(); }
    void TearDown() override { CloseStack(); }

    void Open(const std::string& name) {
        LoadFault fault;
        ASSERT_EQ(ReadStackFile(std::string(QB_FIXTURES_DIR) + "/" + name, &fault), 0) << fault.detail;
        ASSERT_TRUE(fault.opened);
    }
    static int16_t HeaderField(uint32_t at) { return ReadS16(MemRefLock(GetDocument().stackHeader).data() + at); }
    static int16_t CardField(int position, uint32_t at) {
        return ReadS16(MemRefLock(GetCardByPosition(position)).data() + at);
    }
    // The item's offset on the card at `position`, found by kind and id; ids found in chain order.
    static uint32_t ItemAt(int position, int16_t kind, int16_t id) {
        uint32_t at = 0;
        EXPECT_TRUE(FindItemOnCard(kind, id, GetCardByPosition(position), &at)) << id;
        return at;
    }
    static std::vector<int16_t> Rect(const uint8_t* item) {
        return {ReadS16(item + kItemRect), ReadS16(item + kItemRect + 2), ReadS16(item + kItemRect + 4),
                ReadS16(item + kItemRect + 6)};
    }
};

TEST_F(FixtureStackTest, SampleCardsHeaderCardsItemsAndRecords) {
    ASSERT_NO_FATAL_FAILURE(Open("sample-cards.stk"));
    EXPECT_EQ((std::vector<int16_t>{HeaderField(kHdrCardCount), HeaderField(kHdrCardWidth), HeaderField(kHdrCardHeight),
                                    HeaderField(kHdrDepth)}), (std::vector<int16_t>{4, 640, 480, 8}));
    ASSERT_EQ(CardCount(), 4);

    const struct { int16_t id, kind; std::string name; } cards[] = {
        {2, 1, "Cover"}, {3, 3, "Shared"}, {4, 0, "Blank"}, {1, 0, "Last"}};
    for (int i = 0; i < 4; ++i) {
        MemRefLock lock(GetCardByPosition(i + 1));
        const uint8_t* c = lock.data();
        EXPECT_EQ((std::tuple{ReadS16(c + kCardId), ReadS16(c + kCardKind), NameText(c + kCardName, 16)}),
                  (std::tuple{cards[i].id, cards[i].kind, cards[i].name})) << "card " << i + 1;
        EXPECT_EQ(Read32(c + kCardSize), GetMemRefSize(GetCardByPosition(i + 1)));
    }
    EXPECT_EQ(CardField(2, kCardOwnerId), 2);  // card 3 shows card 2's picture
    EXPECT_EQ(CardField(3, kCardArriveAction), 5);
    EXPECT_EQ(CardField(1, kCardHeadSize + kBgFormat), 2);

    const struct { int16_t id; std::string name; std::vector<int16_t> rect; int16_t shape; } items[] = {
        {101, "Forward", {40, 420, 200, 460}, 0},
        {102, "Round", {240, 420, 400, 460}, 2},
        {103, "Plain", {440, 420, 600, 460}, 4},
    };
    uint32_t before = 0;
    for (const auto& fact : items) {
        const uint32_t at = ItemAt(1, kItemKindButton, fact.id);
        EXPECT_GT(at, before);
        before = at;
        MemRefLock cover(GetCardByPosition(1));
        const uint8_t* item = cover.data() + at;
        EXPECT_EQ((std::tuple{NameText(item + kButtonName, 32), Rect(item), ReadS16(item + kButtonShape)}),
                  (std::tuple{fact.name, fact.rect, fact.shape}));
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
    ASSERT_NO_FATAL_FAILURE(Open("sample-media.stk"));
    EXPECT_EQ(HeaderField(kHdrCardCount), 1);
    ASSERT_EQ(CardCount(), 1);
    const uint32_t field = ItemAt(1, kItemKindText, 201);
    const uint32_t button = ItemAt(1, kItemKindButton, 202);
    EXPECT_LT(field, button);
    MemRefLock card(GetCardByPosition(1));
    EXPECT_EQ(Rect(card.data() + field), (std::vector<int16_t>{20, 20, 300, 90}));
    EXPECT_EQ(ReadS16(card.data() + button + kButtonHeadSize + kSubType), 83);  // plays a sound from the stack
    const uint32_t length = Read32(card.data() + field + kItemLength);
    uint32_t at = 0;
    TextRecord text;
    ASSERT_TRUE(FindTextRecord(card.data() + field, length, 1, false, &at));
    ASSERT_EQ(ReadTextRecord(card.data() + field + at, length - at, false, &text), 0);
    EXPECT_EQ(text.text, "A sample field\rwith two lines.");
    ASSERT_EQ(text.runs.size(), 1u);
    EXPECT_EQ(text.runs[0].fontId, 20);
    EXPECT_EQ(text.runs[0].size, 14);

    uint8_t name[kBlobNameSize];
    ASSERT_TRUE(GetBlobName(FourCC("Snd "), 7, name));
    MemRef sound = GetBlobById(FourCC("Snd "), 7);
    ASSERT_NE(sound, 0);
    EXPECT_EQ(GetMemRefSize(sound), GetBlobSize(GetDocument().storeRef, FourCC("Snd "), 7));
}

}  // namespace
