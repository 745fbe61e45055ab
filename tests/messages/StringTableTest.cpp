#include "messages/StringTable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(StringTableTest, IdsAreUniqueAndSorted) {
    ASSERT_GT(kStringTableSize, 0u);
    for (unsigned i = 1; i < kStringTableSize; ++i) {
        EXPECT_LT(kStringTable[i - 1].id, kStringTable[i].id) << "after " << kStringTable[i - 1].id;
    }
}

TEST(StringTableTest, TextsSurviveTheEmbeddingByteForByte) {
    struct Case { int id; std::string windows1252; };
    const Case cases[] = {
        {2816, "In\355cio.stk"},                  // non-ASCII becomes one Windows-1252 byte
        {2413, "Please find the stack named: "},  // the trailing blank stays
        {2521, " - Card "},                       // and the leading one
        {2650, "QBArt\\"},                        // an escaped backslash
        {4164, "*.mov;*.avi"},                    // a list separator for the build script
        {2305, "34Because of an error,\nI wasn't able to read any cards from this stack.~^OK"},
        {2, ""},  // no such string
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        EXPECT_EQ(GetString(c.id), c.windows1252);
    }
    EXPECT_EQ(GetStringUtf8(2816), "In\303\255cio.stk");
}

}  // namespace
