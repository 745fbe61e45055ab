// The writer: native records out to their stored, big-endian form. It works on copies, so a save
// never disturbs the live record (but for the icon rule, which leaves two words zero as the reader
// made them). Its rules are not the exact mirror of the reader's: the asymmetries are kept on
// purpose, since existing files have been through them.
//
// Results: 0; -1 when a length or offset in the record leaves its block (the write stops there,
// with part of the record already in the buffer); or the file layer's error.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"
#include "stack/StagingBuffer.h"

// A card record: the head (size from the MemRef), the background chunk, each item chunk by its
// kind, then 00 00 FA CE whatever the block held there.
int32_t WriteCardRecord(StagingBuffer& out, MemRef card);
// A button-shaped record at `offset` of `record`: a button chunk, or an Actn record at 0. Adds the
// number of bytes written to `*written` (if given); sub-records of types the writer doesn't know
// are not written, so that can be less than the record's length.
int32_t WriteButtonRecord(StagingBuffer& out, MemRef record, uint32_t offset, uint32_t* written);
// An Hlnk record: its head swapped and its text moved back down a byte, then its action block if
// the flag at 8 is 1, else the rest of the record as it stands. Adds the bytes written to
// `*written` (if given).
int32_t WriteHlnkRecord(StagingBuffer& out, MemRef record, uint32_t* written);
// The stored form of the native file reference at `native` (`length` bytes): "\" become ":" in the
// path, the strings length-prefixed, as many bytes out as came in. 0 if the bytes are not a
// reference (a string without its terminator, or longer than 255).
MemRef ConvertNativePath(const uint8_t* native, uint32_t length);
