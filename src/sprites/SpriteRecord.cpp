#include "sprites/SpriteRecord.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "base/ByteOrder.h"

namespace {

// One list of the named fields serves reading and writing: `visit(offset, field)` for each.
template <typename Record, typename Visit>
void VisitNamedFields(Record& r, Visit visit) {
    visit(kSprtBehaviour, r.behaviour);
    visit(kSprtEndMode, r.endMode);
    visit(kSprtEndSeconds, r.endSeconds);
    visit(kSprtRestartable, r.restartable);
    visit(kSprtShowWithCard, r.showWithCard);
    visit(kSprtEndVisible, r.endVisible);
    for (uint32_t i = 0; i < 3; ++i) {
        visit(kSprtStamps + i, r.stamps[i]);
        visit(kSprtOverItems + i, r.overItems[i]);
    }
    visit(kSprtMirrorAtStart, r.mirrorAtStart);
    visit(kSprtMirrorAtEnd, r.mirrorAtEnd);
    visit(kSprtLayerMode, r.layerMode);
    visit(kSprtLayerNumber, r.layerNumber);
    for (uint32_t i = 0; i < 2; ++i) {
        visit(kSprtStartAngles + 2 * i, r.startAngles[i]);
        visit(kSprtEndAngles + 2 * i, r.endAngles[i]);
    }
    visit(kSprtFrameTimeMode, r.frameTimeMode);
    visit(kSprtFrameMode, r.frameMode);
    visit(kSprtLinked, r.linked);
    visit(kSprtFrameRate, r.frameRate);
    visit(kSprtFrameStep, r.frameStep);
    visit(kSprtFrameLoopLimit, r.frameLoopLimit);
    visit(kSprtStartFrame, r.startFrame);
    visit(kSprtFirstFrame, r.firstFrame);
    visit(kSprtEndFrame, r.endFrame);
    visit(kSprtPathTimeMode, r.pathTimeMode);
    visit(kSprtPathTimeSource, r.pathTimeSource);
    visit(kSprtPathMode, r.pathMode);
    visit(kSprtPathRate, r.pathRate);
    visit(kSprtSpeedPercent, r.speedPercent);
    visit(kSprtPathStep, r.pathStep);
    visit(kSprtPathLoopLimit, r.pathLoopLimit);
    visit(kSprtStartPathIndex, r.startPathIndex);
    visit(kSprtFirstPoint, r.firstPoint);
    visit(kSprtEndPoint, r.endPoint);
}

template <typename T>
void ReadField(const uint8_t* p, T* v) {
    if constexpr (sizeof(T) == 1) *v = static_cast<T>(p[0]);
    else if constexpr (sizeof(T) == 2) *v = static_cast<T>(ReadBE16(p));
    else *v = static_cast<T>(ReadBE32(p));
}

template <typename T>
void WriteField(uint8_t* p, T v) {
    if constexpr (sizeof(T) == 1) p[0] = static_cast<uint8_t>(v);
    else if constexpr (sizeof(T) == 2) WriteBE16(p, static_cast<uint16_t>(v));
    else WriteBE32(p, static_cast<uint32_t>(v));
}

// A blob's head: its code, a size that fits the room it was given, version 100.
bool BlockHeadFits(const uint8_t* p, uint32_t room, const char* code, uint32_t minSize) {
    return room >= minSize && std::memcmp(p, code, 4) == 0 && ReadBE32(p + 4) >= minSize &&
           ReadBE32(p + 4) <= room && ReadBE16(p + 8) == kSpriteBlockVersion;
}

int32_t ReadPath(const uint8_t* p, uint32_t room, SpriteRecord* r) {
    if (!BlockHeadFits(p, room, "Path", kPathPoints)) return kSpriteDamaged;
    const uint32_t size = ReadBE32(p + 4);
    const uint32_t count = ReadBE32(p + kPathPointCount);
    if (count > kMaxPathPoints || count > (size - kPathPoints) / kPathPointSize) return kSpriteDamaged;
    r->points.resize(count);
    for (uint32_t i = 0; i < count; ++i) {
        const uint8_t* at = p + kPathPoints + kPathPointSize * i;
        r->points[i] = {static_cast<int16_t>(ReadBE16(at)), static_cast<int16_t>(ReadBE16(at + 2)),
                        ReadBE32(at + kPathPointTime)};
    }
    r->hasPath = true;
    return 0;
}

int32_t ReadFilm(const uint8_t* p, uint32_t room, SpriteRecord* r) {
    if (!BlockHeadFits(p, room, "Film", kFilmBlobs)) return kSpriteDamaged;
    const uint32_t size = ReadBE32(p + 4);
    const uint32_t count = ReadBE32(p + kFilmFrameCount);
    if (count > kMaxFilmFrames || count > (size - kFilmBlobs) / kFilmFrameRowSize) return kSpriteDamaged;
    SpriteFilm& film = r->film;
    film.kind = ReadBE16(p + kFilmKind);
    for (uint32_t i = 0; i < 3; ++i) film.transparent[i] = ReadBE16(p + kFilmTransparent + 2 * i);
    film.wholeStripMirror = p[kFilmWholeStripMirror] != 0;
    film.mirrorHorizontal = p[kFilmMirrorHorizontal] != 0;
    film.mirrorVertical = p[kFilmMirrorVertical] != 0;
    film.frames.resize(count);
    for (uint32_t i = 0; i < count; ++i) {
        const uint8_t* row = p + kFilmFrameRows + kFilmFrameRowSize * i;
        FilmFrame& f = film.frames[i];
        const auto word = [&](uint32_t at) { return static_cast<int16_t>(ReadBE16(row + at)); };
        f.sourceRect = {word(kFrameRowSourceRect + 2), word(kFrameRowSourceRect), word(kFrameRowSourceRect + 6),
                        word(kFrameRowSourceRect + 4)};
        f.hotspotX = word(kFrameRowHotspot);
        f.hotspotY = word(kFrameRowHotspot + 2);
        f.dataPosition = ReadBE32(row + kFrameRowDataPosition);
        f.dataSize = ReadBE32(row + kFrameRowDataSize);
    }
    // The image blobs follow the rows, each by its stored size, within the film's own size.
    uint32_t at = kFilmBlobs + kFilmFrameRowSize * count;
    std::vector<uint8_t>* blobs[] = {&film.strip, &film.mask, &film.shadow};
    for (uint32_t i = 0; i < 3; ++i) {
        const uint32_t length = ReadBE32(p + kFilmBlobSizes + 4 * i);
        if (length > size - at) return kSpriteDamaged;
        blobs[i]->assign(p + at, p + at + length);
        at += length;
    }
    r->hasFilm = true;
    return 0;
}

}  // namespace

bool IsSpriteFilm(const uint8_t* data, uint32_t size) {
    return data && size >= 4 && std::memcmp(data, "Sprt", 4) == 0;
}

int32_t ExpandSpriteRecord(const uint8_t* data, uint32_t size, SpriteRecord* record) {
    if (!IsSpriteFilm(data, size) || size < kSprtFixedSize) return kSpriteDamaged;
    SpriteRecord r;
    VisitNamedFields(r, [&](uint32_t at, auto& field) { ReadField(data + at, &field); });
    r.fixed.assign(data, data + kSprtFixedSize);
    const uint32_t sizes[] = {ReadBE32(data + kSprtCustomSize), ReadBE32(data + kSprtPathSize),
                              ReadBE32(data + kSprtFilmSize)};
    std::vector<uint8_t>* blobs[] = {&r.custom, &r.pathBlock, &r.filmBlock};
    uint32_t at = kSprtFixedSize;
    for (uint32_t i = 0; i < 3; ++i) {
        if (sizes[i] > size - at) return kSpriteDamaged;
        blobs[i]->assign(data + at, data + at + sizes[i]);
        at += sizes[i];
    }
    if (!r.pathBlock.empty() && ReadPath(r.pathBlock.data(), sizes[1], &r) != 0) return kSpriteDamaged;
    if (!r.filmBlock.empty() && ReadFilm(r.filmBlock.data(), sizes[2], &r) != 0) return kSpriteDamaged;
    // The ranges stay inside what the film and path hold, whatever the record says.
    const auto frames = static_cast<uint32_t>(r.film.frames.size());
    r.endFrame = std::min(r.endFrame, frames);
    r.firstFrame = std::min(r.firstFrame, r.endFrame);
    if (r.startFrame < r.firstFrame || r.startFrame >= r.endFrame) r.startFrame = r.firstFrame;
    const auto points = static_cast<uint32_t>(r.points.size());
    r.endPoint = std::min(r.endPoint, points);
    r.firstPoint = std::min(r.firstPoint, r.endPoint);
    if (r.startPathIndex < r.firstPoint || r.startPathIndex >= r.endPoint) r.startPathIndex = r.firstPoint;
    *record = std::move(r);
    return 0;
}

int32_t PackSpriteRecord(const SpriteRecord& record, std::vector<uint8_t>* bytes) {
    if (record.fixed.size() != kSprtFixedSize) return kSpriteDamaged;
    std::vector<uint8_t>& out = *bytes;
    out = record.fixed;
    // A field goes back only when it was changed, and the ranges, cut to the film on reading, stay
    // as they were stored: so an unchanged record is the same bytes.
    VisitNamedFields(record, [&](uint32_t at, const auto& field) {
        using T = std::remove_cv_t<std::remove_reference_t<decltype(field)>>;
        T old{};
        ReadField(record.fixed.data() + at, &old);
        const bool cutOnReading = at == kSprtEndFrame || at == kSprtFirstFrame || at == kSprtStartFrame ||
                                  at == kSprtEndPoint || at == kSprtFirstPoint || at == kSprtStartPathIndex;
        if (!cutOnReading && field != old) WriteField(out.data() + at, field);
    });
    WriteBE32(out.data() + kSprtCustomSize, static_cast<uint32_t>(record.custom.size()));
    WriteBE32(out.data() + kSprtPathSize, static_cast<uint32_t>(record.pathBlock.size()));
    WriteBE32(out.data() + kSprtFilmSize, static_cast<uint32_t>(record.filmBlock.size()));
    for (const std::vector<uint8_t>* blob : {&record.custom, &record.pathBlock, &record.filmBlock}) {
        out.insert(out.end(), blob->begin(), blob->end());
    }
    if (out.size() % 2) out.push_back(0);
    WriteBE32(out.data() + kSprtSize, static_cast<uint32_t>(out.size()));
    return 0;
}
