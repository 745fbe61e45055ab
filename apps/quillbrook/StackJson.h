// The words of the stack JSON that `quillbrook info --json` prints and `quillbrook build` reads back:
// the item head fields known by name, and the reserved stretches of the heads that no field covers.
// One table for both sides, so that a name printed is always a name the builder takes.
#pragma once

#include <cstdint>

#include "stack/CardRecord.h"
#include "stack/SubRecord.h"

struct NamedItemField {
    int16_t kind;
    const char* key;
    uint32_t offset;
    uint32_t width;  // 2 or 4 bytes
};

// Printed in this order, behind the item's name; a named field wins over the same offset in `fields`.
inline constexpr NamedItemField kNamedItemFields[] = {
    {kItemKindGraphic, "action", kGraphicAction, 2},
    {kItemKindGraphic, "pictureSize", kGraphicPictureSize, 4},
    {kItemKindButton, "destination", 16, 2},
    {kItemKindButton, "transition", 18, 2},
    {kItemKindButton, "actionFlags", 20, 2},
    {kItemKindButton, "shape", kButtonShape, 2},
    {kItemKindButton, "buttonFlags", kButtonFlags, 2},
    {kItemKindButton, "textColor", kButtonTextColor, 2},
    {kItemKindButton, "fillColor", kButtonFillColor, 2},
    {kItemKindButton, "iconId", kButtonIconId, 2},
    {kItemKindButton, "cursorId", kButtonCursorId, 2},
    {kItemKindText, "action", kTextAction, 2},
};

// Head bytes of each item kind that neither the common head, the name nor a numeric field covers.
// They are kept raw; the JSON carries them as hex only when they are not all zero.
struct ReservedArea {
    int16_t kind;
    const char* key;
    uint32_t offset;
    uint32_t size;
};

inline constexpr ReservedArea kItemReservedAreas[] = {
    {kItemKindGraphic, "reserved26", 26, 2},
    {kItemKindGraphic, "reserved64", 64, 16},
    {kItemKindButton, "reserved72", 72, 2},
    {kItemKindButton, "reserved82", 82, 54},
    {kItemKindText, "reserved90", 90, 12},
    {kItemKindText, "reserved106", 106, 22},
};
static_assert(82 + 54 == kButtonHeadSize && 64 + 16 == kGraphicHeadSize && 106 + 22 == kTextHeadSize);

// Raw stretches of the card head and the background head, by the format's own names.
inline constexpr ReservedArea kCardReservedAreas[] = {
    {0, "reserved12", kCardReserved12, 4},
    {0, "reserved24", 24, 8},
    {0, "reserved58", 58, 38},
};
static_assert(58 + 38 == kCardHeadSize);
inline constexpr ReservedArea kBackgroundReservedAreas[] = {
    {0, "reserved4", 4, 6},
    {0, "reserved20", 20, 4},
};
static_assert(20 + 4 == kBgHeadSize);

inline constexpr uint32_t kHdrReserved80Size = 48;
inline constexpr uint32_t kBlobHeadReserved52 = 52;
inline constexpr uint32_t kBlobHeadReserved52Size = 16;
