// What the backends that queue real input do alike: looking into the queue and dropping from it by
// content, and the characters that some keys send along with the key.
#pragma once

#include <cstdint>
#include <deque>

#include "platform/Host.h"

// PeekEvent and DropEvents over a backend's queue (`match` null takes every event).
bool PeekQueuedEvent(const std::deque<HostEvent>& events, HostEventMatch match, HostEvent* event);
void DropQueuedEvents(std::deque<HostEvent>& events, HostEventMatch match);

// The character the system sends with key `key` (a virtual-key code) although no text is typed:
// Return, Backspace, Tab and Escape; 0 for any other key.
uint8_t ControlCharOfKey(uint16_t key);
