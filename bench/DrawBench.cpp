// How fast does the renderer fill a frame? Each benchmark works on one 640 x 480 frame of 32-bit
// pixels and is reported as a ratio to memcpy of such a frame in the same run: drawing an 8-bit
// picture through a palette, plain and stretched, fills, copies, and copies through a mask. A card
// is a background picture, items and a copy to the window, and must stay within 30 copies' time.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "gfx/BitMask.h"
#include "gfx/Blit.h"
#include "gfx/DibImage.h"
#include "gfx/Draw.h"
#include "gfx/Region.h"
#include "memory/MemRef.h"

namespace {

inline constexpr int32_t kWidth = 640;
inline constexpr int32_t kHeight = 480;
inline constexpr size_t kFrameBytes = size_t{kWidth} * kHeight * 4;

struct Fixture {
    MemRef picture8 = 0;      // 640 x 480, 8 bits
    MemRef picture8Half = 0;  // 320 x 240, 8 bits
    uint32_t palette[256] = {};
    Surface source{kWidth, kHeight};
    Surface target{kWidth, kHeight};
    BitMask ellipseMask;  // the frame's inscribed ellipse: long runs, as a picture button's
    BitMask noiseMask;    // every bit a coin toss: the worst case
};
Fixture* gFixture = nullptr;

MemRef NoisePicture(int32_t width, int32_t height) {
    const MemRef ref = NewDibImage(width, height, 8);
    MemRefLock lock(ref);
    uint8_t* pixels = DibPixels(lock.data());
    uint32_t x = 0x9E3779B9u;
    for (uint32_t i = 0; i < DibImageBytes(lock.data()); ++i) {
        x ^= x << 13;
        x ^= x >> 17;
        x ^= x << 5;
        pixels[i] = static_cast<uint8_t>(x);
    }
    return ref;
}

void SetUpFixture(Fixture& f) {
    f.picture8 = NoisePicture(kWidth, kHeight);
    f.picture8Half = NoisePicture(kWidth / 2, kHeight / 2);
    for (uint32_t i = 0; i < 256; ++i) f.palette[i] = i * 0x010307u & 0xFFFFFFu;
    for (size_t i = 0; i < f.source.pixels.size(); ++i)
        f.source.pixels[i] = static_cast<uint32_t>(i * 2654435761u) & 0xFFFFFFu;
    f.ellipseMask = MaskFromRegion(EllipseRegion({0, 0, kWidth, kHeight}));
    f.noiseMask = BitMask(kWidth, kHeight);
    uint32_t x = 12345;
    for (int32_t row = 0; row < kHeight; ++row) {
        for (int32_t i = 0; i < f.noiseMask.stride; ++i) {
            x = x * 1103515245u + 12345u;
            f.noiseMask.Row(row)[i] = static_cast<uint8_t>(x >> 16);
        }
    }
}

void Touch() {
    benchmark::DoNotOptimize(gFixture->target.pixels.data());
    benchmark::ClobberMemory();
}

void Finish(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kFrameBytes));
}

void BM_Memcpy(benchmark::State& state) {
    for (auto _ : state) {
        std::memcpy(gFixture->target.pixels.data(), gFixture->source.pixels.data(), kFrameBytes);
        Touch();
    }
    Finish(state);
}

void BM_DrawDib8(benchmark::State& state) {
    MemRefLock lock(gFixture->picture8);
    for (auto _ : state) {
        DrawDib(gFixture->target, gFixture->target.Bounds(), 0, 0, lock.data(), gFixture->palette);
        Touch();
    }
    Finish(state);
}

void BM_StretchDib8Double(benchmark::State& state) {
    MemRefLock lock(gFixture->picture8Half);
    for (auto _ : state) {
        StretchDib(gFixture->target, gFixture->target.Bounds(), gFixture->target.Bounds(),
                   lock.data(), {0, 0, kWidth / 2, kHeight / 2}, gFixture->palette);
        Touch();
    }
    Finish(state);
}

void BM_FillRect(benchmark::State& state) {
    for (auto _ : state) {
        FillRect(gFixture->target, gFixture->target.Bounds(), gFixture->target.Bounds(), 0x336699);
        Touch();
    }
    Finish(state);
}

void BM_InvertRect(benchmark::State& state) {
    for (auto _ : state) {
        InvertRect(gFixture->target, gFixture->target.Bounds(), gFixture->target.Bounds());
        Touch();
    }
    Finish(state);
}

void BM_FillEllipse(benchmark::State& state) {
    for (auto _ : state) {
        FillEllipse(gFixture->target, gFixture->target.Bounds(), gFixture->target.Bounds(),
                    0x336699);
        Touch();
    }
    Finish(state);
}

void BM_CopyRect(benchmark::State& state) {
    for (auto _ : state) {
        CopyRect(gFixture->target, gFixture->target.Bounds(), 0, 0, gFixture->source,
                 gFixture->source.Bounds());
        Touch();
    }
    Finish(state);
}

void BM_MaskedCopyEllipse(benchmark::State& state) {
    for (auto _ : state) {
        MaskedCopy(gFixture->target, gFixture->target.Bounds(), 0, 0, gFixture->source,
                   gFixture->source.Bounds(), gFixture->ellipseMask);
        Touch();
    }
    Finish(state);
}

void BM_MaskedCopyNoise(benchmark::State& state) {
    for (auto _ : state) {
        MaskedCopy(gFixture->target, gFixture->target.Bounds(), 0, 0, gFixture->source,
                   gFixture->source.Bounds(), gFixture->noiseMask);
        Touch();
    }
    Finish(state);
}

void BM_BlitMaskInvert(benchmark::State& state) {
    for (auto _ : state) {
        BlitMask(gFixture->target, gFixture->target.Bounds(), gFixture->ellipseMask, kWhite, kBlack,
                 Rop::SrcInvert);
        Touch();
    }
    Finish(state);
}

BENCHMARK(BM_Memcpy);
BENCHMARK(BM_DrawDib8);
BENCHMARK(BM_StretchDib8Double);
BENCHMARK(BM_FillRect);
BENCHMARK(BM_InvertRect);
BENCHMARK(BM_FillEllipse);
BENCHMARK(BM_CopyRect);
BENCHMARK(BM_MaskedCopyEllipse);
BENCHMARK(BM_MaskedCopyNoise);
BENCHMARK(BM_BlitMaskInvert);

// Shows the runs as usual and keeps each benchmark's best CPU time per iteration, in µs. CPU time,
// not wall time: all of it is one thread's work, and the machine may be busy with other things.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
            const double us =
                run.GetAdjustedCPUTime() * 1e6 / benchmark::GetTimeUnitMultiplier(run.time_unit);
            auto [it, added] = bestUs.emplace(run.run_name.function_name, us);
            if (added) order.push_back(run.run_name.function_name);
            if (!added) it->second = std::min(it->second, us);
        }
        ConsoleReporter::ReportRuns(runs);
    }
    std::map<std::string, double> bestUs;
    std::vector<std::string> order;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    InitMemRefs();
    Fixture fixture;
    SetUpFixture(fixture);
    gFixture = &fixture;

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    const auto memcpyRun = reporter.bestUs.find("BM_Memcpy");
    if (memcpyRun != reporter.bestUs.end()) {
        std::printf("\nratio to memcpy of one 640x480 32-bit frame (%.1f us):\n",
                    memcpyRun->second);
        for (const std::string& name : reporter.order) {
            if (name == "BM_Memcpy") continue;
            std::printf("  %-24s %8.1f us  %6.2fx\n", name.c_str(), reporter.bestUs[name],
                        reporter.bestUs[name] / memcpyRun->second);
        }
    }
    FreeMemRef(fixture.picture8);
    FreeMemRef(fixture.picture8Half);
    return 0;
}
