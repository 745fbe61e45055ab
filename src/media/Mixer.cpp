#include "media/Mixer.h"

#include <algorithm>
#include <cstring>

#include "base/StateRegistry.h"
#include "platform/Host.h"

namespace {

enum class StreamState : uint8_t { Free, Waiting, Playing };

struct MixerStream {
    StreamState state = StreamState::Free;
    uint16_t number = 0;
    MixerPlayBlock block;
    uint64_t position = 0;  // source frames, 32.32 fixed point
    uint64_t step = 0;      // source frames per output frame, 32.32
    int32_t gainLeft = 0;   // 1.15 fixed point: 32768 plays the samples unchanged
    int32_t gainRight = 0;
};

inline constexpr uint32_t kEndedQueue = 64;
inline constexpr uint32_t kChunkFrames = 256;
inline constexpr int32_t kUnityGain = 32768;

struct MixerState {
    MixerStream streams[kMixerStreams];
    uint32_t deviceRate = 0;
    uint32_t outputRate = 0;
    uint16_t lastNumber = 0;
    uint16_t ended[kEndedQueue] = {};
    uint32_t endedFirst = 0;
    uint32_t endedCount = 0;
};

MixerState gState;

void ResetMixer() { gState = MixerState{}; }
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Media, ResetMixer);

// The pull may run on the host's audio thread: every change of the streams holds its lock.
struct AudioLock {
    AudioLock() { GetHost().LockAudio(true); }
    ~AudioLock() { GetHost().LockAudio(false); }
    AudioLock(const AudioLock&) = delete;
    AudioLock& operator=(const AudioLock&) = delete;
};

int32_t Gain(uint16_t volume) { return std::min<int32_t>(volume, kMixerUnity) * kUnityGain / kMixerUnity; }

MixerStream* FindStream(uint16_t number) {
    if (number == 0) return nullptr;
    for (MixerStream& s : gState.streams) {
        if (s.state != StreamState::Free && s.number == number) return &s;
    }
    return nullptr;
}

uint16_t NextNumber() {
    do {
        ++gState.lastNumber;
    } while (gState.lastNumber == 0 || FindStream(gState.lastNumber));
    return gState.lastNumber;
}

template <int Bits>
int32_t SampleAt(const uint8_t* samples, uint32_t index) {
    if constexpr (Bits == 8) {
        return (int32_t(samples[index]) - 128) * 256;
    } else {
        int16_t v;
        std::memcpy(&v, samples + 2 * index, 2);
        return v;
    }
}

// Adds `count` frames of the stream into `mix`; returns how many it had before its end.
template <int Bits, int Channels>
uint32_t MixFrames(MixerStream& s, int32_t* mix, uint32_t count) {
    const uint8_t* samples = s.block.samples;
    const uint32_t frames = s.block.frames;
    const uint32_t last = frames - 1;
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t at = static_cast<uint32_t>(s.position >> 32);
        if (at >= frames) return i;
        const int32_t frac = static_cast<int32_t>(static_cast<uint32_t>(s.position) >> 17);  // 15 bits
        const uint32_t next = at < last ? at + 1 : at;
        int32_t left = SampleAt<Bits>(samples, at * Channels);
        int32_t right = Channels == 2 ? SampleAt<Bits>(samples, at * Channels + 1) : left;
        if (frac) {
            left += ((SampleAt<Bits>(samples, next * Channels) - left) * frac) >> 15;
            right = Channels == 2 ? right + (((SampleAt<Bits>(samples, next * Channels + 1) - right) * frac) >> 15)
                                  : left;
        }
        mix[2 * i] += (left * s.gainLeft) >> 15;
        mix[2 * i + 1] += (right * s.gainRight) >> 15;
        s.position += s.step;
    }
    return count;
}

uint32_t MixStream(MixerStream& s, int32_t* mix, uint32_t count) {
    const bool stereo = s.block.channels == 2;
    if (s.block.bits == 8) return stereo ? MixFrames<8, 2>(s, mix, count) : MixFrames<8, 1>(s, mix, count);
    return stereo ? MixFrames<16, 2>(s, mix, count) : MixFrames<16, 1>(s, mix, count);
}

void ReportEnded(uint16_t number) {
    if (gState.endedCount == kEndedQueue) return;  // nobody collects: polling still tells
    gState.ended[(gState.endedFirst + gState.endedCount++) % kEndedQueue] = number;
}

void MixFrom(MixerStream& s, int32_t* mix, uint32_t from, uint32_t count);

// The streams linked behind `number` start at output frame `from`.
void StartLinked(uint16_t number, int32_t* mix, uint32_t from, uint32_t count) {
    for (MixerStream& w : gState.streams) {
        if (w.state != StreamState::Waiting || w.block.linkNumber != number) continue;
        w.state = StreamState::Playing;
        if (mix) MixFrom(w, mix, from, count);
    }
}

void MixFrom(MixerStream& s, int32_t* mix, uint32_t from, uint32_t count) {
    const uint32_t mixed = MixStream(s, mix + 2 * from, count - from);
    if ((s.position >> 32) < s.block.frames) return;
    s.state = StreamState::Free;
    ReportEnded(s.number);
    StartLinked(s.number, mix, from + mixed, count);
}

}  // namespace

void StartMixer(uint32_t deviceRate, uint32_t outputRate) {
    AudioLock lock;
    for (MixerStream& s : gState.streams) s = MixerStream{};
    gState.deviceRate = deviceRate;
    gState.outputRate = outputRate;
}

void StopMixer() {
    AudioLock lock;
    for (MixerStream& s : gState.streams) s = MixerStream{};
    gState.endedCount = 0;
}

uint16_t MixerPlay(const MixerPlayBlock& block) {
    if (!block.samples || block.frames == 0 || gState.outputRate == 0) return 0;
    if ((block.bits != 8 && block.bits != 16) || (block.channels != 1 && block.channels != 2)) return 0;
    AudioLock lock;
    auto free = std::find_if(std::begin(gState.streams), std::end(gState.streams),
                             [](const MixerStream& s) { return s.state == StreamState::Free; });
    if (free == std::end(gState.streams)) return 0;
    MixerStream& s = *free;
    s = MixerStream{};
    s.block = block;
    s.number = NextNumber();
    const uint64_t pitch = block.pitch ? block.pitch : kPitchUnchanged;
    s.step = (uint64_t{kPitchUnchanged} << 32) * gState.deviceRate / (pitch * gState.outputRate);
    s.gainLeft = Gain(block.leftVolume);
    s.gainRight = Gain(block.rightVolume);
    s.state = FindStream(block.linkNumber) ? StreamState::Waiting : StreamState::Playing;
    return s.number;
}

bool MixerIsPlaying(uint16_t number) {
    AudioLock lock;
    return FindStream(number) != nullptr;
}

void MixerDiscard(uint16_t number) {
    AudioLock lock;
    if (MixerStream* s = FindStream(number)) {
        s->state = StreamState::Free;
        StartLinked(number, nullptr, 0, 0);
    }
}

void MixerRender(int16_t* frames, uint32_t count) {
    int32_t mix[2 * kChunkFrames];
    while (count) {
        const uint32_t n = std::min(count, kChunkFrames);
        std::fill(mix, mix + 2 * n, 0);
        // Streams that a link starts during the chunk are mixed by the stream they follow.
        MixerStream* playing[kMixerStreams];
        uint32_t live = 0;
        for (MixerStream& s : gState.streams) {
            if (s.state == StreamState::Playing) playing[live++] = &s;
        }
        for (uint32_t i = 0; i < live; ++i) MixFrom(*playing[i], mix, 0, n);
        for (uint32_t i = 0; i < 2 * n; ++i) frames[i] = static_cast<int16_t>(std::clamp(mix[i], -32768, 32767));
        frames += 2 * n;
        count -= n;
    }
}

bool MixerTakeEnded(uint16_t* number) {
    AudioLock lock;
    if (gState.endedCount == 0) return false;
    *number = gState.ended[gState.endedFirst];
    gState.endedFirst = (gState.endedFirst + 1) % kEndedQueue;
    --gState.endedCount;
    return true;
}
