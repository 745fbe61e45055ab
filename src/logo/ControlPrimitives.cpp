// Control: running lists, loops, conditions, procedure exits, catch and throw, definitions and
// variables.
#include <cctype>
#include <cstdio>
#include <string>

#include "logo/Evaluator.h"
#include "logo/LogoErrors.h"
#include "logo/NodeHeap.h"
#include "logo/PrimitiveHandlers.h"
#include "logo/Reader.h"
#include "platform/Host.h"
#include "subsystems/Subsystems.h"

namespace {

inline constexpr uint32_t kWaitTicksPerSecond = 60;
inline constexpr uint32_t kWaitSliceMs = 50;  // the window gets a turn at least this often

LogoRunState& Run() { return GetLogoRunState(); }

bool Interrupted() {
    const LogoRunState& r = Run();
    return r.stopping || r.throwing || r.returning;
}

Node* Token(Node* const* cursor) { return *cursor ? (*cursor)->payload : nullptr; }

void Advance(Node** cursor) {
    if (*cursor) *cursor = (*cursor)->next;
}

Node* TestCell() { return Run().currentFrame->next->next; }

bool NeedsProcedure() {
    if (Run().currentFrame) return true;
    ReportError(33, nullptr, nullptr);
    return false;
}

// Runs a list whose value nobody wants: a value left over is error 38.
void RunForEffect(Node* list) {
    Node* value = RunList(list);
    if (value) ReportError(38, nullptr, value);
    UnpinValue(value);
}

// IFT and IFF: the list behind runs when the procedure's last TEST gave `wanted`.
Node* RunIfTested(PrimitiveCall& call, bool wanted) {
    if (!NeedsProcedure()) return nullptr;
    Node* list = Token(call.cursor);
    if (!IsList(list)) {
        ReportErrorAtRow(41, call.row, list);
        return nullptr;
    }
    Advance(call.cursor);
    const Node* tested = TestCell()->payload;
    if (wanted ? IsTrue(tested) : IsFalse(tested)) RunForEffect(list);
    return nullptr;
}

// Erases the procedure `name` from both halves of its dictionary.
void EraseProcedure(Node* name) {
    LogoRoots& roots = GetLogoRoots();
    for (int b = 0; b < kBuckets; ++b) {
        for (Node** chain : {&roots.procedures[b], &roots.buriedProcedures[b]}) {
            for (Node** cell = chain; *cell;) {
                if ((*cell)->payload && CompareWords((*cell)->payload->payload, name) == 0) {
                    *cell = (*cell)->next;
                } else {
                    cell = &(*cell)->next;
                }
            }
        }
    }
}

bool IsEndLine(const Node* line) {
    if (!IsList(line) || line->next || !IsWord(line->payload)) return false;
    std::string text = WordToText(line->payload);
    for (char& ch : text) ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
    return text == "END";
}

}  // namespace

Node* PrimRun(PrimitiveCall& call) {
    if (!IsList(call.in[0])) {
        ReportErrorAtRow(41, call.row, call.in[0]);
        return nullptr;
    }
    return RunList(call.in[0]);
}

Node* PrimRepeat(PrimitiveCall& call) {
    const int32_t n = GetInteger(call.in[0], call.row);
    if (!IsList(call.in[1])) {
        ReportErrorAtRow(41, call.row, call.in[1]);
        return nullptr;
    }
    if (n < 0) {
        ReportErrorAtRow(41, call.row, call.in[0]);
        return nullptr;
    }
    for (int32_t i = 0; i < n && !Interrupted(); ++i) {
        RunForEffect(call.in[1]);
        PollBreak();
    }
    return nullptr;
}

Node* PrimIf(PrimitiveCall& call) {
    Node** c = call.cursor;
    if (!*c) {
        ReportErrorAtRow(29, call.row, nullptr);
        return nullptr;
    }
    Node* condition = Eval(c, false);
    if (Interrupted()) {
        UnpinValue(condition);
        return nullptr;
    }
    const bool isTrue = IsTrue(condition), isFalse = IsFalse(condition);
    Node* first = Token(c);
    if (!IsList(first)) {
        if (!isTrue && !isFalse) ReportError(25, nullptr, condition);
        else ReportErrorAtRow(41, call.row, *c);
        UnpinValue(condition);
        return nullptr;
    }
    Advance(c);
    Node* second = nullptr;
    if (IsList(Token(c))) {
        second = Token(c);
        Advance(c);
    }
    Node* result = nullptr;
    if (isTrue) {
        result = RunList(first);
    } else if (isFalse) {
        if (second) result = RunList(second);
    } else {
        ReportError(25, nullptr, condition);
    }
    UnpinValue(condition);
    return result;
}

Node* PrimIfTrue(PrimitiveCall& call) { return RunIfTested(call, true); }
Node* PrimIfFalse(PrimitiveCall& call) { return RunIfTested(call, false); }

Node* PrimTest(PrimitiveCall& call) {
    if (!NeedsProcedure()) return nullptr;
    if (!IsTrue(call.in[0]) && !IsFalse(call.in[0])) {
        ReportError(25, nullptr, call.in[0]);
        return nullptr;
    }
    TestCell()->payload = call.in[0];
    return nullptr;
}

Node* PrimDoUntil(PrimitiveCall& call) {
    Node** c = call.cursor;
    Node* list = Token(c);
    if (!IsList(list)) {
        ReportErrorAtRow(list ? 41 : 29, call.row, list);
        return nullptr;
    }
    Advance(c);
    Node* const conditionStart = *c;
    for (;;) {
        RunForEffect(list);
        if (Interrupted()) {
            *c = nullptr;
            return nullptr;
        }
        *c = conditionStart;
        Node* condition = Eval(c, false);
        const bool done = IsTrue(condition), again = IsFalse(condition);
        if (!done && !again && !Interrupted()) ReportError(25, nullptr, condition);
        UnpinValue(condition);
        PollBreak();
        if (Interrupted()) {
            *c = nullptr;
            return nullptr;
        }
        if (!again) return nullptr;
    }
}

Node* PrimWhile(PrimitiveCall& call) {
    Node** c = call.cursor;
    Node* const conditionStart = *c;
    for (;;) {
        *c = conditionStart;
        Node* condition = Eval(c, false);
        if (Interrupted()) {
            UnpinValue(condition);
            *c = nullptr;
            return nullptr;
        }
        Node* list = Token(c);
        if (!IsList(list)) {
            ReportErrorAtRow(list ? 41 : 29, call.row, list);
            UnpinValue(condition);
            return nullptr;
        }
        const bool isTrue = IsTrue(condition), isFalse = IsFalse(condition);
        if (!isTrue && !isFalse) ReportError(25, nullptr, condition);
        UnpinValue(condition);
        if (!isTrue) {
            Advance(c);
            return nullptr;
        }
        RunForEffect(list);
        PollBreak();
        if (Interrupted()) {
            *c = nullptr;
            return nullptr;
        }
    }
}

Node* PrimLabel(PrimitiveCall& call) {
    if (NeedsProcedure()) CheckWordArg(call.in[0], call.row);
    return nullptr;
}

Node* PrimGo(PrimitiveCall& call) {
    if (!NeedsProcedure() || !CheckWordArg(call.in[0], call.row)) return nullptr;
    auto bare = [](const Node* w) {
        std::string t = WordToText(w);
        return !t.empty() && t[0] == '"' ? t.substr(1) : t;
    };
    const std::string target = bare(call.in[0]);
    Node* labelName = PrimitiveNameNode(PrimitiveRowOf("LABEL"));
    for (Node* cell = Run().bodyStart; cell; cell = cell->next) {
        Node* line = cell->payload;
        if (!IsList(line) || !IsWord(line->payload) || CompareWords(line->payload, labelName) != 0) continue;
        if (!line->next || !IsWord(line->next->payload)) continue;
        std::string name = bare(line->next->payload);
        if (name.size() != target.size()) continue;
        bool same = true;
        for (size_t i = 0; i < name.size(); ++i) {
            same = same && std::toupper(static_cast<unsigned char>(name[i])) ==
                               std::toupper(static_cast<unsigned char>(target[i]));
        }
        if (same) {
            Run().bodyNext = cell;
            return nullptr;
        }
    }
    ReportError(7, nullptr, call.in[0]);
    return nullptr;
}

Node* PrimStop(PrimitiveCall&) {
    NeedsProcedure();
    Run().bodyNext = nullptr;
    Run().returning = true;
    return nullptr;
}

Node* PrimOutput(PrimitiveCall& call) {
    NeedsProcedure();
    // The value stays pinned until the caller has it: Apply unpins only what is left in `in`.
    Run().procedureOutput = call.in[0];
    call.in[0] = nullptr;
    Run().bodyNext = nullptr;
    Run().returning = true;
    return nullptr;
}

Node* PrimCatch(PrimitiveCall& call) {
    if (!CheckWordArg(call.in[0], call.row)) return nullptr;
    if (!IsList(call.in[1])) {
        ReportErrorAtRow(41, call.row, call.in[1]);
        return nullptr;
    }
    LogoRoots& roots = GetLogoRoots();
    Node* frameCell = MakeListCell(Run().currentFrame, nullptr);
    Node* tagCell = frameCell ? MakeListCell(call.in[0], frameCell) : nullptr;
    Node* head = tagCell ? MakeListCell(roots.catchChain, tagCell) : nullptr;
    if (!head) {
        UnpinValue(frameCell);
        UnpinValue(tagCell);
        return nullptr;
    }
    frameCell->tag = tagCell->tag = head->tag = kTagList;
    roots.catchChain = head;
    Node* value = RunList(call.in[1]);
    // A throw to a CATCH further out passes this one by.
    if (roots.catchChain == head) {
        Run().throwing = false;
        roots.catchChain = head->payload;
    }
    if (value && !Interrupted()) ReportError(38, nullptr, value);
    UnpinValue(value);
    return nullptr;
}

Node* PrimThrow(PrimitiveCall& call) {
    if (CheckWordArg(call.in[0], call.row) && !ThrowTo(call.in[0])) ReportError(21, nullptr, call.in[0]);
    return nullptr;
}

Node* PrimError(PrimitiveCall&) {
    Node* code = MakeInteger(Run().lastErrorCode);
    return code ? MakeListCell(code, nullptr) : nullptr;
}

Node* PrimTopLevel(PrimitiveCall&) {
    Run().stopping = true;
    return nullptr;
}

Node* PrimWait(PrimitiveCall& call) {
    const int32_t ticks = GetInteger(call.in[0], call.row);
    if (ticks <= 0) return nullptr;
    Host& host = GetHost();
    const uint32_t deadline = host.GetTickCount() + static_cast<uint32_t>(ticks) * 1000u / kWaitTicksPerSecond;
    while (!Run().stopping && static_cast<int32_t>(deadline - host.GetTickCount()) > 0) {
        const uint32_t now = host.GetTickCount();
        const uint32_t slice = static_cast<int32_t>(deadline - now) > static_cast<int32_t>(kWaitSliceMs)
                                   ? now + kWaitSliceMs
                                   : deadline;
        host.WaitUntil(slice);
        GetSubsystems().PumpOneMessage();
    }
    return nullptr;
}

Node* PrimTo(PrimitiveCall& call) {
    Node** c = call.cursor;
    LogoRunState& run = Run();
    run.defining = true;
    const bool fromScript = ScriptTextRemains();
    Node* name = Token(c);
    if (!name) {
        run.defining = false;
        return nullptr;
    }
    Advance(c);
    const char first = FirstChar(name);
    if (!IsWord(name) || first == ':' || first == '"') {
        ReportErrorAtRow(41, call.row, name);
        run.defining = false;
        return nullptr;
    }
    Node* probe = name;
    if (FindPrimitive(&probe) >= 0) {
        ReportError(6, nullptr, name);
        run.defining = false;
        return nullptr;
    }
    EraseProcedure(name);
    Node* paramsCell = MakeListCell(nullptr, nullptr);
    Node* nameCell = paramsCell ? MakeListCell(name, paramsCell) : nullptr;
    Node* holder = nameCell ? MakeListCell(nameCell, nullptr) : nullptr;
    if (!holder) {
        UnpinValue(paramsCell);
        UnpinValue(nameCell);
        run.defining = false;
        return nullptr;
    }
    Node** bucket = &GetLogoRoots().procedures[DictionaryBucket(name)];
    holder->next = *bucket;
    *bucket = holder;
    paramsCell->tag = nameCell->tag = holder->tag = kTagList;
    // Parameters, stored without their colons.
    Node** lastParam = &paramsCell->payload;
    while (*c) {
        Node* token = Token(c);
        Advance(c);
        if (!IsWord(token) || FirstChar(token) != ':') {
            ReportErrorAtRow(41, call.row, token);
            EraseProcedure(name);
            run.defining = false;
            return nullptr;
        }
        Node* param = DropFirstChar(token);
        Node* cell = param ? MakeListCell(param, nullptr) : nullptr;
        if (!cell) break;
        cell->tag = kTagList;
        UnpinValue(param);
        *lastParam = cell;
        lastParam = &cell->next;
    }
    // Body lines, as they are read; END alone closes the definition.
    Node** lastLine = &paramsCell->next;
    bool closed = false;
    while (!fromScript || ScriptTextRemains()) {
        const std::optional<std::string> text = ReadLogoLine('>');
        if (!text) break;
        Node* line = ParseLine(*text);
        if (!line) break;
        if (IsEndLine(line)) {
            UnpinValue(line);
            closed = true;
            break;
        }
        Node* cell = MakeListCell(line, nullptr);
        if (!cell) {
            UnpinValue(line);
            break;
        }
        *lastLine = cell;
        lastLine = &cell->next;
        UnpinValue(cell);
    }
    *c = nullptr;
    run.defining = false;
    if (!closed) ReportError(71, nullptr, nullptr);
    return nullptr;
}

Node* PrimLocal(PrimitiveCall& call) {
    DeclareLocal(call.in[0]);
    return nullptr;
}

Node* PrimMake(PrimitiveCall& call) {
    SetVariable(call.in[0], call.in[1]);
    return nullptr;
}

Node* PrimName(PrimitiveCall& call) {
    SetVariable(call.in[1], call.in[0]);
    return nullptr;
}

Node* PrimThing(PrimitiveCall& call) { return GetVariable(call.in[0]); }

Node* PrimRecycle(PrimitiveCall&) {
    Recycle();
    return nullptr;
}

Node* PrimNodes(PrimitiveCall&) {
    char text[64];
    std::snprintf(text, sizeof text, "There are %lu free nodes.\n", static_cast<unsigned long>(FreeNodeCount()));
    OutputText(text);
    return nullptr;
}
