#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/ByteOrder.h"
#include "card/DisplayList.h"
#include "gfx/Draw.h"
#include "stack/CardRecord.h"
#include "support/FieldCard.h"
#include "text/TextRecord.h"
#if QB_GOLDEN_TESTS
#include "support/Golden.h"
#endif

namespace {

#if QB_GOLDEN_TESTS
// A run of `points` in the colour (r, g, b) of 8-bit components.
StyleRun Styled(uint32_t start, uint8_t style, uint16_t points, uint8_t r, uint8_t g, uint8_t b) {
    return {start, 0, 0, 0, style, points, uint16_t(r * 257), uint16_t(g * 257), uint16_t(b * 257)};
}

// Framed and plain, filled and transparent fields, a scroll bar, each alignment, runs of several
// sizes and styles that wrap, a line as tall as its tallest run, and a word too long for its field.
TEST(TextFieldTest, FieldsShowTheirStyledText) {
    const std::string verse = "The quick brown fox jumps over the lazy dog";
    const Field fields[] = {
        {{10, 10, 190, 110}, 0, kTextViewFrame, 0, 0, "Heading and more\r" + verse,
         {Styled(0, 1, 18, 200, 0, 0), Styled(7, 0, 12, 0, 0, 0), Styled(21, 2, 12, 0, 0, 160), Styled(27, 4, 12, 0, 0, 0)}},
        {{200, 10, 310, 110}, 0, kTextViewFrame | kTextViewScrollBar, 3, 1, verse, {Styled(0, 0, 14, 0, 90, 0)}},
        {{10, 120, 190, 190}, 0, 0, 3, -1, "Right\r" + verse, {Styled(0, 0, 10, 0, 0, 0)}},
        {{200, 120, 310, 190}, kTextFlagTransparent, 0, 0, 0, "Transparent\rExtraordinarily",
         {Styled(0, 1, 16, 255, 255, 255)}},
    };
    Surface s(320, 200, kWhite);
    for (int32_t y = 0; y < s.height; y += 8) FillRect(s, s.Bounds(), {0, y, s.width, y + 4}, Rgb(60, 110, 170));
    std::vector<uint32_t> colors(256, kWhite);
    colors[2] = Rgb(250, 240, 180);
    for (const Field& f : fields) {
        const MemRef card = FieldCard(f);
        DisplayItem item;
        ASSERT_TRUE(ReadItemHead(card, kCardHeadSize, kTextHeadSize, &item));
        LoadTextField(&item, card, kCardHeadSize);
        DrawTextField(s, s.Bounds(), item, colors.data());
        FreeMemRef(card);
    }
    ExpectMatchesGolden(s, "text-fields");
}
#endif

}  // namespace
