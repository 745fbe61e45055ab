#include "PngFile.h"

#include <png.h>

#include <cstring>

#include "platform/HostFile.h"

namespace {

constexpr uint32_t kMaxSide = 32767;

// What a read needs beyond the libpng structures, owned outside the function that holds the jump
// point, so that a jump out of libpng skips no destructor. The file is read whole through the file
// layer first, so that its faults reach the pictures too.
struct ReadJob {
    PngImage* image = nullptr;
    std::vector<png_bytep> rows;
    std::string message;
    std::string bytes;
    size_t at = 0;
};

void ReadFromJob(png_structp png, png_bytep out, size_t count) {
    auto* job = static_cast<ReadJob*>(png_get_io_ptr(png));
    if (count > job->bytes.size() - job->at) png_error(png, "the file ends too soon");
    std::memcpy(out, job->bytes.data() + job->at, count);
    job->at += count;
}

// Writes what libpng made in memory through the file layer.
bool WriteEncoded(const std::string& path, png_image* image, const void* pixels, const void* colormap) {
    size_t size = 0;
    if (!png_image_write_get_memory_size(*image, size, 0, pixels, 0, colormap)) return false;
    std::vector<uint8_t> encoded(size);
    if (!png_image_write_to_memory(image, encoded.data(), &size, 0, pixels, 0, colormap)) return false;
    return WriteWholeHostFile(path, encoded.data(), size) == 0;
}

void OnError(png_structp png, png_const_charp message) {
    static_cast<ReadJob*>(png_get_error_ptr(png))->message = message;
    png_longjmp(png, 1);
}

void OnWarning(png_structp, png_const_charp) {}

// Reads the whole picture; libpng's errors come back here through the jump.
bool ReadInto(png_structp png, png_infop info, ReadJob* job) {
    if (setjmp(png_jmpbuf(png))) return false;
    png_set_read_fn(png, job, ReadFromJob);
    png_read_info(png, info);
    const png_uint_32 width = png_get_image_width(png, info);
    const png_uint_32 height = png_get_image_height(png, info);
    if (width == 0 || height == 0 || width > kMaxSide || height > kMaxSide) {
        job->message = "a side is 0 or over 32767 pixels";
        return false;
    }
    const int colorType = png_get_color_type(png, info);
    const bool indexed = colorType == PNG_COLOR_TYPE_PALETTE;
    PngImage* image = job->image;
    image->width = static_cast<int32_t>(width);
    image->height = static_cast<int32_t>(height);
    if (indexed) {
        png_colorp colors = nullptr;
        int count = 0;
        png_get_PLTE(png, info, &colors, &count);
        for (int i = 0; i < count; ++i) image->palette.push_back({colors[i].red, colors[i].green, colors[i].blue});
        png_set_packing(png);  // one byte an index, whatever the bit depth
    } else {
        png_set_expand(png);
        png_set_strip_16(png);
        png_set_gray_to_rgb(png);
        png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
    }
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    const size_t rowBytes = png_get_rowbytes(png, info);
    if (rowBytes != size_t{width} * (indexed ? 1 : 4)) {
        job->message = "an unexpected row layout";
        return false;
    }
    std::vector<uint8_t>& pixels = indexed ? image->indices : image->rgba;
    pixels.resize(rowBytes * height);
    job->rows.resize(height);
    for (png_uint_32 y = 0; y < height; ++y) job->rows[y] = pixels.data() + rowBytes * y;
    png_read_image(png, job->rows.data());
    png_read_end(png, nullptr);
    return true;
}

}  // namespace

bool ReadPng(const std::string& path, PngImage* image, std::string* error) {
    *image = PngImage{};
    ReadJob job;
    job.image = image;
    if (ReadWholeHostFile(path, &job.bytes) != 0) {
        *error = "cannot open \"" + path + "\"";
        return false;
    }
    if (job.bytes.size() < 8 || png_sig_cmp(reinterpret_cast<png_const_bytep>(job.bytes.data()), 0, 8) != 0) {
        *error = "\"" + path + "\" is not a PNG file";
        return false;
    }
    job.at = 8;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &job, OnError, OnWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        *error = "no memory to read \"" + path + "\"";
        return false;
    }
    png_set_sig_bytes(png, 8);
    const bool read = ReadInto(png, info, &job);
    png_destroy_read_struct(&png, &info, nullptr);
    if (!read) {
        *error = "\"" + path + "\": " + job.message;
        *image = PngImage{};
        return false;
    }
    if (!image->indices.empty()) {
        // The colours of an indexed file as well, for those who want them; an index beyond the
        // file's palette shows black.
        image->rgba.resize(image->indices.size() * 4);
        for (size_t i = 0; i < image->indices.size(); ++i) {
            const uint8_t index = image->indices[i];
            const std::array<uint8_t, 3> c = index < image->palette.size() ? image->palette[index] : std::array<uint8_t, 3>{};
            std::memcpy(&image->rgba[i * 4], c.data(), 3);
            image->rgba[i * 4 + 3] = 0xFF;
        }
    }
    return true;
}

bool WritePng(const std::string& path, int32_t width, int32_t height, const std::vector<uint8_t>& rgba) {
    if (width <= 0 || height <= 0 || rgba.size() < size_t(width) * size_t(height) * 4) return false;
    png_image image;
    std::memset(&image, 0, sizeof(image));
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGBA;
    const bool written = WriteEncoded(path, &image, rgba.data(), nullptr);
    png_image_free(&image);
    return written;
}

bool WriteIndexedPng(const std::string& path, int32_t width, int32_t height, const std::vector<uint8_t>& indices,
                     const std::vector<std::array<uint8_t, 3>>& palette) {
    if (width <= 0 || height <= 0 || indices.size() < size_t(width) * size_t(height) || palette.empty() ||
        palette.size() > 256) {
        return false;
    }
    std::vector<uint8_t> colormap;
    for (const std::array<uint8_t, 3>& c : palette) colormap.insert(colormap.end(), c.begin(), c.end());
    png_image image;
    std::memset(&image, 0, sizeof(image));
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB_COLORMAP;
    image.colormap_entries = static_cast<png_uint_32>(palette.size());
    const bool written = WriteEncoded(path, &image, indices.data(), colormap.data());
    png_image_free(&image);
    return written;
}
