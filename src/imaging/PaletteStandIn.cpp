#include "imaging/PaletteStandIn.h"

#include <algorithm>

#include "stack/ByteOrder.h"

uint32_t ColorTableEntryCount(const uint8_t* table, uint32_t size) {
    if (!table || size < kColorTableHeadSize) return 0;
    const uint32_t stated = uint32_t{ReadBE16(table + kColorTableCountField)} + 1;
    return std::min(stated, (size - kColorTableHeadSize) / kColorTableEntrySize);
}

void ColorTableToDibColors(const uint8_t* table, uint32_t size, uint8_t* colors, uint32_t colorCount) {
    const uint32_t count = std::min(ColorTableEntryCount(table, size), colorCount);
    for (uint32_t i = 0; i < count; ++i) {
        const uint8_t* e = table + kColorTableHeadSize + i * kColorTableEntrySize;
        uint8_t* c = colors + i * 4;
        c[0] = e[6];
        c[1] = e[4];
        c[2] = e[2];
        c[3] = 0;
    }
}

MemRef ColorTableFromDibColors(const uint8_t* colors, uint32_t colorCount, uint32_t seed) {
    const MemRef ref = NewMemRef(kColorTableHeadSize + kColorTableEntries * kColorTableEntrySize);
    if (!ref) return 0;
    MemRefLock lock(ref);
    uint8_t* t = lock.data();
    WriteBE32(t, seed);
    WriteBE16(t + kColorTableCountField, kColorTableEntries - 1);
    for (uint32_t i = 0; i < kColorTableEntries && i < colorCount; ++i) {
        uint8_t* e = t + kColorTableHeadSize + i * kColorTableEntrySize;
        const uint8_t* c = colors + i * 4;
        WriteBE16(e, static_cast<uint16_t>(i));
        e[2] = c[2];
        e[4] = c[1];
        e[6] = c[0];
    }
    for (uint32_t i = colorCount; i < kColorTableEntries; ++i) {
        WriteBE16(t + kColorTableHeadSize + i * kColorTableEntrySize, static_cast<uint16_t>(i));
    }
    return ref;
}

const uint8_t* SystemToStackIndexTable() {
    static const auto table = [] {
        struct Table {
            uint8_t bytes[256];
        } t{};
        for (int i = 0; i < 256; ++i) t.bytes[i] = static_cast<uint8_t>(i);
        return t;
    }();
    return table.bytes;
}
