// Arbitrary bytes as an AIFF or AIFC file; see FuzzSoundFile.
#include "FuzzSound.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return FuzzSoundFile("fuzz_sound_aiff", kFileTypeAiff, data, size);
}
