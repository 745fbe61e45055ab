// A card holding one text field, for the tests of fields and what their words do.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "base/ByteOrder.h"
#include "card/DisplayList.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "text/TextRecord.h"

inline constexpr int16_t kFieldCardItemId = 9;

struct Field { Rect rect; uint16_t itemFlags, viewFlags, backColor; int16_t align; std::string text; std::vector<StyleRun> runs; };

// A run from `start` of `points` in `style` bits, the colour `rgb` and font `fontId` (0 the default).
inline StyleRun Styled(uint32_t start, uint8_t style, uint16_t points, uint32_t rgb = kBlack, uint16_t fontId = 0) {
    return {start, 0, 0, fontId, style, points, uint16_t(RedOf(rgb) * 257), uint16_t(GreenOf(rgb) * 257),
            uint16_t(BlueOf(rgb) * 257)};
}

// "Line 1" to "Line `count`", a paragraph each.
inline std::string Lines(int count) {
    std::string text;
    for (int i = 1; i <= count; ++i) text += "Line " + std::to_string(i) + (i < count ? "\r" : "");
    return text;
}

// A card holding one native text chunk with the field's record, as a loaded stack holds it.
inline MemRef FieldCard(const Field& f) {
    std::vector<uint8_t> c(kTextHeadSize, 0);
    const std::pair<uint32_t, int32_t> words[] = {
        {kItemKind, kItemKindText}, {kItemId, kFieldCardItemId}, {kItemRect, f.rect.left}, {kItemRect + 2, f.rect.top},
        {kItemRect + 4, f.rect.right}, {kItemRect + 6, f.rect.bottom}, {kItemFlags, f.itemFlags},
        {kTextViewFlags, f.viewFlags}, {kTextBackColor, f.backColor}, {kTextAlign, f.align}};
    for (const auto& [at, v] : words) Write16(&c[at], static_cast<uint16_t>(v));
    const std::vector<uint8_t> record = MakeTextRecord({1, f.text, f.runs}, false);
    c.insert(c.end(), record.begin(), record.end());
    Write32(&c[kItemLength], static_cast<uint32_t>(c.size()));
    const MemRef card = NewCardMemRef(static_cast<uint32_t>(kCardHeadSize + c.size() + kCardTailSize));
    MemRefLock lock(card);
    std::copy(c.begin(), c.end(), lock.data() + kCardHeadSize);
    return card;
}


// Fills `item` as the card's display list would from a card holding `f`; false when its head can't
// be read.
inline bool LoadField(const Field& f, DisplayItem* item) {
    const MemRef card = FieldCard(f);
    const bool read = ReadItemHead(card, kCardHeadSize, kTextHeadSize, item);
    if (read) LoadTextField(item, card, kCardHeadSize);
    FreeMemRef(card);
    return read;
}
