// Arbitrary bytes as a sound file of one type, through the reader the player uses. Besides the
// sanitizers' findings, it stops on an image that isn't the mixer's form and on handles kept.
#include <cstdint>

#include "FuzzSound.h"
#include "media/SoundFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool ready = InitMemRefs();
    if (!ready || size > (1u << 20)) return 0;
    const int16_t before = GetMemRefTable().used;
    MemRef wave = 0;
    SoundInfo info;
    if (DecodeSoundBytes(data, static_cast<uint32_t>(size), kFileTypeWave, &wave, &info) == 0) {
        CheckSoundImage("fuzz_sound_wave", wave, info);
        FreeMemRef(wave);
    } else if (wave != 0) {
        SoundBroken("fuzz_sound_wave", "a refusal with an image");
    }
    if (GetMemRefTable().used != before) SoundBroken("fuzz_sound_wave", "handle memory left behind");
    return 0;
}
