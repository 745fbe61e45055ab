// The nested loop of a modal dialog drawn in the window: the dialog takes the input, the app's
// timer work keeps running under it, and the window is put back as it was when the dialog ends.
#pragma once

#include <cstddef>
#include <string>

#include "gfx/Surface.h"
#include "platform/Host.h"

struct ModalDialog {
    Rect box;  // window coordinates: everything the dialog draws lies inside
    void* context = nullptr;
    void (*Draw)(void* context, Surface& window, const Rect& box) = nullptr;
    // Takes one input event; true when the dialog is over.
    bool (*HandleEvent)(void* context, const HostEvent& event, const Rect& box) = nullptr;
    // The window was closed or no input can come any more: the dialog ends as cancelled.
    void (*GiveUp)(void* context) = nullptr;
};

// A press on a dialog's controls: the control pressed on shows pressed while the pointer stays on
// it and is chosen when the button is let go there.
struct DialogPress {
    int tracking = 0;  // the control the press began on; 0 none
    int pressed = 0;   // the control shown pressed now
};
// Follows a mouse event, `under` being the control beneath the pointer (0 none): the control
// chosen by this event, or 0.
int FollowDialogPress(DialogPress* press, const HostEvent& event, int under);

// The keys of a dialog with one line of text: printable characters are typed up to `max`,
// Backspace takes the last one back. 1 for Return (OK), 2 for Escape (Cancel), else 0.
int TypeIntoDialogLine(std::string* text, size_t max, const HostEvent& event);

// The box of a dialog of the given size centred on the window, never off its top-left corner.
Rect CentredBox(int32_t width, int32_t height);
void RunModalDialog(const ModalDialog& dialog);
