// Card pictures: a one-card picture owner read by GetCardBackground and, for format 3, the JPEG
// reader. Six bytes choose the depth, the flip, palette and true-size flags, and the card's size;
// the rest is the chunk as memory holds it behind the card head. Every handle must be freed again.
#include <cstdint>
#include <cstring>

#include "FuzzImage.h"
#include "base/ByteOrder.h"
#include "pictures/Background.h"
#include "pictures/JpegBackground.h"
#include "stack/CardRecord.h"

static constexpr uint32_t kControlBytes = 6;
[[noreturn]] static void Broken(const char* what) { FuzzBroken("fuzz_background", what); }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool ready = InitMemRefs();
    if (!ready || size < kControlBytes || size > (1u << 20)) return 0;
    static constexpr int32_t kDepths[] = {1, 4, 8, 16, 24, 32, 8, 32};
    const int32_t depth = kDepths[data[0] & 7];
    const bool flip = data[1] & 1, withPalette = data[1] & 2, fixSize = data[1] & 4;
    const int32_t width = ReadBE16(data + 2) % 640 + 1, height = ReadBE16(data + 4) % 480 + 1;
    const auto chunk = static_cast<uint32_t>(size - kControlBytes);
    const int16_t before = GetMemRefTable().used;

    const MemRef card = NewCardMemRef(kEmptyCardSize + chunk - 2);
    if (!card) return 0;
    {
        MemRefLock lock(card);
        uint8_t* c = lock.data();
        Write16(c + kCardId, 1);
        Write32(c + kCardSize, kEmptyCardSize + chunk);
        Write16(c + kCardKind, static_cast<uint16_t>(kCardKindPicture));
        Write16(c + kCardDepth, static_cast<uint16_t>(depth));
        Write16(c + kCardWidth, static_cast<uint16_t>(width));
        Write16(c + kCardHeight, static_cast<uint16_t>(height));
        std::memcpy(c + kCardHeadSize, data + kControlBytes, chunk);
        if (fixSize && chunk >= kBgHeadSize) Write32(c + kCardHeadSize + kBgLength, chunk);
    }

    MemRef image = 0;
    int32_t result = GetCardBackground(card, &image, depth, flip, withPalette);
    if (result == kBackgroundJpeg) {
        if (image) Broken("a JPEG chunk gave a picture");
        result = DecodeJpegBackground(card, &image, depth, flip);
    }
    if ((result == 0) != (image != 0)) Broken("the result and the picture disagree");
    if (image) {
        if (!IsDibLayoutValid(MemRefLock(image).data(), GetMemRefSize(image))) Broken("a picture that is no DibImage");
        FuzzTouch(image);
        FreeMemRef(image);
    }
    FreeMemRef(card);
    if (GetMemRefTable().used != before) Broken("handles left behind");
    return 0;
}
