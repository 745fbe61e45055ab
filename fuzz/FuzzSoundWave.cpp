// Arbitrary bytes as an WAV file; see FuzzSoundFile.
#include "FuzzSound.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return FuzzSoundFile("fuzz_sound_wave", kFileTypeWave, data, size);
}
