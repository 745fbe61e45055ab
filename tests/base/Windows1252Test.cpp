// Windows-1252 and UTF-8: the bytes where Windows-1252 parts from Latin-1, and text from outside
// that has no Windows-1252 form or is no UTF-8 at all.
#include "base/Windows1252.h"

#include <gtest/gtest.h>

namespace {

TEST(Windows1252, TrickyBytesGoBothWaysAndWhatHasNoFormBecomesAQuestionMark) {
    struct Case { const char* windows; const char* utf8; };
    // Euro, Y diaeresis, S caron; the unassigned bytes keep their C1 code points; Latin-1 from 0xA0.
    const Case both[] = {{"\x80\x9F\x8A", "\xE2\x82\xAC\xC5\xB8\xC5\xA0"},
                         {"\x81\x8D\x8F\x90\x9D", "\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D"},
                         {"\xA0\xE9\xFF\r\n", "\xC2\xA0\xC3\xA9\xC3\xBF\r\n"}};
    for (const Case& c : both) {
        EXPECT_EQ(Utf8FromWindows1252(c.windows), c.utf8) << c.utf8;
        EXPECT_EQ(Windows1252FromUtf8(c.utf8), c.windows) << c.utf8;
    }
    // One '?' for each character without a form (U+0080, U+20AD, an emoji of four bytes), and for
    // each byte that starts no UTF-8 sequence: Latin-1, a stray continuation, a sequence cut short,
    // a lead byte before a plain one, overlong, a surrogate, past U+10FFFF.
    const Case in[] = {{"???x", "\xC2\x80\xE2\x82\xAD\xF0\x9F\x98\x80x"}, {"?t?", "\xE9t\xE9"},
                       {"???", "\x80\xE2\x82"}, {"?A", "\xC3" "A"},
                       {"??|???|????", "\xC0\xA9|\xED\xA0\x80|\xF4\x90\x80\x80"}};
    for (const Case& c : in) EXPECT_EQ(Windows1252FromUtf8(c.utf8), c.windows) << c.windows;
}

}  // namespace
