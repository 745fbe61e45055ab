// The document: the stack in memory. One stack at a time, module-level, as the system has it.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

struct Document {
    MemRef stackHeader = 0;  // native StackHeader, 128 bytes
    MemRef cardList = 0;     // 16-byte rows in card order; the first word is the card's MemRef
    uint32_t storeRef = 0;
    bool hasFile = false;
    uint32_t convertedFlags = 0;
    bool dirty = false;
};

Document& GetDocument();
// Frees header, cards and store: the document is empty after it.
void CloseStack();

int16_t CardCount();
MemRef GetCardByPosition(int32_t position);  // 1-based; 0 if out of range
int32_t InsertCardAt(int32_t position, MemRef card);  // 0-based insertion point
