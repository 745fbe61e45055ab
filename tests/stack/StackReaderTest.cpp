#include "stack/StackReader.h"

#include <gtest/gtest.h>

#include <cstring>

#include "base/ByteOrder.h"
#include "stack/Blob.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackHeader.h"
#include "support/StackBytes.h"

namespace {

class StackReaderTest : public testing::Test {
protected:
    void SetUp() override { InitPathSlots(); }
    void TearDown() override { CloseStack(); }
};

Bytes OneCardStack(HeaderSpec spec = {}) { return StoredStack(spec, {StoredCard(1, "One")}, {}); }

// A button whose one sub-record claims to run further than the button does.
Bytes LyingSubRecordStack() {
    Bytes head(136 - 16, 0);
    Bytes sub(32, 0);
    PutBE16(sub, 0, 64);
    PutBE32(sub, 12, 400);
    Append(head, sub);
    return StoredStack({}, {StoredCard(1, "Lies", {StoredItem(48, 7, 0, 0, 10, 10, head)})}, {});
}

TEST_F(StackReaderTest, MalformedFilesGetTheOpenFlowsAlertsAndLeaveNoStack) {
    struct Case { const char* name; Bytes bytes; std::vector<int> alerts; uint64_t offset; };
    HeaderSpec tooMany;
    tooMany.blobCount = 0x10001;
    HeaderSpec blackAndWhite;
    blackAndWhite.depth = 1;
    HeaderSpec tooNew;
    tooNew.version = 6;
    HeaderSpec tooOld;
    tooOld.version = 3;
    Bytes pastEnd = OneCardStack();
    PutBE32(pastEnd, 128 + 2, 5000);
    Bytes tooSmallCard = OneCardStack();
    PutBE32(tooSmallCard, 128 + 2, 99);
    HeaderSpec missingRecord;
    missingRecord.blobCount = 1;
    Bytes noCards = OneCardStack();
    PutBE16(noCards, 4, 0x8000);  // a negative count passes the test but reads no cards

    const Case cases[] = {
        {"empty", {}, {2235, 2305}, 0},
        {"127 bytes: the header read fails", Bytes(127, 0), {2235, 2305}, 0},
        {"zero header", Bytes(128, 0), {2268}, 0},
        {"blobCount 0x10001", OneCardStack(tooMany), {2268}, 0},
        {"depth 1", OneCardStack(blackAndWhite), {2256}, kHdrDepth},
        {"version 6", OneCardStack(tooNew), {2221}, kHdrVersion},
        {"version 3", OneCardStack(tooOld), {2222}, kHdrVersion},
        {"card past the end", pastEnd, {2235, 2305}, 128},
        {"card under 100 bytes", tooSmallCard, {2235, 2305}, 128},
        {"record table past the end", OneCardStack(missingRecord), {2305}, 228},
        {"negative card count", noCards, {2305}, 0},
        {"sub-record chain that lies", LyingSubRecordStack(), {2235, 2305}, 128},
    };
    for (const Case& c : cases) {
        LoadFault fault;
        const int32_t code = ReadStackFile(WriteTempFile(std::string("bad-") + c.name, c.bytes), &fault);
        EXPECT_FALSE(fault.opened) << c.name;
        EXPECT_EQ(fault.alerts, c.alerts) << c.name;
        EXPECT_EQ(fault.offset, c.offset) << c.name;
        EXPECT_FALSE(fault.detail.empty()) << c.name;
        EXPECT_EQ(code != 0 || !fault.alerts.empty(), true) << c.name;
        EXPECT_EQ(CardCount(), 0) << c.name;
        EXPECT_EQ(GetDocument().storeRef, 0u) << c.name;
    }
}

TEST_F(StackReaderTest, ADamagedLaterCardKeepsTheCardsBeforeIt) {
    Bytes file = StoredStack({.cardCount = 2}, {StoredCard(1, "Good"), StoredCard(2, "Bad")}, {});
    PutBE32(file, 128 + 100 + 2, 1000);
    LoadFault fault;
    EXPECT_EQ(ReadStackFile(WriteTempFile("second-bad", file), &fault), -1);
    EXPECT_FALSE(fault.opened);
    EXPECT_EQ(fault.alerts, std::vector<int>{2235});
    EXPECT_EQ(fault.offset, 228u);
    EXPECT_EQ(CardCount(), 1);
}

TEST_F(StackReaderTest, PlausibilityAndLoadLimits) {
    struct Case { const char* name; HeaderSpec spec; bool opens; bool asksMinimumSize; };
    const Case cases[] = {
        {"blobCount 0x10000 passes the test", {.blobCount = 0x10000}, false, false},
        {"card 40 by 40", {.cardWidth = 40, .cardHeight = 40}, true, false},
    };
    for (const Case& c : cases) {
        LoadFault fault;
        ReadStackFile(WriteTempFile("limits", OneCardStack(c.spec)), &fault);
        EXPECT_EQ(fault.opened, c.opens) << c.name;
        EXPECT_EQ(fault.askMinimumSize, c.asksMinimumSize) << c.name;
        // A header that passes the test fails later only on its record table.
        if (!c.opens) {
            EXPECT_EQ(fault.alerts, std::vector<int>{2305}) << c.name;
        }
    }
}

}  // namespace
