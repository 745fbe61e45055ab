// The text of a field as a stack stores it: behind a text item's 128-byte head stand one or more
// sub-records of type 99, each the text of one card (or of all cards) with its style table. The
// block head is native once the stack is loaded; the text and the style table behind it stay
// big-endian, as they are on disk.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Sub-record head, native in memory.
inline constexpr uint16_t kTextRecordType = 99;
inline constexpr uint32_t kTextRecordKind = 0;
inline constexpr uint32_t kTextRecordCardId = 2;
inline constexpr uint32_t kTextRecordFlags = 4;   // u32
inline constexpr uint32_t kTextRecordLength = 8;  // u32, of the text
inline constexpr uint32_t kTextRecordSize = 12;   // u32, of the whole sub-record with its head
inline constexpr uint32_t kTextRecordHeadSize = 16;
// The flag of a record that ends in one pad byte: 4 in the flags' second byte as stored.
inline constexpr uint32_t kTextRecordFlagPad = 0x40000;

// Style table: a u16 count, then runs of 20 bytes, big-endian.
inline constexpr uint32_t kStyleCountSize = 2;
inline constexpr uint32_t kStyleRunSize = 20;
inline constexpr uint32_t kStyleRunStart = 0;  // u32
inline constexpr uint32_t kStyleRunLineHeight = 4;
inline constexpr uint32_t kStyleRunAscent = 6;
inline constexpr uint32_t kStyleRunFontId = 8;
inline constexpr uint32_t kStyleRunStyle = 10;  // u8; the byte at 11 is zero
inline constexpr uint32_t kStyleRunPoints = 12;
inline constexpr uint32_t kStyleRunRed = 14;  // then green and blue, u16 each
static_assert(kStyleRunRed + 6 == kStyleRunSize);

struct StyleRun {
    uint32_t start = 0;
    uint16_t lineHeight = 0;
    uint16_t ascent = 0;
    uint16_t fontId = 0;
    uint8_t style = 0;
    uint16_t size = 0;  // points
    uint16_t red = 0, green = 0, blue = 0;
    friend bool operator==(const StyleRun&, const StyleRun&) = default;
};

struct TextRecord {
    uint16_t cardId = 0;
    std::string text;  // Windows-1252, CR ends a paragraph
    std::vector<StyleRun> runs;  // starts rising, the first at 0, each inside the text
};

// Translation between the Macintosh character set and Windows-1252: bytes below 128 stand for
// themselves. Reading maps through the first table; writing finds a byte's first place in it, and
// keeps a byte that has none (the Macintosh set has no place for it).
const uint8_t* MacToWindowsTable();  // 256 entries
const uint8_t* WindowsToMacTable();  // 256 entries
std::string MacToWindowsText(std::string text);

// Whether the open stack keeps its text in the Macintosh character set: the stacks whose colour
// tables put white first come from the Macintosh.
bool StackTextIsMacintosh();

// The sub-record at `record` with `size` bytes to its owner's end. 0, or -1 for a record whose
// lengths or runs don't fit in it: nothing of such a record is shown. Run starts are kept in the
// text and rising; runs that break that order are dropped.
int32_t ReadTextRecord(const uint8_t* record, uint32_t size, bool macCharset, TextRecord* out);

// The record in the form a loaded card holds it (a native head, a big-endian body): the text, through
// the table backwards for a Macintosh stack, the runs as they stand, and one pad byte, flagged,
// when text and table come to an odd length.
std::vector<uint8_t> MakeTextRecord(const TextRecord& record, bool macCharset);

// The whole size of the sub-record at `at` of a native text chunk: 0 when no record of type 99
// with a size that stays in the chunk stands there.
uint32_t TextRecordSizeAt(const uint8_t* chunk, uint32_t chunkLength, uint32_t at);

// The offset in a native text chunk of the sub-record to show on card `cardId`: the first one, or
// with `perCard` the one of that card if there is one. False when no sub-record of type 99 stands
// first behind the head.
bool FindTextRecord(const uint8_t* chunk, uint32_t chunkLength, uint16_t cardId, bool perCard,
                    uint32_t* offset);
// The text a native text chunk shows on card `cardId`: the card's own record for a per-card field,
// else the first. False for a field whose text comes from a file, and for a missing or damaged record.
bool ReadFieldText(const uint8_t* chunk, uint32_t chunkLength, uint16_t cardId, TextRecord* out);

// A field whose text comes from a file keeps the file's reference in its first block in place of
// the text, and behind it a style tail of six big-endian words: font id, style bits, points, and
// the red, green and blue components. Offsets are in the chunk.
inline constexpr uint32_t kFileStyleSize = 12;
struct FileTextBlock {
    uint32_t reference = 0;
    uint32_t referenceLength = 0;
    uint32_t tailLength = 0;  // what stands behind the reference in the block
};
// False when the chunk is too short for a block or the block's lengths leave it.
bool FindFileTextBlock(const uint8_t* chunk, uint32_t chunkLength, FileTextBlock* out);
StyleRun ReadFileStyle(const uint8_t* tail);
void WriteFileStyle(uint8_t* tail, const StyleRun& run);
