// Frame-delta animations: change lists land on the same pixels through the stride correction,
// word lists with their base markers, and lists that lie about their lengths stay inside.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "base/ByteOrder.h"
#include "sprites/FrameDelta.h"

namespace {

using Bytes = std::vector<uint8_t>;

// A payload of `pictures` (working pictures): frame 1 whole in stored rows, then change lists.
Bytes DeltaPayload(const DeltaHead& head, const std::vector<Bytes>& pictures, bool words) {
    Bytes out(kDeltaHeadSize, 0);
    const uint16_t words16[] = {static_cast<uint16_t>(head.width), static_cast<uint16_t>(head.height), head.tickDelay,
                                head.repeats, static_cast<uint16_t>(pictures.size()), head.depth, head.flags};
    for (uint32_t i = 0; i < 7; ++i) Write16(&out[2 * i], words16[i]);
    const uint32_t s = DeltaStoredRowBytes(head), p = DeltaRowBytes(head);
    for (size_t n = 0; n < pictures.size(); ++n) {
        Bytes data;
        if (n == 0) {
            data.assign(static_cast<size_t>(s) * head.height, 0xEE);  // the stored rows' padding is junk
            for (int32_t y = 0; y < head.height; ++y) std::memcpy(&data[y * s], &pictures[0][y * p], std::min(s, p));
        } else {
            EXPECT_TRUE(MakeChangeList(pictures[n - 1], pictures[n], head, words, &data));
        }
        Bytes frame(kDeltaFrameHeadSize, 0);
        Write32(&frame[kDeltaFrameSize], static_cast<uint32_t>(kDeltaFrameHeadSize + data.size()));
        out.insert(out.end(), frame.begin(), frame.end());
        out.insert(out.end(), data.begin(), data.end());
    }
    return out;
}

// A working picture whose padding is 0 and whose pixels follow `seed`.
Bytes Picture(const DeltaHead& head, uint32_t seed) {
    const uint32_t p = DeltaRowBytes(head);
    const uint32_t used = (static_cast<uint32_t>(head.width) * head.depth + 7) / 8;
    Bytes b(static_cast<size_t>(p) * head.height, 0);
    uint32_t state = seed * 2654435761u + 7;
    for (int32_t y = 0; y < head.height; ++y) {
        for (uint32_t c = 0; c < used; ++c) {
            state ^= state << 13, state ^= state >> 17, state ^= state << 5;
            // About a third of the bytes change from one picture to the next.
            b[y * p + c] = static_cast<uint8_t>(state % 3 == 0 ? state >> 8 : (y * 31 + c * 7));
        }
    }
    // Pixel bits past the width stay clear, as in any picture.
    if (const uint32_t spare = used * 8 - static_cast<uint32_t>(head.width) * head.depth) {
        for (int32_t y = 0; y < head.height; ++y) b[y * p + used - 1] &= static_cast<uint8_t>(0xFF << spare);
    }
    return b;
}

TEST(FrameDeltaTest, ChangesLandOnTheSamePixelsAtEveryWidthAndDepth) {
    const struct {
        int32_t width, height;
        uint16_t depth;
    } cases[] = {{5, 3, 8}, {17, 4, 8}, {1, 2, 8}, {3, 3, 16}, {33, 2, 16}, {7, 3, 32}, {1, 1, 32}, {13, 5, 4}, {9, 3, 1}};
    for (const auto& c : cases) {
        for (const bool words : {true, false}) {
            DeltaHead head;
            head.width = c.width, head.height = c.height, head.depth = c.depth;
            head.flags = words ? kDeltaWordChanges : 0;
            const std::vector<Bytes> pictures = {Picture(head, 1), Picture(head, 2), Picture(head, 3)};
            const Bytes payload = DeltaPayload(head, pictures, words);
            DeltaHead read;
            ASSERT_TRUE(ReadDeltaHead(payload.data(), static_cast<uint32_t>(payload.size()), &read));
            Bytes picture;
            for (uint32_t n = 1; n <= 3; ++n) {
                ASSERT_TRUE(ApplyDeltaFrame(payload.data(), static_cast<uint32_t>(payload.size()), read, n, &picture));
                EXPECT_EQ(picture, pictures[n - 1]) << c.width << "x" << c.height << " at " << c.depth << " bits, frame "
                                                    << n << (words ? " words" : " longs");
            }
        }
    }
}

// A picture of more than 32768 bytes needs the base markers; one at the very end only moves the base.
TEST(FrameDeltaTest, WordListsCrossTheirBaseWithMarkers) {
    DeltaHead head;
    head.width = 200, head.height = 200, head.depth = 8, head.flags = kDeltaWordChanges;
    Bytes first = Picture(head, 1), second = first;
    second[DeltaRowBytes(head) * 199 + 10] ^= 0xFF;  // one change near the end, stored offset > 32768
    Bytes changes;
    ASSERT_TRUE(MakeChangeList(first, second, head, true, &changes));
    ASSERT_EQ(changes.size(), 8u) << "a marker and one pair";
    changes.insert(changes.end(), {kDeltaMarker[0], kDeltaMarker[1], 0, 0});
    Bytes payload = DeltaPayload(head, {first}, true);
    Bytes frame(kDeltaFrameHeadSize, 0);
    Write32(&frame[kDeltaFrameSize], static_cast<uint32_t>(kDeltaFrameHeadSize + changes.size()));
    payload.insert(payload.end(), frame.begin(), frame.end());
    payload.insert(payload.end(), changes.begin(), changes.end());
    Write16(&payload[8], 2);
    ASSERT_TRUE(ReadDeltaHead(payload.data(), static_cast<uint32_t>(payload.size()), &head));
    Bytes picture;
    ASSERT_TRUE(ApplyDeltaFrame(payload.data(), static_cast<uint32_t>(payload.size()), head, 1, &picture));
    ASSERT_TRUE(ApplyDeltaFrame(payload.data(), static_cast<uint32_t>(payload.size()), head, 2, &picture));
    EXPECT_EQ(picture, second);
}

// The one offset a word list cannot say is the marker's own; the builder then writes long pairs.
TEST(FrameDeltaTest, AWordChangeAtTheMarkersOffsetIsRefused) {
    DeltaHead head;
    head.width = 64, head.height = 10, head.depth = 8;
    Bytes first(DeltaRowBytes(head) * 10, 0), second = first;
    second[384] = 1;  // stored offset 0x0180 with stored rows of 64 bytes
    Bytes changes;
    EXPECT_FALSE(MakeChangeList(first, second, head, true, &changes));
    EXPECT_TRUE(MakeChangeList(first, second, head, false, &changes));
}

TEST(FrameDeltaTest, ListsThatLieStayInsideThePicture) {
    DeltaHead head;
    head.width = 5, head.height = 2, head.depth = 8;
    const Bytes base = DeltaPayload(head, {Picture(head, 1)}, false);
    const struct {
        const char* what;
        Bytes tail;  // a second frame as stored: head, then data
        bool applies;
    } cases[] = {
        {"offset far past the picture", {0, 0, 0, 0, 0, 0, 0, 0, 24, 0, 0, 0, 0, 0, 0, 0, 0x7F, 0, 0, 0, 1, 2, 3, 4}, true},
        {"a pair cut short", {0, 0, 0, 0, 0, 0, 0, 0, 22, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2}, true},
        {"frame size past the payload", {0, 0, 0, 0, 0, 0, 0, 0, 99, 0, 0, 0, 0, 0, 0, 0}, false},
        {"frame size under its head", {0, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0}, false},
    };
    for (const auto& c : cases) {
        Bytes payload = base;
        payload.insert(payload.end(), c.tail.begin(), c.tail.end());
        Write16(&payload[8], 2);
        ASSERT_TRUE(ReadDeltaHead(payload.data(), static_cast<uint32_t>(payload.size()), &head));
        Bytes picture;
        ASSERT_TRUE(ApplyDeltaFrame(payload.data(), static_cast<uint32_t>(payload.size()), head, 1, &picture));
        const Bytes before = picture;
        EXPECT_EQ(ApplyDeltaFrame(payload.data(), static_cast<uint32_t>(payload.size()), head, 2, &picture), c.applies)
            << c.what;
        EXPECT_EQ(picture, before) << c.what;
    }
}

}  // namespace
