#include "media/SoundRecord.h"

#include <cstring>

#include "base/ByteOrder.h"
#include "media/Extended80.h"
#include "media/SoundWave.h"
#include "media/WaveFile.h"
#include "messages/Alert.h"

namespace {

constexpr uint32_t kFormatOneCommands = 10;  // read here whatever the number of data types
constexpr uint32_t kFormatTwoCommands = 4;
constexpr uint32_t kDataTypeBytes = 6;
constexpr uint32_t kCommandBytes = 8;
constexpr uint16_t kSampledSynth = 5;
constexpr uint32_t kInitMono = 128, kInitStereo = 192;
constexpr uint16_t kBufferCommand = 32849;
constexpr uint16_t kSecondCommand = 43;

uint32_t HeaderOffset(const uint8_t* bytes, uint32_t size, bool* known) {
    *known = false;
    if (size < 2) return 0;
    const uint16_t format = ReadBE16(bytes);
    // 256 is an old writer's 1.
    if ((format == 1 || format == 256) && size >= kFormatOneCommands + 2) {
        *known = true;
        return ReadBE16(bytes + 2) * kDataTypeBytes + ReadBE16(bytes + kFormatOneCommands) * kCommandBytes + 6;
    }
    if (format == 2 && size >= kFormatTwoCommands + 2) {
        *known = true;
        return ReadBE16(bytes + kFormatTwoCommands) * kCommandBytes + 6;
    }
    return 0;
}

}  // namespace

int32_t ScanSoundRecord(const uint8_t* bytes, uint32_t size, SoundInfo* info, uint32_t* dataOffset) {
    *info = SoundInfo{};
    bool known = false;
    const uint64_t at = HeaderOffset(bytes, size, &known);
    if (!known || at + kStandardHeaderBytes > size) return kAlertBadSound;
    const uint8_t* h = bytes + at;
    const uint8_t encoding = h[kSoundEncoding];
    if (encoding == kEncodingCompressed) return kSoundNotPlayed;
    info->rate = ReadBE32(h + kSoundRate) >> 16;
    info->bigEndian = 1;
    uint64_t start = 0;
    if (encoding == kEncodingStandard) {
        info->dataBytes = ReadBE32(h + kSoundLengthOrChannels);
        info->channels = 1;
        info->bits = 8;
        info->frames = info->dataBytes;
        start = at + kStandardHeaderBytes;
    } else {
        if (encoding != kEncodingExtended) return kSoundNotPlayed;
        if (at + kExtendedHeaderBytes > size) return kAlertBadSound;
        info->bits = ReadBE16(h + kSoundBits);
        info->frames = ReadBE32(h + kSoundFrames);
        const uint32_t channels = ReadBE32(h + kSoundLengthOrChannels);
        info->channels = channels <= 2 ? static_cast<uint16_t>(channels) : 0;
        start = at + kExtendedHeaderBytes;
        if (!IsPlayableSound(*info)) return kAlertBadSound;
        const uint64_t dataBytes = uint64_t{info->frames} * SoundFrameBytes(*info);
        if (dataBytes > size) return kAlertBadSound;
        info->dataBytes = static_cast<uint32_t>(dataBytes);
    }
    if (!IsPlayableSound(*info) || start + info->dataBytes > size) return kAlertBadSound;
    *dataOffset = static_cast<uint32_t>(start);
    return 0;
}

uint32_t ParseSoundRecord(MemRef record, SoundInfo* info) {
    uint32_t dataOffset = 0;
    int32_t result = kAlertBadSound;
    {
        MemRefLock lock(record);
        if (lock) result = ScanSoundRecord(lock.data(), GetMemRefSize(record), info, &dataOffset);
    }
    if (result == kAlertBadSound) Alert(result);
    return result == 0 ? dataOffset : 0;
}

MemRef SoundRecordToWave(MemRef record, SoundInfo* info) {
    const uint32_t dataOffset = ParseSoundRecord(record, info);
    if (dataOffset == 0) return 0;
    const bool ownForm = dataOffset == kStandardSamplesAt || dataOffset == kExtendedSamplesAt;
    return BuildWave(record, dataOffset, info, ownForm);
}

MemRef BuildSoundRecord(MemRef block, uint32_t dataOffset, const SoundInfo& info) {
    const bool standard = info.bits == 8 && info.channels == 1;
    const uint32_t start = standard ? kStandardSamplesAt : kExtendedSamplesAt;
    const uint32_t blockBytes = GetMemRefSize(block);
    if (dataOffset > blockBytes || info.dataBytes > blockBytes - dataOffset || !IsPlayableSound(info)) {
        Alert(kAlertBadSound);
        return 0;
    }
    MemRef record = block;
    if (uint64_t{start} + info.dataBytes > blockBytes) {
        record = NewMemRef(start + info.dataBytes);
        MemRefLock from(block), to(record);
        if (!from || !to) {
            if (record) FreeMemRef(record);
            Alert(kAlertSoundNoMemory);
            return 0;
        }
        std::memcpy(to.data() + start, from.data() + dataOffset, info.dataBytes);
    } else {
        MemRefLock in(block);
        if (!in) {
            Alert(kAlertSoundNoMemory);
            return 0;
        }
        std::memmove(in.data() + start, in.data() + dataOffset, info.dataBytes);
    }
    MemRefLock out(record);
    if (!out) {
        if (record != block) FreeMemRef(record);
        Alert(kAlertSoundNoMemory);
        return 0;
    }
    uint8_t* r = out.data();
    std::memset(r, 0, start);
    WriteBE16(r, 1);
    WriteBE16(r + 2, 1);
    WriteBE16(r + 4, kSampledSynth);
    WriteBE32(r + 6, info.channels == 2 ? kInitStereo : kInitMono);
    WriteBE16(r + kFormatOneCommands, 2);
    WriteBE16(r + 12, kBufferCommand);
    WriteBE32(r + 16, kSoundHeaderAt);
    WriteBE16(r + 20, kSecondCommand);
    WriteBE16(r + 22, 255);
    uint8_t* h = r + kSoundHeaderAt;
    WriteBE32(h + kSoundRate, info.rate << 16);
    h[kSoundBaseNote] = kBaseNote;
    if (standard) {
        WriteBE32(h + kSoundLengthOrChannels, info.dataBytes);
        h[kSoundEncoding] = kEncodingStandard;
    } else {
        WriteBE32(h + kSoundLengthOrChannels, info.channels);
        h[kSoundEncoding] = kEncodingExtended;
        WriteBE32(h + kSoundFrames, info.dataBytes / SoundFrameBytes(info));
        DoubleToExtended(info.rate, h + kSoundExtendedRate);
        WriteBE16(h + kSoundBits, info.bits);
    }
    return record;
}

MemRef WaveToSoundRecord(MemRef wave) {
    SoundInfo info;
    const uint32_t dataOffset = ParseWave(wave, &info);
    if (dataOffset == 0) return 0;
    if (info.bits == 16) {
        MemRefLock lock(wave);
        if (!lock) return 0;
        for (uint32_t i = 0; i + 1 < info.dataBytes; i += 2) Swap16(lock.data() + dataOffset + i);
    }
    return BuildSoundRecord(wave, dataOffset, info);
}
