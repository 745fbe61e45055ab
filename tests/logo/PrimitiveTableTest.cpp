// The vocabulary itself: every row in its place with its input count, the aliases on one
// handler, and the rows that only say what they are.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "logo/Primitives.h"
#include "support/LogoTranscript.h"

namespace {

// NAME:inputs, in table order.
const char kRows[] =
    "ABS:1 ADDFRAME:0 ALLOPEN:0 AND:-1 ARCCOS:1 ARCSIN:1 ARCTAN:1 ARCTAN2:2 ASCII:1 BACK:1 "
    "BACKGROUND:0 BACKGROUNDRGB:0 BEFOREP:2 BF:1 BG:0 BK:1 BL:1 BURY:1 BURYALL:0 BURYNAME:1 "
    "BURYPLIST:1 BUTFIRST:1 BUTLAST:1 BUTTONP:0 CALLBACK:0 CALLNBA:3 CATALOG:0 CATCH:2 "
    "CBDISPOSEPARAMH:1 CBGETPARAMINT:1 CBGETPARAMPOINT:1 CBGETPARAMRECT:1 CBGETPARAMSTR:1 "
    "CBGETPARAMSTRH:1 CBSETCMD:1 CBSETPARAMINT:2 CBSETPARAMPOINT:2 CBSETPARAMRECT:2 "
    "CBSETPARAMSTR:2 CBSETPARAMSTRH:2 CHAR:1 CLEAN:0 CLEARSCREEN:0 CLEARSCREEN3D:0 CLOSE:1 "
    "CLOSEALL:0 COPYDEF:2 COS:1 COUNT:1 CREATEFOLDER:1 CS:0 CS3D:0 DATE:0 DEFINE:2 DEFINEDP:1 "
    "DELETEFRAME:0 DICT:2 DIFFERENCE:2 DIR:0 DOALERT:4 DOBUTTON:2 DOMENU:2 DOT:1 DOTP:1 "
    "DOUNTIL:-1 DRAWTOOFFSCREEN:-1 DRAWTOSCREEN:0 EDIT:1 EDITS:0 EMPTYP:1 ERPROPS:0 ERALL:0 "
    "ERASE:1 ERASEARC:3 ERASEFILE:1 ERASEOVAL:1 ERASERECT:1 ERASERRECT:3 ERDICT:0 ERN:1 ERNS:0 "
    "ERPS:0 ERROR:0 EQUALP:2 EXP:1 FD:1 FENCE:0 FILELEN:1 FILEP:1 FILL:0 FINDTEXT:2 FIRST:1 "
    "FLOAT:1 FLOATP:1 FORM:3 FORWARD:1 FPUT:2 FRAMEARC:3 FRAMEOVAL:1 FRAMERECT:1 FRAMERRECT:3 "
    "GETBACKCOLOR:0 GETBUTTONNAME:0 GETCURRENTSCORE:0 GETFIELDTEXT:2 GETFONTINFO:0 "
    "GETFORECOLOR:0 GETGRAPHICNAME:0 GETITEMPOS:3 GETITEMRECT:3 GETSELECTEDTEXT:2 GETTEXTNAME:0 "
    "GO:1 GPROP:2 HEADING:0 HIDEITEM:3 HIDETURTLE:0 HOME:0 HT:0 IF:-1 IFF:-1 IFFALSE:-1 IFT:-1 "
    "IFTRUE:-1 INSERTFRAME:0 INT:1 INTEGERP:1 INTQUOTIENT:2 INVERTARC:3 INVERTITEM:3 "
    "INVERTOVAL:1 INVERTRECT:1 INVERTRRECT:3 ITEM:2 KEYP:0 LABEL:1 LAST:1 LASTFRAME:0 LEFT:1 "
    "LIST:-1 LISTP:1 LN:1 LOAD:1 LOCAL:1 LOWERCASE:1 LPUT:2 LT:1 MAKE:2 MEMBER:2 MEMBERP:2 "
    "MOUSE:0 MOVENEXT:0 MOVEPREV:0 MOVETOCARD:1 MOVETOFIRST:0 MOVETOLAST:0 NAME:2 NAMEP:1 "
    "NEXTFRAME:0 NODES:0 NOT:1 NUMBERP:1 ONLINE:0 OP:1 OPEN:1 OR:-1 OUTPUT:1 PAINTARC:3 "
    "PAINTOVAL:1 PAINTRECT:1 PAINTRRECT:3 PARSE:1 PC:0 PD:0 PE:0 PEN:0 PENCOLOR:0 PENCOLORRGB:0 "
    "PENDOWN:0 PENERASE:0 PENREVERSE:0 PENUP:0 PHONETIC:1 PITCH:1 PLAY:0 PLIST:1 PO:1 POALL:0 "
    "POFILE:1 PON:1 PONS:0 POPS:0 POS:0 POT:1 POTS:0 POWER:2 PPROP:3 PPS:0 PR:-1 PREFIX:0 "
    "PRIMITIVEP:1 PRINT:-1 PRODUCT:-1 PU:0 PX:0 QUIT:0 QUOTIENT:2 RANDOM:1 RC:0 RCS:1 READCHAR:0 "
    "READCHARS:1 READER:0 READLIST:0 READPOS:0 READWORD:0 RECYCLE:0 REDRAWCARD:0 REMAINDER:2 "
    "REMPROP:2 RENAME:2 REPEAT:2 RERANDOM:0 RI:1 RIGHT:1 RL:0 RLL:1 RLR:1 RO:1 ROLLLEFT:1 "
    "ROLLRIGHT:1 ROTATEIN:1 ROTATEOUT:1 ROUND:1 RT:1 RUN:1 SAVE:1 SAY:1 SCRUNCH:0 SE:-1 "
    "SENTENCE:-1 SETBACKCOLOR:1 SETBG:1 SETBGRGB:1 SETBKGDDIRTY:0 SETFIELDTEXT:3 SETFONTFAMILY:1 "
    "SETFONTSIZE:1 SETFONTSTYLE:1 SETFORECOLOR:1 SETH:1 SETH3D:3 SETHEADING:1 SETHEADING3D:3 "
    "SETITEMPOS:4 SETITEMRECT:4 SETPC:1 SETPCRGB:1 SETPENSIZE:2 SETPLIST:2 SETPOS:1 SETPREFIX:1 "
    "SETREAD:1 SETREADPOS:1 SETRWPROMPT:1 SETRWRECT:1 SETSCRUNCH:1 SETTRANSITION:2 SETWRITE:1 "
    "SETWRITEPOS:1 SETX:1 SETY:1 SETZ:1 SHOW:1 SHOWITEM:3 SHOWNP:0 SHOWTURTLE:0 SHOWTURTLE3D:0 "
    "SIN:1 SPEED:1 SQRT:1 ST:0 ST3D:0 STOP:0 SUM:-1 TAN:1 TEST:1 TEXT:1 TEXTIO:0 TEXTWIDTH:1 "
    "THING:1 THROW:1 TIME:0 TO:-1 TONE:1 TOOT:2 TOPLEVEL:0 TOWARDS:1 TURTLEIO:0 TYPE:-1 UNBURY:1 "
    "UNBURYALL:0 UNBURYNAME:1 UNBURYPLIST:1 UPPERCASE:1 VERSION:0 VISIBLEP:3 VOICE:1 VOLUME:1 "
    "WAIT:1 WHILE:-1 WINDOW:0 WORD:-1 WORDP:1 WRAP:0 WRITEPOS:0 WRITER:0 XCOR:0 YCOR:0 ZCOR:0 "
    "+:0 -:0 <:0 >:0 *:0 /:0 ";

const char* const kAliases[][2] = {
    {"BACK", "BK"}, {"BACKGROUND", "BG"}, {"BF", "BUTFIRST"}, {"BL", "BUTLAST"},
    {"CLEARSCREEN", "CS"}, {"CLEARSCREEN3D", "CS3D"}, {"FD", "FORWARD"}, {"HIDETURTLE", "HT"},
    {"IFF", "IFFALSE"}, {"IFT", "IFTRUE"}, {"LEFT", "LT"}, {"OP", "OUTPUT"},
    {"PC", "PENCOLOR"}, {"PD", "PENDOWN"}, {"PE", "PENERASE"}, {"PENREVERSE", "PX"},
    {"PENUP", "PU"}, {"PR", "PRINT"}, {"RC", "READCHAR"}, {"RCS", "READCHARS"},
    {"READLIST", "RL"}, {"RI", "ROTATEIN"}, {"RIGHT", "RT"}, {"RLL", "ROLLLEFT"},
    {"RLR", "ROLLRIGHT"}, {"RO", "ROTATEOUT"}, {"SE", "SENTENCE"}, {"SETH", "SETHEADING"},
    {"SETH3D", "SETHEADING3D"}, {"SHOWTURTLE", "ST"}, {"SHOWTURTLE3D", "ST3D"},
};

const char* const kReserved[] = {"ADDFRAME", "CATALOG", "CREATEFOLDER", "DELETEFRAME", "DICT", "DIR", "ERDICT",
                                 "INSERTFRAME", "LASTFRAME", "NEXTFRAME", "ONLINE", "PHONETIC", "PITCH", "PLAY",
                                 "POFILE", "PREFIX", "RENAME", "SAY", "SETPREFIX", "SPEED", "TONE", "VOICE",
                                 "VOLUME"};

TEST(PrimitiveTable, EveryRowStandsInOrderWithItsInputCount) {
    std::istringstream in(kRows);
    std::string item;
    int row = 0;
    while (in >> item) {
        ASSERT_LT(row, kPrimitiveRows);
        const size_t colon = item.rfind(':');
        EXPECT_EQ(GetPrimitiveRow(row).name, item.substr(0, colon)) << "row " << row;
        EXPECT_EQ(GetPrimitiveRow(row).inputs, std::stoi(item.substr(colon + 1))) << item;
        ++row;
    }
    EXPECT_EQ(row, kPrimitiveRows);
    EXPECT_EQ(PrimitiveRowOf("+"), kRowPlus);
    EXPECT_EQ(PrimitiveRowOf("/"), kRowDivide);
}

TEST(PrimitiveTable, AliasesShareOneHandler) {
    for (const auto& pair : kAliases) {
        const PrimitiveRow& a = GetPrimitiveRow(PrimitiveRowOf(pair[0]));
        const PrimitiveRow& b = GetPrimitiveRow(PrimitiveRowOf(pair[1]));
        EXPECT_NE(a.handler, nullptr) << pair[0];
        EXPECT_EQ(a.handler, b.handler) << pair[0] << " " << pair[1];
        EXPECT_EQ(a.inputs, b.inputs) << pair[0];
    }
}

// A reserved row evaluates its inputs (V types "v") and then names itself in error 99.
TEST(PrimitiveTable, ReservedRowsEvaluateTheirInputsThenReport99) {
    int reserved = 0;
    for (int row = 0; row < kNamedPrimitiveRows; ++row) reserved += GetPrimitiveRow(row).handler == nullptr;
    EXPECT_EQ(reserved, 23);
    for (const char* name : kReserved) {
        std::string script = "TO V\nTYPE \"v\nOP 1\nEND\n";
        script += name;
        std::string typed;
        for (int i = 0; i < GetPrimitiveRow(PrimitiveRowOf(name)).inputs; ++i) {
            script += " V";
            typed += "v";
        }
        EXPECT_EQ(RunLogoTranscript(script.c_str()),
                  typed + "!" + name + " is a reserved primitive for future expansion");
    }
}

const LogoCase kQuietAndUnavailableRows[] = {
    {"EDIT \"X EDITS SETBGRGB 1 PR 2", "2\n"},
    {"TO V\nTYPE \"v\nOP 1\nEND\nFD V", "v!FD is not available in this build"},
    {"SETITEMPOS 1 2 3 4", "!SETITEMPOS is not available in this build"},
    {"CATCH \"ERROR [HOME] SHOW ERROR", "[98]\n"},
};

TEST(PrimitiveTable, EmptyRowsDoNothingAndLaterFamiliesSaySo) {
    for (const LogoCase& c : kQuietAndUnavailableRows) EXPECT_EQ(RunLogoTranscript(c.script), c.transcript) << c.script;
}

}  // namespace
