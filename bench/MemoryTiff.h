// TIFF files in memory through libtiff, for PackBits as a reference codec: one strip holding a
// whole picture of 8-bit samples, written and read through TIFFClientOpen. Native builds only.
#pragma once

#include <tiffio.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

class MemoryTiff {
public:
    // A picture of `width` pixels of `samples` 8-bit samples by `height` rows.
    MemoryTiff(uint32_t width, uint32_t height, uint16_t samples) : width_(width), height_(height), samples_(samples) {}
    ~MemoryTiff() { Close(); }
    MemoryTiff(const MemoryTiff&) = delete;
    MemoryTiff& operator=(const MemoryTiff&) = delete;

    uint32_t StripBytes() const { return width_ * height_ * samples_; }

    // Writes the picture: `pixels` packed by libtiff's PackBits, or `raw` already packed.
    bool WritePackBits(const uint8_t* pixels) { return Write(pixels, nullptr, 0); }
    bool WriteRawPackBits(const uint8_t* raw, uint32_t length) { return Write(nullptr, raw, length); }

    // Opens the file for reading; the strip stays mapped, so a decode copies nothing first.
    bool OpenForReading() {
        Close();
        position_ = 0;
        tiff_ = TIFFClientOpen("memory", "r", this, Read, WriteProc, Seek, CloseProc, Size, Map, Unmap);
        return tiff_ != nullptr;
    }
    // The decoded strip, StripBytes() long; false on any error.
    bool DecodeStrip(uint8_t* out) {
        return tiff_ && TIFFReadEncodedStrip(tiff_, 0, out, static_cast<tmsize_t>(StripBytes())) == static_cast<tmsize_t>(StripBytes());
    }
    // The strip as libtiff's PackBits left it.
    std::vector<uint8_t> RawStrip() {
        std::vector<uint8_t> raw;
        if (!tiff_) return raw;
        uint64_t* counts = nullptr;
        if (!TIFFGetField(tiff_, TIFFTAG_STRIPBYTECOUNTS, &counts) || !counts) return raw;
        raw.resize(static_cast<size_t>(counts[0]));
        if (TIFFReadRawStrip(tiff_, 0, raw.data(), static_cast<tmsize_t>(raw.size())) != static_cast<tmsize_t>(raw.size())) raw.clear();
        return raw;
    }
    const std::vector<uint8_t>& file() const { return file_; }

private:
    bool Write(const uint8_t* pixels, const uint8_t* raw, uint32_t length) {
        Close();
        file_.clear();
        position_ = 0;
        TIFF* t = TIFFClientOpen("memory", "w", this, Read, WriteProc, Seek, CloseProc, Size, Map, Unmap);
        if (!t) return false;
        TIFFSetField(t, TIFFTAG_IMAGEWIDTH, width_);
        TIFFSetField(t, TIFFTAG_IMAGELENGTH, height_);
        TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, samples_);
        TIFFSetField(t, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(t, TIFFTAG_PHOTOMETRIC, samples_ >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
        if (samples_ == 2 || samples_ == 4) {
            const uint16_t extra[] = {EXTRASAMPLE_UNSPECIFIED};
            TIFFSetField(t, TIFFTAG_EXTRASAMPLES, 1, extra);
        }
        TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, height_);
        TIFFSetField(t, TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS);
        const bool ok = raw ? TIFFWriteRawStrip(t, 0, const_cast<uint8_t*>(raw), length) == static_cast<tmsize_t>(length)
                            : TIFFWriteEncodedStrip(t, 0, const_cast<uint8_t*>(pixels), static_cast<tmsize_t>(StripBytes())) >= 0;
        TIFFClose(t);
        return ok;
    }
    void Close() {
        if (tiff_) TIFFClose(tiff_);
        tiff_ = nullptr;
    }

    static MemoryTiff* Self(thandle_t h) { return static_cast<MemoryTiff*>(h); }
    static tmsize_t Read(thandle_t h, void* buffer, tmsize_t size) {
        MemoryTiff* m = Self(h);
        const size_t n = std::min(static_cast<size_t>(size), m->file_.size() - std::min(m->file_.size(), m->position_));
        if (n) std::memcpy(buffer, m->file_.data() + m->position_, n);
        m->position_ += n;
        return static_cast<tmsize_t>(n);
    }
    static tmsize_t WriteProc(thandle_t h, void* buffer, tmsize_t size) {
        MemoryTiff* m = Self(h);
        const size_t n = static_cast<size_t>(size);
        if (m->position_ + n > m->file_.size()) m->file_.resize(m->position_ + n);
        std::memcpy(m->file_.data() + m->position_, buffer, n);
        m->position_ += n;
        return size;
    }
    static toff_t Seek(thandle_t h, toff_t offset, int whence) {
        MemoryTiff* m = Self(h);
        const size_t base = whence == SEEK_CUR ? m->position_ : whence == SEEK_END ? m->file_.size() : 0;
        m->position_ = base + static_cast<size_t>(offset);
        return m->position_;
    }
    static int CloseProc(thandle_t) { return 0; }
    static toff_t Size(thandle_t h) { return Self(h)->file_.size(); }
    static int Map(thandle_t h, void** base, toff_t* size) {
        *base = Self(h)->file_.data();
        *size = Self(h)->file_.size();
        return 1;
    }
    static void Unmap(thandle_t, void*, toff_t) {}

    uint32_t width_, height_;
    uint16_t samples_;
    std::vector<uint8_t> file_;
    size_t position_ = 0;
    TIFF* tiff_ = nullptr;
};
