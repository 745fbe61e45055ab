#include "logo/Primitives.h"

#include <cctype>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/StateRegistry.h"
#include "logo/LogoErrors.h"
#include "logo/NodeHeap.h"
#include "logo/PrimitiveHandlers.h"

namespace {

// The language's vocabulary in its own order (a few names stand out of place, as ERPROPS before
// ERALL): handlers name their rows in messages by these numbers. The reserved rows have no handler
// and report error 99; rows of the card, item, media and turtle families say they are not
// available in this build until their handlers come.
const PrimitiveRow kRows[kPrimitiveRows] = {
    {"ABS", 1, PrimAbs},
    {"ADDFRAME", 0, nullptr},
    {"ALLOPEN", 0, PrimAllOpen},
    {"AND", -1, PrimAnd},
    {"ARCCOS", 1, PrimArcCos},
    {"ARCSIN", 1, PrimArcSin},
    {"ARCTAN", 1, PrimArcTan},
    {"ARCTAN2", 2, PrimArcTan2},
    {"ASCII", 1, PrimAscii},
    {"BACK", 1, PrimUnavailable},
    {"BACKGROUND", 0, PrimUnavailable},
    {"BACKGROUNDRGB", 0, PrimUnavailable},
    {"BEFOREP", 2, PrimBeforeP},
    {"BF", 1, PrimButFirst},
    {"BG", 0, PrimUnavailable},
    {"BK", 1, PrimUnavailable},
    {"BL", 1, PrimButLast},
    {"BURY", 1, PrimBury},
    {"BURYALL", 0, PrimBuryAll},
    {"BURYNAME", 1, PrimBuryName},
    {"BURYPLIST", 1, PrimBuryPlist},
    {"BUTFIRST", 1, PrimButFirst},
    {"BUTLAST", 1, PrimButLast},
    {"BUTTONP", 0, PrimUnavailable},
    {"CALLBACK", 0, PrimUnavailable},
    {"CALLNBA", 3, PrimUnavailable},
    {"CATALOG", 0, nullptr},
    {"CATCH", 2, PrimCatch},
    {"CBDISPOSEPARAMH", 1, PrimUnavailable},
    {"CBGETPARAMINT", 1, PrimUnavailable},
    {"CBGETPARAMPOINT", 1, PrimUnavailable},
    {"CBGETPARAMRECT", 1, PrimUnavailable},
    {"CBGETPARAMSTR", 1, PrimUnavailable},
    {"CBGETPARAMSTRH", 1, PrimUnavailable},
    {"CBSETCMD", 1, PrimUnavailable},
    {"CBSETPARAMINT", 2, PrimUnavailable},
    {"CBSETPARAMPOINT", 2, PrimUnavailable},
    {"CBSETPARAMRECT", 2, PrimUnavailable},
    {"CBSETPARAMSTR", 2, PrimUnavailable},
    {"CBSETPARAMSTRH", 2, PrimUnavailable},
    {"CHAR", 1, PrimChar},
    {"CLEAN", 0, PrimUnavailable},
    {"CLEARSCREEN", 0, PrimUnavailable},
    {"CLEARSCREEN3D", 0, PrimUnavailable},
    {"CLOSE", 1, PrimClose},
    {"CLOSEALL", 0, PrimCloseAll},
    {"COPYDEF", 2, PrimCopyDef},
    {"COS", 1, PrimCos},
    {"COUNT", 1, PrimCount},
    {"CREATEFOLDER", 1, nullptr},
    {"CS", 0, PrimUnavailable},
    {"CS3D", 0, PrimUnavailable},
    {"DATE", 0, PrimDate},
    {"DEFINE", 2, PrimDefine},
    {"DEFINEDP", 1, PrimDefinedP},
    {"DELETEFRAME", 0, nullptr},
    {"DICT", 2, nullptr},
    {"DIFFERENCE", 2, PrimDifference},
    {"DIR", 0, nullptr},
    {"DOALERT", 4, PrimUnavailable},
    {"DOBUTTON", 2, PrimUnavailable},
    {"DOMENU", 2, PrimUnavailable},
    {"DOT", 1, PrimUnavailable},
    {"DOTP", 1, PrimUnavailable},
    {"DOUNTIL", -1, PrimDoUntil},
    {"DRAWTOOFFSCREEN", -1, PrimUnavailable},
    {"DRAWTOSCREEN", 0, PrimUnavailable},
    {"EDIT", 1, PrimNothing},
    {"EDITS", 0, PrimNothing},
    {"EMPTYP", 1, PrimEmptyP},
    {"ERPROPS", 0, PrimErProps},
    {"ERALL", 0, PrimErAll},
    {"ERASE", 1, PrimErase},
    {"ERASEARC", 3, PrimUnavailable},
    {"ERASEFILE", 1, PrimEraseFile},
    {"ERASEOVAL", 1, PrimUnavailable},
    {"ERASERECT", 1, PrimUnavailable},
    {"ERASERRECT", 3, PrimUnavailable},
    {"ERDICT", 0, nullptr},
    {"ERN", 1, PrimErn},
    {"ERNS", 0, PrimErns},
    {"ERPS", 0, PrimErps},
    {"ERROR", 0, PrimError},
    {"EQUALP", 2, PrimEqualP},
    {"EXP", 1, PrimExp},
    {"FD", 1, PrimUnavailable},
    {"FENCE", 0, PrimUnavailable},
    {"FILELEN", 1, PrimFileLen},
    {"FILEP", 1, PrimFileP},
    {"FILL", 0, PrimUnavailable},
    {"FINDTEXT", 2, PrimUnavailable},
    {"FIRST", 1, PrimFirst},
    {"FLOAT", 1, PrimFloat},
    {"FLOATP", 1, PrimFloatP},
    {"FORM", 3, PrimForm},
    {"FORWARD", 1, PrimUnavailable},
    {"FPUT", 2, PrimFput},
    {"FRAMEARC", 3, PrimUnavailable},
    {"FRAMEOVAL", 1, PrimUnavailable},
    {"FRAMERECT", 1, PrimUnavailable},
    {"FRAMERRECT", 3, PrimUnavailable},
    {"GETBACKCOLOR", 0, PrimUnavailable},
    {"GETBUTTONNAME", 0, PrimUnavailable},
    {"GETCURRENTSCORE", 0, PrimUnavailable},
    {"GETFIELDTEXT", 2, PrimUnavailable},
    {"GETFONTINFO", 0, PrimUnavailable},
    {"GETFORECOLOR", 0, PrimUnavailable},
    {"GETGRAPHICNAME", 0, PrimUnavailable},
    {"GETITEMPOS", 3, PrimUnavailable},
    {"GETITEMRECT", 3, PrimUnavailable},
    {"GETSELECTEDTEXT", 2, PrimUnavailable},
    {"GETTEXTNAME", 0, PrimUnavailable},
    {"GO", 1, PrimGo},
    {"GPROP", 2, PrimGprop},
    {"HEADING", 0, PrimUnavailable},
    {"HIDEITEM", 3, PrimUnavailable},
    {"HIDETURTLE", 0, PrimUnavailable},
    {"HOME", 0, PrimUnavailable},
    {"HT", 0, PrimUnavailable},
    {"IF", -1, PrimIf},
    {"IFF", -1, PrimIfFalse},
    {"IFFALSE", -1, PrimIfFalse},
    {"IFT", -1, PrimIfTrue},
    {"IFTRUE", -1, PrimIfTrue},
    {"INSERTFRAME", 0, nullptr},
    {"INT", 1, PrimInt},
    {"INTEGERP", 1, PrimIntegerP},
    {"INTQUOTIENT", 2, PrimIntQuotient},
    {"INVERTARC", 3, PrimUnavailable},
    {"INVERTITEM", 3, PrimUnavailable},
    {"INVERTOVAL", 1, PrimUnavailable},
    {"INVERTRECT", 1, PrimUnavailable},
    {"INVERTRRECT", 3, PrimUnavailable},
    {"ITEM", 2, PrimItem},
    {"KEYP", 0, PrimKeyP},
    {"LABEL", 1, PrimLabel},
    {"LAST", 1, PrimLast},
    {"LASTFRAME", 0, nullptr},
    {"LEFT", 1, PrimUnavailable},
    {"LIST", -1, PrimList},
    {"LISTP", 1, PrimListP},
    {"LN", 1, PrimLn},
    {"LOAD", 1, PrimLoad},
    {"LOCAL", 1, PrimLocal},
    {"LOWERCASE", 1, PrimLowercase},
    {"LPUT", 2, PrimLput},
    {"LT", 1, PrimUnavailable},
    {"MAKE", 2, PrimMake},
    {"MEMBER", 2, PrimMember},
    {"MEMBERP", 2, PrimMemberP},
    {"MOUSE", 0, PrimUnavailable},
    {"MOVENEXT", 0, PrimUnavailable},
    {"MOVEPREV", 0, PrimUnavailable},
    {"MOVETOCARD", 1, PrimUnavailable},
    {"MOVETOFIRST", 0, PrimUnavailable},
    {"MOVETOLAST", 0, PrimUnavailable},
    {"NAME", 2, PrimName},
    {"NAMEP", 1, PrimNameP},
    {"NEXTFRAME", 0, nullptr},
    {"NODES", 0, PrimNodes},
    {"NOT", 1, PrimNot},
    {"NUMBERP", 1, PrimNumberP},
    {"ONLINE", 0, nullptr},
    {"OP", 1, PrimOutput},
    {"OPEN", 1, PrimOpen},
    {"OR", -1, PrimOr},
    {"OUTPUT", 1, PrimOutput},
    {"PAINTARC", 3, PrimUnavailable},
    {"PAINTOVAL", 1, PrimUnavailable},
    {"PAINTRECT", 1, PrimUnavailable},
    {"PAINTRRECT", 3, PrimUnavailable},
    {"PARSE", 1, PrimParse},
    {"PC", 0, PrimUnavailable},
    {"PD", 0, PrimUnavailable},
    {"PE", 0, PrimUnavailable},
    {"PEN", 0, PrimUnavailable},
    {"PENCOLOR", 0, PrimUnavailable},
    {"PENCOLORRGB", 0, PrimUnavailable},
    {"PENDOWN", 0, PrimUnavailable},
    {"PENERASE", 0, PrimUnavailable},
    {"PENREVERSE", 0, PrimUnavailable},
    {"PENUP", 0, PrimUnavailable},
    {"PHONETIC", 1, nullptr},
    {"PITCH", 1, nullptr},
    {"PLAY", 0, nullptr},
    {"PLIST", 1, PrimPlist},
    {"PO", 1, PrimPo},
    {"POALL", 0, PrimPoall},
    {"POFILE", 1, nullptr},
    {"PON", 1, PrimPon},
    {"PONS", 0, PrimPons},
    {"POPS", 0, PrimPops},
    {"POS", 0, PrimUnavailable},
    {"POT", 1, PrimPot},
    {"POTS", 0, PrimPots},
    {"POWER", 2, PrimPower},
    {"PPROP", 3, PrimPprop},
    {"PPS", 0, PrimPps},
    {"PR", -1, PrimPrint},
    {"PREFIX", 0, nullptr},
    {"PRIMITIVEP", 1, PrimPrimitiveP},
    {"PRINT", -1, PrimPrint},
    {"PRODUCT", -1, PrimProduct},
    {"PU", 0, PrimUnavailable},
    {"PX", 0, PrimUnavailable},
    {"QUIT", 0, PrimUnavailable},
    {"QUOTIENT", 2, PrimQuotient},
    {"RANDOM", 1, PrimRandom},
    {"RC", 0, PrimReadChar},
    {"RCS", 1, PrimReadChars},
    {"READCHAR", 0, PrimReadChar},
    {"READCHARS", 1, PrimReadChars},
    {"READER", 0, PrimReader},
    {"READLIST", 0, PrimReadList},
    {"READPOS", 0, PrimReadPos},
    {"READWORD", 0, PrimReadWord},
    {"RECYCLE", 0, PrimRecycle},
    {"REDRAWCARD", 0, PrimUnavailable},
    {"REMAINDER", 2, PrimRemainder},
    {"REMPROP", 2, PrimRemprop},
    {"RENAME", 2, nullptr},
    {"REPEAT", 2, PrimRepeat},
    {"RERANDOM", 0, PrimRerandom},
    {"RI", 1, PrimUnavailable},
    {"RIGHT", 1, PrimUnavailable},
    {"RL", 0, PrimReadList},
    {"RLL", 1, PrimUnavailable},
    {"RLR", 1, PrimUnavailable},
    {"RO", 1, PrimUnavailable},
    {"ROLLLEFT", 1, PrimUnavailable},
    {"ROLLRIGHT", 1, PrimUnavailable},
    {"ROTATEIN", 1, PrimUnavailable},
    {"ROTATEOUT", 1, PrimUnavailable},
    {"ROUND", 1, PrimRound},
    {"RT", 1, PrimUnavailable},
    {"RUN", 1, PrimRun},
    {"SAVE", 1, PrimSave},
    {"SAY", 1, nullptr},
    {"SCRUNCH", 0, PrimUnavailable},
    {"SE", -1, PrimSentence},
    {"SENTENCE", -1, PrimSentence},
    {"SETBACKCOLOR", 1, PrimUnavailable},
    {"SETBG", 1, PrimUnavailable},
    {"SETBGRGB", 1, PrimNothing},
    {"SETBKGDDIRTY", 0, PrimUnavailable},
    {"SETFIELDTEXT", 3, PrimUnavailable},
    {"SETFONTFAMILY", 1, PrimUnavailable},
    {"SETFONTSIZE", 1, PrimUnavailable},
    {"SETFONTSTYLE", 1, PrimUnavailable},
    {"SETFORECOLOR", 1, PrimUnavailable},
    {"SETH", 1, PrimUnavailable},
    {"SETH3D", 3, PrimUnavailable},
    {"SETHEADING", 1, PrimUnavailable},
    {"SETHEADING3D", 3, PrimUnavailable},
    {"SETITEMPOS", 4, PrimUnavailable},
    {"SETITEMRECT", 4, PrimUnavailable},
    {"SETPC", 1, PrimUnavailable},
    {"SETPCRGB", 1, PrimUnavailable},
    {"SETPENSIZE", 2, PrimUnavailable},
    {"SETPLIST", 2, PrimSetPlist},
    {"SETPOS", 1, PrimUnavailable},
    {"SETPREFIX", 1, nullptr},
    {"SETREAD", 1, PrimSetRead},
    {"SETREADPOS", 1, PrimSetReadPos},
    {"SETRWPROMPT", 1, PrimSetRwPrompt},
    {"SETRWRECT", 1, PrimUnavailable},
    {"SETSCRUNCH", 1, PrimUnavailable},
    {"SETTRANSITION", 2, PrimUnavailable},
    {"SETWRITE", 1, PrimSetWrite},
    {"SETWRITEPOS", 1, PrimSetWritePos},
    {"SETX", 1, PrimUnavailable},
    {"SETY", 1, PrimUnavailable},
    {"SETZ", 1, PrimUnavailable},
    {"SHOW", 1, PrimShow},
    {"SHOWITEM", 3, PrimUnavailable},
    {"SHOWNP", 0, PrimUnavailable},
    {"SHOWTURTLE", 0, PrimUnavailable},
    {"SHOWTURTLE3D", 0, PrimUnavailable},
    {"SIN", 1, PrimSin},
    {"SPEED", 1, nullptr},
    {"SQRT", 1, PrimSqrt},
    {"ST", 0, PrimUnavailable},
    {"ST3D", 0, PrimUnavailable},
    {"STOP", 0, PrimStop},
    {"SUM", -1, PrimSum},
    {"TAN", 1, PrimTan},
    {"TEST", 1, PrimTest},
    {"TEXT", 1, PrimText},
    {"TEXTIO", 0, PrimNothing},
    {"TEXTWIDTH", 1, PrimUnavailable},
    {"THING", 1, PrimThing},
    {"THROW", 1, PrimThrow},
    {"TIME", 0, PrimTime},
    {"TO", -1, PrimTo},
    {"TONE", 1, nullptr},
    {"TOOT", 2, PrimUnavailable},
    {"TOPLEVEL", 0, PrimTopLevel},
    {"TOWARDS", 1, PrimUnavailable},
    {"TURTLEIO", 0, PrimUnavailable},
    {"TYPE", -1, PrimType},
    {"UNBURY", 1, PrimUnbury},
    {"UNBURYALL", 0, PrimUnburyAll},
    {"UNBURYNAME", 1, PrimUnburyName},
    {"UNBURYPLIST", 1, PrimUnburyPlist},
    {"UPPERCASE", 1, PrimUppercase},
    {"VERSION", 0, PrimVersion},
    {"VISIBLEP", 3, PrimUnavailable},
    {"VOICE", 1, nullptr},
    {"VOLUME", 1, nullptr},
    {"WAIT", 1, PrimWait},
    {"WHILE", -1, PrimWhile},
    {"WINDOW", 0, PrimUnavailable},
    {"WORD", -1, PrimWord},
    {"WORDP", 1, PrimWordP},
    {"WRAP", 0, PrimUnavailable},
    {"WRITEPOS", 0, PrimWritePos},
    {"WRITER", 0, PrimWriter},
    {"XCOR", 0, PrimUnavailable},
    {"YCOR", 0, PrimUnavailable},
    {"ZCOR", 0, PrimUnavailable},
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
    SeedLogoRandom();
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

Node* PrimUnavailable(PrimitiveCall& call) {
    ReportErrorAtRow(98, call.row, nullptr);
    return nullptr;
}
