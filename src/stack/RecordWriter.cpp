// The writer: card records, 'Hlnk' records and file references, from native form back to the
// stored one. Heads go out through copies; bodies go out piece by piece around the few numbers
// inside them, each of which goes through a copy of its own; so the live record is never touched.
//
// Records come from files and from scripts that can edit them, so every length is checked against
// the block before it is followed. A lie stops the write with -1; what was sent before it stays in
// the staging buffer, and the save that called us gives up the file.
#include "stack/RecordWriter.h"

#include <cstring>

#include "base/ByteOrder.h"
#include "stack/CardRecord.h"
#include "stack/ItemFields.h"
#include "stack/Normalise.h"
#include "stack/RecordEmitter.h"

namespace {

constexpr uint8_t kCardTail[kCardTailSize] = {0x00, 0x00, 0xFA, 0xCE};

// Background chunk: the colour table stays big-endian in memory; the compressed image behind it
// has two native long words when the format is 2.
constexpr uint16_t kBgFormatPixPak = 2;
constexpr uint32_t kImageField1 = 4;
constexpr uint32_t kImageField2 = 12;
constexpr uint32_t kImageHeadMin = 16;

// A graphic's picture starts with its width and height.
constexpr uint32_t kPictureSizeWords = 4;

// A file reference: the pad after the first string, and the six bytes behind it.
constexpr uint32_t kPathGap = 6;
constexpr uint32_t kMaxPathString = 255;

constexpr uint32_t kHlnkHeadSize = kHlnkStoredText;  // what stands before the stored text

int32_t EmitBackground(RecordEmitter& e, const uint8_t* card, uint32_t size, uint32_t* chunkLength) {
    if (size - kCardHeadSize < kBgHeadSize) return e.Fail();
    const uint8_t* bg = card + kCardHeadSize;
    const uint32_t length = Read32(bg + kBgLength);
    const uint32_t tableSize = Read32(bg + kBgTableSize);
    if (length < kBgHeadSize || length > size - kCardHeadSize || tableSize > length - kBgHeadSize) {
        return e.Fail();
    }
    e.PutExchanged(bg, kBgHeadSize, [](uint8_t* h) {
        Swap16At(h, {kBgTag, kBgFormat, kBgFlags});
        Swap32At(h, {kBgLength, kBgTableSize});
    });
    uint32_t at = kBgHeadSize;
    if (Read16(bg + kBgFormat) == kBgFormatPixPak) {
        const uint32_t image = kBgHeadSize + tableSize;
        if (length - image < kImageHeadMin) return e.Fail();
        for (uint32_t field : {image + kImageField1, image + kImageField2}) {
            e.Put(bg + at, field - at);
            e.PutExchanged(bg + field, 4, [](uint8_t* v) { Swap32(v); });
            at = field + 4;
        }
    }
    e.Put(bg + at, length - at);
    *chunkLength = length;
    return e.result();
}

int32_t EmitGraphic(RecordEmitter& e, const uint8_t* g, uint32_t length) {
    if (length < kGraphicHeadSize) return e.Fail();
    e.PutExchanged(g, kGraphicHeadSize, [](uint8_t* h) {
        StoreItemHead(h);
        TurnItemFields(h, kGraphicFields);
        SwapRect(h + kGraphicRect2);
    });
    const uint32_t pictureSize = Read32(g + kGraphicPictureSize);
    const uint16_t flags = Read16(g + kItemFlags);
    const uint32_t pad = (flags & kItemFlagOddPad) ? 1 : 0;
    const uint32_t room = length - kGraphicHeadSize;
    if (pad > room || pictureSize > room - pad) return e.Fail();
    if (pictureSize != 0 && pictureSize < kPictureSizeWords) return e.Fail();

    // Whatever stands between the head and the picture is the file reference, if the item has one.
    const uint32_t reference = room - pad - pictureSize;
    if (flags & kItemFlagFileRef) {
        e.PutPath(g + kGraphicFileRef, reference);
    } else {
        e.Put(g + kGraphicFileRef, reference);
    }
    if (pictureSize != 0) {
        const uint8_t* picture = g + kGraphicFileRef + reference;
        e.PutExchanged(picture, kPictureSizeWords, [](uint8_t* v) { Swap16At(v, {0, 2}); });
        e.Put(picture + kPictureSizeWords, pictureSize - kPictureSizeWords);
    }
    e.Put(g + length - pad, pad);
    return e.result();
}

int32_t EmitTextField(RecordEmitter& e, const uint8_t* t, uint32_t length) {
    if (length < kTextHeadSize) return e.Fail();
    e.PutExchanged(t, kTextHeadSize, [](uint8_t* h) {
        StoreItemHead(h);
        TurnItemFields(h, kTextFields);
    });
    const bool imported = (Read16(t + kItemFlags) & kItemFlagFileRef) != 0;
    for (uint32_t at = kTextHeadSize; at < length;) {
        if (length - at < kTextBlockHeadSize) return e.Fail();
        const uint8_t* block = t + at;
        const uint32_t blockLength = Read32(block + kTextBlockLength);
        if (blockLength < kTextBlockHeadSize || blockLength > length - at) return e.Fail();
        e.PutExchanged(block, kTextBlockHeadSize, [](uint8_t* h) {
            Swap16At(h, {0, 2});
            Swap32At(h, {4, kTextBlockDataLength, kTextBlockLength});
        });
        const uint8_t* data = block + kTextBlockHeadSize;
        const uint32_t body = blockLength - kTextBlockHeadSize;
        // An imported field keeps its file's reference in place of the first block's text.
        if (imported && at == kTextHeadSize) {
            const uint32_t reference = Read32(block + kTextBlockDataLength);
            if (reference > body) return e.Fail();
            e.PutPath(data, reference);
            e.Put(data + reference, body - reference);
        } else {
            e.Put(data, body);
        }
        at += blockLength;
    }
    return e.result();
}

// One item chunk of `length` bytes (checked to lie in the card) at `at`.
int32_t EmitItem(RecordEmitter& e, uint8_t* card, uint32_t size, uint32_t at, uint32_t length) {
    const uint8_t* item = card + at;
    switch (ReadS16(item + kItemKind)) {
    case kItemKindGraphic:
        return EmitGraphic(e, item, length);
    case kItemKindButton:
        return EmitButton(e, card, size, at);
    case kItemKindText:
        return EmitTextField(e, item, length);
    default:
        // The reader turned the common head of every chunk; what is behind it is not ours.
        e.PutExchanged(item, kItemCommonHeadSize, StoreItemHead);
        e.Put(item + kItemCommonHeadSize, length - kItemCommonHeadSize);
        return e.result();
    }
}

}  // namespace

void RecordEmitter::Put(const uint8_t* bytes, uint32_t count) {
    if (result_ != 0 || count == 0) return;
    result_ = WriteBuffered(out_, bytes, count);
    if (result_ == 0) count_ += count;
}

void RecordEmitter::PutPath(const uint8_t* native, uint32_t count) {
    if (count == 0) return;
    const MemRef stored = ConvertNativePath(native, count);
    if (!stored) {
        Put(native, count);
        return;
    }
    {
        MemRefLock lock(stored);
        Put(lock ? lock.data() : native, count);
    }
    FreeMemRef(stored);
}

MemRef ConvertNativePath(const uint8_t* native, uint32_t length) {
    if (!native || length == 0) return 0;
    const void* end = std::memchr(native, 0, length);
    if (!end) return 0;
    const uint32_t pathLength = static_cast<uint32_t>(static_cast<const uint8_t*>(end) - native);
    // The path, its terminator, and the pad that makes the two an even number of bytes.
    const uint32_t first = (pathLength + 2) & ~1u;
    if (pathLength > kMaxPathString || first > length || length - first <= kPathGap) return 0;
    const uint8_t* name = native + first + kPathGap;
    end = std::memchr(name, 0, length - first - kPathGap);
    if (!end) return 0;
    const uint32_t nameLength = static_cast<uint32_t>(static_cast<const uint8_t*>(end) - name);
    if (nameLength > kMaxPathString) return 0;

    const MemRef ref = NewMemRef(length);
    if (!ref) return 0;
    MemRefLock lock(ref);
    if (!lock) {
        FreeMemRef(ref);
        return 0;
    }
    // Both forms of a string take its length plus one byte, so everything stays where it was;
    // the pad byte and whatever follows the name go out as they came.
    uint8_t* out = lock.data();
    std::memcpy(out, native, length);
    out[0] = static_cast<uint8_t>(pathLength);
    for (uint32_t i = 0; i < pathLength; ++i) out[1 + i] = native[i] == '\\' ? ':' : native[i];
    std::memset(out + first, 0, kPathGap);
    out[first + kPathGap] = static_cast<uint8_t>(nameLength);
    std::memcpy(out + first + kPathGap + 1, name, nameLength);
    return ref;
}

int32_t WriteCardRecord(StagingBuffer& out, MemRef card) {
    MemRefLock lock(card);
    if (!lock) return -1;
    const uint32_t size = GetMemRefSize(card);
    if (size < kEmptyCardSize) return -1;
    uint8_t* c = lock.data();
    RecordEmitter e(out);

    // The block's size is the record's, whatever the field says.
    e.PutExchanged(c, kCardHeadSize, [size](uint8_t* h) {
        Write32(h + kCardSize, size);
        Swap16At(h, {kCardId, kCardKind, kCardOwnerId, kCardFlags, kCardMenuShown, kCardDepth,
                     kCardWidth, kCardHeight, kCardArriveAction, kCardLeaveAction, kCardClickAction,
                     kCardCursor, kCardReserved56});
        Swap32(h + kCardSize);
    });
    uint32_t at = kCardHeadSize;
    if (ReadS16(c + kCardKind) == kCardKindPicture) {
        uint32_t chunkLength = 0;
        if (EmitBackground(e, c, size, &chunkLength) != 0) return e.result();
        at += chunkLength;
    }
    for (;;) {
        if (size - at < kCardTailSize) return e.Fail();
        if (ReadS16(c + at + kItemKind) == 0) break;
        if (size - at < kItemCommonHeadSize) return e.Fail();
        const uint32_t length = Read32(c + at + kItemLength);
        if (length < kItemCommonHeadSize || length > size - at) return e.Fail();
        if (EmitItem(e, c, size, at, length) != 0) return e.result();
        at += length;
    }
    e.Put(kCardTail, kCardTailSize);
    return e.result();
}

int32_t WriteButtonRecord(StagingBuffer& out, MemRef record, uint32_t offset, uint32_t* written) {
    MemRefLock lock(record);
    if (!lock) return -1;
    RecordEmitter e(out);
    EmitButton(e, lock.data(), GetMemRefSize(record), offset);
    if (written) *written += e.count();
    return e.result();
}

int32_t WriteHlnkRecord(StagingBuffer& out, MemRef record, uint32_t* written) {
    MemRefLock lock(record);
    if (!lock) return -1;
    const uint32_t size = GetMemRefSize(record);
    if (size < kHlnkText) return -1;
    uint8_t* h = lock.data();
    const uint32_t padLength = Read16(h + kHlnkPadLength);
    const uint32_t textLength = Read16(h + kHlnkTextLength);
    if (textLength > size - kHlnkText) return -1;
    RecordEmitter e(out);

    // The text goes back down to 23, and the byte the reader kept at 23 back behind it.
    e.PutExchanged(h, kHlnkHeadSize, [](uint8_t* head) {
        Swap16At(head, {kHlnkLinkId, kHlnkFieldId, kHlnkPadLength, kHlnkTextLength});
    });
    e.Put(h + kHlnkText, textLength);
    e.Put(h + kHlnkDisplacedByte, 1);
    const uint32_t afterText = kHlnkText + textLength;
    if (Read16(h + kHlnkHasAction) == 1) {
        const uint32_t action = afterText + padLength;
        if (action > size) {
            e.Fail();
        } else {
            e.Put(h + afterText, padLength);
            EmitButton(e, h, size, action);
        }
    } else {
        e.Put(h + afterText, size - afterText);
    }
    if (written) *written += e.count();
    return e.result();
}
