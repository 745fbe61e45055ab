// The offscreen card: the window rebuilt from the background and the live records, and whole cards
// composed and shown.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
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
#include "player/StackFlows.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackReader.h"
#include "support/PictureMaker.h"
#include "support/StackBytes.h"
#include "support/SurfaceArt.h"
#include "transitions/Transition.h"
#if QB_GOLDEN_TESTS
#include "support/Golden.h"
#endif

namespace {

// An 8-bit picture of the indices `indexAt` gives.
template <class IndexAt> MemRef IndexedPicture(int32_t width, int32_t height, IndexAt&& indexAt) {
    const MemRef image = NewDibImage(width, height, 8);
    MemRefLock lock(image);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) SetPixel(lock.data(), x, y, indexAt(x, y));
    return image;
}

// Such a picture packed by runs, as a graphic stores it.
template <class IndexAt> Bytes RunPackedPicture(int32_t width, int32_t height, IndexAt&& indexAt) {
    const MemRef image = IndexedPicture(width, height, indexAt);
    const MemRef packed = EncodeRunPacked(image);
    FreeMemRef(image);
    Bytes picture(kGraphicPictureHeadSize, 0);
    PutBE16(picture, 0, static_cast<uint16_t>(width));
    PutBE16(picture, 2, static_cast<uint16_t>(height));
    Append(picture, TakeBytes(packed));
    return picture;
}

std::vector<int16_t> ListIds() {
    std::vector<int16_t> ids;
    for (const DisplayItem* item = DisplayListHead(); item; item = item->next.get()) ids.push_back(item->id);
    return ids;
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
        ASSERT_EQ(PrepareOpenedStack(), 0);
        const Document& doc = GetDocument();
        SetHeadlessWindowSize(doc.cardWidth, doc.cardHeight);
        ASSERT_EQ(InitPalette(), 0);
        ASSERT_TRUE(InitDataBase(doc.cardWidth, doc.cardHeight, doc.depth, true));
    }
    void OpenFixture() { Open(std::string(QB_FIXTURES_DIR) + "/sample-cards.stk"); }
    // The card at `position` becomes current and is drawn as arriving there does.
    static void Show(int32_t position) {
        Document& doc = GetDocument();
        doc.currentCard = GetCardByPosition(position);
        doc.currentCardId = ReadS16(MemRefLock(doc.currentCard).data() + kCardId);
        DrawCard(doc.currentCard, kTransitionFastest, 8, true);
    }
    static const Surface& Screen() { return GetHeadlessState().screen; }

    // A 160 by 120 card on a picture of the default colours: a framed graphic, a hidden graphic,
    // a transparent framed graphic, a button, a hidden button, and a button over them all.
    void OpenCardWithHiddenItems() {
        // Quarters of four colours; a diamond of rings on see-through corners.
        const Bytes plain =
            RunPackedPicture(40, 40, [](int32_t x, int32_t y) { return 2u + (x >= 20) + 2u * (y >= 20); });
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
        const MemRef picture =
            IndexedPicture(160, 120, [](int32_t x, int32_t y) { return 16u + static_cast<uint32_t>((x + y) / 20 % 8); });
        const MemRef data = CompressBackground(picture, false);
        ASSERT_EQ(StoreBackground(GetCardByPosition(1), data, tableRef, 8), 0);
        for (MemRef r : {tableRef, picture, data}) FreeMemRef(r);
    }
};

TEST_F(OffscreenCardTest, ButtonsAreOnTheWindowAndInTheListButNotInTheBackground) {
    OpenFixture();
    Show(1);
    EXPECT_EQ(ListIds(), (std::vector<int16_t>{101, 102, 103}));
    EXPECT_EQ(FindItemAt(100, 440, false, nullptr), FindDisplayItem(kItemKindButton, 101));
    // The round button's outline runs along its rectangle's top edge.
    const Surface& background = GetOffscreenState().screen;
    EXPECT_NE(Screen().Row(420)[120], background.Row(420)[120]) << "drawn on the window";

    // "Hide Objects": the background alone, and nothing to hit.
    GetOffscreenState().showObjects = false;
    Show(1);
    EXPECT_EQ(DisplayListHead(), nullptr);
    EXPECT_EQ(FindItemAt(100, 440, false, nullptr), nullptr);
    // The background's rows begin with the window's, its spare rows follow.
    EXPECT_TRUE(std::equal(Screen().pixels.begin(), Screen().pixels.end(), background.pixels.begin()));
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
    EXPECT_EQ(Screen().pixels, shown.pixels);
    EXPECT_EQ(ChangedBox(window, Surface(640, 480, kBlack)), area) << "nothing drawn outside the rectangle";

    struct Case { Rect in, clamped, kept; };
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
    Bytes graphic = StoredGraphic(1, {10, 10, 50, 50}, RunPackedPicture(2, 2, [](int32_t x, int32_t y) { return 1u + (x + y) % 2; }));
    graphic[kGraphicName] = 5;
    std::memcpy(&graphic[kGraphicName + 1], "Apple", 5);
    Bytes textRest(kTextHeadSize - 16, 0);
    textRest[kTextName - 16] = 15;  // a whole field: no zero behind the name
    std::memcpy(&textRest[kTextName - 16 + 1], "Notes and notes", 15);
    const std::vector<Bytes> items = {graphic, StoredItem(kItemKindText, 2, 60, 10, 100, 50, textRest)};
    Open(WriteTempFile("named.stk", StoredStack({.cardWidth = 160, .cardHeight = 120},
                                                {StoredCard(1, "Named", items)}, {})));
    Show(1);
    ASSERT_TRUE(FindDisplayItem(kItemKindGraphic, 1) && FindDisplayItem(kItemKindText, 2));
    EXPECT_EQ(FindDisplayItem(kItemKindGraphic, 1)->name, "Apple");
    EXPECT_EQ(FindDisplayItem(kItemKindText, 2)->name, "Notes and notes");
}

}  // namespace
