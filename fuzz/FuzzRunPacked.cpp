// RunPackedPixels: arbitrary bytes as the run stream of a picture of the shape FuzzImage.h takes
// from the input. A decode that succeeds is packed again by EncodeRunPacked, and that must decode
// to the same pixels wherever the stored rows hold the display rows (all but narrow 1-bit ones).
#include "FuzzImage.h"
#include "pictures/PackedPixels.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr const char* kName = "fuzz_run_packed";
    FuzzImage in;
    if (!MakeFuzzImage(data, size, &in)) return 0;
    const int32_t result = DecodeRunPacked(in.image, in.data, in.length);
    if (!SlackIntact(in.image)) FuzzBroken(kName, "the decoder wrote past the pixels");
    if (result == 0 && StoredRowsHoldDisplayRows(in.image)) {
        const MemRef packed = EncodeRunPacked(in.image), again = SameShape(in.image);
        if (!packed || !again) FuzzBroken(kName, "a decoded picture does not pack");
        {
            MemRefLock p(packed);
            if (DecodeRunPacked(again, p.data(), GetMemRefSize(packed)) != 0) FuzzBroken(kName, "our runs do not decode");
        }
        if (!SamePixels(in.image, again)) FuzzBroken(kName, "the round trip changed the pixels");
        FreeMemRef(packed);
        FreeMemRef(again);
    } else if (result != 0 && result != kPixelsDamaged) {
        FuzzBroken(kName, "an unknown result");
    }
    FreeMemRef(in.image);
    return 0;
}
