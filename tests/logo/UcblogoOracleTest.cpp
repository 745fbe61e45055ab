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
};

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
