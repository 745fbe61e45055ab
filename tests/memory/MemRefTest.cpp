#include "memory/MemRef.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "host/Application.h"
#include "memory/GlobalBlock.h"
#include "platform/headless/HeadlessHost.h"
#include "support/StackBytes.h"

namespace {

class MemRefTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(InitMemRefs()); }
    void TearDown() override { SetGlobalAllocFailAfter(-1); InitMemRefs(); }

    static uint32_t GuardBehind(MemRef ref) {
        uint32_t guard;
        std::memcpy(&guard, MemRefLock(ref).data() + GetMemRefSize(ref), 4);
        return guard;
    }
};

TEST_F(MemRefTest, SlotsAreHandedOutRoundRobinAndTheTableGrowsBy200) {
    std::vector<MemRef> refs;
    for (int i = 0; i < 201; ++i) refs.push_back(NewMemRef(4));
    EXPECT_EQ(refs.back(), 201);
    EXPECT_EQ(GetMemRefTable().capacity, 400);
    FreeMemRef(5);
    EXPECT_FALSE(IsMemRef(5));
    EXPECT_EQ(NewMemRef(1), 202);  // a freed value is not reused until the search comes round
}

// Growth zero-fills behind the old guard, which stays in the data until overwritten.
TEST_F(MemRefTest, BlocksCarryAGuardBehindTheDataThroughEveryResize) {
    MemRef ref = BlockOf({1, 2, 3, 4, 5, 6, 7, 8});
    ASSERT_EQ(SetMemRefSize(ref, 3), 0);
    EXPECT_EQ(GuardBehind(ref), kMemRefGuard);
    EXPECT_EQ(BlockBytes(ref), (std::vector<uint8_t>{1, 2, 3}));
    ASSERT_EQ(SetMemRefSize(ref, 12), 0);
    EXPECT_EQ(BlockBytes(ref), (std::vector<uint8_t>{1, 2, 3, 0xEF, 0xBE, 0xCE, 0xFA, 0, 0, 0, 0, 0}));
    EXPECT_EQ(GuardBehind(ref), kMemRefGuard);
}

TEST_F(MemRefTest, ByteRangeHelpers) {
    // Inserting and deleting are pinned by the record splices of NormaliseTest.
    MemRef dst = BlockOf({1, 3, 4});
    // Padding an odd source copies one byte more: the first byte of its guard.
    MemRef odd = BlockOf({7, 7, 7, 7, 7});
    ASSERT_EQ(InsertMemRef(dst, odd, 1, true), 0);
    EXPECT_EQ(BlockBytes(dst), (std::vector<uint8_t>{1, 7, 7, 7, 7, 7, 0xEF, 3, 4}));

    MemRef whole = BlockOf({5, 6});
    ASSERT_EQ(AppendMemRef(whole, dst), 0);
    MemRef cut = ExtractBytes(dst, 0, 7);
    EXPECT_EQ(GetMemRefSize(cut), 7u);
    EXPECT_EQ(BlockBytes(dst), (std::vector<uint8_t>{3, 4, 5, 6}));
    EXPECT_EQ(BlockBytes(CopyBytes(dst, 1, 2)), (std::vector<uint8_t>{4, 5}));
    EXPECT_EQ(CopyBytes(dst, 3, 2), 0);  // a range outside the block gives nothing
}

TEST_F(MemRefTest, ReplaceBytesByLength) {
    for (const auto& [src, expected] : {std::pair<Bytes, Bytes>{{8, 8, 8, 8}, {1, 8, 8, 8, 8, 4}}, {{}, {1, 4}}}) {
        MemRef dst = BlockOf({1, 2, 3, 4});
        ASSERT_EQ(ReplaceBytes(dst, BlockOf(src), 1, 2), 0);
        EXPECT_EQ(BlockBytes(dst), expected) << "source of " << src.size();
    }

    // The same length copies over in place: the block does not move even when allocation fails.
    MemRef dst = BlockOf({1, 2, 3, 4});
    MemRef src = BlockOf({5, 6});
    const uint8_t* before = LockMemRef(dst);
    UnlockMemRef(dst);
    SetGlobalAllocFailAfter(0);
    EXPECT_EQ(ReplaceBytes(dst, src, 2, 2), 0);
    SetGlobalAllocFailAfter(-1);
    EXPECT_EQ(LockMemRef(dst), before);
    UnlockMemRef(dst);
    EXPECT_EQ(BlockBytes(dst), (std::vector<uint8_t>{1, 2, 5, 6}));
}

TEST_F(MemRefTest, RefusedMemoryLeavesEverythingAsItWas) {
    MemRef ref = BlockOf({1, 2, 3});
    MemRef longer = BlockOf({9, 9, 9, 9, 9});
    SetGlobalAllocFailAfter(0);
    EXPECT_EQ(NewMemRef(4), 0);
    EXPECT_EQ(SetMemRefSize(ref, 100), -1);
    EXPECT_EQ(ReplaceBytes(ref, longer, 0, 1), -1);
    MemRef same = ref;
    EXPECT_EQ(DuplicateMemRef(&same), -1);
    EXPECT_EQ(same, ref);
    SetGlobalAllocFailAfter(-1);
    EXPECT_EQ(BlockBytes(ref), (std::vector<uint8_t>{1, 2, 3}));

    ASSERT_EQ(DuplicateMemRef(&same), 0);
    EXPECT_TRUE(MemRefsEqual(same, ref));
    ASSERT_EQ(SetMemRefSize(same, 2), 0);
    EXPECT_FALSE(MemRefsEqual(same, ref));
}

// The program's notice is installed at start-up; the handle layer keeps no message of its own.
TEST_F(MemRefTest, ATableThatCannotGrowSaysSoAndShutdownKeepsTheCount) {
    ASSERT_TRUE(InitApplication(nullptr));
    GetHeadlessState().messageBoxesShown.clear();
    while (GetMemRefTable().used < GetMemRefTable().capacity) ASSERT_NE(NewMemRef(1), 0);
    const int16_t used = GetMemRefTable().used;
    SetGlobalAllocFailAfter(1);  // the block is had, the table's growth is refused
    EXPECT_EQ(NewMemRef(1), 0);
    SetGlobalAllocFailAfter(-1);
    ASSERT_EQ(GetHeadlessState().messageBoxesShown.size(), 1u);
    EXPECT_EQ(GetHeadlessState().messageBoxesShown[0].title, "");
    EXPECT_EQ(GetHeadlessState().messageBoxesShown[0].text, "Couldn't resize MemRefs");
    ShutdownMemRefs();
    EXPECT_EQ(GetMemRefTable().used, used);
    EXPECT_EQ(GetMemRefTable().capacity, 0);
}

}  // namespace
