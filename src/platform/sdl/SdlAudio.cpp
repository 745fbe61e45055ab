// The desktop's audio out: SDL pulls the mix on its own audio thread, so the core's changes to
// what it mixes hold the device's lock. The device is opened at the rate the core asks for and SDL
// converts to what the hardware takes, so the pull always sees stereo 16-bit frames at that rate.
#include "platform/sdl/SdlState.h"

namespace {

inline constexpr Uint16 kSdlAudioFrames = 1024;

struct SdlAudio {
    SDL_AudioDeviceID device = 0;
    SDL_AudioDeviceID locked = 0;
    AudioPull pull = nullptr;
};
SdlAudio gAudio;

void PullMix(void*, Uint8* stream, int bytes) {
    gAudio.pull(reinterpret_cast<int16_t*>(stream), static_cast<uint32_t>(bytes) / 4);
}

SDL_AudioDeviceID OpenDevice(uint32_t rate, SDL_AudioSpec* have) {
    SDL_AudioSpec want{};
    want.freq = static_cast<int>(rate);
    want.format = AUDIO_S16SYS;
    want.channels = 2;
    want.samples = kSdlAudioFrames;
    want.callback = PullMix;
    return SDL_OpenAudioDevice(nullptr, 0, &want, have, 0);
}

}  // namespace

// A device that opens is the test: some drivers list no devices and still play on their default.
uint32_t SdlDetectAudio() {
    if (!SDL_WasInit(SDL_INIT_AUDIO) && SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) return 0;
    SDL_AudioSpec have{};
    const SDL_AudioDeviceID device = OpenDevice(22050, &have);
    if (!device) return 0;
    SDL_CloseAudioDevice(device);
    return have.samples;
}

uint32_t SdlOpenAudio(uint32_t rate, AudioPull pull) {
    SdlCloseAudio();
    if (!SDL_WasInit(SDL_INIT_AUDIO) || !pull) return 0;
    gAudio.pull = pull;
    SDL_AudioSpec have{};
    gAudio.device = OpenDevice(rate, &have);
    if (!gAudio.device) return 0;
    SDL_PauseAudioDevice(gAudio.device, 0);
    return rate;
}

void SdlCloseAudio() {
    if (gAudio.device) SDL_CloseAudioDevice(gAudio.device);
    gAudio = SdlAudio{};
}

void SdlLockAudio(bool lock) {
    if (lock && gAudio.device) {
        SDL_LockAudioDevice(gAudio.device);
        gAudio.locked = gAudio.device;
    } else if (!lock && gAudio.locked) {
        SDL_UnlockAudioDevice(gAudio.locked);
        gAudio.locked = 0;
    }
}
