// The item walk: what a card shows is the shared items of its group's owner card, then its own.
#include "stack/CardList.h"
#include "stack/CardRecord.h"

namespace {

void EnterCard(ItemWalker* walker, MemRef card) {
    walker->card = card;
    walker->position = FirstItemOffset(card);
    walker->onStartCard = card == walker->startCard;
    walker->sharedOnly = !walker->onStartCard;
}

// At the end of a card's chain: from the owner card on to the start card, else the walk is over.
bool MoveOn(ItemWalker* walker) {
    if (!walker->onStartCard && walker->startCard && IsMemRef(walker->startCard)) {
        EnterCard(walker, walker->startCard);
        return true;
    }
    walker->finished = true;
    return false;
}

}  // namespace

void BeginItemWalk(ItemWalker* walker, MemRef card, bool followGroup) {
    *walker = ItemWalker{};
    if (!card || !IsMemRef(card) || GetMemRefSize(card) < kCardHeadSize) return;
    walker->startCard = card;
    walker->startCardId = GetCardId(card);
    walker->finished = false;
    MemRef first = card;
    if (followGroup) {
        // A dead owner leaves the card with its own items only.
        if (MemRef owner = GetCardById(GetGroupOwnerId(card))) first = owner;
    }
    EnterCard(walker, first);
}

bool NextItem(ItemWalker* walker, MemRef* card, uint32_t* offset, bool stopAtCardEnd) {
    while (!walker->finished) {
        ChunkHead head;
        bool found = false;
        if (IsMemRef(walker->card)) {
            const uint32_t size = GetMemRefSize(walker->card);
            MemRefLock lock(walker->card);
            found = lock && ReadChunkHead(lock.data(), size, walker->position, &head);
        }
        if (!found) {
            if (!MoveOn(walker) || stopAtCardEnd) return false;
            continue;
        }
        const uint32_t at = walker->position;
        walker->position += head.length;
        if (head.flags & kItemFlagWalkHidden) continue;
        if (walker->sharedOnly && !(head.flags & kItemFlagShared)) continue;
        *card = walker->card;
        *offset = at;
        return true;
    }
    return false;
}

void EndItemWalk(ItemWalker* walker) {
    *walker = ItemWalker{};
}
