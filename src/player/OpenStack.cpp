// Opening a stack: the open flow, the read with its alerts, and the preparation of what was read.
#include <algorithm>
#include <cctype>
#include <cstring>

#include "base/ByteOrder.h"
#include "card/OffscreenCard.h"
#include "messages/Alert.h"
#include "messages/StringIds.h"
#include "messages/StringTable.h"
#include "platform/Host.h"
#include "platform/HostFile.h"
#include "platform/HostPath.h"
#include "player/Navigation.h"
#include "player/StackFlows.h"
#include "policy/Policy.h"
#include "stack/Blob.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "stack/StackHeader.h"
#include "stack/StackReader.h"
#include "text/Fontmap.h"

namespace {


void WaitCursor(bool wait) {
    GetHost().SetWaitCursor(wait);
}

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

// Raises the header's card size to the minimum. The pictures are not converted to the new size
// here; the cards keep theirs and show in the larger window.
void ApplyMinimumSize() {
    MemRefLock lock(GetDocument().stackHeader);
    uint8_t* h = lock.data();
    Write16(h + kHdrCardWidth, static_cast<uint16_t>(std::max<int16_t>(ReadS16(h + kHdrCardWidth), kMinCardSide)));
    Write16(h + kHdrCardHeight, static_cast<uint16_t>(std::max<int16_t>(ReadS16(h + kHdrCardHeight), kMinCardSide)));
}

// A unique name in the temporary folder for the store of a new stack.
std::string ScratchStoreName() {
    static uint32_t counter = 0;
    const std::string folder = HostTempFolder();
    for (;;) {
        const std::string path = folder + "/qbscratch-" + std::to_string(GetHost().GetTickCount()) + "-" +
                                 std::to_string(++counter) + ".stk";
        if (!GetHostFileStatus(path).exists) return path;
    }
}

MemRef NewStackHeader() {
    Document& doc = GetDocument();
    MemRef header = NewMemRef(kStackHeaderSize);
    if (!header) return 0;
    MemRefLock lock(header);
    uint8_t* h = lock.data();
    Write16(h + kHdrVersion, kCurrentStackVersion);
    // Only the first stack a process makes is marked; nothing reads the mark.
    Write16(h + kHdrReserved22, doc.stackMade ? 0 : 1);
    doc.stackMade = true;
    Write16(h + kHdrPresentationMode, static_cast<uint16_t>(doc.presentationMode));
    Write16(h + kHdrWindowFlags, doc.windowFlags);
    Write16(h + kHdrNextCardId, 1);
    Write16(h + kHdrNextItemId, 1);
    Write16(h + kHdrDepth, static_cast<uint16_t>(doc.depth));
    Write16(h + kHdrAutoTimers, 1);
    Write16(h + kHdrAdvancedUser, IsAdvancedUser() ? 1 : 0);
    Write16(h + kHdrStackFlags, doc.ignoreExtraClicks ? kStackFlagIgnoreExtraClicks : 0);
    Write16(h + kHdrShowCardNumber, doc.showCardNumber ? 1 : 0);
    Write16(h + kHdrCardWidth, static_cast<uint16_t>(doc.cardWidth));
    Write16(h + kHdrCardHeight, static_cast<uint16_t>(doc.cardHeight));
    return header;
}

// A card without picture or items: head and tail, 100 bytes.
MemRef NewBlankCard(int16_t id) {
    const Document& doc = GetDocument();
    MemRef card = NewCardMemRef(kEmptyCardSize - 2);
    if (!card) return 0;
    MemRefLock lock(card);
    uint8_t* c = lock.data();
    Write16(c + kCardId, static_cast<uint16_t>(id));
    Write32(c + kCardSize, kEmptyCardSize);
    Write16(c + kCardKind, kCardKindBlank);
    Write16(c + kCardOwnerId, 0xFFFF);
    Write16(c + kCardMenuShown, static_cast<uint16_t>(doc.menuShown));
    Write16(c + kCardDepth, static_cast<uint16_t>(doc.depth));
    Write16(c + kCardWidth, static_cast<uint16_t>(doc.cardWidth));
    Write16(c + kCardHeight, static_cast<uint16_t>(doc.cardHeight));
    return card;
}

// The Home stack in the program's folder: the first of the Home names that is a file there, put
// in `slot`. False when there is none.
bool FindHomeStack(int slot) {
    const std::string folder = DosPathFromHost(HostProgramFolder());
    for (int id = kStringHomeNames;; ++id) {
        const std::string home = GetString(id);
        if (home.empty() || home[0] == '*') return false;
        CopySlot(kSlotStack, kSlotScratch);
        if (!SetSlotPath(kSlotScratch, folder + "\\" + home)) continue;
        const std::string path = SlotHostPath(kSlotScratch);
        if (!path.empty() && GetHostFileStatus(path).exists) {
            CopySlot(kSlotScratch, slot);
            return true;
        }
    }
}

}  // namespace

void MakeHomeTest() {
    Document& doc = GetDocument();
    doc.isHomeStack = IsHomeStackName(GetSlotName(kSlotStack));
    if (doc.isHomeStack) {
        CopySlot(kSlotStack, kSlotHome);
        doc.homeCardId = 0;
    }
}

bool IsHomeStackName(const std::string& name) {
    const std::string wanted = Lower(name);
    for (int id = kStringHomeNames;; ++id) {
        const std::string home = GetString(id);
        if (home.empty() || home[0] == '*') return false;
        if (Lower(home) == wanted) return true;
    }
}

int32_t ReadStack() {
    Document& doc = GetDocument();
    if (doc.isHomeStack) doc.homeCardId = doc.currentCardId;
    WaitCursor(true);
    LoadFault fault;
    ReadStackFile(SlotHostPath(kSlotStack), &fault);
    WaitCursor(false);

    // The question about a card too small comes before the version's refusal, as the checks run.
    if (fault.askMinimumSize && (fault.alerts.empty() || fault.alerts.front() != kAlertNotAStack)) {
        SetAlertNumbers(kMinCardSide, kMinCardSide);
        if (Alert(kAlertMinimumSize) != 1) {
            CloseStack();
            return kResultReported;
        }
    }
    if (fault.code == kResultReported) {
        for (int alert : fault.alerts) Alert(alert);
        CloseStack();
        return kResultReported;
    }
    if (CardCount() == 0) {
        // The blank stack takes its place; the read's error goes back to the caller, which
        // reports it again (an error of 0 arrives at the blank stack's card).
        ShowFileError(fault.code);
        Alert(kAlertNoCards);
        NewStack(false);
        return fault.code;
    }
    if (fault.code != kResultOk) {
        CloseStack();  // the cards read before the damage go with the stack
        return fault.code;
    }
    if (fault.askMinimumSize) ApplyMinimumSize();
    const int32_t result = PrepareOpenedStack();
    if (result != kResultOk) return result;
    LoadFontList();
    return kResultOk;
}

int32_t PrepareOpenedStack() {
    Document& doc = GetDocument();
    {
        MemRefLock lock(doc.stackHeader);
        uint8_t* h = lock.data();
        const int16_t color = ReadS16(h + kHdrPresentationColor);
        if (color == 255) Write16(h + kHdrPresentationColor, 256);
        if (color == 0) Write16(h + kHdrPresentationColor, 1);
        if (ReadS16(h + kHdrVersion) < kCurrentStackVersion) {
            Write16(h + kHdrVersion, kCurrentStackVersion);
            doc.convertedFlags |= kConvertedVersion;
        }
        doc.autoTimers = ReadS16(h + kHdrAutoTimers) != 0;
        doc.autoSave = ReadS16(h + kHdrAutoSave) != 0;
        doc.ignoreExtraClicks = (Read16(h + kHdrStackFlags) & kStackFlagIgnoreExtraClicks) != 0;
        doc.showCardNumber = ReadS16(h + kHdrShowCardNumber) != 0;
        doc.cardWidth = ReadS16(h + kHdrCardWidth);
        doc.cardHeight = ReadS16(h + kHdrCardHeight);
        // The emulated display takes the stack's depth, so nothing is converted at open.
        doc.depth = ReadS16(h + kHdrDepth);
        doc.presentationMode = ReadS16(h + kHdrPresentationMode);
        doc.windowFlags = Read16(h + kHdrWindowFlags);
    }
    for (int32_t i = 1; i <= CardCount(); ++i) {
        MemRefLock card(GetCardByPosition(i));
        Write16(card.data() + kCardWidth, static_cast<uint16_t>(doc.cardWidth));
        Write16(card.data() + kCardHeight, static_cast<uint16_t>(doc.cardHeight));
    }
    // The check that every extension a stack needs is at hand, and the presentation settings,
    // come here with their subsystems.
    doc.hasFile = true;
    doc.dirty = false;
    doc.stackName = GetSlotName(kSlotStack);
    SetPolicyStack(SlotHostPath(kSlotStack));
    UpdateTitle(true);
    MakeHomeTest();
    // The workspace record is attached here when the language arrives.
    return kResultOk;
}

int32_t OpenStack(bool ask) {
    if (!CheckSave()) return kResultOk;
    Document& doc = GetDocument();
    if (doc.stackHeader) LeaveCard(false);
    if (ask) {
        CopySlot(kSlotStack, kSlotScratch);
        FileChoice choice;
        choice.title = GetString(kStringFindStack);
        choice.filterName = "Stacks (*.STK)";
        choice.filterPattern = "*.stk";
        choice.proposed = SlotHostPath(kSlotScratch);
        std::string chosen;
        if (!GetHost().ChooseFile(choice, &chosen) ||
            !SetSlotPath(kSlotScratch, DosPathFromHost(chosen))) {
            // The card was left: it is shown again and its items come back to life.
            RedrawCurrentCard(true);
            return kResultOk;
        }
        CopySlot(kSlotScratch, kSlotStack);
    }
    const int32_t result = ReadStack();
    if (result != kResultOk) {
        ShowFileError(result);
        // A read that failed in full has already put a blank stack in place.
        if (!doc.stackHeader) NewStack(false);
        return result;
    }
    doc.currentCardId = 0;
    if (MemRef first = GetCardByPosition(1)) {
        MemRefLock lock(first);
        doc.currentCardId = ReadS16(lock.data() + kCardId);
    }
    ArriveAtCard(kPlainEffect, kPlainSpeed, true);
    return kResultOk;
}

int32_t OpenStackByName(const std::string& hostPath) {
    if (!SetSlotPath(kSlotStack, DosPathFromHost(hostPath))) return kResultFailed;
    if (GetHostFileStatus(hostPath).exists) return OpenStack(false);
    // A missing stack gives way to the Home stack, and without one to the search and the dialog.
    if (FindHomeStack(kSlotStack)) return OpenStack(false);
    LocateRequest request;
    request.titleStringId = kStringFindStack;
    request.filterName = "Stacks (*.STK)";
    request.filterPattern = "*.stk";
    request.targetSlot = kSlotStack;
    if (LocateFile(request, kSlotStack, true)) return OpenStack(false);
    return NewStack(false);
}

int32_t NewStack(bool showHint) {
    if (!CheckSave()) return 1;
    Document& doc = GetDocument();
    const bool keepCardNumber = doc.showCardNumber;
    CloseStack();
    doc.storeRef = NewScratchStore(ScratchStoreName());
    doc.stackHeader = NewStackHeader();
    MemRef card = NewBlankCard(1);
    if (!doc.stackHeader || !card || InsertCardAt(0, card) != 0) {
        if (card) FreeMemRef(card);
        return kResultNoMemory;
    }
    doc.currentCard = card;
    doc.currentCardId = 1;
    doc.hasFile = false;
    doc.dirty = false;
    doc.showCardNumber = keepCardNumber;
    doc.stackName = GetString(kStringUntitled);
    SetPolicyStack("");  // an untitled stack has no folder of its own
    UpdateTitle(true);
    if (showHint) ShowMessage(kHintNewStack, true, false, true);
    return kResultOk;
}
