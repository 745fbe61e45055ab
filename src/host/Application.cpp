#include "host/Application.h"

#include <cctype>
#include <string>

#include "platform/Host.h"
#include "platform/HostFile.h"
#include "platform/HostFolder.h"
#include "platform/HostPath.h"
#include "policy/Policy.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "ui/Alert.h"
#include "ui/StringTable.h"

namespace {

struct FolderSlot {
    int slot;
    int stringId;
};
// The media and extension folders beside the program.
inline constexpr FolderSlot kFolders[] = {{kSlotArt, 2650}, {kSlotSounds, 2651}, {kSlotMovies, 2652},
                                          {kSlotNbas, 2653}, {17, 2656}, {18, 2657}};
inline constexpr int kProgressString = 4122;

std::string gProgressText;

void InitPaths() {
    const std::string program = DosPathFromHost(HostProgramFile());
    for (int slot = 0; slot < kSlotCount; ++slot) {
        SetSlotPath(slot, program);
        uint8_t* s = GetSlot(slot);
        s[kSlotPresent] = 0;
        s[kSlotName] = 0;
    }
    const std::string folder = DosPathFromHost(HostProgramFolder());
    for (const FolderSlot& f : kFolders) {
        SetSlotPath(f.slot, folder + "\\" + GetString(f.stringId));
        GetSlot(f.slot)[kSlotName] = 0;
    }
}

void InitStackState() {
    SetAdvancedUser(ReadUserPreferenceIsYes("advancedUser"));
    Document& doc = GetDocument();
    doc.cardList = NewMemRef(0);
    doc.cardWidth = 512;
    doc.cardHeight = 342;
}

void Nothing() {}

}  // namespace

bool ReadUserPreferenceIsYes(const char* key) {
    // The preferences file is read with the preferences; until then every key reads as empty.
    (void)key;
    return false;
}

bool InitApplication(void* window) {
    GetHost().window = window;
    SetPolicyFolders(HostProgramFolder(), HostConfigFolder());
    GetDocument().stackHeader = 0;  // 1
    InitPaths();                    // 2
    InitStackState();               // 3
    Nothing();                      // 4: the text library's own start
    Nothing();                      // 5: the font map, with the fonts
    Nothing();                      // 6: the hand icon of the sprite layer
    Nothing();                      // 7: the text engine
    Nothing();                      // 8: the caption font, for measuring
    Nothing();                      // 9: the undo records of the authoring tools
    gProgressText = GetString(kProgressString);  // 10
    Nothing();                      // 11
    Nothing();                      // 12: the extension table
    Nothing();                      // 13: the display's depth, with the display
    Nothing();                      // 14
    Nothing();                      // 15: the Extras list
    Nothing();                      // 16: the hand cursors
    Nothing();                      // 17: the file dialogs' messages
    Nothing();                      // 18: the Find state
    Nothing();                      // 19: sound detection
    return true;
}
