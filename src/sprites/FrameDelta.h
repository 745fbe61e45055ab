// Frame-delta animations: the older form of the animation step. A head, a first frame that is a
// whole picture in stored rows, then frames that are lists of changed pixels. The head and each
// frame's tag and size are native once the stack is loaded; pictures and change lists stay as
// stored (big-endian).
//
// Head: i16 width, i16 height, u16 tickDelay (ticks of 1/60 s), u16 repeats, u16 frameCount,
// u16 depth, u16 flags, 4 bytes, then the frames. A frame: u16 tag, u32 size at 8 (the whole
// frame), a 16-byte head, then its data.
//
// Changes count their offsets in the stored row length; the working picture has rows of the
// display length (32-bit multiples, top-down here), so every offset is corrected by the
// difference per row. Word changes (flag 0x0004) are pairs of u16 offset, u16 value, where the
// pair whose offset bytes are 0x01 0x80 adds 32768 to a running base; otherwise pairs of u32.
#pragma once

#include <cstdint>
#include <vector>

#include "gfx/Surface.h"

inline constexpr uint32_t kDeltaHeadSize = 18;
inline constexpr uint32_t kDeltaFrameHeadSize = 16;
inline constexpr uint32_t kDeltaFrameSize = 8;  // u32, native
inline constexpr uint16_t kDeltaWordChanges = 0x0004;
inline constexpr uint16_t kDeltaIgnoreClip = 0x0040;
inline constexpr uint16_t kDeltaFramesInOwner = 0x0100;
inline constexpr uint32_t kDeltaBaseStep = 32768;
// The marker pair's offset as its two stored bytes.
inline constexpr uint8_t kDeltaMarker[2] = {0x01, 0x80};

struct DeltaHead {
    int32_t width = 0, height = 0;
    uint16_t tickDelay = 0, repeats = 0, frameCount = 0, depth = 0, flags = 0;
};

// The head of a native payload; false when it is too short or names a picture we can't make.
bool ReadDeltaHead(const uint8_t* data, uint32_t size, DeltaHead* head);

// The working picture: rows of DeltaRowBytes, top-down, pixels as stored.
uint32_t DeltaStoredRowBytes(const DeltaHead& head);
uint32_t DeltaRowBytes(const DeltaHead& head);

// Makes `picture` show frame `number` (from 1) of the payload: frame 1 whole, a later one by its
// changes over the picture as it stands. False when the frame is missing or damaged; a change
// outside the picture is passed over.
bool ApplyDeltaFrame(const uint8_t* data, uint32_t size, const DeltaHead& head, uint32_t number,
                     std::vector<uint8_t>* picture);

// The picture at the display's colours: 1, 4 and 8 bits through `colors` (256 entries), 16 bits
// 5-5-5 and 32 bits zero, red, green, blue, both high byte first.
Surface DeltaPictureSurface(const std::vector<uint8_t>& picture, const DeltaHead& head, const uint32_t* colors);

// The authoring side: the change list that turns `previous` into `next` (working pictures of the
// same head), in word pairs with markers when `words` is set, else in long pairs. Word pairs are
// refused (false) when a change would have to be written at an offset that reads as the marker.
bool MakeChangeList(const std::vector<uint8_t>& previous, const std::vector<uint8_t>& next, const DeltaHead& head,
                    bool words, std::vector<uint8_t>* changes);
