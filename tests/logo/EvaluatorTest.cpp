// The language run as a user types it: each case is a script and what it printed, with every
// error's message after a "!".
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "base/StateRegistry.h"
#include "logo/Evaluator.h"
#include "logo/NodeHeap.h"
#include "memory/MemRef.h"
#include "platform/Host.h"
#include "platform/headless/HeadlessHost.h"
#include "subsystems/Subsystems.h"
#include "support/LogoTranscript.h"

namespace {

std::string gTranscript;

using Case = LogoCase;

const Case kCases[] = {
    {"PR 1 + 2 * 3", "7\n"},
    {"PR (1 + 2) * 3", "9\n"},
    {"PR 7 / 2\nPR 6 / 2\nPR 3.0\nPR 2.5", "3.5\n3\n3\n2.5\n"},
    {"PR 1000000.0\nPR 0.001\nPR 007\nPR 0.50", "1000000\n1.000000000000000e-03\n7\n0.5\n"},
    {"PR 2147483647 + 1", "-2147483648\n"},
    {"PR 1 2", "1 \n!You didn't say what to do with 2"},
    {"PR 3-1\nPR 2*-3", "2\n-6\n"},
    {"PR 3 -1", "3 \n!You didn't say what to do with -1"},
    {"SHOW [3 -1 3-1 A-1 A -1 - 1]", "[3 -1 3 - 1 A - 1 A -1 - 1]\n"},
    {"SHOW [1 [2 [3]] \"A :B]", "[1 [2 [3]] \"A :B]\n"},
    {"SHOW [1 [2", "[1 [2]]\n"},
    {"SHOW [1] ] PR 2", "[1]\n"},
    {"SHOW [a\\ b \"]", "[a b \"]]\n"},
    {"SHOW [12345678901234567890123]", "[2112454933 123]\n"},
    {"PR 'A B'\nPR COUNT 'A B'", "A B\n3\n"},
    {"(PR 'it''s')", "it s\n"},
    {"PR SUM \"12ABC 1", "13\n"},
    {"PR SUM \"1E5X 1", "!SUM doesn't like \"1E5X as input"},
    {"SHOW [3EGGS 12AB]", "[3 GGS 12 AB]\n"},
    {"PR 1 ; the rest is a comment", "1\n"},
    {"; a line of comment only", ""},
    {"PR 1 / 0", "!Can't divide by 0"},
    {"PR 1 +", "!Too few items in expression"},
    {"PR", "!Not enough inputs to PR"},
    {"FOO", "!I don't know how to FOO"},
    {"PR :X", "!X is undefined"},
    {"STOP", "!Can only do that in a procedure"},
    {"PR NOT 1", "!NOT doesn't like 1 as input"},
    {"PR FIRST []", "!FIRST doesn't like [] as input"},
    {"TO FD", "!\"FD is a primitive"},
    {"TO F X", "!TO doesn't like \"X as input"},
    {"TO F\nPR 1", "!You used a TO without an END"},
    {"FD 10", "!FD is not available in this build"},
    {"PR ABS -3\nPR ABS -2.5\nPR INT -3.7\nPR ROUND -2.5\nPR ROUND -0.5", "3\n2.5\n-3\n-2\n0\n"},
    {"PR SIN 30\nPR COS 60\nPR POWER 2 10\nPR ARCTAN 1\nPR SQRT 16", "0.5\n0.5\n1024\n45\n4\n"},
    {"PR SQRT -4", "!SQRT doesn't like -4 as input"},
    {"(PR 1 2 3) (TYPE 1 2) TYPE 3\nPR []", "1 2 3\n123\n"},
    {"PR (SUM 1 2 3)\nPR (PRODUCT 2.5 2)\nPR DIFFERENCE 5 7", "6\n5\n-2\n"},
    {"PR REMAINDER 7 3\nPR REMAINDER -7 3\nPR INTQUOTIENT 7 2", "1\n-1\n3\n"},
    {"PR 1 < 2\nPR 2 > 3\nPR 1 = 1.0\nPR \"1 = 1", "TRUE\nFALSE\nTRUE\nTRUE\n"},
    {"PR EQUALP [1 [2]] [1 [2]]\nPR EQUALP \"A \"a\nPR EQUALP [] \"", "TRUE\nFALSE\nFALSE\n"},
    {"SHOW FPUT 1 [2 3] SHOW LPUT 1 [2 3] SHOW BL [1 2 3] SHOW BF [1]", "[1 2 3]\n[2 3 1]\n[1 2]\n[]\n"},
    {"SHOW FPUT 0 BF LPUT 1 [2 3]", "[0 3 1]\n"},
    {"SHOW SE 1 [] SHOW (SE) SHOW (LIST) SHOW LIST 1 [2] SHOW SE [1] [2 [3]]", "[1]\n[]\n[]\n[1 [2]]\n[1 2 [3]]\n"},
    {"PR FIRST 123\nPR BF 123\nPR LAST [1 2 3]\nPR BL \"ABC\nPR WORD \"AB 12", "1\n23\n3\nAB\nAB12\n"},
    {"PR COUNT []\nPR COUNT \"\nPR COUNT 123\nPR COUNT 1.5", "0\n0\n3\n3\n"},
    {"PR ITEM 4 \"ABCD\nPR ITEM 2 [A [B C]]", "D\nB C\n"},
    {"PR ITEM 5 \"ABCD", "!ITEM doesn't like \"ABCD as input"},
    {"PR EMPTYP []\nPR EMPTYP \"\nPR EMPTYP [1]\nPR WORDP 1\nPR WORDP 1.5\nPR LISTP []", "TRUE\nTRUE\nFALSE\nFALSE\nTRUE\nTRUE\n"},
    {"PR AND \"TRUE \"FALSE\nPR (OR \"FALSE \"FALSE \"true)", "FALSE\nTRUE\n"},
    {"MAKE \"X [1 2] SHOW :X\nPR THING \"X\nNAME 5 \"Y\nPR :Y + 1", "[1 2]\n1 2\n6\n"},
    {"RUN [PR 1]\nPR RUN [1 + 1]", "1\n2\n"},
    {"IF 1 = 1 [PR \"yes] IF \"true [PR 1] [PR 2]\nPR IF \"FALSE [1] [2]", "yes\n1\n2\n"},
    {"IF 3 [PR 1]", "!3 is not TRUE or FALSE"},
    {"REPEAT 3 [TYPE \"a] REPEAT 0 [PR 1]\nPR \"", "aaa\n"},
    {"REPEAT -1 [PR 1]", "!REPEAT doesn't like -1 as input"},
    {"MAKE \"I 0 WHILE :I < 3 [MAKE \"I :I + 1]\nPR :I", "3\n"},
    {"MAKE \"I 0 DOUNTIL [MAKE \"I :I + 1] :I = 4\nPR :I", "4\n"},
    {"CATCH \"ERROR [PR 1 / 0 PR 2] SHOW ERROR", "[13]\n"},
    {"CATCH \"X [THROW \"X PR 1]\nPR 2", "2\n"},
    {"CATCH \"OUT [CATCH \"IN [THROW \"OUT] PR 1]\nPR 2", "2\n"},
    {"TO E\nPR 1 / 0\nPR 2\nEND\nCATCH \"ERROR [E]\nSHOW ERROR", "[13]\n"},
    {"THROW \"Y", "!Can't find catch for \"Y"},
    {"TO SQ :N\nOP :N * :N\nEND\nPR SQ 5\nPR SQ SQ 3", "25\n81\n"},
    {"TO FACT :N\nIF :N < 2 [OP 1]\nOP :N * FACT :N - 1\nEND\nPR FACT 10", "3628800\n"},
    {"TO C :N\nLABEL \"TOP\nIF :N = 0 [STOP]\nTYPE :N\nMAKE \"N :N - 1\nGO \"TOP\nEND\nC 3\nPR \"", "321\n"},
    {"TO A\nLOCAL \"X\nMAKE \"X 1\nB\nEND\nTO B\nPR :X\nEND\nA", "!X is undefined"},
    {"TO G :V\nMAKE \"W :V\nEND\nG 4\nPR :W", "4\n"},
    {"TO T :N\nTEST :N > 1\nIFT [PR \"big]\nIFF [PR \"small]\nEND\nT 2 T 0", "big\nsmall\n"},
    {"TO N\nEND\nPR N", "!Not enough inputs to PR"},
    {"TO F\nF\nEND\nF\nPR 1", "!Out of stack space"},
    {"TO L :X\nOP :X\nEND\nREPEAT 300 [MAKE \"Z SE L [A B] L 1] SHOW :Z", "[A B 1]\n"},
};

TEST(LogoTranscript, ScriptsPrintAndReportAsTyped) {
    for (const bool collectAlways : {false, true}) {
        for (const Case& c : kCases) {
            EXPECT_EQ(RunLogoTranscript(c.script, collectAlways), c.transcript)
                << c.script << (collectAlways ? " (collecting at every allocation)" : "");
        }
    }
}

TEST(LogoTranscript, AnUncaughtErrorShowsTheBoxWithItsPlace) {
    ResetAllState();
    RunLogoLines("PR SUM \"X 1", nullptr, nullptr);
    const auto& boxes = GetHeadlessState().messageBoxesShown;
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].title, "QuillLogo");
    EXPECT_EQ(boxes[0].text, "Logo Error: SUM doesn't like \"X as input\n\nAt: PR SUM \"X 1");
}

TEST(LogoTranscript, ActionScriptsRunThroughTheSubsystemTableAndKeepTheWorkspace) {
    ResetAllState();
    const char text[] = "TO TWICE :N\nOP :N * 2\nEND\nMAKE \"Z TWICE 21";
    MemRef script = NewMemRef(sizeof text);
    std::memcpy(LockMemRef(script), text, sizeof text);
    UnlockMemRef(script);
    GetSubsystems().RunLogoText(nullptr, &script);
    FreeMemRef(script);
    gTranscript.clear();
    RunLogoLines("PR :Z", nullptr, [](std::string_view t) { gTranscript += t; });
    EXPECT_EQ(gTranscript, "42\n");
}

size_t LiveNodesAfter(const char* script) {
    RunLogoLines(script, nullptr, nullptr);
    RunLogoLines("MAKE \"S 0", nullptr, nullptr);
    Recycle();
    return NodeBlockCount() * kNodesPerBlock - FreeNodeCount();
}

// Values held while they are in flight, a list shared by two holders among them, must all be let
// go: a pin left behind keeps its whole value alive for the rest of the run.
TEST(LogoHeap, ValuesInFlightAreLetGoWhenDone) {
    ResetAllState();
    LiveNodesAfter("TO R :L :A\nIF EMPTYP :L [OP :A]\nOP R BF :L FPUT FIRST :L :A\nEND");
    const size_t before = LiveNodesAfter("MAKE \"S R [1 2] []\nMAKE \"L [1 2 3]");
    const size_t after = LiveNodesAfter(
        "REPEAT 300 [MAKE \"L FPUT 7 :L]\nMAKE \"S R :L []\nMAKE \"S FPUT :S :S\nMAKE \"L [1 2 3]");
    EXPECT_EQ(after, before);
}

TEST(LogoTranscript, WaitPassesTheHostsClock) {
    ResetAllState();
    const uint32_t before = GetHost().GetTickCount();
    RunLogoLines("WAIT 30", nullptr, nullptr);
    EXPECT_EQ(GetHost().GetTickCount() - before, 500u);
}

}  // namespace
