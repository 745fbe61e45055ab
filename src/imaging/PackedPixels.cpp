#include "imaging/PackedPixels.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "imaging/DibImage.h"
#include "imaging/Lzrw.h"
#include "imaging/OwnedMemRef.h"
#include "stack/ByteOrder.h"

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
    const uint32_t step = std::max<uint32_t>(static_cast<uint32_t>(shape.storedTotal / 4), stored + kLzrwOutputSlack);
    uint32_t capacity = static_cast<uint32_t>(shape.storedTotal / 4);
    OwnedMemRef out(NewMemRef(capacity)), row(NewMemRef(stored)), work(NewMemRef(kLzrwWorkSize));
    if (!out.ref() || !row.ref() || !work.ref()) return 0;
    uint32_t used = 0;
    for (int32_t y = 0; y < shape.height; ++y) {
        // Room for the compressor's overshoot as well as the row itself.
        if (!Reserve(out.ref(), &capacity, uint64_t{used} + stored + kLzrwOutputSlack, step)) return 0;
        MemRefLock source(image), buffer(row.ref()), hash(work.ref()), target(out.ref());
        // The buffer is zeroed once; each display row overwrites its front, so the pad stays 0.
        std::memcpy(buffer.data(), DibPixels(source.data()) + uint64_t{shape.dibRow} * static_cast<uint32_t>(y),
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
        if (LzrwDecompress(s, block, buffer.data(), shape.storedRow, &made) != 0 || made != shape.storedRow) {
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
                if (!Reserve(out.ref(), &capacity, uint64_t{capacity} + kRunGrowth, kRunGrowth)) return 0;
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

int32_t DecodeRunPacked(MemRef image, const uint8_t* data, uint32_t length) {
    RowShape shape;
    if (!ShapeOf(image, &shape)) return -1;
    MemRefLock target(image);
    // At most min(display row, stored row) bytes are written per stored row, so `out` stays inside
    // the dibRow * height bytes that ShapeOf found.
    uint8_t* out = DibPixels(target.data());
    const uint32_t dibRow = shape.dibRow;
    const uint32_t storedRow = shape.storedRow;
    uint32_t position = 0;  // in the stored row, counting from 1 once a byte is taken
    const auto emit = [&](uint8_t b) {
        // Bytes past the display row are dropped. A stored row shorter than the display row (1-bit
        // pictures only) leaves the gap unwritten and the next row runs on from the last write.
        if (++position <= dibRow) *out++ = b;
        if (position == storedRow) position = 0;
    };
    const uint8_t* s = data;
    const uint8_t* const end = data + length;
    uint64_t left = shape.storedTotal;
    while (left > 0) {
        if (s == end) return kPixelsDamaged;
        const int32_t c = static_cast<int8_t>(*s++);
        if (c >= 0) {
            // The stream stops when the image is full, even in the middle of a count.
            const uint32_t n = static_cast<uint32_t>(std::min<uint64_t>(uint64_t(c) + 1, left));
            if (static_cast<uint32_t>(end - s) < n) return kPixelsDamaged;
            for (uint32_t k = 0; k < n; ++k) emit(s[k]);
            s += n;
            left -= n;
        } else {
            if (s == end) return kPixelsDamaged;
            const uint8_t b = *s++;
            const uint32_t n = static_cast<uint32_t>(std::min<uint64_t>(uint64_t(1 - c), left));
            for (uint32_t k = 0; k < n; ++k) emit(b);
            left -= n;
        }
    }
    return 0;
}

int32_t DecodeGraphicPixels(MemRef image, uint16_t itemFlags, const uint8_t* data, uint32_t length) {
    // For a graphic's pixels flag 16 means row-packed, as the picture code reads it; the stack
    // format's "shared by a group" meaning of the same bit belongs to the cards' item walk.
    if (itemFlags & kGraphicFlagRowPacked) return DecodeRowPacked(image, data, length);
    return DecodeRunPacked(image, data, length);
}
