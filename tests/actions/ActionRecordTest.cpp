// Sub-records found by tag in chains that may be damaged: a walk never leaves the action.
#include "actions/ActionRecord.h"

#include <gtest/gtest.h>

#include <vector>

#include "base/ByteOrder.h"

namespace {

using Native = std::vector<uint8_t>;

// A native head with sub-records of the given tags and lengths; `length` overrides the head's.
Native Chain(const std::vector<std::pair<int16_t, uint32_t>>& subs, uint32_t length = 0) {
    Native b(kActionHeadSize, 0);
    for (const auto& [tag, subLength] : subs) {
        const size_t at = b.size();
        b.resize(at + std::max<uint32_t>(subLength, kSubHeadSize), 0);
        Write16(&b[at + kSubType], static_cast<uint16_t>(tag));
        Write32(&b[at + kSubLength], subLength);
    }
    Write32(&b[kActionLength], length ? length : static_cast<uint32_t>(b.size()));
    return b;
}

TEST(ActionRecordTest, SubRecordsAreFoundOnlyInsideAnIntactChain) {
    const struct { const char* what; Native action; int16_t tag; bool found; uint32_t position; } cases[] = {
        {"second", Chain({{51, 40}, {60, 33}}), 60, true, 176},
        {"first of two", Chain({{60, 32}, {60, 32}}), 60, true, 136},
        {"absent", Chain({{51, 32}}), 60, false, 0},
        {"shorter than its head", Chain({{51, 31}, {60, 32}}), 60, false, 0},
        {"past the action's end", Chain({{51, 32}, {60, 64}}, 200), 60, false, 0},
        {"past the block", Chain({{51, 32}, {60, 32}}, 5000), 60, true, 168},
        {"head length too short", Chain({{60, 32}}, 100), 60, false, 0},
    };
    for (const auto& c : cases) {
        uint32_t position = 0;
        EXPECT_EQ(FindSubRecord(c.action.data(), static_cast<uint32_t>(c.action.size()), c.tag, &position), c.found)
            << c.what;
        EXPECT_EQ(c.found ? position : 0u, c.position) << c.what;
    }
    // A truncated block: the second sub-record would leave it.
    const Native whole = Chain({{51, 32}, {60, 32}});
    uint32_t position = 0;
    EXPECT_FALSE(FindSubRecord(whole.data(), static_cast<uint32_t>(whole.size()) - 1, 60, &position));
}

}  // namespace
