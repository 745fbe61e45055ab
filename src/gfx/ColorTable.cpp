#include "gfx/ColorTable.h"

#include <algorithm>

#include "base/ByteOrder.h"
#include "gfx/DibImage.h"
#include "platform/Host.h"
#include "stack/Document.h"

namespace {

// Entries below this are the system's static colours, which a palette may share with it.
constexpr uint32_t kFirstNoCollapse = 10;

}  // namespace

uint32_t ColorTableEntryCount(const uint8_t* table, uint32_t size) {
    if (!table || size < kColorTableHeadSize) return 0;
    const uint32_t stated = uint32_t{ReadBE16(table + kColorTableCountField)} + 1;
    return std::min(stated, (size - kColorTableHeadSize) / kColorTableEntrySize);
}

uint32_t ReadColorTable(const uint8_t* table, uint32_t size, PaletteEntry* entries, uint32_t maxCount) {
    const uint32_t count = std::min(ColorTableEntryCount(table, size), maxCount);
    for (uint32_t i = 0; i < count; ++i) {
        const uint8_t* e = table + kColorTableHeadSize + i * kColorTableEntrySize;
        entries[i] = {e[kColorEntryRed], e[kColorEntryGreen], e[kColorEntryBlue], 0};
    }
    return count;
}

void WriteColorTable(uint8_t* out, const PaletteEntry* entries, uint32_t count, uint32_t seed) {
    WriteBE32(out + kColorTableSeed, seed);
    WriteBE16(out + kColorTableFlags, 0);
    WriteBE16(out + kColorTableCountField, static_cast<uint16_t>(count - 1));
    for (uint32_t i = 0; i < count; ++i) {
        uint8_t* e = out + kColorTableHeadSize + i * kColorTableEntrySize;
        WriteBE16(e + kColorEntryIndex, static_cast<uint16_t>(i));
        WriteBE16(e + kColorEntryRed, static_cast<uint16_t>(entries[i].red << 8));
        WriteBE16(e + kColorEntryGreen, static_cast<uint16_t>(entries[i].green << 8));
        WriteBE16(e + kColorEntryBlue, static_cast<uint16_t>(entries[i].blue << 8));
    }
}

PaletteRef PaletteFromColorTable(const uint8_t* table, uint32_t size) {
    const uint32_t count = std::min(ColorTableEntryCount(table, size), kPaletteSize);
    if (count == 0) return nullptr;
    PaletteRef palette = NewPalette(count);
    if (!palette) return palette;
    ReadColorTable(table, size, palette->entries, count);
    for (uint32_t i = kFirstNoCollapse; i < count; ++i) palette->entries[i].flags = kPaletteNoCollapse;
    AdjustPaletteForDisplay(count, palette->entries);
    return palette;
}

MemRef ColorTableFromPalette(const Palette* palette, bool mapped) {
    PaletteEntry source[kPaletteSize] = {};
    if (palette) {
        std::copy(palette->entries, palette->entries + palette->count, source);
    } else if (DisplayDepth() <= 8) {
        GetSystemPaletteEntries(source);
    } else if (const Palette* current = GetPaletteState().current.get()) {
        std::copy(current->entries, current->entries + current->count, source);
    }
    const uint32_t count = GetDocument().depth == 4 ? 16 : kPaletteSize;
    PaletteEntry entries[kPaletteSize];
    const uint8_t* toSystem = StackToSystemIndexTable();
    for (uint32_t i = 0; i < count; ++i) entries[i] = source[mapped ? toSystem[i] : i];
    const MemRef ref = NewMemRef(ColorTableSize(count));
    if (!ref) return 0;
    MemRefLock lock(ref);
    WriteColorTable(lock.data(), entries, count, GetHost().GetTickCount());
    return ref;
}

void ColorTableToDib(const uint8_t* table, uint32_t size, uint8_t* dib) {
    PaletteEntry entries[kPaletteSize];
    const uint32_t count = ReadColorTable(table, size, entries, std::min(DibColorCount(dib), kPaletteSize));
    AdjustPaletteForDisplay(count, entries);
    uint8_t* colors = DibColors(dib);
    for (uint32_t i = 0; i < count; ++i) {
        uint8_t* c = colors + i * kDibColorSize;
        c[0] = entries[i].blue;
        c[1] = entries[i].green;
        c[2] = entries[i].red;
        c[3] = 0;
    }
}

PaletteRef PaletteFromDib(const uint8_t* dib) {
    PaletteRef palette = NewPalette(kPaletteSize);
    if (!palette) return palette;
    const uint8_t* colors = DibColors(dib);
    const uint32_t count = std::min(DibColorCount(dib), kPaletteSize);
    for (uint32_t i = 0; i < count; ++i) {
        const uint8_t* c = colors + i * kDibColorSize;
        palette->entries[i] = {c[2], c[1], c[0], 0};
    }
    return palette;
}
