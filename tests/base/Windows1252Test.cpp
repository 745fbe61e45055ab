// Windows-1252 to UTF-8 and back: the bytes where it parts from Latin-1, and input from outside
// that is no Windows-1252 character or no UTF-8 at all.
#include "base/Windows1252.h"

#include <gtest/gtest.h>

namespace {

TEST(Windows1252, TheBytesThatDifferFromLatin1GoBothWays) {
    struct Case { const char* windows; const char* utf8; };
    const Case cases[] = {
        {"\x80", "\xE2\x82\xAC"},                                  // the euro sign
        {"\x9F", "\xC5\xB8"},                                      // Y with diaeresis, the last of the block
        {"\x8A\x99", "\xC5\xA0\xE2\x84\xA2"},                      // S caron, trade mark
        {"\x81\x8D\x8F\x90\x9D", "\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D"},  // unassigned: C1 code points
        {"\xA0\xE9\xFF", "\xC2\xA0\xC3\xA9\xC3\xBF"},              // as in Latin-1 from 0xA0
        {"A\r\n", "A\r\n"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Utf8FromWindows1252(c.windows), c.utf8) << c.utf8;
        EXPECT_EQ(Windows1252FromUtf8(c.utf8), c.windows) << c.utf8;
    }
}

TEST(Windows1252, WhatHasNoFormBecomesAQuestionMark) {
    struct Case { const char* utf8; const char* windows; };
    const Case cases[] = {
        {"\xC2\x80", "?"},                 // U+0080: 0x80 is the euro, not this control
        {"\xE2\x82\xAD", "?"},             // U+20AD, next to the euro
        {"\xF0\x9F\x98\x80x", "?x"},       // an emoji, four bytes, is one character
        {"\xE9t\xE9", "?t?"},              // Latin-1, not UTF-8
        {"\x80\xBF", "??"},                // stray continuation bytes
        {"\xE2\x82", "??"},                // a sequence cut by the end
        {"\xC3" "A", "?A"},                // a lead byte before a plain one keeps the plain one
        {"\xC0\xA9", "??"},                // overlong encoding of ')'
        {"\xED\xA0\x80", "???"},           // a surrogate
        {"\xF4\x90\x80\x80", "????"},      // beyond U+10FFFF
        {"\xF8\x88\x80\x80\x80", "?????"}, // five-byte form, never valid
    };
    for (const Case& c : cases) EXPECT_EQ(Windows1252FromUtf8(c.utf8), c.windows) << c.windows;
}

}  // namespace
