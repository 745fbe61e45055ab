// MS-ADPCM blocks, the format chosen by the first four bytes, decoded into exactly the room
// AdpcmDecodedBytes promises; what decodes is coded and decoded again, to as many samples.
#include <memory>

#include "FuzzSound.h"
#include "media/MsAdpcm.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4 || size > (1u << 20)) return 0;
    WaveFormat pcm;
    pcm.formatTag = kWaveFormatPcm;
    pcm.channels = (data[0] & 1) + 1;
    pcm.bitsPerSample = data[0] & 2 ? 8 : 16;
    pcm.samplesPerSec = 8000u << (data[0] >> 2 & 3);
    WaveFormat adpcm;
    if (!SuggestAdpcmFormat(pcm, &adpcm)) SoundBroken("fuzz_adpcm", "no format for plain PCM");
    // Blocks from the smallest to 4 KB, with as many samples as fit, or one too many.
    const uint32_t head = kAdpcmBlockHeadPerChannel * pcm.channels;
    adpcm.blockAlign = static_cast<uint16_t>(head + data[1] + (data[2] & 15) * 256);
    adpcm.samplesPerBlock = static_cast<uint16_t>((adpcm.blockAlign - head) * 2 / pcm.channels + 2 + (data[3] & 1));
    const uint8_t* stream = data + 4;
    const auto bytes = static_cast<uint32_t>(size - 4);

    const uint64_t room = AdpcmDecodedBytes(adpcm, pcm, bytes);
    std::unique_ptr<uint8_t[]> out(new uint8_t[room ? room : 1]);
    const uint32_t made = AdpcmDecode(adpcm, stream, pcm, out.get(), bytes);
    if (made != 0 && made != room) SoundBroken("fuzz_adpcm", "a decode that stopped inside its blocks");
    if (made != 0 && (data[3] & 1)) SoundBroken("fuzz_adpcm", "a block too small for its samples decoded");
    if (made == 0) return 0;

    std::unique_ptr<uint8_t[]> coded(new uint8_t[AdpcmEncodedBytes(pcm, adpcm, made) + 1]);
    const uint32_t codedBytes = AdpcmEncode(pcm, out.get(), adpcm, coded.get(), made);
    if (codedBytes != AdpcmEncodedBytes(pcm, adpcm, made)) SoundBroken("fuzz_adpcm", "the coder wrote another size than it promised");
    std::unique_ptr<uint8_t[]> again(new uint8_t[room]);
    if (AdpcmDecode(adpcm, coded.get(), pcm, again.get(), codedBytes) != made) SoundBroken("fuzz_adpcm", "our own blocks don't decode whole");
    return 0;
}
