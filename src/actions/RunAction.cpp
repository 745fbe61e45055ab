// The interpreter. Whatever a step calls (a sound dialog, an NBA, a script, a wait) can move,
// resize or delete the record, so no pointer into it outlives a step: each step locks the record,
// finds its sub-record again, copies what it needs and unlocks.
#include "actions/RunAction.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "actions/ActionRecord.h"
#include "actions/Quiz.h"
#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "gfx/Palette.h"
#include "messages/Alert.h"
#include "messages/StringIds.h"
#include "messages/StringTable.h"
#include "platform/Host.h"
#include "player/Navigation.h"
#include "player/StackFlows.h"
#include "stack/Blob.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "subsystems/Subsystems.h"
#include "transitions/Transition.h"

namespace {

inline constexpr uint16_t kButtonTabNba = 3145;
inline constexpr int32_t kNbaRunMessage = 4;
inline constexpr int kSlotLaunchProgram = 9;
inline constexpr int kSlotLaunchDocument = 15;
inline constexpr int kStringFindSound = 2414;
inline constexpr int kStringSounds = 4009;
// One tick of the system's clock: no animation frame is shorter.
inline constexpr uint32_t kActionPollMs = 17;

ActionState gState;

// What step 1 takes from the head.
struct ActionHead {
    int16_t rect[4] = {};  // left, top, right, bottom
    int16_t destination = 0;
    int16_t transition = 0;
    uint16_t flags = 0;
    int16_t testCode = 0;
    uint16_t transitionColor = 0;
    int16_t transitionSpeed = 0;
};

bool ReadHead(MemRef record, uint32_t offset, ActionHead* h) {
    const uint32_t size = GetMemRefSize(record);
    MemRefLock lock(record);
    if (!lock || offset > size || size - offset < kActionHeadSize) return false;
    const uint8_t* p = lock.data() + offset;
    for (int i = 0; i < 4; ++i) h->rect[i] = ReadS16(p + kActionRect + 2 * i);
    h->destination = ReadS16(p + kActionDestination);
    h->transition = ReadS16(p + kActionTransition);
    h->flags = Read16(p + kActionFlags);
    h->testCode = ReadS16(p + kActionTestCode);
    h->transitionColor = Read16(p + kActionTransitionColor);
    h->transitionSpeed = ReadS16(p + kActionTransitionSpeed);
    return true;
}

// What ends a wait for media: a button pressed, else a key pressed. A release or a move does
// not, nor a character: the release and the character of the key that started the action may
// still be queued behind it.
bool IsPress(const HostEvent& e) {
    return e.kind == HostEventKind::MouseDown;
}
bool IsKey(const HostEvent& e) {
    return e.kind == HostEventKind::KeyDown;
}
bool IsButtonEvent(const HostEvent& e) {
    return e.kind == HostEventKind::MouseDown || e.kind == HostEventKind::MouseUp;
}

// A press or key waiting in the queue, left there for the main loop to handle afterwards.
bool PeekPressWaiting(HostEvent* input) {
    const Host& host = GetHost();
    return host.PeekEvent(IsPress, input) || host.PeekEvent(IsKey, input);
}

// "Ignore extra mouse clicks": the presses and releases that came while the action ran; moves
// stay, so the cursor still follows the pointer.
void DropPendingClicks() {
    const Host& host = GetHost();
    host.DropEvents(IsButtonEvent);
}

// The zooms start at the action's centre; "Fade to button color" fades to its colour.
void HandTransitionTheAction(const ActionHead& h) {
    const int32_t left = h.rect[0], top = h.rect[1], right = h.rect[2], bottom = h.rect[3];
    SetActionCenter(Point{(right - left) / 2 + left, (bottom - top) / 2 + top});
    PaletteEntry color;
    const Palette* palette = GetPaletteState().current.get();
    const int32_t index = static_cast<int32_t>(h.transitionColor) - 1;
    if (palette && index >= 0 && static_cast<uint32_t>(index) < palette->count) {
        color = palette->entries[index];
    }
    SetTransitionFadeColor(color.red, color.green, color.blue);
}

// Finds the sub-record of `tag` afresh and lets `read` copy out of it while the record is locked.
// `read` gets the sub-record (whose length lies inside the record) and its offset in the record.
template <typename Read>
bool WithSubRecord(MemRef record, uint32_t offset, int16_t tag, Read&& read) {
    const uint32_t size = GetMemRefSize(record);
    if (offset > size) return false;
    MemRefLock lock(record);
    uint32_t relative = 0;
    if (!lock || !FindSubRecord(lock.data() + offset, size - offset, tag, &relative)) return false;
    read(lock.data() + offset + relative, offset + relative);
    return true;
}

std::vector<uint8_t> WholeSubRecord(const uint8_t* sub) {
    return std::vector<uint8_t>(sub, sub + Read32(sub + kSubLength));
}

void ReadRect(const uint8_t* sub, int16_t rect[4]) {
    for (int i = 0; i < 4; ++i) rect[i] = ReadS16(sub + kSubRect + 2 * i);
}

// After a step that can do anything to the stack: (a) the record is still there and (b) of the
// same size, unless `itemOnly`; (c) outside a button's action, or the button still there, in
// which case `offset` follows it to its new place in the card.
bool StillThere(MemRef record, uint32_t size, uint16_t itemId, uint32_t* offset, bool itemOnly) {
    if (!itemOnly && (!IsMemRef(record) || GetMemRefSize(record) != size)) return false;
    if (!gState.inItemAction) return true;
    return FindItemOnCard(kItemKindButton, static_cast<int16_t>(itemId), record, offset);
}

LocateRequest SoundRequest() {
    LocateRequest request;
    request.titleStringId = kStringFindSound;
    request.filterName = GetString(kStringSounds) + " (*.WAV)";
    // The AU entry of the sound table is deliberately not offered.
    request.filterPattern = "*.wav;*.aif";
    request.targetSlot = kSlotSounds;
    return request;
}

void PlayStackSound(void* window, MemRef record, uint32_t offset) {
    uint16_t soundId = 0, volume = 0;
    int16_t soundFlags = 0;
    if (!WithSubRecord(record, offset, kTagStackSound, [&](const uint8_t* sub, uint32_t) {
            soundId = Read16(sub + kSubWord16);
            volume = Read16(sub + kSubVolume);
            soundFlags = ReadS16(sub + kSubSoundFlags);
        })) {
        return;
    }
    Subsystems& s = GetSubsystems();
    s.StopSounds(false);
    // A negative soundFlags makes the sub-record a plain order to stop the sounds.
    if (soundFlags < 0) return;
    if (const MemRef sound = GetBlobById(FourCC("Snd "), soundId)) {
        s.PlaySound(window, "", true, sound, volume, soundFlags);
    }
}

void PlaySoundFile(void* window, MemRef record, uint32_t offset) {
    uint16_t volume = 0;
    int16_t soundFlags = 0;
    bool named = false;
    if (!WithSubRecord(record, offset, kTagSoundFile, [&](const uint8_t* sub, uint32_t) {
            volume = Read16(sub + kSubVolume);
            soundFlags = ReadS16(sub + kSubSoundFlags);
            named = SetSlotFromReference(kSlotSounds, sub + kSubHeadSize, SubRecordPayloadSize(sub));
        })) {
        return;
    }
    Subsystems& s = GetSubsystems();
    s.StopSounds(false);
    if (named && LocateFile(SoundRequest(), kSlotSounds, true)) {
        s.PlaySound(window, SlotHostPath(kSlotSounds), false, 0, volume, soundFlags);
    }
}

void PrepareActionMovie(MemRef record, uint32_t offset, uint16_t itemId) {
    std::vector<uint8_t> sub;
    if (!WithSubRecord(record, offset, kTagMovie, [&](const uint8_t* at, uint32_t) {
            SetSlotFromReference(kSlotMovies, at + kSubHeadSize, SubRecordPayloadSize(at));
            sub = WholeSubRecord(at);
        })) {
        return;
    }
    // The movie layer gets a copy: preparing may ask for the file and run the message loop.
    GetSubsystems().PrepareMovie(sub.data(), static_cast<uint32_t>(sub.size()), itemId, 0);
}

// True when an animation was started.
bool StartAnimation(MemRef record, uint32_t offset, uint16_t itemId) {
    uint32_t subOffset = 0;
    int16_t rect[4] = {};
    if (!WithSubRecord(record, offset, kTagAnimation, [&](const uint8_t* sub, uint32_t at) {
            subOffset = at;
            ReadRect(sub, rect);
        })) {
        return false;
    }
    const MemRef copy = CopySubRecordPayload(record, subOffset);
    if (!copy) {
        Alert(kAlertNoMemory);
        return false;
    }
    Subsystems& s = GetSubsystems();
    const uint32_t size = GetMemRefSize(copy);
    bool film = false;
    {
        MemRefLock lock(copy);
        film = lock && size >= 4 && std::memcmp(lock.data(), "Sprt", 4) == 0;
    }
    if (film) return s.PlaySpriteFilm(copy, itemId) != 0;
    // A frame-delta animation: the list keeps the copy, head and frames, so that nothing of the
    // owner has to be found again while it plays.
    s.AddAnimation(copy, rect, itemId);
    return true;
}

void DriveLaserDisc(void* window, MemRef record, uint32_t offset) {
    std::vector<uint8_t> sub;
    if (WithSubRecord(record, offset, kTagLaserDisc,
                      [&](const uint8_t* at, uint32_t) { sub = WholeSubRecord(at); })) {
        GetSubsystems().RunLaserAction(window, sub.data(), static_cast<uint32_t>(sub.size()));
    }
}

enum class StepResult { Skipped, Ran, RecordGone };

// What the steps before the end started, which the end waits for.
struct Started {
    bool animation = false;
    bool movie = false;
    bool nba = false;
};

void WaitFor(const Started& started, uint16_t itemId) {
    WaitForActionMedia(started.animation, started.movie, started.nba, itemId);
}

StepResult CallNba(MemRef record, uint32_t size, uint32_t* offset, uint16_t itemId,
                   bool* nbaCalled) {
    uint16_t nbaId = 0;
    uint32_t subOffset = 0;
    if (!WithSubRecord(record, *offset, kTagNba, [&](const uint8_t* sub, uint32_t at) {
            nbaId = Read16(sub + kSubWord16);
            subOffset = at;
        })) {
        return StepResult::Skipped;
    }
    Subsystems& s = GetSubsystems();
    s.ClearNbaBlock();
    const MemRef copy = CopySubRecordPayload(record, subOffset);
    s.SetNbaParam1(copy);
    if (nbaId == kButtonTabNba && copy) s.StartButtonTab(copy);
    if (copy) {
        s.SetNbaCall(itemId, GetMemRefSize(copy));
        s.CallStackNba(nbaId, kNbaRunMessage, 0);
        FreeMemRef(copy);
        *nbaCalled = true;
    } else {
        Alert(kAlertNoMemory);
    }
    // The NBA can do anything to the stack.
    return StillThere(record, size, itemId, offset, false) ? StepResult::Ran
                                                           : StepResult::RecordGone;
}

StepResult RunScript(void* window, MemRef record, uint32_t size, uint32_t* offset,
                     uint16_t itemId) {
    uint32_t subOffset = 0;
    if (!WithSubRecord(record, *offset, kTagLogo,
                       [&](const uint8_t*, uint32_t at) { subOffset = at; })) {
        return StepResult::Skipped;
    }
    MemRef script = CopySubRecordPayload(record, subOffset);
    if (!script) {
        Alert(kAlertNoMemory);
    } else {
        Subsystems& s = GetSubsystems();
        const bool barShown = s.ShowMenuBarForScript();
        s.RunLogoText(window, &script);
        if (script) FreeMemRef(script);
        if (barShown) s.HideMenuBarAfterScript();
    }
    // A script can free the record only by deleting the button, and a record it grows through
    // the store keeps its offsets: only the button is looked for.
    return StillThere(record, size, itemId, offset, true) ? StepResult::Ran
                                                          : StepResult::RecordGone;
}

// Step 11 with a tag-60 sub-record: true when there was one.
bool GoToOtherStack(MemRef record, uint32_t offset, const ActionHead& h, const Started& started,
                    uint16_t itemId) {
    bool named = false;
    if (!WithSubRecord(record, offset, kTagOtherStack, [&](const uint8_t* sub, uint32_t) {
            named =
                SetSlotFromReference(kSlotOtherStack, sub + kSubHeadSize, SubRecordPayloadSize(sub));
        })) {
        return false;
    }
    WaitFor(started, itemId);
    if (!named) return true;
    // The Home stack's first card is found where the stack's Home stack is, not by searching.
    const bool home =
        IsHomeStackName(GetSlotName(kSlotOtherStack)) && h.destination == kFirstCardOfStack;
    GoToStack(kSlotOtherStack, h.destination, h.transition, h.transitionSpeed, true, !home);
    return true;
}

// Step 12: true when there was a tag-59 sub-record.
bool Launch(MemRef record, uint32_t offset, const Started& started, uint16_t itemId) {
    uint16_t launchFlags = 0;
    if (!WithSubRecord(record, offset, kTagLaunch, [&](const uint8_t* sub, uint32_t) {
            launchFlags = Read16(sub + kSubWord16);
            ClearSlot(kSlotLaunchProgram);
            ClearSlot(kSlotLaunchDocument);
            const uint32_t payload = SubRecordPayloadSize(sub);
            const uint32_t document = std::min(Read32(sub + kSubDocumentLength), payload);
            const uint8_t* text = sub + kSubHeadSize;
            if (document > 0) SetSlotFromReference(kSlotLaunchDocument, text, document);
            if (payload > document) {
                SetSlotFromReference(kSlotLaunchProgram, text + document, payload - document);
            }
        })) {
        return false;
    }
    WaitFor(started, itemId);
    Subsystems& s = GetSubsystems();
    s.ReleaseLaserPlayer();
    s.LaunchProgram(launchFlags);
    if (launchFlags & kLaunchThenQuit) s.PostCloseRequest();
    return true;
}

}  // namespace

ActionState& GetActionState() {
    return gState;
}
void ResetActionState() {
    gState = ActionState{};
}

int32_t RunAction(void* window, MemRef record, uint32_t offset, uint16_t itemId, uint32_t,
                  uint32_t wait, const std::string& name) {
    const uint32_t size = GetMemRefSize(record);
    ActionHead h;
    if (!ReadHead(record, offset, &h)) return 0;
    HandTransitionTheAction(h);
    // A quiz answer is recorded before anything plays.
    if (h.testCode == kTestRight || h.testCode == kTestWrong) {
        RecordTestAnswer(h.testCode == kTestRight, name);
    } else if (h.testCode == kTestAskName) {
        AskTestUserName();
    }
    // Sounds, movies, animations, the laser disc, the NBA and the script start and go on; the move
    // or the launch waits for them, and so does the end of the action when it is asked to.
    if (h.flags & kActStackSound) PlayStackSound(window, record, offset);
    if (h.flags & kActSoundFile) PlaySoundFile(window, record, offset);
    if (h.flags & kActMovie) PrepareActionMovie(record, offset, itemId);
    Started started;
    if (h.flags & kActAnimation) started.animation = StartAnimation(record, offset, itemId);
    if (h.flags & kActLaserDisc) DriveLaserDisc(window, record, offset);
    if (h.flags & kActMovie) {
        started.movie = true;
        GetSubsystems().StartMovie(itemId);
    }
    if ((h.flags & kActNba) &&
        CallNba(record, size, &offset, itemId, &started.nba) == StepResult::RecordGone) {
        return 0;
    }
    if ((h.flags & kActLogo) &&
        RunScript(window, record, size, &offset, itemId) == StepResult::RecordGone) {
        return 0;
    }
    if (h.flags & kActGo) {
        if (!GoToOtherStack(record, offset, h, started, itemId)) {
            WaitFor(started, itemId);
            GoToCardCode(h.destination, h.transition, h.transitionSpeed);
        }
    } else if (h.flags & kActLaunch) {
        Launch(record, offset, started, itemId);
    }
    if (wait) WaitFor(started, itemId);
    if (GetDocument().ignoreExtraClicks) DropPendingClicks();
    return 0;
}

int32_t RunItemAction(void* window, uint16_t itemId, uint32_t spare) {
    MemRef card = 0;
    uint32_t offset = 0;
    if (!FindItem(kItemKindButton, static_cast<int16_t>(itemId), &card, &offset)) return 0;
    std::string name;
    {
        const uint32_t size = GetMemRefSize(card);
        MemRefLock lock(card);
        if (!lock || offset > size || size - offset < kActionHeadSize) return 0;
        const uint8_t* field = lock.data() + offset + kActionName;
        std::memcpy(gState.currentItemName, field, kActionNameSize);
        name = PlainName(field, kActionNameSize);
    }
    gState.inItemAction = true;
    RunAction(window, card, offset, itemId, spare, 0, name);
    gState.inItemAction = false;
    return 1;
}

int32_t RunActionById(uint16_t id, uint32_t spare, uint32_t wait, const std::string& name) {
    if (id == 0 || !IsBrowsing()) return 0;
    const MemRef record = GetBlobById(FourCC("Actn"), id);
    if (!record) return 1;
    RunAction(GetHost().window, record, 0, id, spare, wait, name);
    return 1;
}

int32_t RunNamedAction(uint16_t id, uint32_t spare, uint32_t wait, int16_t labelStringId) {
    return RunActionById(id, spare, wait, labelStringId ? GetString(labelStringId) : "");
}

void GoToCardCode(int16_t destination, int16_t effect, int16_t speed) {
    switch (destination) {
        case kGoNextCard:
            GoNext(effect, speed);
            break;
        case kGoPreviousCard:
            GoPrevious(effect, speed);
            break;
        case kGoHomeStack:
            GoHome(effect, speed);
            break;
        case kGoBack:
            GoBack(effect, speed);
            break;
        case kGoMarkedCard:
            GoMarked(effect, speed);
            break;
        default:
            GoToCard(destination, effect, speed);
            break;
    }
}

// The system's loop spins; ours sleeps on the host until the next step is due or input comes.
// It only peeks and serves its own steps: the tick's work (the action step, automatic timers,
// the extensions' message) waits for the main loop, so none of it runs, or steps twice, inside an
// action's wait. The sound library is updated every round, so sound plays on.
void WaitForActionMedia(bool animationStarted, bool movieStarted, bool nbaCalled, uint16_t itemId) {
    Subsystems& s = GetSubsystems();
    if (animationStarted || movieStarted || nbaCalled) {
        Host& host = GetHost();
        for (bool first = true;; first = false) {
            if (!first) host.WaitUntil(host.GetTickCount() + kActionPollMs);
            // Each round serves the media in their fixed order; a press or key that no movie
            // controller takes ends the wait.
            s.UpdateSounds();
            HostEvent input;
            bool interrupted = PeekPressWaiting(&input);
            s.StepAnimations(host.window);
            s.RunSpriteTimers(host.GetTickCount());
            s.SpriteStep();
            const bool spriteRunning = s.IsSpriteFilmRunning(itemId);
            if (interrupted && s.OfferMovieEvent(host.window, &input)) interrupted = false;
            const int32_t nbaBusy = nbaCalled ? s.IsNbaBusy() : 0;
            const bool stillPlaying = !s.IsMovieDone(itemId) || !s.IsAnimationDone(itemId) ||
                                      spriteRunning || nbaBusy == 1;
            if (!stillPlaying || interrupted) break;
        }
    }
    s.StopAllAnimations();
    s.StopSprites();
    s.StopMovies(0);
}

void ServeActionStep(void* window) {
    Subsystems& s = GetSubsystems();
    s.StepAnimations(window);
    s.SpriteStep();
}

void StopActionPlayout() {
    Subsystems& s = GetSubsystems();
    s.StopSounds(false);
    s.StopMovies(0);
    s.StopSprites();
    s.StopAllAnimations();
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Actions, ResetActionState);
}  // namespace
