#include "media/WaveFile.h"

#include "base/ByteOrder.h"
#include "media/RiffChunks.h"
#include "messages/Alert.h"

namespace {

constexpr uint16_t kWaveFormatExtensible = 0xFFFE;
constexpr uint32_t kFormatBytes = 16;           // the fields every "fmt " chunk has
constexpr uint32_t kExtensibleBytes = 40;       // ... with the extensible form's, to the sub-format
constexpr uint32_t kAdpcmFormatBytes = 22 + 4 * kAdpcmPredictors;  // to the last coefficient pair

int32_t ReadFormat(const uint8_t* p, uint32_t size, WaveFormat* f) {
    if (size < kFormatBytes) return kAlertBadSound;
    f->formatTag = Read16(p);
    f->channels = Read16(p + 2);
    f->samplesPerSec = Read32(p + 4);
    f->avgBytesPerSec = Read32(p + 8);
    f->blockAlign = Read16(p + 12);
    f->bitsPerSample = Read16(p + 14);
    if (f->formatTag == kWaveFormatExtensible) {
        // The sub-format's GUID begins with the plain tag.
        if (size < kExtensibleBytes) return kAlertBadSound;
        f->formatTag = Read16(p + 24);
        if (f->formatTag != kWaveFormatPcm) return kAlertSoundFormat;
    }
    if (f->formatTag == kWaveFormatAdpcm) {
        if (size < kAdpcmFormatBytes) return kAlertBadSound;
        f->extraSize = Read16(p + 16);
        f->samplesPerBlock = Read16(p + 18);
        f->numCoefficients = Read16(p + 20);
        if (f->numCoefficients != kAdpcmPredictors) return kAlertSoundFormat;
        for (int i = 0; i < kAdpcmPredictors; ++i) {
            f->coefficients[i][0] = ReadS16(p + 22 + 4 * i);
            f->coefficients[i][1] = ReadS16(p + 24 + 4 * i);
        }
        if (!IsValidAdpcmFormat(*f)) return kAlertSoundFormat;
        // Every block holds its head and the codes of its samples.
        const uint32_t head = kAdpcmBlockHeadPerChannel * f->channels;
        if (f->blockAlign < head || f->samplesPerBlock < 2) return kAlertBadSound;
        return (f->samplesPerBlock - 2u) * f->channels <= (f->blockAlign - head) * 2u ? 0 : kAlertBadSound;
    }
    return IsValidPcmFormat(*f) ? 0 : kAlertSoundFormat;
}

}  // namespace

int32_t ScanWave(const uint8_t* bytes, uint32_t size, WaveLayout* layout) {
    *layout = WaveLayout{};
    uint32_t end = 0;
    RiffChunk fmt, data;
    if (!OpenRiffForm(bytes, size, FourCC("WAVE"), &end)) return kAlertBadSound;
    if (!FindRiffChunk(bytes, 12, end, FourCC("fmt "), &fmt)) return kAlertBadSound;
    if (const int32_t result = ReadFormat(bytes + fmt.offset, fmt.size, &layout->format)) return result;
    if (layout->format.samplesPerSec == 0) return kAlertBadSound;
    if (!FindRiffChunk(bytes, 12, end, FourCC("data"), &data)) return kAlertBadSound;
    layout->dataOffset = data.offset;
    layout->dataBytes = data.size;
    if (layout->format.formatTag == kWaveFormatPcm) {
        const uint32_t frameBytes = layout->format.channels * (layout->format.bitsPerSample / 8u);
        layout->dataBytes -= layout->dataBytes % frameBytes;
    }
    return 0;
}

int32_t WaveInfo(const WaveLayout& layout, SoundInfo* info) {
    if (layout.format.formatTag != kWaveFormatPcm) return kAlertSoundFormat;
    *info = SoundInfo{};
    info->bits = layout.format.bitsPerSample;
    info->channels = layout.format.channels;
    info->rate = layout.format.samplesPerSec;
    info->dataBytes = layout.dataBytes;
    info->frames = layout.dataBytes / SoundFrameBytes(*info);
    return 0;
}

uint32_t ParseWave(MemRef wave, SoundInfo* info) {
    WaveLayout layout;
    int32_t result = kAlertBadSound;
    {
        MemRefLock lock(wave);
        if (lock) result = ScanWave(lock.data(), GetMemRefSize(wave), &layout);
    }
    if (result == 0) result = WaveInfo(layout, info);
    if (result != 0) {
        Alert(result);
        return 0;
    }
    return layout.dataOffset;
}

int32_t DecodeAdpcmWave(const uint8_t* bytes, const WaveLayout& layout, uint32_t lead, MemRef* block, SoundInfo* info) {
    *block = 0;
    WaveFormat pcm;
    pcm.bitsPerSample = 16;
    if (!SuggestAdpcmFormat(layout.format, &pcm)) return kAlertSoundFormat;
    // A shorter last block, as encoders leave at the end of a sound, holds the samples its size
    // gives room for; the reference decoders play them, and so do we.
    const uint32_t whole = layout.dataBytes - layout.dataBytes % layout.format.blockAlign;
    WaveFormat last = layout.format;
    last.blockAlign = static_cast<uint16_t>(layout.dataBytes - whole);
    const uint32_t head = kAdpcmBlockHeadPerChannel * last.channels;
    last.samplesPerBlock = last.blockAlign >= head ? static_cast<uint16_t>((last.blockAlign - head) * 2 / last.channels + 2) : 0;
    const uint64_t decodedBytes = AdpcmDecodedBytes(layout.format, pcm, whole) + AdpcmDecodedBytes(last, pcm, last.blockAlign);
    if (decodedBytes == 0) return kAlertBadSound;
    if (decodedBytes + lead > UINT32_MAX) return kAlertSoundNoMemory;
    const MemRef out = NewMemRef(static_cast<uint32_t>(decodedBytes + lead));
    uint64_t made = 0;
    {
        MemRefLock lock(out);
        const uint8_t* data = bytes + layout.dataOffset;
        if (lock) made = AdpcmDecode(layout.format, data, pcm, lock.data() + lead, whole);
        if (lock && made == AdpcmDecodedBytes(layout.format, pcm, whole) && last.samplesPerBlock) {
            made += AdpcmDecode(last, data + whole, pcm, lock.data() + lead + made, last.blockAlign);
        }
    }
    if (made == 0) {
        if (out) FreeMemRef(out);
        return out ? kAlertBadSound : kAlertSoundNoMemory;
    }
    *info = SoundInfo{};
    info->bits = 16;
    info->channels = pcm.channels;
    info->rate = pcm.samplesPerSec;
    info->dataBytes = static_cast<uint32_t>(made);
    info->frames = info->dataBytes / SoundFrameBytes(*info);
    *block = out;
    return 0;
}
