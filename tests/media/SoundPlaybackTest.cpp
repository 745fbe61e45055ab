// Sounds played on the headless host, heard in its recording.
#include "media/SoundPlayback.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "host/Application.h"
#include "media/SoundFile.h"
#include "media/SoundWave.h"
#include "platform/headless/HeadlessHost.h"
#include "stack/Blob.h"
#include "support/StackBytes.h"

namespace {

// A WAV file of `frames` frames of 16-bit `value` in every channel.
std::string WaveFile(const std::string& name, uint32_t rate, uint16_t channels, uint32_t frames, int16_t value) {
    const SoundInfo info{16, channels, rate, frames, frames * channels * 2u, 0};
    Bytes bytes(kWaveHeaderBytes + info.dataBytes);
    WriteWaveHeader(bytes.data(), info, info.dataBytes);
    for (uint32_t i = 0; i < frames * channels; ++i) std::memcpy(&bytes[kWaveHeaderBytes + 2 * i], &value, 2);
    return WriteTempFile(name, bytes);
}

// How many frames of the recording have `value` on the left.
size_t FramesOf(int16_t value) {
    const std::vector<int16_t>& audio = GetHeadlessState().audio;
    size_t count = 0;
    for (size_t i = 0; i < audio.size(); i += 2) count += audio[i] == value;
    return count;
}

void PlayFor(uint32_t ms) {
    AdvanceHeadlessClock(ms);
    SoundTick();
}

class SoundPlaybackTest : public testing::Test {
protected:
    void SetUp() override { StartProgramAfresh(); }
    void TearDown() override { CloseAllBlobStores(); }
};

// The device opens at the first sound's rate class; a later sound at half its rate is pitched by
// 512 and so lasts twice as many device frames. When both have ended the device closes.
TEST_F(SoundPlaybackTest, LaterSoundsArePitchedToTheFirstSoundsDevice) {
    ASSERT_EQ(PlaySound(WaveFile("quiet.wav", 22050, 2, 8000, 0), false, 0, kMaxSoundVolume, 0), 1);
    ASSERT_EQ(PlaySound(WaveFile("low.wav", 11025, 1, 2500, 1234), false, 0, kMaxSoundVolume, 0), 1);
    EXPECT_TRUE(IsSoundActive());
    PlayFor(1000);
    EXPECT_EQ(GetHeadlessState().audioRate, 22050u);
    EXPECT_EQ(FramesOf(1234), 5000u);
    EXPECT_FALSE(IsSoundActive());
    EXPECT_EQ(GetHeadlessState().audioPull, nullptr);
    EXPECT_TRUE(GetHeadlessState().alertsShown.empty());
}

TEST_F(SoundPlaybackTest, StoppingSparesTheSoundsMarkedToOutliveAnAction) {
    const std::string loud = WaveFile("loud.wav", 22050, 1, 22050, 1000);
    const std::string soft = WaveFile("soft.wav", 22050, 1, 22050, 100);
    ASSERT_EQ(PlaySound(loud, false, 0, kMaxSoundVolume, 0), 1);
    ASSERT_EQ(PlaySound(soft, false, 0, kMaxSoundVolume, kSoundOutlivesAction), 1);
    PlayFor(100);
    StopSounds(false);
    PlayFor(100);
    EXPECT_EQ(FramesOf(1100), 2205u);
    EXPECT_EQ(FramesOf(100), 2205u);
    StopSounds(true);
    EXPECT_FALSE(IsSoundActive());
    EXPECT_EQ(GetHeadlessState().audioPull, nullptr);
}

TEST_F(SoundPlaybackTest, AnEleventhSoundIsDroppedUnheard) {
    const std::string path = WaveFile("long.wav", 22050, 1, 22050, 10);
    for (uint32_t i = 0; i < kSoundRows; ++i) ASSERT_EQ(PlaySound(path, false, 0, kMaxSoundVolume, 0), 1);
    EXPECT_EQ(PlaySound(WaveFile("more.wav", 22050, 1, 22050, 7), false, 0, kMaxSoundVolume, 0), 0);
    PlayFor(100);
    EXPECT_EQ(FramesOf(100), 2205u);
    EXPECT_TRUE(GetHeadlessState().alertsShown.empty());
}

// A record named to stop the sounds stops even those marked to outlive an action, and plays nothing.
TEST_F(SoundPlaybackTest, ARecordNamedStopAllSoundsStopsEverySound) {
    Bytes record(kWaveHeaderBytes);
    const std::string stack = WriteTempFile("stop.stk", StoredStack({}, {StoredCard(1, "A")},
                                                                    {StoredRecord("Snd ", 3, "stop all", record)}));
    ASSERT_NE(OpenBlobStoreAt(stack, 228, 64, 68), 0u);
    ASSERT_EQ(PlaySound(WaveFile("kept.wav", 22050, 1, 22050, 10), false, 0, kMaxSoundVolume, kSoundOutlivesAction), 1);
    EXPECT_EQ(PlaySound("", true, GetBlobById(FourCC("Snd "), 3), kMaxSoundVolume, 0), 0);
    EXPECT_FALSE(IsSoundActive());
    EXPECT_TRUE(GetHeadlessState().alertsShown.empty());
}

TEST_F(SoundPlaybackTest, WithoutADeviceTheProgramSaysSoOnceAndStaysSilent) {
    GetHeadlessState().audioDevice = false;
    InitApplication(nullptr);
    EXPECT_EQ(PlaySound(WaveFile("any.wav", 22050, 1, 100, 10), false, 0, kMaxSoundVolume, 0), 0);
    ASSERT_EQ(GetHeadlessState().alertsShown.size(), 1u);
    EXPECT_EQ(GetHeadlessState().alertsShown[0].stringId, kAlertNoSoundDevice);
}

}  // namespace
