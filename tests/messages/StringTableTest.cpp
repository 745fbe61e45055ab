#include "messages/StringTable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(StringTableTest, TextsSurviveTheEmbeddingByteForByte) {
    struct Case { int id; std::string windows1252; };
    const Case cases[] = {
        {2816, "In\355cio.stk"},                  // non-ASCII becomes one Windows-1252 byte
        {2521, " - Card "},                       // leading and trailing blanks stay
        {2650, "QBArt\\"},                        // an escaped backslash
        {2305, "34Because of an error,\nI wasn't able to read any cards from this stack.~^OK"},
        {2, ""},  // no such string
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        EXPECT_EQ(GetString(c.id), c.windows1252);
    }
}

}  // namespace
