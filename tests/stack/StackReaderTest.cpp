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
    // `cards`: what the reader holds until the stack is closed.
    struct Case { const char* name; Bytes bytes; std::vector<int> alerts; uint64_t offset; int cards = 0; };
    Bytes pastEnd = OneCardStack();
    PutBE32(pastEnd, 128 + 2, 5000);
    Bytes tooSmallCard = OneCardStack();
    PutBE32(tooSmallCard, 128 + 2, 99);
    Bytes noCards = OneCardStack();
    PutBE16(noCards, 4, 0x8000);  // a negative count passes the test but reads no cards
    Bytes secondBad = StoredStack({.cardCount = 2}, {StoredCard(1, "Good"), StoredCard(2, "Bad")}, {});
    PutBE32(secondBad, 128 + 100 + 2, 1000);

    const Case cases[] = {
        {"empty", {}, {2268}, 0},
        {"zero header", Bytes(128, 0), {2268}, 0},
        {"blobCount 0x10001", OneCardStack({.blobCount = 0x10001}), {2268}, 0},
        {"depth 1", OneCardStack({.depth = 1}), {2256}, kHdrDepth},
        {"version 6", OneCardStack({.version = 6}), {2221}, kHdrVersion},
        {"version 3", OneCardStack({.version = 3}), {2222}, kHdrVersion},
        {"card past the end", pastEnd, {2235, 2305}, 128},
        {"card under 100 bytes", tooSmallCard, {2235, 2305}, 128},
        {"record table past the end", OneCardStack({.blobCount = 1}), {2305}, 228},
        {"blobCount 0x10000 passes the test, then lacks its table", OneCardStack({.blobCount = 0x10000}), {2305}, 228},
        {"negative card count", noCards, {2305}, 0},
        {"sub-record chain that lies", LyingSubRecordStack(), {2235, 2305}, 128},
        {"a damaged later card keeps the cards before it", secondBad, {2235}, 228, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        LoadFault fault;
        const int32_t code = ReadStackFile(WriteTempFile(std::string("bad-") + c.name, c.bytes), &fault);
        EXPECT_FALSE(fault.opened);
        EXPECT_EQ(fault.alerts, c.alerts);
        EXPECT_EQ(fault.offset, c.offset);
        EXPECT_FALSE(fault.detail.empty());
        EXPECT_TRUE(code != 0 || !fault.alerts.empty());
        EXPECT_EQ(CardCount(), c.cards);
        EXPECT_EQ(GetDocument().storeRef == 0u, c.cards == 0);
        CloseStack();
    }
}

}  // namespace
