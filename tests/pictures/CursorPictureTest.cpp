#include "pictures/CursorPicture.h"

#include <gtest/gtest.h>

namespace {

TEST(CursorPictureTest, EveryCursorTheWindowAsksForHasAPictureThatAims) {
    // The ids a stack can store for its items, cards and itself, and the two hands.
    const int32_t ids[] = {28016, 28032, 28048, 28064, 28080, 28096, 28112, kFlatHandCursor, kGrabHandCursor};
    static_assert(sizeof(ids) / sizeof(ids[0]) == kNumberedCursorCount + 2);
    for (int32_t id : ids) {
        SCOPED_TRACE(id);
        const ResourcePicture* picture = FindCursorPicture(id);
        ASSERT_NE(picture, nullptr);
        ASSERT_TRUE(picture->hasHotSpot);
        EXPECT_EQ((std::pair{picture->pixels.width, picture->pixels.height}), (std::pair{32, 32}));
        // The hot spot lies on the drawing, not on a see-through pixel beside it.
        EXPECT_TRUE(picture->mask.Get(picture->hotSpotX, picture->hotSpotY));
    }
    for (int32_t k = 0; k < kNumberedCursorCount; ++k) EXPECT_EQ(NumberedCursorId(k), ids[k]);
}

TEST(CursorPictureTest, OtherIdsGetNoPicture) {
    // The arrow, ids off the numbered grid or past its end, and an alert picture's name-alike.
    for (int32_t id : {kArrowCursor, -1, 28000, 28017, 28024, 28128, 27984, 1, 0x10000, 0x10003})
        EXPECT_EQ(FindCursorPicture(id), nullptr) << id;
}

}  // namespace
