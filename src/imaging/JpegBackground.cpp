// Stand-in until the JPEG codec is built: every format 3 picture is reported as unsupported, and
// the card shows without it.
#include "imaging/JpegBackground.h"

int32_t DecodeJpegBackground(MemRef card, MemRef* image, int32_t depth, bool flip) {
    *image = 0;
    return kJpegUnsupported;
}

MemRef EncodeJpegBackground(MemRef image, int32_t quality) { return 0; }
