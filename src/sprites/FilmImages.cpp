// A film's pictures, made ready once when its actor starts: the strip decoded by the picture
// codec, each frame cut out of it at the display's colours, with a mask from the film's mask
// picture or, without one, from its transparent colour. A film stored a frame at a time has a
// picture of its own for each frame, decoded in turn, and is cut and masked the same way.
#include "gfx/Blit.h"
#include "memory/OwnedMemRef.h"
#include "pictures/PixPak.h"
#include "sprites/Stage.h"

namespace {

inline constexpr uint64_t kMaxFilmPixels = uint64_t{1} << 24;

// A stored picture as a surface; false for one the codec refuses.
bool DecodePicture(const uint8_t* data, uint32_t size, Surface* out) {
    if (size < kPixPakHeadSize) return false;
    OffscreenImage image;
    if (DecodePixPak(data, size, &image) != 0) return false;
    {
        MemRefLock lock(image.bitmap);
        if (lock) *out = SurfaceFromDib(lock.data(), nullptr);
    }
    FreeOffscreenImage(&image);
    return out->width > 0;
}

bool DecodeBlob(const std::vector<uint8_t>& blob, Surface* out) {
    return DecodePicture(blob.data(), static_cast<uint32_t>(blob.size()), out);
}

// The picture frame `index` of a per-frame film is cut from: frame 0's is the first blob, a later
// frame's lies where its row says within the raw frame data. False for a row that points outside.
bool DecodeFramePicture(const SpriteFilm& film, size_t index, Surface* out) {
    if (index == 0) return DecodeBlob(film.strip, out);
    const FilmFrame& f = film.frames[index];
    const auto room = static_cast<uint32_t>(film.mask.size());
    if (f.dataPosition > room || f.dataSize > room - f.dataPosition) return false;
    return DecodePicture(film.mask.data() + f.dataPosition, f.dataSize, out);
}

Surface CutOut(const Surface& strip, const Rect& r) {
    Surface frame(r.Width(), r.Height());
    CopyRect(frame, frame.Bounds(), 0, 0, strip, r);
    return frame;
}

// The frame's pixels that are not the transparent colour.
BitMask OpaqueMask(const Surface& frame, uint32_t transparent) {
    BitMask mask(frame.width, frame.height);
    for (int32_t y = 0; y < frame.height; ++y) {
        for (int32_t x = 0; x < frame.width; ++x) mask.Set(x, y, frame.Row(y)[x] != transparent);
    }
    return mask;
}

Surface Flipped(const Surface& s, bool horizontal, bool vertical) {
    Surface out(s.width, s.height);
    for (int32_t y = 0; y < s.height; ++y) {
        const uint32_t* from = s.Row(vertical ? s.height - 1 - y : y);
        uint32_t* to = out.Row(y);
        for (int32_t x = 0; x < s.width; ++x) to[x] = from[horizontal ? s.width - 1 - x : x];
    }
    return out;
}

BitMask FlippedMask(const BitMask& m, bool horizontal, bool vertical) {
    BitMask out(m.width, m.height);
    for (int32_t y = 0; y < m.height; ++y) {
        for (int32_t x = 0; x < m.width; ++x) {
            out.Set(x, y, m.Get(horizontal ? m.width - 1 - x : x, vertical ? m.height - 1 - y : y));
        }
    }
    return out;
}

}  // namespace

int32_t MakeFilmImages(const SpriteFilm& film, FilmImages* images) {
    *images = FilmImages{};
    if (film.kind > kFilmKindPerFrame || film.frames.empty()) return kSpriteDamaged;
    const bool perFrame = film.kind == kFilmKindPerFrame;
    Surface strip;
    if (!perFrame && !DecodeBlob(film.strip, &strip)) return kSpriteDamaged;
    // A per-frame film's second blob is frame data, not a mask.
    Surface maskPicture;
    const bool hasMask = !perFrame && DecodeBlob(film.mask, &maskPicture) && maskPicture.width == strip.width &&
                         maskPicture.height == strip.height;
    const uint32_t transparent =
        Rgb(static_cast<uint8_t>(film.transparent[0] >> 8), static_cast<uint8_t>(film.transparent[1] >> 8),
            static_cast<uint8_t>(film.transparent[2] >> 8));
    // Frames may share the strip's pixels, but their cut-outs together stay within a plausible film;
    // a per-frame film counts each picture it decodes, so rows sharing one large picture are bounded.
    uint64_t pixels = 0;
    const auto withinBudget = [&pixels](const Rect& r) {
        pixels += static_cast<uint64_t>(r.Width()) * static_cast<uint64_t>(r.Height());
        return pixels <= kMaxFilmPixels;
    };
    for (size_t i = 0; i < film.frames.size(); ++i) {
        if (perFrame && (!DecodeFramePicture(film, i, &strip) || !withinBudget(strip.Bounds()))) {
            return kSpriteDamaged;
        }
        const Rect& source = film.frames[i].sourceRect;
        const Rect r = IntersectRect(source, strip.Bounds());
        if (r.IsEmpty() || r != source || !withinBudget(r)) return kSpriteDamaged;
        images->frames.push_back(CutOut(strip, r));
        // A mask picture is black where the film shows.
        images->masks.push_back(hasMask ? OpaqueMask(CutOut(maskPicture, r), kWhite)
                                        : OpaqueMask(images->frames.back(), transparent));
    }
    return 0;
}

int32_t PrepareMirrorImages(const SpriteFilm& film, FilmImages& images, bool horizontal, bool vertical) {
    images.mirrorReady = false;
    images.mirrored.clear();
    images.mirroredMasks.clear();
    // Only a film of kind 0 mirrors; any other that asks for it is not started.
    if (film.kind != 0) return 1;
    for (size_t i = 0; i < images.frames.size(); ++i) {
        images.mirrored.push_back(Flipped(images.frames[i], horizontal, vertical));
        images.mirroredMasks.push_back(FlippedMask(images.masks[i], horizontal, vertical));
    }
    images.mirrorReady = true;
    images.showingMirrored = false;
    return 0;
}

void ToggleMirror(FilmImages& images) {
    if (!images.mirrorReady) return;
    images.frames.swap(images.mirrored);
    images.masks.swap(images.mirroredMasks);
    images.showingMirrored = !images.showingMirrored;
}
