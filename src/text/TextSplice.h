// Writing a field's text back into its card: the record of one card (or of every card) is made
// afresh and put in place of the old one inside the text chunk, and the chunk and the card grow or
// shrink around it, the chunks behind it moving with the rest of the card.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"
#include "text/TextRecord.h"

// Puts `record` into the native text chunk at `chunkOffset` of `card`: in place of the sub-record
// of `record.cardId` for a per-card field, else of the first. A per-card field's card without a
// record of its own gets a new one behind the others; a field for every card keeps its record's
// card id and flags. kResultNoMemory when the card can't grow or shrink (it is then unchanged),
// kResultFailed when the chunk doesn't lie in the card.
int32_t SpliceTextRecord(MemRef card, uint32_t chunkOffset, bool perCard, const TextRecord& record, bool macCharset);
