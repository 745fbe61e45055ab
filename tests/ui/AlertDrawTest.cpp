#include "ui/AlertDraw.h"

#include <gtest/gtest.h>

#include <string>

#include "messages/Alert.h"
#include "platform/AlertLayout.h"

// The dialog's look is pinned by one golden picture of each size class.
#if QB_GOLDEN_TESTS
#include "support/Golden.h"

namespace {

TEST(AlertDrawTest, EachSizeClassLooksLikeADialog) {
    // One box of each size, with each picture, no picture, and one, two and three buttons.
    const char* const texts[10] = {
        "03This stack was changed, do you want to save it?~Save~Cancel~Don't Save",
        "11Sorry, some kind of error has occurred.~^OK", "24Sorry, I can't find that card.~^OK",
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
        AlertLayout layout;
        ASSERT_TRUE(BuildAlertLayout(0, texts[digit], true, &layout));
        ASSERT_EQ(layout.sizeClass, digit);
        ExpectMatchesGolden(RenderAlert(layout), "alert-size-" + std::to_string(digit));
    }
}

}  // namespace
#endif
