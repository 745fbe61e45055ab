// The layout of one alert box, as the alert mini-language makes it; the host draws it, so the
// layout is part of the seam.
//
// The box is width x height on the screen, centred, with a frame `frame` pixels thick inside that
// size. Every rectangle below is in the box's client area: (0, 0) is the inside corner of the
// frame.
#pragma once

#include <cstdint>
#include <string>

struct AlertRect {
    int16_t left = 0, top = 0, right = 0, bottom = 0;
};

struct AlertButton {
    std::string label;  // without the "^", Windows-1252
    AlertRect rect;     // in the client area
};

enum class AlertPicture : uint8_t { None = 0, Stop = 1, Exclamation = 3, Dog = 4 };

struct AlertLayout {
    int stringId = 0;
    std::string text;  // formatted, Windows-1252, line breaks as '\n'
    int sizeClass = 0;
    AlertPicture picture = AlertPicture::None;
    int16_t width = 0, height = 0;  // the whole box, frame included
    int16_t frame = 0;              // frame thickness on each side
    AlertRect pictureRect;          // empty without a picture
    AlertRect textRect;
    int buttonCount = 0;     // 0 to 3
    AlertButton buttons[3];  // in the order of the string: the first is the rightmost
    int defaultButton = 1;   // 1 to 3, in the order of the string; it has the focus
};
