// The live record of a button: filled from its chunk, with its region and the layout of its
// contents, which drawing and the hit region share.
#include <cstring>

#include "base/ByteOrder.h"
#include "card/ButtonDraw.h"
#include "card/ButtonLayout.h"
#include "card/DisplayList.h"
#include "stack/Blob.h"
#include "stack/CardRecord.h"
#include "stack/SubRecord.h"
#include "text/Fontmap.h"

namespace {

constexpr uint16_t kButtonFlagNoHilite = 4;
constexpr uint16_t kButtonFlagShowName = 8;
constexpr uint16_t kButtonFlagShowIcon = 16;
constexpr uint32_t kButtonNameBytes = 32;  // a length byte and up to 31 characters

bool IsPictureShape(int32_t shape) {
    return shape >= 5 && shape <= 7;
}

Rect ChunkRect(const uint8_t* chunk) {
    return {ReadS16(chunk + kItemRect), ReadS16(chunk + kItemRect + 2),
            ReadS16(chunk + kItemRect + 4), ReadS16(chunk + kItemRect + 6)};
}

// The button chunk at `offset`, when its head and its length lie inside the card; else null.
const uint8_t* ButtonChunk(const uint8_t* card, uint32_t cardSize, uint32_t offset) {
    if (offset > cardSize || cardSize - offset < kButtonHeadSize) return nullptr;
    const uint8_t* chunk = card + offset;
    if (ReadS16(chunk + kItemKind) != kItemKindButton) return nullptr;
    const uint32_t length = Read32(chunk + kItemLength);
    if (length < kButtonHeadSize || length > cardSize - offset) return nullptr;
    return chunk;
}

// The picture button's mask from the first sub-record of type 130, standing at the rectangle's
// corner. False when there is none or it is damaged.
bool ChunkMask(const uint8_t* chunk, BitMask* mask) {
    uint32_t at = 0;
    if (!FindSubRecord(chunk, Read32(chunk + kItemLength), kTagIcon, &at)) return false;
    int32_t width = 0, height = 0;
    if (!MakeMask(chunk + at + kSubHeadSize, SubRecordPayloadSize(chunk + at), mask, &width, &height))
        return false;
    const Rect r = ChunkRect(chunk);
    mask->left = r.left;
    mask->top = r.top;
    return true;
}

// A private copy of the 'Icon' record; the store's cached block is let go.
MemRef LoadIcon(uint16_t iconId) {
    const MemRef cached = GetBlobById(FourCC("Icon"), iconId);
    if (!cached) return 0;
    const MemRef copy = CopyBytes(cached, 0, GetMemRefSize(cached));
    ReleaseBlob(cached);
    return copy;
}

}  // namespace

TextFont ButtonFont() {
    return TextFont{kDefaultFaceName, kDefaultFontPx, 0};
}

int32_t ButtonCharHeight() {
    return GetTextMetrics(ButtonFont()).lineHeight;
}

Region ShapeRegion(const Rect& rect, int32_t shape, int32_t h) {
    switch (shape) {
        case 0:
        case 1:
            return RoundRectRegion(rect, h, h);
        case 3:
            // The face and its shadow, each 4 pixels short of the other's corner.
            return UnionRegions(Region({rect.left, rect.top, rect.right - 4, rect.bottom - 4}),
                                Region({rect.left + 4, rect.top + 4, rect.right, rect.bottom}));
        default:
            return Region(rect);
    }
}

IconLock::IconLock(const DisplayItem& item) : ref_(item.icon) {
    if (!ref_) return;
    data_ = LockMemRef(ref_);
    if (data_) size_ = GetMemRefSize(ref_);
}

IconLock::~IconLock() {
    if (data_) UnlockMemRef(ref_);
}

ButtonLayout LayOutButton(const DisplayItem& item) {
    ButtonLayout layout;
    const TextFont font = ButtonFont();
    const TextMetrics metrics = GetTextMetrics(font);
    const int32_t h = metrics.lineHeight;
    layout.h = h;
    const Rect& r = item.rect;
    const int32_t centre = r.left + (r.right - r.left) / 2;
    int32_t nameTop = r.top + (r.bottom - r.top - h) / 2;
    if (item.showIcon && item.icon) {
        IconInfo info;
        {
            IconLock icon(item);
            if (icon.data()) info = ReadIconInfo(icon.data(), icon.size());
        }
        layout.hasIcon = true;
        // The name's share counts even when the name is empty.
        const int32_t block = info.height + (item.showName ? h * 3 / 2 : 0);
        const int32_t blockTop = r.top + (r.bottom - r.top - block) / 2;
        const int32_t iconLeft = centre - info.width / 2;
        layout.iconRect = {iconLeft, blockTop, iconLeft + info.width, blockTop + info.height};
        nameTop = blockTop + info.height + h / 2;
    }
    const int32_t width = MeasureText(font, item.name);
    const int32_t nameLeft = centre - width / 2;
    layout.nameRect = {nameLeft, nameTop, nameLeft + width, nameTop + h};
    layout.baseline = nameTop + metrics.ascent;
    return layout;
}

Region HitRegion(const DisplayItem& item) {
    if (item.shape >= 0 && item.shape < 4)
        return ShapeRegion(item.rect, item.shape, ButtonCharHeight());
    // Shape 4 and the picture buttons: what is drawn of them, the icon and the name.
    const ButtonLayout layout = LayOutButton(item);
    Region region;
    if (layout.hasIcon && !layout.iconRect.IsEmpty()) region = Region(layout.iconRect);
    if (item.showName && !layout.nameRect.IsEmpty())
        region = UnionRegions(region, Region(layout.nameRect));
    return region;
}

Region ItemRegion(MemRef card, uint32_t offset, bool withShape) {
    MemRefLock lock(card);
    if (!lock) return {};
    const uint32_t size = GetMemRefSize(card);
    if (offset > size || size - offset < kItemCommonHeadSize) return {};
    const uint8_t* chunk = lock.data() + offset;
    const Rect rect = ChunkRect(chunk);
    const uint8_t* button = ButtonChunk(lock.data(), size, offset);
    if (!button) return Region(rect);
    const int16_t shape = ReadS16(button + kButtonShape);
    if (shape >= 0 && shape < 4) return ShapeRegion(rect, shape, ButtonCharHeight());
    // With its shape, a picture button is the set bits of its mask.
    if (withShape && IsPictureShape(shape)) {
        BitMask mask;
        if (ChunkMask(button, &mask)) return MaskRegion(mask);
    }
    return Region(rect);
}

bool FillButtonItem(DisplayItem* item, MemRef card, uint32_t offset) {
    if (!item) return false;
    uint16_t iconId = 0;
    {
        MemRefLock lock(card);
        if (!lock) return false;
        const uint8_t* chunk = ButtonChunk(lock.data(), GetMemRefSize(card), offset);
        if (!chunk) return false;

        item->type = kItemKindButton;
        item->id = ReadS16(chunk + kItemId);
        item->rect = ChunkRect(chunk);
        item->flags = Read16(chunk + kItemFlags);
        item->hidden = (item->flags & kItemFlagHidden) != 0;
        item->cursorId = Read16(chunk + kButtonCursorId);
        item->shape = ReadS16(chunk + kButtonShape);
        // Stored 1-based.
        item->textColor = static_cast<int16_t>(Read16(chunk + kButtonTextColor) - 1);
        item->fillColor = static_cast<int16_t>(Read16(chunk + kButtonFillColor) - 1);
        const uint16_t buttonFlags = Read16(chunk + kButtonFlags);
        item->showName = (buttonFlags & kButtonFlagShowName) != 0;
        item->showIcon = (buttonFlags & kButtonFlagShowIcon) != 0;
        item->hiliteOnPress = (buttonFlags & kButtonFlagNoHilite) == 0;

        item->name = StoredItemName(chunk + kButtonName, kButtonNameBytes);

        item->hasMask = false;
        if (IsPictureShape(item->shape) && ChunkMask(chunk, &item->mask)) {
            item->inverseMask = item->mask;
            InvertMask(item->inverseMask);
            item->hasMask = true;
        }
        iconId = Read16(chunk + kButtonIconId);
    }
    if (iconId != 0 && !item->icon) item->icon = LoadIcon(iconId);
    item->region = HitRegion(*item);
    item->hasRegion = true;
    return true;
}
