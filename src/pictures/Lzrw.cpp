#include "pictures/Lzrw.h"

#include <bit>
#include <cstring>

namespace {

constexpr uint32_t kHashEntries = 4096;
constexpr uint32_t kMaxOffset = 4095;
constexpr uint32_t kMinCopy = 3;
constexpr uint32_t kMaxCopy = 18;
constexpr uint32_t kGroupItems = 16;
// Below this much source left, items are planned one at a time; below kMaxCopy, literals only.
constexpr uint32_t kUnrolledMargin = 288;
constexpr uint32_t kControlTop = 0xFFFF0000u;
constexpr uint32_t kLiteralBit = 0x10000u;
// A whole group at its largest: control word and 16 copies. A group makes at most 16 * 18 bytes.
constexpr uint32_t kGroupMaxIn = 2 + kGroupItems * 2;
constexpr uint32_t kGroupMaxOut = kGroupItems * kMaxCopy;
// The decoder's whole-group path moves fixed-size chunks: a run of literals as 16 bytes, a copy as
// up to 32. It keeps this much room past the largest group on both sides.
constexpr uint32_t kOvershoot = 32;

static_assert(3 + kHashEntries * 4 <= kLzrwWorkSize, "the hash table fits the work block");
static_assert(kGroupItems * 2 <= kLzrwOutputSlack);

inline uint32_t LoadLE32(const uint8_t* p) {
    uint32_t v;
    std::memcpy(&v, p, 4);
    if constexpr (std::endian::native == std::endian::big) v = __builtin_bswap32(v);
    return v;
}
inline uint64_t LoadLE64(const uint8_t* p) {
    uint64_t v;
    std::memcpy(&v, p, 8);
    if constexpr (std::endian::native == std::endian::big) v = __builtin_bswap64(v);
    return v;
}

// The hash of the next three bytes, each taken as a signed byte. The product's last shift is
// arithmetic; the mask keeps only bits 4 to 15, where an arithmetic and a logical shift agree.
inline uint32_t Hash(const uint8_t* p) {
    const auto s0 = static_cast<uint32_t>(static_cast<int32_t>(static_cast<int8_t>(p[0])));
    const auto s1 = static_cast<uint32_t>(static_cast<int32_t>(static_cast<int8_t>(p[1])));
    const auto s2 = static_cast<uint32_t>(static_cast<int32_t>(static_cast<int8_t>(p[2])));
    return ((s0 << 8 ^ s1 << 4 ^ s2) * 40543u >> 4) & 0xFFF;
}

// The table holds source positions: an entry from another call is at worst a position whose bytes
// no longer match, and the match test compares them.
inline uint32_t LoadEntry(const uint8_t* table, uint32_t h) {
    uint32_t v;
    std::memcpy(&v, table + h * 4, 4);
    return v;
}
inline void StoreEntry(uint8_t* table, uint32_t h, uint32_t v) {
    std::memcpy(table + h * 4, &v, 4);
}

// How many of bytes 3 to 17 after m and p agree, counted from 3, plus 3: the copy's length.
inline uint32_t MatchLength(const uint8_t* m, const uint8_t* p) {
    // Bytes 3..10, then 10..17: the second word starts on a byte the first found equal.
    const uint64_t first = LoadLE64(m + 3) ^ LoadLE64(p + 3);
    if (first) return 3 + static_cast<uint32_t>(std::countr_zero(first)) / 8;
    const uint64_t second = LoadLE64(m + 10) ^ LoadLE64(p + 10);
    if (second) return 10 + static_cast<uint32_t>(std::countr_zero(second)) / 8;
    return kMaxCopy;
}

// One planned item at `pos`, which has at least kMaxCopy bytes behind it.
inline void CompressItem(uint8_t* table, const uint8_t* src, uint32_t& pos, uint8_t*& d,
                         uint32_t& control) {
    const uint8_t* p = src + pos;
    const uint32_t h = Hash(p);
    const uint32_t entry = LoadEntry(table, h);
    StoreEntry(table, h, pos);
    const uint32_t offset = pos - entry;
    // One branch per item, as whether the slot is in reach is a coin toss on noisy pictures: an
    // offset out of reach compares p with itself and is refused by `far`.
    const uint32_t far = offset - 1 >= kMaxOffset ? 1u : 0u;
    const uint8_t* m = p - (offset & (far - 1));
    if ((((LoadLE32(m) ^ LoadLE32(p)) & 0xFFFFFFu) | far) == 0) {
        const uint32_t length = MatchLength(m, p);
        d[0] = static_cast<uint8_t>((offset & 0xF00) >> 4 | (length - kMinCopy));
        d[1] = static_cast<uint8_t>(offset);
        d += 2;
        pos += length;
        control >>= 1;
        return;
    }
    *d++ = *p;
    ++pos;
    control = (control & ~kLiteralBit) >> 1;
}

// Byte-by-byte semantics, so that an overlapping copy repeats; whole words where the source lies
// entirely behind the destination. Writes exactly `length` bytes.
inline void CopyBack(uint8_t*& d, uint32_t offset, uint32_t length) {
    const uint8_t* from = d - offset;
    if (offset >= 8) {
        for (; length >= 8; length -= 8, d += 8, from += 8) std::memcpy(d, from, 8);
    }
    while (length--) *d++ = *from++;
}

// The same copy for the whole-group path, which has kOvershoot bytes of room past d, as fixed
// chunks that may run past the copy. A source wholly behind is read before anything is written, in
// two chunks that the next copy of the same offset finds whole: a load that straddles two stores
// still in flight stalls.
inline void CopyBackWide(uint8_t*& d, uint32_t offset, uint32_t length) {
    const uint8_t* from = d - offset;
    if (offset >= kMaxCopy) {
        uint8_t head[16], tail[2];
        std::memcpy(head, from, 16);
        std::memcpy(tail, from + 16, 2);
        std::memcpy(d, head, 16);
        std::memcpy(d + 16, tail, 2);
    } else if (offset >= 16) {
        std::memcpy(d, from, 8);
        std::memcpy(d + 8, from + 8, 8);
        std::memcpy(d + 16, from + 16, 8);
    } else if (offset == 1) {
        std::memset(d, d[-1], kMaxCopy);
    } else {
        // The copy repeats the last `offset` bytes; each store puts one period in place. `head`
        // holds stale bytes past d, and each store's stale part is overwritten by the next store
        // or lies past the copy.
        uint8_t head[16];
        std::memcpy(head, from, 16);
        for (uint32_t k = 0; k < length; k += offset) std::memcpy(d + k, head, 16);
    }
    d += length;
}

// One copy item in the whole-group path; false for an offset that reaches before the output.
inline bool CopyItemWide(const uint8_t*& s, uint8_t*& d, const uint8_t* dst) {
    const uint32_t offset = uint32_t{s[0] & 0xF0u} << 4 | s[1];
    const uint32_t length = (s[0] & 0x0Fu) + kMinCopy;
    s += 2;
    if (offset - 1 >= static_cast<uint32_t>(d - dst)) return false;
    CopyBackWide(d, offset, length);
    return true;
}

}  // namespace

void LzrwCompress(uint8_t* work, const uint8_t* src, uint32_t srcLen, uint8_t* dst,
                  uint32_t* dstLen) {
    uint8_t* table = work + ((4 - reinterpret_cast<uintptr_t>(work) % 4) % 4);
    uint8_t* const dstPost = dst + srcLen;
    std::memset(dst, 0, kLzrwHeadSize);
    uint8_t* controlAt = dst + kLzrwHeadSize;
    uint8_t* d = controlAt + 2;
    uint32_t control = kControlTop;
    uint32_t pos = 0;
    for (;;) {
        if (d > dstPost) {
            if (srcLen) std::memcpy(dst + kLzrwHeadSize, src, srcLen);
            dst[0] = kLzrwStored;
            *dstLen = srcLen + kLzrwHeadSize;
            return;
        }
        const uint32_t left = srcLen - pos;
        if (left >= kUnrolledMargin) {
            for (uint32_t i = 0; i < kGroupItems; ++i) CompressItem(table, src, pos, d, control);
        } else if (left < kMaxCopy) {
            if (left == 0) break;
            *d++ = src[pos++];
            control = (control & ~kLiteralBit) >> 1;
        } else {
            CompressItem(table, src, pos, d, control);
        }
        if (control < 0x10000u) {
            controlAt[0] = static_cast<uint8_t>(control);
            controlAt[1] = static_cast<uint8_t>(control >> 8);
            controlAt = d;
            d += 2;
            control = kControlTop;
        }
    }
    while (control > 0xFFFFu) control >>= 1;
    controlAt[0] = static_cast<uint8_t>(control);
    controlAt[1] = static_cast<uint8_t>(control >> 8);
    // A control word with no items behind it is left out.
    if (controlAt + 2 == d) d = controlAt;
    *dstLen = static_cast<uint32_t>(d - dst);
}

int32_t LzrwDecompress(const uint8_t* src, uint32_t srcLen, uint8_t* dst, uint32_t dstCapacity,
                       uint32_t* dstLen) {
    if (srcLen == 0) return 0;
    if (srcLen < kLzrwHeadSize) {
        *dstLen = 0;
        return kLzrwDamaged;
    }
    if (src[0] == kLzrwStored) {
        const uint32_t length = srcLen - kLzrwHeadSize;
        if (length > dstCapacity) {
            *dstLen = 0;
            return kLzrwDamaged;
        }
        if (length) std::memcpy(dst, src + kLzrwHeadSize, length);
        *dstLen = length;
        return 0;
    }
    const uint8_t* s = src + kLzrwHeadSize;
    const uint8_t* const end = src + srcLen;
    uint8_t* d = dst;
    uint8_t* const dstEnd = dst + dstCapacity;
    int32_t result = 0;

    // Whole groups while both buffers have room for the largest and the overshoot: one test per
    // copy, for its offset. A run of literals moves as one chunk.
    while (static_cast<uint32_t>(end - s) >= kGroupMaxIn + kOvershoot &&
           static_cast<uint32_t>(dstEnd - d) >= kGroupMaxOut + kOvershoot) {
        // The bit above the 16 items marks the group's end.
        uint32_t control = uint32_t{s[0]} | uint32_t{s[1]} << 8 | 0x10000u;
        s += 2;
        // Groups of copies alone, as flat areas make them, skip the literal step.
        if (control == 0x1FFFFu) {
            for (uint32_t i = 0; i < kGroupItems; ++i) {
                if (!CopyItemWide(s, d, dst)) goto damaged;
            }
            continue;
        }
        for (;;) {
            // The bit above the items keeps the control nonzero.
            const auto literals = static_cast<uint32_t>(__builtin_ctz(control));
            std::memcpy(d, s, 16);
            d += literals;
            s += literals;
            control >>= literals;
            if (control == 1) break;
            if (!CopyItemWide(s, d, dst)) goto damaged;
            control >>= 1;
            if (control == 1) break;
        }
    }
    // The rest item by item, each checked against both ends.
    {
        uint32_t control = 0;
        uint32_t bitsLeft = 0;
        while (s < end) {
            if (bitsLeft == 0) {
                if (end - s < 2) {
                    result = kLzrwDamaged;
                    break;
                }
                control = uint32_t{s[0]} | uint32_t{s[1]} << 8;
                s += 2;
                bitsLeft = kGroupItems;
                continue;
            }
            if (control & 1) {
                if (end - s < 2) {
                    result = kLzrwDamaged;
                    break;
                }
                const uint32_t offset = uint32_t{s[0] & 0xF0u} << 4 | s[1];
                const uint32_t length = (s[0] & 0x0Fu) + kMinCopy;
                if (offset - 1 >= static_cast<uint32_t>(d - dst) ||
                    length > static_cast<uint32_t>(dstEnd - d)) {
                    result = kLzrwDamaged;
                    break;
                }
                s += 2;
                CopyBack(d, offset, length);
            } else {
                if (d == dstEnd) {
                    result = kLzrwDamaged;
                    break;
                }
                *d++ = *s++;
            }
            control >>= 1;
            --bitsLeft;
        }
    }
    *dstLen = static_cast<uint32_t>(d - dst);
    return result;
damaged:
    *dstLen = static_cast<uint32_t>(d - dst);
    return kLzrwDamaged;
}
