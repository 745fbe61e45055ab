// The clipboard's text between the system's form (Windows-1252, CR LF) and the desktop's and
// browser's (UTF-8, LF), whatever line ends another program wrote.
#include "base/ClipboardText.h"

#include <gtest/gtest.h>

namespace {

TEST(ClipboardText, LineEndsAndCharactersChangeAtTheEdge) {
    struct Case { const char* utf8In; const char* system; const char* utf8Out; };
    const Case cases[] = {
        {"A\r\nB \xC3\xA9", "A\r\nB \xE9", "A\nB \xC3\xA9"},
        {"a\nb\rc\r\n", "a\r\nb\r\nc\r\n", "a\nb\nc\n"},
        {"\n\n", "\r\n\r\n", "\n\n"},                 // two empty lines stay two
        {"\r\r\n", "\r\n\r\n", "\n\n"},               // a lone CR before CR LF
        {"\xE2\x82\xAC\xE2\x98\x83", "\x80?", "\xE2\x82\xAC?"},
        {"", "", ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ClipboardTextFromUtf8(c.utf8In), c.system) << c.utf8In;
        EXPECT_EQ(Utf8FromClipboardText(c.system), c.utf8Out) << c.utf8In;
    }
}

}  // namespace
