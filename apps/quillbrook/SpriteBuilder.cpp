#include "SpriteBuilder.h"

#include <cstring>
#include <unordered_map>

#include <fmt/format.h>

#include "PngFile.h"
#include "base/ByteOrder.h"
#include "gfx/DibImage.h"
#include "memory/MemRef.h"
#include "pictures/PackedPixels.h"
#include "pictures/PixPak.h"
#include "sprites/FrameDelta.h"
#include "sprites/SpriteRecord.h"

namespace {

using Json = nlohmann::ordered_json;
using Bytes = std::vector<uint8_t>;

struct Failure {
    std::string key, text;
};

// The film's see-through colour: magenta, which 5-5-5 words hold exactly too.
constexpr uint8_t kSeeThrough[3] = {255, 0, 255};

int64_t IntOf(const Json& owner, const char* key, int64_t fallback, int64_t low, int64_t high) {
    if (!owner.contains(key)) return fallback;
    const Json& v = owner.at(key);
    if (!v.is_number_integer()) throw Failure{key, "must be a whole number"};
    const int64_t n = v.get<int64_t>();
    if (n < low || n > high) throw Failure{key, fmt::format("{} is out of range ({} to {})", n, low, high)};
    return n;
}

bool BoolOf(const Json& owner, const char* key, bool fallback) {
    if (!owner.contains(key)) return fallback;
    if (!owner.at(key).is_boolean()) throw Failure{key, "must be true or false"};
    return owner.at(key).get<bool>();
}

std::vector<PngImage> LoadFrames(const Json& owner, const std::filesystem::path& baseDir) {
    if (!owner.contains("frames") || !owner.at("frames").is_array() || owner.at("frames").empty()) {
        throw Failure{"frames", "needs a list of PNG files"};
    }
    std::vector<PngImage> frames;
    const Json& list = owner.at("frames");
    for (size_t i = 0; i < list.size(); ++i) {
        const std::string key = fmt::format("frames[{}]", i);
        if (!list[i].is_string()) throw Failure{key, "must be a file name"};
        PngImage png;
        std::string error;
        if (!ReadPng((baseDir / list[i].get<std::string>()).string(), &png, &error)) throw Failure{key, error};
        if (!frames.empty() && (png.width != frames[0].width || png.height != frames[0].height)) {
            throw Failure{key, fmt::format("is {} x {}, the first frame {} x {}", png.width, png.height, frames[0].width,
                                           frames[0].height)};
        }
        frames.push_back(std::move(png));
    }
    return frames;
}

// One pixel at the card's depth: an index at 8 bits, a 5-5-5 word at 16, 0x00RRGGBB at 32.
class PixelMapper {
public:
    explicit PixelMapper(const AnimationCard& card) : card_(card) {}
    uint32_t operator()(const uint8_t* rgb) {
        if (card_.depth == 32) return uint32_t{rgb[0]} << 16 | uint32_t{rgb[1]} << 8 | rgb[2];
        if (card_.depth == 16) return uint32_t{rgb[0]} >> 3 << 10 | uint32_t{rgb[1]} >> 3 << 5 | uint32_t{rgb[2]} >> 3;
        const uint32_t key = uint32_t{rgb[0]} << 16 | uint32_t{rgb[1]} << 8 | rgb[2];
        auto [at, fresh] = nearest_.try_emplace(key, 0);
        if (fresh) {
            at->second = NearestColorIndex(card_.colors.data(), static_cast<uint32_t>(card_.colors.size()), rgb[0], rgb[1],
                                           rgb[2]);
        }
        return at->second;
    }

private:
    const AnimationCard& card_;
    std::unordered_map<uint32_t, uint32_t> nearest_;
};

// The pixel as a PNG shows it, or the see-through colour where it is transparent.
const uint8_t* ShownRgb(const PngImage& png, size_t i) {
    const uint8_t* p = &png.rgba[i * 4];
    return p[3] < 128 ? kSeeThrough : p;
}

// The frames side by side as a PixPak record at the card's depth, with its colours at 8 bits.
Bytes StripRecord(const std::vector<PngImage>& frames, const AnimationCard& card) {
    const int32_t w = frames[0].width, h = frames[0].height;
    const auto depth = static_cast<int32_t>(card.depth);
    if (static_cast<int64_t>(w) * static_cast<int64_t>(frames.size()) > kDibMaxSide) {
        throw Failure{"frames", "the strip of all frames is wider than 32767 pixels"};
    }
    OffscreenImage image;
    if (NewOffscreenImage(&image, w * static_cast<int32_t>(frames.size()), h, depth) != 0) {
        throw Failure{"frames", "no memory for the strip"};
    }
    PixelMapper map(card);
    {
        MemRefLock lock(image.bitmap);
        uint8_t* dib = lock.data();
        if (depth == 8) {
            uint8_t* table = DibColors(dib);
            for (size_t i = 0; i < card.colors.size() && i < DibColorCount(dib); ++i) {
                table[4 * i] = card.colors[i].blue;
                table[4 * i + 1] = card.colors[i].green;
                table[4 * i + 2] = card.colors[i].red;
            }
        }
        const uint32_t rowBytes = DibImageRowBytes(dib);
        for (size_t f = 0; f < frames.size(); ++f) {
            for (int32_t y = 0; y < h; ++y) {
                uint8_t* row = DibPixels(dib) + rowBytes * static_cast<uint32_t>(h - 1 - y);  // rows bottom-up
                for (int32_t x = 0; x < w; ++x) {
                    const uint32_t v = map(ShownRgb(frames[f], static_cast<size_t>(y) * w + x));
                    const size_t at = f * static_cast<size_t>(w) + static_cast<size_t>(x);
                    if (depth == 8) row[at] = static_cast<uint8_t>(v);
                    if (depth == 16) Write16(row + 2 * at, static_cast<uint16_t>(v));
                    if (depth == 32) Write32(row + 4 * at, v);
                }
            }
        }
    }
    MemRef record = 0;
    uint32_t size = 0;
    const int32_t result = EncodePixPak(image, kPackTypeRows, &record, &size);
    FreeOffscreenImage(&image);
    if (result != 0) throw Failure{"frames", "no memory to pack the strip"};
    Bytes out;
    {
        MemRefLock lock(record);
        out.assign(lock.data(), lock.data() + size);
    }
    FreeMemRef(record);
    return out;
}

Bytes PathBlock(const Json& sprite) {
    if (!sprite.contains("points") || !sprite.at("points").is_array() || sprite.at("points").empty()) {
        throw Failure{"points", "needs a list of [x, y] or [x, y, ms]"};
    }
    const Json& list = sprite.at("points");
    if (list.size() > kMaxPathPoints) throw Failure{"points", "has too many points"};
    Bytes block(kPathPoints + kPathPointSize * list.size(), 0);
    std::memcpy(block.data(), "Path", 4);
    WriteBE32(&block[4], static_cast<uint32_t>(block.size()));
    WriteBE16(&block[8], kSpriteBlockVersion);
    WriteBE32(&block[kPathPointCount], static_cast<uint32_t>(list.size()));
    const uint32_t defaultMs = static_cast<uint32_t>(IntOf(sprite, "pathRate", 100, 1, 60000));
    for (size_t i = 0; i < list.size(); ++i) {
        const Json& p = list[i];
        const std::string key = fmt::format("points[{}]", i);
        const bool fits = p.is_array() && (p.size() == 2 || p.size() == 3) &&
                          std::all_of(p.begin(), p.end(), [](const Json& v) { return v.is_number_integer(); });
        if (!fits) throw Failure{key, "must be [x, y] or [x, y, ms]"};
        for (size_t k = 0; k < 2; ++k) {
            const int64_t v = p[k].get<int64_t>();
            if (v < -32768 || v > 32767) throw Failure{key, fmt::format("{} is out of range (-32768 to 32767)", v)};
            WriteBE16(&block[kPathPoints + kPathPointSize * i + 2 * k], static_cast<uint16_t>(v));
        }
        const int64_t ms = p.size() == 3 ? p[2].get<int64_t>() : defaultMs;
        if (ms < 0 || ms > 600000) throw Failure{key, "its time is 0 to 600000 ms"};
        WriteBE32(&block[kPathPoints + kPathPointSize * i + kPathPointTime], static_cast<uint32_t>(ms));
    }
    return block;
}

Bytes FilmBlock(const std::vector<PngImage>& frames, const AnimationCard& card, const Json& sprite) {
    const Bytes strip = StripRecord(frames, card);
    const auto count = static_cast<uint32_t>(frames.size());
    Bytes film(kFilmBlobs + kFilmFrameRowSize * count, 0);
    std::memcpy(film.data(), "Film", 4);
    WriteBE16(&film[8], kSpriteBlockVersion);
    for (uint32_t i = 0; i < 3; ++i) WriteBE16(&film[kFilmTransparent + 2 * i], static_cast<uint16_t>(kSeeThrough[i] * 0x101));
    WriteBE32(&film[kFilmFrameCount], count);
    WriteBE32(&film[kFilmBlobSizes], static_cast<uint32_t>(strip.size()));
    const int64_t hotX = IntOf(sprite, "hotspotX", 0, -32768, 32767);
    const int64_t hotY = IntOf(sprite, "hotspotY", 0, -32768, 32767);
    const auto w = static_cast<uint32_t>(frames[0].width);
    for (uint32_t i = 0; i < count; ++i) {
        uint8_t* row = &film[kFilmFrameRows + kFilmFrameRowSize * i];
        WriteBE16(row + kFrameRowSourceRect, 0);
        WriteBE16(row + kFrameRowSourceRect + 2, static_cast<uint16_t>(w * i));
        WriteBE16(row + kFrameRowSourceRect + 4, static_cast<uint16_t>(frames[0].height));
        WriteBE16(row + kFrameRowSourceRect + 6, static_cast<uint16_t>(w * (i + 1)));
        WriteBE16(row + kFrameRowHotspot, static_cast<uint16_t>(hotX));
        WriteBE16(row + kFrameRowHotspot + 2, static_cast<uint16_t>(hotY));
    }
    film.insert(film.end(), strip.begin(), strip.end());
    WriteBE32(&film[4], static_cast<uint32_t>(film.size()));
    return film;
}

uint16_t PathModeOf(const Json& sprite) {
    if (!sprite.contains("path")) return 1;
    static const char* const kNames[] = {"still", "forward", "backward", "pingpong", "loop"};
    const Json& v = sprite.at("path");
    for (uint16_t i = 0; i < 5; ++i) {
        if (v.is_string() && v.get<std::string>() == kNames[i]) return i;
    }
    throw Failure{"path", "is one of \"still\", \"forward\", \"backward\", \"pingpong\", \"loop\""};
}

Bytes SpritePayload(const Json& sprite, const std::filesystem::path& baseDir, const AnimationCard& card) {
    if (!sprite.is_object()) throw Failure{"", "must be an object"};
    if (card.depth != 8 && card.depth != 16 && card.depth != 32) {
        throw Failure{"frames", fmt::format("a film takes the stack's depth, which must be 8, 16 or 32, not {}", card.depth)};
    }
    const std::vector<PngImage> frames = LoadFrames(sprite, baseDir);
    const Bytes path = PathBlock(sprite);
    const Bytes film = FilmBlock(frames, card, sprite);
    const auto frameCount = static_cast<uint32_t>(frames.size());
    const auto pointCount = static_cast<uint32_t>(path.size() - kPathPoints) / kPathPointSize;
    const uint16_t pathMode = PathModeOf(sprite);
    const bool backward = pathMode == 2;
    const bool framed = frameCount > 1;
    Bytes out(kSprtFixedSize, 0);
    std::memcpy(out.data(), "Sprt", 4);
    WriteBE16(&out[kSprtVersion], kSpriteBlockVersion);
    std::memcpy(&out[10], "Sprt", 4);
    std::memcpy(&out[18], "????", 4);
    const auto u16 = [&](uint32_t at, int64_t v) { WriteBE16(&out[at], static_cast<uint16_t>(v)); };
    const auto u32 = [&](uint32_t at, int64_t v) { WriteBE32(&out[at], static_cast<uint32_t>(v)); };
    const auto byte = [&](uint32_t at, bool v) { out[at] = v ? 1 : 0; };
    const int64_t loops = IntOf(sprite, "loops", 1, 1, 65535);
    u16(kSprtBehaviour, IntOf(sprite, "behaviour", kBehaviourPick, 0, kBehaviourPick));
    u16(kSprtEndMode, IntOf(sprite, "endMode", pointCount > 1 ? 5 : 4, 0, 5));
    u32(kSprtEndSeconds, IntOf(sprite, "endSeconds", 0, 0, 86400));
    byte(kSprtRestartable, BoolOf(sprite, "restartable", false));
    byte(kSprtShowWithCard, BoolOf(sprite, "showWithCard", false));
    byte(kSprtEndVisible, BoolOf(sprite, "endVisible", true));
    const bool stamps = BoolOf(sprite, "stamps", false);
    const bool over = BoolOf(sprite, "overItems", false);
    for (uint32_t i = 0; i < 3; ++i) {
        byte(kSprtStamps + i, i == 2 ? BoolOf(sprite, "returnStamps", stamps) : stamps);
        byte(kSprtOverItems + i, i == 2 ? BoolOf(sprite, "returnOverItems", over) : over);
    }
    byte(kSprtMirrorAtStart, BoolOf(sprite, "mirror", false));
    byte(kSprtMirrorAtEnd, BoolOf(sprite, "mirror", false));
    u16(kSprtLayerMode, IntOf(sprite, "layerMode", 0, 0, 65535));
    // Frames: forward on a timer when there is more than one, as a film is set up when loaded.
    u16(kSprtFrameTimeMode, framed ? 2 : 0);
    u16(kSprtFrameMode, framed ? 1 : 0);
    u32(kSprtFrameRate, IntOf(sprite, "frameRate", framed ? 41 : 0, 0, 60000));
    u32(kSprtFrameStep, framed ? 1 : 0);
    u32(kSprtFrameLoopLimit, loops);
    u32(kSprtEndFrame, frameCount);
    u32(280, 100);
    const bool moving = pointCount > 1;
    u16(kSprtPathTimeMode, moving ? 2 : 0);
    u16(kSprtPathTimeSource, moving ? 1 : 0);
    u16(kSprtPathMode, moving ? pathMode : 0);
    u32(kSprtPathRate, IntOf(sprite, "pathRate", 100, 1, 60000));
    u32(kSprtSpeedPercent, IntOf(sprite, "speedPercent", 100, 1, 10000));
    u32(kSprtPathStep, moving ? (backward ? -1 : 1) : 0);
    u32(kSprtPathLoopLimit, loops);
    u32(kSprtStartPathIndex, backward ? pointCount - 1 : 0);
    u32(kSprtEndPoint, pointCount);
    u32(kSprtPathSize, path.size());
    u32(kSprtFilmSize, film.size());
    out.insert(out.end(), path.begin(), path.end());
    out.insert(out.end(), film.begin(), film.end());
    if (out.size() % 2) out.push_back(0);
    u32(kSprtSize, out.size());
    return out;
}

// A frame as the working picture holds it: rows of the display length, top-down, pixels as stored.
Bytes WorkingPicture(const PngImage& png, const DeltaHead& head, PixelMapper& map) {
    const uint32_t p = DeltaRowBytes(head);
    Bytes out(static_cast<size_t>(p) * static_cast<uint32_t>(head.height), 0);
    for (int32_t y = 0; y < head.height; ++y) {
        uint8_t* row = &out[static_cast<size_t>(y) * p];
        for (int32_t x = 0; x < head.width; ++x) {
            const uint32_t v = map(ShownRgb(png, static_cast<size_t>(y) * head.width + x));
            if (head.depth == 8) row[x] = static_cast<uint8_t>(v);
            if (head.depth == 16) WriteBE16(row + 2 * x, static_cast<uint16_t>(v));
            if (head.depth == 32) WriteBE32(row + 4 * x, v);
        }
    }
    return out;
}

Bytes FrameDeltaPayload(const Json& animation, const std::filesystem::path& baseDir, const AnimationCard& card) {
    if (!animation.is_object()) throw Failure{"", "must be an object"};
    if (card.depth != 8 && card.depth != 16 && card.depth != 32) {
        throw Failure{"frames", fmt::format("an animation takes the stack's depth, which must be 8, 16 or 32, not {}", card.depth)};
    }
    const std::vector<PngImage> frames = LoadFrames(animation, baseDir);
    if (frames.size() > 65535) throw Failure{"frames", "has more than 65535 frames"};
    DeltaHead head;
    head.width = frames[0].width;
    head.height = frames[0].height;
    head.depth = static_cast<uint16_t>(card.depth);
    head.tickDelay = static_cast<uint16_t>(IntOf(animation, "tickDelay", 6, 0, 65535));
    head.repeats = static_cast<uint16_t>(IntOf(animation, "repeats", 1, 0, 65535));
    if (head.width > 32767 || head.height > 32767) throw Failure{"frames", "a side is over 32767 pixels"};
    PixelMapper map(card);
    std::vector<Bytes> pictures;
    for (const PngImage& png : frames) pictures.push_back(WorkingPicture(png, head, map));
    // Word changes, unless one of them would have to stand at the marker's offset.
    std::vector<Bytes> lists(frames.size());
    bool words = true;
    for (size_t n = 1; n < frames.size() && words; ++n) words = MakeChangeList(pictures[n - 1], pictures[n], head, true, &lists[n]);
    if (!words) {
        for (size_t n = 1; n < frames.size(); ++n) MakeChangeList(pictures[n - 1], pictures[n], head, false, &lists[n]);
    }
    head.flags = words ? kDeltaWordChanges : 0;
    Bytes out(kDeltaHeadSize, 0);
    const uint16_t headWords[] = {static_cast<uint16_t>(head.width), static_cast<uint16_t>(head.height), head.tickDelay,
                                  head.repeats, static_cast<uint16_t>(frames.size()), head.depth, head.flags};
    for (uint32_t i = 0; i < 7; ++i) WriteBE16(&out[2 * i], headWords[i]);
    const uint32_t s = DeltaStoredRowBytes(head), p = DeltaRowBytes(head);
    for (size_t n = 0; n < frames.size(); ++n) {
        Bytes data = lists[n];
        if (n == 0) {
            data.assign(static_cast<size_t>(s) * static_cast<uint32_t>(head.height), 0);
            for (int32_t y = 0; y < head.height; ++y) std::memcpy(&data[y * s], &pictures[0][y * p], std::min(s, p));
        }
        Bytes frame(kDeltaFrameHeadSize, 0);
        WriteBE16(&frame[0], static_cast<uint16_t>(n + 1));
        WriteBE32(&frame[kDeltaFrameSize], static_cast<uint32_t>(kDeltaFrameHeadSize + data.size()));
        out.insert(out.end(), frame.begin(), frame.end());
        out.insert(out.end(), data.begin(), data.end());
    }
    return out;
}

template <typename Make>
bool Run(Make make, std::vector<uint8_t>* payload, AnimationBuildError* error) {
    try {
        *payload = make();
        return true;
    } catch (const Failure& f) {
        *error = {f.key, f.text};
        return false;
    }
}

}  // namespace

bool BuildSpriteFilm(const Json& sprite, const std::filesystem::path& baseDir, const AnimationCard& card,
                     std::vector<uint8_t>* payload, AnimationBuildError* error) {
    return Run([&] { return SpritePayload(sprite, baseDir, card); }, payload, error);
}

bool BuildFrameDelta(const Json& animation, const std::filesystem::path& baseDir, const AnimationCard& card,
                     std::vector<uint8_t>* payload, AnimationBuildError* error) {
    return Run([&] { return FrameDeltaPayload(animation, baseDir, card); }, payload, error);
}
