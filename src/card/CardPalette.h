// The palette of a card: reading it from the picture owner's ColorTable, re-indexing a card's items
// into another palette, and the palette's part in a change of card.
#pragma once

#include <cstdint>

#include "gfx/Palette.h"
#include "memory/MemRef.h"

// The palette of the card's picture owner; null for no card, an owner of 100 bytes or fewer, or
// one without a ColorTable. The caller owns the result.
PaletteRef GetCardPalette(MemRef card);

// Re-indexes everything of the card that names a colour by index into `palette`: the two colours
// of each button, each graphic's frame colour and pixels (re-packed by rows), and through the
// sprite engine the sprite of a button's action. A picture card does the cards that share its picture first. The
// old colours are the card's palette, or CurrentPalette for a card without one. The card's own
// ColorTable is left to the caller. 0, or -1 with the card as far as it got.
int32_t ReplaceCardPalette(MemRef card, const Palette& palette);

// A change of card, before it is drawn: IncomingPalette := the card's palette, and the colours it
// shows (its own, or CurrentPalette's for a card without one) go to NoteColors.
void PrepareIncomingPalette(MemRef card);
// After the transition: IncomingPalette, if any, becomes CurrentPalette, which the display realises.
void AdoptIncomingPalette();
