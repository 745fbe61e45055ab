// LZRW1-A: arbitrary bytes decompressed into a buffer of exactly the size the first two bytes name,
// then compressed and back, which must give them again within the room the compressor promises.
#include <cstdint>
#include <cstring>
#include <memory>

#include "FuzzImage.h"
#include "pictures/Lzrw.h"

[[noreturn]] static void Broken(const char* what) { FuzzBroken("fuzz_lzrw", what); }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2 || size > (1u << 20)) return 0;
    const uint32_t capacity = uint32_t{data[0]} | uint32_t{data[1]} << 8;
    const uint8_t* block = data + 2;
    const auto length = static_cast<uint32_t>(size - 2);

    // Heap buffers of the exact sizes, so that AddressSanitizer sees every byte beyond them.
    std::unique_ptr<uint8_t[]> out(new uint8_t[capacity ? capacity : 1]);
    uint32_t made = 12345;
    const int32_t result = LzrwDecompress(block, length, out.get(), capacity, &made);
    // An empty block does nothing at all, the count included.
    if (length == 0 && made != 12345) Broken("an empty block changed the count");
    if (length != 0 && made > capacity) Broken("the count is beyond the output");
    if (result != 0 && result != kLzrwDamaged) Broken("an unknown result");

    // The round trip, with the work block unaligned as a caller may hand it.
    std::unique_ptr<uint8_t[]> work(new uint8_t[kLzrwWorkSize + 1]);
    std::memset(work.get(), 0, kLzrwWorkSize + 1);
    std::unique_ptr<uint8_t[]> packed(new uint8_t[length + kLzrwOutputSlack]);
    uint32_t packedLength = 0;
    LzrwCompress(work.get() + (data[0] & 3), block, length, packed.get(), &packedLength);
    if (packedLength > length + kLzrwHeadSize) Broken("the compressed block is larger than the stored form");
    if (packedLength == length + kLzrwHeadSize && length > 0 && packed[0] != kLzrwStored) Broken("a stored-size block not marked stored");
    std::unique_ptr<uint8_t[]> back(new uint8_t[length ? length : 1]);
    uint32_t backLength = 0;
    if (LzrwDecompress(packed.get(), packedLength, back.get(), length, &backLength) != 0) Broken("our own block does not decompress");
    if (backLength != length || std::memcmp(back.get(), block, length) != 0) Broken("the round trip changed the bytes");
    return 0;
}
