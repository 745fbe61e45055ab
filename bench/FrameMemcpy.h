// The reference the drawing benchmarks are measured against: memcpy of one 32-bit 640 x 480 frame.
#pragma once

#include <benchmark/benchmark.h>

#include <cstring>

#include "gfx/Surface.h"

inline constexpr int32_t kFrameWidth = 640;
inline constexpr int32_t kFrameHeight = 480;

inline void BM_Memcpy(benchmark::State& state) {
    static Surface source{kFrameWidth, kFrameHeight}, target{kFrameWidth, kFrameHeight};
    for (auto _ : state) {
        std::memcpy(target.pixels.data(), source.pixels.data(), target.pixels.size() * sizeof(uint32_t));
        benchmark::DoNotOptimize(target.pixels.data());
        benchmark::ClobberMemory();
    }
}
