// What the demo's sounds sound like once played, and a search for them in what a host heard.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "media/SoundFile.h"
#include "media/SoundWave.h"
#include "memory/MemRef.h"

// The first `frames` frames of the demo's sound file `name` as the mixer plays them at the top
// volume: 16-bit, its first channel.
inline std::vector<int16_t> DemoSoundAsPlayed(const std::string& name, uint32_t frames) {
    MemRef wave = 0;
    SoundInfo info;
    const std::string path = std::string(QB_TEST_DATA_DIR) + "/../../examples/demo/sounds/" + name;
    EXPECT_EQ(ReadSoundFile(path, &wave, &info), 1) << path;
    std::vector<int16_t> played;
    if (!wave) return played;
    MemRefLock lock(wave);
    const uint8_t* samples = lock.data() + kWaveHeaderBytes;
    for (uint32_t i = 0; i < std::min(frames, info.frames); ++i) {
        const uint32_t at = i * info.channels;
        played.push_back(info.bits == 8 ? static_cast<int16_t>((samples[at] - 128) * 256)
                                        : static_cast<int16_t>(samples[2 * at] | samples[2 * at + 1] << 8));
    }
    FreeMemRef(wave);
    return played;
}

// Where `part` starts in the left channel of the stereo frames `heard`; -1 when it isn't there.
inline long FindInLeft(const std::vector<int16_t>& heard, const std::vector<int16_t>& part) {
    std::vector<int16_t> left;
    for (size_t i = 0; i < heard.size(); i += 2) left.push_back(heard[i]);
    const auto at = std::search(left.begin(), left.end(), part.begin(), part.end());
    return at == left.end() ? -1 : static_cast<long>(at - left.begin());
}
