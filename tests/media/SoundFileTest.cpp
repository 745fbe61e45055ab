// Damaged sound files built by hand; files made by sox and ffmpeg, whose samples we must decode bit
// for bit as the tools do (MS-ADPCM as sox does: it shifts where ffmpeg divides); our MS-ADPCM coder.
#include "media/SoundFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "base/ByteOrder.h"
#include "media/Extended80.h"
#include "media/MsAdpcm.h"
#include "media/SoundWave.h"
#include "memory/MemRef.h"
#include "support/StackBytes.h"

namespace {

// Our decoded samples, without the header.
Bytes DecodeOurs(const Bytes& file, int32_t type, SoundInfo* info, int32_t result = 0) {
    MemRef wave = 0;
    EXPECT_EQ(DecodeSoundBytes(file.data(), static_cast<uint32_t>(file.size()), type, &wave, info), result);
    if (!wave) return {};
    MemRefLock lock(wave);
    Bytes samples(lock.data() + kWaveHeaderBytes, lock.data() + kWaveHeaderBytes + info->dataBytes);
    FreeMemRef(wave);
    return samples;
}

void AppendLE16(Bytes& b, uint16_t v) { b.insert(b.end(), {static_cast<uint8_t>(v), static_cast<uint8_t>(v >> 8)}); }
void AppendLE32(Bytes& b, uint32_t v) { for (const int shift : {0, 16}) AppendLE16(b, static_cast<uint16_t>(v >> shift)); }

WaveFormat Fmt(uint16_t tag, uint16_t channels, uint16_t bits, uint32_t rate = 11025) {
    WaveFormat f;
    f.formatTag = tag == kWaveFormatAdpcm ? kWaveFormatPcm : tag;
    f.channels = channels;
    f.samplesPerSec = rate;
    f.bitsPerSample = tag == kWaveFormatAdpcm ? 16 : bits;
    f.blockAlign = static_cast<uint16_t>(channels * bits / 8);
    if (tag == kWaveFormatAdpcm) {
        EXPECT_EQ(SuggestAdpcmFormat(WaveFormat(f), &f), 1);
    }
    return f;
}

// The ADPCM part of a "fmt " chunk; `fix` changes the last coefficient.
Bytes AdpcmExtra(const WaveFormat& f, int16_t fix = 0) {
    Bytes e;
    AppendLE16(e, kAdpcmExtraSize);
    AppendLE16(e, f.samplesPerBlock);
    AppendLE16(e, kAdpcmPredictors);
    for (int i = 0; i < kAdpcmPredictors; ++i) {
        AppendLE16(e, static_cast<uint16_t>(kAdpcmCoefficient1[i]));
        AppendLE16(e, static_cast<uint16_t>(kAdpcmCoefficient2[i] + (i == 6 ? fix : 0)));
    }
    return e;
}

// A WAV file: the "fmt " chunk of `f` with `extra` behind its 16 bytes, a 3-byte chunk with its pad
// byte, then `data` in a "data" chunk whose size says `dataSays`.
Bytes Wav(const WaveFormat& f, const Bytes& extra, const Bytes& data, uint32_t dataSays) {
    Bytes b = Of("RIFF");
    AppendLE32(b, 0);  // streamed: the file's end counts
    Append(b, Of("WAVEfmt "));
    AppendLE32(b, static_cast<uint32_t>(16 + extra.size()));
    for (const uint16_t v : {f.formatTag, f.channels}) AppendLE16(b, v);
    for (const uint32_t v : {f.samplesPerSec, f.avgBytesPerSec}) AppendLE32(b, v);
    for (const uint16_t v : {f.blockAlign, f.bitsPerSample}) AppendLE16(b, v);
    Append(b, extra);
    Append(b, Of("odd "));
    Append(b, {3, 0, 0, 0, 'x', 'y', 'z', 0});
    Append(b, Of("data"));
    AppendLE32(b, dataSays);
    Append(b, data);
    return b;
}

Bytes Pcm(uint16_t tag, uint16_t channels, uint16_t bits, uint32_t dataBytes, uint32_t dataSays, const Bytes& extra = {}) {
    return Wav(Fmt(tag, channels, bits), extra, Bytes(dataBytes, 0x40), dataSays);
}

// The extensible part of a "fmt " chunk: 22 bytes, 16 valid bits, channel mask 4, the real tag.
Bytes Extensible(uint8_t subTag) {
    Bytes e = {22, 0, 16, 0, 4, 0, 0, 0, subTag, 0};
    e.resize(24, 0);
    return e;
}

// An AIFF (or AIFC with `compression`) file: COMM then SSND with `frames` of 16-bit mono.
Bytes Aiff(const char* compression, uint16_t bits, double rate, uint32_t frames) {
    Bytes b = Of("FORM");
    AppendBE32(b, 0);
    Append(b, Of(compression ? "AIFCCOMM" : "AIFFCOMM"));
    AppendBE32(b, compression ? 22 : 18);
    AppendBE16(b, 1);
    AppendBE32(b, frames);
    AppendBE16(b, bits);
    b.resize(b.size() + kExtendedBytes);
    DoubleToExtended(rate, &b[b.size() - kExtendedBytes]);
    if (compression) Append(b, Of(compression));
    Append(b, Of("SSND"));
    for (const uint32_t v : {8 + frames * 2, 0u, 0u}) AppendBE32(b, v);
    b.resize(b.size() + frames * 2, 0x11);
    return b;
}

Bytes Au(uint32_t headerBytes, uint32_t encoding, uint32_t channels, uint32_t dataBytes) {
    Bytes b = Of(".snd");
    for (const uint32_t v : {headerBytes, 0xFFFFFFFFu, encoding, 8000u, channels}) AppendBE32(b, v);
    b.resize(std::max<size_t>(headerBytes, 24) + dataBytes, 0xFF);
    return b;
}

Bytes Changed(Bytes b, const std::function<void(Bytes&)>& change) {
    change(b);
    return b;
}


TEST(SoundFile, RefusesOrCutsDamagedFiles) {
    const Bytes adpcmBlock = Changed(Bytes(256, 0), [](Bytes& b) { b[1] = 16; });
    const WaveFormat adpcmFormat = Fmt(kWaveFormatAdpcm, 1, 4);
    Bytes blocks = adpcmBlock;
    Append(blocks, Changed(adpcmBlock, [](Bytes& b) { b[0] = 9; }));
    const Bytes adpcm = Wav(adpcmFormat, AdpcmExtra(adpcmFormat), blocks, 512);
    const struct { const char* name; Bytes file; int32_t type, result; uint32_t frames; } kCases[] = {
        {"data size past the end", Pcm(1, 2, 16, 4001 * 4 + 3, 99999), kFileTypeWave, 0, 4001},
        {"extensible PCM", Pcm(0xFFFE, 1, 8, 3000, 3000, Extensible(1)), kFileTypeWave, 0, 3000},
        {"float", Pcm(3, 1, 32, 3000, 3000), kFileTypeWave, kAlertSoundFormat, 0},
        {"short fmt", Changed(Pcm(1, 1, 8, 3000, 3000), [](Bytes& b) { b[16] = 14; }), kFileTypeWave, kAlertBadSound, 0},
        {"no data", Changed(Pcm(1, 1, 8, 0, 0), [](Bytes& b) { b[b.size() - 8] = 'D'; }), kFileTypeWave, kAlertBadSound, 0},
        {"rate 0", Changed(Pcm(1, 1, 8, 3000, 3000), [](Bytes& b) { b[25] = b[24] = 0; }), kFileTypeWave, kAlertBadSound, 0},
        {"not RIFF", Changed(Pcm(1, 1, 8, 3000, 3000), [](Bytes& b) { b[0] = 'X'; }), kFileTypeWave, kAlertBadSound, 0},
        {"adpcm, bad predictor", adpcm, kFileTypeWave, kAlertBadSound, 0},
        {"adpcm, block too small", Changed(adpcm, [](Bytes& b) { b[38] = 0xF5; }), kFileTypeWave, kAlertBadSound, 0},
        {"adpcm, one good block", Changed(adpcm, [](Bytes& b) { b.resize(b.size() - 256); }), kFileTypeWave, 0, 500 + kDefaultMinSoundFrames},
        {"adpcm, odd pair", Wav(adpcmFormat, AdpcmExtra(adpcmFormat, 1), adpcmBlock, 256), kFileTypeWave, kAlertSoundFormat, 0},
        {"aiff behind a prefix of near misses", Changed(Aiff(nullptr, 16, 22050, 3000), [](Bytes& b) { b.insert(b.begin(), 1001, 'F'); }), kFileTypeAiff, 0, 3000},
        {"aifc sowt", Aiff("sowt", 16, 22050, 3000), kFileTypeAiff, kAlertSoundType, 0},
        {"aiff 12 bits", Aiff(nullptr, 12, 22050, 3000), kFileTypeAiff, kAlertSoundType, 0},
        {"aiff rate infinite", Aiff(nullptr, 16, HUGE_VAL, 3000), kFileTypeAiff, kAlertBadSound, 0},
        {"aiff frames past the samples", Changed(Aiff(nullptr, 16, 22050, 3000), [](Bytes& b) { b[23] = 0xFF; }), kFileTypeAiff, 0, 3000},
        {"aiff cut in the samples", Changed(Aiff(nullptr, 16, 22050, 3000), [](Bytes& b) { b.resize(b.size() - 3); }), kFileTypeAiff, 0, 2998},
        {"aiff cut in COMM", Changed(Aiff(nullptr, 16, 22050, 3000), [](Bytes& b) { b.resize(30); }), kFileTypeAiff, kAlertBadSound, 0},
        {"au", Au(32, 1, 2, 5001 * 2 + 1), kFileTypeAu, 0, 5001},
        {"au encoding 23", Au(32, 23, 1, 3000), kFileTypeAu, kAlertSoundType, 0},
        {"au 3 channels", Au(32, 1, 3, 3000), kFileTypeAu, kAlertSoundType, 0},
        {"au without samples", Au(24, 3, 1, 1), kFileTypeAu, kAlertBadSound, 0},
        {"au header past the end", Changed(Au(24, 1, 1, 0), [](Bytes& b) { b[7] = 40; }), kFileTypeAu, kAlertBadSound, 0},
        {"unknown type", Au(32, 1, 1, 3000), -1, kAlertBadSound, 0},
    };
    for (const auto& c : kCases) {
        SoundInfo info;
        DecodeOurs(c.file, c.type, &info, c.result);
        EXPECT_EQ(info.frames, c.frames) << c.name;
    }
}

#if QB_WITH_SOUND_TOOLS

// Runs `command` with %F and %R standing for the two paths; the tools' chatter is dropped.
bool RunTool(std::string command, const std::string& file, const std::string& raw) {
    for (size_t at; (at = command.find("%F")) != std::string::npos;) command.replace(at, 2, file);
    for (size_t at; (at = command.find("%R")) != std::string::npos;) command.replace(at, 2, raw);
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

constexpr const char* kSox16 = "sox %F -t raw -e signed -b 16 -L %R";
constexpr const char* kSoxU8 = "sox %F -t raw -e unsigned -b 8 %R";
constexpr const char* kFfmpeg16 = "ffmpeg -y -i %F -f s16le %R";

// Each sound is longer than the 2000 frames below which silence is added.
TEST(SoundFile, DecodesAsTheToolsDo) {
    const struct {
        const char* make;  // writes %F
        const char* file;
        const char* reference;  // writes %R, the raw samples
        uint16_t bits, channels;
        uint32_t rate;
    } kCases[] = {
        {"sox -n -r 11025 -c 1 -b 8 -e unsigned %F synth 0.4 sine 300-3000", "a.wav", kSoxU8, 8, 1, 11025},
        {"sox -n -r 22050 -c 2 -b 8 -e unsigned %F synth 0.4 sine 300-3000 sine 500", "a.wav", kSoxU8, 8, 2, 22050},
        {"sox -n -r 44100 -c 1 -b 16 %F synth 0.4 sine 300-3000", "a.wav", kSox16, 16, 1, 44100},
        {"sox -n -r 11025 -c 2 -b 16 %F synth 0.4 sine 300-3000 sine 500", "a.wav", kSox16, 16, 2, 11025},
        {"ffmpeg -y -f lavfi -i sine=f=440:d=0.4:r=22050 -ac 2 -c:a pcm_s16le %F", "a.wav", kFfmpeg16, 16, 2, 22050},
        {"ffmpeg -y -f lavfi -i sine=f=440:d=0.4:r=44100 -c:a pcm_u8 %F", "a.wav", "ffmpeg -y -i %F -f u8 %R", 8, 1, 44100},
        {"sox -n -r 22050 -c 1 -e ms-adpcm %F synth 0.4 sine 300-3000", "a.wav", kSox16, 16, 1, 22050},
        {"ffmpeg -y -f lavfi -i sine=f=440:d=0.4:r=22050 -ac 2 -c:a adpcm_ms %F", "a.wav", kSox16, 16, 2, 22050},
        {"sox -n -r 22050 -c 2 -b 16 %F synth 0.4 sine 300-3000 sine 500", "a.aif", kSox16, 16, 2, 22050},
        {"sox -n -r 11025 -c 1 -b 8 %F synth 0.4 sine 300-3000", "a.aif", kSoxU8, 8, 1, 11025},
        {"sox -n -r 44100 -c 1 -b 16 %F synth 0.4 sine 300-3000", "a.aifc", kSox16, 16, 1, 44100},
        {"sox -n -r 8000 -c 1 -e u-law %F synth 0.4 sine 300-3000", "a.au", kSox16, 16, 1, 8000},
        {"sox -n -r 22050 -c 1 -b 16 %F synth 0.4 sine 300-3000", "a.au", kSox16, 16, 1, 22050},
        {"sox -n -r 11025 -c 1 -b 8 -e signed %F synth 0.4 sine 300-3000", "a.au", kSoxU8, 8, 1, 11025},
    };
    for (const auto& c : kCases) {
        const std::string file = WriteTempFile(c.file, {}), raw = WriteTempFile("ref.raw", {});
        ASSERT_TRUE(RunTool(c.make, file, raw)) << c.make;
        ASSERT_TRUE(RunTool(c.reference, file, raw)) << c.reference;
        SoundInfo info;
        const Bytes ours = DecodeOurs(ReadWholeFile(file), SoundFileType(file), &info);
        using Shape = std::tuple<uint32_t, uint32_t, uint32_t, uint32_t>;
        EXPECT_EQ(Shape(info.bits, info.channels, info.rate, info.frames * SoundFrameBytes(info)),
                  Shape(c.bits, c.channels, c.rate, info.dataBytes)) << c.make;
        EXPECT_TRUE(ours == ReadWholeFile(raw)) << c.make << ": " << ours.size() << " bytes against " << ReadWholeFile(raw).size();
        RemoveTempFiles();
    }
}

double SnrDb(const Bytes& source, const Bytes& decoded) {
    double signal = 0, error = 0;
    for (size_t i = 0; i + 1 < source.size() && i + 1 < decoded.size(); i += 2) {
        const double d = ReadS16(&decoded[i]) - ReadS16(&source[i]);
        signal += static_cast<double>(ReadS16(&source[i])) * ReadS16(&source[i]);
        error += d * d;
    }
    return 10 * std::log10(signal / std::max(error, 1.0));
}

// Our encoder's stream decodes in ffmpeg close to the source, and in sox exactly as in ours.
TEST(SoundFile, OurAdpcmDecodesInFfmpeg) {
    // The coder truncates each code towards zero, as the system's own did: near the top of the band
    // that costs some 5 dB against rounding.
    const struct {
        const char* make;  // writes the 16-bit source to %F
        uint32_t rate;
        uint16_t channels;
        double minSnrDb;
    } kVoices[] = {
        {"sox -n -r 11025 -c 1 -b 16 -e signed -L -t raw %F synth 3 sine 100-3000 vol 0.3", 11025, 1, 20},
        {"sox -n -r 22050 -c 2 -b 16 -e signed -L -t raw %F synth 3 sine 100-3000 sine 300 vol 0.3", 22050, 2, 30},
    };
    for (const auto& v : kVoices) {
        const std::string made = WriteTempFile("source.raw", {});
        ASSERT_TRUE(RunTool(v.make, made, ""));
        const Bytes source = ReadWholeFile(made);
        const WaveFormat pcm = Fmt(kWaveFormatPcm, v.channels, 16, v.rate), adpcm = Fmt(kWaveFormatAdpcm, v.channels, 4, v.rate);
        const auto sourceBytes = static_cast<uint32_t>(source.size());
        Bytes coded(AdpcmEncodedBytes(pcm, adpcm, sourceBytes));
        ASSERT_EQ(AdpcmEncode(pcm, source.data(), adpcm, coded.data(), sourceBytes), coded.size());
        const Bytes file = Wav(adpcm, AdpcmExtra(adpcm), coded, static_cast<uint32_t>(coded.size()));
        const std::string path = WriteTempFile("ours.wav", file), ffmpeg = WriteTempFile("ffmpeg.raw", {}), sox = WriteTempFile("sox.raw", {});
        ASSERT_TRUE(RunTool(kFfmpeg16, path, ffmpeg));
        ASSERT_TRUE(RunTool(kSox16, path, sox));
        const double snr = SnrDb(source, ReadWholeFile(ffmpeg));
        std::printf("MS-ADPCM encoder, %u Hz, %u channel(s): SNR %.1f dB in ffmpeg's decoder\n", v.rate, v.channels, snr);
        EXPECT_GE(snr, v.minSnrDb) << v.rate;
        SoundInfo info;
        EXPECT_TRUE(DecodeOurs(file, kFileTypeWave, &info) == ReadWholeFile(sox)) << v.rate;
        RemoveTempFiles();
    }
}

#endif  // QB_WITH_SOUND_TOOLS

}  // namespace
