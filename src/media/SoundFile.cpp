#include "media/SoundFile.h"

#include <cctype>
#include <cstring>

#include "media/AiffFile.h"
#include "media/AuFile.h"
#include "media/SoundWave.h"
#include "media/WaveFile.h"
#include "messages/Alert.h"
#include "platform/HostFile.h"

namespace {

// Copies `info.dataBytes` at `bytes` behind a free header's room, for the image to be made in place.
int32_t CopyBehindHeader(const uint8_t* bytes, const SoundInfo& info, MemRef* block) {
    *block = NewMemRef(kWaveHeaderBytes + info.dataBytes);
    MemRefLock lock(*block);
    if (!lock) {
        if (*block) FreeMemRef(*block);
        *block = 0;
        return kAlertSoundNoMemory;
    }
    std::memcpy(lock.data() + kWaveHeaderBytes, bytes, info.dataBytes);
    return 0;
}

// The samples at 44 in `block` become the image; `block` goes if the image is a new one.
// A file without a single frame is no sound: silence alone isn't played.
int32_t FinishImage(MemRef block, SoundInfo* info, MemRef* wave) {
    if (info->dataBytes == 0) {
        FreeMemRef(block);
        return kAlertBadSound;
    }
    const int32_t result = MakeWaveImage(block, kWaveHeaderBytes, info, true, wave);
    if (*wave != block) FreeMemRef(block);
    return result;
}

int32_t DecodeWave(const uint8_t* bytes, uint32_t size, MemRef* wave, SoundInfo* info) {
    WaveLayout layout;
    if (const int32_t result = ScanWave(bytes, size, &layout)) return result;
    MemRef block = 0;
    int32_t result = 0;
    if (layout.format.formatTag == kWaveFormatAdpcm) {
        result = DecodeAdpcmWave(bytes, layout, kWaveHeaderBytes, &block, info);
    } else {
        WaveInfo(layout, info);
        result = CopyBehindHeader(bytes + layout.dataOffset, *info, &block);
    }
    return result ? result : FinishImage(block, info, wave);
}

int32_t DecodeAiff(const uint8_t* bytes, uint32_t size, MemRef* wave, SoundInfo* info) {
    uint32_t dataOffset = 0;
    if (const int32_t result = ScanAiff(bytes, size, info, &dataOffset)) return result;
    MemRef block = 0;
    if (const int32_t result = CopyBehindHeader(bytes + dataOffset, *info, &block)) return result;
    if (info->bits == 8) {
        // AIFF's 8-bit samples are signed, the wave's unsigned.
        MemRefLock lock(block);
        for (uint32_t i = 0; i < info->dataBytes; ++i) lock.data()[kWaveHeaderBytes + i] ^= 0x80;
    }
    return FinishImage(block, info, wave);
}

int32_t DecodeAu(const uint8_t* bytes, uint32_t size, MemRef* wave, SoundInfo* info) {
    AuLayout layout;
    if (const int32_t result = ScanAu(bytes, size, &layout)) return result;
    MemRef block = 0;
    if (const int32_t result = ExpandAu(bytes, layout, kWaveHeaderBytes, &block, info)) return result;
    return FinishImage(block, info, wave);
}

}  // namespace

int32_t SoundFileType(const std::string& path) {
    const size_t dot = path.find_last_of('.');
    if (dot == std::string::npos || path.find_first_of("/\\", dot) != std::string::npos) return -1;
    std::string ext = path.substr(dot + 1);
    for (char& ch : ext) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
    if (ext == "wav") return kFileTypeWave;
    if (ext == "aif" || ext == "aiff" || ext == "aifc") return kFileTypeAiff;
    if (ext == "au") return kFileTypeAu;
    return -1;
}

int32_t DecodeSoundBytes(const uint8_t* bytes, uint32_t size, int32_t fileType, MemRef* wave, SoundInfo* info) {
    *wave = 0;
    *info = SoundInfo{};
    switch (fileType) {
    case kFileTypeWave: return DecodeWave(bytes, size, wave, info);
    case kFileTypeAiff: return DecodeAiff(bytes, size, wave, info);
    case kFileTypeAu: return DecodeAu(bytes, size, wave, info);
    default: return kAlertBadSound;
    }
}

int ReadSoundFile(const std::string& hostPath, MemRef* wave, SoundInfo* info) {
    *wave = 0;
    *info = SoundInfo{};
    HostFile* file = nullptr;
    if (OpenHostFile(hostPath, FileMode::Read, &file) != 0) return 1;
    uint64_t length = 0;
    int32_t result = kAlertBadSound;
    if (HostFileLength(file, &length) == 0 && length > 0 && length < UINT32_MAX) {
        const auto size = static_cast<uint32_t>(length);
        const MemRef bytes = NewMemRef(size);
        result = kAlertSoundNoMemory;
        if (bytes) {
            MemRefLock lock(bytes);
            if (lock && ReadHostFile(file, lock.data(), size) == 0) {
                result = DecodeSoundBytes(lock.data(), size, SoundFileType(hostPath), wave, info);
            } else if (lock) {
                result = kAlertBadSound;
            }
        }
        if (bytes) FreeMemRef(bytes);
    }
    CloseHostFile(file);
    if (result != 0) {
        Alert(result);
        return 0;
    }
    return 1;
}
