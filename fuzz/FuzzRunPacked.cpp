// Run-packed pixels of the picture FuzzImage.h shapes, packed again where stored rows hold display rows.
#include "FuzzImage.h"
#include "pictures/PackedPixels.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzPackedPixels("fuzz_run_packed", data, size, DecodeRunPacked, EncodeRunPacked, StoredRowsHoldDisplayRows,
                     kPixelsDamaged);
    return 0;
}
