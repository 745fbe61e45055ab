// Edited fields written back into their cards: what a save puts on disk, byte by byte, and what
// opening that file shows again.
#include "card/FieldSave.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <functional>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "card/FieldEdit.h"
#include "memory/GlobalBlock.h"
#include "messages/StringIds.h"
#include "platform/HostPath.h"
#include "platform/headless/HeadlessHost.h"
#include "player/Navigation.h"
#include "player/StackFlows.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackHeader.h"
#include "support/StackBytes.h"
#include "text/Font.h"

namespace {

struct Rec { uint16_t card; std::string bytes; std::vector<StyleRun> runs; };

// A record as a file holds it: the body as a card holds it, the head turned.
Bytes StoredText(const Rec& r) {
    Bytes b = MakeTextRecord({r.card, r.bytes, r.runs}, false);
    Swap16(&b[0]), Swap16(&b[2]), Swap32(&b[4]), Swap32(&b[8]), Swap32(&b[12]);
    return b;
}

Bytes StoredField(uint16_t id, uint16_t flags, const std::vector<Rec>& records, const Bytes& block = {}, int16_t align = 0) {
    Bytes rest(kTextHeadSize - 16, 0);
    PutBE16(rest, kTextAlign - 16, static_cast<uint16_t>(align));
    for (const Rec& r : records) Append(rest, StoredText(r));
    Append(rest, block);
    return StoredItem(kItemKindText, id, 10, 10, 200, 100, rest, flags);
}

// Runs whose measures and outline bit our fonts don't give, and a new run measured as they are.
const StyleRun kBoldOutlined{0, 99, 77, 3, kStyleBold | kStyleOutline, 12, 0x1234, 0x5678, 0x9ABC};
const StyleRun kLarge{6, 20, 15, 3, 0, 18, 0, 0, 0};
StyleRun Measured(uint32_t start, uint8_t style, uint16_t size, uint16_t r, uint16_t g, uint16_t b) {
    const TextMetrics m = GetTextMetrics(TextFont{"Arial", size, style});
    return {start, uint16_t(m.lineHeight), uint16_t(m.ascent), 3, style, size, r, g, b};
}

// One card: field 5 with `record`, then field 6, whose chunk moves when field 5 changes size.
Bytes OneCardStack(const Rec& record, bool mac, int16_t align = 0) {
    Bytes s = StoredStack({}, {StoredCard(1, "A", {StoredField(5, 0, {record}, {}, align), StoredField(6, 0, {{1, "Second", {kLarge}}})})}, {});
    if (mac) PutBE16(s, kHdrStackFlags, kStackFlagWhiteFirst);
    return s;
}

// A group: card 1 owns shared field 7 with texts for cards 1 and 3; card 2 has none of its own.
Bytes GroupStack(const std::vector<Rec>& shared) {
    Bytes background(kBgHeadSize, 0);
    PutBE16(background, kBgTag, 8);
    PutBE32(background, kBgLength, kBgHeadSize);
    const Bytes owner = StoredCard(1, "Owner", {background, StoredField(7, kTextFlagPerCard, shared)}, kCardKindPicture);
    return StoredStack({.cardCount = 3}, {owner, StoredCard(2, "B", {}, kCardKindGroupMember, 1),
                                          StoredCard(3, "C", {}, kCardKindGroupMember, 1)}, {});
}

class FieldSaveTest : public testing::Test {
protected:
    void SetUp() override { StartProgramAfresh(); }
    void TearDown() override { ResetAllState(); }
    static void Open(const Bytes& stack) {
        SetSlotPath(kSlotStack, DosPathFromHost(WriteTempFile("field-save.stk", stack)));
        ASSERT_EQ(OpenStack(false), kResultOk);
    }
    static Bytes Saved() {
        const std::string out = WriteTempFile("field-saved.stk", {});
        GetHeadlessState().fileChoices.push_back(out);
        EXPECT_EQ(SaveStackAs(), kResultOk);
        return ReadWholeFile(out);
    }
};

TEST_F(FieldSaveTest, FieldsShownButNotEditedSaveByteForByte) {
    const Rec hello{1, "Hello world", {kBoldOutlined, kLarge}};
    // Alignment 2 centres, as 1 does, and stays 2.
    for (const Bytes& stack : {OneCardStack(hello, false, 2), OneCardStack(hello, true),
                               GroupStack({hello, {3, "Three", {kBoldOutlined}}})}) {
        Open(stack);
        for (int i = 0; i < CardCount(); ++i) GoNext(0, 0);
        EXPECT_FALSE(GetDocument().dirty);
        EXPECT_EQ(Saved(), stack);
    }
}

// What a field shows, in one string to compare.
std::string Shown(const StyledDocument& d) {
    std::string s = d.text;
    for (const StyledRun& r : d.runs)
        s += fmt::format("|{} {} {} {} {:06x}", r.start, r.style.font.face, r.style.font.sizePx, r.style.font.style, r.style.colour);
    return s;
}

// Field 5's document edited as typing would; the file holds the record made from it, and opening
// the file shows the edited text in the edited styles.
TEST_F(FieldSaveTest, AnEditedFieldIsSplicedIntoItsCard) {
    using Edit = std::function<void(StyledDocument&)>;
    const std::string hello = "Hello world";
    const struct { const char* what; bool mac; Edit edit; Rec stored; int16_t align = 0; } cases[] = {
        {"lengthened to an even total", false, [](StyledDocument& d) { d.text = "Hello wide world"; }, {1, "Hello wide world", {kBoldOutlined, kLarge}}},
        {"shortened to an odd total", false, [](StyledDocument& d) { d.text = "Hello w"; }, {1, "Hello w", {kBoldOutlined, kLarge}}},
        {"a run's size and colour", false, [](StyledDocument& d) { d.runs[1].style.font.sizePx = 24, d.runs[1].style.colour = Rgb(255, 0, 0); },
         {1, hello, {kBoldOutlined, Measured(6, 0, 24, 0xFFFF, 0, 0)}}},
        {"a run inserted", false, [](StyledDocument& d) { d.runs.insert(d.runs.begin() + 1, StyledRun{2, d.runs[0].style}), d.runs[1].style.font.style = kStyleItalic; },
         {1, hello, {kBoldOutlined, Measured(2, kStyleItalic, 12, 0x1212, 0x5656, 0x9A9A), kLarge}}},
        {"centred", false, [](StyledDocument& d) { d.align = TextAlign::Centre; }, {1, hello, {kBoldOutlined, kLarge}}, 1},
        {"a run removed", false, [](StyledDocument& d) { d.runs.pop_back(); }, {1, hello, {kBoldOutlined}}},
        {"Macintosh characters", true, [](StyledDocument& d) { d.text = "Caf\xE9 \xFC" "ber"; }, {1, "Caf\x8E \x9F" "ber", {kBoldOutlined, kLarge}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Open(OneCardStack({1, hello, {kBoldOutlined, kLarge}}, c.mac));
        DisplayItem* field = FindDisplayItem(kItemKindText, 5);
        c.edit(field->document);
        field->dirty = true;
        const std::string edited = Shown(field->document);
        EXPECT_EQ(Saved(), OneCardStack(c.stored, c.mac, c.align));
        EXPECT_FALSE(field->dirty);
        Open(OneCardStack(c.stored, c.mac, c.align));
        EXPECT_EQ(Shown(FindDisplayItem(kItemKindText, 5)->document), edited);
        EXPECT_EQ(FindDisplayItem(kItemKindText, 6)->document.text, "Second");
    }
}

// Typing through the field's own keys is what the saved file shows again.
TEST_F(FieldSaveTest, TypedTextComesBackFromTheSavedFile) {
    Open(OneCardStack({1, "Hello world", {kBoldOutlined, kLarge}}, false));
    DisplayItem* field = FindDisplayItem(kItemKindText, 5);
    FieldClick(*field, 20, 20, false, false);
    FieldRelease();
    ASSERT_TRUE(FieldSelectAll());
    for (char c : std::string("Typed")) FieldKey(static_cast<uint8_t>(c));
    ASSERT_EQ(field->document.text, "Typed");
    const std::string typed = Shown(field->document);
    Open(Saved());
    EXPECT_EQ(Shown(FindDisplayItem(kItemKindText, 5)->document), typed);
}

// Both fields of a card grow: the later one is written where its chunk stands before the earlier
// one moves it.
TEST_F(FieldSaveTest, TwoEditedFieldsOfACardAreBothKept) {
    Open(OneCardStack({1, "Hello world", {kBoldOutlined, kLarge}}, false));
    for (int16_t id : {5, 6}) {
        FindDisplayItem(kItemKindText, id)->document.text = "A longer text for field " + std::to_string(id);
        FindDisplayItem(kItemKindText, id)->dirty = true;
    }
    Open(Saved());
    for (int16_t id : {5, 6}) EXPECT_EQ(FindDisplayItem(kItemKindText, id)->document.text, "A longer text for field " + std::to_string(id));
}

// Typing on card 2 gives it a record of its own behind the others when the card is left; the
// records of cards 1 and 3 stay as they were.
TEST_F(FieldSaveTest, ASharedFieldGetsARecordForTheCardItWasEditedOn) {
    const Rec one{1, "One", {kBoldOutlined}}, three{3, "Three", {kBoldOutlined}};
    Open(GroupStack({one, three}));
    GoNext(0, 0);
    DisplayItem* field = FindDisplayItem(kItemKindText, 7);
    field->document.text = "Two!";
    field->dirty = true;
    GoNext(0, 0);
    EXPECT_TRUE(GetDocument().dirty);
    EXPECT_EQ(Saved(), GroupStack({one, three, {2, "Two!", {kBoldOutlined}}}));
}

// A field of a file keeps only its style, in the 12 bytes behind the file's reference.
TEST_F(FieldSaveTest, AFieldOfAFileWritesOnlyItsStyleTail) {
    const std::string notes = WriteTempFile("NOTES.TXT", Of("From the file"));
    std::string stored = DosPathFromHost(notes);
    for (char& c : stored) c = c == '\\' ? ':' : c;
    Bytes block(16, 0);
    Append(block, StoredFileRef(stored, "NOTES.TXT"));
    PutBE16(block, 0, 99);
    PutBE32(block, 8, static_cast<uint32_t>(block.size() - 16));
    const auto stack = [&block](std::vector<uint16_t> tail) {
        Bytes b = block;
        for (uint16_t w : tail) AppendBE16(b, w);
        PutBE32(b, 12, static_cast<uint32_t>(b.size()));
        return StoredStack({}, {StoredCard(1, "A", {StoredField(5, kItemFlagFileRef, {}, b)})}, {});
    };
    Open(stack({3, kStyleBold, 12, 0x1234, 0, 0}));
    DisplayItem* field = FindDisplayItem(kItemKindText, 5);
    ASSERT_TRUE(field && field->document.text == "From the file");
    field->document.text = "Typed";
    field->document.runs[0].style.font.style = kStyleItalic;
    field->dirty = true;
    EXPECT_EQ(Saved(), stack({3, kStyleItalic, 12, 0x1212, 0, 0}));
}

// When the card can't grow, the alert says so and the field keeps its text and stays edited.
TEST_F(FieldSaveTest, NoMemoryLeavesTheCardAndTheField) {
    const Bytes stack = OneCardStack({1, "Hello world", {kBoldOutlined, kLarge}}, false);
    Open(stack);
    DisplayItem* field = FindDisplayItem(kItemKindText, 5);
    field->document.text = "Hello wide world";
    field->dirty = true;
    SetGlobalAllocFailAfter(0);
    EXPECT_EQ(SaveFieldEdits(GetDocument().currentCard), kResultNoMemory);
    SetGlobalAllocFailAfter(-1);
    ASSERT_EQ(GetHeadlessState().alertsShown.size(), 1u);
    EXPECT_TRUE(GetHeadlessState().alertsShown[0].stringId == kAlertFieldNotStored && field->dirty);
    field->dirty = false;
    EXPECT_EQ(Saved(), stack);
}

}  // namespace
