// What the sound fuzz targets share: every image a reader hands out must be the one form the mixer
// plays (a 44-byte header that agrees with its SoundInfo, then the samples), and every handle a
// reader takes must be given back.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "base/ByteOrder.h"
#include "media/SoundWave.h"
#include "memory/MemRef.h"

[[noreturn]] inline void SoundBroken(const char* target, const char* what) {
    std::fprintf(stderr, "%s: %s\n", target, what);
    std::fflush(stderr);
    std::abort();
}

inline void CheckSoundImage(const char* target, MemRef wave, const SoundInfo& info) {
    MemRefLock lock(wave);
    if (!lock) SoundBroken(target, "an image that doesn't lock");
    const uint8_t* p = lock.data();
    const uint32_t size = GetMemRefSize(wave);
    if (!IsPlayableSound(info) || info.bigEndian) SoundBroken(target, "an image of a format the mixer doesn't play");
    if (info.frames * SoundFrameBytes(info) != info.dataBytes) SoundBroken(target, "frames and bytes disagree");
    if (info.frames < MinSoundFrames()) SoundBroken(target, "a sound shorter than the minimum");
    if (size < kWaveHeaderBytes || info.dataBytes > size - kWaveHeaderBytes) SoundBroken(target, "samples beyond the image");
    if (Read32(p + 40) != info.dataBytes || Read16(p + 22) != info.channels || Read16(p + 34) != info.bits ||
        Read32(p + 24) != info.rate) {
        SoundBroken(target, "a header that doesn't say what the info says");
    }
    volatile uint32_t sink = 0;
    for (uint32_t i = 0; i < size; ++i) sink = sink + p[i];
}
