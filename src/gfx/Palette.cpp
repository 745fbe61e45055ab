#include "gfx/Palette.h"

#include <algorithm>
#include <new>

#include "base/StateRegistry.h"
#include "gfx/DisplayDepth.h"
#include "gfx/Surface.h"
#include "platform/Host.h"
#include "stack/Document.h"

namespace {

// DEFPAL, the default palette resource: 236 colours, the 16 classic colours of the stack format
// first (white, yellow, orange, red, pink, purple, blue, cyan, green, dark green, brown, tan, three
// greys, almost-black).
constexpr uint32_t kDefPal[kDefaultPaletteColors] = {
    0xFFFFFF, 0xFCF305, 0xFF6402, 0xDD0806, 0xFF6873, 0x4600A5, 0x0000D4, 0x02ABEA,
    0x1FB714, 0x006411, 0x562C05, 0x90713A, 0xC0C0C0, 0x808080, 0x404040, 0x010101,
    0xFF9999, 0xCC9999, 0xCC6666, 0x996666, 0xCC9966, 0xCC9933, 0xCC9900, 0xCC6633,
    0xCC6600, 0x996600, 0x663333, 0x220000, 0x330000, 0x440000, 0x550000, 0x660000,
    0x770000, 0x880000, 0x993333, 0x990033, 0x993300, 0x990000, 0xAA0000, 0xBB0000,
    0xCC0033, 0xCC3333, 0xCC3300, 0xCC0000, 0xDD0000, 0xEE0000, 0xFF0033, 0xFF0000,
    0xFF3333, 0xFF3300, 0xFF6633, 0xFF9966, 0xFF9933, 0xFF9900, 0xFFCC33, 0xFFCC00,
    0xFFCC66, 0xFFCC99, 0xFFFF33, 0xFFFF66, 0xFFFF99, 0xFFFFCC, 0xCCFFFF, 0x99FFFF,
    0x66FFFF, 0x00FFFF, 0x00FFCC, 0x33FFCC, 0x66FFCC, 0x99FFCC, 0x66FF99, 0x00CCFF,
    0x33CCFF, 0x66CCFF, 0x99CCFF, 0xCCCCFF, 0x99CCCC, 0x66CCCC, 0x33CCCC, 0x00CCCC,
    0x66CC66, 0x99CC99, 0x66CC99, 0x33CC99, 0x00CC99, 0x339999, 0xEEEEEE, 0xDDDDDD,
    0xCCCCCC, 0xBBBBBB, 0xAAAAAA, 0x999999, 0x888888, 0x777777, 0x666666, 0x555555,
    0x444444, 0x333333, 0x222222, 0x111111, 0x666600, 0x666633, 0x999900, 0x999933,
    0x999966, 0x99CC00, 0x99CC33, 0x99CC66, 0xCCCC99, 0xCCCC66, 0xCCCC33, 0xCCCC00,
    0xCCFF00, 0xCCFF33, 0x99FF00, 0xCCFF99, 0xCCFFCC, 0x66FF66, 0x99FF66, 0xCCFF66,
    0x99FF33, 0x66FF33, 0x99FF99, 0x33FF99, 0x33FF66, 0x33FF33, 0x00FF99, 0x00FF66,
    0x00FF33, 0x00FF00, 0x33FF00, 0x66FF00, 0x00EE00, 0x33CC66, 0x33CC33, 0x66CC33,
    0x00DD00, 0x00CC66, 0x00CC33, 0x33CC00, 0x66CC00, 0x00CC00, 0x00AA00, 0x009933,
    0x339900, 0x009900, 0x008800, 0x006633, 0x006600, 0x005500, 0x004400, 0x003300,
    0x002200, 0x000011, 0x000022, 0x000033, 0x000044, 0x333366, 0x000055, 0x000066,
    0x000077, 0x000088, 0x000099, 0x333399, 0x003399, 0x0000BB, 0x3300CC, 0x3333CC,
    0x0033CC, 0x0000DD, 0x0000EE, 0x3300FF, 0x3333FF, 0x0000FF, 0x0033FF, 0x3366FF,
    0x0066FF, 0x6666FF, 0x6666CC, 0x666699, 0x9999CC, 0x6699CC, 0x6699FF, 0x3399FF,
    0x3399CC, 0x0099CC, 0x3366CC, 0x0066CC, 0x006699, 0x336699, 0x003366, 0x330066,
    0x660066, 0x663399, 0x660099, 0x6600CC, 0x6633CC, 0x6600FF, 0x6633FF, 0x9933FF,
    0x9933CC, 0x9900FF, 0x993399, 0x990099, 0x9900CC, 0xCC00FF, 0xCC33FF, 0xCC33CC,
    0xCC00CC, 0xFF00FF, 0xFF00CC, 0xFF33CC, 0xFF33FF, 0xFF66FF, 0xFF99FF, 0xFFCCFF,
    0xCC99CC, 0xCC99FF, 0xCC66CC, 0xCC66FF, 0x9999FF, 0x9966FF, 0x9966CC, 0x996699,
    0x663366, 0x330033, 0x660033, 0x993366, 0x990066, 0xCC0066, 0xCC0099, 0xCC3366,
    0xFF0066, 0xFF0099, 0xCC3399, 0xFF3366,
};

// The reserved colours of a standard 8-bit system palette: entries 0 to 9, then 246 to 255.
constexpr uint32_t kSystemColors[kSystemColorCount] = {
    0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080, 0xC0C0C0, 0xC0DCC0, 0xA6CAF0,
    0xFFFBF0, 0xA0A0A4, 0x808080, 0xFF0000, 0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF,
};
constexpr uint32_t kSystemLowCount = 10;
constexpr uint32_t kSystemHighFirst = 246;

PaletteState gPalette;

PaletteEntry EntryOf(uint32_t rgb, uint8_t flags) {
    return {static_cast<uint8_t>(rgb >> 16), static_cast<uint8_t>(rgb >> 8), static_cast<uint8_t>(rgb), flags};
}

}  // namespace

PaletteRef NewPalette(uint32_t count) {
    PaletteRef palette(new (std::nothrow) Palette);
    if (palette) palette->count = std::min(count, kPaletteSize);
    return palette;
}

PaletteRef DuplicatePalette(const Palette& palette) {
    PaletteRef copy = NewPalette(kPaletteSize);
    if (!copy) return copy;
    for (uint32_t i = 0; i < palette.count; ++i) {
        copy->entries[i] = palette.entries[i];
        copy->entries[i].flags = 0;
    }
    return copy;
}

void SetAnimatedPalette(const Palette*, uint32_t, uint32_t, const PaletteEntry*) {}

PaletteState& GetPaletteState() { return gPalette; }

PaletteState::PaletteState() {
    DefaultPaletteEntries(displayColors);
    for (uint32_t i = 0; i < kPaletteSize; ++i) {
        systemToStack[i] = static_cast<uint8_t>(i);
        stackToSystem[i] = static_cast<uint8_t>(i);
    }
}

void ResetPaletteState() { gPalette = PaletteState(); }

int32_t DisplayDepth() {
    if (gPalette.forcedDepth) return gPalette.forcedDepth;
    const int32_t stackDepth = GetDocument().depth;
    return stackDepth <= 8 ? 8 : stackDepth <= 16 ? 16 : 32;
}

int32_t ForceDisplayDepth(int32_t depth) {
    if (depth != 0 && depth != 8 && depth != 16 && depth != 32) return -1;
    gPalette.forcedDepth = depth;
    return 0;
}

uint32_t SystemColor(uint32_t index) {
    if (index < kSystemLowCount) return kSystemColors[index];
    if (index >= kSystemHighFirst && index < kPaletteSize) return kSystemColors[index - kSystemHighFirst + kSystemLowCount];
    return 0;
}

void AddSystemColors(PaletteEntry* entries) {
    for (uint32_t i = 0; i < kSystemLowCount; ++i) {
        entries[255 - i] = EntryOf(SystemColor(i), 0);
        entries[245 - i] = EntryOf(SystemColor(kSystemHighFirst + i), 0);
    }
}

void DefaultPaletteEntries(PaletteEntry* entries) {
    for (uint32_t i = 0; i < kDefaultPaletteColors; ++i) entries[i] = EntryOf(kDefPal[i], kPaletteReserved);
    AddSystemColors(entries);
}

PaletteRef LoadDefaultPalette() {
    PaletteRef palette = NewPalette(kPaletteSize);
    if (!palette) return palette;
    DefaultPaletteEntries(palette->entries);
    AdjustPaletteForDisplay(kPaletteSize, palette->entries);
    return palette;
}

void AdjustPaletteForDisplay(uint32_t count, PaletteEntry* colors) {
    if (DisplayDepth() != 16) return;
    // The colour painted on a 16-bit display and read back, by the rule the renderer's 16-bit
    // display uses for its pixels.
    for (uint32_t i = 0; i < count; ++i) {
        PaletteEntry& e = colors[i];
        const uint32_t shown = QuantizeTo555(uint32_t{e.red} << 16 | uint32_t{e.green} << 8 | e.blue);
        e.red = static_cast<uint8_t>(shown >> 16);
        e.green = static_cast<uint8_t>(shown >> 8);
        e.blue = static_cast<uint8_t>(shown);
    }
}

bool IsSameAsSystem(const Palette*) { return true; }

void RealizePalette(const Palette& palette) {
    if (DisplayDepth() != 8) return;
    for (uint32_t i = 0; i < palette.count; ++i) {
        gPalette.displayColors[i] = palette.entries[i];
        gPalette.displayColors[i].flags = 0;
    }
}

void GetSystemPaletteEntries(PaletteEntry* entries) {
    if (DisplayDepth() == 8) {
        std::copy(std::begin(gPalette.displayColors), std::end(gPalette.displayColors), entries);
    } else {
        DefaultPaletteEntries(entries);
        for (uint32_t i = 0; i < kPaletteSize; ++i) entries[i].flags = 0;
    }
}

int32_t InitPalette() {
    gPalette.current = LoadDefaultPalette();
    if (!gPalette.current) {
        const Host& host = GetHost();
        host.ShowMessageBox("Error", "Cant create palette");
        return -1;
    }
    std::copy(std::begin(gPalette.current->entries), std::end(gPalette.current->entries), gPalette.oldColors);
    std::copy(std::begin(gPalette.current->entries), std::end(gPalette.current->entries), gPalette.newColors);
    RealizePalette(*gPalette.current);
    return 0;
}

const Palette* PaletteInUse() { return gPalette.incoming ? gPalette.incoming.get() : gPalette.current.get(); }

void ColorsInUse(uint32_t colors[kPaletteSize]) {
    PaletteEntry entries[kPaletteSize] = {};
    if (const Palette* palette = PaletteInUse()) {
        std::copy(palette->entries, palette->entries + std::min(palette->count, kPaletteSize), entries);
    } else {
        DefaultPaletteEntries(entries);
    }
    for (uint32_t i = 0; i < kPaletteSize; ++i) colors[i] = Rgb(entries[i].red, entries[i].green, entries[i].blue);
}

uint32_t NearestColorIndex(const PaletteEntry* entries, uint32_t count, uint8_t red, uint8_t green, uint8_t blue) {
    uint32_t best = 0;
    uint32_t bestDistance = UINT32_MAX;
    for (uint32_t i = 0; i < count && bestDistance != 0; ++i) {
        const int32_t dr = entries[i].red - red, dg = entries[i].green - green, db = entries[i].blue - blue;
        const auto distance = static_cast<uint32_t>(dr * dr + dg * dg + db * db);
        if (distance < bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
}

uint32_t NearestPaletteIndex(const Palette& palette, uint8_t red, uint8_t green, uint8_t blue) {
    return NearestColorIndex(palette.entries, palette.count, red, green, blue);
}

void NoteColors(const PaletteEntry* entries) {
    std::copy(std::begin(gPalette.newColors), std::end(gPalette.newColors), gPalette.oldColors);
    std::copy(entries, entries + kPaletteSize, gPalette.newColors);
}

void BlendPalette(int32_t k) {
    k = std::clamp(k, 0, 256);
    PaletteEntry blend[kPaletteSize];
    const auto mix = [k](uint8_t from, uint8_t to) { return static_cast<uint8_t>(((256 - k) * from + k * to) / 256); };
    for (uint32_t i = 0; i < kPaletteSize; ++i) {
        const PaletteEntry& from = gPalette.oldColors[i];
        const PaletteEntry& to = gPalette.newColors[i];
        blend[i] = {mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue), kPaletteReserved};
    }
    if (gPalette.animate) gPalette.animate(gPalette.current.get(), 0, kPaletteSize, blend);
}

const uint8_t* SystemToStackIndexTable() { return gPalette.systemToStack; }
const uint8_t* StackToSystemIndexTable() { return gPalette.stackToSystem; }

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Gfx, ResetPaletteState);
}  // namespace
