// Lists and words, arithmetic, predicates and printing. A number stands for its text wherever a
// word is meant.
#include <cstring>
#include <string>
#include <vector>

#include "logo/Evaluator.h"
#include "logo/LogoErrors.h"
#include "logo/NodeHeap.h"
#include "logo/PrimitiveHandlers.h"
#include "logo/Printer.h"
#include "logo/Reader.h"

namespace {

Node* Truth(bool b) { return b ? TrueNode() : FalseNode(); }

bool IsEmptyList(const Node* v) { return IsList(v) && !v->payload && !v->next; }

// The inputs of a row of -1: `defaults` of them, or with parentheses all up to the `)`. False
// when one is missing; what was taken is then unpinned.
bool MoreInputs(Node* const* c) {
    if (!*c) return false;
    const Node* t = (*c)->payload;
    return !(IsWord(t) && t->chars[0] == ')' && t->chars[1] == 0);
}

bool TakeInputs(PrimitiveCall& call, int defaults, std::vector<Node*>& values) {
    const bool all = GetLogoRunState().parenCall;
    Node** c = call.cursor;
    bool complete = true;
    for (int i = 0; complete && (all ? MoreInputs(c) : i < defaults); ++i) {
        Node* v = *c ? Eval(c, false) : nullptr;
        const LogoRunState& run = GetLogoRunState();
        if (run.stopping || run.throwing) {
            UnpinValue(v);
            complete = false;
        } else if (!v) {
            ReportErrorAtRow(29, call.row, nullptr);
            complete = false;
        } else {
            values.push_back(v);
        }
    }
    if (complete) return true;
    for (auto it = values.rbegin(); it != values.rend(); ++it) UnpinValue(*it);
    values.clear();
    return false;
}

void UnpinAll(std::vector<Node*>& values) {
    for (auto it = values.rbegin(); it != values.rend(); ++it) UnpinValue(*it);
}

Node* LastCell(Node* list) {
    while (list->next) list = list->next;
    return list;
}

// Appends `element` to the list being built in `*head`/`*tail`; false when nodes ran out.
bool Append(Node** head, Node** tail, Node* element) {
    Node* cell = MakeListCell(element, nullptr);
    if (!cell) return false;
    if (*tail) (*tail)->next = cell;
    else *head = cell;
    *tail = cell;
    return true;
}

Node* CharWord(char c) { return MakeWord(std::string(1, c)); }

bool WordsEqual(const Node* a, const Node* b) {
    for (; a && b; a = a->next, b = b->next) {
        if (std::memcmp(a->chars, b->chars, 4) != 0) return false;
    }
    return !a && !b;
}

Node* IntegerOrFloat(bool integers, int64_t i, double d) {
    return integers ? MakeInteger(static_cast<int32_t>(static_cast<uint32_t>(i))) : MakeFloat(d);
}

// SUM and PRODUCT: integers as integers until the first real, then all as a real.
Node* Accumulate(PrimitiveCall& call, bool product) {
    std::vector<Node*> values;
    if (!TakeInputs(call, 2, values)) return nullptr;
    bool integers = true;
    uint32_t i = product ? 1 : 0;
    double d = product ? 1.0 : 0.0;
    for (Node* v : values) {
        if (integers && IsInteger(v)) {
            i = product ? i * static_cast<uint32_t>(v->integer) : i + static_cast<uint32_t>(v->integer);
            d = static_cast<int32_t>(i);
            continue;
        }
        integers = false;
        const double x = GetFloat(v, call.row);
        d = product ? d * x : d + x;
    }
    UnpinAll(values);
    return IntegerOrFloat(integers, static_cast<int32_t>(i), d);
}

Node* PrintInputs(PrimitiveCall& call, bool newline) {
    const bool all = GetLogoRunState().parenCall;
    std::vector<Node*> values;
    if (!TakeInputs(call, 1, values)) return nullptr;
    std::string text;
    for (size_t i = 0; i < values.size(); ++i) {
        if (i && newline) text += ' ';
        text += PrintText(values[i], false);
    }
    // Without parentheses, more on the line still gets its blank before the line ends.
    if (!all && newline && *call.cursor) text += ' ';
    if (newline) text += '\n';
    OutputText(text);
    UnpinAll(values);
    return nullptr;
}

Node* Logic(PrimitiveCall& call, bool isAnd) {
    std::vector<Node*> values;
    if (!TakeInputs(call, 2, values)) return nullptr;
    bool result = isAnd;
    for (Node* v : values) {
        if (!IsTrue(v) && !IsFalse(v)) {
            ReportErrorAtRow(41, call.row, v);
            break;
        }
        result = isAnd ? result && IsTrue(v) : result || IsTrue(v);
    }
    UnpinAll(values);
    return Truth(result);
}

}  // namespace

bool ValuesEqual(const Node* a, const Node* b) {
    if (a == b) return true;
    if (!a || !b) return false;
    if ((a->tag & 15) != (b->tag & 15)) {
        if (CheckNumber(a, kRowSilent) && CheckNumber(b, kRowSilent)) {
            return GetFloat(a, kRowSilent) == GetFloat(b, kRowSilent);
        }
        return false;
    }
    if (IsList(a)) {
        for (; a && b; a = a->next, b = b->next) {
            if (!ValuesEqual(a->payload, b->payload)) return false;
        }
        return !a && !b;
    }
    if (IsWord(a)) return WordsEqual(a, b);
    if (IsInteger(a)) return a->integer == b->integer;
    return a->real == b->real;
}

Node* PrimFirst(PrimitiveCall& call) {
    Node* x = call.in[0];
    if (IsList(x)) {
        if (IsEmptyList(x)) ReportErrorAtRow(41, call.row, x);
        return x->payload;
    }
    const std::string text = AtomText(x);
    if (text.empty()) {
        ReportErrorAtRow(41, call.row, x);
        return nullptr;
    }
    return CharWord(text[0]);
}

Node* PrimButFirst(PrimitiveCall& call) {
    Node* x = call.in[0];
    if (IsList(x)) {
        if (IsEmptyList(x)) {
            ReportErrorAtRow(41, call.row, x);
            return EmptyList();
        }
        return x->next ? x->next : EmptyList();
    }
    const std::string text = AtomText(x);
    if (text.empty()) {
        ReportErrorAtRow(41, call.row, x);
        return nullptr;
    }
    return MakeWord(std::string_view(text).substr(1));
}

Node* PrimLast(PrimitiveCall& call) {
    Node* x = call.in[0];
    if (IsList(x)) {
        if (IsEmptyList(x)) ReportErrorAtRow(41, call.row, x);
        return LastCell(x)->payload;
    }
    const std::string text = AtomText(x);
    if (text.empty()) {
        ReportErrorAtRow(41, call.row, x);
        return nullptr;
    }
    return CharWord(text.back());
}

Node* PrimButLast(PrimitiveCall& call) {
    Node* x = call.in[0];
    if (IsList(x)) {
        if (IsEmptyList(x)) {
            ReportErrorAtRow(41, call.row, x);
            return EmptyList();
        }
        Node *head = nullptr, *tail = nullptr;
        for (Node* cell = x; cell->next; cell = cell->next) {
            if (!Append(&head, &tail, cell->payload)) break;
        }
        return head ? head : EmptyList();
    }
    const std::string text = AtomText(x);
    if (text.empty()) {
        ReportErrorAtRow(41, call.row, x);
        return nullptr;
    }
    return MakeWord(std::string_view(text).substr(0, text.size() - 1));
}

Node* PrimFput(PrimitiveCall& call) {
    Node* list = call.in[1];
    if (!call.in[0] || !IsList(list)) {
        ReportErrorAtRow(41, call.row, list);
        return list;
    }
    return MakeListCell(call.in[0], IsEmptyList(list) ? nullptr : list);
}

Node* PrimLput(PrimitiveCall& call) {
    Node* list = call.in[1];
    if (!call.in[0] || !IsList(list)) {
        ReportErrorAtRow(41, call.row, list);
        return list;
    }
    Node *head = nullptr, *tail = nullptr;
    if (!IsEmptyList(list)) {
        for (Node* cell = list; cell; cell = cell->next) {
            if (!Append(&head, &tail, cell->payload)) return nullptr;
        }
    }
    Append(&head, &tail, call.in[0]);
    return head;
}

Node* PrimList(PrimitiveCall& call) {
    std::vector<Node*> values;
    if (!TakeInputs(call, 2, values)) return nullptr;
    Node *head = nullptr, *tail = nullptr;
    for (Node* v : values) {
        if (!Append(&head, &tail, v)) break;
    }
    UnpinAll(values);
    return head ? head : EmptyList();
}

Node* PrimSentence(PrimitiveCall& call) {
    std::vector<Node*> values;
    if (!TakeInputs(call, 2, values)) return nullptr;
    Node *head = nullptr, *tail = nullptr;
    for (Node* v : values) {
        if (!IsList(v)) {
            Append(&head, &tail, v);
            continue;
        }
        if (IsEmptyList(v)) continue;
        for (Node* cell = v; cell; cell = cell->next) Append(&head, &tail, cell->payload);
    }
    UnpinAll(values);
    return head ? head : EmptyList();
}

Node* PrimWord(PrimitiveCall& call) {
    std::vector<Node*> values;
    if (!TakeInputs(call, 2, values)) return nullptr;
    std::string text;
    for (Node* v : values) {
        if (IsList(v)) {
            ReportErrorAtRow(41, call.row, v);
            break;
        }
        text += AtomText(v);
    }
    UnpinAll(values);
    return MakeWord(text);
}

Node* PrimCount(PrimitiveCall& call) {
    Node* x = call.in[0];
    if (IsList(x)) {
        int32_t n = 0;
        if (!IsEmptyList(x)) {
            for (Node* cell = x; cell; cell = cell->next) ++n;
        }
        return MakeInteger(n);
    }
    return MakeInteger(static_cast<int32_t>(AtomText(x).size()));
}

Node* PrimItem(PrimitiveCall& call) {
    const int32_t n = GetInteger(call.in[0], call.row);
    Node* x = call.in[1];
    if (n < 1) {
        ReportErrorAtRow(41, call.row, call.in[0]);
        return nullptr;
    }
    if (IsList(x)) {
        Node* cell = IsEmptyList(x) ? nullptr : x;
        for (int32_t i = 1; cell && i < n; ++i) cell = cell->next;
        if (!cell) ReportErrorAtRow(41, call.row, x);
        return cell ? cell->payload : nullptr;
    }
    const std::string text = AtomText(x);
    if (static_cast<size_t>(n) > text.size()) {
        ReportErrorAtRow(41, call.row, x);
        return nullptr;
    }
    return CharWord(text[static_cast<size_t>(n) - 1]);
}

Node* PrimEmptyP(PrimitiveCall& call) {
    const Node* x = call.in[0];
    return Truth(x == EmptyList() || x == EmptyWord() || IsEmptyList(x) || (IsWord(x) && x->chars[0] == 0));
}

Node* PrimEqualP(PrimitiveCall& call) { return Truth(ValuesEqual(call.in[0], call.in[1])); }

Node* PrimSum(PrimitiveCall& call) { return Accumulate(call, false); }
Node* PrimProduct(PrimitiveCall& call) { return Accumulate(call, true); }

Node* PrimDifference(PrimitiveCall& call) {
    Node *a = call.in[0], *b = call.in[1];
    if (IsInteger(a) && IsInteger(b)) {
        return MakeInteger(static_cast<int32_t>(static_cast<uint32_t>(a->integer) - static_cast<uint32_t>(b->integer)));
    }
    return MakeFloat(GetFloat(a, call.row) - GetFloat(b, call.row));
}

Node* PrimQuotient(PrimitiveCall& call) {
    const double a = GetFloat(call.in[0], call.row);
    double b = GetFloat(call.in[1], call.row);
    if (b == 0.0) {
        ReportError(13, nullptr, nullptr);
        b = 1.0;
    }
    return MakeFloat(a / b);
}

namespace {

Node* IntegerDivision(PrimitiveCall& call, bool remainder) {
    const int32_t a = GetInteger(call.in[0], call.row);
    int32_t b = GetInteger(call.in[1], call.row);
    if (b == 0) {
        ReportError(13, nullptr, nullptr);
        b = 1;
    }
    // The one quotient that overflows wraps, as the machine's division would not.
    if (b == -1) return MakeInteger(remainder ? 0 : static_cast<int32_t>(0u - static_cast<uint32_t>(a)));
    return MakeInteger(remainder ? a % b : a / b);
}

}  // namespace

Node* PrimRemainder(PrimitiveCall& call) { return IntegerDivision(call, true); }
Node* PrimIntQuotient(PrimitiveCall& call) { return IntegerDivision(call, false); }

Node* PrimPrint(PrimitiveCall& call) { return PrintInputs(call, true); }
Node* PrimType(PrimitiveCall& call) { return PrintInputs(call, false); }

Node* PrimShow(PrimitiveCall& call) {
    const Node* x = call.in[0];
    OutputText((IsList(x) ? "[" + PrintText(x, false) + "]" : PrintText(x, false)) + "\n");
    return nullptr;
}

Node* PrimNot(PrimitiveCall& call) {
    if (!IsTrue(call.in[0]) && !IsFalse(call.in[0])) {
        ReportErrorAtRow(41, call.row, call.in[0]);
        return FalseNode();
    }
    return Truth(IsFalse(call.in[0]));
}

Node* PrimAnd(PrimitiveCall& call) { return Logic(call, true); }
Node* PrimOr(PrimitiveCall& call) { return Logic(call, false); }
Node* PrimListP(PrimitiveCall& call) { return Truth(IsList(call.in[0])); }
Node* PrimWordP(PrimitiveCall& call) { return Truth(IsWord(call.in[0]) || IsFloat(call.in[0])); }
Node* PrimNumberP(PrimitiveCall& call) { return Truth(IsNumber(call.in[0])); }
Node* PrimIntegerP(PrimitiveCall& call) { return Truth(IsInteger(call.in[0])); }
Node* PrimFloatP(PrimitiveCall& call) { return Truth(IsFloat(call.in[0])); }

Node* PrimParse(PrimitiveCall& call) {
    if (!CheckWordArg(call.in[0], call.row)) return EmptyList();
    return ParseLine(WordToText(call.in[0]));
}

Node* PrimDefinedP(PrimitiveCall& call) {
    Node* name = call.in[0];
    return Truth(IsWord(name) && FindProcedure(&name));
}

Node* PrimPrimitiveP(PrimitiveCall& call) {
    Node* name = call.in[0];
    return Truth(IsWord(name) && FindPrimitive(&name) >= 0);
}

Node* PrimNameP(PrimitiveCall& call) { return Truth(FindVariableValue(call.in[0]) != nullptr); }

Node* PrimNothing(PrimitiveCall&) { return nullptr; }
