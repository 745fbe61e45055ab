// WAV files: PCM (format tag 1, also as the extensible form with a PCM sub-format) and MS-ADPCM
// (tag 2), found by our own walk over the RIFF chunks.
#pragma once

#include <cstdint>

#include "media/MsAdpcm.h"
#include "media/SoundInfo.h"
#include "memory/MemRef.h"

struct WaveLayout {
    WaveFormat format;      // the "fmt " chunk; an extensible PCM one reads as tag 1
    uint32_t dataOffset = 0;  // of the "data" chunk's samples
    uint32_t dataBytes = 0;   // cut to the file, and for PCM to whole frames
};

// Finds the format and the samples of a WAVE image: 0, 2390 for a damaged image or 2255 for a
// format other than 8- or 16-bit PCM and MS-ADPCM in one or two channels.
int32_t ScanWave(const uint8_t* bytes, uint32_t size, WaveLayout* layout);
// What a PCM image holds, as `info`; 0 for an image of any other kind.
int32_t WaveInfo(const WaveLayout& layout, SoundInfo* info);

// The position of the PCM samples in the image `wave`, with `info` filled; or 0 with alert 2390,
// or 2255 for a format other than PCM.
uint32_t ParseWave(MemRef wave, SoundInfo* info);

// Decodes the MS-ADPCM samples of `layout` in `bytes` to 16-bit PCM, into a new block that has
// `lead` bytes free in front of them. Every whole block is decoded, the padding of the last one
// too, as the reference decoders do: the "fact" chunk's count is not applied. 0, 2390 (nothing
// decodes) or 2391 (no memory).
int32_t DecodeAdpcmWave(const uint8_t* bytes, const WaveLayout& layout, uint32_t lead, MemRef* block, SoundInfo* info);
