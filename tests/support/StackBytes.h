// Stack files written byte by byte in tests, straight from the format's tables, so the reader is
// checked against bytes derived by hand rather than against our own writer.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "gfx/Surface.h"
#include "memory/MemRef.h"

using Bytes = std::vector<uint8_t>;

void PutBE16(Bytes& b, size_t at, uint16_t v);
void PutBE32(Bytes& b, size_t at, uint32_t v);
void AppendBE16(Bytes& b, uint16_t v);
void AppendBE32(Bytes& b, uint32_t v);
void Append(Bytes& b, const Bytes& more);
inline Bytes Of(const std::string& s) { return Bytes(s.begin(), s.end()); }

// A new block holding `bytes`; the bytes a block holds; the same of a block made for the test, which
// is freed.
MemRef BlockOf(const Bytes& bytes);
Bytes BlockBytes(MemRef ref);
Bytes TakeBytes(MemRef ref);

struct HeaderSpec {
    uint16_t cardCount = 1;
    uint16_t version = 5;
    uint16_t depth = 8;
    uint16_t cardWidth = 640;
    uint16_t cardHeight = 480;
    uint32_t blobCount = 0;
    uint32_t nextBlobId = 0;
};
Bytes StoredHeader(const HeaderSpec& spec);  // blobOffset is filled in by StoredStack

// A blank card (kind 0) of 100 bytes, 640 by 480, or with the given item chunks between head and tail.
Bytes StoredCard(uint16_t id, const std::string& name, const std::vector<Bytes>& items = {},
                 uint16_t kind = 0, uint16_t ownerId = 0xFFFF);
// An item chunk: common head with the kind-specific head bytes (already big-endian) behind it.
Bytes StoredItem(uint16_t kind, uint16_t id, int16_t left, int16_t top, int16_t right, int16_t bottom,
                 const Bytes& headRest, uint16_t itemFlags = 0);
// A stored graphic holding `picture` (its 8-byte size head, then the packed pixels) with its frame;
// an odd picture gets its pad byte and the item flag that says so.
Bytes StoredGraphic(uint16_t id, const Rect& r, const Bytes& picture, uint16_t itemFlags = 0,
                    uint16_t frameColor = 0, uint16_t frameWidth = 0);
// A stored button of `shape` that shows its name (text colour 256 on fill 1), sub-records behind it.
Bytes StoredButton(uint16_t id, const Rect& r, int16_t shape, const std::string& name,
                   uint16_t itemFlags = 0, const Bytes& subRecords = {});
// A stored file reference: the length-prefixed path, a pad byte if the path with its length byte is
// odd, six zero bytes, the length-prefixed name.
Bytes StoredFileRef(const std::string& path, const std::string& name);
// A typed-record entry: 68-byte head plus data padded to a multiple of 4.
Bytes StoredRecord(const char (&type)[5], uint16_t id, const std::string& name, const Bytes& data, uint32_t flags = 0);
// Header, cards and records joined, with blobOffset set to the end of the cards.
Bytes StoredStack(const HeaderSpec& spec, const std::vector<Bytes>& cards, const std::vector<Bytes>& records);

// Writes bytes to a fresh file under the test temp folder and returns its path.
std::string WriteTempFile(const std::string& name, const Bytes& bytes);
Bytes ReadWholeFile(const std::string& path);
// Removes what WriteTempFile wrote in this process.
void RemoveTempFiles();

// The program as it stands after start-up, with no stack, no alerts, no file faults and the
// headless host: where every test that opens stacks begins.
void StartProgramAfresh();
