// Graphic records of the DisplayList: made from a graphic chunk, and drawn.
#include <utility>

#include "base/ByteOrder.h"
#include "card/DisplayList.h"
#include "card/GraphicPicture.h"
#include "gfx/Blit.h"
#include "gfx/DibImage.h"
#include "gfx/Draw.h"
#include "stack/CardRecord.h"

namespace {

// A stored colour field holds the palette index + 1; 0 comes out as 0xFFFF, which names no
// colour and draws black.
uint32_t ColorOf(const uint32_t* colors, uint16_t index) {
    return colors && index < 256 ? colors[index] : kBlack;
}

// A mask moved to stand at the item's corner, wherever the item stands now.
BitMask AtCorner(const BitMask& mask, const Rect& rect) {
    BitMask placed = mask;
    placed.left = rect.left;
    placed.top = rect.top;
    return placed;
}

}  // namespace

DisplayItem* AddGraphicNode(MemRef card, uint32_t offset, int32_t position) {
    auto item = std::make_unique<DisplayItem>();
    if (!ReadItemHead(card, offset, kGraphicHeadSize, item.get())) return nullptr;
    {
        MemRefLock lock(card);
        const uint8_t* g = lock.data() + offset;
        item->frameColor = static_cast<uint16_t>(Read16(g + kGraphicFrameColor) - 1);
        item->frameWidth = Read16(g + kGraphicFrameWidth);
        item->cursorId = Read16(g + kGraphicCursorId);
        item->actionId = ReadS16(g + kGraphicAction);
        item->name = StoredItemName(g + kGraphicName, kItemNameBytes);
    }
    item->region = Region(item->rect);
    item->hasRegion = true;

    // A graphic that refers to a file and keeps no pixels of its own shows nothing until pictures
    // can be read from files; it is still hit by its rectangle.
    MemRef picture = 0;
    if (ReadGraphicPicture(card, offset, &picture, true) == 0) item->bitmap = picture;

    if (item->bitmap && (item->flags & kGraphicFlagTransparent)) {
        MemRef copy = item->bitmap;
        if (DuplicateMemRef(&copy) == 0) {
            item->transparentBitmap = copy;
            item->mask = MakeShapeMask(item->transparentBitmap);
            item->hasMask = item->mask.width > 0;
            item->inverseMask = item->mask;
            InvertMask(item->inverseMask);
            item->outline = MakeOutlineMask(item->transparentBitmap, item->frameWidth);
        }
    }
    return InsertDisplayItem(std::move(item), position);
}

void DrawGraphicNode(Surface& target, const Clip& clip, const DisplayItem& item,
                     const uint32_t* colors) {
    if (item.hidden || !item.bitmap) return;
    MemRefLock lock(item.bitmap);
    if (!lock || !IsDibLayoutValid(lock.data(), GetMemRefSize(item.bitmap))) return;
    const uint8_t* dib = lock.data();
    const Rect own{0, 0, DibWidth(dib), DibHeight(dib)};
    const uint32_t frame = ColorOf(colors, item.frameColor);

    if (item.transparentBitmap && item.hasMask) {
        // At its own size at the item's corner: the picture through its shape, then the rim of
        // the shape in the frame colour.
        const Surface picture = SurfaceFromDib(dib, colors);
        MaskedCopy(target, clip, item.rect.left, item.rect.top, picture, picture.Bounds(),
                   AtCorner(item.mask, item.rect));
        if (item.frameWidth > 0) FillMask(target, clip, AtCorner(item.outline, item.rect), frame);
        return;
    }

    StretchDib(target, clip, item.rect, dib, own, colors);
    if (item.frameWidth > 0) {
        // A pen of the frame's width centred on a rectangle inset by w.
        const int32_t w = item.frameWidth / 2 + 1;
        const Rect& r = item.rect;
        const Rect outline{r.left + w - 1, r.top + w - 1, r.left + r.Width() - w + 2,
                           r.top + r.Height() - w + 2};
        FrameRect(target, clip, CenteredPenRect(outline, item.frameWidth),
                  Pen{frame, item.frameWidth, PenMode::Copy});
    }
}
