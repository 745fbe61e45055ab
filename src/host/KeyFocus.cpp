#include "host/KeyFocus.h"

#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "card/FieldEdit.h"
#include "card/FieldSelection.h"
#include "card/OffscreenCard.h"
#include "host/ButtonPress.h"
#include "platform/Host.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"

namespace {

KeyFocusState gFocus;

// The ring stands this far outside the item, two pixels thick, so that it shows on any colour:
// every pixel under it is inverted.
inline constexpr int32_t kRingGap = 2;
inline constexpr int32_t kRingWidth = 2;

bool TakesFocus(const DisplayItem& item) {
    if (item.type != kItemKindButton && item.type != kItemKindText) return false;
    return !item.hidden && (item.flags & kItemFlagHidden) == 0 && !item.rect.IsEmpty();
}

DisplayItem* FindFocusable(int16_t id) {
    for (DisplayItem* item = DisplayListHead(); item; item = item->next.get()) {
        if (item->id == id && TakesFocus(*item)) return item;
    }
    return nullptr;
}

void InvertRing(Surface& window, const Rect& ring) {
    const Rect inner = InflateRect(ring, -kRingWidth, -kRingWidth);
    const Rect clip = IntersectRect(ring, window.Bounds());
    for (int32_t y = clip.top; y < clip.bottom; ++y) {
        uint32_t* row = window.Row(y);
        for (int32_t x = clip.left; x < clip.right; ++x) {
            if (!inner.Contains(x, y)) row[x] ^= kWhite;
        }
    }
}

// The ring goes away by drawing the card there again: whatever was drawn over the ring since
// stays right.
void HideRing() {
    if (gFocus.ring.IsEmpty()) return;
    const Rect r = gFocus.ring;
    gFocus.ring = Rect{};
    RepaintRect(r.left, r.top, r.right, r.bottom);
}

void ShowRing(const DisplayItem& item) {
    Host& host = GetHost();
    Surface* window = host.GetWindowSurface();
    if (!window) return;
    gFocus.ring = InflateRect(item.rect, kRingGap + kRingWidth, kRingGap + kRingWidth);
    InvertRing(*window, gFocus.ring);
    host.Present(gFocus.ring);
}

}  // namespace

KeyFocusState& GetKeyFocusState() { return gFocus; }
void ResetKeyFocus() { gFocus = KeyFocusState{}; }

int16_t FocusedItemId() {
    if (gFocus.itemId == 0 || gFocus.cardId != GetDocument().currentCardId) return 0;
    return FindFocusable(gFocus.itemId) ? gFocus.itemId : 0;
}

int16_t MoveKeyFocus(bool backwards) {
    const int16_t current = FocusedItemId();
    // A ring left from another card is no longer on the window.
    if (current == 0) gFocus.ring = Rect{};
    HideRing();
    // Forwards: the first focusable item after the current one. Backwards: the last one before
    // it, where "before nothing" is the end of the list.
    DisplayItem* chosen = nullptr;
    bool passed = current == 0;
    for (DisplayItem* item = DisplayListHead(); item; item = item->next.get()) {
        if (item->id == current && current != 0) {
            if (backwards) break;
            passed = true;
            continue;
        }
        if (!TakesFocus(*item)) continue;
        if (backwards) {
            chosen = item;
        } else if (passed) {
            chosen = item;
            break;
        }
    }
    gFocus.cardId = GetDocument().currentCardId;
    gFocus.itemId = chosen ? chosen->id : 0;
    if (chosen) ShowRing(*chosen);
    // A field reached from the keyboard is ready to be typed over; any other item leaves the field.
    if (chosen && FieldEditable(*chosen)) SelectInField(*chosen, 0, chosen->document.text.size());
    else LeaveActiveField();
    return gFocus.itemId;
}

bool PressFocusedButton(void* window) {
    DisplayItem* item = FindFocusable(FocusedItemId());
    if (!item || item->type != kItemKindButton) return false;
    TrackButtonPress(window, item);
    ReleaseButtonPress(window);
    return true;
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Host, ResetKeyFocus);
}  // namespace
