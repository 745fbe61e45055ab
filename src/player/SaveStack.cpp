// The Save and Save As commands and the question before a stack goes away. Each first writes
// what was typed in the fields on show into the card, so that the question comes and the file
// holds it.
#include "card/FieldSave.h"
#include "messages/Alert.h"
#include "messages/StringIds.h"
#include "platform/Host.h"
#include "platform/HostPath.h"
#include "player/Navigation.h"
#include "player/StackFlows.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"

namespace {

// The name a save dialog proposes: the stack's, its extension cut off, in the stack's folder.
std::string ProposedSaveName() {
    std::string path = SlotHostPath(kSlotSaveAs);
    const size_t slash = path.find_last_of('/');
    const size_t dot = path.find_last_of('.');
    if (dot != std::string::npos && (slash == std::string::npos || dot > slash)) path.resize(dot);
    return path;
}
}  // namespace

bool CheckSave() {
    Document& doc = GetDocument();
    SaveFieldEdits(doc.currentCard);
    if (!doc.stackHeader || !doc.dirty) return true;
    int answer = 1;  // Save
    bool mustSave = false;
    if (!doc.autoSave) {
        const uint8_t* saveStart = GetSlot(kSlotSaveStart);
        const bool startPresent = saveStart[kSlotPresent] != 0;
        mustSave = doc.saveNeededToContinue &&
                   ((doc.hasFile && GetSlotPath(kSlotSaveStart) == GetSlotPath(kSlotStack)) ||
                    (!doc.hasFile && !startPresent));
        answer = Alert(mustSave ? kAlertMustSave : kAlertStackChanged);
    }
    if (answer == 2) return false;  // Cancel
    if (answer == 1) {
        SaveStack();
        if (doc.saveNeededToContinue && GetSlot(kSlotSaveStart)[kSlotPresent] == 0) CopySlot(kSlotStack, kSlotSaveStart);
        return !doc.dirty;
    }
    return true;  // Don't Save
}

int32_t SaveStack() {
    Document& doc = GetDocument();
    SaveFieldEdits(doc.currentCard);
    if (!doc.hasFile) return SaveStackAs();
    if (doc.convertedFlags) {
        const int answer = Alert(doc.convertedFlags == kConvertedDepth ? kAlertDepthChanged : kAlertConverted);
        if (answer == 1) return SaveStackAs();
        if (answer != 2) return kResultOk;  // cancelled
    }
    return WriteStack(kSlotStack, true);
}

int32_t SaveStackAs() {
    Document& doc = GetDocument();
    SaveFieldEdits(doc.currentCard);
    CopySlot(kSlotStack, kSlotSaveAs);
    FileChoice choice;
    choice.save = true;
    choice.filterName = "Stacks (*.STK)";
    choice.filterPattern = "*.stk";
    choice.proposed = ProposedSaveName();
    std::string chosen;
    if (!GetHost().ChooseFile(choice, &chosen)) return kResultOk;
    if (!SetSlotPath(kSlotSaveAs, DosPathFromHost(chosen))) {
        ShowFileError(kResultFailed);
        return kResultReported;
    }
    const bool same = SlotHostPath(kSlotSaveAs) == SlotHostPath(kSlotStack);
    // Slot 1 stays the stack being saved (its records are the source) until the save is done.
    const int32_t result = WriteStack(kSlotSaveAs, same);
    if (result != kResultOk) return result;
    CopySlot(kSlotSaveAs, kSlotStack);
    GetSlot(kSlotStack)[kSlotPresent] = 1;
    doc.stackName = GetSlotName(kSlotStack);
    UpdateTitle(true);
    MakeHomeTest();
    return kResultOk;
}
