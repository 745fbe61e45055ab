// AIFF and AIFC files: big-endian PCM of 8 or 16 bits, the rate an 80-bit number.
#pragma once

#include <cstdint>

#include "media/SoundInfo.h"
#include "memory/MemRef.h"

// Finds the "FORM" wherever it starts, so that a file behind a MacBinary or other prefix still
// opens; then its "COMM" and "SSND" chunks. Fills `info` (bigEndian 1, 8-bit samples still signed)
// and `*dataOffset`: 0, 2390 for a damaged file, 2392 for compressed or unplayable samples.
int32_t ScanAiff(const uint8_t* bytes, uint32_t size, SoundInfo* info, uint32_t* dataOffset);
// The same on a block: the samples' position, or 0 with the alert shown.
uint32_t ParseAiff(MemRef file, SoundInfo* info);
