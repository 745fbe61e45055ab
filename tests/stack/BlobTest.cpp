#include "stack/Blob.h"

#include <gtest/gtest.h>

#include "base/ByteOrder.h"
#include "stack/PathSlot.h"
#include "support/StackBytes.h"

namespace {

class BlobTest : public testing::Test {
protected:
    void SetUp() override { CloseAllBlobStores(); }
    void TearDown() override { CloseAllBlobStores(); }

    // A stack file of one blank card with the given records; the store opened on it.
    uint32_t OpenWith(const std::string& name, const std::vector<Bytes>& records, uint32_t nextBlobId = 0) {
        path_ = WriteTempFile(name, StoredStack({.nextBlobId = nextBlobId}, {StoredCard(1, "A")}, records));
        return OpenBlobStoreAt(path_, 228, 64, 68);
    }
    std::string path_;
};

const uint8_t kNameKept[] = {4, 'K', 'E', 'P', 'T'};

TEST_F(BlobTest, FetchingByIdIndexAndNameSkipsDeletedRecords) {
    const uint32_t store = OpenWith("fetch.stk", {StoredRecord("Snd ", 3, "gone", {9}, 0x80000000u),
                                                  StoredRecord("Snd ", 4, "kept", {1, 2, 3, 4, 5}),
                                                  StoredRecord("Icon", 3, "kept", {7, 7, 7, 7})});
    ASSERT_NE(store, 0u);
    EXPECT_EQ(GetBlobById(FourCC("Snd "), 3), 0);
    EXPECT_EQ(CountBlobs(FourCC("Snd ")), 1u);
    EXPECT_EQ(GetBlobPosition(store, FourCC("Snd "), 4), 1);
    EXPECT_EQ(TotalBlobBytes(store), (68u + 4) + (68 + 8) + (68 + 4));  // the deleted one counts

    const MemRef byId = GetBlobById(FourCC("Snd "), 4);
    ASSERT_NE(byId, 0);
    EXPECT_EQ(GetMemRefSize(byId), 5u);
    EXPECT_EQ(GetBlobByIndex(FourCC("Snd "), 1), byId);  // the cached block is the store's
    EXPECT_EQ(GetBlobByName(FourCC("Snd "), kNameKept), byId);

    uint16_t id = 0;
    EXPECT_EQ(GetBlobInfo(byId, nullptr, &id, nullptr, nullptr), 0);
    EXPECT_EQ(id, 4);
    DetachBlob(byId);
    EXPECT_EQ(GetBlobInfo(byId, nullptr, nullptr, nullptr, nullptr), 16);
    EXPECT_NE(GetBlobById(FourCC("Snd "), 4), byId);  // read again
    FreeMemRef(byId);
}

TEST_F(BlobTest, AddingAndDeletingAreLiveOnDisk) {
    const uint32_t store = OpenWith("add.stk", {StoredRecord("Snd ", 1, "", {1, 2, 3, 4})});
    const size_t before = ReadWholeFile(path_).size();
    MemRef data = NewMemRef(5);
    uint16_t id = 0;
    const uint8_t name[] = {3, 'o', 'n', 'e'};
    ASSERT_EQ(AddBlob(data, 0, FourCC("Snd "), &id, name), 0);
    EXPECT_EQ(id, 2);  // the first id no entry uses
    Bytes file = ReadWholeFile(path_);
    EXPECT_EQ(file.size(), before + 68 + 8);
    EXPECT_EQ(ReadBE32(&file[64]), 2u);
    EXPECT_EQ(ReadBE16(&file[68]), 2);  // the allocator writes its 16 bits where the open read them
    // Bytes behind the data up to the padded length come from the block: the guard word.
    EXPECT_EQ(Bytes(file.end() - 3, file.end()), (Bytes{0xEF, 0xBE, 0xCE}));
    EXPECT_EQ(GetBlobById(FourCC("Snd "), 2), data);

    ASSERT_EQ(DeleteBlob(FourCC("Snd "), 1), 0);
    file = ReadWholeFile(path_);
    EXPECT_EQ(ReadBE32(&file[228 + 40]), 0x80000000u);
    EXPECT_EQ(GetBlobById(FourCC("Snd "), 1), 0);

    // Reopened from the file, the store sees what was written.
    CloseBlobStore(store);
    OpenBlobStoreAt(path_, 228, 64, 68);
    EXPECT_EQ(CountBlobs(FourCC("Snd ")), 1u);
    EXPECT_EQ(GetMemRefSize(GetBlobById(FourCC("Snd "), 2)), 5u);
}

TEST_F(BlobTest, MovingTheAreaUpAndDownCompacts) {
    const uint32_t store = OpenWith("move.stk", {StoredRecord("Snd ", 1, "", Bytes(100, 1)),
                                                 StoredRecord("Snd ", 2, "", Bytes(5, 2), 0x80000000u),
                                                 StoredRecord("Snd ", 3, "", Bytes(70000, 3))});
    StagingBuffer buffer;
    ASSERT_EQ(NewStagingBuffer(&buffer, nullptr), 0);
    ASSERT_EQ(MoveBlobArea(store, 1000, buffer), 0);
    Bytes file = ReadWholeFile(path_);
    EXPECT_EQ(file.size(), 1000u + (68 + 100) + (68 + 70000));
    EXPECT_EQ(ReadBE32(&file[64]), 2u);
    EXPECT_EQ(ReadBE16(&file[1000 + 168 + 4]), 3);
    EXPECT_EQ(file.back(), 3);

    ASSERT_EQ(MoveBlobArea(store, 228, buffer), 0);
    file = ReadWholeFile(path_);
    EXPECT_EQ(file.size(), 228u + (68 + 100) + (68 + 70000));
    EXPECT_EQ(ReadBE16(&file[228 + 168 + 4]), 3);
    EXPECT_EQ(GetMemRefSize(GetBlobById(FourCC("Snd "), 3)), 70000u);
    FreeStagingBuffer(&buffer);
}

}  // namespace
