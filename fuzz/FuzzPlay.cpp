// Plays arbitrary bytes as a page's stack would be played, headless: the player's open flow, each
// card drawn as the window shows it (every item, picture, text and sprite), then the first card
// with input on it: Tab and Return through its buttons and fields, a typed character, clicks over
// the card, the arrows, and the time for what they start (actions, sounds, animations, timers) to
// run. Cards larger than kMaxCardSide on a side are passed over: their cost is memory, not parsing.
// It stops on what the sanitizers and libFuzzer catch (a crash, an overflow, a leak, a hang), and
// on a broken promise: the open flow must leave a stack, read or blank.

#include <cstdint>
#include <string>

#include "FuzzImage.h"
#include "card/OffscreenCard.h"
#include "gfx/Palette.h"
#include "host/Application.h"
#include "host/MainLoop.h"
#include "host/WindowProc.h"
#include "platform/Host.h"
#include "platform/HostPath.h"
#include "platform/headless/HeadlessHost.h"
#include "player/Navigation.h"
#include "player/StackFlows.h"
#include "stack/CardList.h"
#include "stack/Document.h"
#include "stack/PathSlot.h"
#include "transitions/Transition.h"

namespace {

inline constexpr int16_t kMaxCardSide = 1024;
inline constexpr int32_t kMaxCardsDrawn = 8;
inline constexpr uint32_t kStepMs = 200;     // between two inputs
inline constexpr uint32_t kSettleMs = 3000;  // after the last

[[noreturn]] void Broken(const char* what) { FuzzBroken("fuzz_play", what); }

std::string& InputPath() {
    static std::string path = [] {
        std::string made = MakeFuzzInputFile("fuzz_play");
        if (!InitMemRefs() || !InitPathSlots()) Broken("the memory or the path slots did not start");
        SetHost(HeadlessHost());
        InitApplication(nullptr);
        return made;
    }();
    return path;
}

void DrawEveryCard() {
    Document& doc = GetDocument();
    for (int32_t position = 1; position <= CardCount() && position <= kMaxCardsDrawn; ++position) {
        MemRef card = GetCardByPosition(position);
        doc.currentCard = card;
        doc.currentCardId = GetCardId(card);
        DrawCard(card, kTransitionFastest, 8, false);
    }
}

// A key's press and release, or a click, `kStepMs` after the input before.
struct Input { HostEventKind kind; uint16_t key; int32_t x, y; };

void QueueInput(const Input& input, uint32_t* at) {
    HostEvent event;
    event.time = *at += kStepMs;
    event.x = input.x;
    event.y = input.y;
    event.key = input.key;
    if (input.kind == HostEventKind::Char) {
        event.kind = HostEventKind::Char;
        event.ch = static_cast<uint8_t>(input.key);
        QueueHeadlessEvent(event);
        return;
    }
    const bool mouse = input.kind == HostEventKind::MouseDown;
    event.kind = mouse ? HostEventKind::MouseDown : HostEventKind::KeyDown;
    QueueHeadlessEvent(event);
    event.kind = mouse ? HostEventKind::MouseUp : HostEventKind::KeyUp;
    event.time += kStepMs / 4;
    QueueHeadlessEvent(event);
}

void PlayFirstCard() {
    const Document& doc = GetDocument();
    GoToCardNoBack(GetCardId(GetCardByPosition(1)), kPlainEffect, kPlainSpeed);
    const int32_t w = doc.cardWidth, h = doc.cardHeight;
    constexpr uint16_t kTab = 0x09, kReturn = 0x0D, kRight = 0x27, kLeft = 0x25;
    const Input inputs[] = {
        {HostEventKind::KeyDown, kTab, 0, 0},      {HostEventKind::KeyDown, kReturn, 0, 0},
        {HostEventKind::KeyDown, kTab, 0, 0},      {HostEventKind::Char, 'q', 0, 0},
        {HostEventKind::KeyDown, kReturn, 0, 0},   {HostEventKind::MouseDown, 0, w / 2, h / 2},
        {HostEventKind::MouseDown, 0, w / 4, h - h / 8}, {HostEventKind::MouseDown, 0, w - w / 4, h - h / 8},
        {HostEventKind::KeyDown, kRight, 0, 0},    {HostEventKind::KeyDown, kTab, 0, 0},
        {HostEventKind::KeyDown, kReturn, 0, 0},   {HostEventKind::KeyDown, kLeft, 0, 0},
    };
    uint32_t at = GetHost().GetTickCount();
    for (const Input& input : inputs) QueueInput(input, &at);
    RunMainLoop(at + kSettleMs);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string& path = InputPath();
    WriteFuzzInput("fuzz_play", path, data, size);
    // Each input starts from a player that has seen nothing yet.
    ResetHeadlessState();
    SetHost(HeadlessHost());
    ResetMainLoop();
    ResetWindowProc();
    SetSlotPath(kSlotStack, DosPathFromHost(path));
    OpenStack(false);
    const Document& doc = GetDocument();
    if (CardCount() < 1) Broken("the open flow left no stack");
    if (doc.hasFile && doc.cardWidth <= kMaxCardSide && doc.cardHeight <= kMaxCardSide) {
        SetHeadlessWindowSize(doc.cardWidth, doc.cardHeight);
        if (InitDataBase(doc.cardWidth, doc.cardHeight, DisplayDepth(), false)) {
            DrawEveryCard();
            PlayFirstCard();
        }
    }
    return 0;
}
