// How fast and how lean is opening a big stack? The program writes a valid 500-card stack of about
// 50 MB to a temporary file, then times an open (ReadStackFile + CloseStack) against one plain
// read() of the same file into a buffer, and measures the heap an open needs at its peak. The file
// is in the page cache for both, so the ratio is what the reader adds to copying the bytes; a
// second read into fresh memory shows what the system charges for the memory itself.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "HeapCounter.h"
#include "RatioReporter.h"
#include "base/ByteOrder.h"
#include "memory/MemRef.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/StackHeader.h"
#include "stack/StackReader.h"

namespace {

inline constexpr int kCards = 500;
inline constexpr uint16_t kWidth = 640;
inline constexpr uint16_t kHeight = 480;
inline constexpr uint16_t kDepth = 8;
inline constexpr uint32_t kPayloadBytes = 100'000;  // even: no pad byte behind the picture
inline constexpr uint16_t kFormatPlain = 1;         // no inner fields to turn around
inline constexpr double kOpenTarget = 3.0;          // open time / read time
inline constexpr double kHeapTarget = 2.0;          // peak heap of an open / file size

std::string gPath;
uint64_t gFileBytes = 0;

// Header, then each card: head, a background chunk of kPayloadBytes, and the tail 00 00 FA CE.
std::vector<uint8_t> MakeCard(uint16_t id) {
    const uint32_t chunk = kBgHeadSize + kPayloadBytes;
    const uint32_t size = kCardHeadSize + chunk + kCardTailSize;
    std::vector<uint8_t> card(size, 0);
    uint8_t* p = card.data();
    WriteBE16(p + kCardId, id);
    WriteBE32(p + kCardSize, size);
    WriteBE16(p + kCardKind, kCardKindPicture);
    WriteBE16(p + kCardDepth, kDepth);
    WriteBE16(p + kCardWidth, kWidth);
    WriteBE16(p + kCardHeight, kHeight);
    uint8_t* bg = p + kCardHeadSize;
    WriteBE16(bg + kBgTag, 8);
    WriteBE16(bg + kBgFormat, kFormatPlain);
    WriteBE32(bg + kBgLength, chunk);
    WriteBE32(bg + kBgTableSize, 0);
    uint32_t x = 0x9E3779B9u ^ id;  // bytes that look like picture data, different on every card
    for (uint32_t i = 0; i < kPayloadBytes; ++i) {
        x ^= x << 13;
        x ^= x >> 17;
        x ^= x << 5;
        bg[kBgHeadSize + i] = static_cast<uint8_t>(x);
    }
    WriteBE16(p + size - 2, 0xFACE);
    return card;
}

bool WriteStack(const std::string& path) {
    const uint32_t cardBytes = kCardHeadSize + kBgHeadSize + kPayloadBytes + kCardTailSize;
    uint8_t header[kStackHeaderSize] = {};
    WriteBE16(header + kHdrCardCount, kCards);
    WriteBE16(header + kHdrVersion, static_cast<uint16_t>(kCurrentStackVersion));
    WriteBE16(header + kHdrNextCardId, kCards + 1);
    WriteBE16(header + kHdrNextItemId, 1);
    WriteBE16(header + kHdrDepth, kDepth);
    WriteBE16(header + kHdrCardWidth, kWidth);
    WriteBE16(header + kHdrCardHeight, kHeight);
    WriteBE32(header + kHdrBlobOffset, kStackHeaderSize + kCards * cardBytes);
    WriteBE32(header + kHdrBlobCount, 0);
    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) return false;
    bool ok = std::fwrite(header, 1, sizeof header, file) == sizeof header;
    for (int i = 1; ok && i <= kCards; ++i) {
        const std::vector<uint8_t> card = MakeCard(static_cast<uint16_t>(i));
        ok = std::fwrite(card.data(), 1, card.size(), file) == card.size();
    }
    ok = std::fclose(file) == 0 && ok;
    gFileBytes = kStackHeaderSize + uint64_t{kCards} * cardBytes;
    return ok;
}

// One open; an error message if it did not give the whole stack.
std::string OpenAndClose() {
    LoadFault fault;
    const int32_t code = ReadStackFile(gPath, &fault);
    const int16_t cards = CardCount();
    CloseStack();
    if (code != 0 || !fault.opened || cards != kCards)
        return "open failed: code " + std::to_string(code) + ", " + std::to_string(cards) +
               " cards, " + fault.detail;
    return {};
}

void BM_OpenStack(benchmark::State& state) {
    for (auto _ : state) {
        if (const std::string error = OpenAndClose(); !error.empty()) {
            state.SkipWithError(error.c_str());
            break;
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * gFileBytes));
}

// One read() of the whole file into `buffer`; false if it did not give every byte.
bool ReadWholeInto(uint8_t* buffer) {
    const int fd = ::open(gPath.c_str(), O_RDONLY);
    uint64_t done = 0;
    while (fd >= 0 && done < gFileBytes) {
        const ssize_t n = ::read(fd, buffer + done, gFileBytes - done);
        if (n <= 0) break;
        done += static_cast<uint64_t>(n);
    }
    if (fd >= 0) ::close(fd);
    benchmark::DoNotOptimize(buffer);
    benchmark::ClobberMemory();
    return done == gFileBytes;
}

// The reference of the target: the bytes copied into memory that was allocated and touched
// before timing.
void BM_ReadWhole(benchmark::State& state) {
    std::vector<uint8_t> buffer(gFileBytes, 1);
    for (auto _ : state) {
        if (!ReadWholeInto(buffer.data())) {
            state.SkipWithError("read() failed");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * gFileBytes));
}

// The same read into memory the system hands out afresh each time, as any open must take it:
// where a first touch of a page is dear (a virtual machine's page faults), this, not the copy,
// is what an open costs.
void BM_ReadFresh(benchmark::State& state) {
    for (auto _ : state) {
        const std::unique_ptr<uint8_t[]> buffer(new uint8_t[gFileBytes]);
        if (!ReadWholeInto(buffer.get())) {
            state.SkipWithError("read() failed");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * gFileBytes));
}

BENCHMARK(BM_OpenStack)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ReadWhole)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ReadFresh)->Unit(benchmark::kMillisecond)->UseRealTime();

const char* Verdict(double ratio, double target) {
    return ratio <= target ? "ok" : "OVER TARGET";
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    InitMemRefs();

    gPath =
        (std::filesystem::temp_directory_path() / ("qb-bench-" + std::to_string(getpid()) + ".stk"))
            .string();
    if (!WriteStack(gPath)) {
        std::fprintf(stderr, "cannot write %s\n", gPath.c_str());
        std::remove(gPath.c_str());
        return 1;
    }
    std::printf("stack: %d cards of %ux%u, %.1f MB, at %s\n", kCards, kWidth, kHeight,
                gFileBytes / 1e6, gPath.c_str());

    // Peak heap of one open, after a first open has set up what lives for the whole process.
    std::string error = OpenAndClose();
    const size_t before = HeapInUse();
    ResetHeapPeak();
    if (error.empty()) error = OpenAndClose();
    const size_t peakGrowth = HeapPeak() - before;
    const long long leftBehind =
        static_cast<long long>(HeapInUse()) - static_cast<long long>(before);
    if (!error.empty()) {
        std::fprintf(stderr, "%s\n", error.c_str());
        std::remove(gPath.c_str());
        return 1;
    }

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    std::remove(gPath.c_str());

    std::printf("\n");
    const auto open = reporter.bestMs.find("BM_OpenStack");
    const auto read = reporter.bestMs.find("BM_ReadWhole");
    if (open != reporter.bestMs.end() && read != reporter.bestMs.end()) {
        const double ratio = open->second / read->second;
        std::printf("open / read():      %8.2f ms / %.2f ms = %.2fx   (target <= %.0fx) %s\n",
                    open->second, read->second, ratio, kOpenTarget, Verdict(ratio, kOpenTarget));
    }
    const auto fresh = reporter.bestMs.find("BM_ReadFresh");
    if (open != reporter.bestMs.end() && fresh != reporter.bestMs.end()) {
        std::printf("open / read() into fresh memory: %.2f ms / %.2f ms = %.2fx\n", open->second,
                    fresh->second, open->second / fresh->second);
    }
    const double heapRatio = static_cast<double>(peakGrowth) / static_cast<double>(gFileBytes);
    std::printf("peak heap of open:  %8.1f MB / %.1f MB file = %.2fx   (target <= %.0fx) %s\n",
                peakGrowth / 1e6, gFileBytes / 1e6, heapRatio, kHeapTarget,
                Verdict(heapRatio, kHeapTarget));
    std::printf("heap left after CloseStack: %lld bytes\n", leftBehind);
    return reporter.failed ? 1 : 0;
}
