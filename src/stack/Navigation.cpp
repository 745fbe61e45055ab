// Leaving a card and arriving at one, in their fixed order, and the moves inside a stack and to
// another one that are built from the two halves.
#include "stack/Navigation.h"

#include <algorithm>

#include "actions/RunAction.h"
#include "imaging/DisplayList.h"
#include "imaging/OffscreenCard.h"
#include "stack/ByteOrder.h"
#include "stack/CardAlerts.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/NavigationInternal.h"
#include "stack/PathSlot.h"
#include "stack/StackFlows.h"
#include "stack/StackHeader.h"
#include "ui/Alert.h"

namespace {

struct NavigationState {
    NamedActionRunner runner = nullptr;  // nullptr: the action interpreter
};
NavigationState gNav;

// The current card, if it is still in the list.
MemRef LiveCurrentCard() {
    const MemRef card = GetDocument().currentCard;
    return GetCardPosition(card) != 0 ? card : 0;
}

int16_t HeaderField(uint32_t offset) {
    const MemRef header = GetDocument().stackHeader;
    if (!header || GetMemRefSize(header) < kStackHeaderSize) return 0;
    MemRefLock lock(header);
    return ReadS16(lock.data() + offset);
}

// Steps that belong to subsystems still to come; each keeps its place in the order.
void SendExtensionMessage(int /*message*/) {}  // 9 leaving, 10 arriving, to the extension host
void StopLogoProcedures() {}                   // the language's running procedures end
void StopPendingHilites() {}                   // hilites waiting to be undone
void StopSpriteAnimations() {}                 // the sprite engine's animations on the card
void StoreChangedPicture() {}     // a painted picture is compressed into the card (alert 2230)
void ClearChangeFlags() {}        // the drawing layer's record of what changed
void PaintFrameWithoutTitle() {}  // the frame of a window that has no title bar
void RealisePalette() {}          // the card's palette goes to the display
void RestartIdle() {}             // timers and idle work start again for the new card

// The moves by position share this shape: leave, pick the card, arrive.
void MoveToPosition(int32_t position, int16_t effect, int16_t speed) {
    LeaveCard(true);
    if (MemRef card = GetCardByPosition(position)) GetDocument().currentCardId = GetCardId(card);
    ArriveAtCard(effect, speed, false);
}

int32_t CurrentPosition() {
    return GetCardPosition(GetDocument().currentCard);
}

void GoToCardLeaving(int16_t id, int16_t effect, int16_t speed, bool pushBack) {
    LeaveCard(pushBack);
    if (GetCardById(id)) {
        GetDocument().currentCardId = id;
    } else {
        Alert(kAlertCardNotFound);
    }
    ArriveAtCard(effect, speed, false);
}

bool IsBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace

void SetNamedActionRunner(NamedActionRunner runner) {
    gNav.runner = runner;
}

void RunMoveAction(uint16_t id, uint32_t wait, int16_t labelStringId) {
    if (id == 0) return;
    (gNav.runner ? gNav.runner : RunNamedAction)(id, 0, wait, labelStringId);
}

void RunStackLeaveAction() {
    RunMoveAction(static_cast<uint16_t>(HeaderField(kHdrLeaveAction)), 0, kLabelLeaveStack);
}

void StoreCurrentCard() {
    const MemRef card = LiveCurrentCard();
    if (!card) return;
    const Document& doc = GetDocument();
    {
        MemRefLock lock(card);
        Write16(lock.data() + kCardMenuShown, static_cast<uint16_t>(doc.menuShown));
        Write16(lock.data() + kCardDepth, static_cast<uint16_t>(doc.depth));
    }
    StoreChangedPicture();
}

void LeaveCard(bool pushBack) {
    if (pushBack) PushBack();                     // 1
    SendExtensionMessage(9);                      // 2
    if (const MemRef card = LiveCurrentCard()) {  // 3
        uint16_t action = 0;
        {
            MemRefLock lock(card);
            action = Read16(lock.data() + kCardLeaveAction);
        }
        RunMoveAction(action, 1, kLabelLeaveCard);
    }
    StopLogoProcedures();  // 4
    StopActionPlayout();
    StopPendingHilites();
    StopSpriteAnimations();
    StoreCurrentCard();  // 5
    FreeDisplayList();   // 6
}

void ArriveAtCard(int16_t effect, int16_t speed, bool atStack) {
    Document& doc = GetDocument();
    MemRef card = GetCardById(doc.currentCardId);  // 1
    // An id that is no longer in the list arrives at the first card rather than at none.
    if (!card && (card = GetCardByPosition(1))) doc.currentCardId = GetCardId(card);
    doc.currentCard = card;
    if (!card) return;
    ClearChangeFlags();                   // 2
    DrawCard(card, effect, speed, true);  // 3
    PaintFrameWithoutTitle();             // 4
    UpdateTitle(false);                   // 5
    SendExtensionMessage(10);             // 6
    if (atStack) {                        // 7
        RunMoveAction(static_cast<uint16_t>(HeaderField(kHdrArriveAction)), 0, kLabelArriveStack);
    }
    if (GetCardPosition(card) != 0) {  // 8: the stack's action may have removed it
        uint16_t action = 0;
        {
            MemRefLock lock(card);
            action = Read16(lock.data() + kCardArriveAction);
        }
        RunMoveAction(action, 0, kLabelArriveCard);
    }
    RealisePalette();  // 9
    RestartIdle();
}

void GoFirst(int16_t effect, int16_t speed) {
    if (CardCount() > 0) MoveToPosition(1, effect, speed);
}

void GoLast(int16_t effect, int16_t speed) {
    if (CardCount() > 0) MoveToPosition(CardCount(), effect, speed);
}

void GoPrevious(int16_t effect, int16_t speed) {
    if (CardCount() == 0) return;
    const int32_t position = CurrentPosition() - 1;
    MoveToPosition(position < 1 ? CardCount() : position, effect, speed);
}

void GoNext(int16_t effect, int16_t speed) {
    if (CardCount() == 0) return;
    const int32_t position = CurrentPosition() + 1;
    MoveToPosition(position > CardCount() ? 1 : position, effect, speed);
}

void GoToCard(int16_t id, int16_t effect, int16_t speed) {
    GoToCardLeaving(id, effect, speed, true);
}

void GoToCardNoBack(int16_t id, int16_t effect, int16_t speed) {
    GoToCardLeaving(id, effect, speed, false);
}

int32_t GoToStack(int slot, int16_t cardId, int16_t effect, int16_t speed, bool pushBack,
                  bool searchFolders) {
    if (!CheckSave()) return kStackMoveStopped;
    LeaveCard(pushBack);
    LocateRequest request;
    request.titleStringId = kStringFindStack;
    request.filterName = "Stacks (*.STK)";
    request.filterPattern = "*.stk";
    request.targetSlot = kSlotStack;
    if (!LocateFile(request, slot, searchFolders)) {
        RedrawCurrentCard(true);
        return kStackMoveStopped;
    }
    const int32_t result = ReadStack();
    Document& doc = GetDocument();
    if (result != kFlowOk) {
        ShowFileError(result);
        // A read that failed in full has already put a blank stack in place.
        if (!doc.stackHeader) NewStack(false);
        return result;
    }
    if (cardId == kFirstCardOfStack || !GetCardById(cardId))
        cardId = GetCardId(GetCardByPosition(1));
    doc.currentCardId = cardId;
    ArriveAtCard(effect, speed, true);
    return kFlowOk;
}

bool JumpToCardByText(const std::string& entered) {
    // The dialog's box takes 15 characters.
    const std::string text = entered.substr(0, 15);
    bool digits = !text.empty();
    bool blank = true;
    for (char c : text) {
        digits = digits && c >= '0' && c <= '9';
        blank = blank && IsBlank(c);
    }
    MemRef card = 0;
    if (digits) {
        int32_t position = 0;
        // Past the largest list any number is simply too big.
        for (char c : text) position = std::min(position * 10 + (c - '0'), 100000);
        card = GetCardByPosition(position);
    } else if (!blank) {
        uint8_t name[34];
        name[0] = static_cast<uint8_t>(text.size() < 33 ? text.size() : 33);
        for (uint8_t i = 0; i < name[0]; ++i) name[1 + i] = static_cast<uint8_t>(text[i]);
        card = GetCardByName(name);
    }
    if (!card) {
        if (!text.empty()) Alert(kAlertCardNotFound);
        return false;
    }
    GoToCard(GetCardId(card), kPlainEffect, kPlainSpeed);
    return true;
}

void ResetNavigation() {
    gNav = NavigationState{};
    ResetBackHistory();
    ResetTitleState();
}
