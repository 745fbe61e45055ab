// Reading: lines from the reader file or the console, characters from the keyboard, and KEYP.
#include <optional>
#include <string>

#include "base/KeyCodes.h"
#include "base/StateRegistry.h"
#include "logo/Evaluator.h"
#include "logo/LogoErrors.h"
#include "logo/LogoFiles.h"
#include "logo/NodeHeap.h"
#include "logo/PrimitiveHandlers.h"
#include "logo/Reader.h"
#include "platform/Host.h"
#include "subsystems/Subsystems.h"

namespace {

struct ConsoleState {
    std::string typed;     // console text READCHAR has not taken yet, a CR ending each line
    std::string rwPrompt;  // shown by the next read in the turtle's output mode, then cleared
};

ConsoleState gConsole;

void ResetConsole() { gConsole = ConsoleState{}; }
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Logo, ResetConsole);

bool IsCharEvent(const HostEvent& e) { return e.kind == HostEventKind::Char; }

// A line from the console: what READCHAR left of the last one, else a new one.
std::optional<std::string> ConsoleLine() {
    gConsole.rwPrompt.clear();
    if (!gConsole.typed.empty()) {
        const size_t end = gConsole.typed.find('\r');
        std::string line = gConsole.typed.substr(0, end);
        gConsole.typed.erase(0, end == std::string::npos ? std::string::npos : end + 1);
        return line;
    }
    const LogoLineProvider provider = GetLogoRunState().lineProvider;
    if (!provider) return std::nullopt;
    return provider('\0');
}

// A word of the next line, from the reader file when one is chosen; the empty list at the end.
Node* ReadLineWord() {
    const std::optional<std::string> line = LogoReaderChosen() ? ReadLogoReaderLine() : ConsoleLine();
    return line ? MakeWord(*line) : EmptyList();
}

// The next character typed: the console's text where there is a console, else the window's
// character messages. Nothing when the run stops or no input can come any more.
std::optional<char> NextTypedChar() {
    LogoRunState& run = GetLogoRunState();
    if (gConsole.typed.empty() && run.lineProvider) {
        const std::optional<std::string> line = run.lineProvider('\0');
        if (!line) return std::nullopt;
        gConsole.typed = *line + "\r";
    }
    if (!gConsole.typed.empty()) {
        const char c = gConsole.typed[0];
        gConsole.typed.erase(0, 1);
        return c;
    }
    Host& host = GetHost();
    while (!run.stopping) {
        HostEvent e;
        if (host.PollEvent(&e)) {
            if (e.kind == HostEventKind::Char) return static_cast<char>(e.ch);
            if (e.kind == HostEventKind::KeyDown && e.key == kVkEscape) StopLogoProcedures();
            continue;
        }
        if (host.InputExhausted && host.InputExhausted()) return std::nullopt;
        host.WaitUntil(host.GetTickCount() + 50);
        PollBreak();
    }
    return std::nullopt;
}

}  // namespace

Node* PrimReadWord(PrimitiveCall&) { return ReadLineWord(); }

Node* PrimReadList(PrimitiveCall&) {
    Node* word = ReadLineWord();
    if (!IsWord(word)) return word;
    Node* list = ParseLine(WordToText(word));
    UnpinValue(word);
    return list;
}

Node* PrimReadChar(PrimitiveCall&) {
    const std::optional<char> c = NextTypedChar();
    return c ? MakeWord(std::string(1, *c)) : EmptyWord();
}

Node* PrimReadChars(PrimitiveCall& call) {
    const int32_t n = GetInteger(call.in[0], call.row);
    if (n < 1) {
        ReportErrorAtRow(41, call.row, call.in[0]);
        return EmptyWord();
    }
    std::string text;
    for (int32_t i = 0; i < n; ++i) {
        const std::optional<char> c = NextTypedChar();
        if (!c) break;
        text += *c;
    }
    return MakeWord(text);
}

Node* PrimKeyP(PrimitiveCall&) {
    if (LogoReaderChosen()) return LogoReaderHasMore() ? TrueNode() : FalseNode();
    HostEvent e;
    const bool pending = !gConsole.typed.empty() || GetHost().PeekEvent(IsCharEvent, &e);
    return pending ? TrueNode() : FalseNode();
}

Node* PrimSetRwPrompt(PrimitiveCall& call) {
    if (!IsAtom(call.in[0])) {
        ReportErrorAtRow(41, call.row, call.in[0]);
        return nullptr;
    }
    gConsole.rwPrompt = AtomText(call.in[0]);
    return nullptr;
}
