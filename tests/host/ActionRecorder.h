// Recorders in place of the interpreter, for tests of what input runs: each call is written down
// as one line of text, "item 5", "byId 40 Leaf", "named 50 2032".
#pragma once

#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "host/ButtonPress.h"
#include "host/MainLoop.h"
#include "host/WindowProc.h"
#include "platform/Host.h"
#include "platform/headless/HeadlessHost.h"
#include "stack/CardRecord.h"
#include "subsystems/Subsystems.h"

struct ActionRecorder {
    std::vector<std::string> calls;
    bool doesSomething = false;  // what ActionDoesSomething answers
};

inline ActionRecorder& Recorder() { static ActionRecorder recorder; return recorder; }

inline void Record(const std::string& call) { Recorder().calls.push_back(call); }

// The window procedure, presses, the loop and the display list as at start, with recorders in
// place of the interpreter.
inline void StartPlayerWithRecorders() {
    SetHost(HeadlessHost());
    ResetAllState();
    Recorder() = ActionRecorder{};
    Subsystems& hooks = GetSubsystems();
    hooks.RunItemAction = [](void*, uint16_t id, uint32_t) -> int32_t { return Record("item " + std::to_string(id)), 0; };
    hooks.RunActionById = [](uint16_t id, uint32_t, uint32_t, const std::string& name) -> int32_t {
        return Record("byId " + std::to_string(id) + " " + name), 1;
    };
    hooks.RunNamedAction = [](uint16_t id, uint32_t, uint32_t, int16_t label) -> int32_t {
        return Record("named " + std::to_string(id) + " " + std::to_string(label)), 1;
    };
    hooks.ActionDoesSomething = [](uint16_t) { return Recorder().doesSomething; };
}

inline std::string RecordedCalls() {
    std::string all;
    for (const std::string& call : Recorder().calls) all += (all.empty() ? "" : "; ") + call;
    Recorder().calls.clear();
    return all;
}

// A live record with a rectangular region, as the card's drawing would make it, on top.
inline DisplayItem* AddTestItem(int16_t type, int16_t id, const Rect& rect, int16_t actionId = 0, uint16_t flags = 0, int16_t shape = 2) {
    auto item = std::make_unique<DisplayItem>();
    item->type = type;
    item->id = id;
    item->rect = rect;
    item->region = Region(rect);
    item->hasRegion = true;
    item->shape = shape;
    item->actionId = actionId;
    item->flags = flags;
    item->name = "Item" + std::to_string(id);
    return InsertDisplayItem(std::move(item), -1);
}

inline HostEvent MouseEvent(HostEventKind kind, int32_t x, int32_t y, uint32_t mods = 0, int32_t clicks = 1) {
    return {.kind = kind, .x = x, .y = y, .mods = mods, .clicks = clicks};
}
inline HostEvent KeyEvent(HostEventKind kind, uint16_t key, uint32_t mods = 0, uint8_t ch = 0) {
    return {.kind = kind, .mods = mods, .key = key, .ch = ch};
}
