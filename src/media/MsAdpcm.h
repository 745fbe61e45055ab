// The Microsoft ADPCM wave format (format tag 2) to and from linear PCM (tag 1): mono and stereo,
// 8- and 16-bit PCM, on memory buffers. The bit stream, block layout and tables are the published
// format's; the encoder tries all seven predictors on each block and keeps the best per channel.
#pragma once

#include <cstdint>

inline constexpr uint16_t kWaveFormatPcm = 1;
inline constexpr uint16_t kWaveFormatAdpcm = 2;
inline constexpr uint16_t kAdpcmPredictors = 7;
inline constexpr uint16_t kAdpcmExtraSize = 32;
inline constexpr int16_t kAdpcmCoefficient1[kAdpcmPredictors] = {256, 512, 0, 192, 240, 460, 392};
inline constexpr int16_t kAdpcmCoefficient2[kAdpcmPredictors] = {0, -256, 0, 64, 0, -208, -232};
inline constexpr int32_t kAdpcmAdaptation[16] = {230, 230, 230, 230, 307, 409, 512, 614,
                                                 768, 614, 512, 409, 307, 230, 230, 230};
inline constexpr int32_t kAdpcmMinDelta = 16;
// A block starts with, per channel, a predictor byte and three 16-bit words.
inline constexpr uint32_t kAdpcmBlockHeadPerChannel = 7;

// The format description of a wave, native order: the platform's WAVEFORMATEX with the ADPCM
// extension behind it. The last three fields count for ADPCM only.
struct WaveFormat {
    uint16_t formatTag = 0;
    uint16_t channels = 0;
    uint32_t samplesPerSec = 0;
    uint32_t avgBytesPerSec = 0;
    uint16_t blockAlign = 0;
    uint16_t bitsPerSample = 0;
    uint16_t extraSize = 0;
    uint16_t samplesPerBlock = 0;
    uint16_t numCoefficients = 0;
    int16_t coefficients[kAdpcmPredictors][2] = {};
};

// 1 if `format` is ADPCM with 4 bits, one or two channels and the seven published pairs.
int IsValidAdpcmFormat(const WaveFormat& format);
// 1 if `format` is PCM of 8 or 16 bits in one or two channels.
int IsValidPcmFormat(const WaveFormat& format);
// From PCM the ADPCM format that codes it, from ADPCM the PCM format it decodes to (16 bits unless
// `destination` already asks for 8); 1, or 0 for any other source and for rates whose block would
// not fit its 16-bit field.
int SuggestAdpcmFormat(const WaveFormat& source, WaveFormat* destination);

// Bytes of PCM that AdpcmDecode makes of `sourceBytes` in `pcm`: the room its destination needs.
uint64_t AdpcmDecodedBytes(const WaveFormat& adpcm, const WaveFormat& pcm, uint32_t sourceBytes);
// Bytes AdpcmEncode writes for `sourceBytes` of PCM at most.
uint64_t AdpcmEncodedBytes(const WaveFormat& pcm, const WaveFormat& adpcm, uint32_t sourceBytes);

// Decodes the whole blocks of `source` into `destination`, which has AdpcmDecodedBytes of room.
// A block that doesn't fit wholly ends the decoding; a predictor index of 7 or more anywhere, or a
// format whose samples per block don't fit its block, gives 0. Returns the bytes written.
uint32_t AdpcmDecode(const WaveFormat& adpcm, const uint8_t* source, const WaveFormat& pcm, uint8_t* destination,
                     uint32_t sourceBytes);
// Codes `sourceBytes` of PCM, a block of at most samplesPerBlock frames at a time; a last, shorter
// block is coded as such. Returns the bytes written, 0 if the work buffer can't be had.
uint32_t AdpcmEncode(const WaveFormat& pcm, const uint8_t* source, const WaveFormat& adpcm, uint8_t* destination,
                     uint32_t sourceBytes);
