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



// A length-prefixed name in a field of `fieldSize` bytes, as a plain string.
std::string PlainName(const uint8_t* field, uint32_t fieldSize);
