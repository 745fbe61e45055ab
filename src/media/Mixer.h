// Our mixer: up to kMixerStreams streams of 8-bit unsigned or 16-bit signed PCM, mono or stereo,
// each with its own left and right volume and pitch, mixed into stereo 16-bit frames for the
// host's audio pull. A stream may be linked behind another and starts on the frame after that one's
// last, so a chain plays without a gap. Every stream that runs to its end is reported once
// (MixerTakeEnded), and its status can be polled.
//
// The sound module calls everything here on the main thread; MixerRender may run on the host's
// audio thread, so the other calls hold the host's audio lock while they change the streams.
#pragma once

#include <cstdint>

inline constexpr uint32_t kMixerStreams = 20;
// The highest volume the system sends (its top volume, 127, doubled) plays the samples unchanged;
// anything above counts as that.
inline constexpr uint16_t kMixerUnity = 254;
inline constexpr uint16_t kPitchUnchanged = 0x0100;

// What a stream plays (the play block).
struct MixerPlayBlock {
    // Native PCM; must stay where it is until the stream has ended or is discarded.
    const uint8_t* samples = nullptr;
    uint32_t frames = 0;
    uint16_t bits = 16;     // 8 (unsigned) or 16 (signed)
    uint16_t channels = 1;  // 1 or 2, interleaved
    uint16_t leftVolume = kMixerUnity;
    uint16_t rightVolume = kMixerUnity;
    // Device frames per source frame, times 256: 512 plays each frame twice as long.
    uint16_t pitch = kPitchUnchanged;
    // A stream to start behind; 0, or one that has already ended, starts at once.
    uint16_t linkNumber = 0;
};

// Starts mixing for a device of `deviceRate` frames a second whose pull runs at `outputRate`;
// every stream is first stretched by its pitch to the device's rate, then to the output's.
void StartMixer(uint32_t deviceRate, uint32_t outputRate);
// Every stream is dropped unreported.
void StopMixer();
// The new stream's number (never 0), or 0 when every stream is busy or the block plays nothing.
uint16_t MixerPlay(const MixerPlayBlock& block);
// True while stream `number` waits for its link or plays.
bool MixerIsPlaying(uint16_t number);
// Stops stream `number` unreported; a stream linked behind it starts at once.
void MixerDiscard(uint16_t number);
// The host's pull: `count` stereo frames of everything playing, clipped to 16 bits.
void MixerRender(int16_t* frames, uint32_t count);
// The next stream that has played to its end, oldest first; false when none is left to report.
bool MixerTakeEnded(uint16_t* number);
