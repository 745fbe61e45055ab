#include "host/Application.h"

#include "actions/ActionQuery.h"
#include "actions/ActionTimers.h"
#include "actions/Quiz.h"
#include "actions/RunAction.h"
#include "card/FieldEdit.h"
#include "host/MainLoop.h"
#include "logo/Evaluator.h"
#include "media/SoundPlayback.h"
#include "player/Navigation.h"
#include "sprites/Animations.h"
#include "sprites/Sprites.h"
#include "subsystems/Subsystems.h"
#include "ui/EndSplash.h"
#include "ui/FindDialog.h"

#include <cctype>
#include <string>

#include "messages/Alert.h"
#include "messages/StringIds.h"
#include "messages/StringTable.h"
#include "platform/Host.h"
#include "platform/HostFile.h"
#include "platform/HostFolder.h"
#include "platform/HostPath.h"
#include "policy/Policy.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"

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

// What a closing stack leaves behind: its leave action has run, and the quiz answers given on it
// are written beside it.
void StackClosing() {
    if (GetDocument().stackHeader) {
        RunStackLeaveAction();
        WriteTestReport();
    }
    ClearTestAnswers();
}

// A handle table that cannot grow says so in a plain box, without caption or owner.
void ShowMemRefsFailure() {
    GetHost().ShowMessageBox("", GetString(kStringCantResizeMemRefs));
}

}  // namespace

bool ReadUserPreferenceIsYes(const char* key) {
    // The preferences file is read with the preferences; until then every key reads as empty.
    (void)key;
    return false;
}

Subsystems ApplicationSubsystems() {
    Subsystems s = UnavailableSubsystems();
    s.PumpOneMessage = PumpOneMessage;
    s.ServeDueTick = ServeDueTick;
    s.PostCloseRequest = PostCloseRequest;
    s.RunItemAction = RunItemAction;
    s.RunActionById = RunActionById;
    s.RunNamedAction = RunNamedAction;
    s.ActionDoesSomething = ActionDoesSomething;
    s.StopActionPlayout = StopActionPlayout;
    s.StackClosing = StackClosing;
    s.ShowEndSplash = ShowEndSplash;
    s.PlaySound = [](void*, const std::string& hostPath, bool fromRecord, MemRef record, uint16_t volume,
                     int16_t soundFlags) {
        return PlaySound(hostPath, fromRecord, record, volume, static_cast<uint16_t>(soundFlags));
    };
    s.StopSounds = StopSounds;
    s.ClickInField = FieldClick;
    s.DragInField = FieldDrag;
    s.ReleaseInField = FieldRelease;
    s.ServeFieldDragScroll = FieldIdle;
    s.ShowFindDialog = [] { FindCommand(&GetFindRequest()); };
    s.ServeAutoTimers = TickActionTimers;
    s.RebuildAutoTimers = BuildActionTimers;
    s.UpdateSounds = SoundTick;
    s.RunLogoText = RunLogoText;
    s.StopLogoProcedures = StopLogoProcedures;
    s.PlaySpriteFilm = PlaySpriteFilm;
    s.StopSprites = StopSprites;
    s.SpriteStep = StepSprites;
    s.RunSpriteTimers = TickSpriteTimers;
    s.IsSpriteFilmRunning = IsSpriteRunning;
    s.AddAnimation = AddAnimation;
    s.StepAnimations = StepAnimations;
    s.StopAllAnimations = StopAllAnimations;
    s.IsAnimationDone = IsAnimationDone;
    s.DrawCardAnimations = DrawCardSprites;
    return s;
}

bool InitApplication(void* window) {
    GetHost().window = window;
    SetMemRefsFailureNotice(ShowMemRefsFailure);
    InstallSubsystems(ApplicationSubsystems());
    SetPolicyFolders(HostProgramFolder(), HostConfigFolder());
    GetDocument().stackHeader = 0;
    InitPaths();
    InitStackState();
    // The font map and the text engine are made on first use. Each subsystem that must start
    // with the program (the extension table, the Find state, sound detection) starts here, after
    // the paths and the stack state it reads.
    gProgressText = GetString(kProgressString);  // shown while a stack's cards are converted
    // Without a device the player goes on silent.
    if (!StartSoundHardware()) Alert(kAlertNoSoundDevice);
    return true;
}
