#include "imaging/Lzrw.h"

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

static_assert(3 + kHashEntries * 4 <= kLzrwWorkSize, "the hash table fits the work block");
static_assert(kGroupItems * 2 <= kLzrwOutputSlack);

// The hash of the next three bytes, each taken as a signed byte. The product's last shift is
// arithmetic; the mask keeps only bits 4 to 15, where an arithmetic and a logical shift agree.
inline uint32_t Hash(const uint8_t* p) {
    const auto s0 = static_cast<uint32_t>(static_cast<int32_t>(static_cast<int8_t>(p[0])));
    const auto s1 = static_cast<uint32_t>(static_cast<int32_t>(static_cast<int8_t>(p[1])));
    const auto s2 = static_cast<uint32_t>(static_cast<int32_t>(static_cast<int8_t>(p[2])));
    return (((s0 << 4 ^ s1) << 4 ^ s2) * 40543u >> 4) & 0xFFF;
}

// The table holds source positions: an entry from another call is at worst a position whose bytes
// no longer match, and the match test compares them.
inline uint32_t LoadEntry(const uint8_t* table, uint32_t h) {
    uint32_t v;
    std::memcpy(&v, table + h * 4, 4);
    return v;
}
inline void StoreEntry(uint8_t* table, uint32_t h, uint32_t v) { std::memcpy(table + h * 4, &v, 4); }

// One planned item at `pos`, which has at least kMaxCopy bytes behind it.
inline void CompressItem(uint8_t* table, const uint8_t* src, uint32_t& pos, uint8_t*& d, uint32_t& control) {
    const uint8_t* p = src + pos;
    const uint32_t h = Hash(p);
    const uint32_t offset = pos - LoadEntry(table, h);
    StoreEntry(table, h, pos);
    if (offset - 1 < kMaxOffset) {
        const uint8_t* m = p - offset;
        if (m[0] == p[0] && m[1] == p[1] && m[2] == p[2]) {
            uint32_t length = kMinCopy;
            while (length < kMaxCopy && m[length] == p[length]) ++length;
            *d++ = static_cast<uint8_t>((offset & 0xF00) >> 4 | (length - kMinCopy));
            *d++ = static_cast<uint8_t>(offset);
            pos += length;
            control >>= 1;
            return;
        }
    }
    *d++ = *p;
    ++pos;
    control = (control & ~kLiteralBit) >> 1;
}

// Byte-by-byte semantics, so that an overlapping copy repeats; whole words where the source lies
// entirely behind the destination.
inline void CopyBack(uint8_t*& d, uint32_t offset, uint32_t length) {
    const uint8_t* from = d - offset;
    if (offset >= 8) {
        for (; length >= 8; length -= 8, d += 8, from += 8) std::memcpy(d, from, 8);
    }
    while (length--) *d++ = *from++;
}

}  // namespace

void LzrwCompress(uint8_t* work, const uint8_t* src, uint32_t srcLen, uint8_t* dst, uint32_t* dstLen) {
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

    // Whole groups while both buffers have room for the largest: one test per copy, for its offset.
    while (static_cast<uint32_t>(end - s) >= kGroupMaxIn && static_cast<uint32_t>(dstEnd - d) >= kGroupMaxOut) {
        uint32_t control = uint32_t{s[0]} | uint32_t{s[1]} << 8;
        s += 2;
        for (uint32_t i = 0; i < kGroupItems; ++i, control >>= 1) {
            if (!(control & 1)) {
                *d++ = *s++;
                continue;
            }
            const uint32_t offset = uint32_t{s[0] & 0xF0u} << 4 | s[1];
            const uint32_t length = (s[0] & 0x0Fu) + kMinCopy;
            s += 2;
            if (offset - 1 >= static_cast<uint32_t>(d - dst)) {
                result = kLzrwDamaged;
                goto done;
            }
            CopyBack(d, offset, length);
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
                if (offset - 1 >= static_cast<uint32_t>(d - dst) || length > static_cast<uint32_t>(dstEnd - d)) {
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
done:
    *dstLen = static_cast<uint32_t>(d - dst);
    return result;
}
