// CardRecord and the chunks inside it: a 96-byte head, an optional background chunk, a chain of
// item chunks, and a 4-byte tail (a 16-bit 0 ending the chain, then the sentinel 0xFACE).
// The offsets are the format; in memory a card is one MemRef with the same layout.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

// Card head.
inline constexpr uint32_t kCardHeadSize = 96;
inline constexpr uint32_t kCardId = 0;
inline constexpr uint32_t kCardSize = 2;  // 32-bit
inline constexpr uint32_t kCardKind = 6;
inline constexpr uint32_t kCardOwnerId = 8;
inline constexpr uint32_t kCardFlags = 10;
inline constexpr uint32_t kCardReserved12 = 12;
inline constexpr uint32_t kCardMenuShown = 16;
inline constexpr uint32_t kCardDepth = 18;
inline constexpr uint32_t kCardWidth = 20;
inline constexpr uint32_t kCardHeight = 22;
inline constexpr uint32_t kCardName = 32;  // 16 bytes, length-prefixed, raw
inline constexpr uint32_t kCardArriveAction = 48;
inline constexpr uint32_t kCardLeaveAction = 50;
inline constexpr uint32_t kCardClickAction = 52;
inline constexpr uint32_t kCardCursor = 54;
inline constexpr uint32_t kCardReserved56 = 56;
inline constexpr uint32_t kCardTailSize = 4;
inline constexpr uint32_t kEmptyCardSize = kCardHeadSize + kCardTailSize;
static_assert(kEmptyCardSize == 100);

inline constexpr int16_t kCardKindBlank = 0;
inline constexpr int16_t kCardKindPicture = 1;
inline constexpr int16_t kCardKindGroupMember = 3;

inline constexpr uint16_t kCardFlagUnnumbered = 1;
inline constexpr uint16_t kCardFlagMarked = 128;

// Background chunk, at offset 96 of a kind 1 card.
inline constexpr uint32_t kBgHeadSize = 24;
inline constexpr uint32_t kBgTag = 0;  // always 8
inline constexpr uint32_t kBgFormat = 2;
inline constexpr uint32_t kBgFlags = 10;
inline constexpr uint32_t kBgLength = 12;
inline constexpr uint32_t kBgTableSize = 16;
inline constexpr uint16_t kBgFlagOddPad = 0x200;

// Item chunk common head.
inline constexpr uint32_t kItemKind = 0;
inline constexpr uint32_t kItemId = 2;
inline constexpr uint32_t kItemRect = 4;  // stored top, left, bottom, right; native left, top, right, bottom
inline constexpr uint32_t kItemLength = 12;
inline constexpr uint32_t kItemFlags = 22;
inline constexpr uint32_t kItemCommonHeadSize = 24;

inline constexpr int16_t kItemKindGraphic = 16;
inline constexpr int16_t kItemKindButton = 48;
inline constexpr int16_t kItemKindText = 96;

inline constexpr uint16_t kItemFlagWalkHidden = 1;
inline constexpr uint16_t kItemFlagDisabled = 8;
inline constexpr uint16_t kItemFlagShared = 16;
inline constexpr uint16_t kItemFlagHidden = 32;
inline constexpr uint16_t kItemFlagFileRef = 64;
inline constexpr uint16_t kItemFlagOddPad = 0x200;

// The name field of graphics and text fields: a length byte and up to 15 characters.
inline constexpr uint32_t kItemNameBytes = 16;

// Graphic head.
inline constexpr uint32_t kGraphicHeadSize = 80;
inline constexpr uint32_t kGraphicRect2 = 30;
inline constexpr uint32_t kGraphicName = 38;  // 16 bytes, length-prefixed
inline constexpr uint32_t kGraphicAction = 56;
inline constexpr uint32_t kGraphicPictureSize = 60;
inline constexpr uint32_t kGraphicFileRef = 80;

// Button head; an Actn record has the same shape.
inline constexpr uint32_t kButtonHeadSize = 136;
inline constexpr uint32_t kButtonName = 28;  // 32 bytes, length-prefixed
inline constexpr uint32_t kButtonShape = 60;
inline constexpr uint32_t kButtonFlags = 64;
inline constexpr uint32_t kButtonTextColor = 66;
inline constexpr uint32_t kButtonFillColor = 68;
inline constexpr uint32_t kButtonIconId = 78;
inline constexpr uint32_t kButtonCursorId = 80;
inline constexpr uint16_t kItemFlagHover = 128;
inline constexpr uint16_t kItemFlagNoPressTracking = 0x100;

// Text field head.
inline constexpr uint32_t kTextHeadSize = 128;
inline constexpr uint32_t kTextBackColor = 24;  // 1-based palette index; 0 none (white)
inline constexpr uint32_t kTextViewFlags = 26;
inline constexpr uint32_t kTextAlign = 28;  // -1 right, 0 left, 1 centre
inline constexpr uint32_t kTextName = 72;  // 16 bytes, length-prefixed
inline constexpr uint32_t kTextAction = 102;
inline constexpr uint32_t kTextBlockHeadSize = 16;
inline constexpr uint32_t kTextBlockDataLength = 8;
inline constexpr uint32_t kTextBlockLength = 12;

// The text field's view flags.
inline constexpr uint16_t kTextViewScrollBar = 2;
inline constexpr uint16_t kTextViewReadOnly = 4;
inline constexpr uint16_t kTextViewFrame = 0x100;
// The text field's item flags beyond the common ones.
inline constexpr uint16_t kTextFlagPerCard = 16;
inline constexpr uint16_t kTextFlagTransparent = 128;

// The action head behind a button's item head, and its sub-records, are in stack/SubRecord.h.

// A card block of size + 2 bytes with the 32-bit value 0xFACE at `size`: the tail's end mark
// (already zero) and sentinel come ready-made.
MemRef NewCardMemRef(uint32_t size);
// Where the item chain of a native card starts: behind the head, or behind the background chunk
// of a kind 1 card.
uint32_t ItemChainStart(const uint8_t* card);
