// Action records where they live: a button chunk in a card, an 'Actn' record, and the action behind
// an 'Hlnk' record's head; the sub-records' payloads and the file references they carry. Their
// layout is stack/SubRecord.h.
#pragma once

#include <cstdint>
#include <string>

#include "memory/MemRef.h"
#include "stack/CardRecord.h"
#include "stack/SubRecord.h"

// The same on a record, the result relative to the head at `offset`.
bool FindRecordSubRecord(MemRef record, uint32_t offset, int16_t tag, uint32_t* relative);

// A fresh block holding the payload of the sub-record at `subOffset` of `record`; 0 when memory is
// short or the sub-record doesn't lie in the record.
MemRef CopySubRecordPayload(MemRef record, uint32_t subOffset);

// A file reference in native form (path, zero-terminated, a pad to even, six bytes of reference
// fields, the name, zero-terminated) of `length` bytes put into path slot `slot`. False for bytes
// that don't hold one; the slot is then left as it was.
bool SetSlotFromReference(int slot, const uint8_t* reference, uint32_t length);
// Empties a path slot: no path, no name, not set by the user.
void ClearSlot(int slot);

// A length-prefixed name in a field of `fieldSize` bytes, as a plain string.
std::string PlainName(const uint8_t* field, uint32_t fieldSize);
