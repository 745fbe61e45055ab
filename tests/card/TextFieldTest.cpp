#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "platform/HostFile.h"
#include "platform/HostPath.h"
#include "platform/headless/HeadlessHost.h"
#include "policy/Policy.h"
#include "stack/PathSlot.h"
#include "card/DisplayList.h"
#include "gfx/Draw.h"
#include "stack/CardRecord.h"
#include "support/FieldCard.h"
#include "text/TextRecord.h"
#if QB_GOLDEN_TESTS
#include "support/Golden.h"
#endif

namespace {

#if QB_GOLDEN_TESTS
// Framed and plain, filled and transparent fields, a scroll bar, each alignment, runs of several
// sizes and styles that wrap, a line as tall as its tallest run, and a word too long for its field.
TEST(TextFieldTest, FieldsShowTheirStyledText) {
    const std::string verse = "The quick brown fox jumps over the lazy dog";
    const Field fields[] = {
        {{10, 10, 190, 110}, 0, kTextViewFrame, 0, 0, "Heading and more\r" + verse,
         {Styled(0, 1, 18, Rgb(200, 0, 0)), Styled(7, 0, 12), Styled(21, 2, 12, Rgb(0, 0, 160)),
          Styled(27, 4, 12)}},
        {{200, 10, 310, 110}, 0, kTextViewFrame | kTextViewScrollBar, 3, 1, verse, {Styled(0, 0, 14, Rgb(0, 90, 0))}},
        {{10, 120, 190, 190}, 0, 0, 3, -1, "Right\r" + verse, {Styled(0, 0, 10)}},
        {{200, 120, 310, 190}, kTextFlagTransparent, 0, 0, 0, "Transparent\rExtraordinarily",
         {Styled(0, 1, 16, Rgb(255, 255, 255))}},
    };
    Surface s(320, 200, kWhite);
    for (int32_t y = 0; y < s.height; y += 8) FillRect(s, s.Bounds(), {0, y, s.width, y + 4}, Rgb(60, 110, 170));
    std::vector<uint32_t> colors(256, kWhite);
    colors[2] = Rgb(250, 240, 180);
    for (const Field& f : fields) {
        DisplayItem item;
        ASSERT_TRUE(LoadField(f, &item));
        DrawTextField(s, s.Bounds(), item, colors.data());
    }
    ExpectMatchesGolden(s, "text-fields");
}
#endif

// A field that imports its text: a text head with the file flag, then one block holding the file's
// reference (path, pad, six bytes, name) and the style tail.
MemRef ImportingCard(const std::string& dosPath, bool withTail) {
    std::vector<uint8_t> reference(dosPath.begin(), dosPath.end());
    reference.push_back(0);
    if (reference.size() % 2) reference.push_back(0);
    reference.insert(reference.end(), 6, 0);
    const std::string name = dosPath.substr(dosPath.rfind('\\') + 1);
    reference.insert(reference.end(), name.begin(), name.end());
    reference.push_back(0);
    const uint8_t tail[12] = {0, 0, 0, 1, 0, 18, 0xFF, 0, 0, 0, 0, 0};  // bold 18 points, red
    std::vector<uint8_t> c(kTextHeadSize + kTextBlockHeadSize, 0);
    Write16(&c[kItemKind], kItemKindText);
    Write16(&c[kItemId], kFieldCardItemId);
    const int16_t rect[] = {10, 10, 300, 200};
    for (int i = 0; i < 4; ++i) Write16(&c[kItemRect + 2 * i], static_cast<uint16_t>(rect[i]));
    Write16(&c[kItemFlags], kItemFlagFileRef);
    c.insert(c.end(), reference.begin(), reference.end());
    if (withTail) c.insert(c.end(), tail, tail + 12);
    uint8_t* block = &c[kTextHeadSize];
    Write16(block, 99);
    Write32(block + kTextBlockDataLength, static_cast<uint32_t>(reference.size()));
    Write32(block + kTextBlockLength, static_cast<uint32_t>(c.size() - kTextHeadSize));
    Write32(&c[kItemLength], static_cast<uint32_t>(c.size()));
    const MemRef card = NewCardMemRef(static_cast<uint32_t>(kCardHeadSize + c.size() + kCardTailSize));
    MemRefLock lock(card);
    std::copy(c.begin(), c.end(), lock.data() + kCardHeadSize);
    return card;
}

// The text comes from the file on each loading, its lines in whatever ends its system wrote, in the
// tail's style; a file that can't be found leaves the field empty once the user cancels the search.
TEST(TextFieldTest, AFieldImportsItsTextFromAFile) {
    ResetAllState();
    InitPathSlots();
    const std::filesystem::path dir = std::filesystem::temp_directory_path() / "qb-import-test";
    std::filesystem::create_directories(dir);
    std::filesystem::create_directories(dir / "stack");
    SetPolicyStack((dir / "stack" / "S.STK").string());
    struct Case { const char* what; std::string file, bytes; bool exists, withTail; const char* text; };
    const std::string beside = (dir / "stack" / "NOTES.TXT").string();
    const Case cases[] = {
        {"Windows lines", beside, "one\r\ntwo\r\n", true, true, "one\rtwo\r"},
        {"Unix lines", beside, "one\ntwo", true, false, "one\rtwo"},
        {"no file", beside, "", false, true, ""},
        {"a file the stack may not read", (dir / "SECRET.TXT").string(), "secret", true, true, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string& file = c.file;
        std::filesystem::remove(file);
        if (c.exists) {
            ASSERT_EQ(WriteWholeHostFile(file, c.bytes.data(), c.bytes.size()), 0);
        }
        GetHeadlessState().fileChoices.clear();
        const MemRef card = ImportingCard(DosPathFromHost(file), c.withTail);
        DisplayItem item;
        ASSERT_TRUE(ReadItemHead(card, kCardHeadSize, kTextHeadSize, &item));
        LoadTextField(&item, card, kCardHeadSize);
        FreeMemRef(card);
        EXPECT_EQ(item.document.text, c.text);
        if (c.withTail && *c.text) {
            ASSERT_EQ(item.document.runs.size(), 1u);
            EXPECT_EQ(item.document.runs[0].style.font.style & kStyleBold, kStyleBold);
            EXPECT_EQ(item.document.runs[0].style.colour, Rgb(255, 0, 0));
        }
    }
    std::filesystem::remove_all(dir);
    ResetHeadlessState();
}

}  // namespace
