#include "logo/NodeHeap.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdint>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "base/StateRegistry.h"
#include "logo/LogoErrors.h"

namespace {

struct StaticNodes {
    Node trueNode, falseNode, falseTail, zeroNode, emptyList, emptyWord, errorWord, errorTail;
};

struct HeapState {
    std::vector<std::unique_ptr<Node[]>> blocks;  // newest last
    Node* freeNodes = nullptr;
    LogoRoots roots;
    Node* const* primitiveNames = nullptr;
    int primitiveNameCount = 0;
    bool ready = false;
    bool collectEveryAllocation = false;
    size_t blockLimit = kMaxNodeBlocks;
    StaticNodes statics;
    std::vector<Node*> walk;  // the collector's and the pinner's explicit stack
    // Values pinned after they were made: a pin costs one entry whatever the value's length, so
    // passing a long list from call to call stays linear. Like the pin bit, an entry is there or
    // not, however many times the value was pinned; pins come and go in nested order, so an entry
    // is looked for from the end.
    std::vector<Node*> inFlight;
    std::vector<Node*> pinnedNodes;  // the collector's list of nodes still pinned from their making
    size_t freedLast = 0;            // nodes the last collection freed
};

HeapState gHeap;

void SetChars(Node* n, const char* four) {
    std::memcpy(n->chars, four, 4);
}

void FillStatics() {
    StaticNodes& s = gHeap.statics;
    s = StaticNodes{};
    s.trueNode.tag = kTagWord;
    SetChars(&s.trueNode, "TRUE");
    s.falseNode.tag = kTagWord;
    SetChars(&s.falseNode, "FALS");
    s.falseTail.tag = kTagWord;
    SetChars(&s.falseTail, "E\0\0\0");
    s.falseNode.next = &s.falseTail;
    s.zeroNode.tag = kTagFloat;
    s.zeroNode.real = 0.0;
    s.emptyList.tag = kTagList;
    s.emptyWord.tag = kTagWord;
    s.errorWord.tag = kTagWord;
    SetChars(&s.errorWord, "ERRO");
    s.errorTail.tag = kTagWord;
    SetChars(&s.errorTail, "R\0\0\0");
    s.errorWord.next = &s.errorTail;
}

bool AddBlock() {
    if (gHeap.blocks.size() >= gHeap.blockLimit) return false;
    std::unique_ptr<Node[]> block(new (std::nothrow) Node[kNodesPerBlock]);
    if (!block) return false;
    for (int i = 0; i < kNodesPerBlock; ++i) block[i].next = i + 1 < kNodesPerBlock ? &block[i + 1] : gHeap.freeNodes;
    gHeap.freeNodes = &block[0];
    gHeap.blocks.push_back(std::move(block));
    return true;
}

// Takes `mark` off `v` and everything it reaches through nodes that carry the mark, with an explicit
// stack so that deep nesting cannot exhaust the native one: lists through their elements and tails,
// words along their chain, numbers alone. The walk stops at a node without the mark, so a shared
// tail is walked once and a list made circular by a mutating primitive ends.
void ClearMarkThrough(Node* v, uint8_t mark) {
    std::vector<Node*>& stack = gHeap.walk;
    const size_t base = stack.size();
    if (v) stack.push_back(v);
    while (stack.size() > base) {
        Node* n = stack.back();
        stack.pop_back();
        const bool list = n->tag & kTagList;
        const bool chain = list || (n->tag & kTagWord);
        for (; n && (n->tag & mark); n = chain ? n->next : nullptr) {
            n->tag &= static_cast<uint8_t>(~mark);
            if (list && n->payload) stack.push_back(n->payload);
        }
    }
}

// A node that is not condemned is kept already or traced on its own.
void KeepValue(Node* v) { ClearMarkThrough(v, kTagCondemned); }

// A node still pinned from its making is never condemned, so KeepValue would stop at it: its
// element and its tail are kept from here.
void KeepChildren(Node* n) {
    if (n->tag & kTagList) {
        KeepValue(n->payload);
        KeepValue(n->next);
    } else if (n->tag & kTagWord) {
        KeepValue(n->next);
    }
}

void ResetHeap() {
    FreeNodeHeap();
}
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Logo, ResetHeap);

}  // namespace

LogoRoots& GetLogoRoots() { return gHeap.roots; }
Node* TrueNode() { return &gHeap.statics.trueNode; }
Node* FalseNode() { return &gHeap.statics.falseNode; }
Node* ZeroNode() { return &gHeap.statics.zeroNode; }
Node* EmptyList() { return &gHeap.statics.emptyList; }
Node* EmptyWord() { return &gHeap.statics.emptyWord; }
Node* ErrorTagWord() { return &gHeap.statics.errorWord; }

bool InitNodeHeap() {
    FreeNodeHeap();
    FillStatics();
    if (!AddBlock()) {
        ReportError(60, nullptr, nullptr);
        return false;
    }
    gHeap.ready = true;
    return true;
}

bool IsNodeHeapReady() { return gHeap.ready; }

void FreeNodeHeap() {
    const bool stress = gHeap.collectEveryAllocation;
    gHeap.blocks.clear();
    gHeap.freeNodes = nullptr;
    gHeap.inFlight.clear();
    gHeap.roots = LogoRoots{};
    gHeap.primitiveNames = nullptr;
    gHeap.primitiveNameCount = 0;
    gHeap.ready = false;
    gHeap.collectEveryAllocation = stress;
}

void SetNodeBlockLimit(size_t blocks) { gHeap.blockLimit = blocks ? blocks : kMaxNodeBlocks; }

// The heap grows when a collection frees less than half of it, by half again: a program that keeps
// much alive then collects once per so many allocations as it holds, not once per block, so that
// building a long list stays linear. The ceiling still ends a runaway with error 23.
Node* AllocNode() {
    if (gHeap.collectEveryAllocation) Recycle();
    if (!gHeap.freeNodes) {
        Recycle();
        const size_t blocks = gHeap.blocks.size();
        if (gHeap.freedLast < blocks * kNodesPerBlock / 2) {
            for (size_t added = 0; added < std::max<size_t>(1, blocks / 2) && AddBlock(); ++added) {
            }
        }
    }
    if (!gHeap.freeNodes) {
        ReportError(23, nullptr, nullptr);
        return nullptr;
    }
    Node* n = gHeap.freeNodes;
    gHeap.freeNodes = n->next;
    n->tag = kTagPinned;
    n->next = nullptr;
    n->payload = nullptr;
    return n;
}

void Recycle() {
    std::vector<Node*>& pinned = gHeap.pinnedNodes;
    pinned.clear();
    for (auto& block : gHeap.blocks) {
        for (int i = 0; i < kNodesPerBlock; ++i) {
            Node& n = block[i];
            if (n.tag & kTagPinned) {
                pinned.push_back(&n);
            } else {
                n.tag |= kTagCondemned;
            }
        }
    }
    for (Node* n : pinned) KeepChildren(n);
    for (Node* held : gHeap.inFlight) KeepValue(held);
    LogoRoots& r = gHeap.roots;
    KeepValue(r.currentLine);
    for (int i = 0; i < kBuckets; ++i) {
        KeepValue(r.procedures[i]);
        KeepValue(r.buriedProcedures[i]);
        KeepValue(r.names[i]);
        KeepValue(r.buriedNames[i]);
    }
    KeepValue(r.propertyLists);
    KeepValue(r.buriedPropertyLists);
    KeepValue(r.frameChain);
    KeepValue(r.catchChain);
    KeepValue(r.currentRunList);
    for (int i = 0; i < gHeap.primitiveNameCount; ++i) KeepValue(gHeap.primitiveNames[i]);
    gHeap.freeNodes = nullptr;
    gHeap.freedLast = 0;
    for (auto it = gHeap.blocks.rbegin(); it != gHeap.blocks.rend(); ++it) {
        for (int i = 0; i < kNodesPerBlock; ++i) {
            Node& n = (*it)[i];
            if (!(n.tag & kTagCondemned)) continue;
            // A freed node is scrubbed, so that a use after the collection reads nothing.
            n.tag = 0;
            n.payload = nullptr;
            n.next = gHeap.freeNodes;
            gHeap.freeNodes = &n;
            ++gHeap.freedLast;
        }
    }
}

size_t FreeNodeCount() {
    size_t count = 0;
    for (Node* n = gHeap.freeNodes; n; n = n->next) ++count;
    return count;
}

size_t NodeBlockCount() { return gHeap.blocks.size(); }

void SetCollectOnEveryAllocation(bool on) { gHeap.collectEveryAllocation = on; }

void SetPrimitiveNameRoots(Node* const* names, int count) {
    gHeap.primitiveNames = names;
    gHeap.primitiveNameCount = count;
}

// A node still pinned from its making protects itself and, through the collector, what it reaches;
// only an older value needs an entry.
void PinValue(Node* v) {
    if (!v || (v->tag & (kTagPinned | kTagHeld))) return;
    gHeap.inFlight.push_back(v);
    v->tag |= kTagHeld;
}

// Drops the pin of `v`, and the pins its fresh nodes carry from their making. The walk goes only
// through nodes that are still pinned: older nodes are protected by their holders, not by this value.
void UnpinValue(Node* v) {
    if (!v) return;
    if (v->tag & kTagHeld) {
        std::vector<Node*>& held = gHeap.inFlight;
        for (size_t i = held.size(); i-- > 0;) {
            if (held[i] == v) {
                held.erase(held.begin() + static_cast<std::ptrdiff_t>(i));
                break;
            }
        }
        v->tag &= static_cast<uint8_t>(~kTagHeld);
    }
    ClearMarkThrough(v, kTagPinned);
}

Node* MakeWord(std::string_view text) {
    Node* head = AllocNode();
    if (!head) return nullptr;
    head->tag = kTagWord | kTagPinned;
    Node* last = head;
    size_t at = 0;
    for (;;) {
        const size_t take = std::min<size_t>(4, text.size() - at);
        std::memcpy(last->chars, text.data() + at, take);
        at += take;
        if (at >= text.size()) break;
        Node* n = AllocNode();
        if (!n) {
            for (Node* d = head; d; d = d->next) d->tag = 0;
            return nullptr;
        }
        n->tag = kTagWord | kTagPinned;
        last->next = n;
        last = n;
    }
    return head;
}

std::string WordToText(const Node* word) {
    std::string text;
    for (const Node* n = word; n && (n->tag & kTagWord); n = n->next) {
        for (char c : n->chars) {
            if (!c) break;
            text += c;
        }
    }
    return text;
}

char FirstChar(const Node* word) {
    return IsWord(word) ? word->chars[0] : 0;
}

Node* DropFirstChar(const Node* word) {
    const std::string text = WordToText(word);
    if (text.size() <= 1) return EmptyWord();
    return MakeWord(std::string_view(text).substr(1));
}

int CompareWords(const Node* a, const Node* b) {
    if (a == b) return 0;
    for (; a && b; a = a->next, b = b->next) {
        if (std::memcmp(a->chars, b->chars, 4) == 0) continue;
        for (int i = 0; i < 4; ++i) {
            const signed char ca = static_cast<signed char>(UpperChar(static_cast<unsigned char>(a->chars[i])));
            const signed char cb = static_cast<signed char>(UpperChar(static_cast<unsigned char>(b->chars[i])));
            if (ca != cb) return ca < cb ? -1 : 1;
        }
    }
    if (a) return 1;
    if (b) return -1;
    return 0;
}

int CompareAndCanonicalise(Node** a, Node* b) {
    const int c = CompareWords(*a, b);
    if (c == 0) *a = b;
    return c;
}

Node* MakeInteger(int32_t i) {
    Node* n = AllocNode();
    if (!n) return nullptr;
    n->tag = kTagInteger | kTagPinned;
    n->integer = i;
    return n;
}

Node* MakeFloat(double d) {
    Node* n = AllocNode();
    if (!n) return nullptr;
    n->tag = kTagFloat | kTagPinned;
    n->real = d;
    return n;
}

Node* MakeListCell(Node* element, Node* rest) {
    Node* n = AllocNode();
    if (!n) return nullptr;
    n->tag = kTagList | kTagPinned;
    n->payload = element;
    n->next = rest;
    return n;
}

bool IsTrue(const Node* v) {
    return v == TrueNode() || (IsWord(v) && CompareWords(v, TrueNode()) == 0);
}

bool IsFalse(const Node* v) {
    return v == FalseNode() || (IsWord(v) && CompareWords(v, FalseNode()) == 0);
}

bool IsEmpty(const Node* v) { return !v || v == EmptyList(); }

namespace {

// Whether `text` reads as a number: the mantissa may stop at any character but E, whose exponent
// must then reach the end of the word. "12ABC" is 12; "1E5X" is no number.
bool TextIsNumber(const std::string& text) {
    size_t i = 0;
    if (i < text.size() && text[i] == '"') ++i;
    if (i < text.size() && text[i] == '-') ++i;
    auto digit = [&](size_t k) { return k < text.size() && std::isdigit(static_cast<unsigned char>(text[k])); };
    if (!(digit(i) || (i < text.size() && text[i] == '.'))) return false;
    ++i;
    while (digit(i)) ++i;
    if (i < text.size() && text[i] == '.') ++i;
    while (digit(i)) ++i;
    if (i < text.size() && UpperChar(static_cast<unsigned char>(text[i])) == 'E') {
        ++i;
        if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
        if (!digit(i)) return false;
        while (digit(i)) ++i;
        return i == text.size();
    }
    return true;
}

}  // namespace

bool CheckNumber(const Node* v, int row) {
    if (IsNumber(v)) return true;
    if (IsWord(v) && TextIsNumber(WordToText(v))) return true;
    if (row == kRowSilent) return false;
    if (row == kRowMath) {
        ReportError(74, nullptr, const_cast<Node*>(v));
    } else {
        ReportErrorAtRow(v ? 41 : 29, row, const_cast<Node*>(v));
    }
    return false;
}

int32_t GetInteger(const Node* v, int row) {
    if (!CheckNumber(v, row)) return 0;
    if (IsInteger(v)) return v->integer;
    if (IsFloat(v)) {
        // Out of range (or not a number) has no integer; the nearest end stands for it.
        if (!(v->real > -2147483649.0)) return INT32_MIN;
        if (!(v->real < 2147483648.0)) return INT32_MAX;
        return static_cast<int32_t>(v->real);
    }
    // The text converter wraps at 32 bits and stops at the first character it cannot use.
    return static_cast<int32_t>(std::strtoll(WordToText(v).c_str(), nullptr, 10));
}

double GetFloat(const Node* v, int row) {
    if (!CheckNumber(v, row)) return 0.0;
    if (IsInteger(v)) return v->integer;
    if (IsFloat(v)) return v->real;
    std::string text = WordToText(v);
    if (!text.empty() && text[0] == '"') text.erase(0, 1);
    return std::strtod(text.c_str(), nullptr);
}

bool CheckWordArg(const Node* v, int row) {
    if (!v) {
        ReportErrorAtRow(29, row, nullptr);
        return false;
    }
    if (!IsWord(v)) {
        ReportErrorAtRow(41, row, const_cast<Node*>(v));
        return false;
    }
    return true;
}

std::string NumberToText(const Node* v) {
    char buffer[64];
    if (IsInteger(v)) {
        std::snprintf(buffer, sizeof buffer, "%ld", static_cast<long>(v->integer));
        return buffer;
    }
    const double r = IsFloat(v) ? v->real : 0.0;
    const double a = std::fabs(r);
    if (a >= 0.01 && a <= 1000000.0) {
        const double f = a - std::floor(a + 0.5);
        if (std::fabs(f) >= 1e-09) {
            std::snprintf(buffer, sizeof buffer, "%.9f", r);
            std::string text = buffer;
            while (!text.empty() && text.back() == '0') text.pop_back();
            return text;
        }
        const long whole = r >= 0 ? static_cast<long>(r + 0.5) : static_cast<long>(r - 0.5);
        std::snprintf(buffer, sizeof buffer, "%ld", whole);
        return buffer;
    }
    if (r == 0.0) return "0";
    std::snprintf(buffer, sizeof buffer, "%.15e", r);
    return buffer;
}

std::string AtomText(const Node* v) {
    if (IsNumber(v)) return NumberToText(v);
    return WordToText(v);
}
