#include "sprites/FrameDelta.h"

#include <algorithm>
#include <cstring>

#include "base/ByteOrder.h"
#include "gfx/DibImage.h"

namespace {

bool IsDeltaDepth(int32_t depth) { return depth == 1 || depth == 4 || depth == 8 || depth == 16 || depth == 32; }

// The frame `number` (from 1): its data and length, found by walking the frames by their sizes.
bool FindFrame(const uint8_t* data, uint32_t size, const DeltaHead& head, uint32_t number, const uint8_t** body,
               uint32_t* length) {
    if (number < 1 || number > head.frameCount) return false;
    uint32_t at = kDeltaHeadSize;
    for (uint32_t i = 1;; ++i) {
        if (size - at < kDeltaFrameHeadSize) return false;
        const uint32_t frameSize = Read32(data + at + kDeltaFrameSize);
        if (frameSize < kDeltaFrameHeadSize || frameSize > size - at) return false;
        if (i == number) {
            *body = data + at + kDeltaFrameHeadSize;
            *length = frameSize - kDeltaFrameHeadSize;
            return true;
        }
        at += frameSize;
    }
}

// Writes the `count` bytes of a change at its stored offset corrected to the working rows; bytes
// that would fall in a row's padding or past the picture are left out.
void PutChange(std::vector<uint8_t>& picture, const DeltaHead& head, uint64_t storedOffset, const uint8_t* bytes,
               uint32_t count) {
    const uint64_t s = DeltaStoredRowBytes(head);
    const uint64_t p = DeltaRowBytes(head);
    const uint64_t row = storedOffset / s;
    const uint64_t column = storedOffset % s;
    if (row >= static_cast<uint64_t>(head.height)) return;
    for (uint32_t k = 0; k < count && column + k < p; ++k) picture[row * p + column + k] = bytes[k];
}

}  // namespace

bool ReadDeltaHead(const uint8_t* data, uint32_t size, DeltaHead* head) {
    if (!data || size < kDeltaHeadSize) return false;
    DeltaHead h;
    h.width = ReadS16(data);
    h.height = ReadS16(data + 2);
    h.tickDelay = Read16(data + 4);
    h.repeats = Read16(data + 6);
    h.frameCount = Read16(data + 8);
    h.depth = Read16(data + 10);
    h.flags = Read16(data + 12);
    if (h.width < 1 || h.height < 1 || !IsDeltaDepth(h.depth)) return false;
    *head = h;
    return true;
}

uint32_t DeltaStoredRowBytes(const DeltaHead& head) { return StoredRowBytes(head.depth, head.width); }
uint32_t DeltaRowBytes(const DeltaHead& head) { return DibRowBytes(head.depth, head.width); }

bool ApplyDeltaFrame(const uint8_t* data, uint32_t size, const DeltaHead& head, uint32_t number,
                     std::vector<uint8_t>* picture) {
    const uint32_t s = DeltaStoredRowBytes(head);
    const uint32_t p = DeltaRowBytes(head);
    const auto height = static_cast<uint32_t>(head.height);
    const uint8_t* body = nullptr;
    uint32_t length = 0;
    // The first frame holds the whole picture, so the picture is never larger than the payload.
    if (!FindFrame(data, size, head, 1, &body, &length) || length / s < height) return false;
    picture->resize(static_cast<size_t>(p) * height);
    if (!FindFrame(data, size, head, number, &body, &length)) return false;
    if (number == 1) {
        for (uint32_t y = 0; y < height; ++y) {
            std::memcpy(picture->data() + static_cast<size_t>(y) * p, body + static_cast<size_t>(y) * s, std::min(s, p));
        }
        return true;
    }
    if (head.flags & kDeltaWordChanges) {
        uint64_t base = 0;
        for (uint32_t at = 0; length - at >= 4; at += 4) {
            if (body[at] == kDeltaMarker[0] && body[at + 1] == kDeltaMarker[1]) {
                base += kDeltaBaseStep;
                continue;
            }
            PutChange(*picture, head, base + ReadBE16(body + at), body + at + 2, 2);
        }
    } else {
        for (uint32_t at = 0; length - at >= 8; at += 8) PutChange(*picture, head, ReadBE32(body + at), body + at + 4, 4);
    }
    return true;
}

Surface DeltaPictureSurface(const std::vector<uint8_t>& picture, const DeltaHead& head, const uint32_t* colors) {
    Surface out(head.width, head.height);
    const uint32_t p = DeltaRowBytes(head);
    if (picture.size() < static_cast<size_t>(p) * static_cast<uint32_t>(head.height)) return out;
    for (int32_t y = 0; y < head.height; ++y) {
        const uint8_t* row = picture.data() + static_cast<size_t>(y) * p;
        uint32_t* to = out.Row(y);
        for (int32_t x = 0; x < head.width; ++x) {
            switch (head.depth) {
                case 1: to[x] = colors[row[x / 8] >> (7 - x % 8) & 1]; break;
                case 4: to[x] = colors[row[x / 2] >> (x % 2 ? 0 : 4) & 15]; break;
                case 8: to[x] = colors[row[x]]; break;
                case 16: {
                    const uint16_t v = ReadBE16(row + 2 * x);
                    const auto five = [](uint32_t c) { return static_cast<uint8_t>((c & 31) << 3 | (c & 31) >> 2); };
                    to[x] = Rgb(five(v >> 10), five(v >> 5), five(v));
                    break;
                }
                default: to[x] = ReadBE32(row + 4 * x) & 0xFFFFFF; break;
            }
        }
    }
    return out;
}

bool MakeChangeList(const std::vector<uint8_t>& previous, const std::vector<uint8_t>& next, const DeltaHead& head,
                    bool words, std::vector<uint8_t>* changes) {
    const uint32_t s = DeltaStoredRowBytes(head);
    const uint32_t p = DeltaRowBytes(head);
    const size_t total = static_cast<size_t>(p) * static_cast<uint32_t>(head.height);
    if (previous.size() < total || next.size() < total) return false;
    // Only the bytes that hold pixels count: the rows' padding is passed over.
    const uint32_t used = (static_cast<uint32_t>(head.width) * head.depth + 7) / 8;
    const uint32_t unit = words ? 2 : 4;
    changes->clear();
    uint64_t base = 0;
    for (uint32_t y = 0; y < static_cast<uint32_t>(head.height); ++y) {
        for (uint32_t c = 0; c < used; c += unit) {
            const size_t at = static_cast<size_t>(y) * p + c;
            if (std::memcmp(&previous[at], &next[at], unit) == 0) continue;
            const uint64_t offset = uint64_t{y} * s + c;
            uint8_t pair[8];
            if (words) {
                while (offset - base >= kDeltaBaseStep) {
                    changes->insert(changes->end(), {kDeltaMarker[0], kDeltaMarker[1], 0, 0});
                    base += kDeltaBaseStep;
                }
                WriteBE16(pair, static_cast<uint16_t>(offset - base));
                if (pair[0] == kDeltaMarker[0] && pair[1] == kDeltaMarker[1]) return false;
            } else {
                if (offset > UINT32_MAX) return false;
                WriteBE32(pair, static_cast<uint32_t>(offset));
            }
            std::memcpy(pair + unit, &next[at], unit);
            changes->insert(changes->end(), pair, pair + 2 * unit);
        }
    }
    return true;
}
