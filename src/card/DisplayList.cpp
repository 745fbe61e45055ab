#include "card/DisplayList.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "card/ButtonDraw.h"
#include "card/FieldScroll.h"
#include "card/FieldSelection.h"
#include "card/OffscreenCard.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"

namespace {

constexpr uint32_t kTextCursorId = 104;

struct DisplayListState {
    std::unique_ptr<DisplayItem> head;
    Region itemsClip;
    bool clipStale = false;  // the list changed since the clip was made
};
DisplayListState gList;

// The whole display: the offscreen card's size, or the card size before there is one.
Rect DisplayRect() {
    const OffscreenState& screen = GetOffscreenState();
    if (screen.hasScreen) return {0, 0, screen.screenWidth, screen.screenHeight};
    const Document& doc = GetDocument();
    return {0, 0, doc.cardWidth, doc.cardHeight};
}

// The link that holds `item`: the head or some record's `next`; null when it isn't in the list.
std::unique_ptr<DisplayItem>* LinkOf(const DisplayItem* item) {
    for (std::unique_ptr<DisplayItem>* link = &gList.head; *link; link = &(*link)->next) {
        if (link->get() == item) return link;
    }
    return nullptr;
}

std::unique_ptr<DisplayItem> Unlink(std::unique_ptr<DisplayItem>* link) {
    std::unique_ptr<DisplayItem> item = std::move(*link);
    *link = std::move(item->next);
    return item;
}

// The bit of a mask whose (0, 0) stands at (left, top).
bool MaskHit(const BitMask& mask, int32_t left, int32_t top, int32_t x, int32_t y) {
    const int32_t mx = x - left, my = y - top;
    return mx >= 0 && my >= 0 && mx < mask.width && my < mask.height && mask.Get(mx, my);
}

}  // namespace

bool ReadItemHead(MemRef card, uint32_t offset, uint32_t headSize, DisplayItem* item) {
    MemRefLock lock(card);
    ChunkHead head;
    if (!lock || !ReadChunkHead(lock.data(), GetMemRefSize(card), offset, &head, headSize)) return false;
    item->type = head.kind;
    item->id = head.id;
    item->rect = {head.left, head.top, head.right, head.bottom};
    item->flags = head.flags;
    return true;
}

std::string StoredItemName(const uint8_t* field, uint32_t fieldBytes) {
    size_t length = field[0] < fieldBytes ? field[0] : fieldBytes - 1;
    const void* zero = std::memchr(field + 1, 0, length);
    if (zero) length = static_cast<size_t>(static_cast<const uint8_t*>(zero) - (field + 1));
    return std::string(reinterpret_cast<const char*>(field + 1), length);
}

DisplayItem::~DisplayItem() {
    for (MemRef ref : {icon, bitmap, transparentBitmap}) {
        if (ref) FreeMemRef(ref);
    }
    // A long list is taken apart one record at a time, not by nested destructors.
    while (next) next = std::move(next->next);
}

DisplayItem* DisplayListHead() {
    return gList.head.get();
}

DisplayItem* InsertDisplayItem(std::unique_ptr<DisplayItem> item, int32_t position) {
    if (!item) return nullptr;
    std::unique_ptr<DisplayItem>* link = &gList.head;
    const int32_t before =
        position < 0 ? kMaxListPosition : std::min(position, kMaxListPosition) - 1;
    for (int32_t i = 0; i < before && *link; ++i) link = &(*link)->next;
    item->next = std::move(*link);
    *link = std::move(item);
    DisplayItem* inserted = link->get();
    // Every insertion changes the clip; it is made again when it is next asked for, so that a card
    // of many items doesn't subtract them all once per item.
    gList.clipStale = true;
    return inserted;
}

DisplayItem* FindDisplayItem(int16_t type, int16_t id) {
    for (DisplayItem* item = gList.head.get(); item; item = item->next.get()) {
        if (item->type == type && item->id == id) return item;
    }
    return nullptr;
}

void RemoveDisplayItem(DisplayItem* item) {
    ForgetScrollingField(item);
    ForgetActiveField(item);
    if (std::unique_ptr<DisplayItem>* link = LinkOf(item)) Unlink(link);
}

void FreeDisplayList() {
    ForgetScrollingField(nullptr);
    ForgetActiveField(nullptr);
    gList.head.reset();
    FreeItemsClip();
}

void MoveDisplayItem(DisplayItem* item, char direction, bool toEnd) {
    std::unique_ptr<DisplayItem>* link = LinkOf(item);
    if (!link) return;
    int32_t position = 1;
    for (DisplayItem* i = gList.head.get(); i != item; i = i->next.get()) ++position;
    std::unique_ptr<DisplayItem> moving = Unlink(link);
    if (direction == 'C') {
        position = toEnd ? 1 : std::max(position - 1, 1);
    } else if (direction == 'F') {
        position = toEnd ? -1 : position + 1;
    }
    InsertDisplayItem(std::move(moving), position);
}

int32_t DisplayListLength() {
    int32_t n = 0;
    for (const DisplayItem* item = gList.head.get(); item; item = item->next.get()) ++n;
    return n;
}

bool IsBrowsing() {
    return true;
}

bool ItemContainsPoint(const DisplayItem& item, int32_t x, int32_t y) {
    switch (item.type) {
        case kItemKindGraphic:
            if (item.hasMask) return MaskHit(item.mask, item.rect.left, item.rect.top, x, y);
            return item.hasRegion && item.region.Contains(x, y);
        case kItemKindButton:
            if (item.shape == 4) return item.rect.Contains(x, y);
            if (item.shape >= 5 && item.shape <= 7) {
                return item.hasMask && MaskHit(item.mask, item.rect.left, item.rect.top, x, y);
            }
            return item.hasRegion && item.region.Contains(x, y);
        case kItemKindText:
            return item.hasRegion && item.region.Contains(x, y);
        default:
            return false;
    }
}

DisplayItem* FindItemAt(int32_t x, int32_t y, bool buttonsOnly, const DisplayItem* ignore) {
    if (!IsBrowsing()) return nullptr;
    DisplayItem* found = nullptr;
    for (DisplayItem* item = gList.head.get(); item; item = item->next.get()) {
        if (item == ignore) continue;
        if (buttonsOnly && !(item->flags & kItemFlagHover)) continue;
        if (ItemContainsPoint(*item, x, y)) found = item;
    }
    return found;
}

void CreateClipRegion() {
    Region clip(DisplayRect());
    for (const DisplayItem* item = gList.head.get(); item; item = item->next.get()) {
        if (item->hasRegion) clip = SubtractRegion(clip, item->region);
    }
    gList.itemsClip = std::move(clip);
    gList.clipStale = false;
}

const Region& GetItemsClip() {
    if (gList.clipStale) CreateClipRegion();
    return gList.itemsClip;
}

void FreeItemsClip() {
    gList.itemsClip = Region(DisplayRect());
    gList.clipStale = false;
}

BitMask MakeItemsMask() {
    const Rect display = DisplayRect();
    BitMask items(display.Width(), display.Height());
    const auto setRect = [&items](const Rect& r) {
        const Rect part = IntersectRect(r, items.Bounds());
        for (int32_t y = part.top; y < part.bottom; ++y) {
            for (int32_t x = part.left; x < part.right; ++x) items.Set(x, y, true);
        }
    };
    for (const DisplayItem* item = gList.head.get(); item; item = item->next.get()) {
        const bool byMask = item->hasMask && (item->type == kItemKindGraphic ||
                                              (item->type == kItemKindButton && item->shape >= 5));
        if (byMask) {
            for (int32_t my = 0; my < item->mask.height; ++my) {
                for (int32_t mx = 0; mx < item->mask.width; ++mx) {
                    const int32_t x = item->rect.left + mx, y = item->rect.top + my;
                    if (item->mask.Get(mx, my) && items.Bounds().Contains(x, y))
                        items.Set(x, y, !items.Get(x, y));
                }
            }
        } else if (item->type == kItemKindText || !item->hasRegion) {
            setRect(item->rect);
        } else {
            for (const Rect& r : item->region.Rects()) setRect(r);
        }
    }
    return items;
}

DisplayItem* AddButtonNode(MemRef card, uint32_t offset, int32_t position) {
    auto item = std::make_unique<DisplayItem>();
    if (!ReadItemHead(card, offset, kButtonHeadSize, item.get())) return nullptr;
    if (!FillButtonItem(item.get(), card, offset)) return nullptr;
    // A record is only made for a button that is to show: one with the hidden flag gets here when
    // hidden buttons are shown.
    item->hidden = false;
    return InsertDisplayItem(std::move(item), position);
}

DisplayItem* AddTextNode(MemRef card, uint32_t offset, int32_t position) {
    auto item = std::make_unique<DisplayItem>();
    if (!ReadItemHead(card, offset, kTextHeadSize, item.get())) return nullptr;
    {
        MemRefLock lock(card);
        const uint8_t* chunk = lock.data() + offset;
        item->actionId = ReadS16(chunk + kTextAction);
        item->cursorId = Read16(chunk + kTextCursorId);
        item->name = StoredItemName(chunk + kTextName, kItemNameBytes);
    }
    item->region = Region(item->rect);
    item->hasRegion = true;
    LoadTextField(item.get(), card, offset);
    return InsertDisplayItem(std::move(item), position);
}

void ResetDisplayList() {
    gList.head.reset();
    gList.itemsClip = Region();
    gList.clipStale = false;
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Card, ResetDisplayList);
}  // namespace
