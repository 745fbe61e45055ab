#include "platform/HostInput.h"

#include <algorithm>

#include "base/KeyCodes.h"

namespace {

bool Accepts(HostEventMatch match, const HostEvent& event) {
    return !match || match(event);
}

}  // namespace

bool PeekQueuedEvent(const std::deque<HostEvent>& events, HostEventMatch match, HostEvent* event) {
    const auto found = std::find_if(events.begin(), events.end(),
                                    [match](const HostEvent& e) { return Accepts(match, e); });
    if (found == events.end()) return false;
    *event = *found;
    return true;
}

void DropQueuedEvents(std::deque<HostEvent>& events, HostEventMatch match) {
    events.erase(std::remove_if(events.begin(), events.end(),
                                [match](const HostEvent& e) { return Accepts(match, e); }),
                 events.end());
}

uint8_t ControlCharOfKey(uint16_t key) {
    switch (key) {
        case kVkReturn:
        case kVkBack:
        case kVkTab:
        case kVkEscape:
            return static_cast<uint8_t>(key);  // the codes are the characters
        default:
            return 0;
    }
}
