#include "pictures/ResourcePicture.h"

#include <fmt/core.h>

#include <memory>
#include <vector>

#include "gfx/Blit.h"

namespace {

constexpr int32_t kMaxPictureSide = 1024;

// One line of the text at a time, with its number for the messages.
struct LineReader {
    std::string_view text;
    size_t pos = 0;
    int number = 0;

    bool Next(std::string_view* line) {
        if (pos >= text.size()) return false;
        size_t end = text.find('\n', pos);
        if (end == std::string_view::npos) end = text.size();
        *line = text.substr(pos, end - pos);
        if (!line->empty() && line->back() == '\r') line->remove_suffix(1);
        pos = end + 1;
        ++number;
        return true;
    }
};

// The words of a line, split at blanks.
std::vector<std::string_view> Words(std::string_view line) {
    std::vector<std::string_view> words;
    size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
        const size_t start = i;
        while (i < line.size() && line[i] != ' ' && line[i] != '\t') ++i;
        if (i > start) words.push_back(line.substr(start, i - start));
    }
    return words;
}

bool IsBlank(std::string_view line) {
    return line.find_first_not_of(" \t") == std::string_view::npos;
}

bool ParseSide(std::string_view word, int32_t* side) {
    if (word.empty() || word.size() > 4) return false;
    int32_t value = 0;
    for (char c : word) {
        if (c < '0' || c > '9') return false;
        value = value * 10 + (c - '0');
    }
    if (value < 1 || value > kMaxPictureSide) return false;
    *side = value;
    return true;
}

// A point inside a picture of `limit` pixels: 0 to limit - 1.
bool ParseCoordinate(std::string_view word, int32_t limit, int32_t* coordinate) {
    if (word.empty() || word.size() > 4) return false;
    int32_t value = 0;
    for (char c : word) {
        if (c < '0' || c > '9') return false;
        value = value * 10 + (c - '0');
    }
    if (value >= limit) return false;
    *coordinate = value;
    return true;
}

bool ParseColour(std::string_view word, uint32_t* colour) {
    if (word.size() != 6) return false;
    uint32_t value = 0;
    for (char c : word) {
        uint32_t digit;
        if (c >= '0' && c <= '9')
            digit = static_cast<uint32_t>(c - '0');
        else if (c >= 'a' && c <= 'f')
            digit = static_cast<uint32_t>(c - 'a' + 10);
        else if (c >= 'A' && c <= 'F')
            digit = static_cast<uint32_t>(c - 'A' + 10);
        else
            return false;
        value = value << 4 | digit;
    }
    *colour = value;
    return true;
}

struct PaletteEntry {
    bool defined = false;
    bool opaque = false;
    uint32_t colour = 0;
};

bool Fail(std::string* error, int line, const std::string& why) {
    if (error) *error = fmt::format("line {}: {}", line, why);
    return false;
}

// Everything read from the compiled-in texts; constant for the run once made.
struct PictureStore {
    std::vector<ResourcePicture> pictures;
};

const PictureStore& Store() {
    static const std::unique_ptr<PictureStore> store = [] {
        auto made = std::make_unique<PictureStore>();
        for (const EmbeddedPicture* e = kEmbeddedPictures; e->name; ++e) {
            ResourcePicture picture;
            if (!ParseResourcePicture(e->text, &picture)) continue;
            picture.name = e->name;
            made->pictures.push_back(std::move(picture));
        }
        return made;
    }();
    return *store;
}

}  // namespace

bool ParseResourcePicture(std::string_view text, ResourcePicture* out, std::string* error) {
    *out = ResourcePicture{};
    LineReader reader{text};
    std::string_view line;
    int32_t width = 0, height = 0;
    PaletteEntry palette[128];
    bool haveRows = false;
    bool hasHotSpot = false;
    int32_t hotSpotX = 0, hotSpotY = 0;

    while (!haveRows && reader.Next(&line)) {
        if (IsBlank(line) || line[0] == '#') continue;
        const std::vector<std::string_view> words = Words(line);
        if (width == 0) {
            if (words.size() != 3 || words[0] != "size" || !ParseSide(words[1], &width) ||
                !ParseSide(words[2], &height)) {
                return Fail(error, reader.number, "expected \"size W H\", 1 to 1024 each");
            }
        } else if (words[0] == "color") {
            if (words.size() != 3 || words[1].size() != 1)
                return Fail(error, reader.number,
                            "expected \"color C RRGGBB\" or \"color C none\"");
            const unsigned char c = static_cast<unsigned char>(words[1][0]);
            if (c <= ' ' || c >= 127)
                return Fail(error, reader.number, "not a printable character");
            PaletteEntry& entry = palette[c];
            if (entry.defined)
                return Fail(error, reader.number, "the character has a colour already");
            entry.defined = true;
            if (words[2] != "none") {
                if (!ParseColour(words[2], &entry.colour))
                    return Fail(error, reader.number, "a colour is six hex digits or \"none\"");
                entry.opaque = true;
            }
        } else if (words[0] == "hotspot") {
            if (hasHotSpot) return Fail(error, reader.number, "a second \"hotspot\"");
            if (words.size() != 3 || !ParseCoordinate(words[1], width, &hotSpotX) ||
                !ParseCoordinate(words[2], height, &hotSpotY))
                return Fail(error, reader.number, "expected \"hotspot X Y\" inside the picture");
            hasHotSpot = true;
        } else if (words[0] == "rows" && words.size() == 1) {
            haveRows = true;
        } else {
            return Fail(error, reader.number, "expected \"color\", \"hotspot\" or \"rows\"");
        }
    }
    if (!haveRows) return Fail(error, reader.number, "no \"rows\"");

    Surface pixels(width, height, kWhite);
    BitMask mask(width, height);
    for (int32_t y = 0; y < height; ++y) {
        if (!reader.Next(&line)) return Fail(error, reader.number, "fewer rows than the height");
        if (line.size() != static_cast<size_t>(width))
            return Fail(error, reader.number, fmt::format("a row of {} characters", line.size()));
        for (int32_t x = 0; x < width; ++x) {
            const unsigned char c = static_cast<unsigned char>(line[static_cast<size_t>(x)]);
            if (c >= 128 || !palette[c].defined)
                return Fail(error, reader.number,
                            fmt::format("no colour for '{}'", static_cast<char>(c)));
            if (!palette[c].opaque) continue;
            pixels.Row(y)[x] = palette[c].colour;
            mask.Set(x, y, true);
        }
    }
    while (reader.Next(&line)) {
        if (!IsBlank(line)) return Fail(error, reader.number, "more rows than the height");
    }
    out->pixels = std::move(pixels);
    out->mask = std::move(mask);
    out->hasHotSpot = hasHotSpot;
    out->hotSpotX = hotSpotX;
    out->hotSpotY = hotSpotY;
    return true;
}

const ResourcePicture* FindResourcePicture(std::string_view name) {
    for (const ResourcePicture& picture : Store().pictures) {
        if (picture.name == name) return &picture;
    }
    return nullptr;
}

void DrawResourcePicture(Surface& target, const Clip& clip, int32_t x, int32_t y,
                         const ResourcePicture& picture) {
    BitMask mask = picture.mask;
    mask.left = x;
    mask.top = y;
    MaskedCopy(target, clip, x, y, picture.pixels, picture.pixels.Bounds(), mask);
}
