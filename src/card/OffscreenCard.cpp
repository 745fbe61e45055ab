#include "card/OffscreenCard.h"

#include <algorithm>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "card/ButtonDraw.h"
#include "card/CardPalette.h"
#include "card/DisplayList.h"
#include "card/FieldSave.h"
#include "gfx/Blit.h"
#include "gfx/DibImage.h"
#include "gfx/DisplayDepth.h"
#include "gfx/Draw.h"
#include "gfx/Palette.h"
#include "memory/OwnedMemRef.h"
#include "pictures/Background.h"
#include "pictures/JpegBackground.h"
#include "platform/Host.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "subsystems/Subsystems.h"
#include "transitions/Transition.h"

namespace {

// A bitmap larger than this is refused as memory the program doesn't have.
constexpr uint64_t kMaxScreenPixels = uint64_t{1} << 26;
constexpr Rect kWholeCard{0, 0, 10000, 10000};
constexpr int32_t kItemRepaintMargin = 2;
// A text field that doesn't take the focus when its card comes up.
constexpr uint16_t kTextFlagNoFocus = 2;

OffscreenState gOffscreen;

void Report(const char* text) {
    Host& host = GetHost();
    host.ShowMessageBox("Error", text);
}

Surface* WindowSurface() {
    Host& host = GetHost();
    return host.GetWindowSurface();
}

void PresentRect(const Rect& r) {
    Host& host = GetHost();
    host.Present(r);
}

// The menu bar follows the card; its rebuilding comes with the menus. What the card is left with
// is stored back into it when it is left, so the setting must be the card's own.
void UpdateMenuBarForCard(MemRef card) {
    MemRefLock lock(card);
    if (GetMemRefSize(card) >= kCardHeadSize) GetDocument().menuShown = ReadS16(lock.data() + kCardMenuShown);
}

// The card's picture as a display image at the stack's depth; 0 and the result otherwise. A JPEG
// picture comes with colours of its own (`ownColors`), which it is drawn with.
int32_t CardImage(MemRef card, MemRef* image, bool* ownColors) {
    const int32_t depth = GetDocument().depth;
    int32_t result = GetCardBackground(card, image, depth, true, true);
    *ownColors = result == kBackgroundJpeg;
    if (result == kBackgroundJpeg) result = DecodeJpegBackground(card, image, depth, true);
    return result;
}

// The background into ScreenBitmap over CardRect.bottom rows: the picture, or white for a card
// without one. A picture that can't be read leaves ScreenBitmap as it stood.
void WriteBackground(int32_t result, MemRef image, bool ownColors) {
    OffscreenState& s = gOffscreen;
    const Rect rows{0, 0, s.screen.width, std::min(s.cardRect.bottom, s.screen.height)};
    if (result == kBackgroundNone) {
        FillRect(s.screen, rows, rows, kWhite);
    } else if (result == 0 && image) {
        uint32_t colors[kPaletteSize];
        ColorsInUse(colors);
        MemRefLock lock(image);
        DrawDib(s.screen, rows, 0, 0, lock.data(), ownColors ? nullptr : colors);
    }
    QuantizeToDepth(s.screen, rows, DisplayDepth());
}

bool IsHiddenFor(int16_t kind, uint16_t flags) {
    if (!(flags & kItemFlagHidden)) return false;
    const OffscreenState& s = gOffscreen;
    return kind == kItemKindGraphic  ? !s.showHiddenGraphics
           : kind == kItemKindButton ? !s.showHiddenButtons
           : kind == kItemKindText   ? !s.showHiddenText
                                     : true;
}

bool ReadKindAndFlags(MemRef card, uint32_t offset, int16_t* kind, uint16_t* flags) {
    MemRefLock lock(card);
    const uint32_t size = GetMemRefSize(card);
    if (!lock || offset > size || size - offset < kItemCommonHeadSize) return false;
    *kind = ReadS16(lock.data() + offset + kItemKind);
    *flags = Read16(lock.data() + offset + kItemFlags);
    return true;
}

// How many items the list would hold under the chunk at `offset` of `itemCard`.
int32_t VisibleItemsUnder(MemRef card, MemRef itemCard, uint32_t offset) {
    int32_t count = 0;
    ItemWalker walker;
    BeginItemWalk(&walker, card, true);
    MemRef at = 0;
    uint32_t atOffset = 0;
    while (NextItem(&walker, &at, &atOffset, false)) {
        if (at == itemCard && atOffset == offset) break;
        int16_t kind = 0;
        uint16_t flags = 0;
        if (ReadKindAndFlags(at, atOffset, &kind, &flags) && !IsHiddenFor(kind, flags)) ++count;
    }
    EndItemWalk(&walker);
    return count;
}

DisplayItem* AddNode(int16_t kind, MemRef card, uint32_t offset, int32_t position) {
    switch (kind) {
        case kItemKindGraphic:
            return AddGraphicNode(card, offset, position);
        case kItemKindButton:
            return AddButtonNode(card, offset, position);
        case kItemKindText:
            return AddTextNode(card, offset, position);
        default:
            return nullptr;
    }
}

}  // namespace

OffscreenState& GetOffscreenState() {
    return gOffscreen;
}

void ResetOffscreenState() {
    ResetDisplayList();
    gOffscreen = OffscreenState{};
}

bool InitDataBase(int32_t width, int32_t height, int32_t depth, bool report) {
    FreeScreenBitmap();
    if (width <= 0 || height <= 0 || width > kDibMaxSide || height > kDibMaxSide ||
        uint64_t(width) * uint64_t(height + kScreenSpareRows) > kMaxScreenPixels) {
        if (report) Report("InitDataBase: insufficient ram for screen bitmap");
        return false;
    }
    OffscreenState& s = gOffscreen;
    s.screen = Surface(width, height + kScreenSpareRows, kWhite);
    s.hasScreen = true;
    s.screenWidth = width;
    s.screenHeight = height;
    s.screenDepth = depth;
    s.cardRect = {0, 0, width, height};
    FreeItemsClip();
    return true;
}

void FreeScreenBitmap() {
    OffscreenState& s = gOffscreen;
    s.screen = Surface();
    s.hasScreen = false;
}

void DrawItems(Surface& target, const Rect& area, const DisplayItem* boundary,
               bool stopAtBoundary) {
    const Clip clip(IntersectRect(area, target.Bounds()));
    if (clip.rect.IsEmpty()) return;
    uint32_t colors[kPaletteSize];
    ColorsInUse(colors);
    bool drawing = boundary ? stopAtBoundary : true;
    for (const DisplayItem* item = DisplayListHead(); item; item = item->next.get()) {
        const bool meets = !IntersectRect(item->rect, area).IsEmpty();
        if (item == boundary) drawing = !stopAtBoundary;
        if (!meets || !drawing || item == boundary) continue;
        switch (item->type) {
            case kItemKindGraphic:
                DrawGraphicNode(target, clip, *item, colors);
                break;
            case kItemKindButton:
                DrawButton(target, clip, *item, colors, gOffscreen.itemBorders);
                break;
            case kItemKindText:
                DrawTextField(target, clip, *item, colors);
                break;
            default:
                break;
        }
    }
}

void BuildDisplayList(MemRef card) {
    OffscreenState& s = gOffscreen;
    ItemWalker walker;
    BeginItemWalk(&walker, card, true);
    MemRef at = 0;
    uint32_t offset = 0;
    while (NextItem(&walker, &at, &offset, false)) {
        int16_t kind = 0;
        uint16_t flags = 0;
        if (!ReadKindAndFlags(at, offset, &kind, &flags) || IsHiddenFor(kind, flags)) continue;
        DisplayItem* node = AddNode(kind, at, offset, -1);
        // The last field that takes the focus gets it.
        if (node && kind == kItemKindText && !(flags & kTextFlagNoFocus)) s.focusField = node;
    }
    EndItemWalk(&walker);
}

void DrawCard(MemRef card, int16_t transition, int16_t speed, bool arriving) {
    OffscreenState& s = gOffscreen;
    if (!card) return;
    Subsystems& subsystems = GetSubsystems();
    // What plays on the old card stops.
    subsystems.StopSprites();
    if (arriving) subsystems.StopLaserDisc();
    PrepareFade(transition);
    UpdateMenuBarForCard(card);
    const Document& doc = GetDocument();
    const bool sizeChanged = s.screenWidth != doc.cardWidth || s.screenHeight != doc.cardHeight;
    if ((!s.hasScreen || sizeChanged) && !InitDataBase(doc.cardWidth, doc.cardHeight, doc.depth, true)) return;
    MemRef picture = 0;
    bool ownColors = false;
    const int32_t result = CardImage(card, &picture, &ownColors);
    OwnedMemRef image(picture);
    // The card's palette comes in; the window keeps the old one until the transition.
    PrepareIncomingPalette(card);
    WriteBackground(result, image.ref(), ownColors);
    // What is put back after the transition is exactly this; a copy of it is cheaper than a second decode.
    const bool written = result == kBackgroundNone || (result == 0 && image.ref());
    Surface background;
    if (written) background = s.screen;
    // The old card's items die, what was typed in the fields of the card on show kept first; the
    // new card's come to life over its background.
    if (card == doc.currentCard) SaveFieldEdits(card);
    FreeDisplayList();
    s.focusField = nullptr;
    if (s.showObjects) BuildDisplayList(card);
    if (s.showObjects) {
        s.drawingCard = true;
        DrawItems(s.screen, kWholeCard, nullptr, false);
        s.drawingCard = false;
        QuantizeToDepth(s.screen, s.cardRect, DisplayDepth());
    }
    subsystems.DrawCardAnimations(card, s.screen);
    RunTransition(transition, speed, s.cardRect, s.screen, true);
    // ScreenBitmap holds the bare background again, for repaints under the items.
    if (written) s.screen.pixels.swap(background.pixels);
    image.Reset(0);
    AdoptIncomingPalette();
    if (s.focusField) {
        subsystems.GiveFocusToField(s.focusField);
        s.focusField = nullptr;
    }
    subsystems.StartCardAnimations(card);
    if (arriving) {
        subsystems.RebuildAutoTimers();
        if (IsBrowsing()) subsystems.StartBrowseSprites();
    }
}

void RedrawCurrentCard(bool arriving) {
    Subsystems& subsystems = GetSubsystems();
    subsystems.StopSounds(false);
    subsystems.StopMovies(0);
    subsystems.StopSprites();
    DrawCard(GetDocument().currentCard, kTransitionFastest, 8, arriving);
}

void RedrawItem(int16_t type, int16_t id, int16_t transition, int16_t speed, int32_t asShown) {
    OffscreenState& s = gOffscreen;
    const MemRef current = GetDocument().currentCard;
    if (!current || !s.hasScreen) return;
    // A field comes back from its record: what was typed in it goes there first.
    if (type == kItemKindText) SaveFieldEdits(current);
    MemRef card = current;
    uint32_t offset = 0;
    if (!FindItemOnCard(type, id, card, &offset)) {
        card = GetPictureOwner(current);
        if (!card || card == current || !FindItemOnCard(type, id, card, &offset)) return;
    }
    // Where the item stands now, and where it stood in the list, both get repainted.
    Rect stored;
    uint16_t flags = 0;
    {
        MemRefLock lock(card);
        const uint32_t size = GetMemRefSize(card);
        if (!lock || offset > size || size - offset < kItemCommonHeadSize) return;
        const uint8_t* chunk = lock.data() + offset;
        stored = {ReadS16(chunk + kItemRect), ReadS16(chunk + kItemRect + 2),
                  ReadS16(chunk + kItemRect + 4), ReadS16(chunk + kItemRect + 6)};
        flags = Read16(chunk + kItemFlags);
    }
    Rect area = stored;
    if (DisplayItem* old = FindDisplayItem(type, id)) {
        area = UnionRect(area, old->rect);
        RemoveDisplayItem(old);
    }
    area = ClampRect(InflateRect(area, kItemRepaintMargin, kItemRepaintMargin));
    const bool visible = asShown == 1 ? (type == kItemKindGraphic  ? s.showHiddenGraphics
                                         : type == kItemKindButton ? s.showHiddenButtons
                                                                   : s.showHiddenText)
                                      : !(flags & kItemFlagHidden);
    // The list keeps the order of the card.
    if (!(flags & kItemFlagWalkHidden) && visible) {
        AddNode(type, card, offset, VisibleItemsUnder(current, card, offset) + 1);
    }
    CreateClipRegion();
    // The rectangle as it is to look: background, then the items over it.
    Surface picture = s.screen;
    DrawItems(picture, area, nullptr, false);
    QuantizeToDepth(picture, area, DisplayDepth());
    // Shown at once as it is, or through the transition.
    if (asShown == 1) {
        if (Surface* window = WindowSurface()) {
            CopyRect(*window, window->Bounds(), area.left, area.top, picture, area);
            PresentRect(area);
        }
    } else if (!stored.IsEmpty()) {
        RunTransition(transition, speed, area, picture, false);
    }
}

void RepaintRect(int32_t left, int32_t top, int32_t right, int32_t bottom) {
    OffscreenState& s = gOffscreen;
    Surface* window = WindowSurface();
    if (!window) return;
    if (!s.hasScreen) {
        FillRect(*window, window->Bounds(), InflateRect(window->Bounds(), 1, 1), kWhite);
        PresentRect(window->Bounds());
        return;
    }
    Host& host = GetHost();
    host.SetWaitCursor(true);
    const Rect area = IntersectRect({left, top, right, bottom}, window->Bounds());
    if (!area.IsEmpty()) {
        CopyRect(*window, area, area.left, area.top, s.screen, area);
        if (s.showObjects) {
            s.repainting = true;
            DrawItems(*window, area, nullptr, false);
            s.repainting = false;
        }
        QuantizeToDepth(*window, area, DisplayDepth());
        PresentRect(area);
    }
    host.SetWaitCursor(false);
}

Rect ClampRect(const Rect& r) {
    return IntersectRect(r, {0, 0, gOffscreen.screenWidth, gOffscreen.screenHeight});
}

Rect KeepRectOnScreen(const Rect& r) {
    Rect moved = r;
    const int32_t dx = std::min(0, gOffscreen.screenWidth - moved.right);
    const int32_t dy = std::min(0, gOffscreen.screenHeight - moved.bottom);
    moved = OffsetRect(moved, dx, dy);
    return OffsetRect(moved, std::max(0, -moved.left), std::max(0, -moved.top));
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Card, ResetOffscreenState);
}  // namespace
