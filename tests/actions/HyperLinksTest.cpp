// Which link a click on a field's words finds, with links for the field and for every field.
#include "actions/HyperLinks.h"

#include "actions/ActionStack.h"
#include "card/DisplayList.h"
#include "support/FieldCard.h"

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
    const MemRef card = FieldCard({{10, 10, 400, 60}, 0, 0, 0, 0, text, {}});
    DisplayItem field;
    ASSERT_TRUE(ReadItemHead(card, kCardHeadSize, kTextHeadSize, &field));
    LoadTextField(&field, card, kCardHeadSize);
    FreeMemRef(card);
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
}

}  // namespace
