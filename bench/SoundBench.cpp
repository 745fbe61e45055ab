// MS-ADPCM decode of ten minutes of mono 22050 Hz sound, ours against FFmpeg's adpcm_ms decoder
// (libavcodec, linked by this program only) in the same process, on the same stream: a voice-like
// signal coded by our encoder. FFmpeg gets its packets as a WAV demuxer hands them out, several
// blocks each, and is timed on sending them and taking the frames. Prints the ratio of the two
// speeds beside the target (>= 1x).
//
// The mixer: every stream busy, 8- and 16-bit, mono and stereo, all pitched so that every frame is
// interpolated, into a 44100 Hz output; timed per second of output, which is the share of one core
// that playing them takes (target <= 1%), beside a memcpy of the same output.
#include <benchmark/benchmark.h>
#include <unistd.h>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "base/ByteOrder.h"
#include "media/Mixer.h"
#include "media/MsAdpcm.h"

#include "RatioReporter.h"

namespace {

constexpr uint32_t kRate = 22050;
constexpr uint32_t kSeconds = 600;
constexpr uint32_t kBlocksPerPacket = 8;

struct Stream {
    WaveFormat adpcm, pcm;
    std::vector<uint8_t> coded;
    uint64_t decodedBytes = 0;
};
Stream gStream;

// A gliding voice with a few harmonics, cut into syllables: what a stack's narration sounds like.
void MakeStream() {
    Stream& s = gStream;
    s.pcm.formatTag = kWaveFormatPcm;
    s.pcm.channels = 1;
    s.pcm.samplesPerSec = kRate;
    s.pcm.bitsPerSample = 16;
    SuggestAdpcmFormat(s.pcm, &s.adpcm);
    std::vector<int16_t> source(static_cast<size_t>(kRate) * kSeconds);
    double phase = 0;
    for (size_t i = 0; i < source.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        phase += 2 * M_PI * (140 + 40 * std::sin(2 * M_PI * 1.3 * t)) / kRate;
        const double v = std::sin(phase) + 0.5 * std::sin(2 * phase) + 0.3 * std::sin(3 * phase) + 0.2 * std::sin(7 * phase);
        source[i] = static_cast<int16_t>(6000 * v * (0.2 + 0.8 * std::pow(std::sin(M_PI * 4 * t), 2)));
    }
    const auto bytes = static_cast<uint32_t>(source.size() * 2);
    s.coded.resize(AdpcmEncodedBytes(s.pcm, s.adpcm, bytes));
    s.coded.resize(AdpcmEncode(s.pcm, reinterpret_cast<const uint8_t*>(source.data()), s.adpcm, s.coded.data(), bytes));
    s.coded.resize(s.coded.size() - s.coded.size() % s.adpcm.blockAlign);
    s.decodedBytes = AdpcmDecodedBytes(s.adpcm, s.pcm, static_cast<uint32_t>(s.coded.size()));
}

void BM_OurAdpcmDecode(benchmark::State& state) {
    std::vector<uint8_t> out(gStream.decodedBytes);
    for (auto _ : state) {
        const uint32_t made = AdpcmDecode(gStream.adpcm, gStream.coded.data(), gStream.pcm, out.data(), static_cast<uint32_t>(gStream.coded.size()));
        if (made != out.size()) state.SkipWithError("our decoder stopped early");
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(gStream.decodedBytes));
}

// The stream's format as a WAV file's "fmt " chunk gives it to FFmpeg.
AVCodecContext* OpenFfmpegDecoder() {
    const AVCodec* codec = avcodec_find_decoder(AV_CODEC_ID_ADPCM_MS);
    if (!codec) return nullptr;
    AVCodecContext* c = avcodec_alloc_context3(codec);
    c->sample_rate = static_cast<int>(kRate);
    av_channel_layout_default(&c->ch_layout, 1);
    c->block_align = gStream.adpcm.blockAlign;
    c->bits_per_coded_sample = 4;
    const int extraBytes = 4 + 4 * kAdpcmPredictors;
    c->extradata = static_cast<uint8_t*>(av_mallocz(extraBytes + AV_INPUT_BUFFER_PADDING_SIZE));
    c->extradata_size = extraBytes;
    Write16(c->extradata, gStream.adpcm.samplesPerBlock);
    Write16(c->extradata + 2, kAdpcmPredictors);
    for (int i = 0; i < kAdpcmPredictors; ++i) {
        Write16(c->extradata + 4 + 4 * i, static_cast<uint16_t>(kAdpcmCoefficient1[i]));
        Write16(c->extradata + 6 + 4 * i, static_cast<uint16_t>(kAdpcmCoefficient2[i]));
    }
    if (avcodec_open2(c, codec, nullptr) < 0) avcodec_free_context(&c);
    return c;
}

void BM_FfmpegAdpcmDecode(benchmark::State& state) {
    AVCodecContext* c = OpenFfmpegDecoder();
    if (!c) {
        state.SkipWithError("no adpcm_ms decoder in libavcodec");
        return;
    }
    const uint32_t packetBytes = gStream.adpcm.blockAlign * kBlocksPerPacket;
    // Packets with the padding libavcodec reads past their end, cut once before the timing.
    std::vector<AVPacket*> packets;
    for (size_t at = 0; at < gStream.coded.size(); at += packetBytes) {
        AVPacket* p = av_packet_alloc();
        const auto n = static_cast<int>(std::min<size_t>(packetBytes, gStream.coded.size() - at));
        av_new_packet(p, n);
        std::memcpy(p->data, gStream.coded.data() + at, static_cast<size_t>(n));
        packets.push_back(p);
    }
    AVFrame* frame = av_frame_alloc();
    for (auto _ : state) {
        int64_t samples = 0;
        for (AVPacket* p : packets) {
            if (avcodec_send_packet(c, p) < 0) state.SkipWithError("FFmpeg refused a packet");
            while (avcodec_receive_frame(c, frame) == 0) {
                samples += frame->nb_samples;
                benchmark::DoNotOptimize(frame->data[0]);
            }
        }
        if (static_cast<uint64_t>(samples) * 2 != gStream.decodedBytes) state.SkipWithError("FFmpeg decoded another length");
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(gStream.decodedBytes));
    av_frame_free(&frame);
    for (AVPacket* p : packets) av_packet_free(&p);
    avcodec_free_context(&c);
}

constexpr uint32_t kOutputRate = 44100;
constexpr int64_t kOutputBytesPerSecond = int64_t{kOutputRate} * 4;

void BM_MixerStreams(benchmark::State& state) {
    StartMixer(22050, kOutputRate);
    std::vector<MixerPlayBlock> blocks;
    std::vector<std::vector<uint8_t>> sounds;
    for (uint32_t i = 0; i < kMixerStreams; ++i) {
        MixerPlayBlock block;
        block.bits = i % 2 ? 8 : 16;
        block.channels = i % 4 < 2 ? 1 : 2;
        block.frames = 22050;
        block.pitch = static_cast<uint16_t>(200 + 7 * i);
        block.leftVolume = static_cast<uint16_t>(100 + i);
        sounds.emplace_back(size_t{block.frames} * block.channels * block.bits / 8);
        for (size_t b = 0; b < sounds.back().size(); ++b) sounds.back()[b] = static_cast<uint8_t>(b * 37 + i);
        block.samples = sounds.back().data();
        blocks.push_back(block);
    }
    std::vector<int16_t> out(size_t{kOutputRate} * 2);
    for (auto _ : state) {
        // Every stream starts afresh and lasts longer than the tenth of a second mixed.
        for (const MixerPlayBlock& block : blocks) {
            if (MixerPlay(block) == 0) state.SkipWithError("the mixer refused a stream");
        }
        MixerRender(out.data(), kOutputRate / 10);
        benchmark::DoNotOptimize(out.data());
        StartMixer(22050, kOutputRate);
    }
    state.SetBytesProcessed(state.iterations() * kOutputBytesPerSecond / 10);
    StopMixer();
}

void BM_MemcpyOutput(benchmark::State& state) {
    std::vector<uint8_t> from(kOutputBytesPerSecond / 10, 1), to(from.size());
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), from.size());
        benchmark::DoNotOptimize(to.data());
    }
    state.SetBytesProcessed(state.iterations() * kOutputBytesPerSecond / 10);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    MakeStream();
    std::printf("%u s of mono %u Hz: %zu bytes of MS-ADPCM in blocks of %u, %llu bytes of PCM\n", kSeconds, kRate,
                gStream.coded.size(), gStream.adpcm.blockAlign, static_cast<unsigned long long>(gStream.decodedBytes));
    benchmark::RegisterBenchmark("adpcm_decode/ours", BM_OurAdpcmDecode)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("adpcm_decode/ffmpeg", BM_FfmpegAdpcmDecode)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("mixer/20_streams", BM_MixerStreams)->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("mixer/memcpy_output", BM_MemcpyOutput)->Unit(benchmark::kMicrosecond);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    const double ours = reporter.bytesPerSecond["adpcm_decode/ours"], theirs = reporter.bytesPerSecond["adpcm_decode/ffmpeg"];
    if (ours > 0 && theirs > 0) {
        const double ratio = ours / theirs;
        std::printf("\nMS-ADPCM decode: ours %.0f MB/s of PCM, FFmpeg's %.0f MB/s: %.2fx (>= 1.0x) %s\n", ours / 1e6, theirs / 1e6,
                    ratio, ratio >= 1.0 ? "ok" : "MISSED");
    }
    const double mixed = reporter.bytesPerSecond["mixer/20_streams"], copied = reporter.bytesPerSecond["mixer/memcpy_output"];
    if (mixed > 0 && copied > 0) {
        const double share = 100.0 * kOutputBytesPerSecond / mixed;
        std::printf("Mixing %u streams into %u Hz stereo: %.3f%% of one core (<= 1%%) %s; %.1fx the time of a memcpy of the output\n",
                    kMixerStreams, kOutputRate, share, share <= 1.0 ? "ok" : "MISSED", copied / mixed);
    }
    return reporter.failed ? 1 : 0;
}
