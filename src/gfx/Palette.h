// Palettes: the colours that a picture's indices stand for, the palette in force, the default
// palette, and the display that the program behaves as if it had.
//
// The stack format comes from a machine whose colour index 0 is white and whose last index is
// black, and every card can bring its own 256 colours. We always draw at 32 bits; the emulated
// display depth (8, 16 or 32) decides what a palette means there:
// - at 8 bits the display realises every card's palette exactly, so no card is ever re-laid to the
//   system's order (white-first palettes stay white-first), and fades hand their colours to
//   SetAnimatedPalette;
// - at 16 bits every palette colour is what a display of 5 bits a channel shows;
// - at 32 bits a palette is only a table of names for colours.
#pragma once

#include <cstdint>
#include <memory>

#include "memory/MemRef.h"

struct PaletteEntry {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    uint8_t flags = 0;
};
inline constexpr uint8_t kPaletteReserved = 1;    // an entry a fade may animate
inline constexpr uint8_t kPaletteNoCollapse = 4;  // an entry kept apart from an equal system colour

inline constexpr uint32_t kPaletteSize = 256;
inline constexpr uint32_t kDefaultPaletteColors = 236;  // DEFPAL's share; the system's 20 follow
inline constexpr uint32_t kSystemColorCount = 20;
static_assert(kDefaultPaletteColors + kSystemColorCount == kPaletteSize);

// A platform palette: `count` entries in use, the rest zero. Whoever holds the PaletteRef owns it.
struct Palette {
    uint32_t count = 0;
    PaletteEntry entries[kPaletteSize] = {};
};
using PaletteRef = std::unique_ptr<Palette>;

// A zeroed palette of `count` entries (at most 256); null without memory.
PaletteRef NewPalette(uint32_t count);
// The same entries with flags 0, 256 slots.
PaletteRef DuplicatePalette(const Palette& palette);

// Fades hand their colours to this hook; the colours never reach the display.
using AnimatedPaletteProc = void (*)(const Palette* palette, uint32_t first, uint32_t count,
                                     const PaletteEntry* entries);
// The default hook, which does nothing: a colour fade at 8 bits is a timed pause and then the new
// colours. Kept as a function of its own so that a visible fade can take its place.
void SetAnimatedPalette(const Palette* palette, uint32_t first, uint32_t count, const PaletteEntry* entries);

// Re-indexes the sprite record of the button at `itemOffset` in `card` from one palette into
// another; the sprite engine provides it. 0 or -1.
using SpritePaletteProc = int32_t (*)(MemRef card, uint32_t itemOffset, const Palette& from, const Palette& to);

struct PaletteState {
    PaletteState();  // as at start-up: identity tables, the display showing the default palette
    PaletteRef current;   // CurrentPalette: the palette in force
    PaletteRef incoming;  // IncomingPalette: the palette of the card being drawn, null when none
    // The colours before and after the latest change of card, which drive the fades.
    PaletteEntry oldColors[kPaletteSize] = {};
    PaletteEntry newColors[kPaletteSize] = {};
    int32_t forcedDepth = 0;  // --depth; 0 follows the open stack
    // What the emulated 8-bit display has realised: the system palette.
    PaletteEntry displayColors[kPaletteSize];
    // System order to stack order and back; the identity, and nothing changes them.
    uint8_t systemToStack[kPaletteSize];
    uint8_t stackToSystem[kPaletteSize];
    AnimatedPaletteProc animate = SetAnimatedPalette;
    SpritePaletteProc remapButtonSprite = nullptr;
};
PaletteState& GetPaletteState();
// No palettes, identity tables, the display following the stack, the empty fade hook, no sprite
// re-indexing.
void ResetPaletteState();

// The display depth the program behaves as if it had: the forced one, or the open stack's own (8
// for up to 8 bits, 16 for 16, 32 above).
int32_t DisplayDepth();
// 8, 16 or 32; 0 follows the stack again. Any other value is refused with -1.
int32_t ForceDisplayDepth(int32_t depth);

// The standard system palette's entry `index` (0 to 9 and 246 to 255), as 0xRRGGBB.
uint32_t SystemColor(uint32_t index);
// The 20 reserved colours into the top of a 256-entry table in reverse order: system entry i goes
// to 255 - i, system entry 246 + i to 245 - i, flags 0. Index 255 is black, 236 white.
void AddSystemColors(PaletteEntry* entries);
// DEFPAL with flags 1 at 0 to 235 and the system colours above, as the display would take them.
void DefaultPaletteEntries(PaletteEntry* entries);
// A 256-entry palette of the default entries; null without memory.
PaletteRef LoadDefaultPalette();

// At 16 bits, each colour as the display shows it: five bits a channel, each level with its top
// bits repeated below (white stays white). At other depths nothing changes.
void AdjustPaletteForDisplay(uint32_t count, PaletteEntry* colors);
// Whether `palette` is laid out as the display's. True at every depth: the emulated 8-bit display
// realises each palette exactly.
bool IsSameAsSystem(const Palette* palette);
// At 8 bits the display takes the palette's colours; at other depths nothing happens.
void RealizePalette(const Palette& palette);
// The display's 256 colours: at 8 bits those last realised, else the standard system palette
// with DEFPAL between its two halves.
void GetSystemPaletteEntries(PaletteEntry* entries);

// Start-up: CurrentPalette from the default, copied to both colour tables and realised. 0, or -1
// after the message box "Cant create palette".
int32_t InitPalette();
// IncomingPalette if there is one, else CurrentPalette; null before InitPalette.
const Palette* PaletteInUse();
// The 256 colours pictures of 8 bits and under are drawn with: those of PaletteInUse, else the
// default palette before there is any; 0x00RRGGBB.
void ColorsInUse(uint32_t colors[kPaletteSize]);

// The entry nearest to a colour by the sum of squared channel differences; the lowest index wins
// a tie. 0 for an empty palette.
uint32_t NearestColorIndex(const PaletteEntry* entries, uint32_t count, uint8_t red, uint8_t green, uint8_t blue);
uint32_t NearestPaletteIndex(const Palette& palette, uint8_t red, uint8_t green, uint8_t blue);

// OldColors := NewColors, NewColors := the 256 `entries`.
void NoteColors(const PaletteEntry* entries);
// Step `k` of a fade (0 to 256): each colour ((256 - k) * old + k * new) / 256, flags 1, handed
// to the fade hook for CurrentPalette.
void BlendPalette(int32_t k);

// The index tables between system order and stack order.
const uint8_t* SystemToStackIndexTable();
const uint8_t* StackToSystemIndexTable();
