// The font map: a stack names its fonts by 16-bit numbers, as the Macintosh did, and carries the
// table from number to font description in its 'FntL' record 128. The map turns a number into a
// font request (a LogFont), adds the fonts that text starts to use, substitutes Windows faces for
// Macintosh ones, and resolves every face name through one fixed table to the font files that all
// hosts share, so that a card's text looks the same in a window, headless and on the web.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "memory/MemRef.h"

// One row of the 'FntL' record, big-endian; the list ends with a row whose id is 0. The rows stay
// big-endian in memory and are turned as they are read.
inline constexpr uint16_t kFontListId = 128;
inline constexpr uint32_t kFontEntrySize = 92;
inline constexpr uint32_t kFontEntryName = 0;  // 64 bytes, a counted string
inline constexpr uint32_t kFontEntryId = 64;
inline constexpr uint32_t kFontEntryStyle = 66;  // 0 when made by this player
inline constexpr uint32_t kFontEntryPitchAndFamily = 68;
inline constexpr uint32_t kFontEntryOutPrecision = 70;   // u32
inline constexpr uint32_t kFontEntryClipPrecision = 74;  // u32
inline constexpr uint32_t kFontEntryQuality = 78;        // u32
inline constexpr uint32_t kFontEntryCharSet = 82;        // u32
inline constexpr uint32_t kFontEntryHeight = 86;
inline constexpr uint32_t kFontEntryWidth = 88;
inline constexpr uint32_t kFontEntryWeight = 90;
static_assert(kFontEntryWeight + 2 == kFontEntrySize);
inline constexpr uint32_t kFontNameBytes = 64;  // counted: length byte and up to 63 characters
inline constexpr uint32_t kFaceNameBytes = 32;  // a LogFont's face, zero-terminated
inline constexpr size_t kMacFontNameMax = 31;

inline constexpr uint16_t kFirstFontId = 1000;  // where new ids start, and where they wrap to
inline constexpr uint16_t kLastFontId = 65000;
inline constexpr uint16_t kNormalFontWeight = 400;
inline constexpr uint16_t kBoldFontWeight = 700;
inline constexpr const char* kDefaultFaceName = "Arial";

// A row turned to native order.
struct FontEntry {
    std::string name;  // Windows-1252, at most 63 bytes
    uint16_t id = 0;
    uint16_t style = 0;
    uint16_t pitchAndFamily = 0;
    uint32_t outPrecision = 0;
    uint32_t clipPrecision = 0;
    uint32_t quality = 0;
    uint32_t charSet = 0;
    uint16_t height = 0;
    uint16_t width = 0;
    uint16_t weight = 0;
    friend bool operator==(const FontEntry&, const FontEntry&) = default;
};

// What the text engine knows of a font when it asks for an id.
struct FontInfo {
    std::string name;
    uint16_t pitchAndFamily = 0;
    uint32_t outPrecision = 0;
    uint32_t clipPrecision = 0;
    uint32_t quality = 0;
    uint32_t charSet = 0;
};

// A font request in the platform's own layout (60 bytes): a negative height is the em size in
// pixels, a positive one the cell height.
struct LogFont {
    int32_t height = 0;
    int32_t width = 0;
    int32_t escapement = 0;
    int32_t orientation = 0;
    int32_t weight = 0;
    uint8_t italic = 0;
    uint8_t underline = 0;
    uint8_t strikeOut = 0;
    uint8_t charSet = 0;
    uint8_t outPrecision = 0;
    uint8_t clipPrecision = 0;
    uint8_t quality = 0;
    uint8_t pitchAndFamily = 0;
    char faceName[kFaceNameBytes] = {};
};
static_assert(sizeof(LogFont) == 60);

// Card pixels stand at 72 to the inch, as on the Macintosh the stacks come from: a point is a
// pixel, and text keeps the line breaks its author saw.
inline constexpr int32_t kCardDotsPerInch = 72;
constexpr int32_t PointsToPixels(int32_t points) {
    return (points * kCardDotsPerInch + (points < 0 ? -36 : 36)) / 72;
}

// Fetches 'FntL' 128 of the current stack's store into a block of its own, replacing the list
// before; without such a record the list stays as it was. At stack open and each change of stack.
void LoadFontList();
// The list's block (big-endian rows), or 0 before any stack brought one and any font was added.
MemRef GetFontList();
// Frees the list and starts the id counter and the current face afresh.
void ResetFontMap();
// The counter AddFont tries first; set by tests of the wrap at 65000.
void SetNextFontId(uint16_t id);

// The first row whose counted name equals `name` (cut to 63 bytes); an empty entry if none.
bool FindFontByName(std::string_view name, FontEntry* entry);
// The first row with that id; an empty entry if none.
bool FindFontById(uint16_t id, FontEntry* entry);
// The id of the font named `font.name`, adding a row at the front of the list for a new one. The
// sizes are 16.16 fixed. 0 only when every id from 1000 to 65000 is taken.
uint16_t AddFont(const FontInfo& font, int32_t heightFixed, int32_t widthFixed);
// The request for font `id` at `pointSize`: unknown ids ask for Arial at that size; rows from a
// Macintosh (style word not 0) get the Windows substitutes; a face no host has becomes the face
// the font files really give.
void FontToLogFont(uint16_t id, LogFont* logFont, int32_t pointSize);

// The faces the host enumerates: every name of the fixed table, all scalable.
inline constexpr uint16_t kRasterFontType = 1;
inline constexpr uint16_t kTrueTypeFontType = 4;
struct FontTableRow {
    std::string face;
    uint16_t fontType = kTrueTypeFontType;
    int16_t height = 0;  // of a raster face's size; 0 for a scalable one
};
const std::vector<FontTableRow>& GetFontTable();
// Names compare without regard to case, as the host's font service does.
bool FaceExists(std::string_view name);
const FontTableRow* FaceData(std::string_view name);  // null when the face is unknown
// The face that BestFontSize works on (the font dialogs set it).
void SetCurrentFace(std::string_view name);
// For the current face: a scalable face gives the size itself as a negative height; a raster face
// its row nearest to `size`, the first of equals; an unknown face the size unchanged.
int32_t BestFontSize(int32_t size);

// The language's font choice: a number goes through the Macintosh font numbers ("" for one that
// names nothing: the current font stays); a word is the name itself, cut to 31 characters.
std::string MacFontName(int32_t number);
std::string MacFontName(std::string_view numberOrWord);

// The fixed table from face names to font files, the same on every host.
enum class FontFamily : uint8_t { Sans, Serif, Mono, Fallback };
FontFamily FontFamilyOf(std::string_view face);
// What the host's font service reports as the face it really gives for `face`.
std::string_view RealFaceName(std::string_view face);
struct FontFile {
    std::string path;      // a host path, in HostFontFolder()
    bool slanted = false;  // the family has no italic file: the upright one is slanted
};
FontFile FontFileFor(std::string_view face, bool bold, bool italic);
