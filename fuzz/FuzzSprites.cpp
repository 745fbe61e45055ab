// Animation payloads: the first byte chooses a 'Sprt' film (the rest is its record, its code set) or
// a frame-delta animation (the rest as a loaded stack holds it, head and frame sizes native). A film
// that reads must pack to bytes that read the same again, and draw or be refused; every frame of an
// animation is applied and shown. No handle may be left behind.
#include <cstdint>
#include <cstring>
#include <vector>

#include "FuzzImage.h"
#include "base/ByteOrder.h"
#include "memory/MemRef.h"
#include "sprites/FrameDelta.h"
#include "sprites/SpriteRecord.h"
#include "sprites/Sprites.h"
#include "sprites/Stage.h"

[[noreturn]] static void Broken(const char* what) { FuzzBroken("fuzz_sprites", what); }

static void Film(const uint8_t* data, size_t size) {
    std::vector<uint8_t> bytes(data, data + size);
    if (bytes.size() >= 4) std::memcpy(bytes.data(), "Sprt", 4);
    SpriteRecord record;
    if (ExpandSpriteRecord(bytes.data(), static_cast<uint32_t>(bytes.size()), &record) != 0) return;
    std::vector<uint8_t> packed, again;
    if (PackSpriteRecord(record, &packed) != 0) Broken("a record that reads does not pack");
    SpriteRecord reread;
    if (ExpandSpriteRecord(packed.data(), static_cast<uint32_t>(packed.size()), &reread) != 0) Broken("a packed record does not read");
    if (PackSpriteRecord(reread, &again) != 0 || again != packed) Broken("packing twice differs");
    Surface card(64, 48);
    DrawSpriteOnCard(bytes.data(), static_cast<uint32_t>(bytes.size()), card);
}

static void FrameDelta(const uint8_t* data, size_t size) {
    DeltaHead head;
    if (!ReadDeltaHead(data, static_cast<uint32_t>(size), &head)) return;
    uint32_t colors[256] = {};
    std::vector<uint8_t> picture;
    for (uint32_t n = 1; n <= head.frameCount && n <= 64; ++n) {
        if (!ApplyDeltaFrame(data, static_cast<uint32_t>(size), head, n, &picture)) continue;
        const Surface shown = DeltaPictureSurface(picture, head, colors);
        if (shown.width != head.width) Broken("a frame of another width");
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool ready = InitMemRefs();
    if (!ready || size < 1 || size > (1u << 20)) return 0;
    const int16_t before = GetMemRefTable().used;
    if (data[0] & 1) {
        Film(data + 1, size - 1);
    } else {
        FrameDelta(data + 1, size - 1);
    }
    if (GetMemRefTable().used != before) Broken("handles left behind");
    return 0;
}
