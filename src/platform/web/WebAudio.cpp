// The web's audio out: a WebAudio graph (WebHost.js) asks for frames as it plays and the mix is
// pulled here into a buffer the page reads. Everything runs on the page's one thread, between the
// core's waits, so the mixer is never caught half-changed and the lock has nothing to do.
#include <emscripten.h>

#include <cstdint>
#include <vector>

#include "platform/web/WebState.h"

EM_JS(int, QbJsAudioAvailable, (), { return Module.qbAudioAvailable() ? 1 : 0; });
EM_JS(int, QbJsOpenAudio, (int rate), { return Module.qbOpenAudio(rate); });
EM_JS(void, QbJsCloseAudio, (), { Module.qbCloseAudio(); });

namespace {

inline constexpr uint32_t kWebAudioFrames = 2048;

struct WebAudio {
    AudioPull pull = nullptr;
    std::vector<int16_t> frames;
};
WebAudio gAudio;

}  // namespace

uint32_t WebDetectAudio() {
    return QbJsAudioAvailable() ? kWebAudioFrames : 0;
}

// The graph runs at the page's rate, whatever is asked: the mixer resamples to what it is told.
uint32_t WebOpenAudio(uint32_t rate, AudioPull pull) {
    WebCloseAudio();
    if (!pull) return 0;
    const int opened = QbJsOpenAudio(static_cast<int>(rate));
    if (opened <= 0) return 0;
    gAudio.pull = pull;
    return static_cast<uint32_t>(opened);
}

void WebCloseAudio() {
    if (gAudio.pull) QbJsCloseAudio();
    gAudio = WebAudio{};
}

extern "C" {

// `count` stereo frames of the mix, 16-bit, for the graph; silence when no device is open.
EMSCRIPTEN_KEEPALIVE int16_t* QbWebPullAudio(uint32_t count) {
    if (count > 16 * kWebAudioFrames) count = 16 * kWebAudioFrames;
    gAudio.frames.assign(2 * static_cast<size_t>(count), 0);
    if (gAudio.pull) gAudio.pull(gAudio.frames.data(), count);
    return gAudio.frames.data();
}

}  // extern "C"
