// Arbitrary bytes as a 'Snd ' record: made into a wave image as the player does and put back when
// made in place, where its samples must come back bit for bit; compressed and unpacked again.
#include <cstring>

#include "FuzzSound.h"
#include "media/CompressedSound.h"
#include "media/SoundRecord.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool ready = InitMemRefs();
    if (!ready || size == 0 || size > (1u << 20)) return 0;
    const int16_t before = GetMemRefTable().used;
    const MemRef record = NewMemRef(static_cast<uint32_t>(size));
    if (!record) return 0;
    std::memcpy(LockMemRef(record), data, size);
    UnlockMemRef(record);
    SoundInfo first;
    uint32_t firstOffset = 0;
    ScanSoundRecord(data, static_cast<uint32_t>(size), &first, &firstOffset);
    SoundInfo info;
    const MemRef wave = SoundRecordToWave(record, &info);
    if (wave != 0) CheckSoundImage("fuzz_sound_record", wave, info);
    if (wave == record) {
        // The rebuild writes the standard header anew; the samples may move to its place.
        if (WaveToSoundRecord(wave) != record) SoundBroken("fuzz_sound_record", "a record not put back");
        SoundInfo again;
        uint32_t dataOffset = 0;
        MemRefLock lock(record);
        if (ScanSoundRecord(lock.data(), GetMemRefSize(record), &again, &dataOffset) != 0 ||
            again.dataBytes != first.dataBytes || std::memcmp(lock.data() + dataOffset, data + firstOffset, again.dataBytes) != 0) {
            SoundBroken("fuzz_sound_record", "the samples changed on the way back");
        }
    } else if (wave != 0) {
        FreeMemRef(wave);
    }
    // What the compressed form unpacks to must read as a standard record.
    const MemRef packed = CompressSoundRecord(record);
    const MemRef unpacked = DecompressSoundRecord(packed ? packed : record);
    if (unpacked != 0) {
        SoundInfo plain;
        uint32_t dataOffset = 0;
        MemRefLock lock(unpacked);
        if (ScanSoundRecord(lock.data(), GetMemRefSize(unpacked), &plain, &dataOffset) != 0 || dataOffset != kStandardSamplesAt) {
            SoundBroken("fuzz_sound_record", "an unpacked record that isn't standard");
        }
    }
    if (packed && !unpacked) SoundBroken("fuzz_sound_record", "our own compressed record doesn't unpack");
    if (unpacked) FreeMemRef(unpacked);
    if (packed) FreeMemRef(packed);
    FreeMemRef(record);
    if (GetMemRefTable().used != before) SoundBroken("fuzz_sound_record", "handle memory left behind");
    return 0;
}
