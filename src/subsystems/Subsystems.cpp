#include "subsystems/Subsystems.h"

#include <cstddef>
#include <map>
#include <string_view>

#include "base/StateRegistry.h"

namespace {

struct SubsystemsState {
    Subsystems installed = UnavailableSubsystems();
    Subsystems current = installed;
    std::map<std::string, uint32_t, std::less<>> unavailableCalls;
};
SubsystemsState& State() {
    static SubsystemsState state;
    return state;
}

// Entries are called on every tick, so a name is copied only the first time.
void CountUnavailable(std::string_view name) {
    auto& calls = State().unavailableCalls;
    const auto it = calls.find(name);
    if (it != calls.end()) {
        ++it->second;
    } else {
        calls.emplace(std::string(name), 1);
    }
}

// The entry's own name, by its place in the table, for the counts.
std::map<size_t, const char*>& EntryNames() {
    static std::map<size_t, const char*> names;
    return names;
}

// An unavailable entry answers with the zero of its result: nothing started, not busy, not taken.
template <size_t Offset, typename Entry>
struct Unavailable;
template <size_t Offset, typename R, typename... Args>
struct Unavailable<Offset, R (*)(Args...)> {
    static R Call(Args...) {
        CountUnavailable(EntryNames()[Offset]);
        return R();
    }
};

#define QB_UNAVAILABLE(table, entry)                                                     \
    do {                                                                                 \
        EntryNames()[offsetof(Subsystems, entry)] = #entry;                              \
        (table).entry = Unavailable<offsetof(Subsystems, entry), decltype((table).entry)>::Call; \
    } while (false)

[[maybe_unused]] const bool kRegistered = RegisterStateReset(Room::Subsystems, ResetSubsystems);

}  // namespace

Subsystems UnavailableSubsystems() {
    Subsystems s{};
    QB_UNAVAILABLE(s, PumpOneMessage);
    QB_UNAVAILABLE(s, ServeDueTick);
    QB_UNAVAILABLE(s, PostCloseRequest);
    QB_UNAVAILABLE(s, RunItemAction);
    QB_UNAVAILABLE(s, RunActionById);
    QB_UNAVAILABLE(s, RunNamedAction);
    QB_UNAVAILABLE(s, ActionDoesSomething);
    QB_UNAVAILABLE(s, StopActionPlayout);
    QB_UNAVAILABLE(s, StackClosing);
    QB_UNAVAILABLE(s, PlaySound);
    QB_UNAVAILABLE(s, StopSounds);
    QB_UNAVAILABLE(s, UpdateSounds);
    QB_UNAVAILABLE(s, PrepareMovie);
    QB_UNAVAILABLE(s, StartMovie);
    QB_UNAVAILABLE(s, StopMovies);
    QB_UNAVAILABLE(s, OfferMovieEvent);
    QB_UNAVAILABLE(s, RunLaserAction);
    QB_UNAVAILABLE(s, ReleaseLaserPlayer);
    QB_UNAVAILABLE(s, StopLaserDisc);
    QB_UNAVAILABLE(s, StopSprites);
    QB_UNAVAILABLE(s, SpriteStep);
    QB_UNAVAILABLE(s, RunSpriteTimers);
    QB_UNAVAILABLE(s, IsSpriteFilmRunning);
    QB_UNAVAILABLE(s, StartBrowseSprites);
    QB_UNAVAILABLE(s, StepAnimations);
    QB_UNAVAILABLE(s, StopAllAnimations);
    QB_UNAVAILABLE(s, DrawCardAnimations);
    QB_UNAVAILABLE(s, StartCardAnimations);
    QB_UNAVAILABLE(s, SendExtensionMessage);
    QB_UNAVAILABLE(s, OfferToExtensions);
    QB_UNAVAILABLE(s, ClearNbaBlock);
    QB_UNAVAILABLE(s, SetNbaParam1);
    QB_UNAVAILABLE(s, SetNbaCall);
    QB_UNAVAILABLE(s, StartButtonTab);
    QB_UNAVAILABLE(s, CallStackNba);
    QB_UNAVAILABLE(s, IsNbaBusy);
    QB_UNAVAILABLE(s, RunLogoText);
    QB_UNAVAILABLE(s, StopLogoProcedures);
    QB_UNAVAILABLE(s, OfferToLanguageWindows);
    QB_UNAVAILABLE(s, ShowMenuBarForScript);
    QB_UNAVAILABLE(s, HideMenuBarAfterScript);
    QB_UNAVAILABLE(s, GiveFocusToField);
    QB_UNAVAILABLE(s, TextLayerTakesClick);
    QB_UNAVAILABLE(s, ClickInField);
    QB_UNAVAILABLE(s, DragInField);
    QB_UNAVAILABLE(s, ReleaseInField);
    QB_UNAVAILABLE(s, ServeFieldDragScroll);
    QB_UNAVAILABLE(s, ServeAutoTimers);
    QB_UNAVAILABLE(s, RebuildAutoTimers);
    QB_UNAVAILABLE(s, RestartIdle);
    QB_UNAVAILABLE(s, ShowFindDialog);
    QB_UNAVAILABLE(s, StopPendingEditing);
    QB_UNAVAILABLE(s, RememberPreviousCard);
    QB_UNAVAILABLE(s, StopPendingHilites);
    QB_UNAVAILABLE(s, StoreChangedPicture);
    QB_UNAVAILABLE(s, ClearChangeFlags);
    QB_UNAVAILABLE(s, ClearWindowAndStoreEmptyPicture);
    QB_UNAVAILABLE(s, TellToolLayerFirstCard);
    QB_UNAVAILABLE(s, ClickOnGraphic);
    QB_UNAVAILABLE(s, LaunchProgram);
    QB_UNAVAILABLE(s, PaintFrameWithoutTitle);
    QB_UNAVAILABLE(s, ShowEndSplash);
    QB_UNAVAILABLE(s, ExportScreen);
    QB_UNAVAILABLE(s, ShowAboutBox);
    QB_UNAVAILABLE(s, ShowPreferences);
    QB_UNAVAILABLE(s, OpenHelp);

    // Entries whose "nothing to do" is not the zero of their result.
    s.IsMovieDone = [](uint16_t) {
        CountUnavailable("IsMovieDone");
        return true;
    };
    s.IsAnimationDone = [](uint16_t) {
        CountUnavailable("IsAnimationDone");
        return true;
    };
    // What is handed over is freed, as the engine would on failure.
    s.PlaySpriteFilm = [](MemRef film, uint16_t) -> int32_t {
        CountUnavailable("PlaySpriteFilm");
        FreeMemRef(film);
        return 0;
    };
    s.AddAnimation = [](MemRef block, const int16_t*, uint16_t) -> int32_t {
        CountUnavailable("AddAnimation");
        FreeMemRef(block);
        return 0;
    };
    // The prompt is answered at once with an empty name.
    s.AskText = [](const std::string&, std::string* text) {
        CountUnavailable("AskText");
        text->clear();
        return true;
    };
    return s;
}

#undef QB_UNAVAILABLE

Subsystems& GetSubsystems() {
    return State().current;
}

void InstallSubsystems(const Subsystems& table) {
    State().installed = table;
    State().current = table;
}

void ResetSubsystems() {
    State().current = State().installed;
    State().unavailableCalls.clear();
}

uint32_t UnavailableSubsystemCalls(const std::string& name) {
    const auto& calls = State().unavailableCalls;
    const auto it = calls.find(name);
    return it == calls.end() ? 0 : it->second;
}

uint32_t UnavailableSubsystemCallsInAll() {
    uint32_t total = 0;
    for (const auto& [name, count] : State().unavailableCalls) total += count;
    return total;
}
