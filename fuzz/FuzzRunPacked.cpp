// RunPackedPixels: arbitrary bytes as the run stream of a picture of the shape FuzzImage.h takes
// from the input, packed again wherever the stored rows hold the display rows (all but narrow
// 1-bit ones).
#include "FuzzImage.h"
#include "pictures/PackedPixels.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzPackedPixels("fuzz_run_packed", data, size, DecodeRunPacked, EncodeRunPacked, StoredRowsHoldDisplayRows,
                     kPixelsDamaged);
    return 0;
}
