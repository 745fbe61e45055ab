#include "media/SoundPlayback.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <vector>

#include "base/StateRegistry.h"
#include "media/Mixer.h"
#include "media/SoundFile.h"
#include "media/SoundRecord.h"
#include "media/SoundWave.h"
#include "messages/Alert.h"
#include "platform/Host.h"
#include "stack/Blob.h"

namespace {

// The samples a row plays are its own copy, so the record or file they came from is free at once.
struct PlayingSound {
    uint16_t soundNumber = 0;  // 0: the row is free
    uint16_t tailNumber = 0;
    uint16_t flags = 0;
    std::vector<uint8_t> memory;
};

struct PlayedSamples {
    SoundInfo info;
    std::vector<uint8_t> samples;
};

struct SoundState {
    PlayingSound rows[kSoundRows];
    bool soundIsActive = false;
    bool libraryReady = false;
    bool soundDeviceFound = false;
    uint32_t deviceRate = 0;
    PlayedSamples silence;
};

SoundState g;

void ResetSound() {
    StopMixer();
    if (g.libraryReady) GetHost().CloseAudio();
    g = SoundState{};
}
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Media, ResetSound);

// The device rate a sound of `rate` asks for: its rate class, with a tenth to spare.
uint32_t TargetRate(uint32_t rate) {
    if (rate * 10ull < 11025ull * 11) return 11025;
    if (rate * 10ull < 22050ull * 11) return 22050;
    return 44100;
}

bool SameNameIgnoringCase(const uint8_t* name, const char* text) {
    const size_t length = name[0];
    if (length == 0 || length > std::strlen(text)) return false;
    for (size_t i = 0; i < length; ++i) {
        const auto a = static_cast<unsigned char>(name[1 + i]);
        const auto b = static_cast<unsigned char>(text[i]);
        if (std::tolower(a) != std::tolower(b)) return false;
    }
    return true;
}

// A stack stops every sound with a sound record named so. The name is compared over its own
// length; an unnamed record is played like any other.
bool NamedToStopAllSounds(MemRef record) {
    uint8_t name[kBlobNameSize] = {};
    if (GetBlobInfo(record, nullptr, nullptr, name, nullptr) != 0) return false;
    name[0] = std::min<uint8_t>(name[0], kBlobNameSize - 1);
    return SameNameIgnoringCase(name, "Stop All Sounds") || SameNameIgnoringCase(name, "STOPSNDS.WAV");
}

bool TakeSamples(MemRef wave, const SoundInfo& info, PlayedSamples* out) {
    MemRefLock lock(wave);
    if (!lock || uint64_t{kWaveHeaderBytes} + info.dataBytes > GetMemRefSize(wave)) return false;
    out->info = info;
    out->samples.assign(lock.data() + kWaveHeaderBytes, lock.data() + kWaveHeaderBytes + info.dataBytes);
    return true;
}

// The record's samples; a record in one of our own forms is turned back once they are copied.
bool RecordSamples(MemRef record, PlayedSamples* out) {
    SoundInfo info;
    const MemRef wave = SoundRecordToWave(record, &info);
    if (!wave) return false;
    const bool taken = TakeSamples(wave, info, out);
    if (wave == record) {
        WaveToSoundRecord(wave);
    } else {
        FreeMemRef(wave);
    }
    return taken;
}

// A file that can't be opened plays nothing and says so as an empty sound.
bool FileSamples(const std::string& hostPath, PlayedSamples* out) {
    MemRef wave = 0;
    SoundInfo info;
    if (!ReadSoundFile(hostPath, &wave, &info)) return false;
    if (!wave) return true;
    const bool taken = TakeSamples(wave, info, out);
    FreeMemRef(wave);
    return taken;
}

PlayingSound* FreeRow() {
    for (PlayingSound& row : g.rows) {
        if (row.soundNumber == 0) return &row;
    }
    return nullptr;
}

// The device takes the format of the first sound: the sounds after it are pitched to fit.
bool StartSoundLibrary(uint32_t rate) {
    const uint32_t outputRate = GetHost().OpenAudio(rate, MixerRender);
    if (outputRate == 0) {
        Alert(kAlertWaveOutput);
        return false;
    }
    g.deviceRate = rate;
    StartMixer(rate, outputRate);
    g.libraryReady = true;
    if (g.silence.samples.empty()) {
        const MemRef silence = MakeSilenceWave(rate);
        SoundInfo info{8, 1, 11025, 0, 0, 0};
        info.dataBytes = silence ? GetMemRefSize(silence) - kWaveHeaderBytes : 0;
        info.frames = info.dataBytes;
        if (silence) TakeSamples(silence, info, &g.silence);
        if (silence) FreeMemRef(silence);
    }
    return true;
}

// A sound at the device's rate class and no slower than the device plays as it is; any other is
// pitched to the device's rate.
MixerPlayBlock PlayBlock(const SoundInfo& info, const std::vector<uint8_t>& samples, uint16_t playVolume) {
    MixerPlayBlock block;
    block.samples = samples.data();
    block.frames = info.frames;
    block.bits = info.bits;
    block.channels = info.channels;
    block.leftVolume = block.rightVolume = playVolume;
    const uint32_t rate = info.rate;
    if (g.deviceRate != TargetRate(rate) || rate < g.deviceRate) {
        block.pitch = static_cast<uint16_t>(std::min<uint32_t>(g.deviceRate * 256 / rate, 0xFFFF));
    }
    return block;
}

}  // namespace

bool StartSoundHardware() {
    StopSoundLibrary();
    const uint32_t bufferFrames = GetHost().DetectAudio();
    g.soundDeviceFound = bufferFrames != 0;
    if (g.soundDeviceFound) SetMinSoundFrames(std::max(bufferFrames, kDefaultMinSoundFrames));
    return g.soundDeviceFound;
}

int32_t PlaySound(const std::string& hostPath, bool fromRecord, MemRef record, uint16_t volume, uint16_t soundFlags) {
    if (!g.soundDeviceFound) return 0;
    ReapSounds();
    const auto playVolume = static_cast<uint16_t>(std::min<uint16_t>(volume, kMaxSoundVolume) * 2);
    if (fromRecord && NamedToStopAllSounds(record)) {
        StopSounds(true);
        return 0;
    }
    PlayedSamples sound;
    if (!(fromRecord ? RecordSamples(record, &sound) : FileSamples(hostPath, &sound))) return 0;
    if (sound.samples.empty() || sound.info.frames == 0) {
        Alert(kAlertBadSound);
        return 0;
    }
    // With every row taken the sound is dropped unheard, as a full table always dropped it.
    PlayingSound* row = FreeRow();
    if (!row) return 0;
    if (!g.libraryReady && !StartSoundLibrary(TargetRate(sound.info.rate))) return 0;
    row->memory = std::move(sound.samples);
    row->soundNumber = MixerPlay(PlayBlock(sound.info, row->memory, playVolume));
    if (row->soundNumber == 0) {
        row->memory.clear();
        Alert(kAlertCannotPlay);
        ReapSounds();
        return 0;
    }
    g.soundIsActive = true;
    row->flags = soundFlags;
    // The silent tail follows at once, so the device never stops on the sound's last samples.
    if (!g.silence.samples.empty()) {
        MixerPlayBlock tail = PlayBlock(g.silence.info, g.silence.samples, playVolume);
        tail.linkNumber = row->soundNumber;
        row->tailNumber = MixerPlay(tail);
    }
    return 1;
}

void StopSounds(bool all) {
    for (PlayingSound& row : g.rows) {
        if (row.soundNumber == 0 || (!all && (row.flags & kSoundOutlivesAction))) continue;
        MixerDiscard(row.tailNumber);
        MixerDiscard(row.soundNumber);
        row = PlayingSound{};
    }
    if (all) StopSoundLibrary();
}

void ReapSounds() {
    bool left = false;
    for (PlayingSound& row : g.rows) {
        if (row.soundNumber == 0) continue;
        if (MixerIsPlaying(row.soundNumber) || MixerIsPlaying(row.tailNumber)) {
            left = true;
        } else {
            row = PlayingSound{};
        }
    }
    if (!left) StopSoundLibrary();
}

bool IsSoundActive() { return g.soundIsActive; }

void SoundTick() {
    if (!g.soundIsActive) return;
    bool ended = false;
    for (uint16_t number = 0; MixerTakeEnded(&number);) ended = true;
    if (ended) ReapSounds();
}

void StopSoundLibrary() {
    if (g.libraryReady) {
        StopMixer();
        GetHost().CloseAudio();
    }
    for (PlayingSound& row : g.rows) row = PlayingSound{};
    g.libraryReady = false;
    g.soundIsActive = false;
    g.silence = PlayedSamples{};
}
