// AU files: a big-endian header, then µ-law, 8-bit or 16-bit linear samples.
#pragma once

#include <cstdint>

#include "media/SoundInfo.h"
#include "memory/MemRef.h"

enum class AuEncoding : uint32_t { MuLaw = 1, Linear8 = 2, Linear16 = 3 };

struct AuLayout {
    AuEncoding encoding = AuEncoding::MuLaw;
    uint16_t channels = 0;
    uint32_t rate = 0;
    uint32_t dataOffset = 0;
    uint32_t frames = 0;  // whole frames from the data's start to the end of the file
};

// 0, 2390 for a damaged header, 2392 for an encoding other than the three above.
int32_t ScanAu(const uint8_t* bytes, uint32_t size, AuLayout* layout);
// The samples of `layout` as native PCM in a new block, behind `lead` free bytes: µ-law as 16-bit
// linear, 8-bit linear as unsigned bytes. 0 or 2391 (no memory).
int32_t ExpandAu(const uint8_t* bytes, const AuLayout& layout, uint32_t lead, MemRef* block, SoundInfo* info);

// The G.711 µ-law byte as a 16-bit linear sample.
int16_t MuLawToLinear(uint8_t code);
