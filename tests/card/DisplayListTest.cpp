// The DisplayList: order of the live records, the hit test by kind, the items' clip and mask.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "card/DisplayList.h"
#include "card/OffscreenCard.h"
#include "stack/CardRecord.h"

namespace {

// A mask from rows of '#' and '.'.
BitMask MaskOf(std::initializer_list<const char*> rows) {
    BitMask mask(static_cast<int32_t>(std::string(*rows.begin()).size()), static_cast<int32_t>(rows.size()));
    int32_t y = 0;
    for (const char* row : rows) {
        for (int32_t x = 0; row[x]; ++x) mask.Set(x, y, row[x] == '#');
        ++y;
    }
    return mask;
}

// A record hit by its rectangle, or by `mask` at its corner when one is given.
void Insert(int16_t type, int16_t id, const Rect& r, int16_t shape = 2, uint16_t flags = 0,
            std::initializer_list<const char*> mask = {}, int32_t position = -1) {
    auto item = std::make_unique<DisplayItem>();
    std::tie(item->type, item->id, item->rect, item->shape, item->flags) = std::make_tuple(type, id, r, shape, flags);
    item->region = Region(r);
    item->hasRegion = true;
    if (mask.size()) std::tie(item->mask, item->hasMask) = std::make_tuple(MaskOf(mask), true);
    InsertDisplayItem(std::move(item), position);
}

std::vector<int16_t> Ids() {
    std::vector<int16_t> ids;
    for (const DisplayItem* item = DisplayListHead(); item; item = item->next.get()) ids.push_back(item->id);
    return ids;
}

class DisplayListTest : public testing::Test {
protected:
    void SetUp() override {
        ResetOffscreenState();
        ASSERT_TRUE(InitDataBase(64, 48, 8, false));
    }
    void TearDown() override { ResetOffscreenState(); }
};

TEST_F(DisplayListTest, HitTestTakesTheTopmostRecordByItsKind) {
    // Bottom to top: a text field, two overlapping buttons, a rectangle button (hit by its
    // rectangle alone), a picture button and a transparent graphic with masks at their corners, a
    // hover button.
    Insert(kItemKindText, 1, {0, 0, 64, 48});
    Insert(kItemKindButton, 2, {10, 10, 30, 30});
    Insert(kItemKindButton, 3, {20, 20, 40, 40});
    Insert(kItemKindButton, 4, {40, 0, 50, 10}, 4);
    FindDisplayItem(kItemKindButton, 4)->hasRegion = false;
    Insert(kItemKindButton, 5, {50, 0, 53, 2}, 6, 0, {"#..", ".#."});
    Insert(kItemKindGraphic, 6, {50, 10, 53, 12}, 2, 0, {"..#", "###"});
    Insert(kItemKindButton, 7, {0, 40, 10, 48}, 2, kItemFlagHover);

    struct Case { int32_t x, y; bool buttonsOnly; int16_t ignoreId, expected; };  // expected 0: nothing
    const Case cases[] = {
        {25, 25, false, 0, 3}, {25, 25, false, 3, 2}, {5, 5, false, 0, 1}, {45, 5, false, 0, 4}, {50, 0, false, 0, 5},
        {51, 0, false, 0, 1},  {52, 10, false, 0, 6}, {50, 10, false, 0, 1}, {5, 45, false, 0, 7},  {5, 45, true, 0, 7},
        {25, 25, true, 0, 0},  {5, 45, true, 7, 0},   {70, 70, false, 0, 0},
    };
    for (const Case& c : cases) {
        const DisplayItem* ignore = c.ignoreId ? FindDisplayItem(kItemKindButton, c.ignoreId) : nullptr;
        const DisplayItem* hit = FindItemAt(c.x, c.y, c.buttonsOnly, ignore);
        EXPECT_EQ(hit ? hit->id : 0, c.expected)
            << "at " << c.x << "," << c.y << (c.buttonsOnly ? " hover only" : "") << " ignoring " << c.ignoreId;
    }
}

TEST_F(DisplayListTest, RecordsAreLinkedMovedAndRemovedByPosition) {
    for (int16_t id = 1; id <= 3; ++id) Insert(kItemKindButton, id, {0, 0, 1, 1});
    Insert(kItemKindButton, 4, {0, 0, 1, 1}, 2, 0, {}, 1);      // at the bottom
    Insert(kItemKindButton, 5, {0, 0, 1, 1}, 2, 0, {}, 3);      // after two records
    Insert(kItemKindButton, 6, {0, 0, 1, 1}, 2, 0, {}, 40000);  // past the end: the top
    EXPECT_EQ(Ids(), (std::vector<int16_t>{4, 1, 5, 2, 3, 6}));
    EXPECT_EQ(DisplayListLength(), 6);

    struct Move { int16_t id; char direction; bool toEnd; std::vector<int16_t> after; };
    const Move moves[] = {
        {5, 'C', false, {4, 5, 1, 2, 3, 6}}, {5, 'C', true, {5, 4, 1, 2, 3, 6}},
        {5, 'C', false, {5, 4, 1, 2, 3, 6}}, {1, 'F', false, {5, 4, 2, 1, 3, 6}},
        {4, 'F', true, {5, 2, 1, 3, 6, 4}},  {4, 'F', false, {5, 2, 1, 3, 6, 4}},
    };
    for (const Move& m : moves) {
        MoveDisplayItem(FindDisplayItem(kItemKindButton, m.id), m.direction, m.toEnd);
        EXPECT_EQ(Ids(), m.after) << "moving " << m.id << " " << m.direction << (m.toEnd ? " to the end" : "");
    }
    RemoveDisplayItem(FindDisplayItem(kItemKindButton, 3));
    EXPECT_EQ(Ids(), (std::vector<int16_t>{5, 2, 1, 6, 4}));
    EXPECT_EQ(FindDisplayItem(kItemKindGraphic, 2), nullptr) << "found by kind and id together";
    FreeDisplayList();
    EXPECT_EQ(DisplayListHead(), nullptr);
}

TEST_F(DisplayListTest, TheClipAndTheMaskLeaveOutEveryItemShape) {
    Insert(kItemKindButton, 1, {0, 0, 10, 10});
    Insert(kItemKindText, 2, {60, 40, 70, 50});  // partly off the display
    // Two graphics whose masks overlap: the overlap is taken out again by the exclusive-or.
    Insert(kItemKindGraphic, 3, {20, 0, 23, 1}, 2, 0, {"##."});
    Insert(kItemKindGraphic, 4, {21, 0, 24, 1}, 2, 0, {"#.#"});

    // Graphics leave the clip by their rectangles; nothing outside the display is in it.
    const Region& clip = GetItemsClip();
    EXPECT_EQ((std::vector<bool>{clip.Contains(5, 5), clip.Contains(21, 0), clip.Contains(63, 47),
                                 clip.Contains(10, 10), clip.Contains(59, 47), clip.Contains(64, 10)}),
              (std::vector<bool>{false, false, false, true, true, false}));

    const BitMask items = MakeItemsMask();
    ASSERT_EQ((std::vector<int32_t>{items.width, items.height}), (std::vector<int32_t>{64, 48}));
    std::string row0;
    for (int32_t x = 18; x < 26; ++x) row0 += items.Get(x, 0) ? '#' : '.';
    EXPECT_EQ(row0, "..#..#..");
    EXPECT_EQ((std::vector<bool>{items.Get(9, 9), items.Get(10, 9), items.Get(63, 47), items.Get(59, 47)}),
              (std::vector<bool>{true, false, true, false}));

    FreeDisplayList();
    EXPECT_EQ(GetItemsClip(), Region(Rect{0, 0, 64, 48}));
}

}  // namespace
