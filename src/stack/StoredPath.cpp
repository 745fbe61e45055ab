// Stored file reference -> native form.
//
// Stored: [n1] path (":" separators) [pad if 1 + n1 is odd] six bytes [n2] name.
// Native: path "\0" ("\" separators, a drive) [pad if n1' + 1 is odd] six zero bytes name "\0".
// The two forms have the same length unless the path came from the other platform, whose volume
// name gives way to the current stack's drive and root.
#include <cstring>

#include "stack/Normalise.h"
#include "stack/PathSlot.h"

namespace {

// The buffer a conversion starts from; a reference can come out longer (two strings of 255
// characters and a drive), and then it grows before the cut.
constexpr uint32_t kPathBufferSize = 500;
// A drive root and a bare name of 255 characters, a terminator, pad, six zero bytes, 255
// characters of name, a terminator and the round-up.
constexpr uint32_t kLongestNative = 3 + 255 + 1 + 1 + 6 + 255 + 1 + 1;
constexpr uint32_t kZeroGap = 6;

// Builds the native form in `out`; false if the stored reference doesn't fit in `available`.
bool BuildNativeReference(const uint8_t* src, uint32_t available, char drive, bool padToEven,
                          uint8_t* out, uint32_t* total, bool* odd) {
    if (available < 1) return false;
    const uint32_t n1 = src[0];
    const uint32_t first = 1 + n1 + ((1 + n1) & 1);
    if (first + kZeroGap + 1 > available) return false;
    const uint32_t n2 = src[first + kZeroGap];
    if (first + kZeroGap + 1 + n2 > available) return false;

    const uint8_t* path = src + 1;
    uint32_t at = 0;
    uint32_t from = 0;
    if (n1 >= 3 && path[1] == ':' && path[2] == ':') {
        // Written here: the drive stays and its doubled ":" was the root's "\".
        out[at++] = path[0];
        out[at++] = ':';
        out[at++] = '\\';
        from = 3;
    } else if (n1 > 0) {
        // From the other platform: the volume name gives way to the stack's drive. A bare name
        // without a volume is kept whole behind the root; an empty path stays empty.
        const void* colon = std::memchr(path, ':', n1);
        from = colon ? static_cast<uint32_t>(static_cast<const uint8_t*>(colon) - path) + 1 : 0;
        out[at++] = static_cast<uint8_t>(drive);
        out[at++] = ':';
        out[at++] = '\\';
    }
    for (uint32_t i = from; i < n1; ++i) out[at++] = path[i] == ':' ? '\\' : path[i];
    out[at++] = 0;
    if (at & 1) out[at++] = 0;
    std::memset(out + at, 0, kZeroGap);
    at += kZeroGap;
    std::memcpy(out + at, src + first + kZeroGap + 1, n2);
    at += n2;
    out[at++] = 0;
    *odd = (at & 1) != 0;
    if (*odd && padToEven) out[at++] = 0;
    *total = at;
    return true;
}

}  // namespace

MemRef ConvertStoredPath(const uint8_t* source, uint32_t available, bool* oddFlag, bool padToEven) {
    uint8_t native[kLongestNative];
    uint32_t total = 0;
    bool odd = false;
    if (!source ||
        !BuildNativeReference(source, available, CurrentStackDrive(), padToEven, native, &total, &odd)) {
        return 0;
    }
    if (oddFlag) *oddFlag = odd;
    MemRef ref = NewMemRef(kPathBufferSize);
    if (!ref) return 0;
    if (SetMemRefSize(ref, total) != 0) {
        FreeMemRef(ref);
        return 0;
    }
    MemRefLock lock(ref);
    if (!lock) {
        FreeMemRef(ref);
        return 0;
    }
    std::memcpy(lock.data(), native, total);
    return ref;
}
