// What every sound reader tells of the samples it found, and the alerts the readers answer with.
#pragma once

#include <cstdint>

struct SoundInfo {
    uint16_t bits = 0;       // bits per sample: 8 (unsigned) or 16 (signed)
    uint16_t channels = 0;   // 1 or 2, interleaved
    uint32_t rate = 0;       // samples a second, whole
    uint32_t frames = 0;     // sample frames
    uint32_t dataBytes = 0;  // bytes of sample data
    uint32_t bigEndian = 0;  // 1: 16-bit samples still in the order of the stack's home platform
};

inline constexpr int32_t kAlertBadSound = 2390;
inline constexpr int32_t kAlertSoundNoMemory = 2391;
inline constexpr int32_t kAlertSoundType = 2392;
inline constexpr int32_t kAlertSoundFormat = 2255;

// Bytes of one sample frame; 0 for a description no reader passes.
inline uint32_t SoundFrameBytes(const SoundInfo& info) { return info.channels * (info.bits / 8u); }

// The readers pass only what the mixer plays: 8 or 16 bits, one or two channels, a rate above 0.
inline bool IsPlayableSound(const SoundInfo& info) {
    return (info.bits == 8 || info.bits == 16) && (info.channels == 1 || info.channels == 2) && info.rate != 0;
}
