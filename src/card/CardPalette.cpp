#include "card/CardPalette.h"

#include <algorithm>
#include <cstring>

#include "base/ByteOrder.h"
#include "card/GraphicPicture.h"
#include "gfx/ColorTable.h"
#include "gfx/DibImage.h"
#include "gfx/PaletteRemap.h"
#include "memory/OwnedMemRef.h"
#include "pictures/Background.h"
#include "pictures/PackedPixels.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/SubRecord.h"

namespace {

// A graphic's picture: width and height (16-bit), four zero bytes, then the packed pixels.
constexpr uint32_t kPictureHeadSize = 8;

// A colour field holds a palette index + 1; 0 and values beyond the old palette name no entry of
// it and stay as they are.
void ReindexColor(uint8_t* field, const Palette& from, const Palette& to) {
    const uint16_t stored = Read16(field);
    if (stored == 0 || stored > from.count) return;
    const PaletteEntry& c = from.entries[stored - 1];
    Write16(field, static_cast<uint16_t>(NearestPaletteIndex(to, c.red, c.green, c.blue) + 1));
}

void SetImageColors(MemRef image, const Palette& palette) {
    MemRefLock lock(image);
    uint8_t* colors = DibColors(lock.data());
    const uint32_t count = std::min(DibColorCount(lock.data()), palette.count);
    for (uint32_t i = 0; i < count; ++i) {
        const PaletteEntry& e = palette.entries[i];
        const uint8_t bgr0[4] = {e.blue, e.green, e.red, 0};
        std::memcpy(colors + i * kDibColorSize, bgr0, kDibColorSize);
    }
}

// The graphic's own pixels into `to`, packed by rows. Pictures that are not indexed, refer to a
// file or do not decode are left alone.
int32_t ReindexGraphicPixels(MemRef card, uint32_t at, const Palette& from, const Palette& to) {
    const int32_t depth = GetDocument().depth;
    if (depth != 4 && depth != 8) return 0;
    uint32_t length = 0, pictureAt = 0, pictureSize = 0, pad = 0;
    uint16_t flags = 0;
    OwnedMemRef image(0);
    {
        MemRefLock lock(card);
        const uint8_t* g = lock.data() + at;
        length = Read32(g + kItemLength);
        flags = Read16(g + kItemFlags);
        pictureSize = Read32(g + kGraphicPictureSize);
        pad = flags & kItemFlagOddPad ? 1 : 0;
        if ((flags & kItemFlagFileRef) || pictureSize < kPictureHeadSize) return 0;
        if (uint64_t{pictureSize} + pad > length - kGraphicHeadSize) return -1;
        pictureAt = at + length - pad - pictureSize;
        const uint8_t* picture = lock.data() + pictureAt;
        image.Reset(NewDibImage(ReadS16(picture), ReadS16(picture + 2), depth));
        if (!image.ref()) return 0;
        SetImageColors(image.ref(), from);
        if (DecodeGraphicPixels(image.ref(), flags, picture + kPictureHeadSize, pictureSize - kPictureHeadSize) != 0) {
            return 0;
        }
    }
    if (RemapImageToPalette(image.ref(), to) != 0) return -1;
    OwnedMemRef packed(EncodeRowPacked(image.ref()));
    if (!packed.ref()) return -1;
    const uint32_t packedSize = GetMemRefSize(packed.ref());
    const uint32_t newPictureSize = kPictureHeadSize + packedSize;
    const uint32_t newPad = newPictureSize & 1;
    OwnedMemRef picture(NewMemRef(newPictureSize + newPad));
    if (!picture.ref()) return -1;
    {
        MemRefLock p(picture.ref()), c(card), k(packed.ref());
        std::memcpy(p.data(), c.data() + pictureAt, kPictureHeadSize);
        std::memcpy(p.data() + kPictureHeadSize, k.data(), packedSize);
    }
    if (ReplaceBytes(card, picture.ref(), pictureAt, pictureSize + pad) != 0) return -1;
    MemRefLock lock(card);
    uint8_t* g = lock.data() + at;
    Write32(g + kItemLength, length - pictureSize - pad + newPictureSize + newPad);
    Write32(g + kGraphicPictureSize, newPictureSize);
    flags = static_cast<uint16_t>((flags | kGraphicFlagRowPacked) & ~kItemFlagOddPad);
    Write16(g + kItemFlags, static_cast<uint16_t>(flags | (newPad ? kItemFlagOddPad : 0)));
    Write32(lock.data() + kCardSize, GetMemRefSize(card));
    return 0;
}

int32_t ReindexItems(MemRef card, const Palette& from, const Palette& to) {
    uint32_t at = 0;
    {
        MemRefLock lock(card);
        at = ItemChainStart(lock.data());
    }
    for (;;) {
        int16_t kind = 0;
        bool sprite = false;
        {
            MemRefLock lock(card);
            const uint32_t size = GetMemRefSize(card);
            if (at > size || size - at < 2) return -1;
            uint8_t* item = lock.data() + at;
            kind = ReadS16(item + kItemKind);
            if (kind == 0) return 0;
            if (size - at < kItemCommonHeadSize) return -1;
            const uint32_t length = Read32(item + kItemLength);
            if (length < kItemCommonHeadSize || length > size - at) return -1;
            if (kind == kItemKindGraphic) {
                if (length < kGraphicHeadSize) return -1;
                ReindexColor(item + kGraphicFrameColor, from, to);
            }
            if (kind == kItemKindButton) {
                if (length < kButtonHeadSize) return -1;
                ReindexColor(item + kButtonTextColor, from, to);
                ReindexColor(item + kButtonFillColor, from, to);
                sprite = Read16(item + kActionFlags) & kActAnimation;
            }
        }
        if (kind == kItemKindGraphic && ReindexGraphicPixels(card, at, from, to) != 0) return -1;
        const SpritePaletteProc remapSprite = GetPaletteState().remapButtonSprite;
        if (sprite && remapSprite && remapSprite(card, at, from, to) != 0) return -1;
        // Both of the above may have changed the item's length.
        MemRefLock lock(card);
        at += Read32(lock.data() + at + kItemLength);
    }
}

}  // namespace

PaletteRef GetCardPalette(MemRef card) {
    if (!card) return nullptr;
    const MemRef owner = GetPictureOwner(card);
    MemRefLock lock(owner);
    const uint32_t size = GetMemRefSize(owner);
    if (!lock || size <= kEmptyCardSize || size < kCardHeadSize + kBgHeadSize) return nullptr;
    if (ReadS16(lock.data() + kCardKind) != kCardKindPicture) return nullptr;
    const uint8_t* bg = lock.data() + kCardHeadSize;
    const uint32_t chunkSize = Read32(bg + kBgLength);
    const uint32_t paletteSize = Read32(bg + kBgTableSize);
    if (paletteSize == 0 || chunkSize > size - kCardHeadSize || paletteSize > chunkSize - std::min(chunkSize, kBgHeadSize)) {
        return nullptr;
    }
    return PaletteFromColorTable(bg + kBgHeadSize, paletteSize);
}

int32_t ReplaceCardPalette(MemRef card, const Palette& palette) {
    if (!IsMemRef(card) || GetMemRefSize(card) < kEmptyCardSize) return -1;
    PaletteRef old = GetCardPalette(card);
    if (!old) {
        const Palette* current = GetPaletteState().current.get();
        if (!current) return -1;
        old = DuplicatePalette(*current);
        if (!old) return -1;
    }
    int16_t kind = 0, id = 0;
    {
        MemRefLock lock(card);
        kind = ReadS16(lock.data() + kCardKind);
        id = ReadS16(lock.data() + kCardId);
    }
    if (kind == kCardKindPicture) {
        for (int32_t position = 1; position <= CardCount(); ++position) {
            const MemRef member = GetCardByPosition(position);
            bool shares = false;
            {
                MemRefLock lock(member);
                shares = lock && GetMemRefSize(member) >= kCardHeadSize &&
                         ReadS16(lock.data() + kCardKind) == kCardKindGroupMember && ReadS16(lock.data() + kCardOwnerId) == id;
            }
            if (shares && ReplaceCardPalette(member, palette) != 0) return -1;
        }
    }
    return ReindexItems(card, *old, palette);
}

void PrepareIncomingPalette(MemRef card) {
    PaletteState& state = GetPaletteState();
    state.incoming = GetCardPalette(card);
    // The emulated display takes every palette as it is (IsSameAsSystem holds at every depth), so
    // the card is never re-indexed to the system's layout here.
    const Palette* shown = PaletteInUse();
    if (!shown) return;
    PaletteEntry entries[kPaletteSize] = {};
    std::copy(shown->entries, shown->entries + shown->count, entries);
    NoteColors(entries);
}

void AdoptIncomingPalette() {
    PaletteState& state = GetPaletteState();
    if (state.incoming) state.current = std::move(state.incoming);
    if (state.current) RealizePalette(*state.current);
}
