// Byte-order normalisation of cards, buttons and the 'Actn' and 'Hlnk' records, on reading.
//
// Stack files come from anywhere, so nothing here trusts a length: every field is read or turned
// only after a check that it lies inside the record as it is now, and every chain advances by at
// least its head, so a zero length ends in -1 rather than a loop. A record grows or shrinks only
// through ReplaceBytes; no pointer into it is kept across that call.
#include "stack/Normalise.h"

#include <cstring>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "memory/OwnedMemRef.h"
#include "stack/CardRecord.h"
#include "stack/ItemFields.h"
#include "stack/SubRecord.h"

namespace {

// Background chunk: the colour table's first entry, and the image behind the table.
constexpr uint32_t kBgTable = kBgHeadSize;
constexpr uint32_t kBgFirstRed = 34;
constexpr uint32_t kBgFirstGreen = 36;
constexpr uint32_t kBgFirstBlue = 38;
constexpr uint32_t kColorTableMin = 16;  // seed, flags, count, one entry
constexpr uint32_t kImageField1 = 4;
constexpr uint32_t kImageField2 = 12;
constexpr uint32_t kImageHeadMin = 16;
constexpr uint16_t kBgFormatPixPak = 2;
constexpr uint16_t kWhite = 0xFFFF;

// Graphic picture: width and height, then two words the reader clears.
constexpr uint32_t kPictureHeadSize = 8;

// Text block inside a text field; the first one's data starts at 144 of the chunk.
constexpr uint32_t kTextFirstBlock = kTextHeadSize;


bool gTableSeen = false;
bool gWhiteFirst = false;

// One locked look at a record, between two resizes.
class RecordView {
public:
    explicit RecordView(MemRef ref) : lock_(ref), size_(lock_ ? GetMemRefSize(ref) : 0) {}
    // Whether `count` bytes from `offset` lie inside the record.
    bool Has(uint32_t offset, uint32_t count) const {
        return lock_ && offset <= size_ && count <= size_ - offset;
    }
    uint8_t* At(uint32_t offset) const { return lock_.data() + offset; }

private:
    MemRefLock lock_;
    uint32_t size_;
};

void SwapItemCommonHead(uint8_t* item, bool withKind) {
    if (withKind) Swap16(item + kItemKind);
    Swap16At(item, {kItemId, kItemFlags});
    SwapRect(item + kItemRect);
    Swap32(item + kItemLength);
}

// A reference that the system wrote and never stored is already "X:\...": no length byte.
bool IsNativeReference(const uint8_t* ref, uint32_t length) {
    return length >= 3 && ref[1] == ':' && ref[2] == '\\';
}

// Puts the native form of the stored reference at `at` (`oldLength` bytes) in its place.
// `*newLength` receives the converted length; `*odd` whether it was odd before any round-up.
int32_t ReplaceReference(MemRef record, uint32_t at, uint32_t oldLength, bool padToEven,
                         uint32_t* newLength, bool* odd) {
    MemRef converted = 0;
    {
        RecordView r(record);
        if (!r.Has(at, oldLength)) return -1;
        converted = ConvertStoredPath(r.At(at), oldLength, odd, padToEven);
    }
    OwnedMemRef text(converted);
    if (!text.ref()) return -1;
    if (ReplaceBytes(record, text.ref(), at, oldLength) != 0) return -1;
    *newLength = text.size();
    return 0;
}

int32_t NormaliseGraphic(MemRef card, uint32_t offset) {
    uint32_t length = 0;
    uint32_t oldText = 0;
    {
        RecordView r(card);
        uint8_t* g = r.At(offset);
        length = Read32(g + kItemLength);
        if (length < kGraphicHeadSize || !r.Has(offset, length)) return -1;
        TurnItemFields(g, kGraphicFields);
        SwapRect(g + kGraphicRect2);

        const uint32_t pictureSize = Read32(g + kGraphicPictureSize);
        const uint16_t flags = Read16(g + kItemFlags);
        const uint32_t pad = (flags & kItemFlagOddPad) ? 1 : 0;
        const uint32_t room = length - kGraphicHeadSize;
        if (pad > room || pictureSize > room - pad) return -1;
        if (pictureSize != 0) {
            if (pictureSize < kPictureHeadSize) return -1;
            uint8_t* picture = g + length - pad - pictureSize;
            Swap16(picture);
            Swap16(picture + 2);
            // A stored width without a height is the one case that keeps its own size.
            if (!(ReadS16(picture) != 0 && ReadS16(picture + 2) == 0)) {
                const uint8_t* rect = g + kItemRect;  // native left, top, right, bottom
                Write16(picture, static_cast<uint16_t>(ReadS16(rect + 4) - ReadS16(rect)));
                Write16(picture + 2, static_cast<uint16_t>(ReadS16(rect + 6) - ReadS16(rect + 2)));
            }
            Write16(picture + 4, 0);
            Write16(picture + 6, 0);
        }
        if (!(flags & kItemFlagFileRef)) return 0;
        oldText = room - pad - pictureSize;
        if (oldText == 0 || IsNativeReference(g + kGraphicFileRef, oldText)) return 0;
    }
    uint32_t newText = 0;
    bool odd = false;
    if (ReplaceReference(card, offset + kGraphicFileRef, oldText, true, &newText, &odd) != 0) return -1;
    RecordView r(card);
    Write32(r.At(offset + kItemLength), length - oldText + newText);
    return 0;
}

int32_t NormaliseTextField(MemRef card, uint32_t offset) {
    uint32_t oldText = 0;
    {
        RecordView r(card);
        uint8_t* t = r.At(offset);
        const uint32_t length = Read32(t + kItemLength);
        if (length < kTextHeadSize || !r.Has(offset, length)) return -1;
        TurnItemFields(t, kTextFields);
        uint32_t at = kTextFirstBlock;
        while (at < length) {
            if (length - at < kTextBlockHeadSize) return -1;
            uint8_t* block = t + at;
            Swap16At(block, {0, 2});
            Swap32At(block, {4, kTextBlockDataLength, kTextBlockLength});
            const uint32_t blockLength = Read32(block + kTextBlockLength);
            if (blockLength < kTextBlockHeadSize || blockLength > length - at) return -1;
            at += blockLength;
        }
        if (!(Read16(t + kItemFlags) & kItemFlagFileRef) || length == kTextHeadSize) return 0;
        // An imported field keeps its file's reference in place of the first block's text.
        const uint8_t* first = t + kTextFirstBlock;
        oldText = Read32(first + kTextBlockDataLength);
        if (oldText > Read32(first + kTextBlockLength) - kTextBlockHeadSize) return -1;
        if (oldText == 0 || IsNativeReference(first + kTextBlockHeadSize, oldText)) return 0;
    }
    const uint32_t refAt = offset + kTextFirstBlock + kTextBlockHeadSize;
    uint32_t newText = 0;
    bool odd = false;
    if (ReplaceReference(card, refAt, oldText, true, &newText, &odd) != 0) return -1;
    // The block's data length is the reference's; the block and the chunk grow with it.
    RecordView r(card);
    uint8_t* t = r.At(offset);
    uint8_t* first = t + kTextFirstBlock;
    Write32(first + kTextBlockDataLength, newText);
    Write32(first + kTextBlockLength, Read32(first + kTextBlockLength) - oldText + newText);
    Write32(t + kItemLength, Read32(t + kItemLength) - oldText + newText);
    return 0;
}

// The frame-delta animation of a type 56 body, if it holds one.
int32_t NormaliseAnimationBody(uint8_t* sub, uint32_t subLength) {
    if (subLength - kSubHeadSize < kAnimHeadSize || std::memcmp(sub + kSubHeadSize, "Sprt", 4) == 0) return 0;
    for (uint32_t i = 0; i < kAnimHeadWords; ++i) Swap16(sub + kSubHeadSize + 2 * i);
    const uint16_t frames = Read16(sub + kAnimFrameCount);
    uint32_t at = kAnimFrames;
    for (uint32_t i = 0; i < frames; ++i) {
        if (subLength - at < kFrameHeadSize) return -1;
        Swap16(sub + at + kFrameTag);
        Swap32(sub + at + kFrameSize);
        const uint32_t frameSize = Read32(sub + at + kFrameSize);
        if (frameSize < kFrameHeadSize || frameSize > subLength - at) return -1;
        at += frameSize;
    }
    return 0;
}

// Types 60, 82 and 89: the whole body is one reference.
int32_t NormaliseOnePath(MemRef record, uint32_t at) {
    uint32_t body = 0;
    {
        RecordView r(record);
        body = Read32(r.At(at + kSubLength)) - kSubHeadSize;
    }
    if (body == 0) return 0;
    uint32_t newText = 0;
    bool odd = false;
    if (ReplaceReference(record, at + kSubHeadSize, body, true, &newText, &odd) != 0) return -1;
    RecordView r(record);
    uint8_t* sub = r.At(at);
    if (odd) Write16(sub + kSubFlags, kSubFlagOddPad);
    Write32(sub + kSubLength, newText + kSubHeadSize);
    return 0;
}

// Type 59: the document's reference (its length at 18), then the program's if more than a pad
// byte follows. The two converted texts stand one behind the other and are rounded up together.
int32_t NormaliseLaunchPaths(MemRef record, uint32_t at) {
    OwnedMemRef first(0);
    OwnedMemRef second(0);
    uint32_t body = 0;
    {
        RecordView r(record);
        const uint8_t* sub = r.At(at);
        body = Read32(sub + kSubLength) - kSubHeadSize;
        const uint32_t documentLength = Read32(sub + kSubDocumentLength);
        if (documentLength > body) return -1;
        const uint32_t rest = body - documentLength;
        if (documentLength != 0) {
            first.Reset(ConvertStoredPath(sub + kSubHeadSize, documentLength, nullptr, false));
            if (!first.ref()) return -1;
        }
        // A single byte left over is the pad of an odd document, not a program.
        if (rest > 1) {
            second.Reset(ConvertStoredPath(sub + kSubHeadSize + documentLength, rest, nullptr, false));
            if (!second.ref()) return -1;
        }
    }
    const uint32_t joined = first.size() + second.size();
    const bool roundUp = (joined & 1) != 0;
    OwnedMemRef text(NewMemRef(joined + (roundUp ? 1 : 0)));
    if (!text.ref()) return -1;
    {
        MemRefLock out(text.ref());
        if (!out) return -1;
        if (first.size()) {
            MemRefLock in(first.ref());
            std::memcpy(out.data(), in.data(), first.size());
        }
        if (second.size()) {
            MemRefLock in(second.ref());
            std::memcpy(out.data() + first.size(), in.data(), second.size());
        }
    }
    if (ReplaceBytes(record, text.ref(), at + kSubHeadSize, body) != 0) return -1;
    RecordView r(record);
    uint8_t* sub = r.At(at);
    if (roundUp) Write16(sub + kSubFlags, kSubFlagOddPad);
    Write32(sub + kSubDocumentLength, first.size());
    Write32(sub + kSubLength, text.size() + kSubHeadSize);
    return 0;
}

// The reader's rule for one sub-record, whose type and length are already native and checked.
int32_t NormaliseSubRecord(MemRef record, uint32_t at) {
    uint16_t type = 0;
    {
        RecordView r(record);
        uint8_t* sub = r.At(at);
        type = Read16(sub + kSubType);
        const uint32_t subLength = Read32(sub + kSubLength);
        switch (type) {
        case kTagNba:
            Swap16At(sub, {kSubFlags, kSubWord16});
            return 0;
        case kTagAnimation:
            SwapRect(sub + kSubRect);
            Swap16(sub + kSubFlags);
            return NormaliseAnimationBody(sub, subLength);
        case kTagLaunch:
            Swap16At(sub, {kSubFlags, kSubWord16});
            Swap32(sub + kSubDocumentLength);
            break;
        case kTagOtherStack:
            break;
        case kTagLogo:
            Swap16(sub + kSubFlags);
            SwapRect(sub + kSubRect);
            return 0;
        case kTagSoundFile:
            Swap16At(sub, {kSubFlags, kSubWord24, kSubVolume});
            break;
        case kTagStackSound:
            Swap16At(sub, {kSubFlags, kSubWord24, kSubVolume, kSubWord16});
            return 0;
        case kTagMovie:
            Swap16At(sub, {kSubFlags, kSubId, kSubWord20});
            SwapRect(sub + kSubRect);
            Swap32(sub + kSubWord16);
            break;
        case kTagLaserDisc:
            if (subLength < kLaserDiscHeadSize) return -1;
            Swap16At(sub, {kSubFlags, kSubWord18, kSubWord20, kSubWord24});
            SwapRect(sub + kSubRect);
            return 0;
        case kTagIcon:
            // Icon sizes: width and height, then two words that are made afresh.
            if (subLength < kIconHeadSize) return -1;
            Swap16At(sub, {kSubFlags, kIconWidth, kIconHeight});
            Write16(sub + kIconLeft, 0);
            Write16(sub + kIconTop, 0);
            return 0;
        default:
            // 129 carries nothing for the reader; a foreign type is passed over by its length.
            return 0;
        }
    }
    return type == kTagLaunch ? NormaliseLaunchPaths(record, at) : NormaliseOnePath(record, at);
}

// The item common head, then the button routine: an 'Actn' record, or the action of an 'Hlnk'.
int32_t NormaliseAction(MemRef record, uint32_t offset) {
    {
        RecordView r(record);
        if (!r.Has(offset, kButtonHeadSize)) return -1;
        SwapItemCommonHead(r.At(offset), true);
    }
    return NormaliseButton(record, offset);
}

}  // namespace

void ResetWhiteFirstTest() {
    gTableSeen = false;
    gWhiteFirst = false;
}

bool IsWhiteFirstStack() { return gWhiteFirst; }

int32_t NormaliseButton(MemRef record, uint32_t offset) {
    const uint32_t sizeBefore = GetMemRefSize(record);
    uint32_t count = 0;
    {
        RecordView r(record);
        if (!r.Has(offset, kButtonHeadSize)) return -1;
        uint8_t* b = r.At(offset);
        const uint32_t length = Read32(b + kItemLength);
        if (length < kButtonHeadSize || !r.Has(offset, length)) return -1;
        TurnItemFields(b, kButtonFields);
        count = length - kButtonHeadSize;
    }
    // The count is of stored bytes; the walk steps by each sub-record's length after conversion.
    uint32_t at = offset + kButtonHeadSize;
    while (count > 0) {
        if (count < kSubHeadSize) return -1;
        {
            RecordView r(record);
            if (!r.Has(at, kSubHeadSize)) return -1;
            uint8_t* sub = r.At(at);
            Swap16(sub + kSubType);
            Swap32(sub + kSubLength);
            const uint32_t subLength = Read32(sub + kSubLength);
            if (subLength < kSubHeadSize || subLength > count || !r.Has(at, subLength)) return -1;
            count -= subLength;
        }
        if (NormaliseSubRecord(record, at) != 0) return -1;
        RecordView r(record);
        at += Read32(r.At(at + kSubLength));
    }
    // Path conversions may have changed the record's size; the button's length follows.
    const uint32_t growth = GetMemRefSize(record) - sizeBefore;
    RecordView r(record);
    uint8_t* length = r.At(offset + kItemLength);
    Write32(length, Read32(length) + growth);
    return 0;
}

int32_t NormaliseCard(MemRef card) {
    uint32_t at = kCardHeadSize;
    {
        RecordView r(card);
        if (!r.Has(0, kCardHeadSize)) return -1;
        uint8_t* c = r.At(0);
        Swap16At(c, {kCardId, kCardKind, kCardOwnerId, kCardFlags, kCardMenuShown, kCardDepth,
                     kCardWidth, kCardHeight, kCardArriveAction, kCardLeaveAction, kCardClickAction,
                     kCardCursor, kCardReserved56});
        Swap32(c + kCardSize);

        if (ReadS16(c + kCardKind) == kCardKindPicture) {
            if (!r.Has(kCardHeadSize, kBgHeadSize)) return -1;
            uint8_t* bg = c + kCardHeadSize;
            Swap16At(bg, {kBgTag, kBgFormat, kBgFlags});
            Swap32At(bg, {kBgLength, kBgTableSize});
            const uint32_t bgLength = Read32(bg + kBgLength);
            const uint32_t tableSize = Read32(bg + kBgTableSize);
            if (bgLength < kBgHeadSize || !r.Has(kCardHeadSize, bgLength)) return -1;
            if (tableSize > bgLength - kBgHeadSize) return -1;
            if (tableSize != 0 && tableSize < kColorTableMin) return -1;
            if (Read16(bg + kBgFormat) == kBgFormatPixPak) {
                if (bgLength - kBgHeadSize - tableSize < kImageHeadMin) return -1;
                Swap32At(bg + kBgTable + tableSize, {kImageField1, kImageField2});
            }
            // The table stays big-endian in memory, so the entry is read as it stands.
            if (!gTableSeen && tableSize != 0) {
                gWhiteFirst = Read16(bg + kBgFirstRed) == kWhite &&
                              Read16(bg + kBgFirstGreen) == kWhite && Read16(bg + kBgFirstBlue) == kWhite;
                gTableSeen = true;
            }
            at += bgLength;
        }
        if (!r.Has(at, 2)) return -1;
        Swap16(c + at);
    }
    for (;;) {
        int16_t kind = 0;
        {
            RecordView r(card);
            uint8_t* item = r.At(at);
            kind = ReadS16(item + kItemKind);
            if (kind == 0) return 0;
            if (!r.Has(at, kItemCommonHeadSize)) return -1;
            SwapItemCommonHead(item, false);
            const uint32_t length = Read32(item + kItemLength);
            if (length < kItemCommonHeadSize || !r.Has(at, length)) return -1;
        }
        int32_t result = 0;
        if (kind == kItemKindGraphic) {
            result = NormaliseGraphic(card, at);
        } else if (kind == kItemKindButton) {
            result = NormaliseButton(card, at);
        } else if (kind == kItemKindText) {
            result = NormaliseTextField(card, at);
        }
        if (result != 0) return -1;
        RecordView r(card);
        // The length is read again: a converted path may have changed it.
        const uint32_t length = Read32(r.At(at + kItemLength));
        if (!r.Has(at, length) || !r.Has(at + length, 2)) return -1;
        at += length;
        Swap16(r.At(at));
    }
}

int32_t NormaliseActn(MemRef record) { return NormaliseAction(record, 0); }

int32_t NormaliseHlnk(MemRef record) {
    uint32_t action = 0;
    bool hasAction = false;
    {
        RecordView r(record);
        if (!r.Has(0, kHlnkText)) return -1;
        uint8_t* h = r.At(0);
        const uint32_t padLength = ReadBE16(h + kHlnkPadLength);
        const uint32_t textLength = ReadBE16(h + kHlnkTextLength);
        if (!r.Has(kHlnkText, textLength)) return -1;
        hasAction = (h[kHlnkHasAction] | h[kHlnkHasAction + 1]) != 0;
        action = kHlnkText + padLength + textLength;
        if (hasAction && !r.Has(action, kButtonHeadSize)) return -1;

        Swap16At(h, {kHlnkLinkId, kHlnkFieldId, kHlnkPadLength, kHlnkTextLength});
        const uint8_t displaced = h[kHlnkStoredText + textLength];
        std::memmove(h + kHlnkText, h + kHlnkStoredText, textLength);
        h[kHlnkDisplacedByte] = displaced;
    }
    return hasAction ? NormaliseAction(record, action) : 0;
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Stack, ResetWhiteFirstTest);
}  // namespace
