#include "text/TextRecord.h"

#include <gtest/gtest.h>

#include "stack/CardRecord.h"
#include "base/ByteOrder.h"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes Record(uint16_t cardId, const std::string& text, const std::vector<StyleRun>& runs, bool mac = false) {
    return MakeTextRecord({cardId, text, runs}, mac);
}

// Changes the 32-bit field at `at` of a record.
Bytes Damaged(Bytes r, uint32_t at, uint32_t value) {
    Write32(&r[at], value);
    return r;
}

const StyleRun kBold{0, 28, 22, 20, 1, 24, 0xFFFF, 0, 0x8080};
const StyleRun kPlain{6, 18, 14, 3, 0, 14, 0, 0, 0};

TEST(TextRecordTest, RecordsAreReadOrRefused) {
    StyleRun late = kBold, outside = kPlain;
    late.start = 4;  // the first run covers the text from 0 whatever it says
    outside.start = 40;
    const std::string hello = "Hello\rworld";
    const struct {
        const char* what;
        Bytes bytes;
        bool mac;
        std::string text;  // "-" for a refused record
        std::vector<StyleRun> runs;
    } cases[] = {
        {"two runs", Record(7, hello, {kBold, kPlain}), false, hello, {kBold, kPlain}},
        {"no style table", Damaged(Record(7, "plain", {}), kTextRecordSize, 21), false, "plain", {}},
        {"a pad byte", Record(7, "odd", {}), false, "odd", {}},
        {"first run moved to 0", Record(7, hello, {late}), false, hello, {kBold}},
        {"runs out of order", Record(7, hello, {kBold, kPlain, kPlain, outside}), false, hello, {kBold, kPlain}},
        {"Macintosh characters", Record(7, "caf\x8E \xA5 \xD2\xD3", {}), true, "caf\xE9 \x95 \x93\x94", {}},
        {"Windows characters", Record(7, "caf\x8E", {}), false, "caf\x8E", {}},
        {"written for the Macintosh", Record(7, "caf\xE9 \x93", {}, true), true, "caf\xE9 \x93", {}},
        {"text past the record", Damaged(Record(7, hello, {}), kTextRecordSize, 20), false, "-", {}},
        {"record past its owner", Damaged(Record(7, "x", {}), kTextRecordSize, 400), false, "-", {}},
        {"size under the head", Damaged(Record(7, "", {}), kTextRecordSize, 8), false, "-", {}},
        {"more runs than bytes", Damaged(Record(7, hello, {kBold}), kTextRecordHeadSize + 11, 0x0200), false, "-", {}},  // count 2
        {"not type 99", Damaged(Record(7, "x", {}), kTextRecordKind, 0x10062), false, "-", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        TextRecord record;
        const int32_t result = ReadTextRecord(c.bytes.data(), static_cast<uint32_t>(c.bytes.size()), c.mac, &record);
        EXPECT_EQ(result, c.text == "-" ? -1 : 0);
        EXPECT_EQ(record.text, c.text == "-" ? "" : c.text);
        EXPECT_EQ(record.runs, c.runs);
    }
}

TEST(TextRecordTest, WritingFindsEachMacintoshCharacterAgain) {
    const uint8_t* toWindows = MacToWindowsTable();
    const uint8_t* toMac = WindowsToMacTable();
    for (int mac = 0; mac < 256; ++mac) EXPECT_EQ(toWindows[toMac[toWindows[mac]]], toWindows[mac]) << mac;
    EXPECT_EQ(toMac[0xE9], 0x8E);
    EXPECT_EQ(toMac[0x80], 0x80);  // the euro has no Macintosh place: kept
}

TEST(TextRecordTest, PerCardFieldsFindTheirCardsText) {
    Bytes chunk(kTextHeadSize);
    for (uint16_t id : {3, 5}) {
        const Bytes r = Record(id, "card", {});
        chunk.insert(chunk.end(), r.begin(), r.end());
    }
    const uint32_t first = kTextHeadSize, second = first + static_cast<uint32_t>(Record(3, "card", {}).size());
    const std::tuple<uint16_t, bool, uint32_t> cases[] = {{5, true, second}, {5, false, first}, {9, true, first}};
    for (const auto& [cardId, perCard, expected] : cases) {
        uint32_t offset = 0;
        ASSERT_TRUE(FindTextRecord(chunk.data(), static_cast<uint32_t>(chunk.size()), cardId, perCard, &offset));
        EXPECT_EQ(offset, expected) << cardId << " " << perCard;
    }
    uint32_t offset = 0;
    EXPECT_FALSE(FindTextRecord(chunk.data(), kTextHeadSize + 10, 3, true, &offset));
}

}  // namespace
