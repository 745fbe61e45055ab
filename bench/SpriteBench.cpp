// One step of the sprite engine with 20 films of 64 x 64 pixels, each of two frames, moving on every
// tick over a 640 x 480 card: how much of a 17 ms tick does StepSprites take (CPU time; target
// 10 %)? Every actor moves and changes its frame at each step, the worst case of the dirty-rectangle
// pass. The host presents nothing (that is the host's own cost). Then the card idle after its films
// have ended: a step that finds no stage.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "gfx/Palette.h"
#include "memory/MemRef.h"
#include "platform/Host.h"
#include "platform/headless/HeadlessHost.h"
#include "sprites/Sprites.h"
#include "sprites/Stage.h"
#include "support/SpriteBytes.h"

namespace {

constexpr int32_t kWidth = 640, kHeight = 480, kActors = 20, kSide = 64;
constexpr uint32_t kTickMs = 17;
constexpr double kTickUs = 17000.0;
constexpr double kTargetShare = 0.10;

double gBestStepUs = 1e30, gBestIdleUs = 1e30;

void IgnorePresent(const Rect&) {}

// Films on closed loops across the card, each its own way round, on a 17 ms timer.
void StartFilms() {
    for (int32_t i = 0; i < kActors; ++i) {
        SpriteParts parts;
        parts.frameWidth = parts.frameHeight = kSide;
        parts.frameColors = {static_cast<uint32_t>(0x203040 * (i + 1)) & 0xFFFFFF, 0x808080};
        parts.points.clear();
        for (int32_t k = 0; k < 40; ++k) {
            const int32_t x = (i * 29 + k * 13) % (kWidth - kSide), y = (i * 23 + k * 7 * (i % 3 + 1)) % (kHeight - kSide);
            parts.points.push_back({static_cast<int16_t>(x), static_cast<int16_t>(y), kTickMs});
        }
        parts.fields = {{kSprtPathMode, 2, 4}, {kSprtEndMode, 2, 0}, {kSprtPathRate, 4, kTickMs}, {kSprtFrameRate, 4, kTickMs}};
        const Bytes bytes = SpriteBytes(parts);
        StartActor(bytes.data(), static_cast<uint32_t>(bytes.size()), static_cast<uint16_t>(i + 1));
    }
}

void BM_StepSprites(benchmark::State& state) {
    StopSprites();
    StartFilms();
    double totalUs = 0;
    for (auto _ : state) {
        AdvanceHeadlessClock(kTickMs);
        const std::clock_t start = std::clock();
        StepSprites();
        const double us = static_cast<double>(std::clock() - start) * 1e6 / CLOCKS_PER_SEC;
        totalUs += us;
        state.SetIterationTime(us / 1e6);
    }
    if (state.iterations() > 0) gBestStepUs = std::min(gBestStepUs, totalUs / static_cast<double>(state.iterations()));
}
BENCHMARK(BM_StepSprites)->UseManualTime()->Unit(benchmark::kMicrosecond);

// The films have ended and the stage is gone: what the tick still pays.
void BM_IdleStep(benchmark::State& state) {
    StopSprites();
    double totalUs = 0;
    for (auto _ : state) {
        AdvanceHeadlessClock(kTickMs);
        const std::clock_t start = std::clock();
        StepSprites();
        totalUs += static_cast<double>(std::clock() - start) * 1e6 / CLOCKS_PER_SEC;
    }
    if (state.iterations() > 0) gBestIdleUs = std::min(gBestIdleUs, totalUs / static_cast<double>(state.iterations()));
}
BENCHMARK(BM_IdleStep);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    InitMemRefs();
    ForceDisplayDepth(32);
    Host host = HeadlessHost();
    host.Present = IgnorePresent;
    SetHost(host);
    SetHeadlessWindowSize(kWidth, kHeight);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (gBestStepUs > 1e29) return 0;
    const double share = gBestStepUs / kTickUs;
    std::printf("\nStepSprites, %d films of %dx%d moving over %dx%d: %.1f us, %.2f%% of a 17 ms tick "
                "(ratio %.4f; target %.0f%%): %s\n",
                kActors, kSide, kSide, kWidth, kHeight, gBestStepUs, 100.0 * share, share, 100.0 * kTargetShare,
                share <= kTargetShare ? "met" : "MISSED");
    std::printf("idle card after its films: %.3f us a tick, %.4f%% of it (target 1%%): %s\n", gBestIdleUs,
                100.0 * gBestIdleUs / kTickUs, gBestIdleUs / kTickUs <= 0.01 ? "met" : "MISSED");
    return 0;
}
