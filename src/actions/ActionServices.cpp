#include "actions/ActionServices.h"

#include <map>

namespace {

std::map<std::string, uint32_t> gUnavailable;

void Miss(const char* name) {
    ++gUnavailable[name];
}

// Each default answers as its subsystem would with nothing to play, and is counted.
ActionServices Defaults() {
    ActionServices s{};
    s.PlaySound = [](void*, const std::string&, bool, MemRef, uint16_t, int16_t) -> int32_t {
        Miss("PlaySound");
        return 0;
    };
    s.StopSounds = [](bool) { Miss("StopSounds"); };
    s.UpdateSounds = [] { Miss("UpdateSounds"); };
    s.PrepareMovie = [](const uint8_t*, uint32_t, uint16_t, int32_t) -> int32_t {
        Miss("PrepareMovie");
        return 0;
    };
    s.StartMovie = [](uint16_t) -> int32_t {
        Miss("StartMovie");
        return 0;
    };
    s.StopMovies = [](int32_t) { Miss("StopMovies"); };
    s.IsMovieDone = [](uint16_t) {
        Miss("IsMovieDone");
        return true;
    };
    s.OfferMovieEvent = [](void*, const HostEvent*) {
        Miss("OfferMovieEvent");
        return false;
    };
    s.PlaySpriteFilm = [](MemRef film, uint16_t) -> int32_t {
        Miss("PlaySpriteFilm");
        FreeMemRef(film);
        return 0;
    };
    s.StopSprites = [] { Miss("StopSprites"); };
    s.SpriteStep = [] { Miss("SpriteStep"); };
    s.RunSpriteTimers = [](uint32_t) { Miss("RunSpriteTimers"); };
    s.IsSpriteFilmRunning = [](uint16_t) {
        Miss("IsSpriteFilmRunning");
        return false;
    };
    s.AddAnimation = [](MemRef block, const int16_t*, uint16_t) -> int32_t {
        Miss("AddAnimation");
        FreeMemRef(block);
        return 0;
    };
    s.StepAnimations = [](void*) { Miss("StepAnimations"); };
    s.StopAllAnimations = [] { Miss("StopAllAnimations"); };
    s.IsAnimationDone = [](uint16_t) {
        Miss("IsAnimationDone");
        return true;
    };
    s.ClearNbaBlock = [] { Miss("ClearNbaBlock"); };
    s.SetNbaParam1 = [](MemRef) { Miss("SetNbaParam1"); };
    s.SetNbaCall = [](uint16_t, uint32_t) { Miss("SetNbaCall"); };
    s.StartButtonTab = [](MemRef) { Miss("StartButtonTab"); };
    s.CallStackNba = [](uint16_t, int32_t, int32_t) -> int32_t {
        Miss("CallStackNba");
        return 0;
    };
    s.IsNbaBusy = []() -> int32_t {
        Miss("IsNbaBusy");
        return 0;
    };
    s.RunLogoText = [](void*, MemRef*) -> int32_t {
        Miss("RunLogoText");
        return 0;
    };
    s.ShowMenuBarForScript = [] {
        Miss("ShowMenuBarForScript");
        return false;
    };
    s.HideMenuBarAfterScript = [] { Miss("HideMenuBarAfterScript"); };
    s.RunLaserAction = [](void*, const uint8_t*, uint32_t) -> int32_t {
        Miss("RunLaserAction");
        return 0;
    };
    s.ReleaseLaserPlayer = [] { Miss("ReleaseLaserPlayer"); };
    s.LaunchProgram = [](uint16_t) -> int32_t {
        Miss("LaunchProgram");
        return 0;
    };
    // Headless: the prompt is answered at once with an empty name.
    s.AskText = [](const std::string&, std::string* text) {
        Miss("AskText");
        text->clear();
        return true;
    };
    return s;
}

ActionServices gServices = Defaults();

}  // namespace

ActionServices& GetActionServices() {
    return gServices;
}

void ResetActionServices() {
    gServices = Defaults();
    gUnavailable.clear();
}

uint32_t UnavailableServiceCalls(const std::string& name) {
    const auto it = gUnavailable.find(name);
    return it == gUnavailable.end() ? 0 : it->second;
}
