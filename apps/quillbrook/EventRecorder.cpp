#include "EventRecorder.h"

#include <utility>

namespace {

struct RecorderState {
    bool on = false;
    uint32_t startMs = 0;
    bool (*poll)(HostEvent*) = nullptr;  // the host's own
    std::vector<HostEvent> events;
};
RecorderState gRecorder;

bool IsInput(HostEventKind kind) {
    switch (kind) {
        case HostEventKind::MouseDown:
        case HostEventKind::MouseUp:
        case HostEventKind::MouseMove:
        case HostEventKind::KeyDown:
        case HostEventKind::KeyUp:
        case HostEventKind::Char:
        case HostEventKind::FocusLost:
            return true;
        default:
            return false;
    }
}

bool RecordingPollEvent(HostEvent* event) {
    if (!gRecorder.poll || !gRecorder.poll(event)) return false;
    if (IsInput(event->kind)) {
        HostEvent kept = *event;
        const int32_t since = static_cast<int32_t>(event->time - gRecorder.startMs);
        kept.time = since > 0 ? static_cast<uint32_t>(since) : 0;
        gRecorder.events.push_back(kept);
    }
    return true;
}

}  // namespace

void StartRecording(uint32_t startMs) {
    if (gRecorder.on) StopRecording();
    Host& host = GetHost();
    gRecorder = RecorderState{true, startMs, host.PollEvent, {}};
    host.PollEvent = RecordingPollEvent;
}

std::vector<HostEvent> StopRecording() {
    if (gRecorder.on) GetHost().PollEvent = gRecorder.poll;
    std::vector<HostEvent> events = std::move(gRecorder.events);
    gRecorder = RecorderState{};
    return events;
}
