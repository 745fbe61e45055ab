// RowPackedPixels: arbitrary bytes as the rows of a picture of the shape FuzzImage.h takes from the
// input. A decode that succeeds is packed again by EncodeRowPacked, and that must decode to the
// same pixels.
#include "FuzzImage.h"
#include "pictures/PackedPixels.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr const char* kName = "fuzz_row_packed";
    FuzzImage in;
    if (!MakeFuzzImage(data, size, &in)) return 0;
    const int32_t result = DecodeRowPacked(in.image, in.data, in.length);
    if (!SlackIntact(in.image)) FuzzBroken(kName, "the decoder wrote past the pixels");
    if (result == 0) {
        const MemRef packed = EncodeRowPacked(in.image), again = SameShape(in.image);
        if (!packed || !again) FuzzBroken(kName, "a decoded picture does not pack");
        {
            MemRefLock p(packed);
            if (DecodeRowPacked(again, p.data(), GetMemRefSize(packed)) != 0) FuzzBroken(kName, "our rows do not decode");
        }
        if (!SamePixels(in.image, again)) FuzzBroken(kName, "the round trip changed the pixels");
        FreeMemRef(packed);
        FreeMemRef(again);
    } else if (result != kPixelsDamaged) {
        FuzzBroken(kName, "an unknown result");
    }
    FreeMemRef(in.image);
    return 0;
}
