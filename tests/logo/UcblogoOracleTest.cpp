// Programs of the subset both dialects share, run here and by ucblogo: the printed text must agree
// (ignoring case, since ucblogo prints true and false in lower case). A program ucblogo refuses
// leaves it waiting at its prompt, so the run has a time limit.
#if defined(QB_UCBLOGO) && defined(QB_XVFB_RUN)

#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/StateRegistry.h"
#include "logo/Evaluator.h"
#include "support/StackBytes.h"

namespace {

// One program a line; "|" separates its lines.
const char* const kPrograms[] = {
    "print 1 + 2 * 3",
    "print (1 + 2) * 3",
    "print 7 / 2 | print 6 / 2 | print 100 / 8",
    "print 10 - 4 - 3",
    "print 0.5 + 0.25",
    "print sum 3 4 | print difference 10 4 | print product 6 7",
    "print quotient 7 2 | print remainder 17 5",
    "print (sum 1 2 3 4)",
    "show [1 [2 3] 4]",
    "show sentence [a b] [c] | show se 1 []",
    "show list 1 [2] | print (list)",
    "show fput 1 [2 3] | show lput 1 [2 3]",
    "print first [a b c] | show butfirst [a b c]",
    "print last [a b c] | show butlast [a b c]",
    "print first \"hello | print butfirst \"hello",
    "print word \"ab \"cd | print (word \"a \"b \"c) | print word 12 34",
    "print count [a b c] | print count \"hello | print count 12345",
    "print item 2 [a b c] | print item 3 \"hello",
    "if 1 < 2 [print \"yes]",
    "repeat 3 [type \"a] | print \"",
    "repeat 2 [repeat 2 [type \"x]] | print \"",
    "make \"x 5 | print :x * 2 | print thing \"x",
    "name 5 \"y | print :y + 1",
    "make \"l [a b c] | print item 2 :l",
    "to sq :n | output :n * :n | end | print sq 7",
    "to fact :n | if :n < 2 [output 1] | output :n * fact :n - 1 | end | print fact 10",
    "to countdown :n | if :n = 0 [stop] | type :n | countdown :n - 1 | end | countdown 5 | print \"",
    "to tri :n | if :n = 0 [output 0] | output :n + tri :n - 1 | end | print tri 100",
    "to g :a :b | output :a - :b | end | print g 10 3",
    "print equalp [1 2] [1 2] | print emptyp [] | print 1 = 1 | print 3 > 2",
    "print not \"false | print and \"true \"false | print or \"false \"true",
    "print run [1 + 1]",
    "catch \"x [throw \"x print 1] | print 2",
    "print 3 - 1 | print 3-1",
    "print listp [] | print wordp \"a | print numberp 3",
    "print [a [b c] d]",
    "print 2 * (3 + 4) - 5",
    "print 1 + 2 = 3",
    "print first butfirst [a b c]",
    "print sentence \"a [b c]",
    // Words, lists, predicates, arithmetic, property lists and the workspace.
    " print member \"b \"abc",
    " show member 1 [2 1 3]",
    " show member \"z [a b]",
    " print memberp 3 [1 2 3] | print memberp \"x [1 2 3]",
    " print beforep \"apple \"banana | print beforep \"b \"a",
    " print ascii \"A | print char 97",
    " print uppercase \"hello | print lowercase \"WORLD",
    " print form 3.14159 8 2",
    " print form 2 5 0",
    " print form 123.456 10 3",
    " print count \"hello | print count [1 [2 3] 4]",
    " print emptyp \" | print emptyp [] | print emptyp [a]",
    " print wordp \"a | print listp [a] | print numberp \"a",
    " print equalp \"abc \"abc | print equalp [1 2] [1 3]",
    " print equalp 1 1.0",
    " print int 3.7 | print int -3.7 | print round 2.5 | print round 3.49",
    " print sqrt 25 | print power 2 8",
    " print exp 0 | print ln 1",
    " print sin 0 | print cos 0 | print round sin 90",
    " print arctan 1",
    " print 10 / 4 | print 2.5 * 2",
    " print sum 1.5 2.5 | print product 3 0.5",
    " print difference 1.5 0.5",
    " print random 1",
    " print (random 1) + 5",
    " show sentence [] [] | show (sentence [a] \"b [c [d]])",
    " show (list 1 2 3) | show list [] []",
    " show fput [a] [b] | show lput [a] [b]",
    " print last \"abc | print butlast \"abc | print butfirst [a]",
    " show butlast [a] | show bf [a b c d]",
    " print item 1 [[a b] c] | show item 1 [[a b] c]",
    " print word \"a 1 | print (word)",
    " print first first [[a b] c]",
    " pprop \"dog \"legs 4 | print gprop \"dog \"legs",
    " pprop \"dog \"legs 4 | pprop \"dog \"legs 3 | print gprop \"dog \"legs",
    " pprop \"c \"a 1 | remprop \"c \"a | show plist \"c",
    " pprop \"p \"k \"v | show plist \"p",
    " show gprop \"nobody \"nothing",
    " to sq :n | output :n * :n | end | print definedp \"sq | print primitivep \"sq",
    " print primitivep \"print | print definedp \"print",
    " make \"v 3 | print namep \"v | print namep \"w",
    " to sq :n | output :n * :n | end | show text \"sq",
    " define \"cube [[n] [output :n * :n * :n]] | print cube 3",
    " define \"hi [[] [print \"hi]] | hi",
    " to sq :n | output :n * :n | end | erase \"sq | print definedp \"sq",
    " make \"x 1 | ern \"x | print namep \"x",
    " to sq :n | output :n * :n | end | pot \"sq",
    " to a | print 1 | end | to b | print 2 | end | bury \"a | print definedp \"a | a",
    " print not equalp 1 2",
    " print and \"true \"true | print or \"false \"false",
    " print (and \"true \"true \"false)",
    " print (or \"false \"false \"true)",
    " print 3 = 3 | print \"a = \"a | print [a] = [a]",
    " print 1 < 2 | print 2 < 1 | print 1.5 > 1",
    " show parse \"a\\ b",
    " print count parse \"a",
    " if equalp 1 1 [print \"same]",
    " if 1 > 2 [print \"yes] [print \"no]",
    " print if \"true [1] [2]",
    " to f :x | if :x > 3 [stop] | type :x | f :x + 1 | end | f 1 | print \"",
    " to g | output 5 | end | print g + 1",
    " to h :a :b | output list :a :b | end | show h 1 2",
    " to loop :n | if :n = 0 [output []] | output fput :n loop :n - 1 | end | show loop 4",
    " to rev :l | if emptyp :l [output []] | output lput first :l rev bf :l | end | show rev [1 2 3]",
    " to len :l | if emptyp :l [output 0] | output 1 + len bf :l | end | print len [a b c d]",
    " to fib :n | if :n < 2 [output :n] | output (fib :n - 1) + fib :n - 2 | end | print fib 15",
    " to gcd :a :b | if :b = 0 [output :a] | output gcd :b remainder :a :b | end | print gcd 48 36",
    " to pow2 :n | if :n = 0 [output 1] | output 2 * pow2 :n - 1 | end | print pow2 20",
    " to mx :l | if emptyp bf :l [output first :l] | output max2 first :l mx bf :l | end | to max2 :a :b | if :a > :b [output :a] | output :b | end | print mx [3 9 2 7]",
    " to sum.list :l | if emptyp :l [output 0] | output (first :l) + sum.list bf :l | end | print sum.list [1 2 3 4 5]",
    " to hanoi :n | if :n = 0 [output 0] | output 1 + 2 * hanoi :n - 1 | end | print hanoi 10",
    " to cnt :w | output count :w | end | print cnt \"abcdef",
    " catch \"err [throw \"err] | print \"after",
    " make \"a 5 | make \"b :a + 1 | print :b",
    " make \"s \"hello | print first :s | print last :s",
    " make \"w word \"ab \"cd | print :w",
    " show se \"a \"b",
    " show (se \"a [b c] \"d)",
    " print count se [a b] [c]",
    " print item 3 [a b c d]",
    " show item 2 [[1] [2 3]]",
    " print char 65 + 1",
    " print uppercase first \"word",
    " print lowercase \"MiXeD",
    " print word uppercase \"a lowercase \"B",
    " print 7 - 2 * 3",
    " print (7 - 2) * 3",
    " print 2 * 3 + 4 * 5",
    " print 100 - 1 - 1",
    " print 1 / 3 * 3",
    " print -5 + 2",
    " print int 7 / 2",
    " print round 7 / 2",
    " print remainder -7 2",
    " print 0.1 + 0.2",
    " print 1e3",
    " print 1.5e2 + 0",
    " print 3 * 1.5",
    " print power 10 3",
    " print cos 60",
    " print form 1 1 1",
    " print form -3.5 6 1",
    " print form 99.999 6 2",
    " print memberp \"a [b c]",
    " show member \"c [a b c d]",
    " print beforep \"abc \"abd",
    " print beforep \"abc \"abc",
    " print emptyp bf [a]",
    " print count bf \"ab",
    " print equalp bf \"ab \"b",
    " print listp bf [a]",
    " print wordp bf \"ab",
    " print numberp 3.5",
    " show lput [x] []",
    " show fput \"x []",
    " make \"q [] | make \"q lput 1 :q | make \"q lput 2 :q | show :q",
    " print first [[x]]",
    " print count []",
    " to double :x | output :x * 2 | end | print double double 3",
    " to greet :name | print se \"hello :name | end | greet \"bob",
    " to c2 :n | repeat :n [type \"*] | print \" | end | c2 4",
};

// Where the dialects part, on purpose, and so no program above:
// - MEMBERP "bc "abcd is true here: on words MEMBER and MEMBERP look for the text inside the word;
//   ucblogo looks for a character.
// - PO prints TO and END in capitals and no empty line after END; ucblogo lowers them and adds one.
// - Reals print with ten significant digits here (SQRT 2 is 1.414213562), with fifteen in ucblogo.
// - ARCTAN2, INTQUOTIENT, TAN, ARCSIN, ARCCOS and ABS are not ucblogo's (its ARCTAN takes two
//   inputs instead, and it has INT and REMAINDER for the others); REPCOUNT and WHILE with a list
//   condition are ucblogo's and not ours.
// - COPYDEF takes the old name first here, the new name first in ucblogo.
// - The file primitives differ in name and kind (OPEN and SETWRITE here; OPENREAD, OPENWRITE there).
// - CATCH outputs nothing here; in ucblogo it outputs what THROW gave.

std::string Lower(std::string s) {
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

std::string Lines(std::string program) {
    std::string out;
    for (size_t at = 0; at != std::string::npos;) {
        const size_t bar = program.find(" | ", at);
        out += program.substr(at, bar == std::string::npos ? std::string::npos : bar - at) + "\n";
        at = bar == std::string::npos ? bar : bar + 3;
    }
    return out;
}

std::string gOut;

TEST(LogoUcblogoOracle, CommonProgramsPrintAlike) {
    const std::string outPath = WriteTempFile("ucblogo-out.txt", {});
    std::string all = "openwrite \"" + outPath + "\nsetwrite \"" + outPath + "\n";
    for (const char* p : kPrograms) all += Lines(p) + "print \"====\n";
    all += "setwrite []\nclose \"" + outPath + "\nbye\n";
    const std::string script = WriteTempFile("ucblogo-in.lg", Bytes(all.begin(), all.end()));
    const std::string command =
        "timeout 120 " + std::string(QB_XVFB_RUN) + " -a " + QB_UCBLOGO + " " + script + " </dev/null >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    const Bytes bytes = ReadWholeFile(outPath);
    const std::string oracle(bytes.begin(), bytes.end());

    size_t at = 0;
    for (const char* p : kPrograms) {
        const size_t end = oracle.find("====\n", at);
        ASSERT_NE(end, std::string::npos) << "ucblogo stopped before: " << p;
        const std::string expected = oracle.substr(at, end - at);
        at = end + 5;
        ResetAllState();
        gOut.clear();
        RunLogoLines(Lines(p), nullptr, [](std::string_view t) { gOut += t; });
        EXPECT_EQ(Lower(gOut), Lower(expected)) << p;
    }
}

}  // namespace

#endif
