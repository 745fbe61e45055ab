// The language's one kind of cell. Every value (word, list, integer, real) and every piece of the
// interpreter's bookkeeping (procedures, variables, call frames, catch records) is a chain of nodes
// handed out from blocks of 1000 and taken back by a mark-and-sweep collector. Values in flight on
// the native stack are not roots: they survive because new nodes come out pinned, because a value
// taken from a variable is pinned by an entry in a table of pinned values, and whoever takes a
// value from the evaluator unpins it when done.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

inline constexpr uint8_t kTagList = 1;
inline constexpr uint8_t kTagWord = 2;
inline constexpr uint8_t kTagFloat = 4;
inline constexpr uint8_t kTagInteger = 8;
inline constexpr uint8_t kTagHeld = 32;  // the node heads a value in the table of pinned values
inline constexpr uint8_t kTagPinned = 64;
inline constexpr uint8_t kTagCondemned = 128;
inline constexpr uint8_t kTagAtom = kTagWord | kTagFloat | kTagInteger;
inline constexpr uint8_t kTagNumber = kTagFloat | kTagInteger;

inline constexpr int kNodesPerBlock = 1000;
inline constexpr int kBuckets = 7;

// A record equivalent to the packed ten-byte cell: `next` links the chain, and the payload is an
// element (list), four characters (word) or the number itself.
struct Node {
    uint8_t tag = 0;
    Node* next = nullptr;
    union {
        Node* payload;
        char chars[4];
        int32_t integer;
        double real;
    };
    Node() : payload(nullptr) {}
};

// The language upper-cases the ASCII letters alone, the same on every host whatever the C library's
// locale; names are compared and hashed through it.
inline int UpperChar(unsigned char c) { return c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c; }

inline bool IsList(const Node* v) { return v && (v->tag & kTagList); }
inline bool IsWord(const Node* v) { return v && (v->tag & kTagWord); }
inline bool IsAtom(const Node* v) { return v && (v->tag & kTagAtom); }
inline bool IsNumber(const Node* v) { return v && (v->tag & kTagNumber); }
inline bool IsInteger(const Node* v) { return v && (v->tag & kTagInteger); }
inline bool IsFloat(const Node* v) { return v && (v->tag & kTagFloat); }

// The collector's roots and the heap itself: everything that must outlive one call.
struct LogoRoots {
    Node* procedures[kBuckets] = {};
    Node* buriedProcedures[kBuckets] = {};
    Node* names[kBuckets] = {};
    Node* buriedNames[kBuckets] = {};
    Node* propertyLists = nullptr;
    Node* buriedPropertyLists = nullptr;
    Node* currentLine = nullptr;
    Node* frameChain = nullptr;
    Node* catchChain = nullptr;
    Node* currentRunList = nullptr;
};
LogoRoots& GetLogoRoots();

// The static nodes: they live outside the heap for the whole run.
Node* TrueNode();
Node* FalseNode();
Node* ZeroNode();
Node* EmptyList();
Node* EmptyWord();
Node* ErrorTagWord();  // "ERROR", the tag a CATCH of errors carries

// The heap grows by blocks up to this many, about 100 MB: past it an allocation is error 23, so a
// runaway script stops with a message instead of taking the player's memory.
inline constexpr size_t kMaxNodeBlocks = 4096;
bool InitNodeHeap();
// A smaller ceiling, for the fuzzer's budget; 0 puts kMaxNodeBlocks back.
void SetNodeBlockLimit(size_t blocks);
bool IsNodeHeapReady();
void FreeNodeHeap();
// A node tagged exactly kTagPinned, or null after error 23.
Node* AllocNode();
// A full collection.
void Recycle();
size_t FreeNodeCount();
size_t NodeBlockCount();
// Tests switch this on to collect before every allocation, so a value that is neither pinned nor
// reachable from a root is freed at the first chance and its use shows.
void SetCollectOnEveryAllocation(bool on);
// Extra roots kept alive by the primitive table (its name nodes).
void SetPrimitiveNameRoots(Node* const* names, int count);

void PinValue(Node* v);
void UnpinValue(Node* v);

// Words.
Node* MakeWord(std::string_view text);
std::string WordToText(const Node* word);
// A new word without the first character (EmptyWord for a word of one character).
Node* DropFirstChar(const Node* word);
int CompareWords(const Node* a, const Node* b);
// As CompareWords; on equality the caller's `a` becomes `b`, so a token adopts the stored form.
int CompareAndCanonicalise(Node** a, Node* b);
char FirstChar(const Node* word);

Node* MakeInteger(int32_t i);
Node* MakeFloat(double d);
Node* MakeListCell(Node* element, Node* rest);

bool IsTrue(const Node* v);
bool IsFalse(const Node* v);
bool IsEmpty(const Node* v);

// Number checks report through the error reporter with `row`'s name: row 0 reports nothing, row
// -1 reports error 74.
inline constexpr int kRowSilent = 0;
inline constexpr int kRowMath = -1;
bool CheckNumber(const Node* v, int row);
int32_t GetInteger(const Node* v, int row);
double GetFloat(const Node* v, int row);
bool CheckWordArg(const Node* v, int row);
std::string NumberToText(const Node* v);
// The text of an atom: a number's printed form, a word's characters.
std::string AtomText(const Node* v);
