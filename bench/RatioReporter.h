// A console reporter that also keeps each benchmark's best throughput and best wall time, for the
// ratios the benchmarks print against their reference.
#pragma once

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

// Shows the runs as usual and keeps each one's bytes per second by its name, and its wall time per
// iteration in ms by its function's name.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    RatioReporter() : ConsoleReporter(isatty(STDOUT_FILENO) ? OO_ColorTabular : OO_Tabular) {}
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            if (run.error_occurred) {
                failed = true;
                continue;
            }
            const double ms = run.GetAdjustedRealTime() * 1000.0 / benchmark::GetTimeUnitMultiplier(run.time_unit);
            auto [fastest, added] = bestMs.emplace(run.run_name.function_name, ms);
            if (!added) fastest->second = std::min(fastest->second, ms);
            const auto rate = run.counters.find("bytes_per_second");
            if (rate == run.counters.end()) continue;
            double& best = bytesPerSecond[run.benchmark_name()];
            best = std::max(best, static_cast<double>(rate->second));
        }
        ConsoleReporter::ReportRuns(runs);
    }
    std::map<std::string, double> bytesPerSecond;
    std::map<std::string, double> bestMs;
    bool failed = false;
};
