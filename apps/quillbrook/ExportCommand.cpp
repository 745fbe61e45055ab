// `quillbrook export FILE -o DIR`: every card's background and every graphic's picture as a PNG.
//
// Backgrounds are read as the card shows them: a group card shows its owner's picture, which is
// written once, under the owner's position. Format 3 pictures are decoded at 32 bits, so that the
// export does not lose colours to a palette. Pictures that do not decode are reported and skipped.
#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "Commands.h"
#include "OpenForCommand.h"
#include "PngFile.h"
#include "host/Application.h"
#include "imaging/Background.h"
#include "imaging/CardPalette.h"
#include "imaging/DibImage.h"
#include "imaging/JpegBackground.h"
#include "imaging/OwnedMemRef.h"
#include "imaging/PackedPixels.h"
#include "imaging/Palette.h"
#include "platform/HostFile.h"
#include "platform/HostPath.h"
#include "platform/headless/HeadlessHost.h"
#include "stack/ByteOrder.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackFlows.h"
#include "ui/Alert.h"

namespace {

namespace fs = std::filesystem;

// Graphic picture: width and height, two zero words, then the packed pixels.
constexpr uint32_t kPictureHeadSize = 8;

// How the deep pixels of an image are laid out: a background comes from GetCardBackground in
// working order (a native word), a graphic's pixels stay as stored (high byte first; 0, R, G, B).
enum class DeepOrder { Working, Stored };

uint8_t Expand5(uint32_t v) { return static_cast<uint8_t>(v << 3 | v >> 2); }

// RGBA rows of a DibImage whose memory rows run top-down; indexed pixels through its colour table.
std::vector<uint8_t> ToRgba(const uint8_t* dib, DeepOrder order) {
    const int32_t width = DibWidth(dib), height = DibHeight(dib), depth = DibDepth(dib);
    const uint32_t rowBytes = DibImageRowBytes(dib), colorCount = DibColorCount(dib);
    const uint8_t* colors = DibColors(dib);
    std::vector<uint8_t> rgba(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
    uint8_t* out = rgba.data();
    for (int32_t y = 0; y < height; ++y) {
        const uint8_t* row = DibPixels(dib) + uint64_t{rowBytes} * static_cast<uint32_t>(y);
        for (int32_t x = 0; x < width; ++x, out += 4) {
            uint32_t r = 0, g = 0, b = 0;
            if (depth == 32) {
                if (order == DeepOrder::Working) {
                    const uint32_t v = Read32(row + 4 * x);
                    r = v >> 16 & 255, g = v >> 8 & 255, b = v & 255;
                } else {
                    r = row[4 * x + 1], g = row[4 * x + 2], b = row[4 * x + 3];
                }
            } else if (depth == 24) {
                b = row[3 * x], g = row[3 * x + 1], r = row[3 * x + 2];
            } else if (depth == 16) {
                const uint32_t v = order == DeepOrder::Working ? Read16(row + 2 * x) : ReadBE16(row + 2 * x);
                r = Expand5(v >> 10 & 31), g = Expand5(v >> 5 & 31), b = Expand5(v & 31);
            } else {
                uint32_t index = 0;
                if (depth == 8) index = row[x];
                if (depth == 4) index = row[x / 2] >> (x % 2 ? 0 : 4) & 15;
                if (depth == 1) index = row[x / 8] >> (7 - x % 8) & 1;
                if (index < colorCount) {
                    const uint8_t* c = colors + kDibColorSize * index;
                    b = c[0], g = c[1], r = c[2];
                }
            }
            out[0] = static_cast<uint8_t>(r);
            out[1] = static_cast<uint8_t>(g);
            out[2] = static_cast<uint8_t>(b);
            out[3] = 255;
        }
    }
    return rgba;
}

// The depth a picture is laid out at: the card's own depth field, else the stack's; 24 is kept at
// 32, as the display keeps it.
int32_t PictureDepth(const uint8_t* card) {
    for (int32_t depth : {static_cast<int32_t>(ReadS16(card + kCardDepth)), static_cast<int32_t>(GetDocument().depth)}) {
        if (depth == 24) return 32;
        if (depth == 1 || depth == 4 || depth == 8 || depth == 16 || depth == 32) return depth;
    }
    return 8;
}

// One picture to write: where it comes from and the file it becomes.
struct Job {
    int32_t position = 0;  // the card's, from 1
    bool background = false;
    int16_t graphicId = 0;
    uint32_t itemOffset = 0;  // of the graphic in the card record
    std::string fileName;
};

// The graphics of a card that hold pixels of their own, by the item chain; a chain that leaves the
// record stops the walk.
std::vector<Job> GraphicJobs(MemRef card, int32_t position) {
    std::vector<Job> jobs;
    MemRefLock lock(card);
    const uint32_t size = GetMemRefSize(card);
    if (!lock || size < kEmptyCardSize) return jobs;
    const uint8_t* c = lock.data();
    uint64_t offset = kCardHeadSize;
    if (ReadS16(c + kCardKind) == kCardKindPicture) {
        if (size < kCardHeadSize + kBgHeadSize) return jobs;
        offset = ItemChainStart(c);
    }
    while (offset + kItemCommonHeadSize <= size) {
        const uint8_t* item = c + offset;
        const int16_t kind = ReadS16(item + kItemKind);
        const uint32_t length = Read32(item + kItemLength);
        if (kind == 0 || length < kItemCommonHeadSize || offset + length > size) break;
        if (kind == kItemKindGraphic && length >= kGraphicHeadSize && Read32(item + kGraphicPictureSize) != 0) {
            const int16_t id = ReadS16(item + kItemId);
            jobs.push_back({position, false, id, static_cast<uint32_t>(offset), fmt::format("card-{:03}-graphic-{}.png", position, id)});
        }
        offset += length;
    }
    return jobs;
}

// The pixels of a background, top-down, or an empty vector with *problem set.
std::vector<uint8_t> BackgroundRgba(MemRef card, int32_t* width, int32_t* height, std::string* problem) {
    int32_t depth = 8;
    {
        MemRefLock lock(card);
        depth = PictureDepth(lock.data());
    }
    MemRef image = 0;
    int32_t result = GetCardBackground(card, &image, depth, false, true);
    if (result == kBackgroundJpeg) result = DecodeJpegBackground(card, &image, 32, false);
    OwnedMemRef owned(image);
    if (result != 0) {
        *problem = result == kBackgroundNoMemory ? "not enough memory to decode it"
                   : result == kJpegUnsupported  ? "its JPEG picture cannot be decoded at this depth"
                                                 : "the picture is damaged";
        return {};
    }
    MemRefLock lock(image);
    *width = DibWidth(lock.data());
    *height = DibHeight(lock.data());
    return ToRgba(lock.data(), DeepOrder::Working);
}

// The pixels of a graphic, top-down, or an empty vector with *problem set.
std::vector<uint8_t> GraphicRgba(MemRef card, uint32_t itemOffset, int32_t* width, int32_t* height, std::string* problem) {
    int32_t depth = 8;
    uint16_t flags = 0;
    std::vector<uint8_t> packed;
    {
        MemRefLock lock(card);
        const uint8_t* item = lock.data() + itemOffset;
        depth = PictureDepth(lock.data());
        const uint32_t length = Read32(item + kItemLength);
        flags = Read16(item + kItemFlags);
        const uint32_t pad = flags & kItemFlagOddPad ? 1 : 0;
        const uint32_t pictureSize = Read32(item + kGraphicPictureSize);
        if (pictureSize < kPictureHeadSize || pad + pictureSize > length - kGraphicHeadSize) {
            *problem = "its picture does not fit its item";
            return {};
        }
        const uint8_t* picture = item + length - pad - pictureSize;
        *width = ReadS16(picture);
        *height = ReadS16(picture + 2);
        packed.assign(picture + kPictureHeadSize, picture + pictureSize);
    }
    if (*width <= 0 || *height <= 0) {
        *problem = fmt::format("its picture is {} by {} pixels", *width, *height);
        return {};
    }
    OwnedMemRef image(NewDibImage(*width, *height, depth));
    if (!image.ref()) {
        *problem = "not enough memory to decode it";
        return {};
    }
    MemRefLock lock(image.ref());
    if (depth == 1) {
        Write32(DibColors(lock.data()) + kDibColorSize, 0xFFFFFF);  // 0 black, 1 white
    } else if (depth <= 8) {
        // The card's palette, or the default one for a card without one.
        PaletteRef palette = GetCardPalette(card);
        if (!palette) palette = LoadDefaultPalette();
        uint8_t* colors = DibColors(lock.data());
        for (uint32_t i = 0; palette && i < DibColorCount(lock.data()) && i < palette->count; ++i) {
            const PaletteEntry& e = palette->entries[i];
            colors[kDibColorSize * i] = e.blue;
            colors[kDibColorSize * i + 1] = e.green;
            colors[kDibColorSize * i + 2] = e.red;
        }
    }
    if (DecodeGraphicPixels(image.ref(), flags, packed.data(), static_cast<uint32_t>(packed.size())) != 0) {
        *problem = "its pixels are damaged";
        return {};
    }
    // The packed rows run top-down and land in memory in that order.
    return ToRgba(lock.data(), DeepOrder::Stored);
}

// Progress on a terminal: one line redrawn in place.
class Progress {
public:
    explicit Progress(size_t total) : total_(total), terminal_(isatty(STDERR_FILENO) == 1) {}
    bool terminal() const { return terminal_; }
    void Show(size_t done, const std::string& name) const {
        if (!terminal_) return;
        constexpr size_t kBarWidth = 30;
        const size_t filled = total_ ? done * kBarWidth / total_ : kBarWidth;
        fmt::print(stderr, "\r[{}{}] {}/{} {:<32.32}", std::string(filled, '#'), std::string(kBarWidth - filled, '.'), done,
                   total_, name);
        std::fflush(stderr);
    }
    void Clear() const {
        if (terminal_) fmt::print(stderr, "\r{:80}\r", "");
    }

private:
    size_t total_;
    bool terminal_;
};

}  // namespace

int RunExport(const std::string& path, const std::string& outDir) {
    if (!OpenStackForCommand(path)) return 1;
    std::error_code error;
    fs::create_directories(outDir, error);
    if (error || !fs::is_directory(outDir)) {
        fmt::print(stderr, "{}: cannot make the folder: {}\n", outDir, error ? error.message() : "a file is in the way");
        CloseStack();
        return 1;
    }

    std::vector<Job> jobs;
    for (int32_t position = 1; position <= CardCount(); ++position) {
        const MemRef card = GetCardByPosition(position);
        {
            MemRefLock lock(card);
            // Only a picture card has a background of its own; its group members show it.
            if (lock && GetMemRefSize(card) > kEmptyCardSize && ReadS16(lock.data() + kCardKind) == kCardKindPicture) {
                jobs.push_back({position, true, 0, 0, fmt::format("card-{:03}-background.png", position)});
            }
        }
        for (Job& job : GraphicJobs(card, position)) jobs.push_back(std::move(job));
    }

    const Progress progress(jobs.size());
    size_t written = 0, skipped = 0;
    bool failed = false;
    for (size_t i = 0; i < jobs.size(); ++i) {
        const Job& job = jobs[i];
        progress.Show(i, job.fileName);
        const MemRef card = GetCardByPosition(job.position);
        int32_t width = 0, height = 0;
        std::string problem;
        const std::vector<uint8_t> rgba = job.background ? BackgroundRgba(card, &width, &height, &problem)
                                                         : GraphicRgba(card, job.itemOffset, &width, &height, &problem);
        const std::string what = job.background ? fmt::format("card {}: background", job.position)
                                                     : fmt::format("card {}: graphic {}", job.position, job.graphicId);
        if (rgba.empty()) {
            progress.Clear();
            fmt::print(stderr, "{}: {}: {}; skipped\n", path, what, problem);
            ++skipped;
            continue;
        }
        const std::string file = (fs::path(outDir) / job.fileName).string();
        if (!WritePng(file, width, height, rgba)) {
            progress.Clear();
            fmt::print(stderr, "{}: cannot write it\n", file);
            failed = true;
            break;
        }
        ++written;
        if (!progress.terminal()) fmt::print("{} ({}x{})\n", file, width, height);
    }
    progress.Clear();
    CloseStack();
    fmt::print("{} picture{} written to {}{}\n", written, written == 1 ? "" : "s", outDir,
               skipped ? fmt::format(", {} damaged and skipped", skipped) : "");
    return failed ? 1 : 0;
}
