#include "support/LogoTranscript.h"

#include "base/StateRegistry.h"
#include "logo/Evaluator.h"
#include "logo/NodeHeap.h"

namespace {

std::string gTranscript;

}  // namespace

std::string ContinueLogoTranscript(const char* script) {
    gTranscript.clear();
    SetLogoErrorSink([](const std::string& text) {
        const size_t at = text.find("\n\nAt: ");
        gTranscript += "!" + text.substr(12, at == std::string::npos ? std::string::npos : at - 12);
    });
    RunLogoLines(script, nullptr, [](std::string_view text) { gTranscript += text; });
    return gTranscript;
}

std::string RunLogoTranscript(const char* script, bool collectAlways) {
    ResetAllState();
    SetCollectOnEveryAllocation(collectAlways);
    const std::string out = ContinueLogoTranscript(script);
    SetCollectOnEveryAllocation(false);
    return out;
}
