#include "actions/ActionQuery.h"

#include "actions/ActionRecord.h"
#include "base/ByteOrder.h"
#include "stack/Blob.h"

namespace {

// Launching (0x8000) is left out on purpose: an action that only launches a program does nothing
// for a click on a text field, which then goes to the text.
inline constexpr uint16_t kEffectBits = kActSoundFile | kActStackSound | kActNba | kActGo |
                                        kActAnimation | kActMovie | kActLogo | kActLaserDisc;

}  // namespace

bool ActionDoesSomething(uint16_t id) {
    if (id == 0) return false;
    const MemRef record = GetBlobById(FourCC("Actn"), id);
    if (!record) return false;
    const uint32_t size = GetMemRefSize(record);
    MemRefLock lock(record);
    if (!lock || size < kActionHeadSize) return false;
    return ReadS16(lock.data() + kActionTestCode) != 0 ||
           (Read16(lock.data() + kActionFlags) & kEffectBits) != 0;
}
