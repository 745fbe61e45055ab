#include "media/SoundWave.h"

#include <algorithm>
#include <cstring>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "media/RiffChunks.h"
#include "messages/Alert.h"

namespace {

struct SoundWaveState {
    uint32_t minSoundFrames = kDefaultMinSoundFrames;
};
SoundWaveState g;

void ResetSoundWave() { g = SoundWaveState{}; }
const bool kRegistered = RegisterStateReset(Room::Media, ResetSoundWave);

void PutCode(uint8_t* out, uint32_t code) { WriteBE32(out, code); }

}  // namespace

uint32_t MinSoundFrames() { return g.minSoundFrames; }
void SetMinSoundFrames(uint32_t frames) { g.minSoundFrames = frames; }

void WriteWaveHeader(uint8_t* out, const SoundInfo& info, uint32_t dataBytes) {
    const uint32_t frameBytes = SoundFrameBytes(info);
    PutCode(out, FourCC("RIFF"));
    Write32(out + 4, dataBytes + kWaveHeaderBytes - 8);
    PutCode(out + 8, FourCC("WAVE"));
    PutCode(out + 12, FourCC("fmt "));
    Write32(out + 16, 16);
    Write16(out + 20, 1);
    Write16(out + 22, info.channels);
    Write32(out + 24, info.rate);
    Write32(out + 28, info.rate * frameBytes);
    Write16(out + 32, static_cast<uint16_t>(frameBytes));
    Write16(out + 34, info.bits);
    PutCode(out + 36, FourCC("data"));
    Write32(out + 40, dataBytes);
}

int32_t MakeWaveImage(MemRef block, uint32_t dataOffset, SoundInfo* info, bool allowInPlace, MemRef* wave) {
    *wave = 0;
    const uint32_t blockBytes = GetMemRefSize(block);
    if (!IsPlayableSound(*info) || dataOffset > blockBytes || info->dataBytes > blockBytes - dataOffset) {
        return kAlertBadSound;
    }
    const uint32_t frameBytes = SoundFrameBytes(*info);
    const uint64_t minBytes = uint64_t{frameBytes} * g.minSoundFrames;
    const uint32_t pad = info->dataBytes < minBytes ? static_cast<uint32_t>(minBytes) : 0;
    const uint64_t imageBytes = uint64_t{kWaveHeaderBytes} + info->dataBytes + pad;
    if (imageBytes > UINT32_MAX) return kAlertSoundNoMemory;

    MemRef image = block;
    if (imageBytes > blockBytes || pad != 0 || !allowInPlace) {
        image = NewMemRef(static_cast<uint32_t>(imageBytes));
        if (!image) return kAlertSoundNoMemory;
        MemRefLock from(block), to(image);
        if (!from || !to) {
            FreeMemRef(image);
            return kAlertSoundNoMemory;
        }
        std::memcpy(to.data() + kWaveHeaderBytes, from.data() + dataOffset, info->dataBytes);
        std::memset(to.data() + kWaveHeaderBytes + info->dataBytes, info->bits < 9 ? 128 : 0, pad);
    } else {
        MemRefLock in(block);
        if (!in) return kAlertSoundNoMemory;
        std::memmove(in.data() + kWaveHeaderBytes, in.data() + dataOffset, info->dataBytes);
    }
    MemRefLock out(image);
    if (!out) {
        if (image != block) FreeMemRef(image);
        return kAlertSoundNoMemory;
    }
    WriteWaveHeader(out.data(), *info, info->dataBytes + pad);
    if (info->bits >= 16 && info->bigEndian) {
        uint8_t* samples = out.data() + kWaveHeaderBytes;
        const uint64_t swapBytes = std::min<uint64_t>(uint64_t{info->frames} * frameBytes, info->dataBytes);
        for (uint64_t i = 0; i + 1 < swapBytes; i += 2) Swap16(samples + i);
    }
    info->bigEndian = 0;
    info->dataBytes += pad;
    info->frames = info->dataBytes / frameBytes;
    *wave = image;
    return 0;
}

MemRef BuildWave(MemRef block, uint32_t dataOffset, SoundInfo* info, bool allowInPlace) {
    MemRef wave = 0;
    const int32_t result = MakeWaveImage(block, dataOffset, info, allowInPlace, &wave);
    if (result != 0) Alert(result);
    return wave;
}

MemRef MakeSilenceWave(uint32_t rate) {
    // 127, not 128: the tail has always been a hair below the mid value.
    const uint32_t bytes = (rate < 22051 ? 2 : 3) * g.minSoundFrames;
    const MemRef wave = NewMemRef(kWaveHeaderBytes + bytes);
    MemRefLock lock(wave);
    if (!lock) {
        if (wave) FreeMemRef(wave);
        return 0;
    }
    SoundInfo info;
    info.bits = 8;
    info.channels = 1;
    info.rate = 11025;
    WriteWaveHeader(lock.data(), info, bytes);
    std::memset(lock.data() + kWaveHeaderBytes, 127, bytes);
    return wave;
}
