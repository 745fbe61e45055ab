// An alert box drawn from its layout: frame, picture, text and buttons, the default button marked.
//
// The look is the platform's system dialog: a light grey face inside a raised three-pixel frame,
// the message in black in the dialog font, and push buttons along the bottom. The default button,
// which also has the focus, wears a black ring and a dotted focus mark; a pressed button is drawn
// sunk, a black and a grey ring round a flat face, its label one pixel down and to the right.
#pragma once

#include <string>

#include "gfx/Draw.h"
#include "gfx/Surface.h"
#include "text/Font.h"

struct AlertLayout;

inline constexpr uint32_t kDialogFaceColour = 0xC0C0C0;

// The dialog font: the platform's dialog face, MS Sans Serif (Liberation Sans through the font
// map), at an 11-pixel em, the 8-point dialog font of a 96-dot screen. Its letters average the
// 6-pixel base width that the layout measures button labels with; its lines are 12 pixels apart.
TextFont AlertFont();

// A push button of the dialogs drawn in the window (jump, chooser, find): the grey face, a frame
// that is heavier on the default button, the label centred, the inside inverted while pressed.
void DrawDialogButton(Surface& window, const Rect& clip, const Rect& r, const std::string& label, bool isDefault,
                      bool pressed);
// A line of text in the dialog font, centred on the height of `r` from `x`, cut at its edges.
void DrawDialogLine(Surface& window, const Rect& r, int32_t x, const std::string& text, uint32_t colour);

// Draws the box with its top-left corner at `origin`; `pressed` (1-3, 0 none) is shown held down.
void DrawAlert(Surface& target, const Point& origin, const AlertLayout& layout, int pressed);
// Which button (1-3) is at (x, y), relative to the box's corner; 0 none.
int AlertButtonAt(const AlertLayout& layout, int32_t x, int32_t y);
// The box alone, on a surface of its own size (empty for a layout without a size).
Surface RenderAlert(const AlertLayout& layout, int pressed = 0);
