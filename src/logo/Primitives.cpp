#include "logo/Primitives.h"

#include <cctype>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/StateRegistry.h"
#include "logo/NodeHeap.h"
#include "logo/PrimitiveHandlers.h"

namespace {

// The language's vocabulary in its own order (a few names stand out of place, as ERPROPS before
// ERALL): handlers name their rows in messages by these numbers. Rows still null report error 99
// like the reserved ones until their family is built.
const PrimitiveRow kRows[kPrimitiveRows] = {
    {"ABS", 1, PrimAbs},
    {"ADDFRAME", 0, nullptr},
    {"ALLOPEN", 0, nullptr},
    {"AND", -1, PrimAnd},
    {"ARCCOS", 1, PrimArcCos},
    {"ARCSIN", 1, PrimArcSin},
    {"ARCTAN", 1, PrimArcTan},
    {"ARCTAN2", 2, nullptr},
    {"ASCII", 1, nullptr},
    {"BACK", 1, nullptr},
    {"BACKGROUND", 0, nullptr},
    {"BACKGROUNDRGB", 0, nullptr},
    {"BEFOREP", 2, nullptr},
    {"BF", 1, PrimButFirst},
    {"BG", 0, nullptr},
    {"BK", 1, nullptr},
    {"BL", 1, PrimButLast},
    {"BURY", 1, nullptr},
    {"BURYALL", 0, nullptr},
    {"BURYNAME", 1, nullptr},
    {"BURYPLIST", 1, nullptr},
    {"BUTFIRST", 1, PrimButFirst},
    {"BUTLAST", 1, PrimButLast},
    {"BUTTONP", 0, nullptr},
    {"CALLBACK", 0, nullptr},
    {"CALLNBA", 3, nullptr},
    {"CATALOG", 0, nullptr},
    {"CATCH", 2, PrimCatch},
    {"CBDISPOSEPARAMH", 1, nullptr},
    {"CBGETPARAMINT", 1, nullptr},
    {"CBGETPARAMPOINT", 1, nullptr},
    {"CBGETPARAMRECT", 1, nullptr},
    {"CBGETPARAMSTR", 1, nullptr},
    {"CBGETPARAMSTRH", 1, nullptr},
    {"CBSETCMD", 1, nullptr},
    {"CBSETPARAMINT", 2, nullptr},
    {"CBSETPARAMPOINT", 2, nullptr},
    {"CBSETPARAMRECT", 2, nullptr},
    {"CBSETPARAMSTR", 2, nullptr},
    {"CBSETPARAMSTRH", 2, nullptr},
    {"CHAR", 1, nullptr},
    {"CLEAN", 0, nullptr},
    {"CLEARSCREEN", 0, nullptr},
    {"CLEARSCREEN3D", 0, nullptr},
    {"CLOSE", 1, nullptr},
    {"CLOSEALL", 0, nullptr},
    {"COPYDEF", 2, nullptr},
    {"COS", 1, PrimCos},
    {"COUNT", 1, PrimCount},
    {"CREATEFOLDER", 1, nullptr},
    {"CS", 0, nullptr},
    {"CS3D", 0, nullptr},
    {"DATE", 0, nullptr},
    {"DEFINE", 2, nullptr},
    {"DEFINEDP", 1, PrimDefinedP},
    {"DELETEFRAME", 0, nullptr},
    {"DICT", 2, nullptr},
    {"DIFFERENCE", 2, PrimDifference},
    {"DIR", 0, nullptr},
    {"DOALERT", 4, nullptr},
    {"DOBUTTON", 2, nullptr},
    {"DOMENU", 2, nullptr},
    {"DOT", 1, nullptr},
    {"DOTP", 1, nullptr},
    {"DOUNTIL", -1, PrimDoUntil},
    {"DRAWTOOFFSCREEN", -1, nullptr},
    {"DRAWTOSCREEN", 0, nullptr},
    {"EDIT", 1, PrimNothing},
    {"EDITS", 0, PrimNothing},
    {"EMPTYP", 1, PrimEmptyP},
    {"ERPROPS", 0, nullptr},
    {"ERALL", 0, nullptr},
    {"ERASE", 1, nullptr},
    {"ERASEARC", 3, nullptr},
    {"ERASEFILE", 1, nullptr},
    {"ERASEOVAL", 1, nullptr},
    {"ERASERECT", 1, nullptr},
    {"ERASERRECT", 3, nullptr},
    {"ERDICT", 0, nullptr},
    {"ERN", 1, nullptr},
    {"ERNS", 0, nullptr},
    {"ERPS", 0, nullptr},
    {"ERROR", 0, PrimError},
    {"EQUALP", 2, PrimEqualP},
    {"EXP", 1, PrimExp},
    {"FD", 1, nullptr},
    {"FENCE", 0, nullptr},
    {"FILELEN", 1, nullptr},
    {"FILEP", 1, nullptr},
    {"FILL", 0, nullptr},
    {"FINDTEXT", 2, nullptr},
    {"FIRST", 1, PrimFirst},
    {"FLOAT", 1, PrimFloat},
    {"FLOATP", 1, PrimFloatP},
    {"FORM", 3, nullptr},
    {"FORWARD", 1, nullptr},
    {"FPUT", 2, PrimFput},
    {"FRAMEARC", 3, nullptr},
    {"FRAMEOVAL", 1, nullptr},
    {"FRAMERECT", 1, nullptr},
    {"FRAMERRECT", 3, nullptr},
    {"GETBACKCOLOR", 0, nullptr},
    {"GETBUTTONNAME", 0, nullptr},
    {"GETCURRENTSCORE", 0, nullptr},
    {"GETFIELDTEXT", 2, nullptr},
    {"GETFONTINFO", 0, nullptr},
    {"GETFORECOLOR", 0, nullptr},
    {"GETGRAPHICNAME", 0, nullptr},
    {"GETITEMPOS", 3, nullptr},
    {"GETITEMRECT", 3, nullptr},
    {"GETSELECTEDTEXT", 2, nullptr},
    {"GETTEXTNAME", 0, nullptr},
    {"GO", 1, PrimGo},
    {"GPROP", 2, nullptr},
    {"HEADING", 0, nullptr},
    {"HIDEITEM", 3, nullptr},
    {"HIDETURTLE", 0, nullptr},
    {"HOME", 0, nullptr},
    {"HT", 0, nullptr},
    {"IF", -1, PrimIf},
    {"IFF", -1, PrimIfFalse},
    {"IFFALSE", -1, PrimIfFalse},
    {"IFT", -1, PrimIfTrue},
    {"IFTRUE", -1, PrimIfTrue},
    {"INSERTFRAME", 0, nullptr},
    {"INT", 1, PrimInt},
    {"INTEGERP", 1, PrimIntegerP},
    {"INTQUOTIENT", 2, PrimIntQuotient},
    {"INVERTARC", 3, nullptr},
    {"INVERTITEM", 3, nullptr},
    {"INVERTOVAL", 1, nullptr},
    {"INVERTRECT", 1, nullptr},
    {"INVERTRRECT", 3, nullptr},
    {"ITEM", 2, PrimItem},
    {"KEYP", 0, nullptr},
    {"LABEL", 1, PrimLabel},
    {"LAST", 1, PrimLast},
    {"LASTFRAME", 0, nullptr},
    {"LEFT", 1, nullptr},
    {"LIST", -1, PrimList},
    {"LISTP", 1, PrimListP},
    {"LN", 1, PrimLn},
    {"LOAD", 1, nullptr},
    {"LOCAL", 1, PrimLocal},
    {"LOWERCASE", 1, nullptr},
    {"LPUT", 2, PrimLput},
    {"LT", 1, nullptr},
    {"MAKE", 2, PrimMake},
    {"MEMBER", 2, nullptr},
    {"MEMBERP", 2, nullptr},
    {"MOUSE", 0, nullptr},
    {"MOVENEXT", 0, nullptr},
    {"MOVEPREV", 0, nullptr},
    {"MOVETOCARD", 1, nullptr},
    {"MOVETOFIRST", 0, nullptr},
    {"MOVETOLAST", 0, nullptr},
    {"NAME", 2, PrimName},
    {"NAMEP", 1, PrimNameP},
    {"NEXTFRAME", 0, nullptr},
    {"NODES", 0, PrimNodes},
    {"NOT", 1, PrimNot},
    {"NUMBERP", 1, PrimNumberP},
    {"ONLINE", 0, nullptr},
    {"OP", 1, PrimOutput},
    {"OPEN", 1, nullptr},
    {"OR", -1, PrimOr},
    {"OUTPUT", 1, PrimOutput},
    {"PAINTARC", 3, nullptr},
    {"PAINTOVAL", 1, nullptr},
    {"PAINTRECT", 1, nullptr},
    {"PAINTRRECT", 3, nullptr},
    {"PARSE", 1, PrimParse},
    {"PC", 0, nullptr},
    {"PD", 0, nullptr},
    {"PE", 0, nullptr},
    {"PEN", 0, nullptr},
    {"PENCOLOR", 0, nullptr},
    {"PENCOLORRGB", 0, nullptr},
    {"PENDOWN", 0, nullptr},
    {"PENERASE", 0, nullptr},
    {"PENREVERSE", 0, nullptr},
    {"PENUP", 0, nullptr},
    {"PHONETIC", 1, nullptr},
    {"PITCH", 1, nullptr},
    {"PLAY", 0, nullptr},
    {"PLIST", 1, nullptr},
    {"PO", 1, nullptr},
    {"POALL", 0, nullptr},
    {"POFILE", 1, nullptr},
    {"PON", 1, nullptr},
    {"PONS", 0, nullptr},
    {"POPS", 0, nullptr},
    {"POS", 0, nullptr},
    {"POT", 1, nullptr},
    {"POTS", 0, nullptr},
    {"POWER", 2, PrimPower},
    {"PPROP", 3, nullptr},
    {"PPS", 0, nullptr},
    {"PR", -1, PrimPrint},
    {"PREFIX", 0, nullptr},
    {"PRIMITIVEP", 1, PrimPrimitiveP},
    {"PRINT", -1, PrimPrint},
    {"PRODUCT", -1, PrimProduct},
    {"PU", 0, nullptr},
    {"PX", 0, nullptr},
    {"QUIT", 0, nullptr},
    {"QUOTIENT", 2, PrimQuotient},
    {"RANDOM", 1, nullptr},
    {"RC", 0, nullptr},
    {"RCS", 1, nullptr},
    {"READCHAR", 0, nullptr},
    {"READCHARS", 1, nullptr},
    {"READER", 0, nullptr},
    {"READLIST", 0, nullptr},
    {"READPOS", 0, nullptr},
    {"READWORD", 0, nullptr},
    {"RECYCLE", 0, PrimRecycle},
    {"REDRAWCARD", 0, nullptr},
    {"REMAINDER", 2, PrimRemainder},
    {"REMPROP", 2, nullptr},
    {"RENAME", 2, nullptr},
    {"REPEAT", 2, PrimRepeat},
    {"RERANDOM", 0, nullptr},
    {"RI", 1, nullptr},
    {"RIGHT", 1, nullptr},
    {"RL", 0, nullptr},
    {"RLL", 1, nullptr},
    {"RLR", 1, nullptr},
    {"RO", 1, nullptr},
    {"ROLLLEFT", 1, nullptr},
    {"ROLLRIGHT", 1, nullptr},
    {"ROTATEIN", 1, nullptr},
    {"ROTATEOUT", 1, nullptr},
    {"ROUND", 1, PrimRound},
    {"RT", 1, nullptr},
    {"RUN", 1, PrimRun},
    {"SAVE", 1, nullptr},
    {"SAY", 1, nullptr},
    {"SCRUNCH", 0, nullptr},
    {"SE", -1, PrimSentence},
    {"SENTENCE", -1, PrimSentence},
    {"SETBACKCOLOR", 1, nullptr},
    {"SETBG", 1, nullptr},
    {"SETBGRGB", 1, PrimNothing},
    {"SETBKGDDIRTY", 0, nullptr},
    {"SETFIELDTEXT", 3, nullptr},
    {"SETFONTFAMILY", 1, nullptr},
    {"SETFONTSIZE", 1, nullptr},
    {"SETFONTSTYLE", 1, nullptr},
    {"SETFORECOLOR", 1, nullptr},
    {"SETH", 1, nullptr},
    {"SETH3D", 3, nullptr},
    {"SETHEADING", 1, nullptr},
    {"SETHEADING3D", 3, nullptr},
    {"SETITEMPOS", 4, nullptr},
    {"SETITEMRECT", 4, nullptr},
    {"SETPC", 1, nullptr},
    {"SETPCRGB", 1, nullptr},
    {"SETPENSIZE", 2, nullptr},
    {"SETPLIST", 2, nullptr},
    {"SETPOS", 1, nullptr},
    {"SETPREFIX", 1, nullptr},
    {"SETREAD", 1, nullptr},
    {"SETREADPOS", 1, nullptr},
    {"SETRWPROMPT", 1, nullptr},
    {"SETRWRECT", 1, nullptr},
    {"SETSCRUNCH", 1, nullptr},
    {"SETTRANSITION", 2, nullptr},
    {"SETWRITE", 1, nullptr},
    {"SETWRITEPOS", 1, nullptr},
    {"SETX", 1, nullptr},
    {"SETY", 1, nullptr},
    {"SETZ", 1, nullptr},
    {"SHOW", 1, PrimShow},
    {"SHOWITEM", 3, nullptr},
    {"SHOWNP", 0, nullptr},
    {"SHOWTURTLE", 0, nullptr},
    {"SHOWTURTLE3D", 0, nullptr},
    {"SIN", 1, PrimSin},
    {"SPEED", 1, nullptr},
    {"SQRT", 1, PrimSqrt},
    {"ST", 0, nullptr},
    {"ST3D", 0, nullptr},
    {"STOP", 0, PrimStop},
    {"SUM", -1, PrimSum},
    {"TAN", 1, PrimTan},
    {"TEST", 1, PrimTest},
    {"TEXT", 1, nullptr},
    {"TEXTIO", 0, nullptr},
    {"TEXTWIDTH", 1, nullptr},
    {"THING", 1, PrimThing},
    {"THROW", 1, PrimThrow},
    {"TIME", 0, nullptr},
    {"TO", -1, PrimTo},
    {"TONE", 1, nullptr},
    {"TOOT", 2, nullptr},
    {"TOPLEVEL", 0, PrimTopLevel},
    {"TOWARDS", 1, nullptr},
    {"TURTLEIO", 0, nullptr},
    {"TYPE", -1, PrimType},
    {"UNBURY", 1, nullptr},
    {"UNBURYALL", 0, nullptr},
    {"UNBURYNAME", 1, nullptr},
    {"UNBURYPLIST", 1, nullptr},
    {"UPPERCASE", 1, nullptr},
    {"VERSION", 0, nullptr},
    {"VISIBLEP", 3, nullptr},
    {"VOICE", 1, nullptr},
    {"VOLUME", 1, nullptr},
    {"WAIT", 1, PrimWait},
    {"WHILE", -1, PrimWhile},
    {"WINDOW", 0, nullptr},
    {"WORD", -1, PrimWord},
    {"WORDP", 1, PrimWordP},
    {"WRAP", 0, nullptr},
    {"WRITEPOS", 0, nullptr},
    {"WRITER", 0, nullptr},
    {"XCOR", 0, nullptr},
    {"YCOR", 0, nullptr},
    {"ZCOR", 0, nullptr},
    {"+", 0, nullptr},
    {"-", 0, nullptr},
    {"<", 0, nullptr},
    {">", 0, nullptr},
    {"*", 0, nullptr},
    {"/", 0, nullptr},
};

inline constexpr int kHashBuckets = 361;

struct PrimitiveState {
    Node* names[kPrimitiveRows] = {};
    // A token that was found once has adopted its row's name node, so the next lookup of the same
    // token in a run list that is run again answers by the node alone.
    std::unordered_map<const Node*, int> rowOfName;
    int order[kNamedPrimitiveRows] = {};  // row numbers, sorted by hash
    int hashStart[kHashBuckets] = {};
    int hashCount[kHashBuckets] = {};
};

PrimitiveState gPrimitives;

void ResetPrimitives() { gPrimitives = PrimitiveState{}; }
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Logo, ResetPrimitives);

// The primitive hash, on upper-cased characters in 16-bit arithmetic.
int PrimitiveBucket(const char* text) {
    int16_t h = 1;
    for (; *text; ++text) {
        h = static_cast<int16_t>(h * UpperChar(static_cast<unsigned char>(*text)) + 251);
        if (h == -32768) h = -32767;
    }
    const int16_t shifted = static_cast<int16_t>(h >> 2);
    return (shifted < 0 ? -shifted : shifted) % kHashBuckets;
}

}  // namespace

const PrimitiveRow& GetPrimitiveRow(int row) { return kRows[row]; }

void InitPrimitiveTable() {
    PrimitiveState& p = gPrimitives;
    SetPrimitiveNameRoots(p.names, kPrimitiveRows);
    for (int row = 0; row < kPrimitiveRows; ++row) {
        p.names[row] = MakeWord(kRows[row].name);
        UnpinValue(p.names[row]);
        if (row < kNamedPrimitiveRows) p.rowOfName.emplace(p.names[row], row);
    }
    int bucketOf[kNamedPrimitiveRows];
    for (int row = 0; row < kNamedPrimitiveRows; ++row) {
        p.order[row] = row;
        bucketOf[row] = PrimitiveBucket(kRows[row].name);
    }
    // Rows of one bucket stay in table order.
    for (int i = 1; i < kNamedPrimitiveRows; ++i) {
        for (int j = i; j > 0 && bucketOf[p.order[j - 1]] > bucketOf[p.order[j]]; --j) {
            std::swap(p.order[j - 1], p.order[j]);
        }
    }
    for (int i = kNamedPrimitiveRows - 1; i >= 0; --i) {
        const int b = bucketOf[p.order[i]];
        p.hashStart[b] = i;
        ++p.hashCount[b];
    }
}

Node* PrimitiveNameNode(int row) {
    return row >= 0 && row < kPrimitiveRows ? gPrimitives.names[row] : nullptr;
}

int FindPrimitive(Node** word) {
    if (!IsWord(*word)) return -1;
    if (const auto known = gPrimitives.rowOfName.find(*word); known != gPrimitives.rowOfName.end()) return known->second;
    const std::string text = WordToText(*word);
    const int b = PrimitiveBucket(text.c_str());
    for (int i = 0; i < gPrimitives.hashCount[b]; ++i) {
        const int row = gPrimitives.order[gPrimitives.hashStart[b] + i];
        if (CompareAndCanonicalise(word, gPrimitives.names[row]) == 0) return row;
    }
    return -1;
}

// The interpreter asks for rows by name on every MAKE and THING: a map made once from the constant
// table answers without a walk over it.
int PrimitiveRowOf(const char* name) {
    static const std::unordered_map<std::string_view, int> rows = [] {
        std::unordered_map<std::string_view, int> map;
        for (int row = kPrimitiveRows - 1; row >= 0; --row) map[kRows[row].name] = row;
        return map;
    }();
    const auto found = rows.find(name);
    return found == rows.end() ? -1 : found->second;
}
