// Stored action records, stacks that hold them, and a fixture that opens such stacks headless with
// recorders for the subsystems, so a test reads what an action asked for as one line of text.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "actions/RunAction.h"
#include "base/StateRegistry.h"
#include "platform/HostFile.h"
#include "platform/HostPath.h"
#include "platform/headless/HeadlessHost.h"
#include "player/Navigation.h"
#include "player/StackFlows.h"
#include "stack/Blob.h"
#include "stack/CardList.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "subsystems/Subsystems.h"
#include "support/StackBytes.h"
#include "transitions/TransitionSteps.h"

struct ActionSpec {
    uint16_t flags = 0;
    int16_t destination = 0;
    uint16_t transition = 0;
    int16_t testCode = 0;
    uint16_t transitionColor = 0;
    uint16_t transitionSpeed = 0;
    std::string name = "";
    int16_t rect[4] = {0, 0, 0, 0};  // left, top, right, bottom
    std::vector<Bytes> subs = {};
};

// The head and its sub-records, as a button chunk or the data of an 'Actn' record.
inline Bytes StoredAction(uint16_t id, const ActionSpec& a) {
    Bytes rest(120, 0);  // what follows the item's common head
    const int32_t words[][2] = {{16, a.destination}, {18, a.transition},      {20, a.flags},
                                {62, a.testCode},    {68, a.transitionColor}, {76, a.transitionSpeed}};
    for (const auto& [at, v] : words) PutBE16(rest, static_cast<size_t>(at - 16), static_cast<uint16_t>(v));
    rest[28 - 16] = static_cast<uint8_t>(a.name.size());
    std::copy(a.name.begin(), a.name.end(), rest.begin() + 29 - 16);
    for (const Bytes& sub : a.subs) Append(rest, sub);
    return StoredItem(48, id, a.rect[0], a.rect[1], a.rect[2], a.rect[3], rest);
}

// A sub-record: head with 16-bit words at the given offsets, the payload, a pad byte if odd.
inline Bytes StoredSub(int16_t tag, const Bytes& payload = {},
                       const std::vector<std::pair<uint32_t, uint16_t>>& words = {}) {
    Bytes s(32, 0);
    PutBE16(s, 0, static_cast<uint16_t>(tag));
    for (const auto& [at, value] : words) PutBE16(s, at, value);
    Append(s, payload);
    if (payload.size() % 2) {
        s.push_back(0);
        PutBE16(s, 22, 0x200);
    }
    PutBE32(s, 12, static_cast<uint32_t>(s.size()));
    return s;
}

// A stored file reference to a file of the host, in the colon form written on this platform.
inline Bytes StoredRef(const std::string& hostPath) {
    std::string colon = DosPathFromHost(hostPath);
    for (char& c : colon) c = c == '\\' ? ':' : c;
    const size_t slash = hostPath.find_last_of('/');
    return StoredFileRef(colon, hostPath.substr(slash + 1));
}

// A launch: the document's reference, its length at 18, then the program's.
inline Bytes LaunchSub(const std::string& document, const std::string& program, uint16_t flags) {
    Bytes doc = StoredRef(document), payload = doc;
    Append(payload, StoredRef(program));
    Bytes s = StoredSub(59, payload, {{16, flags}});
    PutBE32(s, 18, static_cast<uint32_t>(doc.size()));
    return s;
}

struct CardSpec { uint16_t id; std::vector<Bytes> items = {}; uint16_t arrive = 0, flags = 0; };

inline std::string WriteActionStack(const std::string& file, const std::vector<CardSpec>& cards,
                                    const std::vector<Bytes>& records = {}) {
    std::vector<Bytes> stored;
    uint16_t highest = 0;
    for (const CardSpec& c : cards) {
        stored.push_back(StoredCard(c.id, "", c.items));
        PutBE16(stored.back(), 10, c.flags);
        PutBE16(stored.back(), 48, c.arrive);
        highest = std::max(highest, c.id);
    }
    Bytes bytes = StoredStack({.cardCount = static_cast<uint16_t>(cards.size())}, stored, records);
    PutBE16(bytes, 10, static_cast<uint16_t>(highest + 1));
    return WriteTempFile(file, bytes);
}

// What the recorders saw, in order.
inline std::vector<std::string>& ActionLog() { static std::vector<std::string> log; return log; }
inline int32_t Log(const std::string& line) { return ActionLog().push_back(line), 1; }
inline std::string N(int32_t n) { return std::to_string(n); }

// What starts or stops something writes a line; the polls of a wait keep their defaults, which
// answer "done". Arrive actions write "arrive ID", so the moves show in the same order.
inline void InstallRecorders() {
    Subsystems& s = GetSubsystems();
    s.PlaySound = [](void*, const std::string& path, bool record, MemRef, uint16_t v, int16_t) {
        return Log(record ? "sound record v" + N(v) : "sound " + path.substr(path.rfind('/') + 1));
    };
    s.StopSounds = [](bool) { Log("stop sounds"); };
    // The sound updates of a transition between cards are not what these tests look at.
    s.UpdateSounds = [] { if (!GetTransitionState().window) Log("round"); };
    s.PrepareMovie = [](const uint8_t*, uint32_t, uint16_t id, int32_t) { return Log("prepare movie " + N(id)); };
    s.StartMovie = [](uint16_t id) { return Log("start movie " + N(id)); };
    s.StopMovies = [](int32_t) { Log("stop movies"); };
    s.PlaySpriteFilm = [](MemRef film, uint16_t) { return FreeMemRef(film) + Log("film"); };
    s.AddAnimation = [](MemRef block, const int16_t*, uint16_t) { return FreeMemRef(block) + Log("animation"); };
    s.CallStackNba = [](uint16_t id, int32_t message, int32_t) { return Log("nba " + N(id) + "/" + N(message)); };
    s.RunLogoText = [](void*, MemRef* script) {
        const Bytes text = BlockBytes(*script);
        return Log("logo " + std::string(text.begin(), text.end()));
    };
    s.RunLaserAction = [](void*, const uint8_t*, uint32_t) { return Log("laser"); };
    s.ReleaseLaserPlayer = [] { Log("release laser"); };
    s.LaunchProgram = [](uint16_t flags) { return Log("launch " + N(flags)); };
    // The leave actions of the moves are not what these tests look at.
    s.RunNamedAction = [](uint16_t id, uint32_t, uint32_t, int16_t label) {
        return label == 2030 ? Log("arrive " + N(id)) : 0;
    };
}

class ActionStackTest : public testing::Test {
protected:
    void SetUp() override {
        StartProgramAfresh();
        InstallRecorders();
        ActionLog().clear();
    }
    void TearDown() override { ResetAllState(); }

    static void Open(const std::string& path) {
        SetSlotPath(kSlotStack, DosPathFromHost(path));
        ASSERT_EQ(OpenStack(false), kResultOk);
        ActionLog().clear();
    }
    // The log since the last call, joined by "; ".
    static std::string Logged() {
        std::string all;
        for (const std::string& line : ActionLog()) all += (all.empty() ? "" : "; ") + line;
        ActionLog().clear();
        return all;
    }
    static std::vector<int> Alerts() {
        std::vector<int> ids;
        for (const HeadlessAlert& a : GetHeadlessState().alertsShown) ids.push_back(a.stringId);
        GetHeadlessState().alertsShown.clear();
        return ids;
    }
    static int16_t Current() { return GetDocument().currentCardId; }
};
