#include "sprites/Animations.h"

#include <cstddef>
#include <vector>

#include "base/StateRegistry.h"
#include "card/OffscreenCard.h"
#include "gfx/Blit.h"
#include "gfx/Palette.h"
#include "platform/Host.h"
#include "sprites/FrameDelta.h"

namespace {

// A tick stands for the 60 Hz tick of the format's home platform.
inline constexpr uint32_t kTickMs = 17;

struct DeltaAnimation {
    std::vector<uint8_t> source;  // the payload: head and frames
    DeltaHead head;
    Rect rect;
    uint16_t flags = 0, itemId = 0, repeatsDone = 1, frameNumber = 1;
    uint32_t nextTick = 0;
    std::vector<uint8_t> picture;
};

struct AnimationState {
    std::vector<DeltaAnimation> list;
};
AnimationState gAnimations;

uint32_t NowTicks() { return GetHost().GetTickCount() / kTickMs; }

void DrawAnimationFrame(DeltaAnimation& a) {
    const auto size = static_cast<uint32_t>(a.source.size());
    if (!ApplyDeltaFrame(a.source.data(), size, a.head, a.frameNumber, &a.picture)) return;
    Surface* window = GetHost().GetWindowSurface();
    if (!window) return;
    uint32_t colors[kPaletteSize];
    ColorsInUse(colors);
    const Surface frame = DeltaPictureSurface(a.picture, a.head, colors);
    const Rect& card = GetOffscreenState().cardRect;
    const Rect to = OffsetRect({a.rect.left, a.rect.top, a.rect.left + frame.width, a.rect.top + frame.height},
                               card.left, card.top);
    // Without the flag to ignore it, the animation keeps to its own rectangle.
    const Rect clip = (a.flags & kDeltaIgnoreClip) ? window->Bounds()
                                                   : IntersectRect(window->Bounds(), OffsetRect(a.rect, card.left, card.top));
    CopyRect(*window, clip, to.left, to.top, frame, frame.Bounds());
    const Rect shown = IntersectRect(to, clip);
    if (!shown.IsEmpty()) GetHost().Present(shown);
}

}  // namespace

int32_t AddAnimation(MemRef block, const int16_t rect[4], uint16_t itemId) {
    DeltaAnimation a;
    {
        MemRefLock lock(block);
        const uint32_t size = GetMemRefSize(block);
        if (lock && ReadDeltaHead(lock.data(), size, &a.head)) a.source.assign(lock.data(), lock.data() + size);
    }
    FreeMemRef(block);
    if (a.source.empty()) return -1;
    a.flags = a.head.flags;
    if (a.flags & kAnimationReplaceOthers) FinishAnimations(itemId);
    a.rect = {rect[0], rect[1], rect[2], rect[3]};
    a.itemId = itemId;
    a.nextTick = NowTicks();
    gAnimations.list.push_back(std::move(a));
    return 0;
}

void StepAnimations(void*) {
    const uint32_t now = NowTicks();
    auto& list = gAnimations.list;
    for (size_t i = 0; i < list.size();) {
        DeltaAnimation& a = list[i];
        if (static_cast<int32_t>(now - a.nextTick) < 0) {
            ++i;
            continue;
        }
        if (!(a.flags & kAnimationFinished) && a.frameNumber <= a.head.frameCount) DrawAnimationFrame(a);
        if (a.frameNumber <= a.head.frameCount) {
            ++a.frameNumber;
            a.nextTick = now + a.head.tickDelay;
        } else if (a.repeatsDone != a.head.repeats) {
            // A repeat count of 0 plays on until the count wraps: practically for ever.
            a.frameNumber = 1;
            ++a.repeatsDone;
            a.nextTick = now;
        } else {
            if (a.flags & kAnimationRepaintAtEnd) RepaintRect(a.rect.left, a.rect.top, a.rect.right, a.rect.bottom);
            list.erase(list.begin() + static_cast<std::ptrdiff_t>(i));
            continue;
        }
        ++i;
    }
}

void FinishAnimations(uint16_t itemId) {
    for (DeltaAnimation& a : gAnimations.list) {
        if (itemId != 0 && a.itemId != itemId) continue;
        a.flags |= kAnimationFinished;
        a.frameNumber = static_cast<uint16_t>(a.head.frameCount + 1);
        a.repeatsDone = a.head.repeats;
    }
}

void StopAllAnimations() { gAnimations.list.clear(); }

bool IsAnimationDone(uint16_t itemId) {
    for (const DeltaAnimation& a : gAnimations.list) {
        if (a.itemId == itemId && !(a.flags & kAnimationFinished)) return false;
    }
    return true;
}

void ResetAnimationState() { gAnimations = AnimationState{}; }

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Sprites, ResetAnimationState);
}  // namespace
