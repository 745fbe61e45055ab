// The clipboard's text as the system keeps it (Windows-1252, CR LF line ends) and as the desktop's
// and the browser's clipboards keep it (UTF-8, LF line ends).
#pragma once

#include <string>
#include <string_view>

// Every line end that comes in (CR LF, LF or a lone CR, as other programs write them) becomes
// CR LF; characters without a Windows-1252 form become '?'.
std::string ClipboardTextFromUtf8(std::string_view utf8);
// Every line end (CR LF, or a lone CR or LF) becomes LF.
std::string Utf8FromClipboardText(std::string_view text);
