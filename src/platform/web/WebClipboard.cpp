// The page's clipboard. A copy stays with the player, so that a paste within it always works, and
// goes to the page, which writes it to the browser's clipboard (WebHost.js). A page may read that
// clipboard only during a paste event: the page hands the event's text in (QbWebPaste), and Ctrl+V
// then goes to the player as a key press, so that the field pastes it.
#include <emscripten.h>

#include "base/ClipboardText.h"
#include "platform/web/WebState.h"

EM_JS(void, QbJsWriteClipboard, (const char* text), { Module.qbWriteClipboard(UTF8ToString(text)); });

void WebSetClipboardText(const std::string& text) {
    WebState& s = GetWebState();
    s.clipboard = text;
    s.clipboardHoldsText = true;
    QbJsWriteClipboard(Utf8FromClipboardText(text).c_str());
}

bool WebGetClipboardText(std::string* text) {
    const WebState& s = GetWebState();
    if (s.clipboardHoldsText) *text = s.clipboard;
    return s.clipboardHoldsText;
}

extern "C" {

// A paste on the page: `utf8` is the text it brought ("" when the page's clipboard holds none), or
// null when the player's own copy is newer than the page's clipboard and stays.
EMSCRIPTEN_KEEPALIVE void QbWebPaste(const char* utf8) {
    WebState& s = GetWebState();
    if (utf8) {
        s.clipboard = ClipboardTextFromUtf8(utf8);
        s.clipboardHoldsText = !s.clipboard.empty();
    }
    constexpr int kKeyV = 0x56;
    QbWebKey(1, kKeyV, kModCtrl);
    QbWebKey(0, kKeyV, kModCtrl);
}

// For the page's own tests: a copy of `text` (Windows-1252) through the host, and what the host's
// clipboard holds (Windows-1252; null when it holds no text).
EMSCRIPTEN_KEEPALIVE void QbWebCopy(const char* text) {
    GetHost().SetClipboardText(text ? text : "");
}

EMSCRIPTEN_KEEPALIVE const char* QbWebClipboardText() {
    const WebState& s = GetWebState();
    return s.clipboardHoldsText ? s.clipboard.c_str() : nullptr;
}

}  // extern "C"
