#include "media/MsAdpcm.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

#include "base/ByteOrder.h"

namespace {

// The step size grows by at most 768/256 a sample; held below this it can neither overflow the
// next adaptation nor a code times the step. Real streams never come near it.
constexpr int32_t kMaxDelta = INT32_MAX / 768;

inline int32_t Clamp16(int32_t v) { return std::clamp(v, -32768, 32767); }

inline int32_t Adapt(int32_t delta, int32_t code) {
    const int32_t next = (kAdpcmAdaptation[code & 15] * delta) >> 8;
    return std::clamp(next, kAdpcmMinDelta, kMaxDelta);
}

struct Channel {
    int32_t c1 = 0, c2 = 0;
    int32_t delta = 0;
    int32_t sample1 = 0, sample2 = 0;

    // One 4-bit code, sign-extended, to a sample: the step in force multiplies the code, the
    // adapted one serves the next sample.
    inline int32_t Expand(int32_t code) {
        const int32_t prediction = (sample1 * c1 + sample2 * c2) >> 8;
        const int32_t sample = Clamp16(code * delta + prediction);
        delta = Adapt(delta, code);
        sample2 = sample1;
        sample1 = sample;
        return sample;
    }
    // The encoder's step: the code nearest below the error, and the decoder's answer to it.
    inline int32_t Code(int32_t source) {
        const int32_t prediction = (sample1 * c1 + sample2 * c2) >> 8;
        const int32_t code = std::clamp((source - prediction) / delta, -8, 7);
        const int32_t decoded = Clamp16(prediction + delta * code);
        delta = Adapt(delta, code);
        sample2 = sample1;
        sample1 = decoded;
        return code;
    }
};

inline int32_t SignedNibble(uint32_t nibble) { return static_cast<int32_t>(nibble ^ 8) - 8; }

template <bool Eight>
inline uint8_t* Put(uint8_t* out, int32_t sample) {
    if constexpr (Eight) {
        *out = static_cast<uint8_t>((sample >> 8) + 128);
        return out + 1;
    } else {
        Write16(out, static_cast<uint16_t>(sample));
        return out + 2;
    }
}

// A format whose samples per block fit its block: nothing is read outside a block.
bool BlockHoldsItsSamples(const WaveFormat& adpcm) {
    const uint32_t c = adpcm.channels;
    if (adpcm.blockAlign < kAdpcmBlockHeadPerChannel * c || adpcm.samplesPerBlock < 2) return false;
    const uint32_t nibbles = (adpcm.samplesPerBlock - 2u) * c;
    return nibbles <= (adpcm.blockAlign - kAdpcmBlockHeadPerChannel * c) * 2u;
}

// Returns false on a predictor index out of the table.
template <uint32_t C, bool Eight>
bool DecodeBlock(const uint8_t* block, uint32_t samplesPerBlock, uint8_t*& out) {
    Channel ch[C];
    for (uint32_t i = 0; i < C; ++i) {
        const uint8_t predictor = block[i];
        if (predictor >= kAdpcmPredictors) return false;
        ch[i].c1 = kAdpcmCoefficient1[predictor];
        ch[i].c2 = kAdpcmCoefficient2[predictor];
        ch[i].delta = ReadS16(block + C + 2 * i);
        ch[i].sample1 = ReadS16(block + 3 * C + 2 * i);
        ch[i].sample2 = ReadS16(block + 5 * C + 2 * i);
    }
    for (uint32_t i = 0; i < C; ++i) out = Put<Eight>(out, ch[i].sample2);
    for (uint32_t i = 0; i < C; ++i) out = Put<Eight>(out, ch[i].sample1);
    const uint8_t* codes = block + kAdpcmBlockHeadPerChannel * C;
    const uint32_t nibbles = (samplesPerBlock - 2) * C;
    for (uint32_t n = 0; n + 2 <= nibbles; n += 2) {
        const uint32_t byte = *codes++;
        // High nibble first; in stereo the high one is the left channel's.
        out = Put<Eight>(out, ch[0].Expand(SignedNibble(byte >> 4)));
        out = Put<Eight>(out, ch[C - 1].Expand(SignedNibble(byte & 15)));
    }
    if (nibbles & 1) out = Put<Eight>(out, ch[0].Expand(SignedNibble(*codes >> 4)));
    return true;
}

template <uint32_t C, bool Eight>
uint32_t DecodeBlocks(const WaveFormat& adpcm, const uint8_t* source, uint8_t* destination, uint32_t sourceBytes) {
    uint8_t* out = destination;
    const uint32_t blocks = sourceBytes / adpcm.blockAlign;
    for (uint32_t b = 0; b < blocks; ++b) {
        if (!DecodeBlock<C, Eight>(source + static_cast<size_t>(b) * adpcm.blockAlign, adpcm.samplesPerBlock, out)) return 0;
    }
    return static_cast<uint32_t>(out - destination);
}

int32_t SourceSample(const uint8_t* source, uint32_t index, bool eight) {
    if (eight) return (source[index] - 128) * 256;
    return ReadS16(source + 2 * static_cast<size_t>(index));
}

// The starting step for a predictor: the mean error of its first three predictions, over 12.
int32_t EstimateDelta(int32_t c1, int32_t c2, const int32_t s[5]) {
    int32_t sum = 0;
    for (int i = 2; i < 5; ++i) sum += std::abs(s[i] - ((s[i - 2] * c2 + s[i - 1] * c1) >> 8));
    return std::max(sum / 12, kAdpcmMinDelta);
}

// The samples of one channel of a block, with the first two as the block head takes them.
Channel StartChannel(int predictor, const int32_t* samples, uint32_t count) {
    int32_t first[5] = {};
    for (uint32_t i = 0; i < 5 && i < count; ++i) first[i] = samples[i];
    Channel ch;
    ch.c1 = kAdpcmCoefficient1[predictor];
    ch.c2 = kAdpcmCoefficient2[predictor];
    ch.delta = EstimateDelta(ch.c1, ch.c2, first);
    ch.sample1 = first[1];
    ch.sample2 = first[0];
    return ch;
}

// The predictor whose trial coding of the channel has the least squared error; the lowest index
// wins a tie.
int BestPredictor(const int32_t* samples, uint32_t count) {
    int best = 0;
    int64_t bestTotal = 0;
    for (int p = 0; p < kAdpcmPredictors; ++p) {
        Channel ch = StartChannel(p, samples, count);
        int64_t total = 0;
        for (uint32_t i = 2; i < count; ++i) {
            ch.Code(samples[i]);
            const int64_t error = ch.sample1 - samples[i];
            total += (error * error) >> 7;
        }
        if (p == 0 || total < bestTotal) {
            best = p;
            bestTotal = total;
        }
    }
    return best;
}

}  // namespace

int IsValidAdpcmFormat(const WaveFormat& format) {
    if (format.formatTag != kWaveFormatAdpcm || format.bitsPerSample != 4) return 0;
    if (format.channels != 1 && format.channels != 2) return 0;
    if (format.numCoefficients != kAdpcmPredictors) return 0;
    for (int i = 0; i < kAdpcmPredictors; ++i) {
        if (format.coefficients[i][0] != kAdpcmCoefficient1[i] || format.coefficients[i][1] != kAdpcmCoefficient2[i]) return 0;
    }
    return 1;
}

int IsValidPcmFormat(const WaveFormat& format) {
    return format.formatTag == kWaveFormatPcm && (format.bitsPerSample == 8 || format.bitsPerSample == 16) &&
           (format.channels == 1 || format.channels == 2);
}

int SuggestAdpcmFormat(const WaveFormat& source, WaveFormat* destination) {
    if (IsValidPcmFormat(source)) {
        WaveFormat f;
        f.formatTag = kWaveFormatAdpcm;
        f.channels = source.channels;
        f.samplesPerSec = source.samplesPerSec;
        f.bitsPerSample = 4;
        uint32_t blockAlign = 256u * source.channels;
        if (source.samplesPerSec > 11025) blockAlign *= source.samplesPerSec / 11000;
        if (blockAlign > UINT16_MAX) return 0;  // no block of a rate this high fits the field
        f.blockAlign = static_cast<uint16_t>(blockAlign);
        const uint32_t head = kAdpcmBlockHeadPerChannel * source.channels;
        f.samplesPerBlock = static_cast<uint16_t>((f.blockAlign - head) * 8 / (4u * source.channels) + 2);
        // Kept to 16 bits as the system's own routine keeps it; nothing reads it back.
        const uint32_t n = 4u * source.channels * source.samplesPerSec / 8;
        f.avgBytesPerSec = (n + head + (f.blockAlign ? n / f.blockAlign : 0) * head) & 0xFFFF;
        f.extraSize = kAdpcmExtraSize;
        f.numCoefficients = kAdpcmPredictors;
        for (int i = 0; i < kAdpcmPredictors; ++i) {
            f.coefficients[i][0] = kAdpcmCoefficient1[i];
            f.coefficients[i][1] = kAdpcmCoefficient2[i];
        }
        *destination = f;
        return 1;
    }
    if (IsValidAdpcmFormat(source)) {
        WaveFormat f;
        f.formatTag = kWaveFormatPcm;
        f.channels = source.channels;
        f.samplesPerSec = source.samplesPerSec;
        f.bitsPerSample = destination->bitsPerSample == 8 ? 8 : 16;
        f.blockAlign = static_cast<uint16_t>((f.bitsPerSample / 8) << (f.channels / 2));
        f.avgBytesPerSec = f.samplesPerSec * f.blockAlign;
        *destination = f;
        return 1;
    }
    return 0;
}

uint64_t AdpcmDecodedBytes(const WaveFormat& adpcm, const WaveFormat& pcm, uint32_t sourceBytes) {
    if (!adpcm.blockAlign) return 0;
    return uint64_t{sourceBytes / adpcm.blockAlign} * adpcm.samplesPerBlock * adpcm.channels * (pcm.bitsPerSample / 8);
}

uint64_t AdpcmEncodedBytes(const WaveFormat& pcm, const WaveFormat& adpcm, uint32_t sourceBytes) {
    const uint32_t c = pcm.channels, frameBytes = c * (pcm.bitsPerSample / 8u);
    if (!frameBytes || adpcm.samplesPerBlock < 2) return 0;
    const uint32_t frames = sourceBytes / frameBytes;
    const auto blockBytes = [c](uint32_t n) { return kAdpcmBlockHeadPerChannel * c + (n > 2 ? ((n - 2) * c + 1) / 2 : 0); };
    const uint32_t rest = frames % adpcm.samplesPerBlock;
    return uint64_t{frames / adpcm.samplesPerBlock} * blockBytes(adpcm.samplesPerBlock) + (rest ? blockBytes(rest) : 0);
}

uint32_t AdpcmDecode(const WaveFormat& adpcm, const uint8_t* source, const WaveFormat& pcm, uint8_t* destination,
                     uint32_t sourceBytes) {
    if (!IsValidAdpcmFormat(adpcm) || !IsValidPcmFormat(pcm) || pcm.channels != adpcm.channels) return 0;
    if (!BlockHoldsItsSamples(adpcm)) return 0;
    const bool eight = pcm.bitsPerSample == 8;
    if (adpcm.channels == 1) {
        return eight ? DecodeBlocks<1, true>(adpcm, source, destination, sourceBytes)
                     : DecodeBlocks<1, false>(adpcm, source, destination, sourceBytes);
    }
    return eight ? DecodeBlocks<2, true>(adpcm, source, destination, sourceBytes)
                 : DecodeBlocks<2, false>(adpcm, source, destination, sourceBytes);
}

uint32_t AdpcmEncode(const WaveFormat& pcm, const uint8_t* source, const WaveFormat& adpcm, uint8_t* destination,
                     uint32_t sourceBytes) {
    if (!IsValidPcmFormat(pcm) || !IsValidAdpcmFormat(adpcm) || pcm.channels != adpcm.channels) return 0;
    if (adpcm.samplesPerBlock < 2) return 0;
    const uint32_t c = pcm.channels, spb = adpcm.samplesPerBlock;
    const bool eight = pcm.bitsPerSample == 8;
    const uint32_t frames = sourceBytes / (c * (pcm.bitsPerSample / 8u));
    // One channel's samples of a block at a time, laid out flat for the trials.
    std::unique_ptr<int32_t[]> work(new (std::nothrow) int32_t[static_cast<size_t>(spb) * c]);
    if (!work) return 0;
    uint8_t* out = destination;
    for (uint32_t first = 0; first < frames; first += spb) {
        const uint32_t n = std::min(spb, frames - first);
        Channel ch[2];
        for (uint32_t k = 0; k < c; ++k) {
            int32_t* samples = work.get() + static_cast<size_t>(k) * spb;
            for (uint32_t i = 0; i < n; ++i) samples[i] = SourceSample(source, (first + i) * c + k, eight);
            const int predictor = BestPredictor(samples, n);
            ch[k] = StartChannel(predictor, samples, n);
            out[k] = static_cast<uint8_t>(predictor);
            Write16(out + c + 2 * k, static_cast<uint16_t>(ch[k].delta));
            Write16(out + 3 * c + 2 * k, static_cast<uint16_t>(ch[k].sample1));
            Write16(out + 5 * c + 2 * k, static_cast<uint16_t>(ch[k].sample2));
        }
        out += kAdpcmBlockHeadPerChannel * c;
        // High nibble first; an odd last nibble of a short block takes a byte of its own.
        bool high = true;
        for (uint32_t i = 2; i < n; ++i) {
            for (uint32_t k = 0; k < c; ++k) {
                const auto nibble = static_cast<uint8_t>(ch[k].Code(work[static_cast<size_t>(k) * spb + i]) & 15);
                if (high) {
                    *out = static_cast<uint8_t>(nibble << 4);
                } else {
                    *out++ |= nibble;
                }
                high = !high;
            }
        }
        if (!high) ++out;
    }
    return static_cast<uint32_t>(out - destination);
}
