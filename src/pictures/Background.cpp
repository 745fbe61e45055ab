#include "pictures/Background.h"

#include <algorithm>
#include <cstring>

#include "base/ByteOrder.h"
#include "gfx/ColorTable.h"
#include "gfx/DibImage.h"
#include "gfx/Palette.h"
#include "memory/OwnedMemRef.h"
#include "pictures/Lzrw.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"

namespace {

// The background chunk of a picture owner, checked against the record it stands in.
struct ChunkView {
    const uint8_t* chunk = nullptr;
    uint32_t chunkSize = 0;
    uint32_t paletteSize = 0;
    uint16_t format = 0;
    uint16_t flags = 0;
    const uint8_t* data = nullptr;  // the image data behind the palette, without the pad byte
    uint32_t dataSize = 0;
};

int32_t ReadChunk(const uint8_t* card, uint32_t recordSize, ChunkView* v) {
    if (recordSize <= kEmptyCardSize || ReadS16(card + kCardKind) != kCardKindPicture) return kBackgroundNone;
    if (recordSize < kCardHeadSize + kBgHeadSize) return kBackgroundDamaged;
    const uint8_t* bg = card + kCardHeadSize;
    v->chunk = bg;
    v->chunkSize = Read32(bg + kBgLength);
    v->paletteSize = Read32(bg + kBgTableSize);
    v->format = Read16(bg + kBgFormat);
    v->flags = Read16(bg + kBgFlags);
    if (v->chunkSize < kBgHeadSize || v->chunkSize > recordSize - kCardHeadSize) return kBackgroundDamaged;
    if (v->paletteSize > v->chunkSize - kBgHeadSize) return kBackgroundDamaged;
    v->data = bg + kBgHeadSize + v->paletteSize;
    v->dataSize = v->chunkSize - kBgHeadSize - v->paletteSize;
    if (v->flags & kBgFlagOddPad) {
        if (v->dataSize == 0) return kBackgroundDamaged;
        --v->dataSize;
    }
    return 0;
}

uint32_t WordAt(const uint8_t* p) { return Read32(p); }

// Moves the bytes behind [at, at + oldLength) so that the range holds newLength bytes; the block
// grows first, so a refusal leaves the record as it was.
int32_t ResizeRange(MemRef ref, uint32_t at, uint32_t oldLength, uint32_t newLength) {
    const uint32_t size = GetMemRefSize(ref);
    if (at > size || oldLength > size - at) return -1;
    const uint32_t behind = size - at - oldLength;
    if (newLength > oldLength) {
        if (newLength - oldLength > UINT32_MAX / 2 - size) return -1;
        if (SetMemRefSize(ref, size + (newLength - oldLength)) != 0) return -1;
        MemRefLock lock(ref);
        std::memmove(lock.data() + at + newLength, lock.data() + at + oldLength, behind);
        return 0;
    }
    if (newLength < oldLength) {
        {
            MemRefLock lock(ref);
            std::memmove(lock.data() + at + newLength, lock.data() + at + oldLength, behind);
        }
        // Shrinking gives memory back; the record is already whole in the block's front.
        return SetMemRefSize(ref, size - (oldLength - newLength));
    }
    return 0;
}

}  // namespace

MemRef CompressBackground(MemRef image, bool fromScreen) {
    int32_t depth = 0;
    {
        MemRefLock lock(image);
        if (!lock || !IsDibLayoutValid(lock.data(), GetMemRefSize(image))) return 0;
        depth = DibDepth(lock.data());
    }
    // The flip works on a copy, so the caller's image stays as it was handed over.
    OwnedMemRef display(CopyBytes(image, 0, GetMemRefSize(image)));
    if (!display.ref()) return 0;
    // Screen bitmaps of an 8-bit display are in system colour order.
    const int32_t flipped = fromScreen && depth == 8 ? FlipDibRowsMapped(display.ref(), SystemToStackIndexTable())
                                                     : FlipDibRows(display.ref());
    if (flipped != 0) return 0;
    OwnedMemRef stored(DibToStored(display.ref()));
    display.Reset(0);
    if (!stored.ref() || SwapStoredPixelOrder(stored.ref()) != 0) return 0;

    MemRefLock lock(stored.ref());
    const uint8_t* px = DibPixels(lock.data());
    uint32_t total = DibImageBytes(lock.data());
    // The screen bitmap is one row taller than the card.
    if (fromScreen) total -= std::min(total, DibImageRowBytes(lock.data()));

    // Head and tail runs as 32-bit words; the head's first differing word ends the tail's walk.
    uint32_t head = 0;
    if (total >= 4) {
        const uint32_t first = WordAt(px);
        while (head + 4 <= total && WordAt(px + head) == first) head += 4;
    }
    const uint32_t left = total - head;
    uint32_t tail = 0;
    if (left >= 4) {
        const uint32_t last = WordAt(px + total - 4);
        while (tail + 4 <= left && WordAt(px + total - 4 - tail) == last) tail += 4;
    }
    const uint32_t middle = left - tail;

    OwnedMemRef out(NewMemRef(kRunHeaderSize + middle + kEmptyMiddleBlock));
    if (!out.ref()) return 0;
    uint32_t blockLength = middle + kEmptyMiddleBlock;
    {
        MemRefLock o(out.ref());
        uint8_t* h = o.data();
        if (total >= 4) {
            std::memcpy(h + kRunHeadValue, px, 4);
            std::memcpy(h + kRunTailValue, px + total - 4, 4);
        }
        Write32(h + kRunHeadLength, head);
        Write32(h + kRunTailLength, tail);
        if (middle > 0) {
            OwnedMemRef work(NewMemRef(kLzrwWorkSize));
            if (!work.ref()) return 0;
            MemRefLock w(work.ref());
            LzrwCompress(w.data(), px + head, middle, h + kRunHeaderSize, &blockLength);
        }
    }
    if (SetMemRefSize(out.ref(), kRunHeaderSize + blockLength) != 0) return 0;
    return out.Release();
}

MemRef GetPictureOwner(MemRef card) {
    int16_t ownerId = 0;
    {
        MemRefLock lock(card);
        if (!lock || GetMemRefSize(card) < kCardHeadSize) return 0;
        if (ReadS16(lock.data() + kCardKind) == kCardKindPicture) return card;
        ownerId = ReadS16(lock.data() + kCardOwnerId);
    }
    for (int32_t position = 1; position <= CardCount(); ++position) {
        const MemRef other = GetCardByPosition(position);
        MemRefLock lock(other);
        if (lock && GetMemRefSize(other) >= kCardHeadSize && ReadS16(lock.data() + kCardId) == ownerId) return other;
    }
    return 0;
}

int32_t DecodeBackgroundData(MemRef storedImage, uint16_t format, const uint8_t* data, uint32_t length,
                             BackgroundDecode* decode) {
    MemRefLock lock(storedImage);
    if (!lock || !IsDibLayoutValid(lock.data(), GetMemRefSize(storedImage))) return kBackgroundDamaged;
    uint8_t* px = DibPixels(lock.data());
    const uint32_t size = DibImageBytes(lock.data());
    BackgroundDecode info;
    info.format = format;
    if (format == kBgFormatRuns) {
        if (length < kRunHeaderSize) return kBackgroundDamaged;
        info.headBytes = Read32(data + kRunHeadLength);
        info.tailBytes = Read32(data + kRunTailLength);
        if (info.headBytes % 4 != 0 || info.tailBytes % 4 != 0 ||
            uint64_t{info.headBytes} + info.tailBytes > size) {
            return kBackgroundDamaged;
        }
        for (uint32_t i = 0; i < info.headBytes; i += 4) std::memcpy(px + i, data + kRunHeadValue, 4);
        for (uint32_t i = 4; i <= info.tailBytes; i += 4) std::memcpy(px + size - i, data + kRunTailValue, 4);
        data += kRunHeaderSize;
        length -= kRunHeaderSize;
    } else if (format != kBgFormatWhole) {
        return kBackgroundDamaged;
    }
    info.blockBytes = length;
    const uint32_t target = size - info.headBytes - info.tailBytes;
    if (target > 0) {
        uint32_t made = 0;
        info.decompressed = true;
        if (LzrwDecompress(data, length, px + info.headBytes, target, &made) != 0 || made != target) {
            return kBackgroundDamaged;
        }
    }
    if (decode) *decode = info;
    return 0;
}

int32_t GetCardBackground(MemRef card, MemRef* image, int32_t depth, bool flip, bool withPalette,
                          BackgroundDecode* decode) {
    *image = 0;
    {
        MemRefLock lock(card);
        if (!lock || GetMemRefSize(card) < kCardHeadSize) return kBackgroundNone;
        if (ReadS16(lock.data() + kCardKind) == kCardKindBlank) return kBackgroundNone;
    }
    const MemRef owner = GetPictureOwner(card);
    if (!owner) return kBackgroundNone;
    MemRefLock lock(owner);
    if (!lock) return kBackgroundNone;
    const uint8_t* record = lock.data();
    ChunkView chunk;
    if (const int32_t result = ReadChunk(record, GetMemRefSize(owner), &chunk); result != 0) return result;
    if (chunk.format == kBgFormatJpeg) return kBackgroundJpeg;
    if (chunk.format != kBgFormatWhole && chunk.format != kBgFormatRuns) return kBackgroundDamaged;

    // The picture is laid out at its owner's own size, which is the card size except while a
    // conversion resizes the stack, and then the conversion reads at the card's own size too.
    const int32_t width = ReadS16(record + kCardWidth);
    const int32_t height = ReadS16(record + kCardHeight);
    if (width <= 0 || height <= 0 || !IsDibDepth(depth)) return kBackgroundDamaged;
    OwnedMemRef stored(NewStoredImage(width, height, depth));
    if (!stored.ref()) return kBackgroundNoMemory;
    {
        MemRefLock s(stored.ref());
        uint8_t* colors = DibColors(s.data());
        const uint32_t count = DibColorCount(s.data());
        if (withPalette) {
            ColorTableToDib(chunk.chunk + kBgHeadSize, chunk.paletteSize, s.data());
        } else {
            for (uint32_t i = 0; i < count; ++i) Write32(colors + i * kDibColorSize, i);
        }
    }
    BackgroundDecode info;
    if (DecodeBackgroundData(stored.ref(), chunk.format, chunk.data, chunk.dataSize, &info) != 0) {
        return kBackgroundDamaged;
    }
    if (decode) *decode = info;
    if (SwapStoredPixelOrder(stored.ref()) != 0) return kBackgroundDamaged;
    // Rows of the same length need no conversion: widths that are multiples of 16 at 8 bits and
    // over, and a few more, with the same pixels either way.
    if (StoredRowBytes(depth, width) != DibRowBytes(depth, width)) {
        stored.Reset(StoredToDib(stored.ref()));
        if (!stored.ref()) return kBackgroundNoMemory;
    }
    if (flip && FlipDibRows(stored.ref()) != 0) return kBackgroundNoMemory;
    *image = stored.Release();
    return 0;
}

int32_t StoreBackground(MemRef card, MemRef imageData, MemRef palette, int32_t depth) {
    const uint32_t cardSize = GetMemRefSize(card);
    if (!IsMemRef(card) || cardSize < kEmptyCardSize || !IsMemRef(imageData)) return -1;
    int16_t kind = 0;
    uint32_t oldContent = 0;
    {
        MemRefLock lock(card);
        kind = ReadS16(lock.data() + kCardKind);
        if (kind == kCardKindPicture) {
            const uint32_t chunkSize = Read32(lock.data() + kCardHeadSize + kBgLength);
            if (cardSize < kCardHeadSize + kBgHeadSize || chunkSize < kBgHeadSize ||
                chunkSize > cardSize - kCardHeadSize) {
                return -1;
            }
            oldContent = chunkSize - kBgHeadSize;
        } else if (kind != kCardKindBlank) {
            // A card of a group shows its owner's picture and never stores one of its own.
            return -1;
        }
    }
    const uint32_t imageSize = GetMemRefSize(imageData);
    const uint32_t paletteSize = palette ? GetMemRefSize(palette) : 0;
    const uint32_t pad = imageSize & 1;
    const uint64_t content = uint64_t{paletteSize} + imageSize + pad;
    if (content > UINT32_MAX / 4) return -1;
    const uint32_t chunkSize = static_cast<uint32_t>(content) + kBgHeadSize;

    // A blank card gets a zeroed chunk head at 96 as well; a picture card keeps its head.
    const bool newChunk = kind == kCardKindBlank;
    const uint32_t at = newChunk ? kCardHeadSize : kCardHeadSize + kBgHeadSize;
    const uint32_t newLength = newChunk ? chunkSize : chunkSize - kBgHeadSize;
    if (ResizeRange(card, at, oldContent, newLength) != 0) return -1;

    MemRefLock lock(card);
    uint8_t* c = lock.data();
    uint8_t* bg = c + kCardHeadSize;
    if (newChunk) {
        std::memset(bg, 0, kBgHeadSize);
        Write16(c + kCardKind, static_cast<uint16_t>(kCardKindPicture));
        Write16(c + kCardOwnerId, 0);
    }
    uint8_t* p = bg + kBgHeadSize;
    if (paletteSize) {
        MemRefLock t(palette);
        std::memcpy(p, t.data(), paletteSize);
    }
    {
        MemRefLock d(imageData);
        std::memcpy(p + paletteSize, d.data(), imageSize);
    }
    if (pad) p[paletteSize + imageSize] = 0;
    Write16(bg + kBgTag, kBgChunkTag);
    Write16(bg + kBgFormat, kBgFormatRuns);
    const uint16_t flags = Read16(bg + kBgFlags);
    Write16(bg + kBgFlags, static_cast<uint16_t>(pad ? flags | kBgFlagOddPad : flags & ~kBgFlagOddPad));
    Write32(bg + kBgLength, chunkSize);
    Write32(bg + kBgTableSize, paletteSize);
    Write16(c + kCardDepth, static_cast<uint16_t>(depth));
    Write32(c + kCardSize, GetMemRefSize(card));
    return 0;
}

int32_t FindJpegStream(MemRef owner, uint32_t* offset, uint32_t* length) {
    MemRefLock lock(owner);
    if (!lock) return kBackgroundNone;
    ChunkView chunk;
    if (const int32_t result = ReadChunk(lock.data(), GetMemRefSize(owner), &chunk); result != 0) return result;
    if (chunk.format != kBgFormatJpeg || chunk.dataSize < 4) return kBackgroundDamaged;
    // The description is big-endian in memory too; only its length is read.
    const uint32_t description = ReadBE32(chunk.data);
    if (description > chunk.dataSize) return kBackgroundDamaged;
    *offset = static_cast<uint32_t>(chunk.data - lock.data()) + description;
    *length = chunk.dataSize - description;
    return 0;
}

void WriteImageDescription(uint8_t* out, int32_t width, int32_t height, int32_t depth) {
    static constexpr char kName[] = "Photo - JPEG";
    std::memset(out, 0, kImageDescriptionSize);
    WriteBE32(out + 0, kImageDescriptionSize);
    std::memcpy(out + 4, "jpeg", 4);
    WriteBE32(out + 28, 0x200);                            // spatial quality
    WriteBE16(out + 32, static_cast<uint16_t>(width));
    WriteBE16(out + 34, static_cast<uint16_t>(height));
    WriteBE32(out + 36, 0x00480000);                       // 72 dpi, 16.16
    WriteBE32(out + 40, 0x00480000);
    WriteBE32(out + 44, StoredRowBytes(depth, width) * static_cast<uint32_t>(height));
    out[50] = sizeof(kName) - 1;
    std::memcpy(out + 51, kName, sizeof(kName) - 1);
    WriteBE16(out + 82, static_cast<uint16_t>(depth == 16 ? 24 : depth));
    WriteBE16(out + 84, 0xFFFF);                           // no colour table
}
