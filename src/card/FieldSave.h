// Writing the card's edited fields back into its records, so that what was typed outlives the
// card on show: before a card is left, before a save and before a search.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

// For each text chunk `card` shows with a live field: the field's alignment goes into the chunk;
// a field whose text comes from a file stores its first run's style in its block's style tail;
// another field that was edited has its record for this card made afresh from its document and
// spliced into the chunk (a shared field's into the group's card). The stack is marked changed
// when anything was written. When the card can't grow, alert 2238 is shown and the field keeps its
// text and stays edited; the result is then kResultNoMemory.
int32_t SaveFieldEdits(MemRef card);
