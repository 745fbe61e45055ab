// Alerts and hints: every message to the user is a numbered string whose own text says how its box
// looks. The string is, in this order: a size-class digit, a picture digit, the message, and "~"
// before each button label; "^" before a label makes it the default button. The first label is the
// rightmost button. A string without "~" gives no box: the call answers as if the first button had
// been pressed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/AlertLayout.h"

// The box's geometry. The template button and the dialog base width only need to give sizes
// comparable to a system dialog's; the size classes below are the binding part.
inline constexpr int16_t kDialogBaseWidthPx = 6;    // average character width of the dialog font
inline constexpr int16_t kAlertButtonWidthPx = 75;  // the template's button, the narrowest one
inline constexpr int16_t kAlertButtonHeightPx = 23;
inline constexpr int16_t kAlertButtonPaddingPx = 24;  // added to a label's width
inline constexpr int16_t kAlertButtonGapPx = 15;      // between two buttons
inline constexpr int16_t kAlertMarginPx = 4;          // inside the frame, on every side
inline constexpr int16_t kAlertFramePx = 3;
inline constexpr int16_t kAlertPictureSizePx = 64;  // the picture stands at (4, 4)
inline constexpr int16_t kAlertPictureGapPx = 8;    // between the picture and the text
inline constexpr int16_t kAlertTextTopPx = 12;
inline constexpr int16_t kAlertTextGapPx = 8;  // between the text and the buttons
inline constexpr int kAlertMaxButtons = 3;
inline constexpr size_t kAlertTextMaxBytes = 999;  // a table string, read into 1,000 bytes
inline constexpr size_t kAlertBufferBytes = 256;   // the text of AlertText, with its zero

struct AlertSizeClass {
    int16_t minWidthPx;
    int16_t heightPx;
};
// Indexed by the first digit of an alert string.
inline constexpr AlertSizeClass kAlertSizeClasses[10] = {
    {400, 130}, {250, 100}, {280, 120}, {320, 130}, {360, 130},
    {400, 180}, {480, 140}, {470, 120}, {490, 210}, {490, 220},
};

// ShowMessage answers with the id of the button pressed; Alert with 1 to 3.
inline constexpr int16_t kAlertFirstButtonId = 52;
// At most this many hint ids are remembered in a run; later ones show every time.
inline constexpr int kMaxShownHints = 501;

// Lays out the alert `text` (Windows-1252, as GetString gives it) for string `stringId`. A size
// digit that isn't a digit counts as class 0; a picture digit other than 1, 2, 3 or 4 gives no
// picture, and so does iconFlag false. Strings 2295 and 2334 get the two alert numbers put in for
// their "%d". False when the text makes no box (shorter than its two digits, or without "~"); `out`
// then holds only the id.
bool BuildAlertLayout(int stringId, const std::string& text, bool iconFlag, AlertLayout* out);

// Shows alert `stringId`, always, and returns the button pressed, 1 to 3 in the order of the
// string.
int Alert(int stringId);

// The general call; returns 52, 53 or 54 for the first, second or third button. With `force` false
// the message is a hint: nothing is shown for an experienced user, and with `once` a hint already
// shown in this run isn't shown again. A hint held back answers 52 at once, as does a string that
// doesn't exist or has no buttons. `iconFlag` false leaves the picture out.
int16_t ShowMessage(int stringId, bool once, bool force, bool iconFlag);

// Shows a prepared alert text (digits, message, buttons), as the alert with id 0. The text is cut
// to the 255 bytes the alert buffer holds. Returns 1 to 3.
int AlertText(const std::string& text);

// The two numbers of strings 2295 and 2334: the smallest card width and height.
void SetAlertNumbers(int first, int second);

// The user preference "experienced user": hints stay silent.
void SetAdvancedUser(bool advanced);
bool IsAdvancedUser();

// The message of string `stringId` alone, in UTF-8: no digits, no buttons, the numbers put in. A
// plain string comes back as it is. For what the programs print.
std::string AlertMessageText(int stringId);

// Forgets the hints shown, at shutdown.
void ReleaseAlertStore();
// Back to the state of a fresh start: no hints shown, numbers 0, not experienced.
void ResetAlertState();
