// Shared by the button files: the button font, the shapes' regions and where a button's icon and
// name stand. Not for use outside the buttons.
#pragma once

#include <cstdint>

#include "gfx/Region.h"
#include "gfx/Surface.h"
#include "memory/MemRef.h"
#include "text/Font.h"

struct DisplayItem;

// The button font. Nothing names one for buttons, so they take the font map's default face at its
// default size, plain; `h`, the height of a character in it, drives the corners and the layout.
TextFont ButtonFont();
int32_t ButtonCharHeight();

// The region of shapes 0 to 3 on `rect` with corners of `h`; shapes 0 and 1 are round rectangles
// holding exactly the pixels the outline covers.
Region ShapeRegion(const Rect& rect, int32_t shape, int32_t h);

// Where the icon and the name of a button go. The icon's height is its header's height as it
// stands (an icon image stores colour and mask rows together, so it is twice the picture's).
struct ButtonLayout {
    int32_t h = 0;
    bool hasIcon = false;
    Rect iconRect;
    Rect nameRect;  // the measured name, h high
    int32_t baseline = 0;
};
ButtonLayout LayOutButton(const DisplayItem& item);

// The 'Icon' record of a live record locked for reading; null data when there is none.
class IconLock {
public:
    explicit IconLock(const DisplayItem& item);
    ~IconLock();
    IconLock(const IconLock&) = delete;
    IconLock& operator=(const IconLock&) = delete;
    const uint8_t* data() const { return data_; }
    uint32_t size() const { return size_; }

private:
    MemRef ref_ = 0;
    const uint8_t* data_ = nullptr;
    uint32_t size_ = 0;
};
