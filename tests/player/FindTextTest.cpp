// Find over the demo stack, whose fields all hold read-only text, and the Find Text dialog fed with
// scripted input.
#include "player/FindText.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "base/KeyCodes.h"
#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "card/FieldSelection.h"
#include "platform/HostPath.h"
#include "player/Navigation.h"
#include "player/StackFlows.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "support/ScriptedInput.h"
#include "support/StackBytes.h"
#include "ui/FindDialog.h"

// The demo stack is made by the desktop build's builder; the web build has none to search.
#ifdef QB_DEMO_STACK
namespace {

std::string Fold(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

class FindTextTest : public testing::Test {
protected:
    void SetUp() override {
        StartProgramAfresh();
        SetSlotPath(kSlotStack, DosPathFromHost(QB_DEMO_STACK));
        ASSERT_EQ(OpenStack(false), kResultOk);
    }
    void TearDown() override { ResetAllState(); }

    // The text the active field selects.
    static std::string Selected() {
        const DisplayItem* field = GetActiveField();
        return field ? field->document.text.substr(field->selStart, field->selEnd - field->selStart) : "";
    }
};

TEST_F(FindTextTest, AHitGoesToItsCardAndSelectsItInItsField) {
    struct Case { const char* text; uint16_t options; int16_t startCard; int16_t card; uint16_t field; };
    const Case cases[] = {
        {"lighthouse", kFindAllFields, 1, 5, 501},
        {"LightHouse", kFindAllFields, 1, 5, 501},
        {"LightHouse", kFindAllFields | kFindMatchCase, 1, 1, 0},
        {"lighthouse", kFindReadOnlyFields, 1, 5, 501},
        {"lighthouse", kFindEditableFields, 1, 1, 0},
        // Welcome is the first card and Arrived among the last: only wrap goes round.
        {"tour of what", kFindAllFields, 13, 13, 0},
        {"tour of what", kFindAllFields | kFindWrap, 13, 1, 101},
        {"no such words", kFindAllFields | kFindWrap, 1, 1, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        GoToCard(c.startCard, 0, 0);
        FindRequest request;
        request.text = c.text;
        request.options = c.options;
        EXPECT_EQ(FindInStack(&request), c.field != 0);
        EXPECT_EQ(GetDocument().currentCardId, c.card);
        if (c.field == 0) continue;
        EXPECT_EQ(request.field, c.field);
        ASSERT_NE(GetActiveField(), nullptr);
        EXPECT_EQ(GetActiveField()->id, c.field);
        EXPECT_EQ(Selected().size(), std::string(c.text).size());
        EXPECT_EQ(Fold(Selected()), Fold(c.text));
    }
}

TEST_F(FindTextTest, FindAgainGoesOnAfterTheLastHit) {
    FindRequest request;
    request.text = "quillbrook";
    ASSERT_TRUE(FindInStack(&request));
    EXPECT_EQ(Selected(), "Quillbrook");
    const uint32_t first = request.offset;
    request.options |= kFindAgain;
    ASSERT_TRUE(FindInStack(&request));
    EXPECT_EQ(request.card, 1);
    EXPECT_GT(request.offset, first);
    EXPECT_EQ(Selected(), "quillbrook");
    EXPECT_EQ(request.options & kFindAgain, 0);
}

// The last lines of the About card's long field are scrolled into view to show the hit.
TEST_F(FindTextTest, AHitBelowTheViewIsScrolledIntoIt) {
    FindRequest request;
    request.text = "ten ways";
    ASSERT_TRUE(FindInStack(&request));
    const DisplayItem* field = GetActiveField();
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->id, 405);
    const Rect hit = RangeRects(field->document, field->layout, field->selStart, field->selEnd).at(0);
    EXPECT_GT(field->scrollValue, 0);
    EXPECT_GE(hit.top, field->scrollValue);
    EXPECT_LE(hit.bottom, field->scrollValue + field->textArea.bottom - field->textArea.top);
}

TEST_F(FindTextTest, TheDialogAsksAndTheCommandFinds) {
    StartScript({Type('p'), Type('o'), Type('n'), Type('d'), Key(kVkReturn)});
    FindCommand(&GetFindRequest());
    EXPECT_EQ(GetDocument().currentCardId, 9);  // "pond" first stands on the pond's own card
    EXPECT_EQ(GetFindRequest().text, "pond");
    EXPECT_TRUE(GetHeadlessState().alertsShown.empty());

    StartScript({Key(kVkBack), Key(kVkBack), Key(kVkBack), Key(kVkBack), Type('z'), Type('q'), Key(kVkReturn)});
    FindCommand(&GetFindRequest());
    EXPECT_EQ(GetDocument().currentCardId, 9);
    EXPECT_EQ(GetFindRequest().text, "zq");
    ASSERT_EQ(GetHeadlessState().alertsShown.size(), 1u);
    EXPECT_EQ(GetHeadlessState().alertsShown[0].text, "No match found.");

    StartScript({Type('x'), Key(kVkEscape)});
    FindCommand(&GetFindRequest());
    EXPECT_EQ(GetFindRequest().text, "zq");
}

}  // namespace
#endif
