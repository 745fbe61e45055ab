#include "text/Fontmap.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "platform/HostFonts.h"
#include "stack/Blob.h"

namespace {

struct FontMapState {
    MemRef list = 0;  // the 'FntL' rows, big-endian, as the stack stores them
    uint16_t nextFontId = kFirstFontId;
    std::string currentFace;
};
FontMapState gMap;

// Rows from a Macintosh name faces that Windows lacks; the first match wins.
struct Substitution {
    const char* from;
    const char* to;
};
constexpr Substitution kFontSubstitutions[] = {
    {"geneva", "arial"},
    {"monaco", "courier new"},
    {"helvetica", "ms sans serif"},
};

struct MacFont {
    int16_t number;
    const char* name;
};
constexpr MacFont kMacFontNames[] = {
    {2, "New York"}, {3, "Geneva"},     {4, "Monaco"},   {5, "Venice"},
    {6, "London"},   {7, "Athens"},     {9, "Toronto"},  {11, "Cairo"},
    {20, "Times"},   {21, "Helvetica"}, {22, "Courier"}, {23, "Symbol"},
};

// The files of one family. A family without an italic file slants the upright one.
struct FamilyFiles {
    const char* realName;
    const char* regular;
    const char* bold;
    const char* italic;
    const char* boldItalic;
};
constexpr FamilyFiles kFamilies[] = {
    {"Liberation Sans", "liberation2/LiberationSans-Regular.ttf",
     "liberation2/LiberationSans-Bold.ttf", "liberation2/LiberationSans-Italic.ttf",
     "liberation2/LiberationSans-BoldItalic.ttf"},
    {"Liberation Serif", "liberation2/LiberationSerif-Regular.ttf",
     "liberation2/LiberationSerif-Bold.ttf", "liberation2/LiberationSerif-Italic.ttf",
     "liberation2/LiberationSerif-BoldItalic.ttf"},
    {"Liberation Mono", "liberation2/LiberationMono-Regular.ttf",
     "liberation2/LiberationMono-Bold.ttf", "liberation2/LiberationMono-Italic.ttf",
     "liberation2/LiberationMono-BoldItalic.ttf"},
    {"DejaVu Sans", "dejavu/DejaVuSans.ttf", "dejavu/DejaVuSans-Bold.ttf", nullptr, nullptr},
};

// Every face name a stack may use that has a metric-compatible file; anything else falls to
// DejaVu Sans, which covers the most characters.
struct FaceAlias {
    const char* face;
    FontFamily family;
};
constexpr FaceAlias kFaceAliases[] = {
    {"Arial", FontFamily::Sans},
    {"Helvetica", FontFamily::Sans},
    {"MS Sans Serif", FontFamily::Sans},
    {"Geneva", FontFamily::Sans},
    {"System", FontFamily::Sans},
    {"MS Shell Dlg", FontFamily::Sans},
    {"MS Shell Dlg 2", FontFamily::Sans},
    {"Chicago", FontFamily::Sans},
    {"Liberation Sans", FontFamily::Sans},
    {"Times", FontFamily::Serif},
    {"Times New Roman", FontFamily::Serif},
    {"New York", FontFamily::Serif},
    {"MS Serif", FontFamily::Serif},
    {"Liberation Serif", FontFamily::Serif},
    {"Courier", FontFamily::Mono},
    {"Courier New", FontFamily::Mono},
    {"Monaco", FontFamily::Mono},
    {"Fixedsys", FontFamily::Mono},
    {"Liberation Mono", FontFamily::Mono},
    {"DejaVu Sans", FontFamily::Fallback},
};

bool SameFace(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        const auto x = static_cast<unsigned char>(a[i]);
        const auto y = static_cast<unsigned char>(b[i]);
        if (x != y && std::tolower(x) != std::tolower(y)) return false;
    }
    return true;
}

// The name of a row: a damaged length byte is held to the 63 bytes the field has room for.
std::string_view RowName(const uint8_t* row) {
    const uint32_t length = std::min<uint32_t>(row[kFontEntryName], kFontNameBytes - 1);
    return {reinterpret_cast<const char*>(row + kFontEntryName + 1), length};
}

FontEntry TurnRow(const uint8_t* row) {
    FontEntry e;
    e.name = std::string(RowName(row));
    e.id = ReadBE16(row + kFontEntryId);
    e.style = ReadBE16(row + kFontEntryStyle);
    e.pitchAndFamily = ReadBE16(row + kFontEntryPitchAndFamily);
    e.outPrecision = ReadBE32(row + kFontEntryOutPrecision);
    e.clipPrecision = ReadBE32(row + kFontEntryClipPrecision);
    e.quality = ReadBE32(row + kFontEntryQuality);
    e.charSet = ReadBE32(row + kFontEntryCharSet);
    e.height = ReadBE16(row + kFontEntryHeight);
    e.width = ReadBE16(row + kFontEntryWidth);
    e.weight = ReadBE16(row + kFontEntryWeight);
    return e;
}

// Calls `match` on each whole row before the end row; the first row it accepts is turned into
// `entry`. A list cut short ends at its last whole row.
template <typename Match>
bool FindRow(Match match, FontEntry* entry) {
    *entry = FontEntry{};
    if (!gMap.list) return false;
    MemRefLock lock(gMap.list);
    if (!lock) return false;
    const uint32_t size = GetMemRefSize(gMap.list);
    for (uint32_t at = 0; size - at >= kFontEntrySize; at += kFontEntrySize) {
        const uint8_t* row = lock.data() + at;
        if (ReadBE16(row + kFontEntryId) == 0) break;
        if (match(row)) {
            *entry = TurnRow(row);
            return true;
        }
    }
    return false;
}

bool IdInUse(uint16_t id) {
    FontEntry unused;
    return FindFontById(id, &unused);
}

std::string Substitute(const std::string& face) {
    for (const Substitution& s : kFontSubstitutions) {
        if (SameFace(face, s.from)) return s.to;
    }
    return face;
}

const FamilyFiles& FilesOf(FontFamily family) {
    return kFamilies[static_cast<size_t>(family)];
}

}  // namespace

void LoadFontList() {
    const MemRef record = GetBlobById(FourCC("FntL"), kFontListId);
    if (!record) return;
    DetachBlob(record);
    if (gMap.list) FreeMemRef(gMap.list);
    gMap.list = record;
}

MemRef GetFontList() {
    return gMap.list;
}

void ResetFontMap() {
    if (gMap.list) FreeMemRef(gMap.list);
    gMap = FontMapState{};
}

void SetNextFontId(uint16_t id) {
    gMap.nextFontId = id;
}

bool FindFontByName(std::string_view name, FontEntry* entry) {
    const std::string_view wanted = name.substr(0, kFontNameBytes - 1);
    return FindRow([wanted](const uint8_t* row) { return RowName(row) == wanted; }, entry);
}

bool FindFontById(uint16_t id, FontEntry* entry) {
    return FindRow([id](const uint8_t* row) { return ReadBE16(row + kFontEntryId) == id; }, entry);
}

uint16_t AddFont(const FontInfo& font, int32_t heightFixed, int32_t widthFixed) {
    FontEntry found;
    if (FindFontByName(font.name, &found)) return found.id;

    // Every id of the range taken (only a hostile list can do that) ends the search, not the
    // player.
    uint16_t id = 0;
    for (uint32_t tries = 0; tries <= kLastFontId - kFirstFontId; ++tries) {
        if (gMap.nextFontId > kLastFontId) gMap.nextFontId = kFirstFontId;
        if (!IdInUse(gMap.nextFontId)) {
            id = gMap.nextFontId;
            break;
        }
        ++gMap.nextFontId;
    }
    if (id == 0) return 0;

    uint8_t row[kFontEntrySize] = {};
    const std::string_view name = std::string_view(font.name).substr(0, kFontNameBytes - 1);
    row[kFontEntryName] = static_cast<uint8_t>(name.size());
    std::memcpy(row + kFontEntryName + 1, name.data(), name.size());
    WriteBE16(row + kFontEntryId, id);
    WriteBE16(row + kFontEntryStyle, 0);
    WriteBE16(row + kFontEntryPitchAndFamily, font.pitchAndFamily);
    WriteBE32(row + kFontEntryOutPrecision, font.outPrecision);
    WriteBE32(row + kFontEntryClipPrecision, font.clipPrecision);
    WriteBE32(row + kFontEntryQuality, font.quality);
    WriteBE32(row + kFontEntryCharSet, font.charSet);
    WriteBE16(row + kFontEntryHeight, static_cast<uint16_t>(heightFixed >> 16));
    WriteBE16(row + kFontEntryWidth, static_cast<uint16_t>(widthFixed >> 16));
    WriteBE16(row + kFontEntryWeight, kNormalFontWeight);

    if (!gMap.list) {
        // A stack without a font list gets one: the new row and the end row.
        gMap.list = NewMemRef(kFontEntrySize);
        if (!gMap.list) return 0;
        MemRefLock lock(gMap.list);
        std::memset(lock.data(), 0, kFontEntrySize);
    }
    if (InsertBytes(gMap.list, row, 0, kFontEntrySize) != 0) return 0;
    return id;
}

void FontToLogFont(uint16_t id, LogFont* logFont, int32_t pointSize) {
    *logFont = LogFont{};
    FontEntry row;
    std::string face = FindFontById(id, &row) ? row.name : std::string(kDefaultFaceName);
    // Only rows made on a Macintosh carry a style word, and only they name Macintosh faces.
    if (row.style != 0) face = Substitute(face);

    logFont->height = -PointsToPixels(pointSize);
    logFont->width = static_cast<int16_t>(row.width);
    logFont->weight = row.weight;
    logFont->charSet = static_cast<uint8_t>(row.charSet);
    logFont->outPrecision = static_cast<uint8_t>(row.outPrecision);
    logFont->clipPrecision = static_cast<uint8_t>(row.clipPrecision);
    logFont->quality = static_cast<uint8_t>(row.quality);
    logFont->pitchAndFamily = static_cast<uint8_t>(row.pitchAndFamily);
    if (face.empty()) face = kDefaultFaceName;
    if (!FaceExists(face.substr(0, kFaceNameBytes - 1))) face = std::string(RealFaceName(face));
    const size_t length = std::min<size_t>(face.size(), kFaceNameBytes - 1);
    std::memcpy(logFont->faceName, face.data(), length);
    logFont->faceName[length] = '\0';
}

const std::vector<FontTableRow>& GetFontTable() {
    static const std::vector<FontTableRow> table = [] {
        std::vector<FontTableRow> rows;
        for (const FaceAlias& alias : kFaceAliases)
            rows.push_back({alias.face, kTrueTypeFontType, 0});
        return rows;
    }();
    return table;
}

const FontTableRow* FaceData(std::string_view name) {
    for (const FontTableRow& row : GetFontTable()) {
        if (SameFace(row.face, name)) return &row;
    }
    return nullptr;
}

bool FaceExists(std::string_view name) {
    return FaceData(name) != nullptr;
}

void SetCurrentFace(std::string_view name) {
    gMap.currentFace = std::string(name);
}

int32_t BestFontSize(int32_t size) {
    const FontTableRow* best = nullptr;
    for (const FontTableRow& row : GetFontTable()) {
        if (!SameFace(row.face, gMap.currentFace)) continue;
        if (row.fontType == 0 || row.fontType == kTrueTypeFontType) return -size;
        if (!best || std::abs(row.height - size) < std::abs(best->height - size)) best = &row;
    }
    return best ? best->height : size;
}

std::string MacFontName(int32_t number) {
    for (const MacFont& f : kMacFontNames) {
        if (f.number == number) return f.name;
    }
    return {};
}

std::string MacFontName(std::string_view numberOrWord) {
    const bool isNumber = !numberOrWord.empty() && numberOrWord.size() <= 9 &&
                          std::all_of(numberOrWord.begin(), numberOrWord.end(),
                                      [](char c) { return c >= '0' && c <= '9'; });
    if (isNumber) return MacFontName(std::atoi(std::string(numberOrWord).c_str()));
    return std::string(numberOrWord.substr(0, kMacFontNameMax));
}

FontFamily FontFamilyOf(std::string_view face) {
    for (const FaceAlias& alias : kFaceAliases) {
        if (SameFace(alias.face, face)) return alias.family;
    }
    return FontFamily::Fallback;
}

std::string_view RealFaceName(std::string_view face) {
    return FilesOf(FontFamilyOf(face)).realName;
}

FontFile FontFileFor(std::string_view face, bool bold, bool italic) {
    const FamilyFiles& files = FilesOf(FontFamilyOf(face));
    const char* styled =
        bold ? (italic ? files.boldItalic : files.bold) : (italic ? files.italic : files.regular);
    FontFile result;
    if (!styled) {
        styled = bold ? files.bold : files.regular;
        result.slanted = true;
    }
    result.path = HostFontFolder() + "/" + styled;
    return result;
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Text, ResetFontMap);
}  // namespace
