// Input for the dialogs' modal loops: a headless host with a fresh main loop and the script's
// events queued 30 ms apart, from 100 ms on.
#pragma once

#include <cstdint>
#include <vector>

#include "host/MainLoop.h"
#include "platform/headless/HeadlessHost.h"

inline HostEvent Type(char c) { return {.kind = HostEventKind::Char, .ch = static_cast<uint8_t>(c)}; }
inline HostEvent Key(uint16_t key) { return {.kind = HostEventKind::KeyDown, .key = key}; }

inline void StartScript(const std::vector<HostEvent>& script) {
    ResetHeadlessState();
    SetHost(HeadlessHost());
    ResetMainLoop();
    uint32_t time = 100;
    for (HostEvent e : script) {
        e.time = time += 30;
        QueueHeadlessEvent(e);
    }
}
