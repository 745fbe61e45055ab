// The document: the stack in memory. One stack at a time, module-level, as the system has it.
#pragma once

#include <cstdint>
#include <string>

#include "memory/MemRef.h"

inline constexpr uint32_t kConvertedVersion = 1;  // the version was raised at load
inline constexpr uint32_t kConvertedDepth = 2;    // the colour depth changed at load

struct Document {
    MemRef stackHeader = 0;  // native StackHeader, 128 bytes; always one while the program runs
    MemRef cardList = 0;     // 16-byte rows in card order; the first word is the card's MemRef
    uint32_t storeRef = 0;
    bool hasFile = false;  // read from or saved to a file
    uint32_t convertedFlags = 0;
    bool dirty = false;
    std::string stackName;  // Windows-1252, shown in the title
    bool isHomeStack = false;
    int16_t homeCardId = 0;
    MemRef currentCard = 0;
    int16_t currentCardId = 0;
    // Settings taken out of the header when a stack opens.
    bool autoSave = false;
    bool autoTimers = true;
    bool ignoreExtraClicks = false;
    bool showCardNumber = false;  // kept from the previous stack for a new one
    // The presentation settings: what fills the screen behind the window, and whether the window
    // has a title bar and frame (bit 0; the program starts in the framed window).
    int16_t presentationMode = 0;
    uint16_t windowFlags = 1;
    bool stackMade = false;  // a new stack was made in this process
    // The program's current card size and depth: the open stack's, or the defaults at start.
    int16_t cardWidth = 512;
    int16_t cardHeight = 342;
    int16_t depth = 8;
    // The menu bar is on; each card remembers this when it is left.
    int16_t menuShown = 1;
    // A flow that needs the stack on disk is waiting for the save (the stricter question).
    bool saveNeededToContinue = false;
};

Document& GetDocument();
// Runs the stack's leave action, then frees header, cards and store: the document is empty after
// it (settings stay).
void CloseStack();
// Frees the stack and closes every record store without running anything: the document as at
// the program's start, for a test that starts clean.
void ResetDocument();

// Writes the current settings into the current card, and its picture if it was changed.
void StoreCurrentCard();

int16_t CardCount();
MemRef GetCardByPosition(int32_t position);           // 1-based; 0 if out of range
int32_t InsertCardAt(int32_t position, MemRef card);  // 0-based insertion point
