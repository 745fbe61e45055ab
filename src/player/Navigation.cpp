// Leaving a card and arriving at one, in their fixed order, and the moves inside a stack and to
// another one that are built from the two halves.
#include "player/Navigation.h"

#include <algorithm>

#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "card/FieldSave.h"
#include "card/OffscreenCard.h"
#include "gfx/Palette.h"
#include "messages/Alert.h"
#include "messages/StringIds.h"
#include "player/NavigationInternal.h"
#include "player/StackFlows.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackHeader.h"
#include "subsystems/Subsystems.h"

namespace {

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

// The extensions hear of every change of card.
inline constexpr int32_t kExtensionLeavingCard = 9;
inline constexpr int32_t kExtensionArrivingCard = 10;

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

void RunMoveAction(uint16_t id, uint32_t wait, int16_t labelStringId) {
    if (id == 0) return;
    GetSubsystems().RunNamedAction(id, 0, wait, labelStringId);
}

void RunStackLeaveAction() {
    RunMoveAction(static_cast<uint16_t>(HeaderField(kHdrLeaveAction)), 0, kLabelLeaveStack);
}

void LeaveCard(bool pushBack) {
    Subsystems& subsystems = GetSubsystems();
    if (pushBack) PushBack();
    subsystems.SendExtensionMessage(kExtensionLeavingCard);
    if (const MemRef card = LiveCurrentCard()) {
        uint16_t action = 0;
        {
            MemRefLock lock(card);
            action = Read16(lock.data() + kCardLeaveAction);
        }
        RunMoveAction(action, 1, kLabelLeaveCard);
    }
    // Nothing of the old card plays on, and what was changed on it is kept before its items die.
    subsystems.StopLogoProcedures();
    subsystems.StopActionPlayout();
    subsystems.StopPendingHilites();
    subsystems.StopSprites();
    SaveFieldEdits(LiveCurrentCard());
    StoreCurrentCard();
    FreeDisplayList();
}

void ArriveAtCard(int16_t effect, int16_t speed, bool atStack) {
    Document& doc = GetDocument();
    MemRef card = GetCardById(doc.currentCardId);
    // An id that is no longer in the list arrives at the first card rather than at none.
    if (!card && (card = GetCardByPosition(1))) doc.currentCardId = GetCardId(card);
    doc.currentCard = card;
    if (!card) return;
    Subsystems& subsystems = GetSubsystems();
    subsystems.ClearChangeFlags();
    DrawCard(card, effect, speed, true);
    subsystems.PaintFrameWithoutTitle();
    UpdateTitle(false);
    subsystems.SendExtensionMessage(kExtensionArrivingCard);
    // The stack's arrive action runs before the card's, and only when the stack was just entered.
    if (atStack) {
        RunMoveAction(static_cast<uint16_t>(HeaderField(kHdrArriveAction)), 0, kLabelArriveStack);
    }
    if (GetCardPosition(card) != 0) {  // the stack's action may have removed it
        uint16_t action = 0;
        {
            MemRefLock lock(card);
            action = Read16(lock.data() + kCardArriveAction);
        }
        RunMoveAction(action, 0, kLabelArriveCard);
    }
    // The card's palette goes to the display, and timers and idle work start again.
    if (const Palette* palette = PaletteInUse()) RealizePalette(*palette);
    subsystems.RestartIdle();
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
    if (result != kResultOk) {
        ShowFileError(result);
        // A read that failed in full has already put a blank stack in place.
        if (!doc.stackHeader) NewStack(false);
        return result;
    }
    if (cardId == kFirstCardOfStack || !GetCardById(cardId))
        cardId = GetCardId(GetCardByPosition(1));
    doc.currentCardId = cardId;
    ArriveAtCard(effect, speed, true);
    return kResultOk;
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
    ResetBackHistory();
    ResetTitleState();
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Player, ResetNavigation);
}  // namespace
