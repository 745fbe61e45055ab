#include "StackBuilder.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <map>
#include <unordered_map>

#include "IconBuilder.h"
#include "PngFile.h"
#include "SpriteBuilder.h"
#include "StackJson.h"
#include "base/ByteOrder.h"
#include "base/Windows1252.h"
#include "gfx/DibImage.h"
#include "gfx/Palette.h"
#include "media/SoundFile.h"
#include "media/SoundRecord.h"
#include "media/SoundWave.h"
#include "memory/OwnedMemRef.h"
#include "pictures/Background.h"
#include "pictures/PackedPixels.h"
#include "platform/HostFile.h"
#include "stack/Blob.h"
#include "stack/CardRecord.h"
#include "stack/ItemFields.h"
#include "stack/Normalise.h"
#include "stack/StackHeader.h"
#include "stack/SubRecord.h"
#include "text/Font.h"
#include "text/Fontmap.h"
#include "text/TextRecord.h"

using Json = nlohmann::ordered_json;
using Bytes = std::vector<uint8_t>;

namespace {

constexpr int64_t kMin16 = std::numeric_limits<int16_t>::min();
constexpr int64_t kMax16 = std::numeric_limits<uint16_t>::max();
constexpr int64_t kMaxSigned16 = std::numeric_limits<int16_t>::max();
constexpr int64_t kMin32 = std::numeric_limits<int32_t>::min();
constexpr int64_t kMax32 = std::numeric_limits<uint32_t>::max();
constexpr uint32_t kMaxStringLength = 255;  // what a length byte can say

// Raised inside the builder only; BuildStack turns it into its error text.
struct BuildError {
    std::string message;
};

// A place in the description: a JSON value and the path that names it in messages.
class Node {
public:
    Node(const Json& value, std::string path) : value_(&value), path_(std::move(path)) {}

    const Json& value() const { return *value_; }
    bool Has(const char* key) const {
        return value_->is_object() && value_->contains(key) && !value_->at(key).is_null();
    }
    Node operator[](const std::string& key) const { return Node(value_->at(key), Join(key)); }
    // The members of the array under `key`; none when the key is absent.
    std::vector<Node> Elements(const char* key) const {
        std::vector<Node> members;
        if (!Has(key)) return members;
        const Node list = (*this)[key];
        if (!list.value().is_array()) list.Fail("must be an array");
        for (size_t i = 0; i < list.value().size(); ++i) {
            members.emplace_back(list.value()[i], fmt::format("{}[{}]", list.path_, i));
        }
        return members;
    }

    [[noreturn]] void Fail(const std::string& what) const { throw BuildError{path_ + ": " + what}; }
    [[noreturn]] void FailAt(const std::string& key, const std::string& what) const {
        throw BuildError{Join(key) + ": " + what};
    }

    int64_t Int(int64_t low, int64_t high) const {
        if (!value_->is_number_integer()) Fail("must be a whole number");
        if (value_->is_number_unsigned()) {
            const uint64_t v = value_->get<uint64_t>();
            if (v > static_cast<uint64_t>(high)) Fail(fmt::format("{} is out of range ({} to {})", v, low, high));
            return static_cast<int64_t>(v);
        }
        const int64_t v = value_->get<int64_t>();
        if (v < low || v > high) Fail(fmt::format("{} is out of range ({} to {})", v, low, high));
        return v;
    }
    bool Bool() const {
        if (!value_->is_boolean()) Fail("must be true or false");
        return value_->get<bool>();
    }
    std::string Utf8() const {
        if (!value_->is_string()) Fail("must be a string");
        return value_->get<std::string>();
    }
    // Stacks hold Windows-1252; the description is UTF-8.
    std::string Text() const { return Windows1252FromUtf8(Utf8()); }
    Bytes Hex() const {
        const std::string text = Utf8();
        Bytes bytes;
        int high = -1;
        for (size_t i = 0; i < text.size(); ++i) {
            const char c = text[i];
            if (c == ' ' || c == '\n' || c == '\t' || c == '\r') continue;
            int digit = -1;
            if (c >= '0' && c <= '9') digit = c - '0';
            if (c >= 'a' && c <= 'f') digit = c - 'a' + 10;
            if (c >= 'A' && c <= 'F') digit = c - 'A' + 10;
            if (digit < 0) Fail(fmt::format("'{}' at character {} is not a hex digit", c, i));
            if (high < 0) {
                high = digit;
            } else {
                bytes.push_back(static_cast<uint8_t>(high << 4 | digit));
                high = -1;
            }
        }
        if (high >= 0) Fail("hex has an odd number of digits");
        return bytes;
    }

private:
    std::string Join(const std::string& key) const { return path_.empty() ? key : path_ + "." + key; }

    const Json* value_;
    std::string path_;
};

int64_t IntOr(const Node& n, const char* key, int64_t fallback, int64_t low, int64_t high) {
    return n.Has(key) ? n[key].Int(low, high) : fallback;
}

void PutField(uint8_t* p, uint32_t width, int64_t v) {
    if (width == 4) {
        WriteBE32(p, static_cast<uint32_t>(v));
    } else {
        WriteBE16(p, static_cast<uint16_t>(v));
    }
}

int64_t FieldValue(const Node& n, uint32_t width) { return width == 4 ? n.Int(kMin32, kMax32) : n.Int(kMin16, kMax16); }

// A length-prefixed name in a field of `fieldSize` bytes; the rest of the field stays zero.
void PutName(uint8_t* field, uint32_t fieldSize, const Node& owner, const char* key) {
    if (!owner.Has(key)) return;
    const std::string text = owner[key].Text();
    if (text.size() > fieldSize - 1) owner[key].Fail(fmt::format("longer than {} characters", fieldSize - 1));
    field[0] = static_cast<uint8_t>(text.size());
    std::memcpy(field + 1, text.data(), text.size());
}

void PutReserved(uint8_t* head, const Node& owner, const ReservedArea& area) {
    if (!owner.Has(area.key)) return;
    const Bytes bytes = owner[area.key].Hex();
    if (bytes.size() != area.size) {
        owner[area.key].Fail(fmt::format("needs {} bytes, not {}", area.size, bytes.size()));
    }
    std::memcpy(head + area.offset, bytes.data(), bytes.size());
}

// The description's [left, top, right, bottom] as stored: top, left, bottom, right.
void PutRect(uint8_t* p, const Node& owner, const char* key) {
    const Node rect = owner[key];
    if (!rect.value().is_array() || rect.value().size() != 4) rect.Fail("needs four numbers [left, top, right, bottom]");
    int64_t side[4];
    for (size_t i = 0; i < 4; ++i) side[i] = Node(rect.value()[i], fmt::format("{}[{}]", key, i)).Int(kMin16, kMaxSigned16);
    WriteBE16(p, static_cast<uint16_t>(side[1]));
    WriteBE16(p + 2, static_cast<uint16_t>(side[0]));
    WriteBE16(p + 4, static_cast<uint16_t>(side[3]));
    WriteBE16(p + 6, static_cast<uint16_t>(side[2]));
}

// Stored bytes from a hex string or from a file beside the description; empty if neither is given.
Bytes Content(const Node& owner, const char* hexKey, const char* fileKey, const std::filesystem::path& baseDir) {
    if (owner.Has(hexKey) && owner.Has(fileKey)) owner.Fail(fmt::format("give either {} or {}, not both", hexKey, fileKey));
    if (owner.Has(hexKey)) return owner[hexKey].Hex();
    if (!owner.Has(fileKey)) return {};
    const std::filesystem::path path = baseDir / owner[fileKey].Utf8();
    std::string bytes;
    if (ReadWholeHostFile(path.string(), &bytes) != 0)
        owner[fileKey].Fail(fmt::format("cannot read \"{}\"", path.string()));
    return Bytes(bytes.begin(), bytes.end());
}

void Append(Bytes& to, const Bytes& more) { to.insert(to.end(), more.begin(), more.end()); }

// A card's 256 colours, which its indexed pixels and colour fields name.
using Colors = std::vector<PaletteEntry>;

// What the cards need from the header, and the ids handed out so far.
struct BuildState {
    std::filesystem::path baseDir;
    int64_t depth = 8;
    int64_t cardWidth = 640;
    int64_t cardHeight = 480;
    int64_t lastCardId = 0;  // the highest id in use; cards without one get the next
    int64_t lastItemId = 0;
    int64_t cardId = 0;  // of the card being built
    std::map<int64_t, Colors> pictureColors;  // by card id, the colours of each picture card so far
    Colors cardColors;                         // the colours of the card being built
};

int64_t NextId(int64_t* last) {
    if (*last >= kMax16) throw BuildError{"no card or item id is left above 65535"};
    return ++*last;
}

Colors DefaultColors() {
    Colors colors(kPaletteSize);
    DefaultPaletteEntries(colors.data());
    return colors;
}

// A stored ColorTable of 256 entries: seed 0, so that a build gives the same bytes every time; each
// value in the first byte of its word.
Bytes StoredColorTable(const Colors& colors) {
    Bytes table(8 + 8 * colors.size(), 0);
    WriteBE16(&table[6], static_cast<uint16_t>(colors.size() - 1));
    for (size_t i = 0; i < colors.size(); ++i) {
        uint8_t* e = &table[8 + 8 * i];
        WriteBE16(e, static_cast<uint16_t>(i));
        e[2] = colors[i].red;
        e[4] = colors[i].green;
        e[6] = colors[i].blue;
    }
    return table;
}

// The colours of a stored ColorTable at the start of `bytes`; entries it lacks stay black.
Colors ColorsOfTable(const Bytes& bytes, size_t tableSize) {
    Colors colors(kPaletteSize);
    if (tableSize < 8) return colors;
    const size_t count = std::min<size_t>({size_t{ReadBE16(&bytes[6])} + 1, (tableSize - 8) / 8, kPaletteSize});
    for (size_t i = 0; i < count; ++i) {
        const uint8_t* e = &bytes[8 + 8 * i];
        colors[i] = {e[2], e[4], e[6], 0};
    }
    return colors;
}

PngImage LoadPng(const Node& owner, const BuildState& st) {
    PngImage png;
    std::string error;
    if (!ReadPng((st.baseDir / owner["png"].Utf8()).string(), &png, &error)) owner["png"].Fail(error);
    return png;
}

// The picture's pixels at `depth`, one value each, rows top-down: at 8 bits an index into
// `colors` (the file's own indices when `keepIndices`, else the nearest colour), at 16 a 5-5-5
// word, at 32 0x00RRGGBB.
std::vector<uint32_t> PixelValues(const PngImage& png, int64_t depth, const Colors& colors, bool keepIndices) {
    const size_t count = png.rgba.size() / 4;
    std::vector<uint32_t> values(count);
    if (depth == 8 && keepIndices) {
        std::copy(png.indices.begin(), png.indices.end(), values.begin());
        return values;
    }
    std::unordered_map<uint32_t, uint32_t> nearest;
    for (size_t i = 0; i < count; ++i) {
        const uint8_t* p = &png.rgba[i * 4];
        const uint32_t rgb = uint32_t{p[0]} << 16 | uint32_t{p[1]} << 8 | p[2];
        if (depth == 32) {
            values[i] = rgb;
        } else if (depth == 16) {
            values[i] = uint32_t{p[0]} >> 3 << 10 | uint32_t{p[1]} >> 3 << 5 | uint32_t{p[2]} >> 3;
        } else {
            auto [at, fresh] = nearest.try_emplace(rgb, 0);
            if (fresh) at->second = NearestColorIndex(colors.data(), static_cast<uint32_t>(colors.size()), p[0], p[1], p[2]);
            values[i] = at->second;
        }
    }
    return values;
}

// A DibImage of the values: the codecs' display form (rows bottom-up, 16 and 32 bits as native
// words) for a background, which CompressBackground turns to stored order itself; or stored rows
// top-down with words high byte first for a graphic, whose packers take the bytes as they are.
Bytes PackedPicture(const std::vector<uint32_t>& values, int32_t width, int32_t height, int64_t depth,
                    const Node& where, bool background, bool byRows) {
    OwnedMemRef image(NewDibImage(width, height, static_cast<int32_t>(depth)));
    if (!image.ref()) where.Fail("no memory for the picture");
    {
        MemRefLock lock(image.ref());
        uint8_t* pixels = DibPixels(lock.data());
        const uint32_t rowBytes = DibImageRowBytes(lock.data());
        for (int32_t y = 0; y < height; ++y) {
            uint8_t* row = pixels + rowBytes * static_cast<uint32_t>(background ? height - 1 - y : y);
            for (int32_t x = 0; x < width; ++x) {
                const uint32_t v = values[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
                if (depth == 8) row[x] = static_cast<uint8_t>(v);
                if (depth == 16) background ? Write16(row + 2 * x, static_cast<uint16_t>(v)) : WriteBE16(row + 2 * x, static_cast<uint16_t>(v));
                if (depth == 32) background ? Write32(row + 4 * x, v) : WriteBE32(row + 4 * x, v);
            }
        }
    }
    OwnedMemRef packed(background ? CompressBackground(image.ref(), false)
                                  : byRows ? EncodeRowPacked(image.ref()) : EncodeRunPacked(image.ref()));
    if (!packed.ref()) where.Fail("no memory to compress the picture");
    MemRefLock lock(packed.ref());
    Bytes bytes(lock.data(), lock.data() + GetMemRefSize(packed.ref()));
    if (background) {
        // The codec keeps the run lengths native in memory; the file has them big-endian.
        WriteBE32(&bytes[kRunHeadLength], Read32(&bytes[kRunHeadLength]));
        WriteBE32(&bytes[kRunTailLength], Read32(&bytes[kRunTailLength]));
    }
    return bytes;
}

// The depth of a picture made from PNG: its own "depth", else the stack's.
int64_t PictureDepth(const Node& owner, const BuildState& st) {
    const int64_t depth = owner.Has("depth") ? owner["depth"].Int(kMin16, kMax16) : st.depth;
    if (depth != 8 && depth != 16 && depth != 32) {
        (owner.Has("depth") ? owner["depth"] : owner["png"]).Fail(fmt::format("a picture from PNG is of depth 8, 16 or 32, not {}", depth));
    }
    return depth;
}

// A background from PNG: format 2, a ColorTable of 256 entries (the file's own colours for an
// indexed file at 8 bits, else the default palette), the RunHeader and the LzrwBlock.
Bytes PngBackgroundContent(const Node& bg, BuildState& st, int64_t width, int64_t height, int64_t* tableSize) {
    if (bg.Has("hex") || bg.Has("file")) bg.Fail("give either png or the stored bytes (hex or file), not both");
    if (bg.Has("format") && bg["format"].Int(kMin16, kMax16) != kBgFormatRuns) bg["format"].Fail("a picture from PNG is written in format 2");
    const int64_t depth = PictureDepth(bg, st);
    const PngImage png = LoadPng(bg, st);
    if (png.width != width || png.height != height) {
        bg["png"].Fail(fmt::format("the picture is {} x {}, the card {} x {}", png.width, png.height, width, height));
    }
    const bool ownColors = depth == 8 && !png.indices.empty();
    st.cardColors = DefaultColors();
    if (ownColors) {
        std::fill(st.cardColors.begin(), st.cardColors.end(), PaletteEntry{});
        for (size_t i = 0; i < png.palette.size() && i < kPaletteSize; ++i) {
            st.cardColors[i] = {png.palette[i][0], png.palette[i][1], png.palette[i][2], 0};
        }
    }
    Bytes content = StoredColorTable(st.cardColors);
    *tableSize = static_cast<int64_t>(content.size());
    Append(content, PackedPicture(PixelValues(png, depth, st.cardColors, ownColors), png.width, png.height, depth, bg, true, true));
    return content;
}

// The chunk of a card's background, and in *pictureDepth the depth of a picture made from PNG.
Bytes BuildBackground(const Node& bg, BuildState& st, int64_t width, int64_t height, int64_t* pictureDepth) {
    if (!bg.value().is_object()) bg.Fail("must be an object");
    int64_t format = kBgFormatRuns;
    int64_t tableSize = 0;
    Bytes content;
    if (bg.Has("png")) {
        *pictureDepth = PictureDepth(bg, st);
        content = PngBackgroundContent(bg, st, width, height, &tableSize);
    } else {
        if (!bg.Has("format")) bg.FailAt("format", "needs 1, 2 or 3");
        format = bg["format"].Int(kMin16, kMax16);
        if (format < 1 || format > 3) bg["format"].Fail(fmt::format("{} is not a background format (1, 2 or 3)", format));
        // Colour table and image as stored.
        content = Content(bg, "hex", "file", st.baseDir);
        if (content.empty()) bg.Fail("needs its bytes behind the head, as hex, file or png");
        tableSize = IntOr(bg, "tableSize", 0, 0, kMax32);
        if (tableSize > static_cast<int64_t>(content.size())) {
            bg["tableSize"].Fail(fmt::format("{} is more than the {} bytes behind the head", tableSize, content.size()));
        }
        st.cardColors = tableSize > 0 ? ColorsOfTable(content, static_cast<size_t>(tableSize)) : DefaultColors();
    }
    const bool odd = content.size() % 2 != 0;
    if (odd) content.push_back(0);
    const uint16_t flags = static_cast<uint16_t>((IntOr(bg, "flags", 0, 0, kMax16) & ~kBgFlagOddPad) | (odd ? kBgFlagOddPad : 0));

    Bytes b(kBgHeadSize, 0);
    for (const ReservedArea& area : kBackgroundReservedAreas) PutReserved(b.data(), bg, area);
    WriteBE16(&b[kBgTag], 8);
    WriteBE16(&b[kBgFormat], static_cast<uint16_t>(format));
    WriteBE16(&b[kBgFlags], flags);
    WriteBE32(&b[kBgLength], static_cast<uint32_t>(kBgHeadSize + content.size()));
    WriteBE32(&b[kBgTableSize], static_cast<uint32_t>(tableSize));
    Append(b, content);
    return b;
}

// One reference of a sub-record, from `pathKey` and its optional `nameKey`.
Bytes ReferenceOf(const Node& sub, const char* pathKey, const char* nameKey) {
    const std::string path = sub[pathKey].Utf8();
    const std::string name = sub.Has(nameKey) ? sub[nameKey].Utf8() : "";
    if (Windows1252FromUtf8(path).size() > kMaxStringLength) sub[pathKey].Fail("longer than 255 characters");
    if (Windows1252FromUtf8(name).size() > kMaxStringLength) sub[nameKey].Fail("longer than 255 characters");
    Bytes reference;
    std::string error;
    StoredFileReference(path, name, &reference, &error);
    return reference;
}

uint32_t SubFieldWidth(int64_t type, uint32_t offset) {
    if (offset == kSubLength) return 4;
    if (type == kTagLaunch && offset == kSubDocumentLength) return 4;
    if (type == kTagMovie && offset == kSubWord16) return 4;
    return 2;
}

// A sub-record: its stored bytes (or a zero head), with the file references, rectangle and fields
// written over them, and last the type and the length, which the builder always owns.
// The body of an animation step from PNG files: a sprite film or a frame-delta animation.
Bytes AnimationBody(const Node& sub, const BuildState& st) {
    const bool film = sub.Has("sprite");
    const char* key = film ? "sprite" : "frameDelta";
    if (sub.Has("sprite") && sub.Has("frameDelta")) sub.Fail("give either sprite or frameDelta, not both");
    if (sub.Has("hex")) sub[key].Fail("give either the animation's PNG files or its stored bytes (hex), not both");
    const AnimationCard card{st.depth, st.cardColors.empty() ? DefaultColors() : st.cardColors};
    Bytes payload;
    AnimationBuildError error;
    const bool built = film ? BuildSpriteFilm(sub[key].value(), st.baseDir, card, &payload, &error)
                            : BuildFrameDelta(sub[key].value(), st.baseDir, card, &payload, &error);
    if (!built) {
        if (error.key.empty()) sub[key].Fail(error.text);
        sub[key].FailAt(error.key, error.text);
    }
    return payload;
}

Bytes BuildSubRecord(const Node& sub, const BuildState& st) {
    if (!sub.value().is_object()) sub.Fail("must be an object");
    if (!sub.Has("type")) sub.FailAt("type", "needs the sub-record's type");
    const int64_t type = sub["type"].Int(0, kMax16);
    const uint32_t headSize = type == kTagLaserDisc ? kLaserDiscHeadSize : kSubHeadSize;
    Bytes s = sub.Has("hex") ? sub["hex"].Hex() : Bytes(headSize, 0);
    if (s.size() < headSize) {
        sub["hex"].Fail(fmt::format("a type {} sub-record has at least {} bytes, not {}", type, headSize, s.size()));
    }
    const bool animation = sub.Has("sprite") || sub.Has("frameDelta");
    if (animation) {
        if (type != kTagAnimation) sub.Fail(fmt::format("only an animation step (type 56) takes sprite or frameDelta, not type {}", type));
        Append(s, AnimationBody(sub, st));
        const bool odd = s.size() % 2 != 0;
        if (odd) s.push_back(0);
        WriteBE16(&s[kSubFlags], static_cast<uint16_t>((ReadBE16(&s[kSubFlags]) & ~kSubFlagOddPad) | (odd ? kSubFlagOddPad : 0)));
    }

    const bool document = sub.Has("path");
    const bool program = sub.Has("programPath");
    const bool references = document || program;
    uint32_t documentLength = 0;
    bool padded = false;
    if (references) {
        const char* key = document ? "path" : "programPath";
        if (type != kTagLaunch && type != kTagOtherStack && type != kTagSoundFile && type != kTagMovie) {
            sub[key].Fail(fmt::format("a type {} sub-record carries no file reference (59, 60, 82 and 89 do)", type));
        }
        if (program && type != kTagLaunch) sub["programPath"].Fail("only a launch (type 59) names a program");
        s.resize(kSubHeadSize);
        if (document) {
            const Bytes reference = ReferenceOf(sub, "path", "name");
            documentLength = static_cast<uint32_t>(reference.size());
            Append(s, reference);
        }
        if (program) Append(s, ReferenceOf(sub, "programPath", "programName"));
        padded = s.size() % 2 != 0;
        if (padded) s.push_back(0);
    }
    if (sub.Has("rect")) PutRect(&s[kSubRect], sub, "rect");
    if (sub.Has("fields")) {
        const Node fields = sub["fields"];
        if (!fields.value().is_object()) fields.Fail("must be an object of offset: value");
        for (auto it = fields.value().begin(); it != fields.value().end(); ++it) {
            const Node field = fields[it.key()];
            const std::string& key = it.key();
            if (key.empty() || key.size() > 5 || !std::all_of(key.begin(), key.end(), [](char c) { return c >= '0' && c <= '9'; })) {
                field.Fail("not an offset");
            }
            const uint32_t offset = static_cast<uint32_t>(std::stoul(key));
            const uint32_t width = SubFieldWidth(type, offset);
            if (offset + width > s.size()) field.Fail(fmt::format("beyond the sub-record's {} bytes", s.size()));
            PutField(&s[offset], width, FieldValue(field, width));
        }
    }
    if (references) {
        if (type == kTagLaunch) WriteBE32(&s[kSubDocumentLength], documentLength);
        const uint16_t flags = static_cast<uint16_t>((ReadBE16(&s[kSubFlags]) & ~kSubFlagOddPad) | (padded ? kSubFlagOddPad : 0));
        WriteBE16(&s[kSubFlags], flags);
    }
    WriteBE16(&s[kSubType], static_cast<uint16_t>(type));
    WriteBE32(&s[kSubLength], static_cast<uint32_t>(s.size()));
    return s;
}

struct ItemShape {
    const char* noun;
    uint32_t headSize;
    uint32_t nameOffset;
    uint32_t nameSize;
    ItemFieldTable fields;
};

ItemShape ShapeOf(int64_t kind) {
    if (kind == kItemKindGraphic) return {"graphic", kGraphicHeadSize, kGraphicName, 16, kGraphicFields};
    if (kind == kItemKindButton) return {"button", kButtonHeadSize, kButtonName, 32, kButtonFields};
    return {"text field", kTextHeadSize, kTextName, 16, kTextFields};
}

// The numeric head fields by offset, as `info` prints them; the width comes from the kind's table.
void PutNumericFields(uint8_t* head, const Node& item, const ItemShape& shape) {
    const Node fields = item["fields"];
    if (!fields.value().is_object()) fields.Fail("must be an object of offset: value");
    for (auto it = fields.value().begin(); it != fields.value().end(); ++it) {
        const Node field = fields[it.key()];
        uint32_t width = 0;
        for (uint32_t at : shape.fields.words) {
            if (std::to_string(at) == it.key()) width = 2;
        }
        for (uint32_t at : shape.fields.longs) {
            if (std::to_string(at) == it.key()) width = 4;
        }
        if (width == 0) field.Fail(fmt::format("a {} has no numeric field at this offset", shape.noun));
        PutField(head + std::stoul(it.key()), width, FieldValue(field, width));
    }
}

// A graphic's picture from PNG at the stack's depth: width and height, four zero bytes, and the
// pixels packed by rows (item flag 16 set) or by runs (clear), with a pad byte if odd. At 8 bits an
// indexed file's indices are taken as they stand, as indices into the card's colours; other files
// are matched to those colours.
Bytes PngGraphicBody(const Node& item, const uint8_t* head, const BuildState& st, int64_t* itemFlags) {
    if (item.Has("raw") || item.Has("rawFile")) item.Fail("give either png or the stored bytes (raw or rawFile), not both");
    if (*itemFlags & kItemFlagFileRef) item["itemFlags"].Fail("a graphic with a picture from PNG refers to no file: clear flag 64");
    if (st.depth != 8 && st.depth != 16 && st.depth != 32) {
        item["png"].Fail(fmt::format("a graphic takes the stack's depth, and a picture from PNG needs 8, 16 or 32, not {}", st.depth));
    }
    const std::string packing = item.Has("packing") ? item["packing"].Utf8() : "row";
    if (packing != "row" && packing != "run") item["packing"].Fail("must be \"row\" or \"run\"");
    const PngImage png = LoadPng(item, st);
    // The stored rectangle is top, left, bottom, right.
    const int32_t width = static_cast<int16_t>(ReadBE16(head + kItemRect + 6)) - static_cast<int16_t>(ReadBE16(head + kItemRect + 2));
    const int32_t height = static_cast<int16_t>(ReadBE16(head + kItemRect + 4)) - static_cast<int16_t>(ReadBE16(head + kItemRect));
    if (png.width != width || png.height != height) {
        item["png"].Fail(fmt::format("the picture is {} x {}, the rect {} x {}", png.width, png.height, width, height));
    }
    Bytes body(8, 0);
    WriteBE16(&body[0], static_cast<uint16_t>(width));
    WriteBE16(&body[2], static_cast<uint16_t>(height));
    const bool byRows = packing == "row";
    Append(body, PackedPicture(PixelValues(png, st.depth, st.cardColors, !png.indices.empty()), width, height, st.depth, item,
                               false, byRows));
    const bool odd = body.size() % 2 != 0;
    if (odd) body.push_back(0);
    *itemFlags = (*itemFlags & ~int64_t{kItemFlagOddPad | kGraphicFlagRowPacked}) | (odd ? kItemFlagOddPad : 0) |
                 (byRows ? kGraphicFlagRowPacked : 0);
    return body;
}

// The action fields of a button's head that the item tables don't name; an 'Actn' record's
// readable head takes them too.
struct ActionField {
    const char* key;
    uint32_t offset;
};
constexpr ActionField kActionFields[] = {
    {"timerSeconds", 24}, {"timerMode", 26}, {"testCode", 62}, {"transitionColor", 68}, {"transitionSpeed", 76},
};

// A style run of the description.
StyleRun MakeStyleRun(const Node& run, uint32_t start) {
    const int64_t points = IntOr(run, "size", kDefaultFontPx, 1, kMaxFontPx);
    // The line's measures as our own fonts give them, unless the description says.
    const TextMetrics m = GetTextMetrics(TextFont{kDefaultFaceName, static_cast<int32_t>(points)});
    StyleRun r;
    r.start = start;
    r.lineHeight = static_cast<uint16_t>(IntOr(run, "lineHeight", m.lineHeight, 0, kMax16));
    r.ascent = static_cast<uint16_t>(IntOr(run, "ascent", m.ascent, 0, kMax16));
    r.fontId = static_cast<uint16_t>(IntOr(run, "font", 0, 0, kMax16));
    r.style = static_cast<uint8_t>(IntOr(run, "style", 0, 0, 127));
    r.size = static_cast<uint16_t>(points);
    const std::vector<Node> color = run.Elements("color");
    if (!color.empty() && color.size() != 3) run["color"].Fail("needs three numbers [red, green, blue]");
    uint16_t* components[] = {&r.red, &r.green, &r.blue};
    for (size_t i = 0; i < color.size(); ++i) *components[i] = static_cast<uint16_t>(color[i].Int(0, 255) * 257);
    return r;
}

// A text field's one text record, for every card, from `text` and its style `runs`.
Bytes TextFieldBody(const Node& item, const BuildState& st) {
    if (item.Has("raw") || item.Has("rawFile")) item.Fail("give either text or the stored bytes (raw or rawFile), not both");
    TextRecord record;
    record.cardId = static_cast<uint16_t>(IntOr(item, "cardId", st.cardId, kMin16, kMax16));
    // A paragraph ends in CR; the description may end its lines in LF or CR LF too.
    for (const char c : item["text"].Text()) {
        if (c == '\n' && !record.text.empty() && record.text.back() == '\r') continue;
        record.text += c == '\n' ? '\r' : c;
    }
    std::vector<Node> runs = item.Elements("runs");
    const Json plain = Json::object();
    if (runs.empty()) runs.emplace_back(plain, "");
    int64_t last = -1;
    for (size_t i = 0; i < runs.size(); ++i) {
        const int64_t start = IntOr(runs[i], "start", 0, 0, kMax32);
        if (start <= last || start > static_cast<int64_t>(record.text.size()) || (i == 0 && start != 0))
            runs[i].FailAt("start", "runs start at 0 and at rising offsets up to the length of the text");
        last = start;
        record.runs.push_back(MakeStyleRun(runs[i], static_cast<uint32_t>(start)));
    }
    // The record as a card holds it, its head turned to the stored order.
    Bytes body = MakeTextRecord(record, false);
    Swap16At(body.data(), {kTextRecordKind, kTextRecordCardId});
    Swap32At(body.data(), {kTextRecordFlags, kTextRecordLength, kTextRecordSize});
    return body;
}

// An item chunk; or, with `actionId`, the data of an 'Actn' record described by its head: a button
// head (kind 48) with the record's id, whose rectangle may be left out.
Bytes BuildItem(const Node& item, BuildState& st, const int64_t* actionId = nullptr) {
    if (!item.value().is_object()) item.Fail("must be an object");
    if (!actionId && !item.Has("kind")) item.FailAt("kind", "needs 16 (graphic), 48 (button) or 96 (text field)");
    const int64_t kind = item.Has("kind") ? item["kind"].Int(kMin16, kMax16) : kItemKindButton;
    if (actionId && kind != kItemKindButton) item["kind"].Fail("an action has the head of a button (48)");
    if (kind != kItemKindGraphic && kind != kItemKindButton && kind != kItemKindText) {
        item["kind"].Fail(fmt::format("{} is not an item kind (16 graphic, 48 button, 96 text field)", kind));
    }
    const ItemShape shape = ShapeOf(kind);
    Bytes head(shape.headSize, 0);
    uint8_t* h = head.data();

    for (const ReservedArea& area : kItemReservedAreas) {
        if (area.kind == kind) PutReserved(h, item, area);
    }
    if (item.Has("fields")) PutNumericFields(h, item, shape);
    for (const NamedItemField& named : kNamedItemFields) {
        if (named.kind == kind && item.Has(named.key)) PutField(h + named.offset, named.width, FieldValue(item[named.key], named.width));
    }
    for (const ActionField& field : kActionFields) {
        if (kind == kItemKindButton && item.Has(field.key)) PutField(h + field.offset, 2, FieldValue(item[field.key], 2));
    }
    if (kind == kItemKindGraphic && item.Has("pictureRect")) PutRect(h + kGraphicRect2, item, "pictureRect");
    PutName(h + shape.nameOffset, shape.nameSize, item, "name");

    if (actionId && item.Has("id")) item["id"].Fail("an action takes the record's id");
    const int64_t id = actionId ? *actionId : item.Has("id") ? item["id"].Int(kMin16, kMax16) : NextId(&st.lastItemId);
    if (!actionId && !item.Has("rect")) item.FailAt("rect", "needs four numbers [left, top, right, bottom]");
    int64_t itemFlags = IntOr(item, "itemFlags", 0, 0, kMax16);
    WriteBE16(h + kItemKind, static_cast<uint16_t>(kind));
    WriteBE16(h + kItemId, static_cast<uint16_t>(id));
    if (item.Has("rect")) PutRect(h + kItemRect, item, "rect");

    Bytes body;
    const bool png = item.Has("png");
    if (png) {
        if (kind != kItemKindGraphic) item["png"].Fail("only a graphic (kind 16) takes a picture from PNG");
        body = PngGraphicBody(item, h, st, &itemFlags);
    } else if (item.Has("text")) {
        if (kind != kItemKindText) item["text"].Fail("only a text field (kind 96) takes text");
        body = TextFieldBody(item, st);
    } else if (kind == kItemKindButton && !item.Has("raw") && !item.Has("rawFile")) {
        for (const Node& sub : item.Elements("subRecords")) Append(body, BuildSubRecord(sub, st));
    } else {
        body = Content(item, "raw", "rawFile", st.baseDir);
    }
    WriteBE16(h + kItemFlags, static_cast<uint16_t>(itemFlags));
    const bool pictureSizeGiven = !png && (item.Has("pictureSize") || (item.Has("fields") && item["fields"].Has("60")));
    if (kind == kItemKindGraphic && !pictureSizeGiven && !(itemFlags & kItemFlagFileRef)) {
        // Without a file reference the picture is all the body holds, less the pad byte.
        const size_t pad = (itemFlags & kItemFlagOddPad) && !body.empty() ? 1 : 0;
        WriteBE32(h + kGraphicPictureSize, static_cast<uint32_t>(body.size() - pad));
    }
    WriteBE32(h + kItemLength, static_cast<uint32_t>(head.size() + body.size()));
    Append(head, body);
    return head;
}

Bytes BuildCard(const Node& card, BuildState& st) {
    if (!card.value().is_object()) card.Fail("must be an object");
    const int64_t kind = IntOr(card, "kind", card.Has("background") ? kCardKindPicture : kCardKindBlank, kMin16, kMax16);
    if (kind != kCardKindBlank && kind != kCardKindPicture && kind != kCardKindGroupMember) {
        card["kind"].Fail(fmt::format("{} is not a card kind (0, 1 or 3)", kind));
    }
    if (kind == kCardKindGroupMember && !card.Has("ownerId")) {
        card.FailAt("ownerId", "a kind 3 card needs the id of the card whose picture it shows");
    }
    const int64_t ownerFallback = kind == kCardKindBlank ? -1 : 0;
    const int64_t ownerId = IntOr(card, "ownerId", ownerFallback, kMin16, kMax16);
    const int64_t width = IntOr(card, "width", st.cardWidth, kMin16, kMax16);
    const int64_t height = IntOr(card, "height", st.cardHeight, kMin16, kMax16);

    Bytes c(kCardHeadSize, 0);
    uint8_t* h = c.data();
    for (const ReservedArea& area : kCardReservedAreas) PutReserved(h, card, area);
    const int64_t id = card.Has("id") ? card["id"].Int(kMin16, kMax16) : NextId(&st.lastCardId);
    st.cardId = id;

    // The background first: a picture from PNG sets the card's depth and the colours its items name.
    Bytes background;
    int64_t pictureDepth = st.depth;
    st.cardColors = DefaultColors();
    if (kind == kCardKindPicture) {
        if (!card.Has("background")) card.FailAt("background", "a kind 1 card needs its background");
        background = BuildBackground(card["background"], st, width, height, &pictureDepth);
        st.pictureColors[id] = st.cardColors;
    } else if (card.Has("background")) {
        card["background"].Fail("only a kind 1 card has a background of its own");
    } else if (auto owner = st.pictureColors.find(ownerId); kind == kCardKindGroupMember && owner != st.pictureColors.end()) {
        st.cardColors = owner->second;
    }

    WriteBE16(h + kCardId, static_cast<uint16_t>(id));
    WriteBE16(h + kCardKind, static_cast<uint16_t>(kind));
    WriteBE16(h + kCardOwnerId, static_cast<uint16_t>(ownerId));
    WriteBE16(h + kCardFlags, static_cast<uint16_t>(IntOr(card, "cardFlags", 0, kMin16, kMax16)));
    WriteBE16(h + kCardMenuShown, static_cast<uint16_t>(IntOr(card, "menuShown", 0, kMin16, kMax16)));
    WriteBE16(h + kCardDepth, static_cast<uint16_t>(IntOr(card, "depth", pictureDepth, kMin16, kMax16)));
    WriteBE16(h + kCardWidth, static_cast<uint16_t>(width));
    WriteBE16(h + kCardHeight, static_cast<uint16_t>(height));
    PutName(h + kCardName, 16, card, "name");
    WriteBE16(h + kCardArriveAction, static_cast<uint16_t>(IntOr(card, "arriveAction", 0, kMin16, kMax16)));
    WriteBE16(h + kCardLeaveAction, static_cast<uint16_t>(IntOr(card, "leaveAction", 0, kMin16, kMax16)));
    WriteBE16(h + kCardClickAction, static_cast<uint16_t>(IntOr(card, "clickAction", 0, kMin16, kMax16)));
    WriteBE16(h + kCardCursor, static_cast<uint16_t>(IntOr(card, "cardCursor", 0, kMin16, kMax16)));
    WriteBE16(h + kCardReserved56, static_cast<uint16_t>(IntOr(card, "reserved56", 0, kMin16, kMax16)));

    Append(c, background);
    for (const Node& item : card.Elements("items")) Append(c, BuildItem(item, st));
    Append(c, {0, 0, 0xFA, 0xCE});
    WriteBE32(&c[kCardSize], static_cast<uint32_t>(c.size()));
    return c;
}

// What a sound reader's alert means to someone building a stack.
const char* SoundProblem(int32_t alert) {
    switch (alert) {
    case kAlertSoundFormat: return "a WAV format that is not read (PCM of 8 or 16 bits and MS-ADPCM are)";
    case kAlertSoundType: return "a kind of sound that is not read (8- or 16-bit or µ-law samples are)";
    case kAlertSoundNoMemory: return "not enough memory to read it";
    default: return "damaged, or not the kind of sound file its name says";
    }
}

// The standard 'Snd ' record of a sound file: its samples as the file holds them (MS-ADPCM and
// µ-law decoded to 16 bits), without the silence the player puts behind short sounds.
Bytes SoundRecordData(const Node& sound, const std::filesystem::path& baseDir) {
    const std::string path = (baseDir / sound.Utf8()).string();
    const int32_t fileType = SoundFileType(path);
    if (fileType < 0) sound.Fail(fmt::format("\"{}\" is not named as a sound file (.wav, .aif, .aiff, .aifc or .au)", path));
    std::string file;
    if (ReadWholeHostFile(path, &file) != 0) sound.Fail(fmt::format("cannot read \"{}\"", path));
    if (file.size() > std::numeric_limits<uint32_t>::max()) sound.Fail(fmt::format("\"{}\" is larger than 4 GB", path));
    const uint32_t playerMinFrames = MinSoundFrames();
    SetMinSoundFrames(0);
    MemRef decoded = 0;
    SoundInfo info;
    const int32_t result = DecodeSoundBytes(reinterpret_cast<const uint8_t*>(file.data()), static_cast<uint32_t>(file.size()),
                                            fileType, &decoded, &info);
    SetMinSoundFrames(playerMinFrames);
    if (result != 0) sound.Fail(fmt::format("\"{}\": {}", path, SoundProblem(result)));
    OwnedMemRef wave(decoded);
    OwnedMemRef record(WaveToSoundRecord(wave.ref()));
    if (record.ref() == wave.ref()) wave.Release();
    if (!record.ref()) sound.Fail(fmt::format("\"{}\": no memory for its record", path));
    MemRefLock lock(record.ref());
    return Bytes(lock.data(), lock.data() + record.size());
}

// An 'Hlnk' record as the file holds it: the head, the words at 23 and the byte kept behind them,
// then the action, if it has one, at 24 + the words' length.
Bytes HyperLinkData(const Node& link, int64_t id, BuildState& st) {
    if (!link.value().is_object()) link.Fail("must be an object");
    if (!link.Has("words")) link.FailAt("words", "needs the hot words");
    const std::string words = link["words"].Text();
    if (words.empty() || words.size() > 255) link["words"].Fail("needs 1 to 255 characters");
    Bytes data(kHlnkStoredText, 0);
    WriteBE16(&data[kHlnkLinkId], static_cast<uint16_t>(id));
    WriteBE16(&data[kHlnkFieldId], static_cast<uint16_t>(IntOr(link, "field", 0, 0, kMax16)));
    WriteBE16(&data[kHlnkTextLength], static_cast<uint16_t>(words.size()));
    data[kHlnkHasAction] = link.Has("action") ? 1 : 0;
    data.insert(data.end(), words.begin(), words.end());
    data.push_back(0);
    if (link.Has("action")) Append(data, BuildItem(link["action"], st, &id));
    return data;
}

Bytes BuildRecord(const Node& record, BuildState& st) {
    if (!record.value().is_object()) record.Fail("must be an object");
    if (!record.Has("type")) record.FailAt("type", "needs four characters, as \"Actn\"");
    const std::string type = record["type"].Text();
    if (type.size() != 4) record["type"].Fail("needs four characters, as \"Actn\"");
    if (!record.Has("id")) record.FailAt("id", "needs the record's id");

    Bytes e(kBlobHeadSize, 0);
    std::memcpy(&e[kBlobHeadType], type.data(), 4);
    WriteBE16(&e[kBlobHeadId], static_cast<uint16_t>(record["id"].Int(0, kMax16)));
    WriteBE16(&e[kBlobHeadReserved6], static_cast<uint16_t>(IntOr(record, "reserved6", 0, kMin16, kMax16)));
    PutName(&e[kBlobHeadName], kBlobNameSize, record, "name");
    uint32_t flags = static_cast<uint32_t>(IntOr(record, "flags", 0, kMin32, kMax32));
    if (record.Has("deleted") && record["deleted"].Bool()) flags |= kBlobDeleted;
    WriteBE32(&e[kBlobHeadFlags], flags);
    PutReserved(e.data(), record, {0, "reserved52", kBlobHeadReserved52, kBlobHeadReserved52Size});

    Bytes data;
    if (record.Has("action")) {
        if (type != "Actn") record["action"].Fail("only an 'Actn' record is described by an action head");
        if (record.Has("hex") || record.Has("file")) record.Fail("give either action or the stored bytes (hex or file), not both");
        const int64_t id = record["id"].Int(0, kMax16);
        data = BuildItem(record["action"], st, &id);
    } else if (record.Has("link")) {
        if (type != "Hlnk") record["link"].Fail("only an 'Hlnk' record is described as a link");
        if (record.Has("hex") || record.Has("file")) record.Fail("give either link or the stored bytes (hex or file), not both");
        data = HyperLinkData(record["link"], record["id"].Int(0, kMax16), st);
    } else if (record.Has("sound")) {
        if (type != "Snd ") record["sound"].Fail("only a 'Snd ' record is made from a sound file");
        if (record.Has("hex") || record.Has("file")) record.Fail("give either sound or the stored bytes (hex or file), not both");
        data = SoundRecordData(record["sound"], st.baseDir);
    } else {
        data = Content(record, "hex", "file", st.baseDir);
    }
    if (IconBuildError icon; record.Has("png") && !BuildIconRecord(record.value(), st.baseDir, &data, &icon)) record.FailAt(icon.key, icon.text);
    const uint32_t size = static_cast<uint32_t>(data.size());
    WriteBE32(&e[kBlobHeadSizeField], size);
    WriteBE32(&e[kBlobHeadNext], (size + 3) & ~3u);
    data.resize((size + 3) & ~3u, 0);
    Append(e, data);
    return e;
}

struct HeaderWord {
    const char* key;
    uint32_t offset;
};

constexpr HeaderWord kHeaderWords[] = {
    {"autoSave", kHdrAutoSave},
    {"advancedUser", kHdrAdvancedUser},
    {"reserved6", kHdrReserved6},
    {"version", kHdrVersion},
    {"nextCardId", kHdrNextCardId},
    {"nextItemId", kHdrNextItemId},
    {"stackFlags", kHdrStackFlags},
    {"depth", kHdrDepth},
    {"reserved18", kHdrReserved18},
    {"autoTimers", kHdrAutoTimers},
    {"reserved22", kHdrReserved22},
    {"locked", kHdrLocked},
    {"showCardNumber", kHdrShowCardNumber},
    {"presentationMode", kHdrPresentationMode},
    {"presentationColor", kHdrPresentationColor},
    {"reserved52", kHdrReserved52},
    {"windowFlags", kHdrWindowFlags},
    {"cardWidth", kHdrCardWidth},
    {"cardHeight", kHdrCardHeight},
    {"arriveAction", kHdrArriveAction},
    {"leaveAction", kHdrLeaveAction},
    {"stackCursor", kHdrStackCursor},
    {"clickAction", kHdrClickAction},
};

// What a new stack holds where the description says nothing.
int64_t HeaderFallback(uint32_t offset, const BuildState& st) {
    switch (offset) {
        case kHdrVersion: return kCurrentStackVersion;
        case kHdrNextCardId: return st.lastCardId + 1;
        case kHdrNextItemId: return st.lastItemId + 1;
        case kHdrDepth: return st.depth;
        case kHdrAutoTimers: return 1;
        case kHdrPresentationColor: return 1;
        case kHdrCardWidth: return st.cardWidth;
        case kHdrCardHeight: return st.cardHeight;
        default: return 0;
    }
}

Bytes BuildHeader(const Node& root, const BuildState& st, uint32_t cardCount, uint32_t blobOffset, uint32_t blobCount) {
    Bytes h(kStackHeaderSize, 0);
    for (const HeaderWord& word : kHeaderWords) {
        WriteBE16(&h[word.offset], static_cast<uint16_t>(IntOr(root, word.key, HeaderFallback(word.offset, st), kMin16, kMax16)));
    }
    WriteBE16(&h[kHdrCardCount], static_cast<uint16_t>(cardCount));
    PutReserved(h.data(), root, {0, "reserved28", kHdrReserved28, 4});
    PutReserved(h.data(), root, {0, "reserved80", kHdrReserved80, kHdrReserved80Size});
    if (root.Has("password")) {
        // Zero-terminated in its 16 bytes.
        const std::string password = root["password"].Text();
        if (password.size() > 15) root["password"].Fail("longer than 15 characters");
        std::memcpy(&h[kHdrPassword], password.data(), password.size());
    }
    WriteBE32(&h[kHdrBlobOffset], blobOffset);
    WriteBE32(&h[kHdrBlobCount], blobCount);
    WriteBE32(&h[kHdrNextBlobId], static_cast<uint32_t>(IntOr(root, "nextBlobId", 0, kMin32, kMax32)));
    return h;
}

// The highest id given in the description, so that cards and items without one get fresh ids.
void ScanIds(const std::vector<Node>& cards, BuildState* st) {
    for (const Node& card : cards) {
        if (card.Has("id")) st->lastCardId = std::max(st->lastCardId, card["id"].Int(kMin16, kMax16));
        for (const Node& item : card.Elements("items")) {
            if (item.Has("id")) st->lastItemId = std::max(st->lastItemId, item["id"].Int(kMin16, kMax16));
        }
    }
}

Bytes Build(const Json& description, const std::filesystem::path& baseDir) {
    if (!description.is_object()) throw BuildError{"the description must be a JSON object"};
    const Node root(description, "");
    BuildState st;
    st.baseDir = baseDir;
    st.depth = IntOr(root, "depth", st.depth, kMin16, kMax16);
    st.cardWidth = IntOr(root, "cardWidth", st.cardWidth, kMin16, kMax16);
    st.cardHeight = IntOr(root, "cardHeight", st.cardHeight, kMin16, kMax16);

    const std::vector<Node> cardNodes = root.Elements("cards");
    if (cardNodes.empty()) root.FailAt("cards", "a stack needs at least one card");
    if (cardNodes.size() > static_cast<size_t>(kMaxSigned16)) root.FailAt("cards", "more cards than a stack can count");
    ScanIds(cardNodes, &st);
    Bytes cards;
    for (const Node& card : cardNodes) Append(cards, BuildCard(card, st));

    const std::vector<Node> recordNodes = root.Elements("records");
    if (recordNodes.size() > kMaxBlobEntries) root.FailAt("records", "more than 65,536 records");
    Bytes records;
    for (const Node& record : recordNodes) Append(records, BuildRecord(record, st));

    const uint64_t blobOffset = kStackHeaderSize + cards.size();
    if (blobOffset + records.size() > std::numeric_limits<uint32_t>::max()) throw BuildError{"the stack would pass 4 GB"};
    Bytes file = BuildHeader(root, st, static_cast<uint32_t>(cardNodes.size()), static_cast<uint32_t>(blobOffset),
                             static_cast<uint32_t>(recordNodes.size()));
    Append(file, cards);
    Append(file, records);
    return file;
}

}  // namespace

bool StoredFileReference(const std::string& path, const std::string& name, std::vector<uint8_t>* bytes,
                         std::string* error) {
    std::string stored = Windows1252FromUtf8(path);
    std::string file = Windows1252FromUtf8(name);
    if (file.empty()) {
        const size_t separator = stored.find_last_of("\\:");
        file = separator == std::string::npos ? stored : stored.substr(separator + 1);
    }
    // A drive path "C:\a\b" becomes "C::a:b": the form that tells a reader it was written here.
    std::replace(stored.begin(), stored.end(), '\\', ':');
    if (stored.size() > kMaxStringLength || file.size() > kMaxStringLength) {
        *error = fmt::format("the {} is longer than 255 characters", stored.size() > kMaxStringLength ? "path" : "name");
        return false;
    }
    bytes->clear();
    bytes->push_back(static_cast<uint8_t>(stored.size()));
    bytes->insert(bytes->end(), stored.begin(), stored.end());
    if (bytes->size() % 2 != 0) bytes->push_back(0);
    bytes->insert(bytes->end(), 6, 0);
    bytes->push_back(static_cast<uint8_t>(file.size()));
    bytes->insert(bytes->end(), file.begin(), file.end());
    return true;
}

bool BuildStack(const nlohmann::ordered_json& description, const std::filesystem::path& baseDir,
                std::vector<uint8_t>* bytes, std::string* error) {
    try {
        *bytes = Build(description, baseDir);
        return true;
    } catch (const BuildError& e) {
        *error = e.message;
        return false;
    }
}
