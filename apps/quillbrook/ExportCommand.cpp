// `quillbrook export FILE -o DIR`: every card's background and every graphic's picture as a PNG,
// every 'Snd ' record as a WAV file, the text of every card's fields as JSON and as plain text.
//
// Backgrounds are read as the card shows them: a group card shows its owner's picture, which is
// written once, under the owner's position. Format 3 pictures are decoded at 32 bits, so that the
// export does not lose colours to a palette. A sound is written with the samples its record holds,
// our compressed records unpacked. Pictures and sounds that do not decode are reported and skipped.
#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "CardText.h"
#include "Commands.h"
#include "OpenForCommand.h"
#include "PngFile.h"
#include "Progress.h"
#include "base/ByteOrder.h"
#include "card/GraphicPicture.h"
#include "gfx/DibImage.h"
#include "host/Application.h"
#include "media/CompressedSound.h"
#include "media/SoundRecord.h"
#include "media/SoundWave.h"
#include "memory/OwnedMemRef.h"
#include "messages/Alert.h"
#include "pictures/Background.h"
#include "pictures/JpegBackground.h"
#include "platform/Host.h"
#include "platform/HostFile.h"
#include "platform/HostPath.h"
#include "platform/headless/HeadlessHost.h"
#include "sprites/SpriteRecord.h"
#include "sprites/Stage.h"
#include "player/StackFlows.h"
#include "stack/Blob.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/SubRecord.h"

namespace {

namespace fs = std::filesystem;

uint8_t Expand5(uint32_t v) { return static_cast<uint8_t>(v << 3 | v >> 2); }

// RGBA rows of a DibImage whose memory rows run top-down, deep pixels in working order; indexed
// pixels through its colour table.
std::vector<uint8_t> ToRgba(const uint8_t* dib) {
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
                const uint32_t v = Read32(row + 4 * x);
                r = v >> 16 & 255, g = v >> 8 & 255, b = v & 255;
            } else if (depth == 24) {
                b = row[3 * x], g = row[3 * x + 1], r = row[3 * x + 2];
            } else if (depth == 16) {
                const uint32_t v = Read16(row + 2 * x);
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

enum class JobKind { Background, Graphic, Film, Sound, Text };

// One picture or sound to write: where it comes from and the file it becomes.
struct Job {
    int32_t position = 0;  // the card's, from 1
    JobKind kind = JobKind::Background;
    int32_t id = 0;           // the graphic's or the 'Snd ' record's
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
        uint32_t sub = 0;
        if (kind == kItemKindButton && length >= kActionHeadSize && FindSubRecord(item, length, kTagAnimation, &sub) &&
            IsSpriteFilm(item + sub + kSubHeadSize, SubRecordPayloadSize(item + sub))) {
            const int16_t id = ReadS16(item + kItemId);
            jobs.push_back({position, JobKind::Film, id, static_cast<uint32_t>(offset + sub),
                            fmt::format("card-{:03}-button-{}-frame-", position, id)});
        }
        if (kind == kItemKindGraphic && length >= kGraphicHeadSize && Read32(item + kGraphicPictureSize) != 0) {
            const int16_t id = ReadS16(item + kItemId);
            jobs.push_back({position, JobKind::Graphic, id, static_cast<uint32_t>(offset), fmt::format("card-{:03}-graphic-{}.png", position, id)});
        }
        offset += length;
    }
    return jobs;
}

// The frames of the film in the animation step at `subOffset` of the card, each as RGBA with its
// see-through pixels clear; none with *problem set.
std::vector<std::vector<uint8_t>> FilmFrameRgba(MemRef card, uint32_t subOffset, int32_t* width, int32_t* height,
                                                std::string* problem) {
    std::vector<std::vector<uint8_t>> frames;
    MemRefLock lock(card);
    const uint8_t* sub = lock.data() + subOffset;
    SpriteRecord record;
    FilmImages images;
    if (ExpandSpriteRecord(sub + kSubHeadSize, SubRecordPayloadSize(sub), &record) != 0 ||
        MakeFilmImages(record.film, &images) != 0) {
        *problem = "its film can't be read";
        return frames;
    }
    for (size_t f = 0; f < images.frames.size(); ++f) {
        const Surface& picture = images.frames[f];
        std::vector<uint8_t> rgba(static_cast<size_t>(picture.width) * picture.height * 4);
        for (int32_t y = 0; y < picture.height; ++y) {
            for (int32_t x = 0; x < picture.width; ++x) {
                uint8_t* out = &rgba[(static_cast<size_t>(y) * picture.width + x) * 4];
                const uint32_t c = picture.Row(y)[x];
                out[0] = RedOf(c), out[1] = GreenOf(c), out[2] = BlueOf(c);
                out[3] = images.masks[f].Get(x, y) ? 255 : 0;
            }
        }
        *width = picture.width, *height = picture.height;
        frames.push_back(std::move(rgba));
    }
    return frames;
}

// The pixels of a background, top-down, or an empty vector with *problem set.
std::vector<uint8_t> BackgroundRgba(MemRef card, int32_t* width, int32_t* height, std::string* problem) {
    int32_t depth = 8;
    {
        MemRefLock lock(card);
        depth = CardPictureDepth(lock.data());
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
    return ToRgba(lock.data());
}

// The pixels of a graphic, top-down, or an empty vector with *problem set.
std::vector<uint8_t> GraphicRgba(MemRef card, uint32_t itemOffset, int32_t* width, int32_t* height, std::string* problem) {
    MemRef image = 0;
    GraphicPictureHead head;
    const int32_t result = ReadGraphicPicture(card, itemOffset, &image, false, &head);
    OwnedMemRef owned(image);
    *width = head.width;
    *height = head.height;
    switch (result) {
    case 0: {
        MemRefLock lock(image);
        return ToRgba(lock.data());
    }
    case kGraphicPictureNoMemory:
        *problem = "not enough memory to decode it";
        break;
    case kGraphicPictureBadSize:
        *problem = fmt::format("its picture is {} by {} pixels", head.width, head.height);
        break;
    case kGraphicPictureDamaged:
        *problem = "its pixels are damaged";
        break;
    default:
        *problem = "its picture does not fit its item";
        break;
    }
    return {};
}

int32_t ScanRecord(MemRef record, SoundInfo* info, uint32_t* dataOffset) {
    MemRefLock lock(record);
    return lock ? ScanSoundRecord(lock.data(), GetMemRefSize(record), info, dataOffset) : kAlertBadSound;
}

// The WAV file of a 'Snd ' record: its samples as they stand, 16-bit ones turned little-endian; or
// an empty vector with *problem set.
std::vector<uint8_t> SoundWav(uint16_t id, SoundInfo* info, std::string* problem) {
    MemRef record = GetBlobById(FourCC("Snd "), id);
    if (!record) {
        *problem = "the record cannot be read";
        return {};
    }
    uint32_t dataOffset = 0;
    int32_t result = ScanRecord(record, info, &dataOffset);
    OwnedMemRef unpacked(0);
    if (result == kSoundNotPlayed) {
        unpacked.Reset(DecompressSoundRecord(record));
        if (!unpacked.ref()) {
            *problem = "its samples are compressed in a form that cannot be unpacked";
            return {};
        }
        record = unpacked.ref();
        result = ScanRecord(record, info, &dataOffset);
    }
    if (result != 0) {
        *problem = "the sound is damaged";
        return {};
    }
    MemRefLock lock(record);
    const uint8_t* samples = lock.data() + dataOffset;
    std::vector<uint8_t> wav(kWaveHeaderBytes + info->dataBytes);
    WriteWaveHeader(wav.data(), *info, info->dataBytes);
    uint8_t* out = wav.data() + kWaveHeaderBytes;
    for (uint32_t i = 0; i < info->dataBytes; ++i) out[i] = samples[info->bits == 16 ? i ^ 1 : i];
    // A chunk of odd size is followed by a pad byte, which the RIFF size counts.
    if (info->dataBytes % 2 != 0) {
        wav.push_back(0);
        Write32(wav.data() + 4, static_cast<uint32_t>(wav.size() - 8));
    }
    return wav;
}

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
                jobs.push_back({position, JobKind::Background, 0, 0, fmt::format("card-{:03}-background.png", position)});
            }
        }
        for (Job& job : GraphicJobs(card, position)) jobs.push_back(std::move(job));
        jobs.push_back({position, JobKind::Text, 0, 0, fmt::format("card-{:03}-text.json", position)});
    }
    const uint32_t store = GetDocument().storeRef;
    size_t soundCount = 0;
    for (uint32_t i = 0; i < CountBlobEntries(store); ++i) {
        BlobEntryInfo e;
        if (!GetBlobEntry(store, i, &e) || e.type != FourCC("Snd ") || (e.flags & kBlobDeleted)) continue;
        jobs.push_back({0, JobKind::Sound, e.id, 0, fmt::format("sound-{}.wav", e.id)});
        ++soundCount;
    }

    const Progress progress(jobs.size());
    size_t pictures = 0, sounds = 0, texts = 0, skipped = 0;
    bool failed = false;
    for (size_t i = 0; i < jobs.size(); ++i) {
        const Job& job = jobs[i];
        progress.Show(i, job.fileName);
        const std::string file = (fs::path(outDir) / job.fileName).string();
        if (job.kind == JobKind::Text) {
            nlohmann::ordered_json json;
            std::string plain;
            if (!CardText(GetCardByPosition(job.position), job.position, &json, &plain)) continue;
            const std::string text = json.dump(1) + "\n";
            const std::string plainFile = (fs::path(outDir) / fmt::format("card-{:03}.txt", job.position)).string();
            plain += "\n";
            if (WriteWholeHostFile(file, text.data(), text.size()) != 0 ||
                WriteWholeHostFile(plainFile, plain.data(), plain.size()) != 0) {
                progress.Clear();
                fmt::print(stderr, "{}: card {}: cannot write {}\n", path, job.position, file);
                failed = true;
                break;
            }
            ++texts;
            if (!progress.terminal()) fmt::print("{} ({} fields)\n", file, json["fields"].size());
            continue;
        }
        if (job.kind == JobKind::Sound) {
            SoundInfo info;
            std::string problem;
            const std::vector<uint8_t> wav = SoundWav(static_cast<uint16_t>(job.id), &info, &problem);
            const std::string what = fmt::format("'Snd ' record {}", job.id);
            if (wav.empty()) {
                progress.Clear();
                fmt::print(stderr, "{}: {}: {}; skipped\n", path, what, problem);
                ++skipped;
            } else if (WriteWholeHostFile(file, wav.data(), wav.size()) != 0) {
                progress.Clear();
                fmt::print(stderr, "{}: {}: cannot write {}\n", path, what, file);
                failed = true;
                break;
            } else {
                ++sounds;
                if (!progress.terminal()) {
                    fmt::print("{} ({} Hz, {}-bit, {})\n", file, info.rate, info.bits, info.channels == 2 ? "stereo" : "mono");
                }
            }
            continue;
        }
        if (job.kind == JobKind::Film) {
            int32_t width = 0, height = 0;
            std::string problem;
            const auto frames = FilmFrameRgba(GetCardByPosition(job.position), job.itemOffset, &width, &height, &problem);
            const std::string what = fmt::format("card {}: button {}'s film", job.position, job.id);
            if (frames.empty()) {
                progress.Clear();
                fmt::print(stderr, "{}: {}: {}; skipped\n", path, what, problem);
                ++skipped;
            }
            for (size_t f = 0; f < frames.size() && !failed; ++f) {
                const std::string frameFile = file + fmt::format("{}.png", f + 1);
                if (!WritePng(frameFile, width, height, frames[f])) {
                    progress.Clear();
                    fmt::print(stderr, "{}: {}: cannot write {}\n", path, what, frameFile);
                    failed = true;
                    break;
                }
                ++pictures;
                if (!progress.terminal()) fmt::print("{} ({}x{})\n", frameFile, width, height);
            }
            if (failed) break;
            continue;
        }
        const bool background = job.kind == JobKind::Background;
        const MemRef card = GetCardByPosition(job.position);
        int32_t width = 0, height = 0;
        std::string problem;
        const std::vector<uint8_t> rgba = background ? BackgroundRgba(card, &width, &height, &problem)
                                                     : GraphicRgba(card, job.itemOffset, &width, &height, &problem);
        const std::string what = background ? fmt::format("card {}: background", job.position)
                                            : fmt::format("card {}: graphic {}", job.position, job.id);
        if (rgba.empty()) {
            progress.Clear();
            fmt::print(stderr, "{}: {}: {}; skipped\n", path, what, problem);
            ++skipped;
            continue;
        }
        if (!WritePng(file, width, height, rgba)) {
            progress.Clear();
            fmt::print(stderr, "{}: {}: cannot write {}\n", path, what, file);
            failed = true;
            break;
        }
        ++pictures;
        if (!progress.terminal()) fmt::print("{} ({}x{})\n", file, width, height);
    }
    progress.Clear();
    CloseStack();
    const std::string soundPart = soundCount ? fmt::format(", {} sound{}", sounds, sounds == 1 ? "" : "s") : "";
    const std::string textPart = texts ? fmt::format(", the text of {} card{}", texts, texts == 1 ? "" : "s") : "";
    fmt::print("{} picture{}{}{} written to {}{}\n", pictures, pictures == 1 ? "" : "s", soundPart, textPart, outDir,
               skipped ? fmt::format(", {} damaged and skipped", skipped) : "");
    return failed ? 1 : 0;
}
