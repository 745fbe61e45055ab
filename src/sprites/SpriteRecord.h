// 'Sprt': a sprite film as a tag-56 payload carries it. A fixed part of 600 bytes, then up to three
// blobs in this order: custom drawing data, a 'Path' block and a 'Film' block, each with its own
// code, size and version 100. Everything is big-endian as stored; the payload stays so in memory
// and ExpandSpriteRecord reads it into a native record.
//
// Only the fields the engine uses are named. The stored bytes are kept whole beside them, so the
// unnamed fields (and the run-time areas a writer left filled) go back out byte for byte: a record
// read and packed again without changes is the same bytes.
#pragma once

#include <cstdint>
#include <vector>

#include "gfx/Surface.h"

// The fixed part.
inline constexpr uint32_t kSprtFixedSize = 600;
inline constexpr uint32_t kSprtCode = 0;
inline constexpr uint32_t kSprtSize = 4;           // u32, even
inline constexpr uint32_t kSprtVersion = 8;        // u16
inline constexpr uint32_t kSprtBehaviour = 50;     // u16, 32000 = pick by the film and path
inline constexpr uint32_t kSprtEndMode = 52;       // u16
inline constexpr uint32_t kSprtEndSeconds = 84;    // u32
inline constexpr uint32_t kSprtRestartable = 124;  // u8
inline constexpr uint32_t kSprtShowWithCard = 130;
inline constexpr uint32_t kSprtEndVisible = 131;
inline constexpr uint32_t kSprtStamps = 132;     // 3 x u8: now, forward leg, return leg
inline constexpr uint32_t kSprtOverItems = 135;  // 3 x u8, the same
inline constexpr uint32_t kSprtMirrorAtStart = 138;
inline constexpr uint32_t kSprtMirrorAtEnd = 139;
inline constexpr uint32_t kSprtLayerMode = 140;    // u16
inline constexpr uint32_t kSprtLayerNumber = 142;  // i16
inline constexpr uint32_t kSprtStartAngles = 150;  // 2 x u16: horizontal, vertical; 180 = mirrored
inline constexpr uint32_t kSprtEndAngles = 156;
inline constexpr uint32_t kSprtFrameTimeMode = 244;  // u16, 2 = on a timer
inline constexpr uint32_t kSprtFrameMode = 272;      // u16
inline constexpr uint32_t kSprtLinked = 274;         // u8
inline constexpr uint32_t kSprtFrameRate = 276;      // u32 ms
inline constexpr uint32_t kSprtFrameStep = 288;      // i32
inline constexpr uint32_t kSprtFrameLoopLimit = 296;
inline constexpr uint32_t kSprtStartFrame = 304;
inline constexpr uint32_t kSprtFirstFrame = 308;
inline constexpr uint32_t kSprtEndFrame = 312;  // one past the last
inline constexpr uint32_t kSprtPathTimeMode = 332;
inline constexpr uint32_t kSprtPathTimeSource = 334;  // 0, 2 fixed; 1 by point
inline constexpr uint32_t kSprtPathMode = 360;
inline constexpr uint32_t kSprtPathRate = 364;      // u32 ms
inline constexpr uint32_t kSprtSpeedPercent = 368;  // u32
inline constexpr uint32_t kSprtPathStep = 376;      // i32
inline constexpr uint32_t kSprtPathLoopLimit = 384;
inline constexpr uint32_t kSprtStartPathIndex = 392;
inline constexpr uint32_t kSprtFirstPoint = 396;
inline constexpr uint32_t kSprtEndPoint = 400;  // one past the last
inline constexpr uint32_t kSprtCustomSize = 452;
inline constexpr uint32_t kSprtPathSize = 456;
inline constexpr uint32_t kSprtFilmSize = 460;
static_assert(kSprtFilmSize + 4 <= kSprtFixedSize);

inline constexpr uint16_t kSpriteBlockVersion = 100;
inline constexpr uint16_t kBehaviourPick = 32000;

// 'Path': 110 bytes of head, then 28 bytes a point.
inline constexpr uint32_t kPathPointCount = 106;  // u32
inline constexpr uint32_t kPathPoints = 110;
inline constexpr uint32_t kPathPointSize = 28;  // i16 x, i16 y, i16, u32 time (ms) at 6, the rest kept
inline constexpr uint32_t kPathPointTime = 6;

// 'Film': the head, its built-in frame row, then a row per frame and the image blobs.
inline constexpr uint32_t kFilmKind = 32;         // u16: 0, 1 one strip; 2 stored per frame
inline constexpr uint16_t kFilmKindPerFrame = 2;
inline constexpr uint32_t kFilmTransparent = 40;  // 3 x u16 red, green, blue
inline constexpr uint32_t kFilmFrameCount = 46;   // u32
inline constexpr uint32_t kFilmBlobSizes = 166;   // 3 x u32: strip, mask, shadow
inline constexpr uint32_t kFilmWholeStripMirror = 178;
inline constexpr uint32_t kFilmMirrorHorizontal = 179;
inline constexpr uint32_t kFilmMirrorVertical = 180;
inline constexpr uint32_t kFilmFrameRows = 242;
inline constexpr uint32_t kFilmFrameRowSize = 120;
inline constexpr uint32_t kFilmBlobs = 362;  // + 120 x frameCount
inline constexpr uint32_t kFrameRowSourceRect = 0;  // stored top, left, bottom, right
inline constexpr uint32_t kFrameRowHotspot = 16;    // 3 x i16
// A film stored a frame at a time: frame 0's picture is the first blob; each later frame's picture
// lies in the second blob (the raw frame data) at this position, from the blob's start, and size.
inline constexpr uint32_t kFrameRowDataPosition = 60;  // u32
inline constexpr uint32_t kFrameRowDataSize = 64;      // u32

// A picture's side is a 16-bit field; more frames or points than fit a plausible block are damage.
inline constexpr uint32_t kMaxFilmFrames = 4096;
inline constexpr uint32_t kMaxPathPoints = 65535;

// ExpandSpriteRecord's refusals.
inline constexpr int32_t kSpriteDamaged = -1;

struct PathPoint {
    int16_t x = 0, y = 0;
    uint32_t timeMs = 0;
};

struct FilmFrame {
    Rect sourceRect;  // in the strip (or the frame's own picture), native left, top, right, bottom
    int16_t hotspotX = 0, hotspotY = 0;
    // A per-frame film's picture of this frame in its frame data, as stored and not yet checked.
    uint32_t dataPosition = 0, dataSize = 0;
};

struct SpriteFilm {
    uint16_t kind = 0;
    uint16_t transparent[3] = {};  // 16-bit colour words; the high byte is the colour
    bool wholeStripMirror = false, mirrorHorizontal = false, mirrorVertical = false;
    std::vector<FilmFrame> frames;
    // The three image blobs as stored: PixPak records, or empty. A per-frame film keeps frame 0's
    // picture in `strip` and the later frames' pictures, one after another, in `mask`.
    std::vector<uint8_t> strip, mask, shadow;
};

struct SpriteRecord {
    uint16_t behaviour = 0, endMode = 0;
    uint32_t endSeconds = 0;
    uint8_t restartable = 0, showWithCard = 0, endVisible = 0;
    uint8_t stamps[3] = {}, overItems[3] = {};
    uint8_t mirrorAtStart = 0, mirrorAtEnd = 0;
    uint16_t layerMode = 0;
    int16_t layerNumber = 0;
    uint16_t startAngles[2] = {}, endAngles[2] = {};
    uint16_t frameTimeMode = 0, frameMode = 0;
    uint8_t linked = 0;
    uint32_t frameRate = 0;
    int32_t frameStep = 0;
    uint32_t frameLoopLimit = 0, startFrame = 0, firstFrame = 0, endFrame = 0;
    uint16_t pathTimeMode = 0, pathTimeSource = 0, pathMode = 0;
    uint32_t pathRate = 0, speedPercent = 0;
    int32_t pathStep = 0;
    uint32_t pathLoopLimit = 0, startPathIndex = 0, firstPoint = 0, endPoint = 0;

    bool hasPath = false, hasFilm = false;
    std::vector<PathPoint> points;
    SpriteFilm film;

    // As stored: the fixed part and the three blobs, for PackSpriteRecord.
    std::vector<uint8_t> fixed, custom, pathBlock, filmBlock;
};

// Whether a payload starts with the code 'Sprt'.
bool IsSpriteFilm(const uint8_t* data, uint32_t size);
// Reads a stored 'Sprt' payload. Every length, count and offset is checked against `size` first;
// the frame and point ranges are cut to what the film and path hold. 0 or kSpriteDamaged.
int32_t ExpandSpriteRecord(const uint8_t* data, uint32_t size, SpriteRecord* record);
// The stored form again: the fixed part with the named fields written back, the blob sizes and
// the whole size set, the blobs in order, made even.
int32_t PackSpriteRecord(const SpriteRecord& record, std::vector<uint8_t>* bytes);
