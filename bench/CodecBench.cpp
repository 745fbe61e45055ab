// Picture codecs against libtiff's PackBits and memcpy, on three pictures made here: a 640x480
// 8-bit photograph (smooth noise, as a dithered picture's indices are), a 640x480 8-bit drawn
// card (flat areas, text-like strokes, lines) and a 1024x768 32-bit photograph. Throughput is in
// bytes of picture per second; every codec works on the same stored rows.
//
// After the runs it prints each codec's speed as a ratio to libtiff's PackBits decode of the same
// picture, beside the targets: LZRW1-A decode >= 1x on the drawn card and >= 0.7x on photographs,
// run-packed decode >= 1x, LZRW1-A compress >= 0.3x.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "gfx/DibImage.h"
#include "memory/MemRef.h"
#include "pictures/Lzrw.h"
#include "pictures/PackedPixels.h"
#include "MemoryTiff.h"
#include "RatioReporter.h"

namespace {

struct Picture {
    std::string name;
    int32_t width = 0, height = 0, depth = 0;
    std::vector<uint8_t> pixels;  // stored rows, top-down: what every codec below packs
    MemRef image = 0;             // the same pixels as a DibImage in memory order
    std::vector<uint8_t> lzrw;    // one LzrwBlock of all the pixels, as format 1 holds them
    std::vector<uint8_t> runs;    // RunPackedPixels
    std::unique_ptr<MemoryTiff> tiff;
};

// xorshift: the same pictures on every run.
struct Random {
    uint32_t state;
    uint32_t Next() {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return state;
    }
};

// Value noise: random values on a grid of `cell` pixels, blended bilinearly, plus a little grain.
std::vector<double> SmoothNoise(int32_t width, int32_t height, int32_t cell, uint32_t seed, double grain) {
    Random r{seed};
    const int32_t gw = width / cell + 2, gh = height / cell + 2;
    std::vector<double> grid(static_cast<size_t>(gw * gh));
    for (double& v : grid) v = r.Next() % 1000 / 1000.0;
    std::vector<double> out(static_cast<size_t>(width * height));
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const double fx = static_cast<double>(x) / cell, fy = static_cast<double>(y) / cell;
            const int32_t ix = static_cast<int32_t>(fx), iy = static_cast<int32_t>(fy);
            const double tx = fx - ix, ty = fy - iy;
            const auto g = [&](int32_t gx, int32_t gy) { return grid[static_cast<size_t>(gy * gw + gx)]; };
            const double top = g(ix, iy) * (1 - tx) + g(ix + 1, iy) * tx;
            const double bottom = g(ix, iy + 1) * (1 - tx) + g(ix + 1, iy + 1) * tx;
            const double noise = (static_cast<double>(r.Next() % 1000) / 1000.0 - 0.5) * grain;
            out[static_cast<size_t>(y * width + x)] = std::clamp(top * (1 - ty) + bottom * ty + noise, 0.0, 0.999);
        }
    }
    return out;
}

std::vector<uint8_t> Photograph8(int32_t width, int32_t height) {
    const std::vector<double> v = SmoothNoise(width, height, 24, 7, 0.008);
    std::vector<uint8_t> px(v.size());
    for (size_t i = 0; i < v.size(); ++i) px[i] = static_cast<uint8_t>(v[i] * 256);
    return px;
}

// Stored 32-bit pixels: zero, red, green, blue.
std::vector<uint8_t> Photograph32(int32_t width, int32_t height) {
    const std::vector<double> r = SmoothNoise(width, height, 40, 11, 0.008), g = SmoothNoise(width, height, 56, 13, 0.008),
                              b = SmoothNoise(width, height, 32, 17, 0.008);
    std::vector<uint8_t> px(r.size() * 4);
    for (size_t i = 0; i < r.size(); ++i) {
        px[4 * i] = 0;
        px[4 * i + 1] = static_cast<uint8_t>(r[i] * 256);
        px[4 * i + 2] = static_cast<uint8_t>(g[i] * 256);
        px[4 * i + 3] = static_cast<uint8_t>(b[i] * 256);
    }
    return px;
}

// A card as an author draws one: a title band, a panel, framed buttons, lines of text-like strokes
// and a few ruled and diagonal lines, all on flat colours.
std::vector<uint8_t> DrawnCard(int32_t width, int32_t height) {
    std::vector<uint8_t> px(static_cast<size_t>(width * height), 0);
    const auto fill = [&](int32_t l, int32_t t, int32_t r, int32_t b, uint8_t c) {
        for (int32_t y = std::max(t, 0); y < std::min(b, height); ++y) {
            for (int32_t x = std::max(l, 0); x < std::min(r, width); ++x) px[static_cast<size_t>(y * width + x)] = c;
        }
    };
    fill(0, 0, width, 60, 17);
    fill(20, 80, width - 20, 400, 6);
    for (int32_t i = 0; i < 4; ++i) {
        const int32_t l = 40 + i * 150;
        fill(l, 420, l + 120, 460, 255);
        fill(l + 2, 422, l + 118, 458, 200);
    }
    Random r{23};
    // Twelve lines of "text": glyphs of random vertical and horizontal strokes in a 7x11 cell.
    for (int32_t line = 0; line < 12; ++line) {
        const int32_t top = 100 + line * 24;
        for (int32_t x = 40; x < width - 60; x += 8) {
            if (r.Next() % 7 == 0) continue;  // a space
            const uint32_t shape = r.Next();
            for (int32_t s = 0; s < 4; ++s) {
                if (shape >> s & 1) fill(x + s * 2, top, x + s * 2 + 1, top + 11, 255);
                if (shape >> (s + 4) & 1) fill(x, top + s * 3, x + 7, top + s * 3 + 1, 255);
            }
        }
    }
    for (int32_t y = 70; y < 410; y += 85) fill(0, y, width, y + 1, 100);
    for (int32_t i = 0; i < 300; ++i) fill(300 + i, 60 + i, 302 + i, 61 + i, 42);
    fill(0, 0, 640, 2, 255);
    return px;
}

std::vector<std::unique_ptr<Picture>> gPictures;

Picture* MakePicture(const std::string& name, int32_t width, int32_t height, int32_t depth, std::vector<uint8_t> pixels) {
    auto p = std::make_unique<Picture>();
    p->name = name;
    p->width = width, p->height = height, p->depth = depth;
    p->pixels = std::move(pixels);
    // Widths are multiples of 16, so the stored and display rows are the same bytes.
    p->image = NewDibImage(width, height, depth);
    {
        MemRefLock lock(p->image);
        std::memcpy(DibPixels(lock.data()), p->pixels.data(), p->pixels.size());
    }
    std::vector<uint8_t> work(kLzrwWorkSize);
    p->lzrw.resize(p->pixels.size() + kLzrwOutputSlack);
    uint32_t length = 0;
    LzrwCompress(work.data(), p->pixels.data(), static_cast<uint32_t>(p->pixels.size()), p->lzrw.data(), &length);
    p->lzrw.resize(length);
    const MemRef runs = EncodeRunPacked(p->image);
    {
        MemRefLock lock(runs);
        p->runs.assign(lock.data(), lock.data() + GetMemRefSize(runs));
    }
    FreeMemRef(runs);
    p->tiff = std::make_unique<MemoryTiff>(static_cast<uint32_t>(width), static_cast<uint32_t>(height),
                                           static_cast<uint16_t>(depth / 8));
    if (!p->tiff->WritePackBits(p->pixels.data()) || !p->tiff->OpenForReading()) return nullptr;
    gPictures.push_back(std::move(p));
    return gPictures.back().get();
}

// Every decoder must give the picture back before it is timed.
bool Check(const Picture& p) {
    std::vector<uint8_t> out(p.pixels.size());
    uint32_t made = 0;
    if (LzrwDecompress(p.lzrw.data(), static_cast<uint32_t>(p.lzrw.size()), out.data(), static_cast<uint32_t>(out.size()), &made) != 0 ||
        out != p.pixels) {
        return false;
    }
    if (!p.tiff->DecodeStrip(out.data()) || out != p.pixels) return false;
    const MemRef image = NewDibImage(p.width, p.height, p.depth);
    bool same = DecodeRunPacked(image, p.runs.data(), static_cast<uint32_t>(p.runs.size())) == 0;
    {
        MemRefLock lock(image);
        same = same && std::memcmp(DibPixels(lock.data()), p.pixels.data(), p.pixels.size()) == 0;
    }
    FreeMemRef(image);
    return same;
}

void Processed(benchmark::State& state, const Picture& p) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(p.pixels.size()));
}

void BM_Memcpy(benchmark::State& state, Picture* p) {
    std::vector<uint8_t> out(p->pixels.size());
    for (auto _ : state) {
        std::memcpy(out.data(), p->pixels.data(), out.size());
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    Processed(state, *p);
}

void BM_TiffPackBitsDecode(benchmark::State& state, Picture* p) {
    std::vector<uint8_t> out(p->pixels.size());
    for (auto _ : state) {
        if (!p->tiff->DecodeStrip(out.data())) state.SkipWithError("libtiff failed");
        benchmark::DoNotOptimize(out.data());
    }
    Processed(state, *p);
}

void BM_LzrwDecode(benchmark::State& state, Picture* p) {
    std::vector<uint8_t> out(p->pixels.size());
    for (auto _ : state) {
        uint32_t made = 0;
        LzrwDecompress(p->lzrw.data(), static_cast<uint32_t>(p->lzrw.size()), out.data(), static_cast<uint32_t>(out.size()), &made);
        benchmark::DoNotOptimize(out.data());
    }
    Processed(state, *p);
}

void BM_RunPackedDecode(benchmark::State& state, Picture* p) {
    const MemRef image = NewDibImage(p->width, p->height, p->depth);
    for (auto _ : state) {
        DecodeRunPacked(image, p->runs.data(), static_cast<uint32_t>(p->runs.size()));
        benchmark::ClobberMemory();
    }
    FreeMemRef(image);
    Processed(state, *p);
}

void BM_LzrwCompress(benchmark::State& state, Picture* p) {
    std::vector<uint8_t> work(kLzrwWorkSize), out(p->pixels.size() + kLzrwOutputSlack);
    for (auto _ : state) {
        uint32_t length = 0;
        LzrwCompress(work.data(), p->pixels.data(), static_cast<uint32_t>(p->pixels.size()), out.data(), &length);
        benchmark::DoNotOptimize(out.data());
    }
    Processed(state, *p);
}

struct Target {
    const char* codec;
    const char* label;
    double drawn, photograph;
};
constexpr Target kTargets[] = {
    {"lzrw_decode", "LZRW1-A decode", 1.0, 0.7},
    {"run_packed_decode", "RunPackedPixels decode", 1.0, 1.0},
    {"lzrw_compress", "LZRW1-A compress", 0.3, 0.3},
    {"memcpy", "memcpy", 0, 0},
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    InitMemRefs();
    TIFFSetWarningHandler(nullptr);

    const Picture* made[] = {MakePicture("photo8", 640, 480, 8, Photograph8(640, 480)),
                             MakePicture("drawn8", 640, 480, 8, DrawnCard(640, 480)),
                             MakePicture("photo32", 1024, 768, 32, Photograph32(1024, 768))};
    for (const Picture* p : made) {
        if (!p || !Check(*p)) {
            std::fprintf(stderr, "a codec does not give its picture back\n");
            return 1;
        }
    }
    for (const auto& p : gPictures) {
        std::printf("%-8s %4dx%-4d %2d bits: %7zu bytes; LZRW1-A %7zu, run-packed %7zu, PackBits %7zu\n", p->name.c_str(), p->width,
                    p->height, p->depth, p->pixels.size(), p->lzrw.size(), p->runs.size(), p->tiff->RawStrip().size());
        Picture* raw = p.get();
        benchmark::RegisterBenchmark(("tiff_packbits_decode/" + p->name).c_str(), BM_TiffPackBitsDecode, raw);
        benchmark::RegisterBenchmark(("lzrw_decode/" + p->name).c_str(), BM_LzrwDecode, raw);
        benchmark::RegisterBenchmark(("run_packed_decode/" + p->name).c_str(), BM_RunPackedDecode, raw);
        benchmark::RegisterBenchmark(("lzrw_compress/" + p->name).c_str(), BM_LzrwCompress, raw);
        benchmark::RegisterBenchmark(("memcpy/" + p->name).c_str(), BM_Memcpy, raw);
    }

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    std::printf("\nMB/s, and the ratio to libtiff's PackBits decode of the same picture (target in brackets):\n");
    bool missed = false;
    for (const auto& p : gPictures) {
        const auto base = reporter.bytesPerSecond.find("tiff_packbits_decode/" + p->name);
        if (base == reporter.bytesPerSecond.end()) continue;
        std::printf("%-8s PackBits decode %8.0f MB/s\n", p->name.c_str(), base->second / 1e6);
        for (const Target& t : kTargets) {
            const auto it = reporter.bytesPerSecond.find(std::string(t.codec) + "/" + p->name);
            if (it == reporter.bytesPerSecond.end()) continue;
            const double ratio = it->second / base->second;
            const double target = p->name == "drawn8" ? t.drawn : t.photograph;
            const bool ok = ratio >= target;
            missed = missed || !ok;
            std::printf("         %-23s %8.0f MB/s  %6.2fx", t.label, it->second / 1e6, ratio);
            if (target > 0) std::printf("  (>= %.1fx) %s", target, ok ? "ok" : "MISSED");
            std::printf("\n");
        }
    }
    for (const auto& p : gPictures) FreeMemRef(p->image);
    if (missed) std::printf("\nSome targets were missed.\n");
    return reporter.failed ? 1 : 0;
}
