// The card list by position, id and name; the group rules of cards; finding items on cards; and
// the item walk that honours groups. Positions are 1-based everywhere.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"  // CardCount, GetCardByPosition, InsertCardAt

int32_t GetCardPosition(MemRef card);  // 0 when the card is not in the list
MemRef GetCardById(int16_t id);        // 0 if no such card
// `name` is length-prefixed; compared with EqualNames; the first match.
MemRef GetCardByName(const uint8_t* name);
// Fields of a card's head; 0 for a card that is no card (a MemRef too small for a head).
int16_t GetCardId(MemRef card);
int16_t GetCardKind(MemRef card);
uint16_t GetCardFlags(MemRef card);
// The card's own id unless it is of kind 3: then the owner chain is followed to a kind 1 card, or
// to a dead link, whose id is the result (65535 for a member without an owner).
int16_t GetGroupOwnerId(MemRef card);
bool IsGroupCard(MemRef card);

// The head of the chunk at `offset` of a card of `size` bytes. False at the end of the chain, and
// for a chunk whose head or length leaves the card.
struct ChunkHead {
    int16_t kind = 0;
    int16_t id = 0;
    int16_t left = 0, top = 0, right = 0, bottom = 0;  // native
    uint32_t length = 0;
    uint16_t flags = 0;
};
// The one reader of item chunks: the head of the chunk at `offset` of a native card of `size`
// bytes. False at the chain's end (kind 0), and when the chunk's head (at least `headSize` bytes)
// or its length would leave the card.
bool ReadChunkHead(const uint8_t* card, uint32_t size, uint32_t offset, ChunkHead* head,
                   uint32_t headSize = kItemCommonHeadSize);

// Offset of the item chain in a card.
uint32_t FirstItemOffset(MemRef card);
// The first chunk of `kind` whose id is `id`, or whose id is 0.
bool FindItemOnCard(int16_t kind, int16_t id, MemRef card, uint32_t* offset);
// The current card first, then the others in order.
bool FindItem(int16_t kind, int16_t id, MemRef* card, uint32_t* offset);
// Through every card with the item walker; `name` length-prefixed; `trim` drops blanks at both
// ends of the item's name first.
bool FindItemByName(int16_t kind, const uint8_t* name, MemRef* card, uint32_t* offset, bool trim);
int16_t ItemPosition(MemRef card, int16_t kind, int16_t id);

// Grows the list by a row before the 0-based row `position` (the first row always goes first).
// True on failure, after alert 2224.
bool InsertCard(MemRef card, int32_t position);

// The walk over the items a card shows: with `followGroup` the group owner's shared items first,
// then the card's own. NextItem skips chunks with the walk-hidden bit; shared chunks always come,
// others only while on the start card. False when the walk has finished.
struct ItemWalker {
    MemRef card = 0;        // the card being walked now
    uint32_t position = 0;  // offset of the next chunk in it
    bool onStartCard = false;
    bool sharedOnly = false;  // on another card than the start card: only shared chunks come
    int16_t startCardId = 0;
    MemRef startCard = 0;
    bool finished = true;
};
void BeginItemWalk(ItemWalker* walker, MemRef card, bool followGroup);
// *card and *offset name the chunk found. With `stopAtCardEnd` the end of each card's chain also
// answers false; a further call goes on with the next card of the walk.
bool NextItem(ItemWalker* walker, MemRef* card, uint32_t* offset, bool stopAtCardEnd);
void EndItemWalk(ItemWalker* walker);
