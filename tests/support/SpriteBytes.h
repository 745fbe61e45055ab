// Stored 'Sprt' payloads for the sprite tests: a film of solid frames in one strip (each frame's
// top-left pixel in the transparent colour, white) or stored a frame at a time, a path of points,
// and the record's fields as a builder sets them, with any field overridden by offset.
#pragma once

#include <cstdint>
#include <vector>

#include "base/ByteOrder.h"
#include "gfx/DibImage.h"
#include "pictures/PixPak.h"
#include "sprites/SpriteRecord.h"
#include "support/StackBytes.h"

struct SpriteField {
    uint32_t offset;
    uint32_t width;  // 1, 2 or 4 bytes
    uint32_t value;
};

struct SpriteParts {
    int32_t frameWidth = 8, frameHeight = 8;
    std::vector<uint32_t> frameColors = {0xC02020};
    std::vector<PathPoint> points = {{0, 10, 100}, {20, 10, 100}, {40, 10, 100}, {60, 10, 100}};
    std::vector<SpriteField> fields;
    // Each frame a picture of its own: frame 0's as the first blob, the others one after another
    // in the second, each row giving its picture's position there and size.
    bool perFrame = false;
};

// Frames of these colours side by side as a 32-bit PixPak record.
inline Bytes SpriteStrip(const SpriteParts& parts, const std::vector<uint32_t>& colors) {
    const auto count = static_cast<int32_t>(colors.size());
    OffscreenImage image;
    NewOffscreenImage(&image, parts.frameWidth * count, parts.frameHeight, 32);
    {
        MemRefLock lock(image.bitmap);
        uint8_t* dib = lock.data();
        const uint32_t rowBytes = DibImageRowBytes(dib);
        for (int32_t y = 0; y < parts.frameHeight; ++y) {
            // Display rows run bottom-up.
            uint8_t* row = DibPixels(dib) + rowBytes * static_cast<uint32_t>(parts.frameHeight - 1 - y);
            for (int32_t x = 0; x < parts.frameWidth * count; ++x) {
                const bool corner = x % parts.frameWidth == 0 && y == 0;
                Write32(row + 4 * x, corner ? 0xFFFFFFu : colors[static_cast<size_t>(x / parts.frameWidth)]);
            }
        }
    }
    MemRef record = 0;
    uint32_t size = 0;
    EncodePixPak(image, 4, &record, &size);
    FreeOffscreenImage(&image);
    MemRefLock lock(record);
    Bytes out(lock.data(), lock.data() + size);
    FreeMemRef(record);
    return out;
}

inline Bytes SpriteBytes(const SpriteParts& parts) {
    const auto frames = static_cast<uint32_t>(parts.frameColors.size());
    const auto points = static_cast<uint32_t>(parts.points.size());
    Bytes path(kPathPoints + kPathPointSize * points, 0);
    std::memcpy(path.data(), "Path", 4);
    WriteBE32(&path[4], static_cast<uint32_t>(path.size()));
    WriteBE16(&path[8], kSpriteBlockVersion);
    WriteBE32(&path[kPathPointCount], points);
    for (uint32_t i = 0; i < points; ++i) {
        uint8_t* p = &path[kPathPoints + kPathPointSize * i];
        WriteBE16(p, static_cast<uint16_t>(parts.points[i].x));
        WriteBE16(p + 2, static_cast<uint16_t>(parts.points[i].y));
        WriteBE32(p + kPathPointTime, parts.points[i].timeMs);
    }
    const std::vector<uint32_t> firstOnly = {parts.frameColors[0]};
    const Bytes strip = SpriteStrip(parts, parts.perFrame ? firstOnly : parts.frameColors);
    Bytes frameData;
    Bytes film(kFilmBlobs + kFilmFrameRowSize * frames, 0);
    std::memcpy(film.data(), "Film", 4);
    WriteBE16(&film[8], kSpriteBlockVersion);
    WriteBE16(&film[kFilmKind], parts.perFrame ? kFilmKindPerFrame : 0);
    for (uint32_t i = 0; i < 3; ++i) WriteBE16(&film[kFilmTransparent + 2 * i], 0xFFFF);
    WriteBE32(&film[kFilmFrameCount], frames);
    for (uint32_t i = 0; i < frames; ++i) {
        uint8_t* row = &film[kFilmFrameRows + kFilmFrameRowSize * i];
        const uint32_t place = parts.perFrame ? 0 : i;
        WriteBE16(row, 0);
        WriteBE16(row + 2, static_cast<uint16_t>(parts.frameWidth * static_cast<int32_t>(place)));
        WriteBE16(row + 4, static_cast<uint16_t>(parts.frameHeight));
        WriteBE16(row + 6, static_cast<uint16_t>(parts.frameWidth * static_cast<int32_t>(place + 1)));
        if (parts.perFrame && i > 0) {
            const Bytes picture = SpriteStrip(parts, {parts.frameColors[i]});
            WriteBE32(row + kFrameRowDataPosition, static_cast<uint32_t>(frameData.size()));
            WriteBE32(row + kFrameRowDataSize, static_cast<uint32_t>(picture.size()));
            frameData.insert(frameData.end(), picture.begin(), picture.end());
        }
    }
    WriteBE32(&film[kFilmBlobSizes], static_cast<uint32_t>(strip.size()));
    WriteBE32(&film[kFilmBlobSizes + 4], static_cast<uint32_t>(frameData.size()));
    film.insert(film.end(), strip.begin(), strip.end());
    film.insert(film.end(), frameData.begin(), frameData.end());
    WriteBE32(&film[4], static_cast<uint32_t>(film.size()));

    Bytes out(kSprtFixedSize, 0);
    std::memcpy(out.data(), "Sprt", 4);
    WriteBE16(&out[kSprtVersion], kSpriteBlockVersion);
    const SpriteField defaults[] = {
        {kSprtBehaviour, 2, kBehaviourPick}, {kSprtEndMode, 2, 5},         {kSprtEndVisible, 1, 1},
        {kSprtFrameTimeMode, 2, 2},          {kSprtFrameMode, 2, 1},       {kSprtFrameRate, 4, 100},
        {kSprtFrameStep, 4, 1},              {kSprtFrameLoopLimit, 4, 1},  {kSprtEndFrame, 4, frames},
        {kSprtPathTimeMode, 2, 2},           {kSprtPathMode, 2, 1},        {kSprtPathRate, 4, 100},
        {kSprtSpeedPercent, 4, 100},         {kSprtPathStep, 4, 1},        {kSprtPathLoopLimit, 4, 1},
        {kSprtEndPoint, 4, points},          {kSprtPathSize, 4, static_cast<uint32_t>(path.size())},
        {kSprtFilmSize, 4, static_cast<uint32_t>(film.size())}};
    const auto put = [&](const SpriteField& f) {
        if (f.width == 1) out[f.offset] = static_cast<uint8_t>(f.value);
        if (f.width == 2) WriteBE16(&out[f.offset], static_cast<uint16_t>(f.value));
        if (f.width == 4) WriteBE32(&out[f.offset], f.value);
    };
    for (const SpriteField& f : defaults) put(f);
    for (const SpriteField& f : parts.fields) put(f);
    out.insert(out.end(), path.begin(), path.end());
    out.insert(out.end(), film.begin(), film.end());
    if (out.size() % 2) out.push_back(0);
    WriteBE32(&out[kSprtSize], static_cast<uint32_t>(out.size()));
    return out;
}
