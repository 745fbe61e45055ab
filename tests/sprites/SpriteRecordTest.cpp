// Stored 'Sprt' payloads: their fields and blobs read, damage refused before anything is read past
// the bytes, and an unchanged record packed to the same bytes.
#include <gtest/gtest.h>

#include <functional>

#include "sprites/SpriteRecord.h"
#include "support/SpriteBytes.h"

namespace {

TEST(SpriteRecordTest, ReadsTheNamedFieldsThePathAndTheFilm) {
    SpriteParts parts;
    parts.frameColors = {0x102030, 0x405060, 0x708090};
    parts.fields = {{kSprtRestartable, 1, 1}, {kSprtLayerNumber, 2, 0xFFFE}, {kSprtPathStep, 4, 0xFFFFFFFF},
                   {kSprtOverItems + 2, 1, 1}, {kSprtEndAngles, 2, 180}};
    const Bytes bytes = SpriteBytes(parts);
    SpriteRecord r;
    ASSERT_EQ(ExpandSpriteRecord(bytes.data(), static_cast<uint32_t>(bytes.size()), &r), 0);
    EXPECT_EQ(r.behaviour, kBehaviourPick);
    EXPECT_EQ(r.restartable, 1);
    EXPECT_EQ(r.layerNumber, -2);
    EXPECT_EQ(r.pathStep, -1);
    EXPECT_EQ(r.overItems[2], 1);
    EXPECT_EQ(r.endAngles[0], 180);
    ASSERT_EQ(r.points.size(), 4u);
    EXPECT_EQ(r.points[2].x, 40);
    EXPECT_EQ(r.points[2].timeMs, 100u);
    ASSERT_EQ(r.film.frames.size(), 3u);
    EXPECT_EQ(r.film.frames[1].sourceRect, (Rect{8, 0, 16, 8}));
    EXPECT_EQ(r.film.transparent[0], 0xFFFF);
    EXPECT_EQ(r.film.strip.size(), SpriteStrip(parts, parts.frameColors).size());
    EXPECT_EQ(r.endFrame, 3u);
}

// The ranges are cut to what the film and path hold, so no index can leave them.
TEST(SpriteRecordTest, RangesStayInsideTheFilmAndPath) {
    SpriteParts parts;
    parts.fields = {{kSprtEndFrame, 4, 9}, {kSprtStartFrame, 4, 7}, {kSprtEndPoint, 4, 100},
                   {kSprtFirstPoint, 4, 200}, {kSprtStartPathIndex, 4, 3}};
    const Bytes bytes = SpriteBytes(parts);
    SpriteRecord r;
    ASSERT_EQ(ExpandSpriteRecord(bytes.data(), static_cast<uint32_t>(bytes.size()), &r), 0);
    EXPECT_EQ(r.endFrame, 1u);
    EXPECT_EQ(r.startFrame, 0u);
    EXPECT_EQ(r.endPoint, 4u);
    EXPECT_EQ(r.firstPoint, 4u);
    EXPECT_EQ(r.startPathIndex, 4u);
}

TEST(SpriteRecordTest, DamagedRecordsAreRefused) {
    const Bytes good = SpriteBytes({});
    const uint32_t pathAt = kSprtFixedSize;
    const uint32_t filmAt = pathAt + ReadBE32(&good[kSprtPathSize]);
    const struct {
        const char* what;
        std::function<void(Bytes&)> change;
    } cases[] = {
        {"cut inside the fixed part", [](Bytes& b) { b.resize(kSprtFixedSize - 1); }},
        {"another code", [](Bytes& b) { b[0] = 'X'; }},
        {"path size past the end", [](Bytes& b) { WriteBE32(&b[kSprtPathSize], 0x7FFFFFFF); }},
        {"film size past the end", [](Bytes& b) { WriteBE32(&b[kSprtFilmSize], static_cast<uint32_t>(b.size())); }},
        {"path of another code", [&](Bytes& b) { b[pathAt] = 'Q'; }},
        {"path of another version", [&](Bytes& b) { WriteBE16(&b[pathAt + 8], 99); }},
        {"more points than the path holds", [&](Bytes& b) { WriteBE32(&b[pathAt + kPathPointCount], 5); }},
        {"path larger than its blob", [&](Bytes& b) { WriteBE32(&b[pathAt + 4], ReadBE32(&b[pathAt + 4]) + 2); }},
        {"more frames than the film holds", [&](Bytes& b) { WriteBE32(&b[filmAt + kFilmFrameCount], 2); }},
        {"frame count that overflows", [&](Bytes& b) { WriteBE32(&b[filmAt + kFilmFrameCount], 0x2222223); }},
        {"strip past the film", [&](Bytes& b) { WriteBE32(&b[filmAt + kFilmBlobSizes], 0xFFFFFFF0); }},
        {"mask past the film", [&](Bytes& b) { WriteBE32(&b[filmAt + kFilmBlobSizes + 4], 1); }},
    };
    for (const auto& c : cases) {
        Bytes bytes = good;
        c.change(bytes);
        SpriteRecord r;
        EXPECT_EQ(ExpandSpriteRecord(bytes.data(), static_cast<uint32_t>(bytes.size()), &r), kSpriteDamaged) << c.what;
    }
}

TEST(SpriteRecordTest, PackingGivesBackTheStoredBytes) {
    SpriteParts parts;
    parts.frameColors = {1, 2, 3};
    // Unnamed fields and run-time areas as another writer left them.
    parts.fields = {{54, 2, 0xBEEF}, {212, 4, 0x01020304}, {472, 4, 0xDEADBEEF}, {kSprtEndFrame, 4, 40}};
    Bytes bytes = SpriteBytes(parts);
    const uint32_t filmAt = kSprtFixedSize + ReadBE32(&bytes[kSprtPathSize]);
    bytes[filmAt + 200] = 0x5A;  // inside the film's kept area
    SpriteRecord r;
    ASSERT_EQ(ExpandSpriteRecord(bytes.data(), static_cast<uint32_t>(bytes.size()), &r), 0);
    Bytes packed;
    ASSERT_EQ(PackSpriteRecord(r, &packed), 0);
    EXPECT_EQ(packed, bytes);
    // A changed field goes out, and nothing else moves.
    r.pathMode = 3;
    ASSERT_EQ(PackSpriteRecord(r, &packed), 0);
    ASSERT_EQ(packed.size(), bytes.size());
    EXPECT_EQ(ReadBE16(&packed[kSprtPathMode]), 3);
    packed[kSprtPathMode + 1] = bytes[kSprtPathMode + 1];
    EXPECT_EQ(packed, bytes);
}

}  // namespace
