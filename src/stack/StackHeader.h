// StackHeader: the 128-byte record at the head of a stack file. The offsets are the format.
#pragma once

#include <cstdint>

inline constexpr uint32_t kStackHeaderSize = 128;

inline constexpr uint32_t kHdrAutoSave = 0;
inline constexpr uint32_t kHdrAdvancedUser = 2;
inline constexpr uint32_t kHdrCardCount = 4;
inline constexpr uint32_t kHdrReserved6 = 6;
inline constexpr uint32_t kHdrVersion = 8;
inline constexpr uint32_t kHdrNextCardId = 10;
inline constexpr uint32_t kHdrNextItemId = 12;
inline constexpr uint32_t kHdrStackFlags = 14;
inline constexpr uint32_t kHdrDepth = 16;
inline constexpr uint32_t kHdrReserved18 = 18;
inline constexpr uint32_t kHdrAutoTimers = 20;
inline constexpr uint32_t kHdrReserved22 = 22;
inline constexpr uint32_t kHdrLocked = 24;
inline constexpr uint32_t kHdrShowCardNumber = 26;
inline constexpr uint32_t kHdrReserved28 = 28;
inline constexpr uint32_t kHdrPassword = 32;  // 16 bytes, raw
inline constexpr uint32_t kHdrPresentationMode = 48;
inline constexpr uint32_t kHdrPresentationColor = 50;
inline constexpr uint32_t kHdrReserved52 = 52;
inline constexpr uint32_t kHdrWindowFlags = 54;
inline constexpr uint32_t kHdrCardWidth = 56;
inline constexpr uint32_t kHdrCardHeight = 58;
inline constexpr uint32_t kHdrBlobOffset = 60;
inline constexpr uint32_t kHdrBlobCount = 64;
inline constexpr uint32_t kHdrNextBlobId = 68;
inline constexpr uint32_t kHdrArriveAction = 72;
inline constexpr uint32_t kHdrLeaveAction = 74;
inline constexpr uint32_t kHdrStackCursor = 76;
inline constexpr uint32_t kHdrClickAction = 78;
inline constexpr uint32_t kHdrReserved80 = 80;  // 48 bytes, raw

static_assert(kHdrReserved80 + 48 == kStackHeaderSize);

inline constexpr uint16_t kStackFlagIgnoreExtraClicks = 2;
inline constexpr uint16_t kStackFlagHighestCompression = 4;
inline constexpr uint16_t kStackFlagWhiteFirst = 16;

inline constexpr int16_t kCurrentStackVersion = 5;
inline constexpr int16_t kOldestStackVersion = 4;
inline constexpr uint32_t kMaxBlobCount = 0x10000;
// The system's minimum window size, which is also the smallest card a stack may have.
inline constexpr int16_t kMinCardSide = 40;

// Exchanges every numeric field between stored and native order (its own inverse).
void SwapHeader(uint8_t* header);
// Turns a stored header to native order in place and starts the white-first test afresh.
void NormaliseHeader(uint8_t* header);
// The plausibility test, on a native header: the only way a file is recognised as a stack.
bool HeaderIsPlausible(const uint8_t* header);
