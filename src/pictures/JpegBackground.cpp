#include "pictures/JpegBackground.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

// jpeglib.h needs FILE and size_t declared before it.
#include <jerror.h>
#include <jpeglib.h>

#include "base/ByteOrder.h"
#include "gfx/DibImage.h"
#include "memory/OwnedMemRef.h"
#include "pictures/Background.h"
#include "stack/CardRecord.h"

namespace {

// libjpeg reports an error by calling error_exit, which must not return; ours jumps back to the
// call that armed `jump`. Nothing between that call and libjpeg owns memory, so the jump leaves
// only the codec object behind, which the caller destroys on every path.
struct JpegErrors {
    jpeg_error_mgr mgr;  // first, so that the library's pointer is also ours
    std::jmp_buf jump;
};

[[noreturn]] void JumpOut(j_common_ptr info) { std::longjmp(reinterpret_cast<JpegErrors*>(info->err)->jump, 1); }

// Warnings that leave the picture whole: stray bytes between markers and unusual marker contents.
bool IsHarmlessWarning(int code) {
    return code == JWRN_EXTRANEOUS_DATA || code == JWRN_JFIF_MAJOR || code == JWRN_ADOBE_XFORM ||
           code == JWRN_BOGUS_ICC;
}

// A warning about the data (a bad code, a stream cut short) means parts of the picture would be
// invented: a clear failure serves the card better than a smeared picture.
void StopOnDamage(j_common_ptr info, int level) {
    if (level < 0 && !IsHarmlessWarning(info->err->msg_code)) JumpOut(info);
}

void Quiet(j_common_ptr) {}

jpeg_error_mgr* ArmErrors(JpegErrors* errors) {
    jpeg_std_error(&errors->mgr);
    errors->mgr.error_exit = JumpOut;
    errors->mgr.emit_message = StopOnDamage;
    errors->mgr.output_message = Quiet;
    return &errors->mgr;
}

// What a decode writes into: a locked display image and a row of RGB samples.
struct DecodeTarget {
    uint8_t* pixels;
    uint8_t* colors;
    uint32_t rowBytes;
    int32_t width, height, depth;
    bool flip;
    uint8_t* rgb;  // width * 3
};

// One row of RGB samples as display pixels; 16 and 32 bits in working order (a native word).
void PutRgbRow(uint8_t* to, const uint8_t* rgb, int32_t width, int32_t depth) {
    for (int32_t x = 0; x < width; ++x, rgb += 3) {
        const uint32_t r = rgb[0], g = rgb[1], b = rgb[2];
        if (depth == 32) {
            Write32(to + 4 * x, r << 16 | g << 8 | b);
        } else if (depth == 24) {
            to[3 * x] = static_cast<uint8_t>(b);
            to[3 * x + 1] = static_cast<uint8_t>(g);
            to[3 * x + 2] = static_cast<uint8_t>(r);
        } else {
            Write16(to + 2 * x, static_cast<uint16_t>((r >> 3) << 10 | (g >> 3) << 5 | b >> 3));
        }
    }
}

bool RunDecoder(jpeg_decompress_struct* info, JpegErrors* errors, const uint8_t* data, uint32_t length,
                const DecodeTarget& t) {
    if (setjmp(errors->jump)) return false;
    jpeg_create_decompress(info);
    jpeg_mem_src(info, data, length);
    if (jpeg_read_header(info, TRUE) != JPEG_HEADER_OK) return false;
    if (info->image_width != static_cast<JDIMENSION>(t.width) || info->image_height != static_cast<JDIMENSION>(t.height)) {
        return false;
    }
    info->out_color_space = JCS_RGB;
    if (t.depth == 8) {
        // Two passes pick the 256 colours that suit the picture best, as a conversion to a
        // palette does; the card's own palette is matched to it afterwards by whoever needs it.
        info->quantize_colors = TRUE;
        info->desired_number_of_colors = 256;
        info->two_pass_quantize = TRUE;
        info->dither_mode = JDITHER_FS;
    }
    jpeg_start_decompress(info);
    if (t.depth == 8) {
        if (info->output_components != 1 || info->actual_number_of_colors > 256) return false;
        for (int i = 0; i < info->actual_number_of_colors; ++i) {
            uint8_t* c = t.colors + kDibColorSize * static_cast<uint32_t>(i);
            c[0] = info->colormap[2][i];
            c[1] = info->colormap[1][i];
            c[2] = info->colormap[0][i];
            c[3] = 0;
        }
    } else if (info->output_components != 3) {
        return false;
    }
    while (info->output_scanline < info->output_height) {
        const int32_t y = static_cast<int32_t>(info->output_scanline);
        uint8_t* row = t.pixels + t.rowBytes * static_cast<uint32_t>(t.flip ? t.height - 1 - y : y);
        JSAMPROW rows[1] = {t.depth == 8 ? row : t.rgb};
        if (jpeg_read_scanlines(info, rows, 1) != 1) return false;
        if (t.depth != 8) PutRgbRow(row, t.rgb, t.width, t.depth);
    }
    jpeg_finish_decompress(info);
    return true;
}

// A destination that grows a malloc'd buffer; the caller frees `buffer` whatever happened.
struct GrowingDestination {
    jpeg_destination_mgr mgr;  // first, as libjpeg sees it
    uint8_t* buffer;
    size_t capacity;
    size_t used;
};

constexpr size_t kFirstOutputBytes = 64 * 1024;

void StartOutput(j_compress_ptr info) {
    auto* d = reinterpret_cast<GrowingDestination*>(info->dest);
    d->buffer = static_cast<uint8_t*>(std::malloc(kFirstOutputBytes));
    if (!d->buffer) ERREXIT1(info, JERR_OUT_OF_MEMORY, 0);
    d->capacity = kFirstOutputBytes;
    d->mgr.next_output_byte = d->buffer;
    d->mgr.free_in_buffer = d->capacity;
}

boolean GrowOutput(j_compress_ptr info) {
    auto* d = reinterpret_cast<GrowingDestination*>(info->dest);
    // libjpeg calls this with the whole buffer used, whatever free_in_buffer says.
    const size_t grown = d->capacity * 2;
    auto* more = static_cast<uint8_t*>(std::realloc(d->buffer, grown));
    if (!more) ERREXIT1(info, JERR_OUT_OF_MEMORY, 1);
    d->buffer = more;
    d->mgr.next_output_byte = more + d->capacity;
    d->mgr.free_in_buffer = grown - d->capacity;
    d->capacity = grown;
    return TRUE;
}

void EndOutput(j_compress_ptr info) {
    auto* d = reinterpret_cast<GrowingDestination*>(info->dest);
    d->used = d->capacity - d->mgr.free_in_buffer;
}

// What an encode reads from: a locked display image, and a row of RGB samples.
struct EncodeSource {
    const uint8_t* pixels;
    const uint8_t* colors;
    uint32_t colorCount;
    uint32_t rowBytes;
    int32_t width, height, depth;
    uint8_t* rgb;  // width * 3
};

// One display row as RGB samples; indexed pixels through the colour table, an index beyond it black.
void GetRgbRow(const EncodeSource& s, const uint8_t* from, uint8_t* rgb) {
    for (int32_t x = 0; x < s.width; ++x, rgb += 3) {
        uint32_t r = 0, g = 0, b = 0;
        if (s.depth >= 16) {
            if (s.depth == 32) {
                const uint32_t v = Read32(from + 4 * x);
                r = v >> 16 & 0xFF, g = v >> 8 & 0xFF, b = v & 0xFF;
            } else if (s.depth == 24) {
                b = from[3 * x], g = from[3 * x + 1], r = from[3 * x + 2];
            } else {
                const uint32_t v = Read16(from + 2 * x);
                // Five bits to eight: the top bits repeat below, so 31 becomes 255.
                r = v >> 10 & 31, g = v >> 5 & 31, b = v & 31;
                r = r << 3 | r >> 2, g = g << 3 | g >> 2, b = b << 3 | b >> 2;
            }
        } else {
            uint32_t index = 0;
            if (s.depth == 8) index = from[x];
            if (s.depth == 4) index = from[x / 2] >> (x % 2 ? 0 : 4) & 15;
            if (s.depth == 1) index = from[x / 8] >> (7 - x % 8) & 1;
            if (index < s.colorCount) {
                const uint8_t* c = s.colors + kDibColorSize * index;
                b = c[0], g = c[1], r = c[2];
            }
        }
        rgb[0] = static_cast<uint8_t>(r);
        rgb[1] = static_cast<uint8_t>(g);
        rgb[2] = static_cast<uint8_t>(b);
    }
}

bool RunEncoder(jpeg_compress_struct* info, JpegErrors* errors, GrowingDestination* destination,
                const EncodeSource& s, int32_t quality) {
    if (setjmp(errors->jump)) return false;
    jpeg_create_compress(info);
    destination->mgr.init_destination = StartOutput;
    destination->mgr.empty_output_buffer = GrowOutput;
    destination->mgr.term_destination = EndOutput;
    info->dest = &destination->mgr;
    info->image_width = static_cast<JDIMENSION>(s.width);
    info->image_height = static_cast<JDIMENSION>(s.height);
    info->input_components = 3;
    info->in_color_space = JCS_RGB;
    jpeg_set_defaults(info);
    jpeg_set_quality(info, quality, TRUE);
    jpeg_start_compress(info, TRUE);
    while (info->next_scanline < info->image_height) {
        // Display rows run bottom-up; the stream runs top-down.
        const uint32_t y = static_cast<uint32_t>(s.height - 1) - info->next_scanline;
        GetRgbRow(s, s.pixels + s.rowBytes * y, s.rgb);
        JSAMPROW rows[1] = {s.rgb};
        jpeg_write_scanlines(info, rows, 1);
    }
    jpeg_finish_compress(info);
    return true;
}

}  // namespace

int32_t DecodeJpegStream(const uint8_t* data, uint32_t length, int32_t width, int32_t height, int32_t depth,
                         bool flip, MemRef* image) {
    *image = 0;
    if (depth != 8 && depth != 16 && depth != 24 && depth != 32) return kJpegUnsupported;
    if (width <= 0 || height <= 0 || width > kDibMaxSide || height > kDibMaxSide) return kBackgroundDamaged;
    OwnedMemRef dib(NewDibImage(width, height, depth));
    if (!dib.ref()) return kBackgroundNoMemory;
    std::vector<uint8_t> rgb(static_cast<size_t>(width) * 3);
    bool decoded = false;
    {
        MemRefLock lock(dib.ref());
        const DecodeTarget target{DibPixels(lock.data()), DibColors(lock.data()), DibImageRowBytes(lock.data()),
                                  width, height, depth, flip, rgb.data()};
        jpeg_decompress_struct info{};
        JpegErrors errors;
        info.err = ArmErrors(&errors);
        decoded = RunDecoder(&info, &errors, data, length, target);
        jpeg_destroy_decompress(&info);
    }
    if (!decoded) return kBackgroundDamaged;
    *image = dib.Release();
    return 0;
}

int32_t DecodeJpegBackground(MemRef card, MemRef* image, int32_t depth, bool flip) {
    *image = 0;
    {
        MemRefLock lock(card);
        if (!lock || GetMemRefSize(card) < kCardHeadSize) return kBackgroundNone;
        if (ReadS16(lock.data() + kCardKind) == kCardKindBlank) return kBackgroundNone;
    }
    const MemRef owner = GetPictureOwner(card);
    if (!owner) return kBackgroundNone;
    uint32_t offset = 0, length = 0;
    if (const int32_t result = FindJpegStream(owner, &offset, &length); result != 0) return result;
    MemRefLock lock(owner);
    if (!lock) return kBackgroundNone;
    const int32_t width = ReadS16(lock.data() + kCardWidth), height = ReadS16(lock.data() + kCardHeight);
    return DecodeJpegStream(lock.data() + offset, length, width, height, depth, flip, image);
}

MemRef EncodeJpegBackground(MemRef image, int32_t quality) {
    if (quality < 1 || quality > 100) return 0;
    MemRefLock lock(image);
    if (!lock || !IsDibLayoutValid(lock.data(), GetMemRefSize(image))) return 0;
    const uint8_t* dib = lock.data();
    const int32_t width = DibWidth(dib), height = DibHeight(dib), depth = DibDepth(dib);
    if (width <= 0 || height <= 0) return 0;
    // Rows are read at the display layout's length; an image laid out otherwise is not one.
    if (uint64_t{DibRowBytes(depth, width)} * static_cast<uint32_t>(height) > DibImageBytes(dib)) return 0;
    std::vector<uint8_t> rgb(static_cast<size_t>(width) * 3);
    const EncodeSource source{DibPixels(dib), DibColors(dib), DibColorCount(dib), DibImageRowBytes(dib),
                              width, height, depth, rgb.data()};
    GrowingDestination destination{};
    jpeg_compress_struct info{};
    JpegErrors errors;
    info.err = ArmErrors(&errors);
    const bool encoded = RunEncoder(&info, &errors, &destination, source, quality);
    jpeg_destroy_compress(&info);

    MemRef out = 0;
    if (encoded && destination.used <= UINT32_MAX / 4) {
        out = NewMemRef(kImageDescriptionSize + static_cast<uint32_t>(destination.used));
        if (out) {
            MemRefLock o(out);
            WriteImageDescription(o.data(), width, height, depth);
            std::memcpy(o.data() + kImageDescriptionSize, destination.buffer, destination.used);
        }
    }
    std::free(destination.buffer);
    return out;
}
