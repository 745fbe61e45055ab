// Sound files (WAV, AIFF and AIFC, AU) to the WAVE image the mixer plays.
#pragma once

#include <cstdint>
#include <string>

#include "media/SoundInfo.h"
#include "memory/MemRef.h"

// The rows of the file-type table that name sound files.
inline constexpr int32_t kFileTypeWave = 9;
inline constexpr int32_t kFileTypeAiff = 17;
inline constexpr int32_t kFileTypeAu = 18;

// The sound-file type of `path` by its extension, ignoring case: "wav" 9; "aif", "aiff" and
// "aifc" 17; "au" 18. -1 for any other path.
int32_t SoundFileType(const std::string& path);

// The file's `bytes` as a WAVE image of native PCM (SoundWave.h), quietly: 0 or the alert number.
// MS-ADPCM is decoded to 16 bits and µ-law expanded to 16 bits.
int32_t DecodeSoundBytes(const uint8_t* bytes, uint32_t size, int32_t fileType, MemRef* wave, SoundInfo* info);

// Reads the sound file at `hostPath` whole and makes its image. 1 with the image, or with nothing
// filled when the file can't be opened (the caller finds an empty sound and says so); 0 with the
// alert shown for an empty or unreadable file.
int ReadSoundFile(const std::string& hostPath, MemRef* wave, SoundInfo* info);
