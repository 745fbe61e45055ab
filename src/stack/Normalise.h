// Byte-order normalisation: records are read as raw big-endian bytes into their MemRef and turned
// to native order in place, once, so the program sees native records at the file's offsets.
// Stored file references are turned to the native path form here too, which can resize a record;
// the routines therefore work from offsets and re-lock after every resize.
//
// Every routine checks that what it touches lies inside the record. A length or offset that leaves
// the record means a damaged stack: the routine stops and returns -1. Valid records read exactly as
// the format describes; the result is 0.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

// The white-first colour order test: made once per opened stack, on the first card with a table.
void ResetWhiteFirstTest();
bool IsWhiteFirstStack();

int32_t NormaliseCard(MemRef card);
// The button routine, for a button chunk at `offset` of `record` whose common head is already
// native; also the action block of Actn and Hlnk records.
int32_t NormaliseButton(MemRef record, uint32_t offset);
// Typed records that the store turns around on fetch.
int32_t NormaliseActn(MemRef record);
int32_t NormaliseHlnk(MemRef record);

// 'Hlnk' head. The hot text stands at 23 in the file and at 24 in memory; the action block, if
// any, stands at 24 + padLength + textLength in both. Moving the text up a byte overwrites the
// byte at 23 + textLength, so the reader keeps that byte at 23, which no one else reads: the
// writer takes it from 23, moves the text down and puts it back at 23 + textLength, and after the
// write moves the text up again and returns the byte to 23. Keeping the byte is what makes a stack
// that is read and saved again come out byte for byte as it was.
inline constexpr uint32_t kHlnkLinkId = 0;
inline constexpr uint32_t kHlnkFieldId = 2;
inline constexpr uint32_t kHlnkPadLength = 4;
inline constexpr uint32_t kHlnkTextLength = 6;
inline constexpr uint32_t kHlnkHasAction = 8;  // one byte; tested with the zero at 9 as a 16-bit word
inline constexpr uint32_t kHlnkStoredText = 23;
inline constexpr uint32_t kHlnkText = 24;
inline constexpr uint32_t kHlnkDisplacedByte = 23;

// Stored file reference -> native form (zero-terminated path with "\" separators and a drive,
// pad, six zero bytes, zero-terminated name). `source` holds `available` bytes of stored reference.
// Returns 0 if the reference does not fit in `available`. The drive of a path from the other
// platform is the current stack's (slot 1).
MemRef ConvertStoredPath(const uint8_t* source, uint32_t available, bool* oddFlag, bool padToEven);
