#include "card/GraphicPicture.h"

#include <vector>

#include "base/ByteOrder.h"
#include "card/CardPalette.h"
#include "gfx/DibImage.h"
#include "gfx/Palette.h"
#include "memory/OwnedMemRef.h"
#include "pictures/PackedPixels.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"

namespace {

// Below 9 bits the picture's indices name the card's colours.
void SetPictureColors(MemRef card, uint8_t* dib) {
    uint8_t* colors = DibColors(dib);
    if (DibDepth(dib) == 1) {
        Write32(colors + kDibColorSize, 0xFFFFFF);  // 0 black, 1 white
        return;
    }
    PaletteRef palette = GetCardPalette(card);
    if (!palette) palette = LoadDefaultPalette();
    if (!palette) return;
    for (uint32_t i = 0; i < DibColorCount(dib) && i < palette->count; ++i) {
        const PaletteEntry& e = palette->entries[i];
        colors[kDibColorSize * i] = e.blue;
        colors[kDibColorSize * i + 1] = e.green;
        colors[kDibColorSize * i + 2] = e.red;
    }
}

}  // namespace

int32_t CardPictureDepth(const uint8_t* card) {
    for (int32_t depth : {static_cast<int32_t>(ReadS16(card + kCardDepth)),
                          static_cast<int32_t>(GetDocument().depth)}) {
        if (depth == 24) return 32;
        if (depth == 1 || depth == 4 || depth == 8 || depth == 16 || depth == 32) return depth;
    }
    return 8;
}

int32_t ReadGraphicPicture(MemRef card, uint32_t itemOffset, MemRef* image, bool flip,
                           GraphicPictureHead* head) {
    *image = 0;
    GraphicPictureHead found;
    std::vector<uint8_t> packed;
    {
        MemRefLock lock(card);
        const uint32_t size = GetMemRefSize(card);
        if (!lock || size < kCardHeadSize || itemOffset > size ||
            size - itemOffset < kGraphicHeadSize) {
            return kGraphicPictureMisfit;
        }
        const uint8_t* item = lock.data() + itemOffset;
        const uint32_t length = Read32(item + kItemLength);
        found.itemFlags = Read16(item + kItemFlags);
        found.depth = CardPictureDepth(lock.data());
        if (head) *head = found;
        const uint32_t pictureSize = Read32(item + kGraphicPictureSize);
        if (pictureSize == 0) return kGraphicPictureNone;
        const uint32_t pad = found.itemFlags & kItemFlagOddPad ? 1 : 0;
        if (length < kGraphicHeadSize || length > size - itemOffset ||
            pictureSize < kGraphicPictureHeadSize ||
            uint64_t{pictureSize} + pad > length - kGraphicHeadSize) {
            return kGraphicPictureMisfit;
        }
        const uint8_t* picture = item + length - pad - pictureSize;
        found.width = ReadS16(picture);
        found.height = ReadS16(picture + 2);
        if (head) *head = found;
        packed.assign(picture + kGraphicPictureHeadSize, picture + pictureSize);
    }
    if (found.width <= 0 || found.height <= 0 || found.width > kDibMaxSide ||
        found.height > kDibMaxSide) {
        return kGraphicPictureBadSize;
    }
    OwnedMemRef picture(NewDibImage(found.width, found.height, found.depth));
    if (!picture.ref()) return kGraphicPictureNoMemory;
    {
        MemRefLock lock(picture.ref());
        if (found.depth <= 8) SetPictureColors(card, lock.data());
    }
    if (DecodeGraphicPixels(picture.ref(), found.itemFlags, packed.data(),
                            static_cast<uint32_t>(packed.size())) != 0) {
        return kGraphicPictureDamaged;
    }
    // The packed rows run top-down and land in memory in that order, their deep pixels as stored.
    if (SwapStoredPixelOrder(picture.ref()) != 0) return kGraphicPictureDamaged;
    if (flip && FlipDibRows(picture.ref()) != 0) return kGraphicPictureNoMemory;
    *image = picture.Release();
    return 0;
}
