#include "ui/AlertDraw.h"

#include <gtest/gtest.h>

#include <string>

#include "messages/Alert.h"
#include "platform/AlertLayout.h"
#include "support/Golden.h"

namespace {

AlertLayout Layout(const std::string& text) {
    AlertLayout layout;
    EXPECT_TRUE(BuildAlertLayout(0, text, true, &layout)) << text;
    return layout;
}

// The box of the pixels that differ between two surfaces of one size; empty when none do.
Rect Differences(const Surface& a, const Surface& b) {
    Rect r{a.width, a.height, 0, 0};
    for (int32_t y = 0; y < a.height; ++y) {
        for (int32_t x = 0; x < a.width; ++x) {
            if (a.Row(y)[x] == b.Row(y)[x]) continue;
            r = UnionRect(r.IsEmpty() ? Rect{x, y, x + 1, y + 1} : r, Rect{x, y, x + 1, y + 1});
        }
    }
    return r;
}

Rect BoxRect(const AlertLayout& layout, int button) {
    const AlertRect& r = layout.buttons[button - 1].rect;
    return {r.left + layout.frame, r.top + layout.frame, r.right + layout.frame, r.bottom + layout.frame};
}

const char* const kThreeButtons = "03This stack was changed, do you want to save it?~Save~Cancel~Don't Save";

TEST(AlertDrawTest, DialogFontMatchesTheBaseWidthOfTheLayout) {
    const TextFont font = AlertFont();
    ASSERT_TRUE(FontAvailable(font));
    const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    const int32_t total = MeasureText(font, letters);
    EXPECT_EQ((total + 26) / 52, kDialogBaseWidthPx);
}

TEST(AlertDrawTest, ButtonsAreFoundInBoxCoordinates) {
    const AlertLayout layout = Layout(kThreeButtons);
    ASSERT_EQ(layout.buttonCount, 3);
    for (int button = 1; button <= 3; ++button) {
        SCOPED_TRACE(button);
        const Rect r = BoxRect(layout, button);
        EXPECT_EQ(AlertButtonAt(layout, r.left, r.top), button);
        EXPECT_EQ(AlertButtonAt(layout, r.right - 1, r.bottom - 1), button);
        EXPECT_EQ(AlertButtonAt(layout, r.left - 1, r.top), 0);
        EXPECT_EQ(AlertButtonAt(layout, r.left, r.bottom), 0);
    }
    EXPECT_EQ(AlertButtonAt(layout, 200, 40), 0);  // the text
}

TEST(AlertDrawTest, PressingChangesOnlyThatButton) {
    const AlertLayout layout = Layout(kThreeButtons);
    const Surface up = RenderAlert(layout, 0);
    ASSERT_EQ(up.width, layout.width);
    ASSERT_EQ(up.height, layout.height);
    for (int button = 1; button <= 3; ++button) {
        SCOPED_TRACE(button);
        const Rect changed = Differences(up, RenderAlert(layout, button));
        ASSERT_FALSE(changed.IsEmpty());
        EXPECT_EQ(IntersectRect(changed, BoxRect(layout, button)), changed);
    }
    EXPECT_TRUE(Differences(up, RenderAlert(layout, 4)).IsEmpty());
}

TEST(AlertDrawTest, DrawsAtItsOriginAndOnlyInsideTheBox) {
    const AlertLayout layout = Layout("21Sorry, some kind of error has occurred.~^OK~Cancel");
    const Surface alone = RenderAlert(layout, 2);
    constexpr uint32_t kBackground = 0x336699;
    for (const Point& origin : {Point{-40, -25}, Point{300, 90}}) {  // cut left and top, right and bottom
        SCOPED_TRACE(testing::Message() << origin.x << "," << origin.y);
        Surface screen(400, 200, kBackground);
        DrawAlert(screen, origin, layout, 2);
        const Rect box{origin.x, origin.y, origin.x + layout.width, origin.y + layout.height};
        int mismatches = 0;
        for (int32_t y = 0; y < screen.height; ++y) {
            for (int32_t x = 0; x < screen.width; ++x) {
                const uint32_t want = box.Contains(x, y) ? alone.Row(y - origin.y)[x - origin.x] : kBackground;
                mismatches += screen.Row(y)[x] != want;
            }
        }
        EXPECT_EQ(mismatches, 0);
    }
}

#if QB_GOLDEN_TESTS
TEST(AlertDrawTest, EachSizeClassLooksLikeADialog) {
    // One box of each size, with each picture, no picture, and one, two and three buttons.
    const char* const texts[10] = {
        kThreeButtons, "11Sorry, some kind of error has occurred.~^OK", "24Sorry, I can't find that card.~^OK",
        "33Are you sure you want to delete this Extra?~OK~^Cancel",
        "42Sorry, I haven't seen any marked cards yet.~^OK",
        "54You've just created a new stack, it is called 'Untitled' and you are on the first "
        "card. You can now paint with the paint tools, add buttons and use 'New Card' to add "
        "more cards.~^OK", "61Sorry, an I/O error has occurred, this could mean that there is a problem with your "
        "disk.~^Try Again~Cancel", "70Sorry, the name you gave is not allowed, try another.~^OK",
        "84I can't talk to the laser disc player. Please check that it is turned on and "
        "connected.~^Try Again~Other Player~Cancel",
        "93This stack was converted to support new features.\nIf you replace the original it "
        "will no longer work with earlier versions of Quillbrook.\nDo you want to replace the "
        "original?~Save As...~Replace~Cancel", };
    for (int digit = 0; digit < 10; ++digit) {
        SCOPED_TRACE(texts[digit]);
        const AlertLayout layout = Layout(texts[digit]);
        ASSERT_EQ(layout.sizeClass, digit);
        ExpectMatchesGolden(RenderAlert(layout), "alert-size-" + std::to_string(digit));
    }
}
#endif

}  // namespace
