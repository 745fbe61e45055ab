// Characters and membership: ASCII, CHAR, the case conversions, MEMBER and BEFOREP. A number
// stands for its text wherever a word is meant.
#include <cctype>
#include <string>

#include "logo/Evaluator.h"
#include "logo/LogoErrors.h"
#include "logo/NodeHeap.h"
#include "logo/PrimitiveHandlers.h"

namespace {

bool IsEmptyListValue(const Node* v) { return IsList(v) && !v->payload && !v->next; }

Node* Converted(PrimitiveCall& call, int (*convert)(int)) {
    if (!IsAtom(call.in[0])) {
        ReportErrorAtRow(41, call.row, call.in[0]);
        return call.in[0];
    }
    std::string text = AtomText(call.in[0]);
    for (char& c : text) c = static_cast<char>(convert(static_cast<unsigned char>(c)));
    return MakeWord(text);
}

// MEMBER's search: the tail of a list from the first element equal to `x`, or the rest of a word
// from the first place its text holds `x`'s; null when nothing is found.
Node* FindMember(PrimitiveCall& call) {
    Node *x = call.in[0], *y = call.in[1];
    if (IsList(y)) {
        if (IsEmptyListValue(y)) return nullptr;
        for (Node* cell = y; cell; cell = cell->next) {
            if (ValuesEqual(cell->payload, x)) return cell;
        }
        return nullptr;
    }
    if (IsList(x)) return nullptr;
    const std::string text = AtomText(y);
    const size_t at = text.find(AtomText(x));
    return at == std::string::npos ? nullptr : MakeWord(std::string_view(text).substr(at));
}

}  // namespace

Node* PrimAscii(PrimitiveCall& call) {
    const std::string text = IsAtom(call.in[0]) ? AtomText(call.in[0]) : std::string();
    if (text.empty()) {
        ReportErrorAtRow(41, call.row, call.in[0]);
        return ZeroNode();
    }
    return MakeInteger(static_cast<unsigned char>(text[0]));
}

Node* PrimChar(PrimitiveCall& call) {
    const int32_t code = GetInteger(call.in[0], call.row);
    return MakeWord(std::string(1, static_cast<char>(code & 0xFF)));
}

Node* PrimLowercase(PrimitiveCall& call) {
    return Converted(call, [](int c) { return std::tolower(c); });
}

Node* PrimUppercase(PrimitiveCall& call) {
    return Converted(call, [](int c) { return std::toupper(c); });
}

Node* PrimMember(PrimitiveCall& call) {
    Node* found = FindMember(call);
    if (found) return found;
    return IsList(call.in[1]) ? EmptyList() : EmptyWord();
}

Node* PrimMemberP(PrimitiveCall& call) {
    Node* found = FindMember(call);
    const bool hit = found != nullptr;
    if (hit && !IsList(call.in[1])) UnpinValue(found);
    return hit ? TrueNode() : FalseNode();
}

Node* PrimBeforeP(PrimitiveCall& call) {
    for (int i = 0; i < 2; ++i) {
        if (!IsAtom(call.in[i])) {
            ReportErrorAtRow(41, call.row, call.in[i]);
            return FalseNode();
        }
    }
    // Signed bytes, case and all: "A sorts before "a.
    const std::string a = AtomText(call.in[0]), b = AtomText(call.in[1]);
    for (size_t i = 0; i < a.size() && i < b.size(); ++i) {
        const signed char ca = static_cast<signed char>(a[i]), cb = static_cast<signed char>(b[i]);
        if (ca != cb) return ca < cb ? TrueNode() : FalseNode();
    }
    return a.size() < b.size() ? TrueNode() : FalseNode();
}
