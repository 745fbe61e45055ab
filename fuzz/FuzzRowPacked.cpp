// RowPackedPixels: arbitrary bytes as the rows of a picture of the shape FuzzImage.h takes from the
// input, and the rows of every decoded picture packed again.
#include "FuzzImage.h"
#include "pictures/PackedPixels.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzPackedPixels("fuzz_row_packed", data, size, DecodeRowPacked, EncodeRowPacked,
                     [](MemRef) { return true; }, kPixelsDamaged);
    return 0;
}
