// The desktop's clipboard through SDL, which keeps its text as UTF-8 with the desktop's line ends.
#include "base/ClipboardText.h"
#include "platform/sdl/SdlState.h"

void SdlSetClipboardText(const std::string& text) {
    // A clipboard that refuses the text leaves the old one; the copy has no way to report it.
    SDL_SetClipboardText(Utf8FromClipboardText(text).c_str());
}

bool SdlGetClipboardText(std::string* text) {
    // SDL answers "no text" for an empty clipboard too, which pastes the same nothing.
    if (!SDL_HasClipboardText()) return false;
    char* utf8 = SDL_GetClipboardText();
    if (!utf8) return false;
    *text = ClipboardTextFromUtf8(utf8);
    SDL_free(utf8);
    return true;
}
