#include "media/CompressedSound.h"

#include <cstddef>
#include <cstring>
#include <vector>

#include "base/ByteOrder.h"
#include "media/Extended80.h"
#include "media/SoundRecord.h"

namespace {

constexpr uint32_t kMarkAt = kSoundHeaderAt + 40;  // 68
constexpr uint32_t kPairsAt = kExtendedSamplesAt;  // the total, the count, then the pairs
constexpr uint32_t kPairBytes = 8;
constexpr uint32_t kSilentRunMin = 10;

inline bool IsSilent(uint8_t b) { return b > 122 && b <= 133; }

struct Pair {
    uint32_t silence = 0, sound = 0;
};

std::vector<Pair> SplitRuns(const uint8_t* s, uint32_t n) {
    const auto silentRun = [s, n](uint32_t at) {
        uint32_t end = at;
        while (end < n && IsSilent(s[end])) ++end;
        return end - at;
    };
    std::vector<Pair> pairs;
    for (uint32_t at = 0; at < n;) {
        Pair p;
        const uint32_t quiet = silentRun(at);
        if (quiet >= kSilentRunMin) p.silence = quiet;
        at += p.silence;
        const uint32_t start = at;
        while (at < n && silentRun(at) < kSilentRunMin) {
            // Past a short silent run at once: it belongs to the sound.
            const uint32_t skip = silentRun(at);
            at += skip ? skip : 1;
        }
        p.sound = at - start;
        pairs.push_back(p);
    }
    return pairs;
}

// Groups of eight items behind a flags byte; an item is three bytes, or two when the second and
// third lie within -8..7 of the first. The last one or two bytes go as they are.
void Pack(const uint8_t* s, uint32_t n, std::vector<uint8_t>& out) {
    size_t flags = 0;
    uint32_t item = 0, at = 0;
    for (; at + 3 <= n; at += 3) {
        if (item == 0) {
            flags = out.size();
            out.push_back(0);
        }
        const int32_t db = s[at + 1] - s[at], dc = s[at + 2] - s[at];
        out.push_back(s[at]);
        if (db >= -8 && db <= 7 && dc >= -8 && dc <= 7) {
            out.push_back(static_cast<uint8_t>((db & 15) << 4 | (dc & 15)));
            out[flags] |= static_cast<uint8_t>(0x80 >> item);
        } else {
            out.push_back(s[at + 1]);
            out.push_back(s[at + 2]);
        }
        item = (item + 1) % 8;
    }
    out.insert(out.end(), s + at, s + n);
}

inline uint8_t Nibble(uint32_t v) { return static_cast<uint8_t>(v & 8 ? static_cast<int32_t>(v) - 16 : static_cast<int32_t>(v)); }

// The inverse of Pack for `n` bytes; false when the packed bytes run out first.
bool Unpack(const uint8_t* in, uint32_t inBytes, uint8_t* out, uint32_t n) {
    uint32_t r = 0, item = 0, flags = 0, at = 0;
    for (; at + 3 <= n; at += 3) {
        if (item == 0) {
            if (r >= inBytes) return false;
            flags = in[r++];
        }
        const bool two = flags & (0x80 >> item);
        if (r + (two ? 2 : 3) > inBytes) return false;
        const uint8_t a = in[r];
        out[at] = a;
        if (two) {
            out[at + 1] = static_cast<uint8_t>(a + Nibble(in[r + 1] >> 4));
            out[at + 2] = static_cast<uint8_t>(a + Nibble(in[r + 1] & 15));
            r += 2;
        } else {
            out[at + 1] = in[r + 1];
            out[at + 2] = in[r + 2];
            r += 3;
        }
        item = (item + 1) % 8;
    }
    if (r + (n - at) > inBytes) return false;
    if (n > at) std::memcpy(out + at, in + r, n - at);
    return true;
}

MemRef BlockOfBytes(const std::vector<uint8_t>& bytes) {
    const MemRef ref = NewMemRef(static_cast<uint32_t>(bytes.size()));
    MemRefLock lock(ref);
    if (!lock) {
        if (ref) FreeMemRef(ref);
        return 0;
    }
    std::memcpy(lock.data(), bytes.data(), bytes.size());
    return ref;
}

}  // namespace

MemRef CompressSoundRecord(MemRef record) {
    std::vector<uint8_t> out;
    SoundInfo info;
    {
        MemRefLock lock(record);
        uint32_t dataOffset = 0;
        if (!lock || ScanSoundRecord(lock.data(), GetMemRefSize(record), &info, &dataOffset) != 0) return 0;
        const uint8_t* h = lock.data() + kSoundHeaderAt;
        if (dataOffset != kStandardSamplesAt || h[kSoundEncoding] != kEncodingStandard || info.dataBytes == 0) return 0;
        const uint8_t* samples = lock.data() + dataOffset;
        const std::vector<Pair> pairs = SplitRuns(samples, info.dataBytes);
        out.assign(lock.data(), lock.data() + kSoundHeaderAt);
        out.resize(kPairsAt + 6 + pairs.size() * kPairBytes);
        uint8_t* o = out.data();
        uint8_t* oh = o + kSoundHeaderAt;
        WriteBE32(oh + kSoundLengthOrChannels, 1);
        WriteBE32(oh + kSoundRate, info.rate << 16);
        oh[kSoundEncoding] = kEncodingCompressed;
        oh[kSoundBaseNote] = kBaseNote;
        WriteBE32(oh + kSoundFrames, info.dataBytes);
        DoubleToExtended(info.rate, oh + kSoundExtendedRate);
        WriteBE32(o + kMarkAt, kCompressedMark);
        WriteBE16(o + 84, 65535);
        WriteBE16(o + 86, 192);
        WriteBE16(o + 90, 8);
        WriteBE32(o + kPairsAt, info.dataBytes);
        WriteBE16(o + kPairsAt + 4, static_cast<uint16_t>(pairs.size()));
        if (pairs.size() > UINT16_MAX) return 0;
        std::vector<uint8_t> sounding;
        uint32_t at = 0;
        for (size_t i = 0; i < pairs.size(); ++i) {
            WriteBE32(o + kPairsAt + 6 + i * kPairBytes, pairs[i].silence);
            WriteBE32(o + kPairsAt + 10 + i * kPairBytes, pairs[i].sound);
            at += pairs[i].silence;
            sounding.insert(sounding.end(), samples + at, samples + at + pairs[i].sound);
            at += pairs[i].sound;
        }
        Pack(sounding.data(), static_cast<uint32_t>(sounding.size()), out);
    }
    return BlockOfBytes(out);
}

MemRef DecompressSoundRecord(MemRef record) {
    std::vector<uint8_t> samples;
    SoundInfo info;
    {
        MemRefLock lock(record);
        const uint32_t size = GetMemRefSize(record);
        if (!lock || size < kPairsAt + 6) return 0;
        const uint8_t* r = lock.data();
        if (r[kSoundHeaderAt + kSoundEncoding] != kEncodingCompressed || ReadBE32(r + kMarkAt) != kCompressedMark) return 0;
        const uint32_t total = ReadBE32(r + kPairsAt), count = ReadBE16(r + kPairsAt + 4);
        const uint64_t packedAt = kPairsAt + 6 + uint64_t{count} * kPairBytes;
        if (total > kMaxUnpackedSoundBytes || packedAt > size) return 0;
        uint64_t sum = 0, soundBytes = 0;
        for (uint32_t i = 0; i < count; ++i) {
            sum += uint64_t{ReadBE32(r + kPairsAt + 6 + i * kPairBytes)} + ReadBE32(r + kPairsAt + 10 + i * kPairBytes);
            soundBytes += ReadBE32(r + kPairsAt + 10 + i * kPairBytes);
        }
        if (sum != total) return 0;
        std::vector<uint8_t> sounding(soundBytes);
        if (!Unpack(r + packedAt, static_cast<uint32_t>(size - packedAt), sounding.data(), static_cast<uint32_t>(soundBytes))) return 0;
        samples.reserve(total);
        size_t from = 0;
        for (uint32_t i = 0; i < count; ++i) {
            samples.insert(samples.end(), ReadBE32(r + kPairsAt + 6 + i * kPairBytes), 128);
            const uint32_t sound = ReadBE32(r + kPairsAt + 10 + i * kPairBytes);
            samples.insert(samples.end(), sounding.begin() + static_cast<std::ptrdiff_t>(from), sounding.begin() + static_cast<std::ptrdiff_t>(from + sound));
            from += sound;
        }
        info.bits = 8;
        info.channels = 1;
        info.rate = ReadBE32(r + kSoundHeaderAt + kSoundRate) >> 16;
        info.dataBytes = total;
    }
    if (info.rate == 0 || info.dataBytes == 0) return 0;
    const MemRef block = BlockOfBytes(samples);
    if (!block) return 0;
    const MemRef out = BuildSoundRecord(block, 0, info);
    if (out != block) FreeMemRef(block);
    return out;
}
