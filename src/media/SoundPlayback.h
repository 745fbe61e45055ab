// Playing sounds: 'Snd ' records and sound files go to the mixer, each with a silent tail behind
// it, and a table of ten rows keeps what is playing. The audio device opens with the first sound,
// at that sound's rate class (11025, 22050 or 44100); later sounds are pitched to fit it, and it
// closes again when the last sound has ended, so the next sound starts it afresh with its own rate.
#pragma once

#include <cstdint>
#include <string>

#include "memory/MemRef.h"

inline constexpr int32_t kAlertWaveOutput = 2394;
inline constexpr int32_t kAlertCannotPlay = 2395;
inline constexpr int32_t kAlertNoSoundDevice = 2396;

inline constexpr uint32_t kSoundRows = 10;
// A sound with this flag goes on through card changes and new actions: only StopSounds(true) ends it.
inline constexpr uint16_t kSoundOutlivesAction = 0x0002;
inline constexpr uint16_t kMaxSoundVolume = 127;

// Looks for an audio device at start-up: false when there is none, and no sound will be played
// while the program runs (the caller shows alert 2396). The device's least buffer becomes
// MinSoundFrames, 2000 at least.
bool StartSoundHardware();
// Plays a sound file (`fromRecord` false, `hostPath`) or the 'Snd ' record `record` at `volume`
// (0 to kMaxSoundVolume). A record named "Stop All Sounds" or "STOPSNDS.WAV" stops every sound
// instead. 1 when the sound plays; 0 when it doesn't, after the alert that says why.
int32_t PlaySound(const std::string& hostPath, bool fromRecord, MemRef record, uint16_t volume, uint16_t soundFlags);
// Stops every sound, or with `all` false those without kSoundOutlivesAction.
void StopSounds(bool all);
// Frees the rows whose sound and tail have ended; with none left the device closes.
void ReapSounds();
bool IsSoundActive();
// The sound module's regular work (every fifth tick and on each round of a wait): the sounds that
// the mixer reports ended are reaped.
void SoundTick();
// Closes the device and forgets what played: between sounds and at the end of the program.
void StopSoundLibrary();
