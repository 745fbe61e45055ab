#include "media/RiffChunks.h"

#include "base/ByteOrder.h"

bool OpenRiffForm(const uint8_t* bytes, uint32_t size, uint32_t form, uint32_t* end) {
    if (size < 12 || ReadBE32(bytes) != FourCC("RIFF") || ReadBE32(bytes + 8) != form) return false;
    // Writers that stream leave the size at 0 or all ones: the file's end stands for it then.
    const uint64_t riffEnd = uint64_t{Read32(bytes + 4)} + 8;
    *end = riffEnd < size && riffEnd >= 12 ? static_cast<uint32_t>(riffEnd) : size;
    return true;
}

bool FindRiffChunk(const uint8_t* bytes, uint32_t start, uint32_t end, uint32_t id, RiffChunk* chunk) {
    uint64_t at = start;
    while (at + 8 <= end) {
        const uint32_t code = ReadBE32(bytes + at), declared = Read32(bytes + at + 4);
        const uint64_t data = at + 8;
        if (code == id) {
            chunk->id = code;
            chunk->offset = static_cast<uint32_t>(data);
            chunk->cut = data + declared > end;
            chunk->size = chunk->cut ? static_cast<uint32_t>(end - data) : declared;
            return true;
        }
        at = data + declared + (declared & 1);
    }
    return false;
}
