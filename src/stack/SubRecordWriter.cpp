// The button writer: a button chunk, an 'Actn' record or the action block of an 'Hlnk' record,
// with its chain of action sub-records, out to the stored form.
//
// The writer's rules per sub-record type are its own and not the reader's mirror: it turns offset
// 2 and the rectangle of some types that the reader left alone, keeps offset 18 of a laser disc
// record native and cuts that record to its head, and drops every type it doesn't know while the
// chunk's length stays. Stacks in the field have been through exactly these rules, so they stay.
#include <cstring>

#include "base/ByteOrder.h"
#include "stack/CardRecord.h"
#include "stack/ItemFields.h"
#include "stack/RecordEmitter.h"
#include "stack/SubRecord.h"

namespace {


enum class SubBody {
    AsItStands,
    Animation,    // the frame-delta head and its frames
    OnePath,      // the whole body is one file reference
    LaunchPaths,  // the document's reference, then perhaps the program's
    HeadOnly,     // only the 96-byte head goes out
    IconSizes,
};

// Byte offsets in the 32-byte head, as bits.
template <typename... T>
constexpr uint32_t Offsets(T... offsets) {
    return (0u | ... | (1u << offsets));
}

struct SubRule {
    uint16_t type;
    uint32_t words;  // Offsets(...) turned as 16-bit
    uint32_t longs;  // Offsets(...) turned as 32-bit
    bool rect;       // the rectangle at 4
    SubBody body;
};

// The types the writer emits, and what it turns in each. Offset 0 and 12 are the walker's on
// reading, but the writer's own here.
constexpr SubRule kSubRules[] = {
    {kTagNba, Offsets(kSubType, kSubId, kSubFlags, kSubWord16), Offsets(kSubLength), true, SubBody::AsItStands},
    {kTagAnimation, Offsets(kSubType, kSubFlags), Offsets(kSubLength), true, SubBody::Animation},
    {kTagLaunch, Offsets(kSubType, kSubId, kSubFlags, kSubWord16), Offsets(kSubLength, kSubDocumentLength), true,
     SubBody::LaunchPaths},
    {kTagOtherStack, Offsets(kSubType, kSubId, kSubFlags), Offsets(kSubLength), true, SubBody::OnePath},
    {kTagLogo, Offsets(kSubType, kSubId, kSubFlags), Offsets(kSubLength), true, SubBody::AsItStands},
    {kTagSoundFile, Offsets(kSubType, kSubFlags, kSubWord16, kSubWord24, kSubVolume), Offsets(kSubLength), false,
     SubBody::OnePath},
    {kTagStackSound, Offsets(kSubType, kSubFlags, kSubWord16, kSubWord24, kSubVolume), Offsets(kSubLength), false,
     SubBody::AsItStands},
    {kTagMovie, Offsets(kSubType, kSubFlags, kSubWord20), Offsets(kSubLength, kSubWord16), true, SubBody::OnePath},
    {kTagLaserDisc, Offsets(kSubType, kSubId, kSubFlags, kSubWord24, kSubWord20), Offsets(kSubLength), true,
     SubBody::HeadOnly},
    {kTagWriterOnly, Offsets(kSubType, kSubId, kSubFlags), Offsets(kSubLength), true, SubBody::AsItStands},
    {kTagIcon, Offsets(kSubType, kSubFlags), Offsets(kSubLength), false, SubBody::IconSizes},
};

const SubRule* FindSubRule(uint16_t type) {
    for (const SubRule& rule : kSubRules) {
        if (rule.type == type) return &rule;
    }
    return nullptr;
}

void StoreSubHead(uint8_t* head, const SubRule& rule) {
    for (uint32_t o = 0; o < kSubHeadSize; ++o) {
        if ((rule.words >> o) & 1) Swap16(head + o);
        if ((rule.longs >> o) & 1) Swap32(head + o);
    }
    if (rule.rect) SwapRect(head + kSubRect);
}

int32_t EmitAnimation(RecordEmitter& e, const uint8_t* sub, uint32_t length) {
    if (length - kSubHeadSize < kAnimHeadSize || std::memcmp(sub + kSubHeadSize, "Sprt", 4) == 0) {
        e.Put(sub + kSubHeadSize, length - kSubHeadSize);
        return e.result();
    }
    e.PutExchanged(sub + kSubHeadSize, kAnimHeadSize, [](uint8_t* h) {
        for (uint32_t i = 0; i < kAnimHeadWords; ++i) Swap16(h + 2 * i);
    });
    const uint16_t frames = Read16(sub + kAnimFrameCount);
    uint32_t at = kAnimFrames;
    for (uint32_t i = 0; i < frames; ++i) {
        if (length - at < kFrameHeadSize) return e.Fail();
        const uint32_t frameSize = Read32(sub + at + kFrameSize);
        if (frameSize < kFrameHeadSize || frameSize > length - at) return e.Fail();
        e.PutExchanged(sub + at, kFrameHeadSize, [](uint8_t* h) {
            Swap16(h);
            Swap32(h + kFrameSize);
        });
        e.Put(sub + at + kFrameHeadSize, frameSize - kFrameHeadSize);
        at += frameSize;
    }
    // Nothing should follow the frames; if something does, it keeps the record's length.
    e.Put(sub + at, length - at);
    return e.result();
}

// Type 59: the document's reference is as long as the field at 18 says, and takes the round-up
// byte as well when no program's reference follows it. A lone byte behind it is no reference.
int32_t EmitLaunchPaths(RecordEmitter& e, const uint8_t* sub, uint32_t length) {
    const uint32_t body = length - kSubHeadSize;
    const uint32_t documentLength = Read32(sub + kSubDocumentLength);
    if (documentLength > body) return e.Fail();
    const bool program = body - documentLength > 1;
    uint32_t first = documentLength;
    if ((Read16(sub + kSubFlags) & kSubFlagOddPad) && !program && first < body) ++first;
    e.PutPath(sub + kSubHeadSize, first);
    if (program) {
        e.PutPath(sub + kSubHeadSize + first, body - first);
    } else {
        e.Put(sub + kSubHeadSize + first, body - first);
    }
    return e.result();
}

// `buttonHead` is the stored copy of the button's head, whose rectangle the icon rule takes.
int32_t EmitSubRecord(RecordEmitter& e, uint8_t* sub, uint32_t length, const uint8_t* buttonHead) {
    const SubRule* rule = FindSubRule(Read16(sub + kSubType));
    if (!rule) return 0;  // passed over: the stored chunk is shorter than its length says

    uint8_t head[kLaserDiscHeadSize];
    const uint32_t headSize = rule->body == SubBody::HeadOnly    ? kLaserDiscHeadSize
                              : rule->body == SubBody::IconSizes ? kIconHeadSize
                                                                 : kSubHeadSize;
    if (length < headSize) return e.Fail();
    std::memcpy(head, sub, headSize);
    StoreSubHead(head, *rule);
    if (rule->body == SubBody::IconSizes) {
        Swap16At(head, {kIconWidth, kIconHeight});
        std::memcpy(head + kIconLeft, buttonHead + kItemRect + 2, 2);
        std::memcpy(head + kIconTop, buttonHead + kItemRect, 2);
    }
    e.Put(head, headSize);

    switch (rule->body) {
    case SubBody::AsItStands:
        e.Put(sub + kSubHeadSize, length - kSubHeadSize);
        break;
    case SubBody::Animation:
        return EmitAnimation(e, sub, length);
    case SubBody::OnePath:
        e.PutPath(sub + kSubHeadSize, length - kSubHeadSize);
        break;
    case SubBody::LaunchPaths:
        return EmitLaunchPaths(e, sub, length);
    case SubBody::HeadOnly:
        break;
    case SubBody::IconSizes:
        e.Put(sub + kIconHeadSize, length - kIconHeadSize);
        // The sizes are the button's only while they are written; in memory they are made afresh.
        Write16(sub + kIconLeft, 0);
        Write16(sub + kIconTop, 0);
        break;
    }
    return e.result();
}

}  // namespace

int32_t EmitButton(RecordEmitter& e, uint8_t* record, uint32_t size, uint32_t offset) {
    if (offset > size || size - offset < kButtonHeadSize) return e.Fail();
    uint8_t* b = record + offset;
    const uint32_t length = Read32(b + kItemLength);
    if (length < kButtonHeadSize || length > size - offset) return e.Fail();

    uint8_t head[kButtonHeadSize];
    std::memcpy(head, b, kButtonHeadSize);
    StoreItemHead(head);
    TurnItemFields(head, kButtonFields);
    e.Put(head, kButtonHeadSize);

    for (uint32_t at = kButtonHeadSize; at < length;) {
        if (length - at < kSubHeadSize) return e.Fail();
        uint8_t* sub = b + at;
        const uint32_t subLength = Read32(sub + kSubLength);
        if (subLength < kSubHeadSize || subLength > length - at) return e.Fail();
        if (EmitSubRecord(e, sub, subLength, head) != 0) return e.result();
        at += subLength;
    }
    return e.result();
}
