// What the fuzz targets share: the stop on a broken promise, the input file of the targets that
// read files, a read of every byte a handle claims, and the picture a pixel decoder fills, shaped by the input's first four bytes (width 1 to 512,
// height 1 to 128, depth 1 to 32). Its slack bytes carry a mark a decoder must leave alone: they
// are inside the block, where AddressSanitizer cannot see them.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <unistd.h>

#include "gfx/DibImage.h"
#include "memory/MemRef.h"

struct FuzzImage { MemRef image = 0; const uint8_t* data = nullptr; uint32_t length = 0; };

inline constexpr uint8_t kSlackMark = 0xA5;

[[noreturn]] inline void FuzzBroken(const char* target, const char* what) {
    std::fprintf(stderr, "%s: %s\n", target, what);
    std::fflush(stderr);
    std::abort();
}

// A new, empty temporary file for `target`'s inputs, in TMPDIR or /tmp; the process stops when
// none can be made.
inline std::string MakeFuzzInputFile(const char* target) {
    const char* dir = std::getenv("TMPDIR");
    std::string pattern = std::string(dir && *dir ? dir : "/tmp") + "/qb-" + target + "-XXXXXX";
    const int fd = mkstemp(pattern.data());
    if (fd < 0) FuzzBroken(target, "cannot make a temporary file");
    close(fd);
    return pattern;
}

// The input as the whole of the file at `path`; the process stops when it can't be written.
inline void WriteFuzzInput(const char* target, const std::string& path, const uint8_t* data, size_t size) {
    FILE* file = std::fopen(path.c_str(), "wb");
    const bool written = file && (size == 0 || std::fwrite(data, 1, size, file) == size);
    if (!file || std::fclose(file) != 0 || !written) FuzzBroken(target, "cannot write the input file");
}

// Reads every byte a handle claims to hold, so a size that overstates the block is caught.
inline void FuzzTouch(MemRef ref) {
    static volatile uint32_t sink = 0;
    MemRefLock lock(ref);
    for (uint32_t i = 0; lock && i < GetMemRefSize(ref); ++i) sink = sink + lock.data()[i];
}

inline bool MakeFuzzImage(const uint8_t* data, size_t size, FuzzImage* out) {
    static const bool ready = InitMemRefs();
    if (!ready || size < 4 || size > (1u << 20)) return false;
    static constexpr int32_t kDepths[] = {1, 4, 8, 16, 24, 32};
    const int32_t width = (data[0] | (data[1] & 1) << 8) + 1;
    const int32_t height = (data[2] & 127) + 1;
    const int32_t depth = kDepths[data[3] % 6];
    out->image = NewDibImage(width, height, depth);
    if (!out->image) return false;
    MemRefLock lock(out->image);
    std::memset(DibPixels(lock.data()) + DibImageBytes(lock.data()), kSlackMark, kDibSlackBytes);
    out->data = data + 4;
    out->length = static_cast<uint32_t>(size - 4);
    return true;
}

inline bool SlackIntact(MemRef image) {
    MemRefLock lock(image);
    const uint8_t* slack = DibPixels(lock.data()) + DibImageBytes(lock.data());
    for (uint32_t i = 0; i < kDibSlackBytes; ++i) {
        if (slack[i] != kSlackMark) return false;
    }
    return true;
}

// An empty picture of the same shape.
inline MemRef SameShape(MemRef image) {
    MemRefLock lock(image);
    return NewDibImage(DibWidth(lock.data()), DibHeight(lock.data()), DibDepth(lock.data()));
}

// Whether every stored row holds a whole display row, so that packing loses nothing.
inline bool StoredRowsHoldDisplayRows(MemRef image) {
    MemRefLock lock(image);
    const int32_t width = DibWidth(lock.data()), depth = DibDepth(lock.data());
    return StoredRowBytes(depth, width) >= DibRowBytes(depth, width);
}

inline bool SamePixels(MemRef a, MemRef b) {
    MemRefLock la(a), lb(b);
    return DibImageBytes(la.data()) == DibImageBytes(lb.data()) &&
           std::memcmp(DibPixels(la.data()), DibPixels(lb.data()), DibImageBytes(la.data())) == 0;
}

// A decoder of packed pixels on arbitrary bytes; a decode that succeeds is packed again by the
// encoder, which must decode to the same pixels (only where `packable` says packing loses nothing).
template <typename Decode, typename Encode>
void FuzzPackedPixels(const char* name, const uint8_t* data, size_t size, Decode decode, Encode encode,
                      bool (*packable)(MemRef), int32_t damaged) {
    FuzzImage in;
    if (!MakeFuzzImage(data, size, &in)) return;
    const int32_t result = decode(in.image, in.data, in.length);
    if (!SlackIntact(in.image)) FuzzBroken(name, "the decoder wrote past the pixels");
    if (result == 0 && packable(in.image)) {
        const MemRef packed = encode(in.image), again = SameShape(in.image);
        if (!packed || !again) FuzzBroken(name, "a decoded picture does not pack");
        {
            MemRefLock p(packed);
            if (decode(again, p.data(), GetMemRefSize(packed)) != 0) FuzzBroken(name, "our packing does not decode");
        }
        if (!SamePixels(in.image, again)) FuzzBroken(name, "the round trip changed the pixels");
        FreeMemRef(packed);
        FreeMemRef(again);
    } else if (result != 0 && result != damaged) {
        FuzzBroken(name, "an unknown result");
    }
    FreeMemRef(in.image);
}
