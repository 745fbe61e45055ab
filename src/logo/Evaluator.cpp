#include "logo/Evaluator.h"

#include <algorithm>
#include <cctype>
#include <csignal>
#include <cstring>

#include "base/KeyCodes.h"
#include "base/StateRegistry.h"
#include "logo/LogoErrors.h"
#include "logo/LogoFiles.h"
#include "logo/NodeHeap.h"
#include "logo/Primitives.h"
#include "logo/Printer.h"
#include "logo/Reader.h"
#include "memory/MemRef.h"
#include "platform/Host.h"
#include "subsystems/Subsystems.h"

namespace {

// Procedure calls nest on the native stack; past either limit a call reports "Out of stack space"
// instead of overflowing it (the web build's stack is the smallest we run on).
inline constexpr int kMaxCallDepth = 2000;
inline constexpr uintptr_t kMaxStackBytes = 1024 * 1024;
// Long-running scripts give the window a turn this often, or after this many polls on a clock that
// does not move while they run (the headless host's).
inline constexpr uint32_t kPumpEveryMs = 50;
inline constexpr uint32_t kPollsPerPump = 4096;

LogoRunState gRun;
volatile std::sig_atomic_t gBreakRequested = 0;

bool IsEscapeKey(const HostEvent& e) {
    return (e.kind == HostEventKind::KeyDown || e.kind == HostEventKind::KeyUp) && e.key == kVkEscape;
}

void ResetRunState() {
    gRun = LogoRunState{};
}
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Logo, ResetRunState);

bool IsOperatorWord(const Node* v, const char* ops) {
    if (!IsWord(v) || v->chars[0] == 0 || v->chars[1] != 0) return false;
    return std::strchr(ops, v->chars[0]) != nullptr;
}

Node* Token(Node* const* cursor) { return *cursor ? (*cursor)->payload : nullptr; }

bool AtToken(Node* const* cursor, const char* op) { return IsOperatorWord(Token(cursor), op); }

// A word without its leading colon (pinned when new), and whether it was made.
Node* StripColon(Node* word, bool* made) {
    *made = FirstChar(word) == ':';
    return *made ? DropFirstChar(word) : word;
}

Node* FindEntryInChain(Node* chain, Node* name) {
    for (Node* cell = chain; cell; cell = cell->next) {
        Node* entry = cell->payload;
        if (entry && CompareWords(entry->payload, name) == 0) return entry;
    }
    return nullptr;
}

Node* FindVariableEntry(Node* name) {
    if (gRun.currentFrame) {
        if (Node* e = FindEntryInChain(gRun.currentFrame->next->payload, name)) return e;
    }
    const int b = DictionaryBucket(name);
    if (Node* e = FindEntryInChain(GetLogoRoots().names[b], name)) return e;
    return FindEntryInChain(GetLogoRoots().buriedNames[b], name);
}

// A two-cell [name value] entry linked at the head of `*chain`; false when nodes ran out.
bool LinkEntry(Node** chain, Node* name, Node* value) {
    Node* valueCell = MakeListCell(value, nullptr);
    Node* nameCell = valueCell ? MakeListCell(name, valueCell) : nullptr;
    Node* holder = nameCell ? MakeListCell(nameCell, *chain) : nullptr;
    if (!holder) {
        UnpinValue(valueCell);
        UnpinValue(nameCell);
        return false;
    }
    valueCell->tag = nameCell->tag = holder->tag = kTagList;
    *chain = holder;
    return true;
}

Node* Negated(Node* v) {
    if (IsInteger(v)) return MakeInteger(static_cast<int32_t>(0u - static_cast<uint32_t>(v->integer)));
    return MakeFloat(-GetFloat(v, kRowMinus));
}

Node* Unary(Node** cursor);
Node* Comparison(Node** cursor);

Node* Arithmetic(char op, Node* a, Node* b) {
    const int row = op == '+' ? kRowPlus : op == '-' ? kRowMinus : op == '*' ? kRowTimes : kRowDivide;
    if (IsInteger(a) && IsInteger(b) && op != '/') {
        const uint32_t x = static_cast<uint32_t>(a->integer), y = static_cast<uint32_t>(b->integer);
        const uint32_t r = op == '+' ? x + y : op == '-' ? x - y : x * y;
        return MakeInteger(static_cast<int32_t>(r));
    }
    const double x = GetFloat(a, row), y = GetFloat(b, row);
    switch (op) {
        case '+': return MakeFloat(x + y);
        case '-': return MakeFloat(x - y);
        case '*': return MakeFloat(x * y);
        default:
            if (y == 0.0) {
                ReportError(13, nullptr, nullptr);
                return MakeFloat(x);
            }
            return MakeFloat(x / y);
    }
}

Node* Compare(char op, Node* a, Node* b) {
    if (op == '=') return ValuesEqual(a, b) ? TrueNode() : FalseNode();
    const int row = op == '<' ? kRowLess : kRowGreater;
    const double x = GetFloat(a, row), y = GetFloat(b, row);
    return (op == '<' ? x < y : x > y) ? TrueNode() : FalseNode();
}

using Level = Node* (*)(Node**);

Node* BinaryLevel(Node** cursor, Level next, const char* ops, Node* (*compute)(char, Node*, Node*)) {
    Node* left = next(cursor);
    while (left && AtToken(cursor, ops) && !gRun.stopping && !gRun.throwing && !gRun.returning) {
        const char op = Token(cursor)->chars[0];
        *cursor = (*cursor)->next;
        Node* right = next(cursor);
        if (!right) break;
        Node* result = compute(op, left, right);
        UnpinValue(right);
        UnpinValue(left);
        left = result;
    }
    return left;
}

Node* Multiplicative(Node** cursor) { return BinaryLevel(cursor, Unary, "*/", Arithmetic); }
Node* Additive(Node** cursor) { return BinaryLevel(cursor, Multiplicative, "+-", Arithmetic); }
Node* Comparison(Node** cursor) { return BinaryLevel(cursor, Additive, "<>=", Compare); }

Node* Unary(Node** cursor) {
    if (gRun.pendingOperand) {
        Node* v = gRun.pendingOperand;
        gRun.pendingOperand = nullptr;
        return v;
    }
    if (!*cursor) {
        ReportErrorText(19, "expression", nullptr);
        return ZeroNode();
    }
    Node* token = Token(cursor);
    if (IsOperatorWord(token, "-")) {
        *cursor = (*cursor)->next;
        Node* v = Unary(cursor);
        if (!v) return nullptr;
        Node* negated = Negated(v);
        UnpinValue(v);
        return negated;
    }
    if (IsOperatorWord(token, "(")) {
        *cursor = (*cursor)->next;
        Node* v = Comparison(cursor);
        if (AtToken(cursor, ")")) *cursor = (*cursor)->next;
        return v;
    }
    if (FirstChar(token) == ':') {
        *cursor = (*cursor)->next;
        Node* v = GetVariable(token);
        PinValue(v);
        return v;
    }
    if (FirstChar(token) == '"') {
        *cursor = (*cursor)->next;
        return DropFirstChar(token);
    }
    if (IsWord(token) && !CheckNumber(token, kRowSilent)) return Apply(cursor, false);
    *cursor = (*cursor)->next;
    PinValue(token);
    return token;
}

// A list, alone or with "= value" behind it: no other operator follows a list.
Node* ListOperand(Node** cursor, Node* list) {
    if (!AtToken(cursor, "=")) return list;
    *cursor = (*cursor)->next;
    Node* other = Eval(cursor, false);
    Node* result = ValuesEqual(list, other) ? TrueNode() : FalseNode();
    UnpinValue(other);
    UnpinValue(list);
    return result;
}

// An atom continues into infix when tokens remain behind it.
Node* ContinueInfix(Node** cursor, Node* v) {
    if (!IsAtom(v) || !*cursor) return v;
    gRun.pendingOperand = v;
    return Comparison(cursor);
}

// Where the native stack stands now: the frame of the function this ends up in.
uintptr_t StackHere() { return reinterpret_cast<uintptr_t>(__builtin_frame_address(0)); }

Node* CallProcedure(Node** name, Node** cursor) {
    Node* const savedStart = gRun.bodyStart;
    Node* const savedNext = gRun.bodyNext;
    Node* const savedOutput = gRun.procedureOutput;
    const uintptr_t here = StackHere();
    const uintptr_t used = gRun.stackBase > here ? gRun.stackBase - here : here - gRun.stackBase;
    if (gRun.callDepth >= kMaxCallDepth || used > kMaxStackBytes) {
        ReportError(69, nullptr, nullptr);
        return nullptr;
    }
    Node* entry = FindProcedure(name);
    if (!entry) {
        ReportError(35, *name, nullptr);
        *cursor = nullptr;
        return nullptr;
    }
    // The frame: the caller's frames, the locals, the TEST state, and the definition being run, so
    // that a procedure that redefines or erases itself goes on through lines that are still there.
    Node* head = MakeListCell(GetLogoRoots().frameChain, nullptr);
    Node* locals = head ? MakeListCell(nullptr, nullptr) : nullptr;
    Node* test = locals ? MakeListCell(nullptr, nullptr) : nullptr;
    Node* running = test ? MakeListCell(entry, nullptr) : nullptr;
    if (!running) {
        UnpinValue(head);
        UnpinValue(locals);
        UnpinValue(test);
        return nullptr;
    }
    head->next = locals;
    locals->next = test;
    test->next = running;
    head->tag = locals->tag = test->tag = running->tag = kTagList;
    GetLogoRoots().frameChain = head;
    Node* const callerFrame = gRun.currentFrame;
    gRun.currentFrame = head;
    ++gRun.callDepth;

    bool inputsComplete = true;
    for (Node* p = entry->next->payload; p && p != EmptyList(); p = p->next) {
        DeclareLocal(p->payload);
        if (!*cursor) {
            ReportError(29, entry->payload, nullptr);
            inputsComplete = false;
            break;
        }
        // Inputs are evaluated in the caller's scope, in the new frame's shadow.
        gRun.currentFrame = callerFrame;
        Node* value = Eval(cursor, false);
        gRun.currentFrame = head;
        if (!value || gRun.stopping || gRun.throwing) {
            if (!value && !gRun.stopping && !gRun.throwing) ReportError(29, entry->payload, nullptr);
            UnpinValue(value);
            inputsComplete = false;
            break;
        }
        SetVariable(p->payload, value);
        UnpinValue(value);
    }
    Node* result = nullptr;
    bool thrownPast = false;
    if (inputsComplete) {
        gRun.bodyStart = entry->next->next;
        gRun.bodyNext = gRun.bodyStart;
        gRun.procedureOutput = nullptr;
        while (gRun.bodyNext) {
            Node* line = gRun.bodyNext->payload;
            gRun.bodyNext = gRun.bodyNext->next;
            if (!line || line == EmptyList()) continue;
            Node* value = RunList(line);
            if (value) {
                ReportError(38, nullptr, value);
                UnpinValue(value);
                break;
            }
            PollBreak();
            if (gRun.stopping) gRun.bodyNext = nullptr;
            if (gRun.currentFrame != head) {
                thrownPast = true;
                break;
            }
        }
        result = gRun.procedureOutput;
        gRun.returning = false;
    }
    --gRun.callDepth;
    if (!thrownPast) {
        GetLogoRoots().frameChain = head->payload;
        gRun.currentFrame = callerFrame;
    }
    gRun.bodyStart = savedStart;
    gRun.bodyNext = savedNext;
    gRun.procedureOutput = savedOutput;
    return result;
}

void DrainTo(std::string_view text) {
    if (gRun.writer) gRun.writer(text);
}

}  // namespace

// The dictionary hash: seven buckets, on upper-cased characters in 16-bit arithmetic.
int DictionaryBucket(const Node* word) {
    int16_t h = 1;
    for (const Node* n = word; n; n = n->next) {
        for (char c : n->chars) {
            if (!c) break;
            h = static_cast<int16_t>(h * UpperChar(static_cast<unsigned char>(c)));
            if (h == -32768) h = -32767;
        }
    }
    return (h < 0 ? -h : h) % kBuckets;
}

LogoRunState& GetLogoRunState() { return gRun; }

void SetLogoErrorSink(LogoErrorSink sink) { gRun.errorSink = sink; }

Node* Apply(Node** cursor, bool inParens) {
    gRun.parenCall = inParens;
    Node* cell = *cursor;
    const int row = FindPrimitive(&cell->payload);
    Node* result = nullptr;
    if (row < 0) {
        *cursor = cell->next;
        result = CallProcedure(&cell->payload, cursor);
    } else {
        const PrimitiveRow& r = GetPrimitiveRow(row);
        Node* c = cell->next;
        PrimitiveCall call;
        call.row = row;
        if (r.inputs < 0) {
            call.cursor = &c;
            result = r.handler ? r.handler(call) : nullptr;
            if (!r.handler) ReportErrorAtRow(99, row, nullptr);
        } else {
            bool complete = true;
            int taken = 0;
            for (; taken < r.inputs; ++taken) {
                if (!c) {
                    ReportErrorAtRow(29, row, nullptr);
                    complete = false;
                    break;
                }
                gRun.inputCursor[taken] = c;
                call.in[taken] = Eval(&c, false);
                if (gRun.stopping || gRun.throwing) {
                    complete = false;
                    ++taken;
                    break;
                }
                // A procedure that outputs nothing leaves the input missing.
                if (!call.in[taken]) {
                    ReportErrorAtRow(29, row, nullptr);
                    complete = false;
                    break;
                }
            }
            if (complete) {
                if (r.handler) result = r.handler(call);
                else ReportErrorAtRow(99, row, nullptr);
            }
            for (int i = taken - 1; i >= 0; --i) UnpinValue(call.in[i]);
        }
        *cursor = c;
    }
    PinValue(result);
    return result;
}

Node* Eval(Node** cursor, bool inParens) {
    Node* token = Token(cursor);
    if (!token) return nullptr;
    Node* const savedPending = gRun.pendingOperand;
    gRun.pendingOperand = nullptr;
    Node* value = nullptr;
    if (IsList(token)) {
        *cursor = (*cursor)->next;
        PinValue(token);
        value = ListOperand(cursor, token);
    } else if (FirstChar(token) == '"') {
        *cursor = (*cursor)->next;
        value = ContinueInfix(cursor, DropFirstChar(token));
    } else if (FirstChar(token) == ':') {
        *cursor = (*cursor)->next;
        value = GetVariable(token);
        PinValue(value);
        value = IsList(value) ? ListOperand(cursor, value) : ContinueInfix(cursor, value);
    } else if (IsOperatorWord(token, "-")) {
        value = Comparison(cursor);
    } else if (IsOperatorWord(token, "(")) {
        *cursor = (*cursor)->next;
        value = Eval(cursor, true);
        if (AtToken(cursor, ")")) *cursor = (*cursor)->next;
        value = ContinueInfix(cursor, value);
    } else if (IsWord(token)) {
        value = ContinueInfix(cursor, Apply(cursor, inParens));
    } else {
        value = Comparison(cursor);
    }
    gRun.pendingOperand = savedPending;
    return value;
}

Node* RunList(Node* list) {
    GetLogoRoots().currentRunList = list;
    Node* cursor = list;
    Node* value = nullptr;
    for (;;) {
        UnpinValue(value);
        Node* const before = cursor;
        value = Eval(&cursor, false);
        if (cursor && value) {
            ReportError(38, nullptr, value);
            UnpinValue(value);
            return nullptr;
        }
        if (gRun.throwing || gRun.stopping || gRun.returning) cursor = nullptr;
        if (!cursor || cursor == before) return value;
    }
}

Node* FindVariableValue(const Node* word) {
    if (!IsWord(word)) return nullptr;
    bool made = false;
    Node* name = StripColon(const_cast<Node*>(word), &made);
    Node* entry = FindVariableEntry(name);
    if (made) UnpinValue(name);
    return entry ? entry->next->payload : nullptr;
}

Node* GetVariable(Node* word) {
    if (!IsWord(word)) {
        ReportError(41, PrimitiveNameNode(PrimitiveRowOf("THING")), word);
        return nullptr;
    }
    bool made = false;
    Node* name = StripColon(word, &made);
    Node* entry = FindVariableEntry(name);
    if (!entry) ReportError(9, nullptr, name);
    if (made) UnpinValue(name);
    return entry ? entry->next->payload : nullptr;
}

void SetVariable(Node* word, Node* value) {
    static const int makeRow = PrimitiveRowOf("MAKE");
    if (!CheckWordArg(word, makeRow)) return;
    if (!value) {
        ReportErrorAtRow(29, makeRow, nullptr);
        return;
    }
    if (Node* entry = FindVariableEntry(word)) {
        entry->next->payload = value;
        return;
    }
    LinkEntry(&GetLogoRoots().names[DictionaryBucket(word)], word, value);
}

void DeclareLocal(Node* word) {
    if (!gRun.currentFrame) {
        ReportError(33, nullptr, nullptr);
        return;
    }
    if (!CheckWordArg(word, PrimitiveRowOf("LOCAL"))) return;
    Node* locals = gRun.currentFrame->next;
    if (!FindEntryInChain(locals->payload, word)) LinkEntry(&locals->payload, word, nullptr);
}

Node* FindProcedure(Node** word) {
    if (!IsWord(*word)) return nullptr;
    const int b = DictionaryBucket(*word);
    for (Node* chain : {GetLogoRoots().procedures[b], GetLogoRoots().buriedProcedures[b]}) {
        for (Node* cell = chain; cell; cell = cell->next) {
            Node* entry = cell->payload;
            if (entry && CompareAndCanonicalise(word, entry->payload) == 0) return entry;
        }
    }
    return nullptr;
}

bool ThrowTo(Node* tag) {
    for (Node* record = GetLogoRoots().catchChain; record; record = record->payload) {
        if (CompareWords(record->next->payload, tag) != 0) continue;
        GetLogoRoots().catchChain = record;
        gRun.throwing = true;
        gRun.currentFrame = record->next->next->payload;
        return true;
    }
    return false;
}

void OutputText(std::string_view text) {
    if (WriteToLogoWriter(text)) return;
    std::string out(text);
    for (char& c : out) {
        if (c == '\r') c = '\n';
    }
    out.erase(std::remove(out.begin(), out.end(), '\0'), out.end());
    DrainTo(out);
}

void RequestLogoBreak() { gBreakRequested = 1; }

void PollBreak() {
    Host& host = GetHost();
    const uint32_t now = host.GetTickCount();
    if (now - gRun.lastPumpMs < kPumpEveryMs && ++gRun.pollsSincePump < kPollsPerPump && !gBreakRequested) return;
    gRun.lastPumpMs = now;
    gRun.pollsSincePump = 0;
    HostEvent escape;
    if (host.PeekEvent(IsEscapeKey, &escape)) {
        host.DropEvents(IsEscapeKey);
        gBreakRequested = 1;
    }
    if (gBreakRequested) {
        gBreakRequested = 0;
        StopLogoProcedures();
        return;
    }
    GetSubsystems().PumpOneMessage();
}

bool ScriptTextRemains() { return gRun.scriptAt < gRun.script.size(); }

std::optional<std::string> ReadLogoLine(char prompt) {
    if (ScriptTextRemains()) {
        const size_t end = gRun.script.find_first_of("\r\n", gRun.scriptAt);
        const size_t stop = end == std::string::npos ? gRun.script.size() : end;
        std::string line = gRun.script.substr(gRun.scriptAt, stop - gRun.scriptAt);
        gRun.scriptAt = stop == gRun.script.size() ? stop : stop + 1;
        return line;
    }
    if (!gRun.lineProvider) return std::nullopt;
    return gRun.lineProvider(prompt);
}

int RunLogoLines(std::string_view text, LogoLineProvider lineProvider, LogoTextWriter writer) {
    if (!IsNodeHeapReady()) {
        gRun.primitivesReady = false;
        if (!InitNodeHeap()) return 60;
    }
    if (!gRun.primitivesReady) {
        InitPrimitiveTable();
        gRun.primitivesReady = true;
    }
    // A run started inside another (RUN of a script from a script) keeps the outer one's state.
    if (text.empty()) return 0;
    const LogoRunState outer = gRun;
    LogoRoots& roots = GetLogoRoots();
    Node* const outerLine = roots.currentLine;
    Node* const outerFrames = roots.frameChain;
    Node* const outerCatches = roots.catchChain;
    Node* const outerRunList = roots.currentRunList;
    const bool nested = gRun.stackBase != 0;
    gRun.script = std::string(text);
    gRun.scriptAt = 0;
    gRun.lineProvider = lineProvider;
    gRun.writer = writer;
    gRun.stopping = false;
    gRun.throwing = false;
    gRun.uncaughtErrorCode = 0;
    if (!nested) {
        gRun.stackBase = StackHere();
        gBreakRequested = 0;  // an interrupt at the prompt is not one of this run
    }
    do {
        gRun.currentFrame = nullptr;
        GetLogoRoots().frameChain = nullptr;
        GetLogoRoots().catchChain = nullptr;
        gRun.callDepth = 0;
        gRun.returning = false;
        const std::optional<std::string> line = ReadLogoLine('?');
        if (!line) break;
        Node* parsed = ParseLine(*line);
        GetLogoRoots().currentLine = parsed;
        UnpinValue(parsed);
        if (parsed != EmptyList()) {
            Node* value = RunList(parsed);
            if (value) ReportError(38, nullptr, value);
            UnpinValue(value);
        }
    } while (ScriptTextRemains() && !gRun.stopping);
    const int result = gRun.uncaughtErrorCode;
    roots.currentLine = outerLine;
    roots.frameChain = outerFrames;
    roots.catchChain = outerCatches;
    roots.currentRunList = outerRunList;
    if (nested) {
        const LogoErrorSink sink = gRun.errorSink;
        const int32_t lastError = gRun.lastErrorCode;
        gRun = outer;
        gRun.errorSink = sink;
        gRun.lastErrorCode = lastError;
    } else {
        gRun.stackBase = 0;
    }
    return result;
}

int32_t RunLogoText(void*, MemRef* script) {
    if (!script || !*script) return 0;
    const uint8_t* bytes = LockMemRef(*script);
    const std::string text(reinterpret_cast<const char*>(bytes), GetMemRefSize(*script));
    UnlockMemRef(*script);
    // A script's text may stop at a NUL before the end of its record.
    const size_t end = text.find('\0');
    RunLogoLines(std::string_view(text).substr(0, end == std::string::npos ? text.size() : end), nullptr,
                 nullptr);
    return 0;
}

void StopLogoProcedures() {
    gRun.stopping = true;
    gRun.bodyNext = nullptr;
}
