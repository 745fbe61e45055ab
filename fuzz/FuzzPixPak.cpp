// PixPak records: arbitrary bytes as a frame's record, its size field set to the input's length (any
// other size is refused unread). Every handle the decode makes must be freed with the image.
#include <cstdint>
#include <vector>

#include "FuzzImage.h"
#include "base/ByteOrder.h"
#include "pictures/PixPak.h"

[[noreturn]] static void Broken(const char* what) { FuzzBroken("fuzz_pixpak", what); }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool ready = InitMemRefs();
    if (!ready || size < kPixPakHeadSize || size > (1u << 20)) return 0;
    std::vector<uint8_t> record(data, data + size);
    WriteBE32(record.data() + kPixPakSize, static_cast<uint32_t>(size));
    const int16_t before = GetMemRefTable().used;

    OffscreenImage image;
    const int32_t result = DecodePixPak(record.data(), static_cast<uint32_t>(size), &image);
    if (result == 0) {
        if (!image.bitmap) Broken("a decoded record without a bitmap");
        FuzzTouch(image.bitmap);
    } else if (image.bitmap || image.palette) {
        Broken("a refused record left an image behind");
    }
    FreeOffscreenImage(&image);
    if (GetMemRefTable().used != before) Broken("handles left behind");
    return 0;
}
