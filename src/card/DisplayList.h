// The DisplayList: one live record per item shown on the current card, in drawing order (later
// records lie on top). Hit testing, hover, presses and drawing work on these records, never on the
// stored chunks.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "gfx/BitMask.h"
#include "gfx/Region.h"
#include "gfx/Surface.h"
#include "memory/MemRef.h"
#include "text/StyledText.h"
#include "text/TextRecord.h"

struct DisplayItem {
    DisplayItem() = default;
    ~DisplayItem();  // frees the MemRefs below
    DisplayItem(const DisplayItem&) = delete;
    DisplayItem& operator=(const DisplayItem&) = delete;

    std::unique_ptr<DisplayItem> next;
    int16_t type = 0;  // 16 graphic, 48 button, 96 text field
    int16_t id = 0;
    Region region;  // window coordinates; hit testing and the items' clip
    bool hasRegion = false;
    Rect rect;
    uint16_t flags = 0;   // a copy of the chunk's itemFlags
    bool hidden = false;  // set while an action hides the item: it isn't drawn
    uint16_t cursorId = 0;

    // Buttons.
    int16_t shape = 0;
    int16_t textColor = 0;  // 0-based palette indices
    int16_t fillColor = 0;
    bool showName = false;
    bool hiliteOnPress = true;
    bool showIcon = false;
    MemRef icon = 0;  // private copy of the Icon record; 0 none
    std::string name;

    // Picture buttons (shapes 5-7) and transparent graphics: the hit mask, whose bit (0, 0) stands
    // at rect's corner, and its inverse.
    BitMask mask;
    BitMask inverseMask;
    bool hasMask = false;

    // Graphics.
    MemRef bitmap = 0;             // display DibImage
    MemRef transparentBitmap = 0;  // display DibImage whose zero pixels are see-through; 0 none
    BitMask outline;               // the inner rim of the transparent picture's shape
    uint16_t frameColor = 0;       // 0-based
    uint16_t frameWidth = 0;
    int16_t actionId = 0;  // graphic and text field: the click's 'Actn' id

    // Text fields: the document of the card's text, laid out in `textArea`, the rectangle less
    // the frame, the scroll bar and the margin.
    uint16_t viewFlags = 0;
    int16_t backColor = -1;  // 0-based; -1 white
    bool transparent = false;
    StyledDocument document;
    TextLayout layout;
    Rect textArea;
    int32_t thumbOffset = 0;  // the scroll bar's thumb, in pixels below the upper arrow
    int32_t scrollValue = 0;  // how far the text is scrolled up: the top of the line at the top
    int8_t pressedArrow = 0;  // 1 the upper arrow is held down, 2 the lower
    int32_t ghostTop = -1;    // the outline of a thumb being dragged, in the window; -1 none
    // The selection, offsets in the document's text; shown inverted while the field is the active one.
    size_t selStart = 0, selEnd = 0;
    // Hot words shown inverted while they flash, offsets in the text; none when equal.
    size_t flashStart = 0, flashEnd = 0;
    // The text or its styles changed since they were last written into the card.
    bool dirty = false;
    // The card whose chunk the field shows (the group's card for a shared field), and the runs
    // its record held: writing back keeps what of them our fonts can't show.
    MemRef chunkCard = 0;
    std::vector<StyleRun> storedRuns;
};

inline constexpr int32_t kMaxListPosition = 9999;

DisplayItem* DisplayListHead();
// Links `item` after `position` - 1 records from the head (position from 1 at the bottom), or at
// the top for -1; the count is capped at 9,999. Rebuilds the items' clip.
DisplayItem* InsertDisplayItem(std::unique_ptr<DisplayItem> item, int32_t position);
DisplayItem* FindDisplayItem(int16_t type, int16_t id);
void RemoveDisplayItem(DisplayItem* item);
// Frees every record; the items' clip becomes the whole display again.
void FreeDisplayList();
// direction 'C' toward the head, 'F' toward the tail; with toEnd all the way.
void MoveDisplayItem(DisplayItem* item, char direction, bool toEnd);
int32_t DisplayListLength();

// Whether the browse tool is in use; until the authoring tools arrive it always is.
bool IsBrowsing();
// The topmost record hit at (x, y); with buttonsOnly only records with the hover flag (0x80).
// `ignore` is passed over. Null outside browsing, and when nothing is hit.
DisplayItem* FindItemAt(int32_t x, int32_t y, bool buttonsOnly, const DisplayItem* ignore);
// Whether (x, y) is in the item by its kind: mask, rectangle or region.
bool ItemContainsPoint(const DisplayItem& item, int32_t x, int32_t y);

// The display less the shapes of every record with a region.
void CreateClipRegion();
const Region& GetItemsClip();
// The items' clip as the whole display.
void FreeItemsClip();
// A mask of screen size, clear, with every item's shape set: graphics and picture buttons by
// exclusive-or of their mask, other buttons by their region, text fields as rectangles.
BitMask MakeItemsMask();

// Live records for stored chunks: the native chunk at `offset` of `card`. `position` as for
// InsertDisplayItem. Each rebuilds the items' clip; null when the chunk can't be read, and the item
// is then neither drawn nor hit.
// The common head of the chunk at `offset`, checked against the card: kind, id, rectangle, flags.
bool ReadItemHead(MemRef card, uint32_t offset, uint32_t headSize, DisplayItem* item);
// The name in an item head's length-prefixed field of `fieldBytes`; the live name also ends at a
// zero byte.
std::string StoredItemName(const uint8_t* field, uint32_t fieldBytes);
DisplayItem* AddGraphicNode(MemRef card, uint32_t offset, int32_t position);
DisplayItem* AddButtonNode(MemRef card, uint32_t offset, int32_t position);
DisplayItem* AddTextNode(MemRef card, uint32_t offset, int32_t position);

// Fills a text field's record from its chunk: flags, colours and the text to show on the current
// card, laid out. A text that can't be read leaves the field empty.
void LoadTextField(DisplayItem* item, MemRef card, uint32_t offset);
// Draws a text field: its fill (none when transparent), its frame, then its text, clipped to the
// field.
void DrawTextField(Surface& target, const Clip& clip, const DisplayItem& item, const uint32_t* colors);
// Where a field's text and whatever marks it (the selection, a hot word's flash) may show: inside
// its frame and left of its scroll bar, never over either.
Rect FieldTextClip(const DisplayItem& item);

// A field's scroll bar: our own arrows at its ends and, in a field taller than 3.5 arrows, a thumb
// at `thumbOffset` between them.
inline constexpr int32_t kFieldScrollBarWidth = 16;
Rect FieldScrollBarRect(const DisplayItem& item);
// Arrows are as tall as the bar is wide, or share a short bar between them.
int32_t FieldArrowHeight(const DisplayItem& item);
bool FieldHasThumb(const DisplayItem& item);
void DrawFieldScrollBar(Surface& target, const Clip& clip, const DisplayItem& item);

// Draws a graphic record into `target`: stretched to its rectangle with a frame, or through its
// shape with the rim in the frame colour. `colors`: the 256 colours of the palette in use.
void DrawGraphicNode(Surface& target, const Clip& clip, const DisplayItem& item,
                     const uint32_t* colors);

// A mask of the picture's size in which the inner rim of its shape, `width` pixels deep, is set;
// a pixel is of the shape when it isn't zero (an index, a 16-bit word, or a colour). Empty for an
// image that isn't one.
BitMask MakeOutlineMask(MemRef dib, int32_t width);
// The picture's shape: its non-zero pixels set.
BitMask MakeShapeMask(MemRef dib);

// Module state, for tests and for the card's life.
void ResetDisplayList();
