// How long does a card change take to compose? DrawCard of a 640 x 480 8-bit card with a picture
// and 20 items (buttons of the four drawn shapes with names, and graphics with pictures), cut onto
// the headless window, as a ratio to memcpy of one 32-bit frame in the same run. Target: 30x.
//
// The stack is written by our own builder from a description made here, then opened through the
// full open flow, as the player opens it.
#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "Commands.h"
#include "FrameMemcpy.h"
#include "OpenForCommand.h"
#include "PngFile.h"
#include "card/OffscreenCard.h"
#include "gfx/Palette.h"
#include "gfx/Surface.h"
#include "platform/headless/HeadlessHost.h"
#include "stack/Document.h"

namespace {

inline constexpr int32_t kWidth = kFrameWidth;
inline constexpr int32_t kHeight = kFrameHeight;

// A picture of soft gradients with noise: neither flat nor random, as a scanned card is.
bool WritePicture(const std::string& path, int32_t width, int32_t height, uint32_t seed) {
    std::vector<uint8_t> rgba(static_cast<size_t>(width) * height * 4);
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            seed = seed * 1103515245u + 12345u;
            const size_t i = (static_cast<size_t>(y) * width + x) * 4;
            rgba[i] = static_cast<uint8_t>(x * 255 / width);
            rgba[i + 1] = static_cast<uint8_t>(y * 255 / height);
            rgba[i + 2] = static_cast<uint8_t>(seed >> 24);
            rgba[i + 3] = 255;
        }
    }
    return WritePng(path, width, height, rgba);
}

std::string BuildStack(const std::string& folder) {
    if (!WritePicture(folder + "/background.png", kWidth, kHeight, 1) ||
        !WritePicture(folder + "/graphic.png", 96, 64, 2)) {
        return {};
    }
    nlohmann::json items = nlohmann::json::array();
    for (int i = 0; i < 20; ++i) {
        const int32_t left = 20 + (i % 5) * 124, top = 20 + (i / 5) * 112;
        nlohmann::json item = {{"id", 100 + i}, {"rect", {left, top, left + 96, top + 64}}};
        if (i % 5 == 4) {
            item["kind"] = 16;
            item["png"] = "graphic.png";
        } else {
            item["kind"] = 48;
            item["name"] = "Button " + std::to_string(i + 1);
            item["shape"] = i % 4;
            item["buttonFlags"] = 8;
            item["textColor"] = 1;
            item["fillColor"] = 256;
        }
        items.push_back(item);
    }
    const nlohmann::json stack = {
        {"version", 5},
        {"depth", 8},
        {"cardWidth", kWidth},
        {"cardHeight", kHeight},
        {"cards", {{{"id", 1}, {"kind", 1}, {"background", {{"png", "background.png"}, {"depth", 8}}},
                    {"items", items}}}}};
    std::ofstream(folder + "/card.json") << stack.dump(1);
    const std::string stackPath = folder + "/card.stk";
    return RunBuild(folder + "/card.json", stackPath) == 0 ? stackPath : std::string{};
}

void BM_DrawCard(benchmark::State& state) {
    const MemRef card = GetDocument().currentCard;
    for (auto _ : state) {
        DrawCard(card, 3, 8, false);
        benchmark::DoNotOptimize(GetHeadlessState().screen.pixels.data());
    }
}

BENCHMARK(BM_Memcpy);
BENCHMARK(BM_DrawCard);

class BestReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
            const double us = run.GetAdjustedCPUTime() * 1e6 / benchmark::GetTimeUnitMultiplier(run.time_unit);
            double& best = run.run_name.function_name == "BM_Memcpy" ? memcpyUs : drawCardUs;
            best = best == 0 ? us : std::min(best, us);
        }
        ConsoleReporter::ReportRuns(runs);
    }
    double memcpyUs = 0, drawCardUs = 0;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    char folder[] = "/tmp/qb-card-bench-XXXXXX";
    if (!mkdtemp(folder)) return 1;
    const std::string stack = BuildStack(folder);
    if (stack.empty() || !OpenStackForCommand(stack)) return 1;
    SetHeadlessWindowSize(kWidth, kHeight);
    InitDataBase(kWidth, kHeight, DisplayDepth(), true);

    BestReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    if (reporter.memcpyUs > 0) {
        std::printf("\nDrawCard of a 640x480 card with 20 items: %.1f us, %.2fx memcpy of a frame (%.1f us); "
                    "target <= 30x\n",
                    reporter.drawCardUs, reporter.drawCardUs / reporter.memcpyUs, reporter.memcpyUs);
    }
    for (const char* name : {"background.png", "graphic.png", "card.json", "card.stk"}) {
        std::remove((std::string(folder) + "/" + name).c_str());
    }
    rmdir(folder);
    return 0;
}
