// What the sound fuzz targets share: every image a reader hands out must be the mixer's one form (a
// 44-byte header that agrees with its SoundInfo, then the samples); every handle taken, given back.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "base/ByteOrder.h"
#include "media/SoundFile.h"
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

// Arbitrary bytes as a sound file of one type, through the reader the player uses.
inline int FuzzSoundFile(const char* target, int32_t fileType, const uint8_t* data, size_t size) {
    static const bool ready = InitMemRefs();
    if (!ready || size > (1u << 20)) return 0;
    const int16_t before = GetMemRefTable().used;
    MemRef wave = 0;
    SoundInfo info;
    if (DecodeSoundBytes(data, static_cast<uint32_t>(size), fileType, &wave, &info) == 0) {
        CheckSoundImage(target, wave, info);
        FreeMemRef(wave);
    } else if (wave != 0) {
        SoundBroken(target, "a refusal with an image");
    }
    if (GetMemRefTable().used != before) SoundBroken(target, "handle memory left behind");
    return 0;
}
