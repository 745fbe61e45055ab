#include "host/ButtonPress.h"

#include "base/StateRegistry.h"
#include "card/ButtonDraw.h"
#include "card/DisplayList.h"
#include "platform/Host.h"
#include "stack/CardRecord.h"
#include "subsystems/Subsystems.h"

namespace {

ButtonPressState gPress;

DisplayItem* PressedItem() {
    if (gPress.pressedId == 0) return nullptr;
    return FindDisplayItem(kItemKindButton, gPress.pressedId);
}

// Everything InvertItem can touch: the region, the rectangle, and the mask at the rectangle's
// corner.
Rect InversionBounds(const DisplayItem& item) {
    Rect r = item.rect;
    if (item.hasRegion) r = UnionRect(r, item.region.Bounds());
    if (item.hasMask) {
        r = UnionRect(r, {item.rect.left, item.rect.top, item.rect.left + item.mask.width,
                          item.rect.top + item.mask.height});
    }
    return r;
}

// The hilite goes straight to the window, not to the offscreen card: a repaint takes it away.
void InvertOnWindow(const DisplayItem& item) {
    const Host& host = GetHost();
    Surface* window = host.GetWindowSurface();
    if (!window) return;
    InvertItem(*window, window->Bounds(), item);
    host.Present(InversionBounds(item));
}

void SetInverted(bool on) {
    if (gPress.inverted == on) return;
    gPress.inverted = on;
    if (DisplayItem* item = PressedItem()) InvertOnWindow(*item);
}

// Drops the press without running anything, taking its hilite away.
void CancelPress() {
    SetInverted(false);
    gPress = ButtonPressState{0, false, false, false, gPress.hoverId};
}

}  // namespace

ButtonPressState& GetButtonPressState() { return gPress; }
void ResetButtonPress() { gPress = ButtonPressState{}; }

void TrackButtonPress(void*, DisplayItem* item) {
    if (!item || (item->flags & kItemFlagNoPressTracking)) return;
    CancelPress();
    gPress.pressedId = item->id;
    gPress.pressing = true;
    gPress.inside = true;
    if (item->hiliteOnPress) SetInverted(true);
}

bool FollowPress(int32_t x, int32_t y) {
    if (!gPress.pressing) return false;
    const DisplayItem* item = PressedItem();
    if (!item) {
        // The button went away under the press (another card came up): nothing is left to run.
        CancelPress();
        return true;
    }
    const bool inside = ItemContainsPoint(*item, x, y);
    if (inside != gPress.inside) {
        gPress.inside = inside;
        SetInverted(inside && item->hiliteOnPress);
    }
    return true;
}

bool TrackHover(void* window, int32_t x, int32_t y) {
    if (IsBrowsing()) {
        if (const DisplayItem* hover = FindItemAt(x, y, true, nullptr)) {
            const uint16_t id = static_cast<uint16_t>(hover->id);
            if (id != gPress.hoverId) {
                gPress.hoverId = id;
                // Entering a hover button ends a press in progress; its hilite goes with it,
                // rather than staying on the window.
                CancelPress();
                GetSubsystems().RunItemAction(window, id, 1);
                return true;
            }
        } else {
            gPress.hoverId = kNoHover;
        }
    }
    return FollowPress(x, y);
}

void ReleaseButtonPress(void* window) {
    if (!gPress.pressing) return;
    gPress.pressing = false;
    if (!gPress.inside) {
        gPress.pressedId = 0;
        return;
    }
    gPress.inside = false;
    SetInverted(false);
    const uint16_t id = static_cast<uint16_t>(gPress.pressedId);
    gPress.pressedId = 0;
    GetSubsystems().RunItemAction(window, id, 1);
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Host, ResetButtonPress);
}  // namespace
