#include "text/Fontmap.h"

#include <gtest/gtest.h>

#include <cstring>

#include "base/ByteOrder.h"
#include "platform/HostFonts.h"
#include "stack/Blob.h"
#include "support/StackBytes.h"

namespace {

// A 'FntL' list written from the record's table, big-endian.
Bytes FontList(const std::vector<FontEntry>& rows) {
    Bytes list;
    for (const FontEntry& r : rows) {
        Bytes b(92, 0);
        b[0] = static_cast<uint8_t>(r.name.size());
        std::memcpy(b.data() + 1, r.name.data(), r.name.size());
        for (const auto& [at, v] : {std::pair{64, r.id}, {66, r.style}, {68, r.pitchAndFamily}, {86, r.height},
                                    {88, r.width}, {90, r.weight}})
            PutBE16(b, at, v);
        for (const auto& [at, v] :
             {std::pair{70, r.outPrecision}, {74, r.clipPrecision}, {78, r.quality}, {82, r.charSet}})
            PutBE32(b, at, v);
        Append(list, b);
    }
    return list;
}

class FontmapTest : public testing::Test {
protected:
    void SetUp() override { ResetFontMap(); }
    void TearDown() override {
        CloseAllBlobStores();
        ResetFontMap();
    }
    // Opens a one-card stack holding `records` and loads its font list.
    void OpenStackWith(const std::vector<Bytes>& records) {
        const std::string path = WriteTempFile("fonts.stk", StoredStack({}, {StoredCard(1, "A")}, records));
        ASSERT_NE(OpenBlobStoreAt(path, 228, 64, 68), 0u);
        LoadFontList();
    }
    void OpenWithList(const std::vector<FontEntry>& rows) {
        OpenStackWith({StoredRecord("FntL", 128, "", FontList(rows))});
    }
};

TEST_F(FontmapTest, RowsAreFoundInOrderUpToTheEndRow) {
    const FontEntry times{"Times", 5, 0x0100, 0x1234, 0x01020304, 0x05060708, 0x0A0B0C0D, 0xEE, 0x0102, 0x0304, 700};
    OpenWithList({times, {"Geneva", 7, 1}, {"Times", 8}, {"", 0}, {"Ghost", 9}});
    const std::pair<uint16_t, const char*> byId[] = {{5, "Times"}, {7, "Geneva"}, {8, "Times"}, {9, ""}, {6, ""}};
    for (const auto& [id, name] : byId) {
        FontEntry e{"stale"};
        EXPECT_EQ(FindFontById(id, &e), *name != '\0') << id;
        EXPECT_EQ(e.name, name) << id;
    }
    FontEntry e;
    EXPECT_TRUE(FindFontByName("Times", &e));  // the first of two rows with one name
    EXPECT_EQ(e, times);
    EXPECT_FALSE(FindFontByName("times", &e));  // names compare byte for byte
    EXPECT_FALSE(FindFontByName("Ghost", &e));  // behind the end row
    EXPECT_EQ(e, FontEntry{});

    OpenStackWith({StoredRecord("Snd ", 1, "", {1, 2})});  // a stack without a list keeps the one before
    EXPECT_TRUE(FindFontById(7, &e));
}

TEST_F(FontmapTest, DamagedListsAreReadOnlyAsFarAsTheyGo) {
    Bytes list = FontList({{"Arial", 4}, {"Times", 6}});
    list.resize(list.size() - 10);  // no end row, and half a second row
    OpenStackWith({StoredRecord("FntL", 128, "", list)});
    FontEntry e;
    EXPECT_TRUE(FindFontById(4, &e));
    EXPECT_FALSE(FindFontById(6, &e));

    list = FontList({{"Arial", 4}});
    list[0] = 200;  // a name longer than its field
    OpenStackWith({StoredRecord("FntL", 128, "", list)});
    ASSERT_TRUE(FindFontById(4, &e));
    EXPECT_EQ(e.name.size(), 63u);
}

TEST_F(FontmapTest, AddFontNumbersNewNamesAndPutsThemFirst) {
    FontInfo info{"Arial", 0x22, 3, 2, 1, 0x1EE};
    EXPECT_EQ(AddFont(info, 0, 0), 1000);  // a stack without a list gets one
    OpenWithList({{"Times", 1001}, {"", 0}});
    EXPECT_EQ(AddFont(info, 14 << 16 | 0x8000, 7 << 16), 1000);
    info.name = "Courier New";
    EXPECT_EQ(AddFont(info, 0, 0), 1002);  // 1001 is taken
    info.name = "Times";
    EXPECT_EQ(AddFont(info, 0, 0), 1001);  // known names keep their id

    FontEntry e;
    ASSERT_TRUE(FindFontById(1000, &e));
    EXPECT_EQ(e, (FontEntry{"Arial", 1000, 0, 0x22, 3, 2, 1, 0x1EE, 14, 7, 400}));
    MemRefLock lock(GetFontList());
    ASSERT_EQ(GetMemRefSize(GetFontList()), 4 * 92u);
    EXPECT_EQ(ReadBE16(lock.data() + 64), 1002);        // the newest row comes first
    EXPECT_EQ(ReadBE16(lock.data() + 3 * 92 + 64), 0);  // and the end row stays last
}

TEST_F(FontmapTest, NewIdsWrapAfter65000AndSkipUsedOnes) {
    OpenWithList({{"A", 1000}, {"B", 1001}, {"C", 65000}, {"", 0}});
    SetNextFontId(64999);
    EXPECT_EQ(AddFont({"D"}, 0, 0), 64999);
    EXPECT_EQ(AddFont({"E"}, 0, 0), 1002);
}

TEST_F(FontmapTest, LogFontsTakeTheRowSubstituteMacFacesAndFallBackToArial) {
    OpenWithList({{"Geneva", 1, 1, 0x12, 1, 2, 3, 0, 0, 6, 700}, {"GENEVA", 2, 0x200, 0, 0, 0, 0, 0, 0, 0, 400},
                  {"Helvetica", 3, 1}, {"monaco", 4, 1}, {"Geneva", 5, 0}, {"Monaco", 6, 0},
                  {"Zapf Chancery", 7, 0}, {"", 8, 0}, {"Times", 9, 1}, {"", 0}});
    struct Case { uint16_t id; int32_t points; const char* face; int32_t weight; };
    const Case cases[] = {
        {1, 12, "arial", 700}, {2, 12, "arial", 400}, {3, 9, "ms sans serif", 0}, {4, 24, "courier new", 0},
        {5, 12, "Geneva", 0},  // made by this player: no substitution
        {7, 12, "DejaVu Sans", 0},  // no host has it: the files' face
        {8, 12, "Arial", 0}, {9, 18, "Times", 0}, {77, 14, "Arial", 0},
    };
    for (const Case& c : cases) {
        LogFont lf;
        lf.italic = 1;
        FontToLogFont(c.id, &lf, c.points);
        EXPECT_STREQ(lf.faceName, c.face) << c.id;
        EXPECT_EQ((std::vector<int>{lf.height, lf.weight, lf.italic}), (std::vector<int>{-c.points, c.weight, 0}))
            << c.id;
    }
    LogFont lf;
    FontToLogFont(1, &lf, 12);
    EXPECT_EQ((std::vector<int>{lf.width, lf.pitchAndFamily, lf.outPrecision, lf.clipPrecision, lf.quality}),
              (std::vector<int>{6, 0x12, 1, 2, 3}));
}

TEST_F(FontmapTest, TheFixedTableGivesEveryFaceItsFiles) {
    struct Case { const char* face; bool bold, italic; const char* file; bool slanted; };
    const Case cases[] = {
        {"Arial", false, false, "liberation2/LiberationSans-Regular.ttf", false},
        {"MS Sans Serif", true, true, "liberation2/LiberationSans-BoldItalic.ttf", false},
        {"Courier New", true, true, "liberation2/LiberationMono-BoldItalic.ttf", false},
        {"Symbol", true, false, "dejavu/DejaVuSans-Bold.ttf", false},
        {"Wingdings", false, true, "dejavu/DejaVuSans.ttf", true},
        {"Arial Black", false, false, "dejavu/DejaVuSans.ttf", false},  // whole names only
    };
    const std::string folder = HostFontFolder();
    for (const Case& c : cases) {
        const FontFile f = FontFileFor(c.face, c.bold, c.italic);
        EXPECT_EQ(std::make_pair(f.path, f.slanted), std::make_pair(folder + "/" + c.file, c.slanted)) << c.face;
    }
    SetHostFontFolder("/opt/fonts/");
    EXPECT_EQ(FontFileFor("Arial", false, false).path, "/opt/fonts/liberation2/LiberationSans-Regular.ttf");
    SetHostFontFolder("");
}

TEST(MacFontNameTest, NumbersAndWords) {
    const std::pair<const char*, const char*> cases[] = {
        {"2", "New York"}, {"23", "Symbol"}, {"8", ""}, {"0", ""}, {"24", ""}, {"21x", "21x"},
        {"A name that is much longer than thirty-one", "A name that is much longer than"},
    };
    for (const auto& [given, name] : cases) EXPECT_EQ(MacFontName(std::string_view(given)), name) << given;
}

}  // namespace
