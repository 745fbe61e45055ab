#include "media/AiffFile.h"

#include <algorithm>

#include "base/ByteOrder.h"
#include "media/Extended80.h"
#include "media/RiffChunks.h"
#include "messages/Alert.h"

namespace {

// Offsets from a chunk's start, its 8-byte head included.
constexpr uint32_t kCommChannels = 8;
constexpr uint32_t kCommFrames = 10;
constexpr uint32_t kCommBits = 14;
constexpr uint32_t kCommRate = 16;
constexpr uint32_t kCommBytes = kCommRate + kExtendedBytes;  // 26: the plain AIFF form
constexpr uint32_t kCommCompression = 26;                   // AIFC only
constexpr uint32_t kSsndOffsetField = 8;
constexpr uint32_t kSsndSamples = 16;

bool FindForm(const uint8_t* bytes, uint32_t size, uint32_t* form) {
    for (uint32_t at = 0; at + 12 <= size; ++at) {
        if (ReadBE32(bytes + at) == FourCC("FORM")) {
            *form = at;
            return true;
        }
    }
    return false;
}

}  // namespace

int32_t ScanAiff(const uint8_t* bytes, uint32_t size, SoundInfo* info, uint32_t* dataOffset) {
    *info = SoundInfo{};
    uint32_t form = 0;
    if (!FindForm(bytes, size, &form)) return kAlertBadSound;
    const uint32_t type = ReadBE32(bytes + form + 8);
    if (type != FourCC("AIFF") && type != FourCC("AIFC")) return kAlertBadSound;
    const uint8_t* base = bytes + form;
    const uint64_t end = size - form;
    bool haveComm = false, haveData = false;
    uint32_t commFrames = 0, ssndBytes = 0;
    // Chunks follow each other by their sizes alone: odd sizes get no pad byte here.
    for (uint64_t at = 12; at + 8 <= end;) {
        const uint32_t id = ReadBE32(base + at), chunkBytes = ReadBE32(base + at + 4);
        uint64_t next = at + 8 + chunkBytes;
        if (id == FourCC("COMM")) {
            if (at + kCommBytes > end) return kAlertBadSound;
            if (type == FourCC("AIFC")) {
                if (at + kCommCompression + 4 > end) return kAlertBadSound;
                if (ReadBE32(base + at + kCommCompression) != FourCC("NONE")) return kAlertSoundType;
            }
            info->channels = ReadBE16(base + at + kCommChannels);
            commFrames = ReadBE32(base + at + kCommFrames);
            info->bits = ReadBE16(base + at + kCommBits);
            const double rate = ExtendedToDouble(base + at + kCommRate);
            // Cut to a whole number; a rate no sound has is a damaged file.
            if (!(rate >= 1 && rate < 4294967296.0)) return kAlertBadSound;
            info->rate = static_cast<uint32_t>(rate);
            haveComm = true;
        } else if (id == FourCC("SSND")) {
            if (at + kSsndSamples > end) return kAlertBadSound;
            *dataOffset = static_cast<uint32_t>(form + at + kSsndSamples);
            const uint64_t held = end - (at + kSsndSamples);
            ssndBytes = static_cast<uint32_t>(chunkBytes < 8 ? 0 : std::min<uint64_t>(chunkBytes - 8, held));
            next += ReadBE32(base + at + kSsndOffsetField);
            haveData = true;
        }
        at = next;
    }
    if (!haveComm || !haveData) return kAlertBadSound;
    if (!IsPlayableSound(*info)) return kAlertSoundType;
    // The frame count and the samples held agree on the smaller of the two.
    info->frames = std::min(commFrames, ssndBytes / SoundFrameBytes(*info));
    info->dataBytes = info->frames * SoundFrameBytes(*info);
    info->bigEndian = 1;
    return 0;
}

uint32_t ParseAiff(MemRef file, SoundInfo* info) {
    uint32_t dataOffset = 0;
    int32_t result = kAlertBadSound;
    {
        MemRefLock lock(file);
        if (lock) result = ScanAiff(lock.data(), GetMemRefSize(file), info, &dataOffset);
    }
    if (result != 0) {
        Alert(result);
        return 0;
    }
    return dataOffset;
}
