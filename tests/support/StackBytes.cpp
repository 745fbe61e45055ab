#include "support/StackBytes.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

#include <unistd.h>

#include "base/StateRegistry.h"
#include "card/GraphicPicture.h"
#include "host/Application.h"
#include "stack/Blob.h"
#include "stack/CardRecord.h"

void PutBE16(Bytes& b, size_t at, uint16_t v) {
    b[at] = static_cast<uint8_t>(v >> 8);
    b[at + 1] = static_cast<uint8_t>(v);
}
void PutBE32(Bytes& b, size_t at, uint32_t v) {
    PutBE16(b, at, static_cast<uint16_t>(v >> 16));
    PutBE16(b, at + 2, static_cast<uint16_t>(v));
}
MemRef BlockOf(const Bytes& bytes) {
    const MemRef ref = NewMemRef(static_cast<uint32_t>(bytes.size()));
    MemRefLock lock(ref);
    if (lock && !bytes.empty()) std::memcpy(lock.data(), bytes.data(), bytes.size());
    return ref;
}
Bytes BlockBytes(MemRef ref) {
    MemRefLock lock(ref);
    return lock ? Bytes(lock.data(), lock.data() + GetMemRefSize(ref)) : Bytes{};
}
Bytes TakeBytes(MemRef ref) {
    Bytes bytes = BlockBytes(ref);
    FreeMemRef(ref);
    return bytes;
}
void AppendBE16(Bytes& b, uint16_t v) {
    b.resize(b.size() + 2);
    PutBE16(b, b.size() - 2, v);
}
void AppendBE32(Bytes& b, uint32_t v) {
    b.resize(b.size() + 4);
    PutBE32(b, b.size() - 4, v);
}
void Append(Bytes& b, const Bytes& more) { b.insert(b.end(), more.begin(), more.end()); }

Bytes StoredHeader(const HeaderSpec& spec) {
    Bytes h(128, 0);
    // presentationColor at 50: 0 would be raised to 1 at open
    for (const auto& [at, v] : {std::pair<size_t, uint16_t>{4, spec.cardCount}, {8, spec.version}, {10, 1}, {12, 1},
                                {16, spec.depth}, {20, 1}, {50, 1}, {56, spec.cardWidth}, {58, spec.cardHeight}})
        PutBE16(h, at, v);
    PutBE32(h, 64, spec.blobCount);
    PutBE32(h, 68, spec.nextBlobId);
    return h;
}

Bytes StoredCard(uint16_t id, const std::string& name, const std::vector<Bytes>& items, uint16_t kind,
                 uint16_t ownerId) {
    Bytes c(96, 0);
    // A card carries the depth a save stores into the card on show (at 18), and the stack's size (at
    // 20), which the open writes over it anyway.
    for (const auto& [at, v] : {std::pair<size_t, uint16_t>{0, id}, {6, kind}, {8, ownerId}, {18, 8}, {20, 640}, {22, 480}})
        PutBE16(c, at, v);
    c[32] = static_cast<uint8_t>(name.size());
    std::memcpy(&c[33], name.data(), name.size());
    for (const Bytes& item : items) Append(c, item);
    Append(c, {0, 0, 0xFA, 0xCE});
    PutBE32(c, 2, static_cast<uint32_t>(c.size()));
    return c;
}

Bytes StoredItem(uint16_t kind, uint16_t id, int16_t left, int16_t top, int16_t right, int16_t bottom,
                 const Bytes& headRest, uint16_t itemFlags) {
    Bytes i(16, 0);
    PutBE16(i, 0, kind);
    PutBE16(i, 2, id);
    for (const auto& [at, v] : {std::pair{4, top}, std::pair{6, left}, std::pair{8, bottom}, std::pair{10, right}})
        PutBE16(i, at, static_cast<uint16_t>(v));
    Append(i, headRest);
    if (i.size() >= 24) PutBE16(i, 22, itemFlags);
    PutBE32(i, 12, static_cast<uint32_t>(i.size()));
    return i;
}

Bytes StoredGraphic(uint16_t id, const Rect& r, const Bytes& picture, uint16_t itemFlags,
                    uint16_t frameColor, uint16_t frameWidth) {
    Bytes rest(kGraphicHeadSize - 16, 0);
    PutBE16(rest, kGraphicFrameColor - 16, frameColor);
    PutBE16(rest, kGraphicFrameWidth - 16, frameWidth);
    PutBE32(rest, kGraphicPictureSize - 16, static_cast<uint32_t>(picture.size()));
    Append(rest, picture);
    if (picture.size() % 2) {
        rest.push_back(0);
        itemFlags |= kItemFlagOddPad;
    }
    return StoredItem(kItemKindGraphic, id, static_cast<int16_t>(r.left), static_cast<int16_t>(r.top),
                      static_cast<int16_t>(r.right), static_cast<int16_t>(r.bottom), rest, itemFlags);
}

Bytes StoredButton(uint16_t id, const Rect& r, int16_t shape, const std::string& name,
                   uint16_t itemFlags, const Bytes& subRecords) {
    Bytes rest(kButtonHeadSize - 16, 0);
    rest[kButtonName - 16] = static_cast<uint8_t>(name.size());
    std::copy(name.begin(), name.end(), rest.begin() + kButtonName - 16 + 1);
    PutBE16(rest, kButtonShape - 16, static_cast<uint16_t>(shape));
    PutBE16(rest, kButtonFlags - 16, 8);  // show the name
    PutBE16(rest, kButtonTextColor - 16, 256);
    PutBE16(rest, kButtonFillColor - 16, 1);
    Append(rest, subRecords);
    return StoredItem(kItemKindButton, id, static_cast<int16_t>(r.left), static_cast<int16_t>(r.top),
                      static_cast<int16_t>(r.right), static_cast<int16_t>(r.bottom), rest, itemFlags);
}

Bytes StoredFileRef(const std::string& path, const std::string& name) {
    Bytes b{static_cast<uint8_t>(path.size())};
    b.insert(b.end(), path.begin(), path.end());
    if (b.size() & 1) b.push_back(0);
    b.insert(b.end(), 6, 0);
    b.push_back(static_cast<uint8_t>(name.size()));
    b.insert(b.end(), name.begin(), name.end());
    return b;
}

Bytes StoredRecord(const char (&type)[5], uint16_t id, const std::string& name, const Bytes& data, uint32_t flags) {
    Bytes r(68, 0);
    std::memcpy(&r[0], type, 4);
    PutBE16(r, 4, id);
    if (!name.empty()) {
        r[8] = static_cast<uint8_t>(name.size());
        std::memcpy(&r[9], name.data(), name.size());
    }
    PutBE32(r, 40, flags);
    PutBE32(r, 44, static_cast<uint32_t>(data.size()));
    const uint32_t padded = (static_cast<uint32_t>(data.size()) + 3) & ~3u;
    PutBE32(r, 48, padded);
    Append(r, data);
    r.resize(68 + padded, 0);
    return r;
}

Bytes StoredStack(const HeaderSpec& spec, const std::vector<Bytes>& cards, const std::vector<Bytes>& records) {
    HeaderSpec s = spec;
    if (s.blobCount == 0) s.blobCount = static_cast<uint32_t>(records.size());
    Bytes file = StoredHeader(s);
    for (const Bytes& c : cards) Append(file, c);
    PutBE32(file, 60, static_cast<uint32_t>(file.size()));
    for (const Bytes& r : records) Append(file, r);
    return file;
}

namespace {
std::filesystem::path TempDir() {
    return std::filesystem::temp_directory_path() / ("quillbrook-tests-" + std::to_string(::getpid()));
}
}  // namespace

void RemoveTempFiles() {
    std::error_code ignored;
    std::filesystem::remove_all(TempDir(), ignored);
}

std::string WriteTempFile(const std::string& name, const Bytes& bytes) {
    const std::filesystem::path dir = TempDir();
    std::filesystem::create_directories(dir);
    const std::string path = (dir / name).string();
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path;
}

Bytes ReadWholeFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void StartProgramAfresh() {
    ResetAllState();
    InitApplication(nullptr);
}
