#include "stack/StackHeader.h"

#include "base/ByteOrder.h"
#include "stack/Normalise.h"

void SwapHeader(uint8_t* h) {
    Swap16At(h, {0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 48, 50, 52, 54, 56, 58, 72, 74,
                 76, 78});
    Swap32At(h, {60, 64, 68});
}

void NormaliseHeader(uint8_t* h) {
    SwapHeader(h);
    ResetWhiteFirstTest();
}

bool HeaderIsPlausible(const uint8_t* h) {
    return ReadS16(h + kHdrDepth) <= 32 && ReadS16(h + kHdrVersion) <= 255 &&
           ReadS16(h + kHdrVersion) != 0 && ReadS16(h + kHdrReserved6) <= 255 &&
           ReadS16(h + kHdrCardWidth) != 0 && ReadS16(h + kHdrCardHeight) != 0 &&
           Read32(h + kHdrBlobCount) <= kMaxBlobCount && ReadS16(h + kHdrCardCount) != 0;
}
