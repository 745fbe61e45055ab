#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "memory/MemRef.h"
#include "stack/Normalise.h"
#include "stack/PathSlot.h"
#include "support/StackBytes.h"

namespace {

using namespace std::string_literals;

class StoredPathTest : public testing::Test {
protected:
    void SetUp() override {
        savedStackPath_ = GetSlotPath(kSlotStack);
        ASSERT_TRUE(SetSlotPath(kSlotStack, "D:\\Stacks\\x.stk"));
    }
    void TearDown() override { SetSlotPath(kSlotStack, savedStackPath_); }
    std::string savedStackPath_;

    // The converted bytes, or nothing when the conversion refused the reference.
    static bool Convert(const Bytes& source, uint32_t available, bool pad, Bytes* out, bool* odd) {
        MemRef ref = ConvertStoredPath(source.data(), available, odd, pad);
        if (ref) *out = TakeBytes(ref);
        return ref != 0;
    }
};

// The stack's drive for a foreign volume and the odd lengths are NormaliseTest's path rows.
TEST_F(StoredPathTest, ConvertsStoredReferencesToTheNativeForm) {
    const std::string longPath(255, 'f');
    const std::string longName(255, 'n');
    Bytes trailing = StoredFileRef("Disk:Pics:Sun", "Sun");
    trailing.insert(trailing.end(), {'x', 'y', 'z'});
    struct Case { const char* name; Bytes stored; bool pad; std::string native; bool odd; };
    const Case cases[] = {
        {"written here: the drive stays, the stack's drive is not used",
         StoredFileRef("C::Stacks:art.bmp", "art.bmp"), true, "C:\\Stacks\\art.bmp\0\0\0\0\0\0\0art.bmp\0"s, false},
        {"odd path with terminator gets a pad byte", StoredFileRef("Disk:Pic:Sun", "Sun"), true,
         "D:\\Pic\\Sun\0\0\0\0\0\0\0\0Sun\0"s, false},
        {"the name is found behind the stored pad, not the native one", StoredFileRef("Mac:Pics:Sun", "Sun"), true,
         "D:\\Pics\\Sun\0\0\0\0\0\0\0Sun\0"s, false},
        {"bare name without a volume", StoredFileRef("Sun", "Sun"), true, "D:\\Sun\0\0\0\0\0\0\0\0Sun\0"s, false},
        {"empty path stays empty", StoredFileRef("", "x"), true, "\0\0\0\0\0\0\0\0x\0"s, false},
        {"longer than the 500-byte start", StoredFileRef(longPath, longName), true,
         "D:\\" + longPath + "\0\0"s + std::string(6, '\0') + longName + "\0"s, false},
        {"bytes behind the reference are not read", trailing, true, "D:\\Pics\\Sun\0\0\0\0\0\0\0Sun\0"s, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Bytes out;
        bool odd = !c.odd;
        ASSERT_TRUE(Convert(c.stored, static_cast<uint32_t>(c.stored.size()), c.pad, &out, &odd));
        EXPECT_EQ(out, Of(c.native));
        EXPECT_EQ(odd, c.odd);
    }
}

}  // namespace
