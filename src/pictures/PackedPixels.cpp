#include "pictures/PackedPixels.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "base/ByteOrder.h"
#include "gfx/DibImage.h"
#include "memory/OwnedMemRef.h"
#include "pictures/Lzrw.h"

namespace {

constexpr uint32_t kRowLengthField = 2;  // big-endian u16 in each row's LzrwBlock
constexpr uint32_t kMaxRowBlock = 0xFFFF;

constexpr uint32_t kRunStartSize = 50000;
constexpr uint32_t kRunGrowth = 5000;
constexpr uint32_t kRunMargin = 200;  // an item writes at most 129 bytes
constexpr int32_t kMaxRunCount = 127;

// The rows of a display image that a packing reads or writes.
struct RowShape {
    int32_t height = 0;
    uint32_t dibRow = 0;
    uint32_t storedRow = 0;
    uint64_t storedTotal = 0;
};

// False when the block is not a display image with all its rows.
bool ShapeOf(MemRef image, RowShape* shape) {
    MemRefLock lock(image);
    if (!lock || !IsDibLayoutValid(lock.data(), GetMemRefSize(image))) return false;
    const uint8_t* p = lock.data();
    shape->height = DibHeight(p);
    shape->dibRow = DibRowBytes(DibDepth(p), DibWidth(p));
    shape->storedRow = StoredRowBytes(DibDepth(p), DibWidth(p));
    shape->storedTotal = uint64_t{shape->storedRow} * static_cast<uint32_t>(shape->height);
    const uint64_t dibTotal = uint64_t{shape->dibRow} * static_cast<uint32_t>(shape->height);
    return dibTotal <= DibImageBytes(p) && shape->storedTotal < UINT32_MAX / 2;
}

// Grows `out` to hold `need` bytes in steps of `step`; false without memory.
bool Reserve(MemRef out, uint32_t* capacity, uint64_t need, uint32_t step) {
    if (need <= *capacity) return true;
    uint64_t size = *capacity;
    while (size < need) size += step;
    if (size > UINT32_MAX / 2 || SetMemRefSize(out, static_cast<uint32_t>(size)) != 0) return false;
    *capacity = static_cast<uint32_t>(size);
    return true;
}

}  // namespace

MemRef EncodeRowPacked(MemRef image) {
    RowShape shape;
    if (!ShapeOf(image, &shape)) return 0;
    const uint32_t stored = shape.storedRow;
    const uint32_t step =
        std::max<uint32_t>(static_cast<uint32_t>(shape.storedTotal / 4), stored + kLzrwOutputSlack);
    uint32_t capacity = static_cast<uint32_t>(shape.storedTotal / 4);
    OwnedMemRef out(NewMemRef(capacity)), row(NewMemRef(stored)), work(NewMemRef(kLzrwWorkSize));
    if (!out.ref() || !row.ref() || !work.ref()) return 0;
    uint32_t used = 0;
    for (int32_t y = 0; y < shape.height; ++y) {
        // Room for the compressor's overshoot as well as the row itself.
        if (!Reserve(out.ref(), &capacity, uint64_t{used} + stored + kLzrwOutputSlack, step))
            return 0;
        MemRefLock source(image), buffer(row.ref()), hash(work.ref()), target(out.ref());
        // The buffer is zeroed once; each display row overwrites its front, so the pad stays 0.
        std::memcpy(buffer.data(),
                    DibPixels(source.data()) + uint64_t{shape.dibRow} * static_cast<uint32_t>(y),
                    std::min(shape.dibRow, stored));
        uint32_t length = 0;
        LzrwCompress(hash.data(), buffer.data(), stored, target.data() + used, &length);
        if (length > kMaxRowBlock) return 0;
        WriteBE16(target.data() + used + kRowLengthField, static_cast<uint16_t>(length));
        used += length;
    }
    if (SetMemRefSize(out.ref(), used) != 0) return 0;
    return out.Release();
}

int32_t DecodeRowPacked(MemRef image, const uint8_t* data, uint32_t length) {
    RowShape shape;
    if (!ShapeOf(image, &shape)) return -1;
    // A stored row narrower than the display row leaves the rest of the display row at 0.
    OwnedMemRef row(NewMemRef(std::max(shape.storedRow, shape.dibRow)));
    if (!row.ref()) return -1;
    MemRefLock target(image), buffer(row.ref());
    uint8_t* to = DibPixels(target.data());
    const uint8_t* s = data;
    const uint8_t* const end = data + length;
    for (int32_t y = 0; y < shape.height; ++y, to += shape.dibRow) {
        if (end - s < static_cast<ptrdiff_t>(kLzrwHeadSize)) return kPixelsDamaged;
        const uint32_t block = ReadBE16(s + kRowLengthField);
        if (block < kLzrwHeadSize || block > static_cast<uint32_t>(end - s)) return kPixelsDamaged;
        uint32_t made = 0;
        if (LzrwDecompress(s, block, buffer.data(), shape.storedRow, &made) != 0 ||
            made != shape.storedRow) {
            return kPixelsDamaged;
        }
        std::memcpy(to, buffer.data(), shape.dibRow);
        s += block;
    }
    return 0;
}

MemRef EncodeRunPacked(MemRef image) {
    RowShape shape;
    if (!ShapeOf(image, &shape)) return 0;
    // The stored copy is exactly the byte sequence the stream covers, the pads between the two
    // layouts reading 0.
    OwnedMemRef stored(DibToStored(image)), out(NewMemRef(kRunStartSize));
    if (!stored.ref() || !out.ref()) return 0;
    uint32_t capacity = kRunStartSize;
    uint32_t used = 0;
    const uint64_t total = shape.storedTotal;
    {
        MemRefLock source(stored.ref());
        const uint8_t* px = DibPixels(source.data());
        // Past the last byte the stream reads 0: a final run may count one byte beyond the image,
        // which the reader drops.
        const auto at = [&](uint64_t i) -> uint8_t { return i < total ? px[i] : 0; };
        uint64_t i = 0;
        while (i < total) {
            if (used + kRunMargin > capacity) {
                if (!Reserve(out.ref(), &capacity, uint64_t{capacity} + kRunGrowth, kRunGrowth))
                    return 0;
            }
            MemRefLock target(out.ref());
            uint8_t* o = target.data();
            if (at(i) == at(i + 1)) {
                int32_t c = 0;
                while (at(i) == at(i + 1) && i < total && c != kMaxRunCount) {
                    ++c;
                    ++i;
                }
                o[used++] = static_cast<uint8_t>(-c);
                o[used++] = at(i);
                ++i;
            } else {
                const uint32_t countAt = used++;
                int32_t c = -1;
                while (at(i) != at(i + 1) && i < total && c != kMaxRunCount) {
                    o[used++] = at(i);
                    ++i;
                    ++c;
                }
                o[countAt] = static_cast<uint8_t>(c);
            }
        }
    }
    if (SetMemRefSize(out.ref(), used) != 0) return 0;
    return out.Release();
}

namespace {

// A run is at most 128 bytes: whole 16-byte chunks and a last one that ends where the run ends,
// which the compiler keeps inline where a library call would cost more than the copy.
inline void CopyRun(uint8_t* to, const uint8_t* from, uint32_t n) {
    if (n >= 16) {
        for (uint32_t i = 0; i + 16 < n; i += 16) std::memcpy(to + i, from + i, 16);
        std::memcpy(to + n - 16, from + n - 16, 16);
    } else if (n >= 8) {
        std::memcpy(to, from, 8);
        std::memcpy(to + n - 8, from + n - 8, 8);
    } else if (n >= 4) {
        std::memcpy(to, from, 4);
        std::memcpy(to + n - 4, from + n - 4, 4);
    } else if (n > 0) {
        to[0] = from[0];
        to[n / 2] = from[n / 2];
        to[n - 1] = from[n - 1];
    }
}

inline void FillRun(uint8_t* to, uint8_t b, uint32_t n) {
    uint8_t chunk[16];
    std::memset(chunk, b, sizeof chunk);
    CopyRun(to, chunk, std::min(n, 16u));
    for (uint32_t i = 16; i < n; i += 16) std::memcpy(to + std::min(i, n - 16), chunk, 16);
}

// Where the run stream's bytes land. Stored rows no wider than the display rows (1-bit pictures
// are the narrower) are written back to back, the gap at each display row's end left unwritten;
// wider ones lose the bytes past the display row.
struct RunTarget {
    uint8_t* out = nullptr;
    uint32_t keep = 0;  // bytes of each stored row that are written
    uint32_t storedRow = 0;
    uint32_t position = 0;  // in the stored row
    bool whole = false;     // every byte is written

    // `put(to, from, count)` writes bytes [from, from + count) of an n-byte run.
    template <typename Put>
    void Emit(uint32_t n, Put put) {
        if (whole) {
            put(out, 0, n);
            out += n;
            return;
        }
        for (uint32_t done = 0; done < n;) {
            const uint32_t k = std::min(n - done, storedRow - position);
            if (position < keep) {
                const uint32_t w = std::min(k, keep - position);
                put(out, done, w);
                out += w;
            }
            position += k;
            if (position == storedRow) position = 0;
            done += k;
        }
    }
};

}  // namespace

int32_t DecodeRunPacked(MemRef image, const uint8_t* data, uint32_t length) {
    RowShape shape;
    if (!ShapeOf(image, &shape)) return -1;
    MemRefLock target(image);
    // At most min(display row, stored row) bytes are written per stored row, so the writes stay
    // inside the dibRow * height bytes that ShapeOf found.
    RunTarget to;
    to.out = DibPixels(target.data());
    to.keep = std::min(shape.dibRow, shape.storedRow);
    to.storedRow = shape.storedRow;
    to.whole = shape.storedRow <= shape.dibRow;
    const uint8_t* s = data;
    const uint8_t* const end = data + length;
    uint64_t left = shape.storedTotal;
    if (to.whole) {
        // While both sides have room for the longest run and a chunk more, runs move as whole
        // 16-byte chunks; what a chunk puts past its run, the next run overwrites.
        constexpr uint32_t kRoom = 129 + 16;
        uint8_t* o = to.out;
        while (left >= kRoom && static_cast<uint32_t>(end - s) >= kRoom) {
            const int32_t c = static_cast<int8_t>(*s++);
            uint32_t n;
            if (c >= 0) {
                n = static_cast<uint32_t>(c) + 1;
                for (uint32_t i = 0; i < n; i += 16) std::memcpy(o + i, s + i, 16);
                s += n;
            } else {
                n = static_cast<uint32_t>(1 - c);
                uint8_t chunk[16];
                std::memset(chunk, *s++, sizeof chunk);
                for (uint32_t i = 0; i < n; i += 16) std::memcpy(o + i, chunk, 16);
            }
            o += n;
            left -= n;
        }
        to.out = o;
    }
    while (left > 0) {
        if (s == end) return kPixelsDamaged;
        const int32_t c = static_cast<int8_t>(*s++);
        // The stream stops when the image is full, even in the middle of a count.
        if (c >= 0) {
            const auto n =
                static_cast<uint32_t>(std::min<uint64_t>(static_cast<uint32_t>(c) + 1, left));
            if (static_cast<uint32_t>(end - s) < n) return kPixelsDamaged;
            to.Emit(
                n, [s](uint8_t* o, uint32_t from, uint32_t count) { CopyRun(o, s + from, count); });
            s += n;
            left -= n;
        } else {
            if (s == end) return kPixelsDamaged;
            const uint8_t b = *s++;
            const auto n =
                static_cast<uint32_t>(std::min<uint64_t>(static_cast<uint32_t>(1 - c), left));
            to.Emit(n, [b](uint8_t* o, uint32_t, uint32_t count) { FillRun(o, b, count); });
            left -= n;
        }
    }
    return 0;
}

int32_t DecodeGraphicPixels(MemRef image, uint16_t itemFlags, const uint8_t* data,
                            uint32_t length) {
    // For a graphic's pixels flag 16 means row-packed, as the picture code reads it; the stack
    // format's "shared by a group" meaning of the same bit belongs to the cards' item walk.
    if (itemFlags & kGraphicFlagRowPacked) return DecodeRowPacked(image, data, length);
    return DecodeRunPacked(image, data, length);
}
