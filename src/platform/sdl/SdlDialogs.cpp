// Dialogs the backend shows itself. The player puts its own alert box, drawn in the window, in
// place of SdlShowAlert; SDL's message box serves before a window exists and for plain messages.
// The file chooser is the player's own too, drawn in the window (ui/FileChooser.h); before the
// window shows, an open or save dialog is cancelled.
#include <string>
#include <vector>

#include "base/Windows1252.h"
#include "platform/AlertLayout.h"
#include "platform/sdl/SdlState.h"

namespace {

SDL_Window* ParentWindow() {
    SdlState& s = GetSdlState();
    if (!s.window || (SDL_GetWindowFlags(s.window) & SDL_WINDOW_HIDDEN)) return nullptr;
    return s.window;
}

Uint32 IconFlag(AlertPicture picture) {
    switch (picture) {
        case AlertPicture::Stop:
            return SDL_MESSAGEBOX_ERROR;
        case AlertPicture::Exclamation:
            return SDL_MESSAGEBOX_WARNING;
        default:
            return SDL_MESSAGEBOX_INFORMATION;
    }
}

}  // namespace

int SdlShowAlert(const AlertLayout& layout) {
    const int count = layout.buttonCount > 0 ? layout.buttonCount : 1;
    std::vector<std::string> labels;
    std::vector<SDL_MessageBoxButtonData> buttons;
    labels.reserve(count);
    // The string's first button is the rightmost: listed last, left to right.
    for (int i = count - 1; i >= 0; --i) {
        labels.push_back(layout.buttonCount > 0 ? Utf8FromWindows1252(layout.buttons[i].label)
                                                : "OK");
        SDL_MessageBoxButtonData b{};
        b.buttonid = i + 1;
        if (i + 1 == layout.defaultButton) b.flags = SDL_MESSAGEBOX_BUTTON_RETURNKEY_DEFAULT;
        buttons.push_back(b);
    }
    for (size_t i = 0; i < buttons.size(); ++i) buttons[i].text = labels[i].c_str();
    const std::string text = Utf8FromWindows1252(layout.text);
    SDL_MessageBoxData data{};
    data.flags = IconFlag(layout.picture) | SDL_MESSAGEBOX_BUTTONS_LEFT_TO_RIGHT;
    data.window = ParentWindow();
    data.title = "Quillbrook";
    data.message = text.c_str();
    data.numbuttons = static_cast<int>(buttons.size());
    data.buttons = buttons.data();
    int pressed = 0;
    if (SDL_ShowMessageBox(&data, &pressed) != 0 || pressed < 1 || pressed > count)
        return layout.defaultButton;
    return pressed;
}

void SdlShowMessageBox(const std::string& title, const std::string& text) {
    SDL_ShowSimpleMessageBox(SDL_MESSAGEBOX_INFORMATION, Utf8FromWindows1252(title).c_str(),
                             Utf8FromWindows1252(text).c_str(), ParentWindow());
}

bool SdlChooseFile(const FileChoice&, std::string*) {
    return false;
}
