// The one form a sound takes on its way to the speaker: a block holding a RIFF WAVE image, the
// 44-byte header and then PCM samples in native order, 8-bit unsigned or 16-bit signed,
// interleaved. Every reader ends here; the mixer needs only the block and its SoundInfo.
#pragma once

#include <cstdint>

#include "media/SoundInfo.h"
#include "memory/MemRef.h"

inline constexpr uint32_t kWaveHeaderBytes = 44;
// The least number of frames a sound is played with, until sound start-up learns the device's.
inline constexpr uint32_t kDefaultMinSoundFrames = 2000;

// Sounds shorter than this many frames get this many frames of silence behind them.
uint32_t MinSoundFrames();
void SetMinSoundFrames(uint32_t frames);

// Writes the 44-byte header of a PCM wave of `info` with `dataBytes` of samples.
void WriteWaveHeader(uint8_t* out, const SoundInfo& info, uint32_t dataBytes);

// Makes the image of the `info->dataBytes` of samples at `dataOffset` in `block`. A sound shorter
// than MinSoundFrames grows by MinSoundFrames of silence (the full amount, not the difference).
// With `allowInPlace` and room, the samples move to 44 in `block` itself and the header goes in
// front; else a new block. 16-bit samples of the home platform's order are turned around.
// Afterwards `info` describes the image: native order, the silence counted in.
// Returns the image, or 0: 2391 (no memory) or 2390 (the samples aren't inside `block`) is shown.
MemRef BuildWave(MemRef block, uint32_t dataOffset, SoundInfo* info, bool allowInPlace);
// The same, quiet: 0 or the alert number, with the image in `*wave`.
int32_t MakeWaveImage(MemRef block, uint32_t dataOffset, SoundInfo* info, bool allowInPlace, MemRef* wave);

// The silent tail played behind every sound: 8-bit mono at 11025 whatever `rate` is, of value
// 127, 2 x MinSoundFrames long below 22051 and 3 x above. 0 without memory.
MemRef MakeSilenceWave(uint32_t rate);
