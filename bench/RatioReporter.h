// A console reporter that also keeps each benchmark's best throughput, for the ratios the codec
// benchmarks print against their reference.
#pragma once

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

// Shows the runs as usual and keeps each one's bytes per second by its name.
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
            const auto rate = run.counters.find("bytes_per_second");
            if (rate == run.counters.end()) continue;
            double& best = bytesPerSecond[run.benchmark_name()];
            best = std::max(best, static_cast<double>(rate->second));
        }
        ConsoleReporter::ReportRuns(runs);
    }
    std::map<std::string, double> bytesPerSecond;
    bool failed = false;
};
