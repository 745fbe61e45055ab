// The action head and its sub-records: a 136-byte head (a button's head) and tagged sub-records
// with 32-byte heads chained behind it, in native order once loaded. A button chunk in a card, an
// 'Actn' record and the action behind an 'Hlnk' record's head have this one shape; the reader, the
// writer, the interpreter and item drawing all read it from here. The offsets are the format.
#pragma once

#include <cstdint>

#include "stack/CardRecord.h"

// Action head, from the start of the head.
inline constexpr uint32_t kActionHeadSize = kButtonHeadSize;
inline constexpr uint32_t kActionType = kItemKind;
inline constexpr uint32_t kActionId = kItemId;
inline constexpr uint32_t kActionRect = kItemRect;  // native left, top, right, bottom
inline constexpr uint32_t kActionLength = kItemLength;  // 32-bit: head and all sub-records
inline constexpr uint32_t kActionDestination = 16;
inline constexpr uint32_t kActionTransition = 18;
inline constexpr uint32_t kActionFlags = 20;
inline constexpr uint32_t kActionItemFlags = kItemFlags;
inline constexpr uint32_t kActionTimerSeconds = 24;
inline constexpr uint32_t kActionTimerMode = 26;
inline constexpr uint32_t kActionName = kButtonName;  // 32 bytes, length-prefixed
inline constexpr uint32_t kActionNameSize = 32;
inline constexpr uint32_t kActionTestCode = 62;
inline constexpr uint32_t kActionTransitionColor = 68;  // 1-based index into the current palette
inline constexpr uint32_t kActionTransitionSpeed = 76;
static_assert(kActionName + kActionNameSize == 60);

// Bits of actionFlags.
inline constexpr uint16_t kActSoundFile = 0x0001;
inline constexpr uint16_t kActStackSound = 0x0004;
inline constexpr uint16_t kActNba = 0x0008;
inline constexpr uint16_t kActGo = 0x0020;
inline constexpr uint16_t kActAnimation = 0x0080;
inline constexpr uint16_t kActMovie = 0x0100;
inline constexpr uint16_t kActLogo = 0x1000;
inline constexpr uint16_t kActLaserDisc = 0x4000;
inline constexpr uint16_t kActLaunch = 0x8000;

// testCode values.
inline constexpr int16_t kTestRight = 1;
inline constexpr int16_t kTestWrong = 2;
inline constexpr int16_t kTestAskName = 3;

// Sub-record head: 32 bytes, then the body. Words 16 to 24 mean what the type makes them.
inline constexpr uint32_t kSubHeadSize = 32;
inline constexpr uint32_t kSubType = 0;
inline constexpr uint32_t kSubId = 2;      // the movie's or the item's id
inline constexpr uint32_t kSubRect = 4;    // stored top, left, bottom, right
inline constexpr uint32_t kSubVolume = 4;  // sound types keep a word where others keep a rect
inline constexpr uint32_t kSubLength = 12;  // 32-bit: head and body, with the pad byte
inline constexpr uint32_t kSubWord16 = 16;  // nbaId, soundId, launchFlags
inline constexpr uint32_t kSubWord18 = 18;
inline constexpr uint32_t kSubDocumentLength = 18;  // type 59, 32-bit, unaligned
inline constexpr uint32_t kSubWord20 = 20;
inline constexpr uint32_t kSubFlags = 22;
inline constexpr uint32_t kSubWord24 = 24;
inline constexpr uint32_t kSubSoundFlags = kSubWord24;
// A body of odd length is padded to even; the flag says the last byte is the pad.
inline constexpr uint16_t kSubFlagOddPad = 0x0200;

// Sub-record types.
inline constexpr int16_t kTagNba = 51;
inline constexpr int16_t kTagAnimation = 56;
inline constexpr int16_t kTagLaunch = 59;
inline constexpr int16_t kTagOtherStack = 60;
inline constexpr int16_t kTagLogo = 64;
inline constexpr int16_t kTagSoundFile = 82;
inline constexpr int16_t kTagStackSound = 83;
inline constexpr int16_t kTagMovie = 89;
inline constexpr int16_t kTagLaserDisc = 119;
inline constexpr int16_t kTagWriterOnly = 129;  // written, never turned by the reader
inline constexpr int16_t kTagIcon = 130;  // a picture button's mask

// Type 59: quit after launching.
inline constexpr uint16_t kLaunchThenQuit = 0x4000;

// Type 119: the laser disc record's head, the only part that is stored.
inline constexpr uint32_t kLaserDiscHeadSize = 96;

// Type 130: width and height, left and top of the mask, then its rows.
inline constexpr uint32_t kIconWidth = kSubHeadSize;
inline constexpr uint32_t kIconHeight = kSubHeadSize + 2;
inline constexpr uint32_t kIconLeft = kSubHeadSize + 4;
inline constexpr uint32_t kIconTop = kSubHeadSize + 6;
inline constexpr uint32_t kIconHeadSize = kSubHeadSize + 8;

// Type 56, a frame-delta animation: seven words (width, height, tickDelay, repeats, frameCount,
// depth, flags), four spare bytes, then the frames, each with a 16-byte head whose size at 8 is
// the whole frame's. A body that starts with 'Sprt' is a sprite film, kept raw.
inline constexpr uint32_t kAnimHeadWords = 7;
inline constexpr uint32_t kAnimFrameCount = kSubHeadSize + 8;
inline constexpr uint32_t kAnimHeadSize = 18;
inline constexpr uint32_t kAnimFrames = kSubHeadSize + kAnimHeadSize;
inline constexpr uint32_t kFrameTag = 0;
inline constexpr uint32_t kFrameSize = 8;
inline constexpr uint32_t kFrameHeadSize = 16;
static_assert(kAnimFrames == 50);

// The end of the sub-records of the head at `head`, no further than `available` bytes from it: the
// head's length, cut to what is there. 0 when not even the head is there.
uint32_t ActionEnd(const uint8_t* head, uint32_t available);

// Walks the sub-records of the head at `head` (which has `available` bytes behind it) for the first
// of `tag`; true and its position from the head. A sub-record that is shorter than its own head or
// leaves the action ends the walk: a damaged chain is never followed.
bool FindSubRecord(const uint8_t* head, uint32_t available, int16_t tag, uint32_t* position);

// The body size of the sub-record at `sub`: its length less the head and the pad byte.
uint32_t SubRecordPayloadSize(const uint8_t* sub);
