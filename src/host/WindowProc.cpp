#include "host/WindowProc.h"

#include "actions/HyperLinks.h"

#include "actions/RunAction.h"
#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "card/FieldEdit.h"
#include "card/FieldSelection.h"
#include "card/OffscreenCard.h"
#include "host/ButtonPress.h"
#include "host/KeyFocus.h"
#include "host/MainLoop.h"
#include "host/MenuTable.h"
#include "memory/MemRef.h"
#include "player/Navigation.h"
#include "player/StackFlows.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/StackHeader.h"
#include "subsystems/Subsystems.h"
#include "text/Font.h"
#include "ui/JumpDialog.h"

namespace {

WindowProcState gState;

// A 16-bit field of the stack header or of the current card, 0 when there is none.
uint16_t HeaderWord(uint32_t offset) {
    const MemRef header = GetDocument().stackHeader;
    if (!header || GetMemRefSize(header) < kStackHeaderSize) return 0;
    MemRefLock lock(header);
    return lock ? Read16(lock.data() + offset) : 0;
}
uint16_t CardWord(uint32_t offset) {
    const MemRef card = GetDocument().currentCard;
    if (!card || GetMemRefSize(card) < kCardHeadSize) return 0;
    MemRefLock lock(card);
    return lock ? Read16(lock.data() + offset) : 0;
}

bool StackLocked() { return HeaderWord(kHdrLocked) != 0; }
bool Browsing() { return CurrentTool() == kBrowseTool; }

DisplayItem* ItemAt(int32_t x, int32_t y) {
    if (!GetOffscreenState().showObjects) return nullptr;
    return FindItemAt(x, y, false, nullptr);
}

void SetCursorId(int32_t id) {
    if (id == gState.cursorId) return;
    gState.cursorId = id;
    const Host& host = GetHost();
    host.SetCursor(id);
}

bool IsShiftKey(uint16_t key) {
    return key == kVkShift || key == kVkLeftShift || key == kVkRightShift;
}
bool IsControlKey(uint16_t key) {
    return key == kVkControl || key == kVkLeftControl || key == kVkRightControl;
}

// The card's click action, and without one that took the click, the stack's.
void RunCardClick() {
    const Subsystems& subsystems = GetSubsystems();
    const uint16_t cardAction = CardWord(kCardClickAction);
    if (cardAction) gState.clickConsumed = subsystems.RunNamedAction(cardAction, 1, 0, kLabelCardClick);
    if (gState.clickConsumed) return;
    const uint16_t stackAction = HeaderWord(kHdrClickAction);
    if (stackAction)
        gState.clickConsumed = subsystems.RunNamedAction(stackAction, 1, 0, kLabelStackClick);
}

bool DoesSomething(int16_t id) {
    return id != 0 && GetSubsystems().ActionDoesSomething(static_cast<uint16_t>(id));
}

int32_t OnButtonDown(void* window, const HostEvent& event) {
    if (gState.swallowClickForSprites) {
        gState.swallowClickForSprites = false;
        return 1;
    }
    if (gState.swallowClickForTransition) {
        gState.swallowClickForTransition = false;
        return 1;
    }
    gState.clickConsumed = false;
    const int32_t x = event.x + gState.scrollX, y = event.y + gState.scrollY;
    if (!Browsing()) return 1;
    const bool ctrl = (event.mods & kModCtrl) != 0;
    DisplayItem* item = ItemAt(x, y);
    // A press anywhere else ends the typing in a field.
    if (GetActiveField() && item != GetActiveField()) LeaveActiveField();
    int16_t actionId = 0;
    std::string name;
    bool itemTook = false;
    if (item && item->type == kItemKindButton) {
        // The press goes on in the pointer's moves, which must keep reaching the press tracking:
        // it doesn't consume the click.
        TrackButtonPress(window, item);
        itemTook = true;
    } else if (item && item->type == kItemKindText) {
        actionId = item->actionId;
        if (!DoesSomething(actionId) || ctrl || GetSubsystems().TextLayerTakesClick(*item)) actionId = 0;
        if (actionId) {
            name = item->name;
        } else {
            GetSubsystems().ClickInField(*item, x, y, (event.mods & kModShift) != 0, false);
            gState.mouseDownHandled = true;
            itemTook = true;
        }
    } else if (item && item->type == kItemKindGraphic) {
        GetSubsystems().ClickOnGraphic(*item);
        actionId = item->actionId;
        // Ctrl passes the click through a graphic whose action does nothing, to the card.
        if (ctrl && !DoesSomething(actionId)) actionId = 0;
        name = item->name;
    }
    if (actionId) {
        itemTook = true;
        gState.clickConsumed =
            GetSubsystems().RunActionById(static_cast<uint16_t>(actionId), 1, 0, name) != 0;
    }
    if (!itemTook) RunCardClick();
    return 1;
}

int32_t OnDoubleClick(void* window, const HostEvent& event) {
    if (!Browsing()) return 1;
    const int32_t x = event.x + gState.scrollX, y = event.y + gState.scrollY;
    DisplayItem* item = ItemAt(x, y);
    if (!item) return 1;
    if (item->type == kItemKindButton) return OnButtonDown(window, event);
    if (item->type == kItemKindText) {
        GetSubsystems().ClickInField(*item, x, y, false, true);
        gState.mouseDownHandled = true;
    }
    return 1;
}

int32_t OnButtonUp(void* window, const HostEvent& event) {
    const int32_t x = event.x + gState.scrollX, y = event.y + gState.scrollY;
    // A click that edited a field is not one on its hot words.
    const bool edited = gState.mouseDownHandled && GetSubsystems().ReleaseInField();
    gState.mouseDownHandled = false;
    if (!edited) ClickHyperLink(window, x, y);
    FollowPress(x, y);
    ReleaseButtonPress(window);
    // A consumed click holds the cursor for the length of the press only, so that hover buttons
    // work again after a click on the card.
    gState.clickConsumed = false;
    return 1;
}

int32_t TrackMouse(void* window, const HostEvent& event) {
    if (event.mods & (kModShift | kModCtrl)) return 0;
    const int32_t x = event.x + gState.scrollX, y = event.y + gState.scrollY;
    if (gState.mouseDownHandled) {
        GetSubsystems().DragInField(x, y);
        return 1;
    }
    if (gState.clickConsumed) return 1;
    if (TrackHover(window, x, y)) return 1;
    SetCursorId(ItemCursor(x, y));
    return 1;
}

// The outlines of buttons of shapes 4 to 7 come and go with a repaint from the offscreen card.
void SetItemBorders(bool on) {
    if (gState.itemBorders == on) return;
    gState.itemBorders = on;
    GetOffscreenState().itemBorders = on;
    const Host& host = GetHost();
    if (Surface* window = host.GetWindowSurface()) {
        RepaintRect(0, 0, window->width, window->height);
    }
}

// The first ringed button (shape 1, the look of a default push button) on the card is its default
// button: Return runs it.
bool RunDefaultButton(void* window) {
    for (const DisplayItem* item = DisplayListHead(); item; item = item->next.get()) {
        if (item->type != kItemKindButton || item->shape != 1) continue;
        if (item->hidden || (item->flags & kItemFlagHidden)) continue;
        GetSubsystems().RunItemAction(window, static_cast<uint16_t>(item->id), 1);
        return true;
    }
    return false;
}

// The edit commands act on the active field; false when they find none.
bool DoFieldCommand(int32_t command) {
    switch (command) {
        case kCmdCut: return FieldCutCopyClear(ClipCommand::Cut);
        case kCmdCopy: return FieldCutCopyClear(ClipCommand::Copy);
        case kCmdPaste: return FieldPaste();
        case kCmdClear: return FieldCutCopyClear(ClipCommand::Clear);
        case kCmdSelectAll: return FieldSelectAll();
        default: return false;
    }
}

// Ctrl with a key in the active field: the edit commands, and bold, italic and underline.
bool DoFieldShortcut(uint16_t key) {
    FieldStyleChange change;
    switch (key) {
        case 'B': change.toggleStyle = kStyleBold; break;
        case 'I': change.toggleStyle = kStyleItalic; break;
        case 'U': change.toggleStyle = kStyleUnderline; break;
        default: return DoFieldCommand(KeyToCommand(key, gState.shiftDown, false));
    }
    return SetActiveFieldStyle(change);
}

int32_t OnKey(void* window, const HostEvent& event) {
    const bool down = event.kind == HostEventKind::KeyDown;
    gState.shiftDown = IsShiftKey(event.key) ? down : (event.mods & kModShift) != 0;
    gState.ctrlDown = IsControlKey(event.key) ? down : (event.mods & kModCtrl) != 0;
    if (IsShiftKey(event.key) || IsControlKey(event.key)) {
        SetItemBorders(Browsing() && gState.shiftDown && gState.ctrlDown);
        return 1;
    }
    if (!down) return 1;
    // The field being typed into takes its keys first, and the editing shortcuts even on a card
    // without the menu: a field offered for typing must take cut and paste as well.
    if (Browsing() && GetActiveField()) {
        const bool taken = gState.ctrlDown ? DoFieldShortcut(event.key)
                                           : FieldKeyDown(event.key, gState.shiftDown);
        if (taken) return 1;
    }
    // The moving keys and the Ctrl shortcuts stand for menu commands: a card without the menu
    // (a kiosk, a quiz) cannot be skipped through from the keyboard.
    if (!GetDocument().menuShown) return 1;
    int32_t command = 0;
    if (gState.ctrlDown) {
        command = KeyToCommand(event.key, gState.shiftDown, StackLocked());
    } else if (!gState.shiftDown) {
        command = NavigationKeyCommand(event.key);
    }
    if (command) DoCommand(window, command, 0);
    return 1;
}

int32_t OnChar(void* window, const HostEvent& event) {
    if (event.ch == '\t' && Browsing()) {
        MoveKeyFocus((event.mods & kModShift) != 0);
        return 1;
    }
    // Return runs the card's default button even while a field is typed into; the field takes
    // the other characters, and Return when there is no default button.
    const bool typing = Browsing() && EditingField();
    // The button with the focus ring comes first; without one, Return runs the default button.
    if (!typing && (event.ch == '\r' || event.ch == ' ') && PressFocusedButton(window)) return 1;
    if (event.ch == '\r' && RunDefaultButton(window)) return 1;
    if (typing) FieldKey(event.ch);
    return 1;
}

// Keys let go while another window had the focus never come back as key-up messages.
int32_t OnFocusLost() {
    gState.shiftDown = gState.ctrlDown = false;
    SetItemBorders(false);
    return 1;
}

int32_t OnClose() {
    GetSubsystems().StopSounds(true);
    if (!CheckSave()) return 1;
    GetSubsystems().ShowEndSplash();
    gState.closed = true;
    return 1;
}

struct KeyCommand {
    uint16_t key;
    int32_t command;
    bool notWithShift;
    bool notWhenLocked;
};
constexpr KeyCommand kKeyCommands[] = {
    {kVkDelete, kCmdClear, true, false},
    {'1', kCmdFirstCard, true, false},
    {'9', kCmdLastCard, true, false},
    {'A', kCmdSelectAll, false, true},
    {'C', kCmdCopy, false, false},
    {'E', kCmdExportScreen, false, false},
    {'F', kCmdFindText, false, false},
    {'H', kCmdHome, false, false},
    {'J', kCmdJumpToCard, false, false},
    {'N', kCmdNewCard, false, true},
    {'O', kCmdOpenStack, false, false},
    {'P', kCmdPrint, false, false},
    {'S', kCmdSaveStack, false, false},
    {'V', kCmdPaste, false, false},
    {'X', kCmdCut, false, false},
    {'Z', kCmdUndo, false, false},
    {kVkSemicolon, kCmdPreferences, true, false},
    {kVkComma, kCmdPreviousCard, false, false},
    {kVkPeriod, kCmdNextCard, false, false},
    {kVkBackQuote, kCmdBack, false, false},
};

}  // namespace

WindowProcState& GetWindowProcState() { return gState; }
void ResetWindowProc() { gState = WindowProcState{}; }

int16_t CurrentTool() { return kBrowseTool; }

int32_t HandleWindowMessage(void* window, const HostEvent& event) {
    if (Browsing()) ServeActionStep(GetHost().window);
    if (GetSubsystems().OfferToLanguageWindows(event)) return 0;
    if (GetSubsystems().OfferToExtensions(event)) return 0;
    switch (event.kind) {
        case HostEventKind::Paint:
            RepaintRect(event.areaLeft, event.areaTop, event.areaRight, event.areaBottom);
            return 1;
        case HostEventKind::Close:
            return OnClose();
        case HostEventKind::FocusLost:
            return OnFocusLost();
        case HostEventKind::MouseMove:
            return TrackMouse(window, event);
        case HostEventKind::MouseDown:
            if (event.button != 1) return 0;
            return event.clicks >= 2 ? OnDoubleClick(window, event) : OnButtonDown(window, event);
        case HostEventKind::MouseUp:
            if (event.button != 1) return 0;
            return OnButtonUp(window, event);
        case HostEventKind::KeyDown:
        case HostEventKind::KeyUp:
            return OnKey(window, event);
        case HostEventKind::Char:
            return OnChar(window, event);
        case HostEventKind::None:
            break;
    }
    return 0;
}

int32_t HandleTimerMessage(void* window) {
    GetSubsystems().ServeFieldDragScroll();
    if (++gState.timerCount > 4) {
        gState.timerCount = 0;
        GetSubsystems().UpdateSounds();
    }
    ServeActionStep(GetHost().window);
    Document& doc = GetDocument();
    if (doc.stackHeader) doc.autoTimers = HeaderWord(kHdrAutoTimers) != 0;
    GetSubsystems().ServeAutoTimers(window);
    GetSubsystems().SendExtensionMessage(5);
    return 1;
}

int32_t KeyToCommand(uint16_t key, bool shift, bool locked) {
    for (const KeyCommand& k : kKeyCommands) {
        if (k.key != key) continue;
        if ((shift && k.notWithShift) || (locked && k.notWhenLocked)) return 0;
        return k.command;
    }
    return 0;
}

int32_t NavigationKeyCommand(uint16_t key) {
    switch (key) {
        case kVkLeft:
        case kVkUp:
        case kVkPageUp:
            return kCmdPreviousCard;
        case kVkRight:
        case kVkDown:
        case kVkPageDown:
            return kCmdNextCard;
        case kVkHome:
            return kCmdFirstCard;
        case kVkEnd:
            return kCmdLastCard;
        default:
            return 0;
    }
}

void DoCommand(void*, int32_t commandId, int32_t) {
    GetSubsystems().StopSounds(false);
    // The browse tool has no selection to clear and no paint mode to leave.
    switch (commandId) {
        case kCmdOpenStack:
            OpenStack(true);
            break;
        case kCmdSaveStack:
            SaveStack();
            break;
        case kCmdSaveStackAs:
            SaveStackAs();
            break;
        case kCmdExportScreen:
            GetSubsystems().ExportScreen();
            break;
        case kCmdExit:
            PostCloseRequest();
            break;
        case kCmdBack:
            GoBack(kPlainEffect, kPlainSpeed);
            break;
        case kCmdHome:
            GoHome(kPlainEffect, kPlainSpeed);
            break;
        case kCmdFirstCard:
            GoFirst(kPlainEffect, kPlainSpeed);
            break;
        case kCmdPreviousCard:
            GoPrevious(kPlainEffect, kPlainSpeed);
            break;
        case kCmdNextCard:
            GoNext(kPlainEffect, kPlainSpeed);
            break;
        case kCmdLastCard:
            GoLast(kPlainEffect, kPlainSpeed);
            break;
        case kCmdJumpToCard:
            AskJumpToCard();
            break;
        case kCmdFindText:
            GetSubsystems().ShowFindDialog();
            break;
        case kCmdAbout:
            GetSubsystems().ShowAboutBox();
            break;
        case kCmdPreferences:
            GetSubsystems().ShowPreferences();
            break;
        case kCmdHelp:
            GetSubsystems().OpenHelp();
            break;
        default:
            // The edit commands serve the active field. New Stack, page setup, printing, undo and
            // the Extras belong to the tool layer, which in the player does nothing.
            DoFieldCommand(commandId);
            break;
    }
}

int32_t DoMenuItemByName(const std::string& menuTitle, const std::string& itemTitle) {
    // The player has no menu bar: the menu every stack has is searched, as in the plug-in.
    const int32_t id = FindMenuItemByName(StandardMenu(), menuTitle, itemTitle);
    if (id && id != kCmdNewStack) DoCommand(GetHost().window, id, 0);
    return id;
}

int32_t ItemCursor(int32_t x, int32_t y) {
    if (!Browsing()) return 0;
    if (const DisplayItem* item = ItemAt(x, y); item && item->cursorId) return item->cursorId;
    if (const uint16_t card = CardWord(kCardCursor)) return card;
    return HeaderWord(kHdrStackCursor);
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Host, ResetWindowProc);
}  // namespace
