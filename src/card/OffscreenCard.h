// The offscreen card: ScreenBitmap holds the clean background of the current card and the
// DisplayList the items on it. Any rectangle of the window can be rebuilt from the two at any
// time, and that is all painting does. DrawCard fills both for a new card and shows the result.
#pragma once

#include <cstdint>

#include "gfx/Surface.h"
#include "memory/MemRef.h"

struct DisplayItem;

// ScreenBitmap has two spare rows below the card, which the picture codec relies on.
inline constexpr int32_t kScreenSpareRows = 2;

struct OffscreenState {
    Surface screen;  // ScreenBitmap: ScreenWidth x ScreenHeight + 2, in display colours
    bool hasScreen = false;
    int32_t screenWidth = 0, screenHeight = 0, screenDepth = 0;
    Rect cardRect;            // the card in the window
    bool showObjects = true;  // false while "Hide Objects" is in force
    bool showHiddenButtons = false, showHiddenGraphics = false, showHiddenText = false;
    bool itemBorders = false;           // the authoring option that outlines buttons of shapes 4-7
    DisplayItem* focusField = nullptr;  // the field to get the input focus once the card shows
    bool drawingCard = false;           // items are being drawn into ScreenBitmap by DrawCard
    bool repainting = false;            // items are being drawn onto the window by RepaintRect
};
OffscreenState& GetOffscreenState();
// No ScreenBitmap, an empty DisplayList, items shown, hidden items not.
void ResetOffscreenState();

// A white ScreenBitmap of width x height + 2 for pictures of `depth` bits, and the items' clip as
// the whole of it; CardRect becomes (0, 0, width, height). False, after the message when `report`
// is set, for a size the bitmap can't have.
bool InitDataBase(int32_t width, int32_t height, int32_t depth, bool report);
void FreeScreenBitmap();

// Draws the records whose rectangles meet `area` into `target`, clipped to `area`. Without a
// boundary every record draws; with one and `stopAtBoundary` only those under it, without
// `stopAtBoundary` only those over it (none if it isn't in the list).
void DrawItems(Surface& target, const Rect& area, const DisplayItem* boundary, bool stopAtBoundary);
// The card's items as live records, bottom to top, leaving out hidden ones unless shown.
void BuildDisplayList(MemRef card);
// Composes the card offscreen (background, then items), shows it by `transition`, and leaves
// ScreenBitmap holding the bare background and the DisplayList its items.
void DrawCard(MemRef card, int16_t transition, int16_t speed, bool arriving);
void RedrawCurrentCard(bool arriving);
// Shows (or hides) one item of the current card, or of its picture owner, with a transition over
// its rectangle; `asShown` 1 takes the show-hidden setting of its kind and copies at once.
void RedrawItem(int16_t type, int16_t id, int16_t transition, int16_t speed, int32_t asShown);
// Rebuilds a rectangle of the window from the offscreen card and presents it: the answer to every
// paint. Without a ScreenBitmap the window is white.
void RepaintRect(int32_t left, int32_t top, int32_t right, int32_t bottom);

// Cut to (0, 0, ScreenWidth, ScreenHeight).
Rect ClampRect(const Rect& r);
// Moved inside that area without resizing it (the left and top edges win for a larger one).
Rect KeepRectOnScreen(const Rect& r);
