#include "IconBuilder.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t kDirectoryHeadSize = 6;  // reserved, type 1 (icon), entry count
constexpr uint32_t kDirectoryEntrySize = 16;
constexpr uint32_t kPictureOffset = kDirectoryHeadSize + kDirectoryEntrySize;
constexpr uint32_t kInfoHeadSize = 40;
constexpr int32_t kMaxSide = 256;  // the entry's size bytes say 0 for 256
constexpr uint8_t kOpaqueAlpha = 128;

void PutLE16(uint8_t* p, uint32_t v) {
    p[0] = static_cast<uint8_t>(v);
    p[1] = static_cast<uint8_t>(v >> 8);
}

void PutLE32(uint8_t* p, uint32_t v) {
    PutLE16(p, v & 0xFFFF);
    PutLE16(p + 2, v >> 16);
}

uint32_t RowBytes(int32_t width, int64_t bits) {
    return static_cast<uint32_t>((width * bits + 31) / 32 * 4);
}

using Colour = std::array<uint8_t, 3>;

}  // namespace

bool IconFileFromPicture(const PngImage& picture, int64_t depth, std::vector<uint8_t>* data,
                         std::string* error) {
    if (depth != 4 && depth != 8) {
        *error = fmt::format("an icon is of depth 4 or 8, not {}", depth);
        return false;
    }
    const int32_t width = picture.width, height = picture.height;
    if (width < 1 || height < 1 || width > kMaxSide || height > kMaxSide) {
        *error = fmt::format("an icon is at most {0} x {0} pixels, not {1} x {2}", kMaxSide, width,
                             height);
        return false;
    }
    const size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    if (picture.rgba.size() < pixels * 4) {
        *error = "the picture holds fewer pixels than its size";
        return false;
    }

    // The table: the opaque colours as they first occur, and black for the transparent pixels.
    std::vector<Colour> table;
    std::vector<uint8_t> index(pixels, 0);
    std::vector<bool> transparent(pixels, false);
    const auto indexOf = [&table](const Colour& c) {
        const auto at = std::find(table.begin(), table.end(), c);
        if (at != table.end()) return static_cast<size_t>(at - table.begin());
        table.push_back(c);
        return table.size() - 1;
    };
    const size_t capacity = size_t{1} << depth;
    for (size_t i = 0; i < pixels; ++i) {
        const uint8_t* p = &picture.rgba[i * 4];
        transparent[i] = p[3] < kOpaqueAlpha;
        const size_t at = indexOf(transparent[i] ? Colour{0, 0, 0} : Colour{p[0], p[1], p[2]});
        if (at >= capacity) {
            *error = fmt::format(
                "the picture has more than {0} colours (black counts for transparent pixels): a "
                "{1}-bit icon holds {0}",
                capacity, depth);
            return false;
        }
        index[i] = static_cast<uint8_t>(at);
    }

    const uint32_t colourStride = RowBytes(width, depth), maskStride = RowBytes(width, 1);
    const uint32_t rowsSize = (colourStride + maskStride) * static_cast<uint32_t>(height);
    const uint32_t pictureSize = kInfoHeadSize + static_cast<uint32_t>(capacity) * 4 + rowsSize;
    Bytes out(kPictureOffset + pictureSize, 0);

    PutLE16(&out[2], 1);  // an icon, not a cursor
    PutLE16(&out[4], 1);  // one picture
    uint8_t* entry = &out[kDirectoryHeadSize];
    entry[0] = static_cast<uint8_t>(width % kMaxSide);
    entry[1] = static_cast<uint8_t>(height % kMaxSide);
    entry[2] = static_cast<uint8_t>(capacity % 256);  // colour count; 0 for 256
    PutLE16(entry + 4, 1);                            // planes
    PutLE16(entry + 6, static_cast<uint32_t>(depth));
    PutLE32(entry + 8, pictureSize);
    PutLE32(entry + 12, kPictureOffset);

    uint8_t* head = &out[kPictureOffset];
    PutLE32(head, kInfoHeadSize);
    PutLE32(head + 4, static_cast<uint32_t>(width));
    PutLE32(head + 8, static_cast<uint32_t>(height) * 2);  // colour rows and mask rows
    PutLE16(head + 12, 1);
    PutLE16(head + 14, static_cast<uint32_t>(depth));
    PutLE32(head + 20, rowsSize);

    uint8_t* colours = head + kInfoHeadSize;
    for (size_t i = 0; i < table.size(); ++i) {
        colours[i * 4] = table[i][2];  // blue, green, red, zero
        colours[i * 4 + 1] = table[i][1];
        colours[i * 4 + 2] = table[i][0];
    }

    uint8_t* colourRows = colours + capacity * 4;
    uint8_t* maskRows =
        colourRows + static_cast<size_t>(colourStride) * static_cast<size_t>(height);
    for (int32_t y = 0; y < height; ++y) {
        const int32_t stored = height - 1 - y;  // bottom row first
        uint8_t* colourRow =
            colourRows + static_cast<size_t>(colourStride) * static_cast<size_t>(stored);
        uint8_t* maskRow = maskRows + static_cast<size_t>(maskStride) * static_cast<size_t>(stored);
        for (int32_t x = 0; x < width; ++x) {
            const size_t i =
                static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
            if (depth == 8) {
                colourRow[x] = index[i];
            } else {
                colourRow[x / 2] |= static_cast<uint8_t>(x % 2 ? index[i] : index[i] << 4);
            }
            if (transparent[i]) maskRow[x / 8] |= static_cast<uint8_t>(0x80 >> (x % 8));
        }
    }
    *data = std::move(out);
    return true;
}

bool BuildIconRecord(const nlohmann::ordered_json& record, const std::filesystem::path& baseDir,
                     std::vector<uint8_t>* data, IconBuildError* error) {
    const auto fail = [error](const char* key, std::string text) {
        *error = {key, std::move(text)};
        return false;
    };
    if (!record.is_object() || !record.contains("png")) return fail("png", "names no PNG file");
    if (!record.contains("type") || record["type"] != "Icon") {
        return fail("png", "a picture from PNG makes an 'Icon' record only");
    }
    const auto has = [&record](const char* key) {
        return record.contains(key) && !record[key].is_null();
    };
    if (has("hex") || has("file") || has("action")) {
        return fail("png", "give either png or the record's bytes (hex, file or action), not both");
    }
    if (!record["png"].is_string()) return fail("png", "must be a string");
    int64_t depth = 4;
    if (has("depth")) {
        if (!record["depth"].is_number_integer()) return fail("depth", "must be 4 or 8");
        depth = record["depth"].get<int64_t>();
    }
    PngImage picture;
    std::string message;
    const std::filesystem::path path = baseDir / record["png"].get<std::string>();
    if (!ReadPng(path.string(), &picture, &message)) return fail("png", message);
    if (!IconFileFromPicture(picture, depth, data, &message)) {
        return fail(depth != 4 && depth != 8 ? "depth" : "png", message);
    }
    return true;
}
