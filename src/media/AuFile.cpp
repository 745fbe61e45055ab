#include "media/AuFile.h"

#include "base/ByteOrder.h"
#include "media/RiffChunks.h"

namespace {

constexpr uint32_t kAuHeaderBytes = 24;  // the least the header size field may say
constexpr uint32_t kAuDataOffset = 4;
constexpr uint32_t kAuEncoding = 12;
constexpr uint32_t kAuRate = 16;
constexpr uint32_t kAuChannels = 20;

constexpr int16_t MuLawValue(uint8_t code) {
    const uint8_t u = static_cast<uint8_t>(~code);
    const int32_t exponent = (u >> 4) & 7, mantissa = u & 15;
    const int32_t magnitude = (((mantissa << 3) + 0x84) << exponent) - 0x84;
    return static_cast<int16_t>(u & 0x80 ? -magnitude : magnitude);
}

struct MuLawTable {
    int16_t values[256] = {};
    constexpr MuLawTable() {
        for (int i = 0; i < 256; ++i) values[i] = MuLawValue(static_cast<uint8_t>(i));
    }
};
constexpr MuLawTable kMuLaw;

uint32_t BytesPerSample(AuEncoding e) { return e == AuEncoding::Linear16 ? 2 : 1; }

}  // namespace

int16_t MuLawToLinear(uint8_t code) { return kMuLaw.values[code]; }

int32_t ScanAu(const uint8_t* bytes, uint32_t size, AuLayout* layout) {
    *layout = AuLayout{};
    if (size < kAuHeaderBytes || ReadBE32(bytes) != FourCC(".snd")) return kAlertBadSound;
    const uint32_t start = ReadBE32(bytes + kAuDataOffset);
    if (start < kAuHeaderBytes || start > size) return kAlertBadSound;
    const uint32_t encoding = ReadBE32(bytes + kAuEncoding);
    if (encoding < 1 || encoding > 3) return kAlertSoundType;
    layout->encoding = static_cast<AuEncoding>(encoding);
    const uint32_t channels = ReadBE32(bytes + kAuChannels);
    layout->rate = ReadBE32(bytes + kAuRate);
    if (channels < 1 || channels > 2 || layout->rate == 0) return kAlertSoundType;
    layout->channels = static_cast<uint16_t>(channels);
    layout->dataOffset = start;
    // The data size field is often unknown (all ones); the samples run to the end of the file.
    layout->frames = (size - start) / (BytesPerSample(layout->encoding) * channels);
    return 0;
}

int32_t ExpandAu(const uint8_t* bytes, const AuLayout& layout, uint32_t lead, MemRef* block, SoundInfo* info) {
    *block = 0;
    *info = SoundInfo{};
    info->bits = layout.encoding == AuEncoding::Linear8 ? 8 : 16;
    info->channels = layout.channels;
    info->rate = layout.rate;
    info->frames = layout.frames;
    const uint64_t samples = uint64_t{layout.frames} * layout.channels;
    const uint64_t outBytes = samples * (info->bits / 8);
    if (outBytes + lead > UINT32_MAX) return kAlertSoundNoMemory;
    info->dataBytes = static_cast<uint32_t>(outBytes);
    const MemRef out = NewMemRef(static_cast<uint32_t>(outBytes + lead));
    MemRefLock lock(out);
    if (!lock) {
        if (out) FreeMemRef(out);
        return kAlertSoundNoMemory;
    }
    const uint8_t* in = bytes + layout.dataOffset;
    uint8_t* o = lock.data() + lead;
    for (uint64_t i = 0; i < samples; ++i) {
        switch (layout.encoding) {
        case AuEncoding::MuLaw: Write16(o + 2 * i, static_cast<uint16_t>(kMuLaw.values[in[i]])); break;
        case AuEncoding::Linear8: o[i] = static_cast<uint8_t>(in[i] ^ 0x80); break;
        case AuEncoding::Linear16: Write16(o + 2 * i, ReadBE16(in + 2 * i)); break;
        }
    }
    *block = out;
    return 0;
}
