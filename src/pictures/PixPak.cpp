#include "pictures/PixPak.h"

#include <algorithm>
#include <cstring>

#include "base/ByteOrder.h"
#include "gfx/ColorTable.h"
#include "gfx/DibImage.h"
#include "memory/OwnedMemRef.h"
#include "pictures/PackedPixels.h"
#include "platform/Host.h"

namespace {

constexpr uint8_t kBlackAndWhite[8] = {0, 0, 0, 0, 255, 255, 255, 0};

void SetBlackAndWhite(MemRef dib) {
    MemRefLock lock(dib);
    std::memcpy(DibColors(lock.data()), kBlackAndWhite, sizeof(kBlackAndWhite));
}

bool SameShape(const uint8_t* a, const uint8_t* b) {
    return DibWidth(a) == DibWidth(b) && DibHeight(a) == DibHeight(b) && DibDepth(a) == DibDepth(b) &&
           DibImageBytes(a) == DibImageBytes(b) && DibColorCount(a) == DibColorCount(b);
}

}  // namespace

uint16_t OffscreenDepth(int32_t depth) {
    return depth == 1 || depth == 8 || depth == 16 ? static_cast<uint16_t>(depth) : 32;
}

int32_t NewOffscreenImage(OffscreenImage* image, int32_t width, int32_t height, int32_t depth) {
    *image = OffscreenImage{};
    const uint16_t d = OffscreenDepth(depth);
    image->bitmap = NewDibImage(width, height, d);
    if (!image->bitmap) return -1;
    image->depth = d;
    if (d == 1) SetBlackAndWhite(image->bitmap);
    return 0;
}

void FreeOffscreenImage(OffscreenImage* image) {
    if (image->bitmap) FreeMemRef(image->bitmap);
    if (image->palette && image->ownsPalette) FreeMemRef(image->palette);
    *image = OffscreenImage{};
}

int32_t EncodePixPak(const OffscreenImage& image, uint16_t type, MemRef* record, uint32_t* size) {
    *record = 0;
    *size = 0;
    if (type != kPackTypeRows && type != kPackTypeRuns) return -1;
    int32_t width = 0, height = 0, depth = 0;
    {
        MemRefLock lock(image.bitmap);
        if (!lock || !IsDibLayoutValid(lock.data(), GetMemRefSize(image.bitmap))) return -1;
        width = DibWidth(lock.data());
        height = DibHeight(lock.data());
        depth = DibDepth(lock.data());
    }
    // The bitmap's pixels as a top-down display image, 16 and 32 bits high byte first. A memory
    // bitmap holds indices into its own palette already, so 8 bits need no remapping.
    OwnedMemRef work(CopyBytes(image.bitmap, 0, GetMemRefSize(image.bitmap)));
    if (!work.ref() || FlipDibRows(work.ref()) != 0 || SwapStoredPixelOrder(work.ref()) != 0) return -1;
    OwnedMemRef pixels(type == kPackTypeRows ? EncodeRowPacked(work.ref()) : EncodeRunPacked(work.ref()));
    OwnedMemRef palette(0);
    if (depth == 8) {
        // The palette the image came with, or else the colours of its bitmap.
        PaletteRef colors;
        if (image.palette) {
            MemRefLock p(image.palette);
            colors = PaletteFromColorTable(p.data(), GetMemRefSize(image.palette));
        } else {
            MemRefLock w(work.ref());
            colors = PaletteFromDib(w.data());
        }
        if (!colors) return -1;
        palette.Reset(ColorTableFromPalette(colors.get(), false));
        if (!palette.ref()) return -1;
    }
    if (!pixels.ref()) return -1;
    const uint32_t paletteSize = palette.ref() ? GetMemRefSize(palette.ref()) : 0;
    const uint32_t pixelSize = GetMemRefSize(pixels.ref());
    const uint64_t total = uint64_t{kPixPakHeadSize} + paletteSize + pixelSize;
    if (total > UINT32_MAX / 2) return -1;
    const MemRef out = NewMemRef(static_cast<uint32_t>(total));
    if (!out) return -1;
    MemRefLock o(out);
    uint8_t* h = o.data();
    WriteBE32(h + kPixPakMagic, kPixPakMagicValue);
    WriteBE32(h + kPixPakSize, static_cast<uint32_t>(total));
    WriteBE16(h + kPixPakVersion, kPixPakVersionValue);
    WriteBE16(h + kPixPakWidth, static_cast<uint16_t>(width));
    WriteBE16(h + kPixPakHeight, static_cast<uint16_t>(height));
    WriteBE16(h + kPixPakDepth, static_cast<uint16_t>(depth));
    const auto rowBytes = static_cast<int16_t>(DibRowBytes(depth, width));
    WriteBE32(h + kPixPakRowBytes, static_cast<uint32_t>(int32_t{rowBytes}));
    WriteBE16(h + kPixPakPackType, type);
    WriteBE32(h + kPixPakPaletteSize, paletteSize);
    WriteBE32(h + kPixPakPixelSize, pixelSize);
    if (paletteSize) {
        MemRefLock p(palette.ref());
        std::memcpy(h + kPixPakHeadSize, p.data(), paletteSize);
    }
    MemRefLock px(pixels.ref());
    std::memcpy(h + kPixPakHeadSize + paletteSize, px.data(), pixelSize);
    *record = out;
    *size = static_cast<uint32_t>(total);
    return 0;
}

int32_t DecodePixPak(const uint8_t* data, uint32_t expectedSize, OffscreenImage* image) {
    *image = OffscreenImage{};
    if (expectedSize < kPixPakHeadSize || ReadBE32(data + kPixPakSize) != expectedSize) return kPixPakWrongSize;
    const uint32_t paletteSize = ReadBE32(data + kPixPakPaletteSize);
    if (paletteSize > expectedSize - kPixPakHeadSize) return -1;
    if (NewOffscreenImage(image, ReadBE16(data + kPixPakWidth), ReadBE16(data + kPixPakHeight),
                          ReadBE16(data + kPixPakDepth)) != 0) {
        return -1;
    }
    if (paletteSize) {
        image->palette = NewMemRef(paletteSize);
        if (!image->palette) {
            FreeOffscreenImage(image);
            return -1;
        }
        image->ownsPalette = true;
        MemRefLock p(image->palette);
        std::memcpy(p.data(), data + kPixPakHeadSize, paletteSize);
    }
    image->selected = true;
    const int32_t result = DecodePixPakInto(image, data, expectedSize);
    image->selected = false;
    if (result != 0) {
        FreeOffscreenImage(image);
        return -1;
    }
    return 0;
}

int32_t DecodePixPakInto(OffscreenImage* image, const uint8_t* data, uint32_t size) {
    if (size < kPixPakHeadSize) return -1;
    const uint16_t type = ReadBE16(data + kPixPakPackType);
    if (type != kPackTypeRows && type != kPackTypeRuns) {
        const Host& host = GetHost();
        host.ShowMessageBox("PixPak_Decompress", "Unknown PixPak_Decompress type");
        return -1;
    }
    const uint32_t paletteSize = ReadBE32(data + kPixPakPaletteSize);
    const uint32_t pixelSize = ReadBE32(data + kPixPakPixelSize);
    if (uint64_t{kPixPakHeadSize} + paletteSize + pixelSize > size) return -1;
    const int32_t depth = image->depth ? image->depth : OffscreenDepth(ReadBE16(data + kPixPakDepth));
    const MemRef dib = NewDibImage(ReadBE16(data + kPixPakWidth), ReadBE16(data + kPixPakHeight), depth);
    if (!dib) return -1;
    if (depth == 1) {
        SetBlackAndWhite(dib);
    } else if (depth < 9) {
        MemRefLock d(dib);
        if (image->palette) {
            MemRefLock p(image->palette);
            ColorTableToDib(p.data(), GetMemRefSize(image->palette), d.data());
        } else if (image->bitmap) {
            MemRefLock b(image->bitmap);
            if (b && SameShape(b.data(), d.data())) {
                std::memcpy(DibColors(d.data()), DibColors(b.data()), DibColorCount(d.data()) * kDibColorSize);
            }
        }
    }
    const uint8_t* pixels = data + kPixPakHeadSize + paletteSize;
    const int32_t decoded = type == kPackTypeRows ? DecodeRowPacked(dib, pixels, pixelSize)
                                                  : DecodeRunPacked(dib, pixels, pixelSize);
    if (decoded != 0 || FlipDibRows(dib) != 0 || SwapStoredPixelOrder(dib) != 0) {
        FreeMemRef(dib);
        return -1;
    }
    // Into the image's own bitmap when it has the shape, else the new one takes its place.
    bool copied = false;
    if (image->bitmap) {
        MemRefLock b(image->bitmap), d(dib);
        if (b && SameShape(b.data(), d.data()) && GetMemRefSize(image->bitmap) == GetMemRefSize(dib)) {
            std::memcpy(b.data(), d.data(), GetMemRefSize(dib));
            copied = true;
        }
    }
    if (copied) {
        FreeMemRef(dib);
        return 0;
    }
    if (image->bitmap) FreeMemRef(image->bitmap);
    image->bitmap = dib;
    image->depth = static_cast<uint16_t>(depth);
    return 0;
}
