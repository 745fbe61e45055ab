// The nested loop of a modal dialog drawn in the window: the dialog takes the input, the app's
// timer work keeps running under it, and the window is put back as it was when the dialog ends.
#pragma once

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

// The box of a dialog of the given size centred on the window, never off its top-left corner.
Rect CentredBox(int32_t width, int32_t height);
void RunModalDialog(const ModalDialog& dialog);
