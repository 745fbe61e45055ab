// Opening and saving through the full flows: what the user sees, and what ends up on disk.
#include "player/StackFlows.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "card/OffscreenCard.h"
#include "platform/HostFile.h"
#include "platform/HostPath.h"
#include "platform/headless/HeadlessHost.h"
#include "player/Navigation.h"
#include "stack/Blob.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackHeader.h"
#include "support/StackBytes.h"

namespace {

const std::string kFixtures = QB_FIXTURES_DIR;

class StackFlowsTest : public testing::Test {
protected:
    void SetUp() override { StartProgramAfresh(); }
    void TearDown() override { ResetAllState(); }

    static std::vector<int> AlertsShown() {
        std::vector<int> ids;
        for (const HeadlessAlert& a : GetHeadlessState().alertsShown) ids.push_back(a.stringId);
        GetHeadlessState().alertsShown.clear();
        return ids;
    }
    static int32_t Open(const std::string& path) {
        SetSlotPath(kSlotStack, DosPathFromHost(path));
        return OpenStack(false);
    }
    static int32_t SaveAs(const std::string& path) {
        GetHeadlessState().fileChoices.push_back(path);
        return SaveStackAs();
    }
    static std::string TempPath(const std::string& name) { return WriteTempFile(name, {}); }
    static ino_t Inode(const std::string& path) {
        struct stat st {};
        ::stat(path.c_str(), &st);
        return st.st_ino;
    }
    static void ExpectBlankStack() {
        const Document& doc = GetDocument();
        EXPECT_TRUE(CardCount() == 1 && !doc.hasFile && doc.stackName == "Untitled" && doc.currentCard && doc.storeRef);
    }
};

TEST_F(StackFlowsTest, FixturesComeBackByteForByte) {
    for (const char* name : {"sample-cards.stk", "sample-media.stk"}) {
        const std::string source = kFixtures + "/" + name;
        ASSERT_EQ(Open(source), kResultOk) << name;
        const std::string out = TempPath(std::string("resaved-") + name);
        ASSERT_EQ(SaveAs(out), kResultOk) << name;
        EXPECT_EQ(AlertsShown(), std::vector<int>{}) << name;
        EXPECT_EQ(ReadWholeFile(out), ReadWholeFile(source)) << name;
        EXPECT_EQ(SlotHostPath(kSlotStack), out);
    }
}

TEST_F(StackFlowsTest, DefinedChangesOfASave) {
    // nextBlobId: the open reads the high half of the 32-bit field, the save writes what it read.
    Bytes tenth = StoredStack({.nextBlobId = 10}, {StoredCard(1, "A")}, {StoredRecord("Snd ", 4, "", {1, 2, 3})});
    ASSERT_EQ(Open(WriteTempFile("next-id-10.stk", tenth)), kResultOk);
    const std::string out = TempPath("next-id-out.stk");
    ASSERT_EQ(SaveAs(out), kResultOk);
    PutBE32(tenth, 68, 0);
    EXPECT_EQ(ReadWholeFile(out), tenth);

    // A deleted record is compacted away: the file is the stack without it.
    const Bytes kept = StoredRecord("Snd ", 5, "kept", {1, 2, 3, 4});
    const Bytes gone = StoredRecord("Snd ", 4, "gone", Bytes(10, 7), 0x80000000u);
    ASSERT_EQ(Open(WriteTempFile("deleted.stk", StoredStack({}, {StoredCard(1, "A")}, {gone, kept}))), kResultOk);
    const std::string compacted = TempPath("compacted.stk");
    ASSERT_EQ(SaveAs(compacted), kResultOk);
    EXPECT_EQ(ReadWholeFile(compacted), StoredStack({}, {StoredCard(1, "A")}, {kept}));
    EXPECT_EQ(CountBlobEntries(GetDocument().storeRef), 1u);
    EXPECT_NE(GetBlobById(FourCC("Snd "), 5), 0);
}

// A save after the card list changed, opened again, gives the cards it had: their count, ids, order
// and bytes.
TEST_F(StackFlowsTest, ChangedCardListsComeBackFromTheSavedFile) {
    const Bytes three = StoredStack({.cardCount = 3}, {StoredCard(1, "A"), StoredCard(2, "B"), StoredCard(3, "C")},
                                    {StoredRecord("Snd ", 4, "", {1, 2, 3})});
    const struct { const char* name; bool deleteSecond; std::vector<int16_t> ids; } cases[] = {
        {"a card added behind the first", false, {1, 4, 2, 3}},
        {"the second card deleted", true, {1, 3}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(Open(WriteTempFile("three.stk", three)), kResultOk);
        if (c.deleteSecond) {
            const MemRef second = GetCardByPosition(2);
            ASSERT_EQ(DeleteBytes(GetDocument().cardList, 16, 16), 0);  // one 16-byte row a card
            FreeMemRef(second);
        } else {
            ASSERT_NE(NewCard(false, false), 0);
        }
        // The end mark's word is left out: a card made in memory holds it native until it has been
        // through a file.
        const auto cardsNow = [] {
            std::vector<Bytes> cards;
            for (int32_t i = 1; i <= CardCount(); ++i) {
                const Bytes card = BlockBytes(GetCardByPosition(i));
                cards.emplace_back(card.begin(), card.end() - 2);
            }
            return cards;
        };
        const std::vector<Bytes> cards = cardsNow();
        const std::string out = TempPath("changed-cards.stk");
        ASSERT_EQ(SaveAs(out), kResultOk);
        CloseStack();
        ASSERT_EQ(Open(out), kResultOk);
        EXPECT_EQ(AlertsShown(), std::vector<int>{});
        std::vector<int16_t> ids;
        for (int32_t i = 1; i <= CardCount(); ++i) ids.push_back(GetCardId(GetCardByPosition(i)));
        EXPECT_EQ(ids, c.ids);
        EXPECT_TRUE(cardsNow() == cards);
        CloseStack();
    }
}

TEST_F(StackFlowsTest, MalformedFilesGetTheirAlertsAndLeaveAUsableBlankStack) {
    // Each damage and its alerts are StackReaderTest's; here a refused header and damaged cards.
    Bytes pastEnd = StoredStack({}, {StoredCard(1, "A")}, {});
    PutBE32(pastEnd, 128 + 2, 5000);
    Bytes secondBad = StoredStack({.cardCount = 2}, {StoredCard(1, "A"), StoredCard(2, "B")}, {});
    PutBE32(secondBad, 228 + 2, 5000);
    const struct { const char* name; Bytes bytes; std::vector<int> alerts; } cases[] = {
        {"version 6", StoredStack({.version = 6}, {StoredCard(1, "A")}, {}), {2221}},
        {"card past the end: the read reports, then the open", pastEnd, {2235, 2305, 2235}},
        {"second card past the end: the first goes with the stack", secondBad, {2235}},
    };
    for (const auto& c : cases) {
        Open(WriteTempFile(std::string("malformed-") + c.name, c.bytes));
        EXPECT_EQ(AlertsShown(), c.alerts) << c.name;
        ExpectBlankStack();
    }
}

TEST_F(StackFlowsTest, TheCardSizeQuestion) {
    Bytes small = StoredStack({.cardWidth = 30}, {StoredCard(1, "A")}, {});
    GetHeadlessState().alertAnswers = {2};  // No
    Open(WriteTempFile("small-no.stk", small));
    EXPECT_EQ(AlertsShown(), std::vector<int>{2334});
    ExpectBlankStack();
    Open(WriteTempFile("small-yes.stk", small));  // Yes, the default
    EXPECT_EQ(AlertsShown(), std::vector<int>{2334});
    EXPECT_TRUE(GetDocument().hasFile && GetDocument().cardWidth == 40);
}

TEST_F(StackFlowsTest, SavingInPlaceOrThroughATemporaryFile) {
    const Bytes stack = StoredStack({}, {StoredCard(1, "A")}, {StoredRecord("Snd ", 4, "", {1, 2, 3})});
    const std::string path = WriteTempFile("space.stk", stack);
    ASSERT_EQ(Open(path), kResultOk);

    const ino_t before = Inode(path);
    // Exactly total + 2048 free saves in place; one byte more goes through the temporary file.
    for (const int64_t spare : {2048, 2049}) {
        GetFileFaults().freeSpace = static_cast<int64_t>(stack.size()) + spare;
        GetDocument().dirty = true;
        ASSERT_EQ(SaveStack(), kResultOk);
        EXPECT_EQ(Inode(path) == before, spare == 2048) << spare;
        EXPECT_EQ(ReadWholeFile(path), stack) << spare;
    }
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(path).parent_path() / "QBTMP000.TMP"));

    GetFileFaults().freeSpace = static_cast<int64_t>(stack.size()) + 2047;
    EXPECT_EQ(SaveAs(TempPath("no-room.stk")), kResultReported);
    EXPECT_EQ(AlertsShown(), std::vector<int>{2264});
}

TEST_F(StackFlowsTest, ReadOnlyFilesAndLockedFolders) {
    const Bytes stack = StoredStack({}, {StoredCard(1, "A")}, {});
    const std::string path = WriteTempFile("locked.stk", stack);
    ASSERT_EQ(Open(path), kResultOk);
    GetFileFaults().readOnlyPath = path;
    EXPECT_EQ(WriteStack(kSlotStack, true), kResultReadOnly);
    ResetFileFaults();
    GetFileFaults().lockedFolder = std::filesystem::path(path).parent_path().string();
    EXPECT_EQ(WriteStack(kSlotStack, true), kResultReported);
    EXPECT_EQ(AlertsShown(), std::vector<int>{2689});
    EXPECT_EQ(ReadWholeFile(path), stack);
    EXPECT_EQ(CardCount(), 1);  // the stack stays in memory
}

TEST_F(StackFlowsTest, AFailureAtAnyWriteOfATemporarySaveLeavesTheOldFile) {
    const Bytes stack = StoredStack({.cardCount = 2}, {StoredCard(1, "A"), StoredCard(2, "B")},
                                   {StoredRecord("Snd ", 4, "", Bytes(70000, 3)), StoredRecord("Snd ", 5, "", {1})});
    const std::string path = WriteTempFile("fragile.stk", stack);
    ASSERT_EQ(Open(path), kResultOk);
    ResetFileFaults();
    ASSERT_EQ(WriteStack(kSlotStack, true), kResultOk);
    const uint32_t writes = GetFileFaults().writes;
    ASSERT_GT(writes, 3u);
    for (uint32_t k = 1; k <= writes; ++k) {
        ResetFileFaults();
        GetFileFaults().failWriteAt = k;
        EXPECT_EQ(WriteStack(kSlotStack, true), kResultReported) << "write " << k;
        EXPECT_EQ(ReadWholeFile(path), stack) << "write " << k;
        EXPECT_EQ(AlertsShown(), std::vector<int>{2235}) << "write " << k;
        EXPECT_NE(GetBlobById(FourCC("Snd "), 5), 0) << "write " << k;
    }
}

TEST_F(StackFlowsTest, AConvertedStackAsksBeforeTheFirstReplacingSaveOnly) {
    const std::string path = WriteTempFile("old.stk", StoredStack({.version = 4}, {StoredCard(1, "A")}, {}));
    ASSERT_EQ(Open(path), kResultOk);
    GetHeadlessState().alertAnswers = {2};  // replace the original
    GetDocument().dirty = true;
    ASSERT_EQ(SaveStack(), kResultOk);
    EXPECT_EQ(AlertsShown(), std::vector<int>{2339});
    EXPECT_EQ(ReadBE16(&ReadWholeFile(path)[8]), 5);
    GetDocument().dirty = true;
    ASSERT_EQ(SaveStack(), kResultOk);
    EXPECT_EQ(AlertsShown(), std::vector<int>{});
}

TEST_F(StackFlowsTest, TheQuestionBeforeAChangedStackGoes) {
    ASSERT_EQ(Open(kFixtures + "/sample-media.stk"), kResultOk);
    GetDocument().dirty = true;
    GetHeadlessState().alertAnswers = {2};  // Cancel
    EXPECT_FALSE(CheckSave());
    GetHeadlessState().alertAnswers = {3};  // Don't Save
    EXPECT_TRUE(CheckSave());
    EXPECT_EQ(AlertsShown(), (std::vector<int>{2229, 2229}));
    GetDocument().autoSave = true;  // saves without asking
    GetHeadlessState().fileChoices.push_back(TempPath("auto.stk"));
    GetDocument().hasFile = false;
    EXPECT_TRUE(CheckSave());
    EXPECT_EQ(AlertsShown(), std::vector<int>{});
    EXPECT_FALSE(GetDocument().dirty);
}

TEST_F(StackFlowsTest, ACancelledOpenShowsTheCardAgainWithItsItemsAlive) {
    ASSERT_EQ(Open(kFixtures + "/sample-cards.stk"), kResultOk);
    ASSERT_NE(DisplayListHead(), nullptr);
    const MemRef card = GetDocument().currentCard;
    EXPECT_EQ(OpenStack(true), kResultOk);  // no file chosen
    EXPECT_EQ(AlertsShown(), std::vector<int>{});
    EXPECT_EQ(GetDocument().currentCard, card);
    EXPECT_NE(DisplayListHead(), nullptr);
}

TEST_F(StackFlowsTest, SaveAsNamesTheStackInTheTitleAndMakesTheHomeTest) {
    ASSERT_EQ(NewStack(false), kResultOk);
    GetDocument().homeCardId = 5;
    const std::string dir = std::filesystem::path(TempPath("x")).parent_path().string();
    ASSERT_EQ(SaveAs(dir + "/Home.stk"), kResultOk);
    EXPECT_EQ(AlertsShown(), std::vector<int>{});
    EXPECT_EQ(GetHeadlessState().title, "Home.stk");
    EXPECT_EQ((std::vector<int>{GetDocument().isHomeStack, GetDocument().homeCardId}), (std::vector<int>{1, 0}));
}

TEST_F(StackFlowsTest, ASaveStoresTheSettingsOfTheCardOnShow) {
    ASSERT_EQ(Open(WriteTempFile("menu.stk", StoredStack({}, {StoredCard(1, "A")}, {}))), kResultOk);
    GetDocument().menuShown = 1;  // the card was stored with the menu off
    const std::string out = TempPath("menu-out.stk");
    ASSERT_EQ(SaveAs(out), kResultOk);
    EXPECT_EQ(ReadBE16(&ReadWholeFile(out)[128 + kCardMenuShown]), 1);
}

// A stack whose record table is lost reads no cards with no error: the blank stack in its place
// is arrived at, so its card is on the screen.
TEST_F(StackFlowsTest, NoReadableCardsWithoutAnErrorArriveAtTheBlankStack) {
    ASSERT_EQ(Open(WriteTempFile("lost-table.stk", StoredStack({.blobCount = 1}, {StoredCard(1, "A")}, {}))), kResultOk);
    EXPECT_EQ(AlertsShown(), std::vector<int>{2305});
    ExpectBlankStack();
    EXPECT_TRUE(GetOffscreenState().hasScreen);
}

TEST_F(StackFlowsTest, AMissingStackGivesWayToTheHomeStackInTheProgramsFolder) {
    const auto folder = std::filesystem::path(TempPath("x")).parent_path() / "program";
    std::filesystem::create_directories(folder);
    const std::string home = WriteTempFile("program/Home2.stk", StoredStack({}, {StoredCard(1, "H")}, {}));
    GetFileFaults().programFolder = folder.string();
    ASSERT_EQ(OpenStackByName(GetFileFaults().programFolder + "/gone.stk"), kResultOk);
    EXPECT_EQ(AlertsShown(), std::vector<int>{});
    EXPECT_EQ(SlotHostPath(kSlotStack), home);
    EXPECT_TRUE(GetDocument().isHomeStack);
}

TEST_F(StackFlowsTest, ANewStackTakesTheCurrentSettings) {
    Document& doc = GetDocument();
    // reserved22 is set for the first stack of the process only.
    const struct { int16_t presentationMode; uint16_t windowFlags; int16_t menuShown; uint16_t reserved22; } cases[] = {
        {0, 1, 1, 1}, {2, 0, 0, 0}};
    for (const auto& c : cases) {
        doc.presentationMode = c.presentationMode;
        doc.windowFlags = c.windowFlags;
        doc.menuShown = c.menuShown;
        ASSERT_EQ(NewStack(false), kResultOk);
        MemRefLock header(doc.stackHeader), card(doc.currentCard);
        EXPECT_EQ((std::vector<int>{ReadS16(header.data() + kHdrPresentationMode), Read16(header.data() + kHdrWindowFlags),
                                    ReadS16(card.data() + kCardMenuShown), Read16(header.data() + kHdrReserved22)}),
                  (std::vector<int>{c.presentationMode, c.windowFlags, c.menuShown, c.reserved22}));
    }
}

}  // namespace
