// Which link a click on a field's words finds, with links for the field and for every field.
#include "actions/HyperLinks.h"

#include <vector>

#include "actions/ActionStack.h"
#include "card/DisplayList.h"
#include "card/FieldSelection.h"
#include "card/FieldScroll.h"
#include "card/OffscreenCard.h"
#include "gfx/Blit.h"
#include "support/FieldCard.h"
#if QB_GOLDEN_TESTS
#include "support/Golden.h"
#endif

namespace {

// An 'Hlnk' record as a stack stores it: the head, the words at 23, then its action if it has one.
Bytes StoredLink(uint16_t id, uint16_t fieldId, const std::string& words, bool hasAction) {
    Bytes b(23, 0);
    PutBE16(b, 0, id);
    PutBE16(b, 2, fieldId);
    PutBE16(b, 6, static_cast<uint16_t>(words.size()));
    b[8] = hasAction;
    Append(b, Of(words));
    b.push_back(0);
    if (hasAction) Append(b, StoredAction(id, {}));
    return StoredRecord("Hlnk", id, "", b);
}

class HyperLinksTest : public ActionStackTest {};

TEST_F(HyperLinksTest, AClickFindsTheLinkOfTheWordsItFallsStrictlyInside) {
    Open(WriteActionStack("links.stk", {{1}},
                          {StoredLink(1, 0, "garden", true), StoredLink(2, kFieldCardItemId, "GARDEN", true),
                           StoredLink(3, 0, "pond", false), StoredLink(4, 0, "walk", true)}));
    const std::string text = "Walk to the garden or the pond";
    DisplayItem field;
    ASSERT_TRUE(LoadField({{10, 10, 400, 60}, 0, 0, 0, 0, text, {}}, &field));
    const struct {
        size_t character;
        int16_t link;
    } clicks[] = {
        {12, 0},  // the first character of "garden" misses
        {13, 2},  // the field's own link beats the one for every field
        {17, 2},
        {27, 0},  // "pond" has no action
        {1, 4},   // words match ignoring case
        {8, 0},
    };
    for (const auto& click : clicks) {
        const Rect cell = RangeRects(field.document, field.layout, click.character, click.character + 1).at(0);
        size_t start = 0, end = 0;
        EXPECT_EQ(FindHyperLink(field, field.textArea.left + cell.left + 1, field.textArea.top + cell.top + 1, &start, &end),
                  click.link)
            << click.character;
        if (click.link == 2) {
            EXPECT_EQ(text.substr(start, end - start), "garden");
        }
    }
    EXPECT_EQ(FindHyperLink(field, field.rect.right + 5, field.rect.top + 5, nullptr, nullptr), 0);
    // Typed into, the field's selection decides wherever the point is: within the words, their
    // first character included.
    const struct {
        size_t selStart, selEnd;
        int16_t link;
    } selections[] = {{12, 12, 2}, {13, 18, 2}, {10, 15, 0}, {18, 18, 2}, {19, 19, 0}};
    for (const auto& s : selections) {
        SelectInField(field, s.selStart, s.selEnd);
        size_t start = 0, end = 0;
        EXPECT_EQ(FindHyperLink(field, 0, 0, &start, &end), s.link) << s.selStart << "-" << s.selEnd;
    }
    LeaveActiveField();
}

#if QB_GOLDEN_TESTS
std::vector<Surface> gFlashes;  // the screen at each wait
void WaitAndKeep(uint32_t deadline) {
    gFlashes.push_back(GetHeadlessState().screen);
    HeadlessHost().WaitUntil(deadline);
}

// A click on hot words shows them inverted, hidden, inverted, 300 ms apart, and leaves the field as
// it was before the link's action runs; in a scrolled field the words flash where they are seen,
// and a field lying over the words stays as it is. The golden image holds the first flash of each
// field, one above the other.
TEST_F(HyperLinksTest, ClickedWordsFlashWhereTheyAreSeen) {
    Open(WriteActionStack("flash.stk", {{1}}, {StoredLink(1, 0, "garden", true)}));
    GetDocument().autoTimers = true;
    Host host = HeadlessHost();
    host.WaitUntil = WaitAndKeep;
    SetHost(host);
    std::string lines;
    for (int i = 1; i <= 12; ++i) lines += (i == 7 ? "The garden gate" : "Line " + std::to_string(i)) + "\r";
    const Field fields[] = {
        {{10, 10, 250, 50}, 0, kTextViewFrame, 0, 0, "Walk to the garden or the pond", {}},
        {{10, 60, 250, 140}, 0, kTextViewFrame | kTextViewScrollBar, 0, 0, lines, {}},
        {{100, 14, 170, 34}, 0, kTextViewFrame, 0, 0, "Over", {}},
    };
    std::vector<DisplayItem*> added;
    for (const Field& f : fields) {
        const MemRef card = FieldCard(f);
        added.push_back(AddTextNode(card, kCardHeadSize, -1));
        FreeMemRef(card);
        ASSERT_TRUE(added.back());
    }
    ScrollFieldTo(*added[1], added[1]->layout.lines[4].top);
    RepaintRect(0, 0, 260, 150);
    const Surface before = GetHeadlessState().screen;
    Surface golden(260, 2 * 150);
    for (int i = 0; i < 2; ++i) {
        const DisplayItem& field = *added[i];
        const size_t at = field.document.text.find("garden") + 2;
        const Rect cell = RangeRects(field.document, field.layout, at, at + 1).at(0);
        gFlashes.clear();
        const uint32_t clock = GetHeadlessState().clockMs;
        ASSERT_TRUE(ClickHyperLink(nullptr, field.textArea.left + cell.left + 1,
                                   field.textArea.top - field.scrollValue + cell.top + 1));
        ASSERT_EQ(gFlashes.size(), 3u);
        EXPECT_EQ(GetHeadlessState().clockMs - clock, 3 * kLinkFlashMs);
        EXPECT_EQ(GetHeadlessState().screen.pixels, before.pixels);
        CopyRect(golden, golden.Bounds(), 0, 150 * i, gFlashes[0], {0, 0, 260, 150});
    }
    ExpectMatchesGolden(golden, "hot-word-flash");
}
#endif

}  // namespace
