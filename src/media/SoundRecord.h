// 'Snd ' records: a stack's sounds, stored as sound resources of the stack format's home platform
// (big-endian headers and 16-bit samples, 8-bit samples unsigned). Formats 1 and 2; encodings 0
// (standard, 8-bit mono), 255 (extended) and 254 (our compressed form, not played).
#pragma once

#include <cstdint>

#include "media/SoundInfo.h"
#include "memory/MemRef.h"

// The forms this system writes: the sound header at 28, samples at 50 (8-bit mono, encoding 0)
// or at 92 (everything else, encoding 255).
inline constexpr uint32_t kSoundHeaderAt = 28;
inline constexpr uint32_t kStandardSamplesAt = 50;
inline constexpr uint32_t kExtendedSamplesAt = 92;
// Offsets in the sound header.
inline constexpr uint32_t kSoundLengthOrChannels = 4;
inline constexpr uint32_t kSoundRate = 8;  // 16.16 fixed point
inline constexpr uint32_t kSoundEncoding = 20;
inline constexpr uint32_t kSoundBaseNote = 21;
inline constexpr uint32_t kSoundFrames = 22;       // encoding 255
inline constexpr uint32_t kSoundExtendedRate = 26;  // encoding 255: 80 bits
inline constexpr uint32_t kSoundBits = 48;         // encoding 255
inline constexpr uint32_t kStandardHeaderBytes = 22;
inline constexpr uint32_t kExtendedHeaderBytes = 64;
inline constexpr uint8_t kEncodingStandard = 0;
inline constexpr uint8_t kEncodingExtended = 255;
inline constexpr uint8_t kEncodingCompressed = 254;
inline constexpr uint8_t kBaseNote = 60;

// A record that is well formed but not played here: compressed, or of an encoding between.
inline constexpr int32_t kSoundNotPlayed = -1;

// Fills `info` (bigEndian 1) and the samples' position: 0, kSoundNotPlayed, or 2390 for an
// unknown format or a header or samples beyond the record.
int32_t ScanSoundRecord(const uint8_t* bytes, uint32_t size, SoundInfo* info, uint32_t* dataOffset);
// The same on a record: the samples' position, or 0 (alert 2390 shown where the scan says so).
uint32_t ParseSoundRecord(MemRef record, SoundInfo* info);

// A WAVE image of the record, or 0. It is `record` itself when the record is in one of this
// system's own forms: WaveToSoundRecord must then put it back.
MemRef SoundRecordToWave(MemRef record, SoundInfo* info);
// The standard record of the `info.dataBytes` of samples at `dataOffset` in `block`, already in
// the record's order (16-bit big-endian); in place when the block has room. 0 with alert 2391
// without memory, or 2390 when the samples aren't inside `block`.
MemRef BuildSoundRecord(MemRef block, uint32_t dataOffset, const SoundInfo& info);
// A WAVE image (PCM) back to the standard record, 16-bit samples turned to the record's order.
MemRef WaveToSoundRecord(MemRef wave);
