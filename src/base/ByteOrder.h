// Big-endian fields of stack files, read and turned around through these helpers only.
// The native side is little-endian on every host we build for (x86-64, wasm32).
#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "stack records are normalised for a little-endian host");

inline uint16_t ReadBE16(const uint8_t* p) { return static_cast<uint16_t>(p[0] << 8 | p[1]); }
inline uint32_t ReadBE32(const uint8_t* p) {
    return uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 8 | p[3];
}
inline void WriteBE16(uint8_t* p, uint16_t v) {
    p[0] = static_cast<uint8_t>(v >> 8);
    p[1] = static_cast<uint8_t>(v);
}
inline void WriteBE32(uint8_t* p, uint32_t v) {
    p[0] = static_cast<uint8_t>(v >> 24);
    p[1] = static_cast<uint8_t>(v >> 16);
    p[2] = static_cast<uint8_t>(v >> 8);
    p[3] = static_cast<uint8_t>(v);
}

// Native-order fields of normalised records (records are unaligned, so never cast).
inline uint16_t Read16(const uint8_t* p) {
    uint16_t v;
    std::memcpy(&v, p, 2);
    return v;
}
inline int16_t ReadS16(const uint8_t* p) { return static_cast<int16_t>(Read16(p)); }
inline uint32_t Read32(const uint8_t* p) {
    uint32_t v;
    std::memcpy(&v, p, 4);
    return v;
}
inline void Write16(uint8_t* p, uint16_t v) { std::memcpy(p, &v, 2); }
inline void Write32(uint8_t* p, uint32_t v) { std::memcpy(p, &v, 4); }

// In-place exchanges between the stored and the native form; each is its own inverse.
inline void Swap16(uint8_t* p) {
    const uint8_t t = p[0];
    p[0] = p[1];
    p[1] = t;
}
inline void Swap32(uint8_t* p) {
    uint8_t t = p[0];
    p[0] = p[3];
    p[3] = t;
    t = p[1];
    p[1] = p[2];
    p[2] = t;
}
// Stored top, left, bottom, right <-> native left, top, right, bottom.
inline void SwapRect(uint8_t* p) {
    Swap16(p);
    Swap16(p + 2);
    Swap16(p + 6);
    Swap16(p + 4);
    uint8_t w[2];
    std::memcpy(w, p, 2);
    std::memcpy(p, p + 2, 2);
    std::memcpy(p + 2, w, 2);
    std::memcpy(w, p + 4, 2);
    std::memcpy(p + 4, p + 6, 2);
    std::memcpy(p + 6, w, 2);
}

// Applies Swap16 or Swap32 to each listed offset: the conversion tables are lists of offsets.
inline void Swap16At(uint8_t* base, std::initializer_list<uint32_t> offsets) {
    for (uint32_t o : offsets) Swap16(base + o);
}
inline void Swap32At(uint8_t* base, std::initializer_list<uint32_t> offsets) {
    for (uint32_t o : offsets) Swap32(base + o);
}
