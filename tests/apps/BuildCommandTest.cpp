// `quillbrook build` against bytes derived by hand from the format's tables, the round trip of the
// fixture stacks through `info --json --raw` and back, and the builder's error messages.
#ifdef QB_WITH_CLI

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "Commands.h"
#include "StackBuilder.h"
#include "StackInfo.h"
#include "base/ByteOrder.h"
#include "support/CommandFixture.h"
#include "support/StackBytes.h"

namespace {

using Json = nlohmann::ordered_json;

// Bytes as hex digits, and hex with spaces between groups as bytes: failures show where bytes differ.
std::string ToHex(const Bytes& bytes) {
    std::string hex;
    for (uint8_t b : bytes) hex += {"0123456789abcdef"[b >> 4], "0123456789abcdef"[b & 15]};
    return hex;
}

Bytes FromHex(std::string hex) {
    hex.erase(std::remove(hex.begin(), hex.end(), ' '), hex.end());
    Bytes bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += 2) bytes.push_back(static_cast<uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

// The builder's message, or "(built)" with the bytes in `*bytes`.
std::string BuildError(const std::string& json, const std::filesystem::path& baseDir = ".", Bytes* bytes = nullptr) {
    Bytes built;
    std::string error;
    return BuildStack(Json::parse(json), baseDir, bytes ? bytes : &built, &error) ? "(built)" : error;
}

Bytes MustBuild(const std::string& json, const std::filesystem::path& baseDir = ".") {
    Bytes bytes;
    EXPECT_EQ(BuildError(json, baseDir, &bytes), "(built)");
    return bytes;
}

// Describes stored bytes, passes the description through its text form, and builds it again.
Bytes RoundTrip(const Bytes& file) {
    Json description;
    std::string problem;
    EXPECT_TRUE(DescribeStoredStack(file, &description, &problem)) << problem;
    return MustBuild(description.dump());
}

using BuildCommandTest = CommandFixture;

// One card with one button whose type-60 sub-record names another stack by a drive path, and one
// record whose data needs padding: every byte written out from the format's tables.
TEST_F(BuildCommandTest, OneButtonStackMatchesHandDerivedBytes) {
    const Bytes built = MustBuild(R"({
        "cards": [{"id": 1, "name": "Home", "items": [
            {"kind": 48, "id": 7, "rect": [10, 20, 110, 60], "name": "Go", "shape": 2,
             "destination": -6, "actionFlags": 32,
             "subRecords": [{"type": 60, "path": "C:\\Stacks\\next.stk"}]}]}],
        "records": [{"type": "Actn", "id": 3, "name": "a", "hex": "0102030405"}]})");

    const std::string zeros16 = "00000000000000000000000000000000";
    const std::string expected =
        // header: autoSave, advancedUser, cardCount 1, reserved6, version 5, nextCardId 2,
        // nextItemId 8, stackFlags, depth 8, reserved18, autoTimers 1, reserved22, locked, showCardNumber
        "0000 0000 0001 0000 0005 0002 0008 0000 0008 0000 0001 0000 0000 0000"
        "00000000" + zeros16 +  // reserved28, password
        // presentationMode, presentationColor 1, reserved52, windowFlags, 640 x 480
        "0000 0001 0000 0000 0280 01e0"
        "000001b0 00000001 00000000"  // blobOffset 128 + 304, blobCount 1, nextBlobId
        "0000 0000 0000 0000" + zeros16 + zeros16 + zeros16 +  // stack actions, cursor; reserved80
        // card head: id 1, size 304, kind 0, owner -1, flags, reserved12, menuShown, depth 8, 640 x 480
        "0001 00000130 0000 ffff 0000 00000000 0000 0008 0280 01e0"
        "0000000000000000"                       // reserved24
        "04486f6d65 0000000000000000000000"      // name "Home" in 16 bytes
        "0000 0000 0000 0000 0000" + zeros16 + zeros16 + "000000000000" +  // actions, cursor, 56, 58
        // button: kind 48, id 7, rect stored top 20, left 10, bottom 60, right 110, length 204
        "0030 0007 0014 000a 003c 006e 000000cc"
        "fffa 0000 0020 0000 0000 0000"  // destination -6, transition, actionFlags 0x20, itemFlags, timer
        "02476f" + zeros16 + "00000000000000000000000000" +  // name "Go" in 32 bytes
        "0002" + zeros16 + zeros16 + zeros16 + zeros16 + "00000000000000000000" +  // shape 2, rest of head
        // sub-record 60, 68 bytes: the odd reference is padded and flagged 0x200 at 22
        "003c 0000 0000000000000000 00000044 000000000000 0200 0000000000000000"
        "12 433a3a537461636b733a6e6578742e73746b 00"  // "C::Stacks:next.stk", 19 bytes with the length: pad
        "000000000000"                             // six zero bytes
        "08 6e6578742e73746b"                      // the name, from the path's last part
        "00"                                       // the sub-record's pad
        "0000face"                                 // end of the item chain, sentinel
        // record: 'Actn' 3, name "a", flags, size 5, next 8, reserved52, data padded to 8
        "4163746e 0003 0000 0161" + zeros16 + "0000000000000000000000000000" +
        "00000000 00000005 00000008" + zeros16 + "0102030405 000000";
    EXPECT_EQ(ToHex(built), ToHex(FromHex(expected)));
}

TEST_F(BuildCommandTest, FileReferencesAreStoredWithColonsPadAndName) {
    // The odd reference with its pad byte is in the hand-derived stack above.
    struct Case { const char* path; const char* name; const char* expected; };
    const Case cases[] = {
        // A path from the other platform is already in colon form and stays as it is; a name given is kept.
        {"Disk:Pics:Sun", "Y.BMP", "0d4469736b3a506963733a53756e 000000000000 05592e424d50"},
        // UTF-8 in, Windows-1252 stored.
        {"C:\\caf\xc3\xa9", "", "07433a3a636166e9 000000000000 04636166e9"},
    };
    Bytes bytes;
    std::string error;
    for (const Case& c : cases) {
        ASSERT_TRUE(StoredFileReference(c.path, c.name, &bytes, &error)) << c.path;
        EXPECT_EQ(ToHex(bytes), ToHex(FromHex(c.expected))) << c.path;
    }
    EXPECT_FALSE(StoredFileReference("C:\\" + std::string(253, 'x'), "", &bytes, &error));
    EXPECT_EQ(error, "the path is longer than 255 characters");
    EXPECT_TRUE(StoredFileReference("C:\\" + std::string(252, 'x'), "", &bytes, &error));
}

// Each sub-record form against its bytes, taken from behind the button's head.
TEST_F(BuildCommandTest, SubRecordForms) {
    struct Case { const char* subRecord; std::string expected; };
    const Case cases[] = {
        // A launch: the document's reference length at 18, the program's reference behind it.
        {R"({"type": 59, "path": "C:\\d.txt", "programPath": "C:\\p.exe", "fields": {"16": 16384}})",
         "003b 0000 0000000000000000 0000004c 4000 00000016 0000 0000000000000000"
         "08433a3a642e747874 00 000000000000 05642e747874"
         "08433a3a702e657865 00 000000000000 05702e657865"},
        // Stored bytes as a base: the type and length are written over them, then the fields.
        {R"({"type": 64, "hex": "ffff ffff ffff ffff ffff ffff ffff ffff ffff ffff ffff ffff ffff ffff ffff ffff 6869",
             "fields": {"24": 1}})",
         "0040 ffff ffffffffffffffff 00000022 ffffffffffff ffff 0001 ffffffffffff 6869"},
    };
    for (const Case& c : cases) {
        const std::string json = std::string(R"({"cards": [{"items": [{"kind": 48, "rect": [0, 0, 8, 8], "subRecords": [)") +
                                 c.subRecord + "]}]}]}";
        const Bytes built = MustBuild(json);
        const size_t at = 128 + 96 + 136;  // behind the button's head
        ASSERT_GE(built.size(), at + 4) << c.subRecord;
        EXPECT_EQ(ToHex(Bytes(built.begin() + at, built.end() - 4)), ToHex(FromHex(c.expected))) << c.subRecord;
    }
}

// The independent fixtures, described from their stored bytes and built again, come back identical.
TEST_F(BuildCommandTest, FixturesRoundTripThroughRawDescription) {
    for (const char* name : {"sample-cards.stk", "sample-media.stk"}) {
        const Bytes file = ReadWholeFile(std::string(QB_FIXTURES_DIR) + "/" + name);
        ASSERT_FALSE(file.empty()) << name;
        const Bytes rebuilt = RoundTrip(file);
        EXPECT_TRUE(rebuilt == file) << name << ": " << rebuilt.size() << " bytes for " << file.size();
    }
}

// What the fixtures lack: graphics, text fields, an odd background (padded and flagged), a group
// member, reserved bytes, a button body that is not a clean chain, and a deleted record.
TEST_F(BuildCommandTest, EveryKindOfContentRoundTrips) {
    const std::string reserved80 = "01" + std::string(90, '0') + "ff02";
    const std::string reserved82 = std::string(104, '0') + "0077";
    const Bytes original = MustBuild(R"({"reserved80": ")" + reserved80 + R"(",
        "password": "secret", "nextBlobId": 70000, "cards": [
        {"id": 1, "kind": 1, "reserved24": "0102030405060708", "background": {"format": 3, "tableSize": 1, "hex": "0a0b0c0d0e"},
         "items": [
           {"kind": 16, "id": 3, "rect": [-5, 0, 20, 10], "name": "pic", "pictureRect": [1, 2, 3, 4],
            "itemFlags": 64, "pictureSize": 4, "raw": "04433a3a780000000000000000017800010002", "reserved64": "00000000000000000000000000000009"},
           {"kind": 96, "id": 4, "rect": [0, 0, 50, 50], "name": "note", "fields": {"16": 4000000000, "102": 7},
            "raw": "0063000100000000000000020000001268690000"},
           {"kind": 48, "id": 5, "rect": [0, 0, 5, 5], "name": "odd", "raw": "00530000"},
           {"kind": 48, "id": 6, "rect": [0, 0, 5, 5], "reserved82": ")" + reserved82 + R"(",
            "subRecords": [{"type": 60, "path": "C:\\s.stk"}, {"type": 83, "fields": {"16": 1}}]}]},
        {"id": 2, "kind": 3, "ownerId": 1, "menuShown": 1, "width": 320}],
        "records": [{"type": "Snd ", "id": 1, "hex": "010203"},
                    {"type": "Actn", "id": 2, "name": "gone", "flags": 5, "deleted": true, "hex": "00"}]})");
    EXPECT_TRUE(RoundTrip(original) == original);
}

// A field's text and runs are stored as a script would write the record by hand.
TEST_F(BuildCommandTest, TextFieldsAreBuiltFromTextAndRuns) {
    const std::string field = R"({"cards": [{"id": 4, "items": [{"kind": 96, "rect": [0, 0, 90, 40], )";
    const std::pair<std::string, std::string> cases[] = {
        {R"("text": "Hi\r\nyou", "runs": [{"size": 24, "style": 1, "font": 20, "color": [255, 0, 128],
            "lineHeight": 28, "ascent": 22}, {"start": 3, "lineHeight": 14, "ascent": 11}])",
         "0063000400000000000000060000004048690d796f750002000000000"
         "01c0016001401000018ffff0000808000000003000e000b00000000000c000000000000"},
        {R"("text": "Hey", "runs": [{"lineHeight": 14, "ascent": 11}])",  // odd: padded and flagged
         "0063000400040000000000030000002a486579000100000000000e000b00000000000c00000000000000"},
    };
    for (const auto& [text, raw] : cases)
        EXPECT_TRUE(MustBuild(field + text + "}]}]}") == MustBuild(field + R"("raw": ")" + raw + "\"}]}]}")) << text;
}

TEST_F(BuildCommandTest, MistakesNameTheirPlaceInTheDescription) {
    const std::string button = R"({"cards": [{"items": [{"kind": 48, "rect": [0, 0, 1, 1], )";
    struct Case { std::string json; std::string message; };
    const Case cases[] = {
        {R"({"cards": []})", "cards: a stack needs at least one card"},
        {R"({"cards": [{}, {"items": [{"kind": 32}]}]})", "cards[1].items[0].kind: 32 is not an item kind (16 graphic, 48 button, 96 text field)"},
        {R"({"cards": [{"kind": 3}]})", "cards[0].ownerId: a kind 3 card needs the id of the card whose picture it shows"},
        {R"({"cards": [{}], "records": [{"type": "Actn", "id": 1, "hex": "0x"}]})", "records[0].hex: 'x' at character 1 is not a hex digit"},
        {button + R"("fields": {"16": 70000}}]}]})", "cards[0].items[0].fields.16: 70000 is out of range (-32768 to 65535)"},
        {button + R"("subRecords": [{"type": 83, "path": "C:\\a.wav"}]}]}]})",
         "cards[0].items[0].subRecords[0].path: a type 83 sub-record carries no file reference (59, 60, 82 and 89 do)"},
        {button + R"("subRecords": [{"type": 119, "hex": "0000000000000000000000000000000000000000000000000000000000000000"}]}]}]})",
         "cards[0].items[0].subRecords[0].hex: a type 119 sub-record has at least 96 bytes, not 32"},
        {R"({"cards": [{}], "records": [{"type": "Actn", "id": 1, "sound": "a.wav"}]})", "records[0].sound: only a 'Snd ' record is made from a sound file"},
        {R"({"cards": [{"items": [{"kind": 96, "rect": [0, 0, 1, 1], "text": "ab", "runs": [{}, {"start": 5}]}]}]})",
         "cards[0].items[0].runs[1].start: runs start at 0 and at rising offsets up to the length of the text"},
    };
    for (const Case& c : cases) EXPECT_EQ(BuildError(c.json), c.message) << c.json;

    EXPECT_EQ(BuildError(R"({"cards": [{"background": {"format": 2, "file": "nothing.bin"}}]})", dir_),
              "cards[0].background.file: cannot read \"" + (dir_ / "nothing.bin").string() + "\"");
    Write("cut.wav", "RIFF");
    EXPECT_EQ(BuildError(R"({"cards": [{}], "records": [{"type": "Snd ", "id": 1, "sound": "cut.wav"}]})", dir_),
              "records[0].sound: \"" + Path("cut.wav") + "\": damaged, or not the kind of sound file its name says");
}

TEST_F(BuildCommandTest, FailedBuildLeavesNothingAtTheOutput) {
    const std::string out = (dir_ / "out.stk").string();
    testing::internal::CaptureStderr();
    EXPECT_EQ(RunBuild(Write("broken.json", "{\"cards\": [}"), out), 1);
    const std::string parseMessage = testing::internal::GetCapturedStderr();
    EXPECT_NE(parseMessage.find("broken.json: not valid JSON: parse error at line 1, column 12"), std::string::npos) << parseMessage;
    EXPECT_FALSE(std::filesystem::exists(out));
    // A stack already there stays as it was.
    Write("out.stk", "old");
    testing::internal::CaptureStderr();
    EXPECT_EQ(RunBuild(Write("long.json", R"({"cards": [{"name": "a name of twenty chars"}]})"), out), 1);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("long.json: cards[0].name: longer than 15 characters"), std::string::npos);
    EXPECT_EQ(ReadWholeFile(out), Bytes({'o', 'l', 'd'}));

    EXPECT_EQ(RunBuild(Write("good.json", R"({"cards": [{}]})"), out), 0);
    EXPECT_EQ(ReadWholeFile(out).size(), 128u + 100);
    EXPECT_FALSE(std::filesystem::exists(out + ".partial"));

    testing::internal::CaptureStderr();
    EXPECT_EQ(RunBuild((dir_ / "good.json").string(), (dir_ / "no-such-folder" / "x.stk").string()), 1);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("x.stk: cannot create it"), std::string::npos);
}

}  // namespace

#endif  // QB_WITH_CLI
