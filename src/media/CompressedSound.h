// Our own compressed form of 8-bit mono 'Snd ' records (encoding 254, stamped 'QBRK'): silent
// stretches kept as lengths, the sounding bytes packed in threes where the second and third stay
// within -8..7 of the first. A stack tool's business: neither direction runs during play.
#pragma once

#include <cstdint>

#include "memory/MemRef.h"

inline constexpr uint32_t kCompressedMark = 0x5142524B;  // 'QBRK'
// A compressed record may not unpack to more than this: its lengths are untrusted.
inline constexpr uint32_t kMaxUnpackedSoundBytes = 32u << 20;

// A new compressed record of the standard 8-bit mono `record` (encoding 0), or 0: any other
// record, or no memory.
MemRef CompressSoundRecord(MemRef record);
// The standard 8-bit mono record a compressed one holds, or 0: not compressed by us, damaged
// (lengths that disagree, packing that runs out), or no memory.
MemRef DecompressSoundRecord(MemRef record);
