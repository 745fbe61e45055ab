// The offscreen card: the window rebuilt from the background and the live records, the order in
// which records draw, graphics drawn from their chunks, and whole cards composed and shown.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "card/ButtonLayout.h"
#include "card/DisplayList.h"
#include "card/GraphicPicture.h"
#include "card/OffscreenCard.h"
#include "gfx/ColorTable.h"
#include "gfx/DisplayDepth.h"
#include "gfx/Draw.h"
#include "gfx/Palette.h"
#include "pictures/Background.h"
#include "pictures/PackedPixels.h"
#include "platform/Host.h"
#include "platform/headless/HeadlessHost.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackHeader.h"
#include "stack/StackReader.h"
#include "stack/SubRecord.h"
#include "support/PictureMaker.h"
#include "support/StackBytes.h"
#include "support/SurfaceArt.h"
#include "transitions/Transition.h"
#if QB_GOLDEN_TESTS
#include "support/Golden.h"
#endif

namespace {

// A palette of pure colours, so that drawings read as art: 0 white, 1 red, 2 green, 3 blue, 255
// black.
PaletteRef ArtPalette() {
    PaletteRef palette = NewPalette(256);
    palette->entries[0] = {255, 255, 255, 0};
    palette->entries[1] = {255, 0, 0, 0};
    palette->entries[2] = {0, 255, 0, 0};
    palette->entries[3] = {0, 0, 255, 0};
    return palette;
}

// An 8-bit picture of indices, packed by runs as a graphic stores it.
template <class IndexAt>
Bytes RunPackedPicture(int32_t width, int32_t height, IndexAt&& indexAt) {
    const MemRef image = NewDibImage(width, height, 8);
    {
        MemRefLock lock(image);
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) SetPixel(lock.data(), x, y, indexAt(x, y));
        }
    }
    const MemRef packed = EncodeRunPacked(image);
    FreeMemRef(image);
    Bytes picture(kGraphicPictureHeadSize, 0);
    PutBE16(picture, 0, static_cast<uint16_t>(width));
    PutBE16(picture, 2, static_cast<uint16_t>(height));
    Append(picture, TakeBytes(packed));
    return picture;
}

// The same from rows of indices '0' to '9'.
Bytes RunPackedPicture(std::initializer_list<const char*> rows) {
    const std::vector<std::string> lines(rows.begin(), rows.end());
    return RunPackedPicture(
        static_cast<int32_t>(lines[0].size()), static_cast<int32_t>(lines.size()),
        [&](int32_t x, int32_t y) { return static_cast<uint32_t>(lines[y][x] - '0'); });
}

std::vector<int16_t> ListIds() {
    std::vector<int16_t> ids;
    for (const DisplayItem* item = DisplayListHead(); item; item = item->next.get())
        ids.push_back(item->id);
    return ids;
}

Surface Part(const Surface& s, const Rect& r) {
    Surface part(r.Width(), r.Height());
    for (int32_t y = 0; y < r.Height(); ++y) {
        for (int32_t x = 0; x < r.Width(); ++x) part.Row(y)[x] = s.Row(r.top + y)[r.left + x];
    }
    return part;
}

class OffscreenCardTest : public testing::Test {
protected:
    void SetUp() override {
        InitPathSlots();
        SetHost(HeadlessHost());
        ResetAllState();
    }
    void TearDown() override {
        ResetAllState();
        RemoveTempFiles();
    }
    void Open(const std::string& path) {
        LoadFault fault;
        ASSERT_EQ(ReadStackFile(path, &fault), 0) << fault.detail;
        // The settings the open flow takes from the header.
        Document& doc = GetDocument();
        {
            MemRefLock lock(doc.stackHeader);
            doc.cardWidth = ReadS16(lock.data() + kHdrCardWidth);
            doc.cardHeight = ReadS16(lock.data() + kHdrCardHeight);
            doc.depth = ReadS16(lock.data() + kHdrDepth);
        }
        for (int32_t i = 1; i <= CardCount(); ++i) {
            MemRefLock card(GetCardByPosition(i));
            Write16(card.data() + kCardWidth, static_cast<uint16_t>(doc.cardWidth));
            Write16(card.data() + kCardHeight, static_cast<uint16_t>(doc.cardHeight));
        }
        SetHeadlessWindowSize(doc.cardWidth, doc.cardHeight);
        ASSERT_EQ(InitPalette(), 0);
        ASSERT_TRUE(InitDataBase(doc.cardWidth, doc.cardHeight, doc.depth, true));
    }
    void OpenFixture() { Open(std::string(QB_FIXTURES_DIR) + "/sample-cards.stk"); }
    // The card at `position` becomes current and is drawn as arriving there does.
    static void Show(int32_t position) {
        Document& doc = GetDocument();
        doc.currentCard = GetCardByPosition(position);
        {
            MemRefLock lock(doc.currentCard);
            doc.currentCardId = ReadS16(lock.data() + kCardId);
        }
        DrawCard(doc.currentCard, kTransitionFastest, 8, true);
    }
    static const Surface& Screen() { return GetHeadlessState().screen; }

    // A 160 by 120 card on a picture of the default colours: a framed graphic, a hidden graphic,
    // a transparent framed graphic, a button, a hidden button, and a button over them all.
    void OpenCardWithHiddenItems() {
        // Quarters of four colours; a diamond of rings on see-through corners.
        const Bytes plain = RunPackedPicture(
            40, 40, [](int32_t x, int32_t y) { return 2u + (x >= 20) + 2u * (y >= 20); });
        const Bytes shape = RunPackedPicture(40, 40, [](int32_t x, int32_t y) {
            const int32_t d = std::abs(x - 20) + std::abs(y - 20);
            return d > 19 ? 0u : 6u + static_cast<uint32_t>(d / 5);
        });
        const std::vector<Bytes> items = {
            StoredGraphic(1, {10, 10, 50, 50}, plain, 0, 16, 3),
            StoredGraphic(2, {60, 10, 100, 50}, plain, kItemFlagHidden),
            StoredButton(3, {20, 60, 90, 90}, 2, "Shown"),
            StoredGraphic(4, {60, 30, 100, 70}, shape, kGraphicFlagTransparent, 4, 2),
            StoredButton(5, {100, 60, 150, 110}, 0, "Hidden", kItemFlagHidden),
            StoredButton(6, {110, 10, 150, 40}, 4, "Top"),
        };
        Open(WriteTempFile("hidden-items.stk",
                           StoredStack({.cardWidth = 160, .cardHeight = 120}, {StoredCard(1, "Items", items)}, {})));
        PaletteEntry colors[256];
        DefaultPaletteEntries(colors);
        Bytes table(ColorTableSize(256));
        WriteColorTable(table.data(), colors, 256, 0);
        const MemRef tableRef = BlockOf(table);
        // Diagonal bands of the default palette's pale reds and browns.
        const MemRef picture = NewDibImage(160, 120, 8);
        {
            MemRefLock lock(picture);
            for (int32_t y = 0; y < 120; ++y) {
                for (int32_t x = 0; x < 160; ++x)
                    SetPixel(lock.data(), x, y, 16u + static_cast<uint32_t>((x + y) / 20 % 8));
            }
        }
        const MemRef data = CompressBackground(picture, false);
        ASSERT_EQ(StoreBackground(GetCardByPosition(1), data, tableRef, 8), 0);
        for (MemRef r : {tableRef, picture, data}) FreeMemRef(r);
    }
};

TEST_F(OffscreenCardTest, ARepaintBeforeAnyStackGivesAWhiteWindow) {
    Surface& window = GetHeadlessState().window;
    FillRect(window, window.Bounds(), {0, 0, 100, 100}, kBlack);
    GetHost().Present(window.Bounds());
    RepaintRect(10, 10, 20, 20);
    const Surface& screen = Screen();
    EXPECT_EQ(screen.pixels, std::vector<uint32_t>(screen.pixels.size(), kWhite));
    ASSERT_FALSE(GetHeadlessState().presents.empty());
    EXPECT_EQ(GetHeadlessState().presents.back(), window.Bounds());
}

TEST_F(OffscreenCardTest, RecordsDrawUnderOrOverTheBoundary) {
    ASSERT_TRUE(InitDataBase(8, 1, 32, false));
    // Red at 0-3, green at 2-5, blue at 4-7, bottom to top.
    const uint32_t colors[] = {kRed, kGreen, kBlue};
    for (int16_t i = 0; i < 3; ++i) {
        auto item = std::make_unique<DisplayItem>();
        std::tie(item->type, item->id, item->rect, item->bitmap) = std::make_tuple(
            kItemKindGraphic, i + 1, Rect{2 * i, 0, 2 * i + 4, 1}, MakePicture(4, 1, 32, Fill::Single, colors[i]));
        InsertDisplayItem(std::move(item), -1);
    }
    const DisplayItem* green = FindDisplayItem(kItemKindGraphic, 2);
    DisplayItem stranger;
    struct Case {
        const char* name;
        Rect area;
        const DisplayItem* boundary;
        bool stop;
        const char* art;
    };
    const Case cases[] = {
        {"no boundary", {0, 0, 8, 1}, nullptr, false, "rrggbbbb"},
        {"under the boundary", {0, 0, 8, 1}, green, true, "rrrr...."},
        {"over the boundary", {0, 0, 8, 1}, green, false, "....bbbb"},
        {"over a boundary not in the list", {0, 0, 8, 1}, &stranger, false, "........"},
        {"under a boundary not in the list", {0, 0, 8, 1}, &stranger, true, "rrggbbbb"},
        {"records that meet the area, cut to it", {0, 0, 3, 1}, nullptr, false, "rrg....."},
    };
    for (const Case& c : cases) {
        Surface target(8, 1);
        DrawItems(target, c.area, c.boundary, c.stop);
        EXPECT_EQ(Art(target), Art({c.art})) << c.name;
    }
}

TEST_F(OffscreenCardTest, GraphicsAreStretchedAndFramedOrDrawnThroughTheirShape) {
    // A 2 by 2 picture with a blue frame (stored index 4), and a transparent 4 by 3 picture with a
    // blue rim.
    const std::vector<Bytes> items = {
        StoredGraphic(1, {0, 0, 2, 2}, RunPackedPicture({"12", "21"}), 0, 4, 1),
        StoredGraphic(2, {1, 1, 5, 4}, RunPackedPicture({"0110", "1221", "0110"}), kGraphicFlagTransparent, 4, 1),
    };
    Open(WriteTempFile("graphics.stk",
                       StoredStack({.cardWidth = 40, .cardHeight = 40}, {StoredCard(1, "G", items)}, {})));
    GetPaletteState().current = ArtPalette();
    const MemRef card = GetCardByPosition(1);
    uint32_t first = 0, second = 0;
    {  // the first graphic stretched to 4 by 4, as after its rectangle was changed
        MemRefLock lock(card);
        first = ItemChainStart(lock.data());
        second = first + Read32(lock.data() + first + kItemLength);
        Write16(lock.data() + first + kItemRect + 4, 4);
        Write16(lock.data() + first + kItemRect + 6, 4);
    }
    const DisplayItem* framed = AddGraphicNode(card, first, -1);
    ASSERT_NE(framed, nullptr);
    EXPECT_EQ(framed->frameColor, 3);
    Surface target(6, 6);
    DrawItems(target, target.Bounds(), nullptr, false);
    // The frame's pen is centred on a rectangle one pixel larger than the item.
    EXPECT_EQ(Art(target), Art({"bbbbb.", "brggb.", "bgrrb.", "bgrrb.", "bbbbb.", "......"}));

    RemoveDisplayItem(const_cast<DisplayItem*>(framed));
    const DisplayItem* shaped = AddGraphicNode(card, second, -1);
    ASSERT_NE(shaped, nullptr);
    ASSERT_TRUE(shaped->hasMask);
    Surface black(6, 6, kBlack);
    DrawItems(black, black.Bounds(), nullptr, false);
    EXPECT_EQ(Art(black), Art({"######", "##bb##", "#bggb#", "##bb##", "######", "######"}));
    // Hit by the shape's pixels, not the rectangle.
    EXPECT_EQ(FindItemAt(1, 1, false, nullptr), nullptr);
    EXPECT_EQ(FindItemAt(2, 1, false, nullptr), shaped);
}

TEST_F(OffscreenCardTest, ButtonsAreOnTheWindowAndInTheListButNotInTheBackground) {
    OpenFixture();
    Show(1);
    EXPECT_EQ(ListIds(), (std::vector<int16_t>{101, 102, 103}));
    struct Case {
        int32_t x, y;
        int16_t id;
    };
    for (const Case& c :
         {Case{100, 440, 101}, Case{320, 440, 102}, Case{520, 440, 103}, Case{320, 200, 0}}) {
        const DisplayItem* hit = FindItemAt(c.x, c.y, false, nullptr);
        EXPECT_EQ(hit ? hit->id : 0, c.id) << c.x << "," << c.y;
    }
    // The round button's outline runs along its rectangle's top edge.
    const Surface& background = GetOffscreenState().screen;
    EXPECT_NE(Screen().Row(420)[120], background.Row(420)[120]) << "drawn on the window";

    // "Hide Objects": the background alone, and nothing to hit.
    GetOffscreenState().showObjects = false;
    Show(1);
    EXPECT_EQ(DisplayListHead(), nullptr);
    EXPECT_EQ(FindItemAt(100, 440, false, nullptr), nullptr);
    EXPECT_EQ(Part(Screen(), {0, 0, 640, 480}).pixels, Part(background, {0, 0, 640, 480}).pixels);
}

TEST_F(OffscreenCardTest, RepaintRebuildsARectangleFromTheBackgroundAndTheRecords) {
    OpenFixture();
    Show(1);
    const Surface shown = Screen();
    Surface& window = GetHeadlessState().window;
    FillRect(window, window.Bounds(), window.Bounds(), kBlack);
    const Rect area{30, 400, 250, 470};  // over two buttons
    RepaintRect(area.left, area.top, area.right, area.bottom);
    EXPECT_EQ(GetHeadlessState().presents.back(), area);
    EXPECT_EQ(Part(Screen(), area).pixels, Part(shown, area).pixels);
    EXPECT_EQ((std::vector<uint32_t>{window.Row(area.top - 1)[area.left], window.Row(area.top)[area.right]}),
              std::vector<uint32_t>(2, kBlack))
        << "nothing drawn outside the rectangle";

    struct Case {
        Rect in, clamped, kept;
    };
    const Case cases[] = {
        {{10, 10, 50, 50}, {10, 10, 50, 50}, {10, 10, 50, 50}},
        {{-20, 470, 30, 500}, {0, 470, 30, 480}, {0, 450, 50, 480}},
        {{600, -5, 700, 10}, {600, 0, 640, 10}, {540, 0, 640, 15}},
        {{-10, 0, 700, 10}, {0, 0, 640, 10}, {0, 0, 710, 10}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ClampRect(c.in), c.clamped);
        EXPECT_EQ(KeepRectOnScreen(c.in), c.kept);
    }
}

TEST_F(OffscreenCardTest, HiddenItemsStayOutUntilShownAgainInTheirPlace) {
    OpenCardWithHiddenItems();
    Show(1);
    EXPECT_EQ(ListIds(), (std::vector<int16_t>{1, 3, 4, 6}));
    EXPECT_EQ(FindItemAt(120, 80, false, nullptr), nullptr) << "the hidden button isn't hit";
    EXPECT_EQ(FindItemAt(70, 15, false, nullptr), nullptr) << "the hidden graphic isn't hit";

    // Shown by the setting: the button takes the place of the visible items under it.
    GetOffscreenState().showHiddenButtons = true;
    RedrawItem(kItemKindButton, 5, kTransitionFastest, 8, 1);
    EXPECT_EQ(ListIds(), (std::vector<int16_t>{1, 3, 4, 5, 6}));
    EXPECT_EQ(FindItemAt(120, 80, false, nullptr), FindDisplayItem(kItemKindButton, 5));
    // Hidden again by its flag; then the graphic, its flag cleared, comes back second.
    RedrawItem(kItemKindButton, 5, kTransitionFastest, 8, 0);
    EXPECT_EQ(ListIds(), (std::vector<int16_t>{1, 3, 4, 6}));
    {
        MemRefLock lock(GetCardByPosition(1));
        uint8_t* c = lock.data();
        uint32_t at = ItemChainStart(c) + Read32(c + ItemChainStart(c) + kItemLength);
        ASSERT_EQ(ReadS16(c + at + kItemId), 2);
        Write16(c + at + kItemFlags, 0);
    }
    EXPECT_NE(Screen().Row(15)[70], 0xFF6402u);
    RedrawItem(kItemKindGraphic, 2, kTransitionFastest, 8, 0);
    EXPECT_EQ(ListIds(), (std::vector<int16_t>{1, 2, 3, 4, 6}));
    EXPECT_EQ(Screen().Row(15)[70], 0xFF6402u) << "its top left quarter, on the window";
    EXPECT_EQ(FindItemAt(70, 15, false, nullptr), FindDisplayItem(kItemKindGraphic, 2));
}

#if QB_GOLDEN_TESTS
TEST_F(OffscreenCardTest, CardsMatchTheirGoldenPictures) {
    OpenFixture();
    Show(1);
    ExpectMatchesGolden(Screen(), "card-fixture-cover");
    Show(2);
    ExpectMatchesGolden(Screen(), "card-fixture-group");
    CloseStack();
    ResetOffscreenState();

    // An 8-bit card looks the same on an emulated display of 32 bits; at 16 every colour is cut
    // to 5 bits a channel.
    ASSERT_EQ(ForceDisplayDepth(32), 0);
    OpenCardWithHiddenItems();
    Show(1);
    ExpectMatchesGolden(Screen(), "card-hidden-items");
    ASSERT_EQ(ForceDisplayDepth(16), 0);
    Show(1);
    ExpectMatchesGolden(Screen(), "card-hidden-items-16");
    for (uint32_t pixel : Screen().pixels) ASSERT_EQ(QuantizeTo555(pixel), pixel);
}
#endif

// A click on a graphic or a text field runs its action under the item's name.
TEST_F(OffscreenCardTest, GraphicsAndTextFieldsKeepTheirStoredNames) {
    Bytes graphic = StoredGraphic(1, {10, 10, 50, 50}, RunPackedPicture({"12", "21"}));
    graphic[kGraphicName] = 5;
    std::memcpy(&graphic[kGraphicName + 1], "Apple", 5);
    Bytes textRest(kTextHeadSize - 16, 0);
    textRest[kTextName - 16] = 15;  // a whole field: no zero behind the name
    std::memcpy(&textRest[kTextName - 16 + 1], "Notes and notes", 15);
    const std::vector<Bytes> items = {graphic, StoredItem(kItemKindText, 2, 60, 10, 100, 50, textRest)};
    Open(WriteTempFile("named.stk", StoredStack({.cardWidth = 160, .cardHeight = 120},
                                                {StoredCard(1, "Named", items)}, {})));
    Show(1);
    ASSERT_NE(FindDisplayItem(kItemKindGraphic, 1), nullptr);
    ASSERT_NE(FindDisplayItem(kItemKindText, 2), nullptr);
    EXPECT_EQ(FindDisplayItem(kItemKindGraphic, 1)->name, "Apple");
    EXPECT_EQ(FindDisplayItem(kItemKindText, 2)->name, "Notes and notes");
}

}  // namespace
