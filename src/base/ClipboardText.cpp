#include "base/ClipboardText.h"

#include "base/Windows1252.h"

namespace {

// Each line end of `text` as `lineEnd`; CR LF counts as one.
std::string WithLineEnds(std::string_view text, std::string_view lineEnd) {
    std::string out;
    out.reserve(text.size() + text.size() / 16);
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' || text[i] == '\n') {
            if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
            out += lineEnd;
        } else {
            out += text[i];
        }
    }
    return out;
}

}  // namespace

std::string ClipboardTextFromUtf8(std::string_view utf8) {
    return WithLineEnds(Windows1252FromUtf8(utf8), "\r\n");
}

std::string Utf8FromClipboardText(std::string_view text) {
    return Utf8FromWindows1252(WithLineEnds(text, "\n"));
}
