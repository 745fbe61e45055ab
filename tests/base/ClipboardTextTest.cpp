// The clipboard's text between the system's form (Windows-1252, CR LF) and the desktop's and the
// browser's (UTF-8, LF), whatever line ends another program wrote.
#include "base/ClipboardText.h"

#include <gtest/gtest.h>

namespace {

TEST(ClipboardText, LineEndsAndCharactersChangeAtTheEdge) {
    struct Case { const char* utf8In; const char* system; const char* utf8Out; };
    const Case cases[] = {{"A\r\nB \xC3\xA9\xE2\x98\x83", "A\r\nB \xE9?", "A\nB \xC3\xA9?"},
                          {"a\nb\rc\r\r\n\n", "a\r\nb\r\nc\r\n\r\n\r\n", "a\nb\nc\n\n\n"}};
    for (const Case& c : cases) {
        EXPECT_EQ(ClipboardTextFromUtf8(c.utf8In), c.system) << c.utf8In;
        EXPECT_EQ(Utf8FromClipboardText(c.system), c.utf8Out) << c.utf8In;
    }
}

}  // namespace
