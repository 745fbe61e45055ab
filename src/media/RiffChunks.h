// A walk over the chunks of a RIFF file in memory: a 4-character code, a little-endian 32-bit size,
// the data, and a pad byte after odd sizes. Every chunk found lies inside the bytes given.
#pragma once

#include <cstdint>

struct RiffChunk {
    uint32_t id = 0;      // the code as its four bytes read big-endian: 'fmt ' is 0x666D7420
    uint32_t offset = 0;  // of the data, from the start of the file
    uint32_t size = 0;    // bytes of data, cut to what the file holds
    bool cut = false;     // the size said more than the file holds
};

constexpr uint32_t FourCC(const char (&code)[5]) {
    return uint32_t{static_cast<uint8_t>(code[0])} << 24 | uint32_t{static_cast<uint8_t>(code[1])} << 16 |
           uint32_t{static_cast<uint8_t>(code[2])} << 8 | static_cast<uint8_t>(code[3]);
}

// The bytes of a "RIFF" file whose form is `form`: its chunks lie from 12 to `*end`, which is the
// RIFF size's end or the file's, whichever comes first. False for anything else.
bool OpenRiffForm(const uint8_t* bytes, uint32_t size, uint32_t form, uint32_t* end);
// The first chunk `id` among the chunks from `start` to `end` (within the `bytes`); false when the
// walk reaches the end, or a chunk head that doesn't fit, without it.
bool FindRiffChunk(const uint8_t* bytes, uint32_t start, uint32_t end, uint32_t id, RiffChunk* chunk);
