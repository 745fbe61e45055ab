#include "stack/CardList.h"

#include <algorithm>

#include "base/ByteOrder.h"
#include "messages/Alert.h"
#include "messages/StringIds.h"
#include "stack/CardRecord.h"
#include "stack/Names.h"

namespace {

// The longest name a card's head can hold behind its length byte at offset 32.
inline constexpr uint32_t kCardNameRoom = kCardHeadSize - kCardName - 1;

// A 16-bit field of a card's head; 0 when the MemRef can't hold a head.
uint16_t HeadField(MemRef card, uint32_t offset) {
    if (!card || !IsMemRef(card) || GetMemRefSize(card) < kCardHeadSize) return 0;
    MemRefLock lock(card);
    return lock ? Read16(lock.data() + offset) : 0;
}

// Where a chunk of `kind` keeps its name, and how many bytes the field has.
bool NameField(int16_t kind, uint32_t* offset, uint32_t* size) {
    switch (kind) {
        case kItemKindGraphic:
            *offset = kGraphicName;
            *size = 16;
            return true;
        case kItemKindButton:
            *offset = kButtonName;
            *size = 32;
            return true;
        case kItemKindText:
            *offset = kTextName;
            *size = 16;
            return true;
        default:
            return false;
    }
}

bool IsBlank(uint8_t c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// Compares the item's name, clipped to its field and trimmed if asked, with `name`.
bool ItemNameMatches(const uint8_t* field, uint32_t fieldSize, const uint8_t* name, bool trim) {
    uint32_t first = 1;
    uint32_t end = 1 + (field[0] < fieldSize ? field[0] : fieldSize - 1);
    if (trim) {
        while (first < end && IsBlank(field[first])) ++first;
        while (end > first && IsBlank(field[end - 1])) --end;
    }
    uint8_t text[256];
    text[0] = static_cast<uint8_t>(end - first);
    for (uint32_t i = first; i < end; ++i) text[1 + i - first] = field[i];
    return EqualNames(text, name);
}

}  // namespace

int32_t GetCardPosition(MemRef card) {
    if (!card) return 0;
    for (int32_t i = 1; i <= CardCount(); ++i) {
        if (GetCardByPosition(i) == card) return i;
    }
    return 0;
}

MemRef GetCardById(int16_t id) {
    for (int32_t i = 1; i <= CardCount(); ++i) {
        MemRef card = GetCardByPosition(i);
        if (GetMemRefSize(card) >= kCardHeadSize && GetCardId(card) == id) return card;
    }
    return 0;
}

MemRef GetCardByName(const uint8_t* name) {
    if (!name || name[0] > kCardNameRoom) return 0;
    for (int32_t i = 1; i <= CardCount(); ++i) {
        MemRef card = GetCardByPosition(i);
        if (GetMemRefSize(card) < kCardHeadSize) continue;
        MemRefLock lock(card);
        // A name whose length byte runs past the head can't be the one asked for.
        if (lock && EqualNames(name, lock.data() + kCardName)) return card;
    }
    return 0;
}

int16_t GetCardId(MemRef card) {
    return static_cast<int16_t>(HeadField(card, kCardId));
}
int16_t GetCardKind(MemRef card) {
    return static_cast<int16_t>(HeadField(card, kCardKind));
}
uint16_t GetCardFlags(MemRef card) {
    return HeadField(card, kCardFlags);
}

int16_t GetGroupOwnerId(MemRef card) {
    if (GetCardKind(card) != kCardKindGroupMember) return GetCardId(card);
    int16_t id = static_cast<int16_t>(HeadField(card, kCardOwnerId));
    // A chain longer than the list has a loop in it: the last id reached is the answer.
    for (int32_t steps = 0; steps <= CardCount(); ++steps) {
        MemRef owner = GetCardById(id);
        if (!owner || GetCardKind(owner) == kCardKindPicture) return id;
        id = static_cast<int16_t>(HeadField(owner, kCardOwnerId));
    }
    return id;
}

bool IsGroupCard(MemRef card) {
    const int16_t kind = GetCardKind(card);
    if (kind == kCardKindGroupMember) return true;
    if (kind != kCardKindPicture) return false;
    const int16_t id = GetCardId(card);
    for (int32_t i = 1; i <= CardCount(); ++i) {
        MemRef other = GetCardByPosition(i);
        if (other != card && GetCardKind(other) == kCardKindGroupMember &&
            static_cast<int16_t>(HeadField(other, kCardOwnerId)) == id) {
            return true;
        }
    }
    return false;
}

bool ReadChunkHead(const uint8_t* card, uint32_t size, uint32_t offset, ChunkHead* head,
                   uint32_t headSize) {
    headSize = std::max(headSize, kItemCommonHeadSize);
    if (offset > size || size - offset < 2) return false;
    const uint8_t* c = card + offset;
    head->kind = ReadS16(c + kItemKind);
    if (head->kind == 0 || size - offset < headSize) return false;
    head->id = ReadS16(c + kItemId);
    head->left = ReadS16(c + kItemRect);
    head->top = ReadS16(c + kItemRect + 2);
    head->right = ReadS16(c + kItemRect + 4);
    head->bottom = ReadS16(c + kItemRect + 6);
    head->length = Read32(c + kItemLength);
    head->flags = Read16(c + kItemFlags);
    return head->length >= headSize && head->length <= size - offset;
}

uint32_t FirstItemOffset(MemRef card) {
    // Only a card of kind 1 has a background chunk: the reader turned no other card's bytes as one.
    if (GetCardKind(card) != kCardKindPicture) return kCardHeadSize;
    const uint32_t size = GetMemRefSize(card);
    if (size < kCardHeadSize + kBgHeadSize + kCardTailSize) return kCardHeadSize;
    MemRefLock lock(card);
    const uint32_t length = Read32(lock.data() + kCardHeadSize + kBgLength);
    // A background that leaves the card leaves no room for items: the walk finds the tail's 0.
    if (length < kBgHeadSize || length > size - kCardHeadSize - kCardTailSize) {
        return size - kCardTailSize;
    }
    return kCardHeadSize + length;
}


bool FindItemOnCard(int16_t kind, int16_t id, MemRef card, uint32_t* offset) {
    if (!card || !IsMemRef(card)) return false;
    uint32_t at = FirstItemOffset(card);
    const uint32_t size = GetMemRefSize(card);
    MemRefLock lock(card);
    ChunkHead head;
    for (; ReadChunkHead(lock.data(), size, at, &head); at += head.length) {
        if (head.kind == kind && (head.id == id || head.id == 0)) {
            *offset = at;
            return true;
        }
    }
    return false;
}

bool FindItem(int16_t kind, int16_t id, MemRef* card, uint32_t* offset) {
    const MemRef current = GetDocument().currentCard;
    if (current && GetCardPosition(current) != 0 && FindItemOnCard(kind, id, current, offset)) {
        *card = current;
        return true;
    }
    for (int32_t i = 1; i <= CardCount(); ++i) {
        MemRef other = GetCardByPosition(i);
        if (other != current && FindItemOnCard(kind, id, other, offset)) {
            *card = other;
            return true;
        }
    }
    return false;
}

bool FindItemByName(int16_t kind, const uint8_t* name, MemRef* card, uint32_t* offset, bool trim) {
    uint32_t fieldOffset = 0;
    uint32_t fieldSize = 0;
    if (!name || !NameField(kind, &fieldOffset, &fieldSize)) return false;
    for (int32_t i = 1; i <= CardCount(); ++i) {
        ItemWalker walker;
        BeginItemWalk(&walker, GetCardByPosition(i), false);
        MemRef itemCard = 0;
        uint32_t at = 0;
        while (NextItem(&walker, &itemCard, &at, false)) {
            MemRefLock lock(itemCard);
            const uint8_t* chunk = lock.data() + at;
            if (ReadS16(chunk + kItemKind) != kind ||
                Read32(chunk + kItemLength) < fieldOffset + fieldSize) {
                continue;
            }
            if (ItemNameMatches(chunk + fieldOffset, fieldSize, name, trim)) {
                EndItemWalk(&walker);
                *card = itemCard;
                *offset = at;
                return true;
            }
        }
        EndItemWalk(&walker);
    }
    return false;
}

int16_t ItemPosition(MemRef card, int16_t kind, int16_t id) {
    if (!card || !IsMemRef(card)) return 0;
    uint32_t at = FirstItemOffset(card);
    const uint32_t size = GetMemRefSize(card);
    MemRefLock lock(card);
    ChunkHead head;
    int16_t position = 0;
    for (; ReadChunkHead(lock.data(), size, at, &head); at += head.length) {
        if (head.kind != kind) continue;
        ++position;
        if (head.id == id) return position;
    }
    return 0;
}

bool InsertCard(MemRef card, int32_t position) {
    const int32_t count = CardCount();
    if (count == 0 || position < 0) position = 0;
    if (position > count) position = count;
    if (InsertCardAt(position, card) != 0) {
        Alert(kAlertNoMemory);
        return true;
    }
    return false;
}
