#include "text/TextRecord.h"

#include <array>
#include <utility>

#include "base/ByteOrder.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/Normalise.h"
#include "stack/StackHeader.h"

namespace {

// The Windows-1252 byte for each Macintosh byte from 0x80 on.
constexpr uint8_t kMacHigh[128] = {
    0xC4, 0xC5, 0xC7, 0xC9, 0xD1, 0xD6, 0xDC, 0xE1, 0xE0, 0xE2, 0xE4, 0xE3, 0xE5, 0xE7, 0xE9, 0xE8,
    0xEA, 0xEB, 0xED, 0xEC, 0xEE, 0xEF, 0xF1, 0xF3, 0xF2, 0xF4, 0xF6, 0xF5, 0xFA, 0xF9, 0xFB, 0xFC,
    0x86, 0xB0, 0xA2, 0xA3, 0xA7, 0x95, 0xB6, 0xDF, 0xAE, 0xA9, 0x99, 0xB4, 0xA8, 0xAD, 0xC6, 0xD8,
    0xB0, 0xB1, 0xB2, 0xB3, 0xA5, 0xB5, 0xF0, 0xB7, 0xB8, 0xB9, 0xBA, 0xBB, 0xBC, 0xBD, 0xE6, 0xF8,
    0xBF, 0xA1, 0xAC, 0xC3, 0x83, 0xC5, 0xC6, 0xAB, 0xBB, 0x85, 0xCA, 0xC0, 0xC3, 0xD5, 0x8C, 0x9C,
    0x96, 0x97, 0x93, 0x94, 0x91, 0x92, 0xF7, 0xD7, 0xFF, 0x9F, 0xDA, 0xA4, 0x8B, 0x9B, 0xDE, 0xDF,
    0x87, 0xB7, 0x82, 0x84, 0x89, 0xC2, 0xCA, 0xC1, 0xCB, 0xC8, 0xCD, 0xCE, 0xCF, 0xCC, 0xD3, 0xD4,
    0xF0, 0xD2, 0xDA, 0xDB, 0xD9, 0xB9, 0x88, 0x98, 0xAF, 0xF9, 0xFA, 0xB0, 0xB8, 0xFD, 0xB9, 0xFF,
};

struct CharTables {
    std::array<uint8_t, 256> macToWindows{};
    std::array<uint8_t, 256> windowsToMac{};
};

constexpr CharTables MakeCharTables() {
    CharTables t;
    for (int i = 0; i < 256; ++i) {
        t.macToWindows[i] = static_cast<uint8_t>(i < 128 ? i : kMacHigh[i - 128]);
        t.windowsToMac[i] = static_cast<uint8_t>(i);
    }
    for (int w = 128; w < 256; ++w) {
        for (int i = 0; i < 128; ++i) {
            if (kMacHigh[i] == w) {
                t.windowsToMac[w] = static_cast<uint8_t>(i + 128);
                break;
            }
        }
    }
    return t;
}
constexpr CharTables kCharTables = MakeCharTables();

}  // namespace

const uint8_t* MacToWindowsTable() { return kCharTables.macToWindows.data(); }
const uint8_t* WindowsToMacTable() { return kCharTables.windowsToMac.data(); }

std::string MacToWindowsText(std::string text) {
    for (char& c : text) c = static_cast<char>(kCharTables.macToWindows[static_cast<uint8_t>(c)]);
    return text;
}

bool StackTextIsMacintosh() {
    if (IsWhiteFirstStack()) return true;
    const MemRef header = GetDocument().stackHeader;
    MemRefLock lock(header);
    return lock && GetMemRefSize(header) >= kStackHeaderSize &&
           (Read16(lock.data() + kHdrStackFlags) & kStackFlagWhiteFirst);
}

int32_t ReadTextRecord(const uint8_t* record, uint32_t size, bool macCharset, TextRecord* out) {
    *out = TextRecord{};
    if (size < kTextRecordHeadSize || Read16(record + kTextRecordKind) != kTextRecordType) return -1;
    const uint32_t whole = Read32(record + kTextRecordSize);
    const uint32_t length = Read32(record + kTextRecordLength);
    if (whole < kTextRecordHeadSize || whole > size || length > whole - kTextRecordHeadSize) return -1;
    out->cardId = Read16(record + kTextRecordCardId);
    const uint8_t* text = record + kTextRecordHeadSize;
    out->text.assign(reinterpret_cast<const char*>(text), length);
    if (macCharset) out->text = MacToWindowsText(std::move(out->text));
    // A record with room only for its text, or for a pad byte after it, has no style table.
    uint32_t left = whole - kTextRecordHeadSize - length;
    if (left < kStyleCountSize) return 0;
    const uint8_t* table = text + length;
    const uint32_t count = ReadBE16(table);
    left -= kStyleCountSize;
    if (count > left / kStyleRunSize) {
        *out = TextRecord{};
        return -1;
    }
    for (uint32_t i = 0; i < count; ++i) {
        const uint8_t* r = table + kStyleCountSize + i * kStyleRunSize;
        StyleRun run;
        run.start = ReadBE32(r + kStyleRunStart);
        run.lineHeight = ReadBE16(r + kStyleRunLineHeight);
        run.ascent = ReadBE16(r + kStyleRunAscent);
        run.fontId = ReadBE16(r + kStyleRunFontId);
        run.style = r[kStyleRunStyle];
        run.size = ReadBE16(r + kStyleRunPoints);
        run.red = ReadBE16(r + kStyleRunRed);
        run.green = ReadBE16(r + kStyleRunRed + 2);
        run.blue = ReadBE16(r + kStyleRunRed + 4);
        // The first run covers the text from its start, whatever its stored start says.
        if (out->runs.empty()) run.start = 0;
        else if (run.start <= out->runs.back().start || run.start >= length) continue;
        out->runs.push_back(run);
    }
    return 0;
}

std::vector<uint8_t> MakeTextRecord(const TextRecord& record, bool macCharset) {
    const size_t length = record.text.size();
    const size_t body = length + kStyleCountSize + record.runs.size() * kStyleRunSize;
    const size_t pad = body % 2;
    std::vector<uint8_t> r(kTextRecordHeadSize + body + pad, 0);
    Write16(&r[kTextRecordKind], kTextRecordType);
    Write16(&r[kTextRecordCardId], record.cardId);
    Write32(&r[kTextRecordLength], static_cast<uint32_t>(length));
    Write32(&r[kTextRecordSize], static_cast<uint32_t>(r.size()));
    Write32(&r[kTextRecordFlags], pad ? kTextRecordFlagPad : 0);
    for (size_t i = 0; i < length; ++i) {
        const uint8_t c = static_cast<uint8_t>(record.text[i]);
        r[kTextRecordHeadSize + i] = macCharset ? kCharTables.windowsToMac[c] : c;
    }
    uint8_t* table = &r[kTextRecordHeadSize + length];
    WriteBE16(table, static_cast<uint16_t>(record.runs.size()));
    for (size_t i = 0; i < record.runs.size(); ++i) {
        const StyleRun& run = record.runs[i];
        uint8_t* e = table + kStyleCountSize + i * kStyleRunSize;
        WriteBE32(e + kStyleRunStart, run.start);
        const std::pair<uint32_t, uint16_t> words[] = {
            {kStyleRunLineHeight, run.lineHeight}, {kStyleRunAscent, run.ascent}, {kStyleRunFontId, run.fontId},
            {kStyleRunPoints, run.size}, {kStyleRunRed, run.red}, {kStyleRunRed + 2, run.green},
            {kStyleRunRed + 4, run.blue}};
        for (const auto& [at, v] : words) WriteBE16(e + at, v);
        e[kStyleRunStyle] = run.style;
    }
    return r;
}

uint32_t TextRecordSizeAt(const uint8_t* chunk, uint32_t chunkLength, uint32_t at) {
    if (at > chunkLength || chunkLength - at < kTextRecordHeadSize) return 0;
    const uint8_t* block = chunk + at;
    const uint32_t whole = Read32(block + kTextRecordSize);
    if (Read16(block + kTextRecordKind) != kTextRecordType || whole < kTextRecordHeadSize ||
        whole > chunkLength - at)
        return 0;
    return whole;
}

bool FindTextRecord(const uint8_t* chunk, uint32_t chunkLength, uint16_t cardId, bool perCard,
                    uint32_t* offset) {
    // The chunk was checked block by block when the stack was loaded; the walk checks again, so
    // that a chunk changed since can't lead it astray.
    uint32_t first = 0;
    bool found = false;
    for (uint32_t at = kTextHeadSize, whole = 0; (whole = TextRecordSizeAt(chunk, chunkLength, at)) != 0; at += whole) {
        if (!found) {
            first = at;
            found = true;
            if (!perCard) break;
        }
        if (Read16(chunk + at + kTextRecordCardId) == cardId) {
            *offset = at;
            return true;
        }
    }
    *offset = first;
    return found;
}

bool ReadFieldText(const uint8_t* chunk, uint32_t chunkLength, uint16_t cardId, TextRecord* out) {
    const uint16_t flags = Read16(chunk + kItemFlags);
    uint32_t at = 0;
    return !(flags & kItemFlagFileRef) &&
           FindTextRecord(chunk, chunkLength, cardId, (flags & kTextFlagPerCard) != 0, &at) &&
           ReadTextRecord(chunk + at, chunkLength - at, StackTextIsMacintosh(), out) == 0;
}

bool FindFileTextBlock(const uint8_t* chunk, uint32_t chunkLength, FileTextBlock* out) {
    if (chunkLength < kTextHeadSize + kTextBlockHeadSize) return false;
    const uint8_t* block = chunk + kTextHeadSize;
    const uint32_t blockLength = Read32(block + kTextBlockLength);
    const uint32_t reference = Read32(block + kTextBlockDataLength);
    if (blockLength < kTextBlockHeadSize || blockLength > chunkLength - kTextHeadSize ||
        reference > blockLength - kTextBlockHeadSize)
        return false;
    out->reference = kTextHeadSize + kTextBlockHeadSize;
    out->referenceLength = reference;
    out->tailLength = blockLength - kTextBlockHeadSize - reference;
    return true;
}

StyleRun ReadFileStyle(const uint8_t* tail) {
    StyleRun run;
    run.fontId = ReadBE16(tail);
    run.style = static_cast<uint8_t>(ReadBE16(tail + 2));
    run.size = ReadBE16(tail + 4);
    run.red = ReadBE16(tail + 6);
    run.green = ReadBE16(tail + 8);
    run.blue = ReadBE16(tail + 10);
    return run;
}

void WriteFileStyle(uint8_t* tail, const StyleRun& run) {
    const uint16_t words[] = {run.fontId, run.style, run.size, run.red, run.green, run.blue};
    for (size_t i = 0; i < 6; ++i) WriteBE16(tail + 2 * i, words[i]);
}
