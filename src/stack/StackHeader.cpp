#include "stack/StackHeader.h"

#include "base/ByteOrder.h"
#include "stack/Normalise.h"

void SwapHeader(uint8_t* h) {
    Swap16At(h, {kHdrAutoSave, kHdrAdvancedUser, kHdrCardCount, kHdrReserved6, kHdrVersion,
                 kHdrNextCardId, kHdrNextItemId, kHdrStackFlags, kHdrDepth, kHdrReserved18,
                 kHdrAutoTimers, kHdrReserved22, kHdrLocked, kHdrShowCardNumber,
                 kHdrPresentationMode, kHdrPresentationColor, kHdrReserved52, kHdrWindowFlags,
                 kHdrCardWidth, kHdrCardHeight, kHdrArriveAction, kHdrLeaveAction, kHdrStackCursor,
                 kHdrClickAction});
    Swap32At(h, {kHdrBlobOffset, kHdrBlobCount, kHdrNextBlobId});
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
