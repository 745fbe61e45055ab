// The card list, the group rules and the item walk, on cards made in memory.
#include "stack/CardList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "base/ByteOrder.h"
#include "messages/Alert.h"
#include "platform/headless/HeadlessHost.h"
#include "stack/CardRecord.h"

namespace {

struct ItemSpec { int16_t kind; int16_t id; uint16_t flags = 0; std::string name = ""; };

std::vector<uint8_t> NativeItem(const ItemSpec& s) {
    const bool graphic = s.kind == kItemKindGraphic, button = s.kind == kItemKindButton;
    const uint32_t head = graphic ? kGraphicHeadSize : button ? kButtonHeadSize : kTextHeadSize;
    const uint32_t nameAt = graphic ? kGraphicName : button ? kButtonName : kTextName;
    std::vector<uint8_t> b(head, 0);
    Write16(&b[kItemKind], static_cast<uint16_t>(s.kind));
    Write16(&b[kItemId], static_cast<uint16_t>(s.id));
    Write32(&b[kItemLength], head);
    Write16(&b[kItemFlags], s.flags);
    b[nameAt] = static_cast<uint8_t>(s.name.size());
    std::memcpy(&b[nameAt + 1], s.name.data(), s.name.size());
    return b;
}

// A native card; kind 1 gets a 40-byte background chunk in front of its items.
MemRef MakeCard(int16_t id, int16_t kind, int16_t ownerId, const std::vector<ItemSpec>& items = {},
                const std::string& name = "") {
    std::vector<uint8_t> c(kCardHeadSize, 0);
    Write16(&c[kCardId], static_cast<uint16_t>(id));
    Write16(&c[kCardKind], static_cast<uint16_t>(kind));
    Write16(&c[kCardOwnerId], static_cast<uint16_t>(ownerId));
    c[kCardName] = static_cast<uint8_t>(name.size());
    std::memcpy(&c[kCardName + 1], name.data(), name.size());
    if (kind == kCardKindPicture) {
        std::vector<uint8_t> bg(40, 0);
        Write16(&bg[kBgTag], 8);
        Write32(&bg[kBgLength], 40);
        c.insert(c.end(), bg.begin(), bg.end());
    }
    for (const ItemSpec& item : items) {
        const std::vector<uint8_t> chunk = NativeItem(item);
        c.insert(c.end(), chunk.begin(), chunk.end());
    }
    c.insert(c.end(), {0, 0, 0xCE, 0xFA});
    Write32(&c[kCardSize], static_cast<uint32_t>(c.size()));
    MemRef ref = NewCardMemRef(static_cast<uint32_t>(c.size()) - 2);
    MemRefLock lock(ref);
    std::memcpy(lock.data(), c.data(), c.size());
    return ref;
}

int16_t ItemIdAt(MemRef card, uint32_t offset) { return ReadS16(MemRefLock(card).data() + offset + kItemId); }

class CardListTest : public testing::Test {
protected:
    void SetUp() override { ResetHeadlessState(), ResetAlertState(), CloseStack(); }
    void TearDown() override { CloseStack(); }

    static void Add(MemRef card) { ASSERT_FALSE(InsertCard(card, CardCount())); }
    static std::vector<int16_t> Ids() {
        std::vector<int16_t> ids;
        for (int32_t i = 1; i <= CardCount(); ++i) ids.push_back(GetCardId(GetCardByPosition(i)));
        return ids;
    }
    // The walk as (card id, item id) pairs; a 0 pair where NextItem answered false mid-walk.
    static std::vector<std::pair<int16_t, int16_t>> Walk(MemRef card, bool followGroup, bool stop) {
        std::vector<std::pair<int16_t, int16_t>> seen;
        ItemWalker walker;
        BeginItemWalk(&walker, card, followGroup);
        for (int guard = 0; guard < 20; ++guard) {
            MemRef at = 0;
            uint32_t offset = 0;
            const bool got = NextItem(&walker, &at, &offset, stop);
            if (!got && walker.finished) break;
            seen.emplace_back(got ? GetCardId(at) : 0, got ? ItemIdAt(at, offset) : 0);
        }
        EndItemWalk(&walker);
        return seen;
    }
};

TEST_F(CardListTest, InsertPutsRowsWhereAskedAndTheFirstRowFirst) {
    EXPECT_FALSE(InsertCard(MakeCard(1, 0, -1), 5));  // an empty list takes it at the start
    EXPECT_FALSE(InsertCard(MakeCard(2, 0, -1), 1));
    EXPECT_FALSE(InsertCard(MakeCard(3, 0, -1), 1));
    EXPECT_FALSE(InsertCard(MakeCard(4, 0, -1), 0));
    EXPECT_FALSE(InsertCard(MakeCard(5, 0, -1), 99));
    EXPECT_EQ(Ids(), (std::vector<int16_t>{4, 1, 3, 2, 5}));
    EXPECT_EQ(GetCardPosition(GetCardById(3)), 3);
    EXPECT_EQ(GetCardById(6), 0);
    EXPECT_EQ(GetCardByPosition(6), 0);
    EXPECT_TRUE(GetHeadlessState().alertsShown.empty());
}

TEST_F(CardListTest, ItemsAreFoundByIdPositionAndName) {
    const std::vector<ItemSpec> items = {
        {kItemKindButton, 11, 0, "Go"},
        {kItemKindGraphic, 12, 0, "  Logo "},
        {kItemKindButton, 13, kItemFlagWalkHidden, "Secret"},
        {kItemKindText, 14, 0, "Notes"},
    };
    MemRef picture = MakeCard(1, 1, 0, items);
    Add(picture);
    Add(MakeCard(2, 0, -1, {{kItemKindButton, 21, 0, "Go"}, {kItemKindButton, 13, 0, "Again"}}));

    EXPECT_EQ(FirstItemOffset(picture), kCardHeadSize + 40);

    uint32_t offset = 0;
    ASSERT_TRUE(FindItemOnCard(kItemKindButton, 13, picture, &offset));
    EXPECT_EQ(offset, kCardHeadSize + 40 + kButtonHeadSize + kGraphicHeadSize);
    EXPECT_EQ(ItemPosition(picture, kItemKindButton, 13), 2);
    EXPECT_EQ(ItemPosition(picture, kItemKindText, 14), 1);

    // FindItem's current card first is GoToCardCodeTest's: a button of the same id on each card.
    MemRef found = 0;
    const struct { int16_t kind; const char* name; bool trim; int16_t id; /* 0: not found */ } byName[] = {
        {kItemKindButton, "go", false, 11},    {kItemKindGraphic, "logo", true, 12},
        {kItemKindGraphic, "logo", false, 0},  {kItemKindButton, "Secret", false, 0},  // hidden from the walk
        {kItemKindButton, "again", false, 13}, {kItemKindButton, "Notes", false, 0},
    };
    for (const auto& c : byName) {
        const std::string name = static_cast<char>(std::strlen(c.name)) + std::string(c.name);
        const bool hit = FindItemByName(c.kind, reinterpret_cast<const uint8_t*>(name.data()), &found, &offset, c.trim);
        EXPECT_EQ(hit ? ItemIdAt(found, offset) : 0, c.id) << c.name;
    }
}

TEST_F(CardListTest, WalkGivesTheOwnersSharedItemsFirst) {
    Add(MakeCard(1, 1, 0, {{kItemKindGraphic, 101, kItemFlagShared}, {kItemKindButton, 102},
                           {kItemKindButton, 103, kItemFlagShared | kItemFlagWalkHidden}}));
    Add(MakeCard(2, 3, 1, {{kItemKindButton, 201}, {kItemKindText, 202, kItemFlagWalkHidden},
                           {kItemKindButton, 203, kItemFlagShared}}));
    Add(MakeCard(3, 3, 99, {{kItemKindButton, 301}}));
    Add(MakeCard(4, 3, 2, {}));
    Add(MakeCard(5, 1, 0, {}));
    // A picture card belongs to a group while a member names it as its owner.
    EXPECT_EQ((std::vector<bool>{IsGroupCard(GetCardById(1)), IsGroupCard(GetCardById(4)), IsGroupCard(GetCardById(5))}),
              (std::vector<bool>{true, true, false}));
    using Seen = std::vector<std::pair<int16_t, int16_t>>;
    const struct { int16_t start; bool followGroup, stop; Seen expected; } cases[] = {
        {2, true, false, {{1, 101}, {2, 201}, {2, 203}}},
        {2, true, true, {{1, 101}, {0, 0}, {2, 201}, {2, 203}}},
        {2, false, false, {{2, 201}, {2, 203}}},
        {1, true, false, {{1, 101}, {1, 102}}},
        {3, true, false, {{3, 301}}},  // a dead owner: the card's own items
        {4, true, false, {{1, 101}}},  // a member with none of its own, through a member
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Walk(GetCardById(c.start), c.followGroup, c.stop), c.expected)
            << "card " << c.start << (c.followGroup ? " with group" : "") << (c.stop ? " stopping" : "");
    }
}

}  // namespace
