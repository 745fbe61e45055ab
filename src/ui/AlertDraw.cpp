#include "ui/AlertDraw.h"

#include <algorithm>
#include <string_view>

#include "gfx/Draw.h"
#include "messages/Alert.h"
#include "platform/AlertLayout.h"
#include "pictures/ResourcePicture.h"

namespace {

// The platform's 3-D colours.
constexpr uint32_t kHighlight = 0xFFFFFF;
constexpr uint32_t kLight = 0xDFDFDF;
constexpr uint32_t kShadow = 0x808080;
constexpr uint32_t kDarkShadow = 0x000000;
constexpr uint32_t kTextColour = 0x000000;
constexpr int32_t kDialogFontPx = 11;
constexpr int32_t kFocusInsetPx = 4;  // from the button's outer edge

Rect ToRect(const AlertRect& r, const Point& at) {
    return {r.left + at.x, r.top + at.y, r.right + at.x, r.bottom + at.y};
}

// A one-pixel ring: the top and left sides in `topLeft`, the bottom and right (with the two
// corners they share with the others) in `bottomRight`, as light falls from the top left.
void DrawBevel(Surface& s, const Clip& clip, const Rect& r, uint32_t topLeft,
               uint32_t bottomRight) {
    if (r.IsEmpty()) return;
    FillRect(s, clip, {r.left, r.top, r.right - 1, r.top + 1}, topLeft);
    FillRect(s, clip, {r.left, r.top, r.left + 1, r.bottom - 1}, topLeft);
    FillRect(s, clip, {r.left, r.bottom - 1, r.right, r.bottom}, bottomRight);
    FillRect(s, clip, {r.right - 1, r.top, r.right, r.bottom}, bottomRight);
}

// Every other pixel of the ring, starting with the corner: the focus mark.
void DrawDottedFrame(Surface& s, const Clip& clip, const Rect& r) {
    if (r.IsEmpty()) return;
    auto dot = [&](int32_t x, int32_t y) {
        if (((x - r.left) + (y - r.top)) % 2 == 0) FillRect(s, clip, {x, y, x + 1, y + 1}, kBlack);
    };
    for (int32_t x = r.left; x < r.right; ++x) {
        dot(x, r.top);
        dot(x, r.bottom - 1);
    }
    for (int32_t y = r.top + 1; y < r.bottom - 1; ++y) {
        dot(r.left, y);
        dot(r.right - 1, y);
    }
}

void DrawPushButton(Surface& s, const Clip& clip, Rect r, const std::string& label, bool isDefault,
                    bool pressed) {
    const Rect outer = r;
    if (isDefault || pressed) {
        FrameRect(s, clip, r, Pen{kDarkShadow, 1});
        r = InflateRect(r, -1, -1);
    }
    if (pressed) {
        FrameRect(s, clip, r, Pen{kShadow, 1});
    } else {
        DrawBevel(s, clip, r, kHighlight, kDarkShadow);
        DrawBevel(s, clip, InflateRect(r, -1, -1), kLight, kShadow);
    }
    const Rect inside = InflateRect(r, -2, -2);
    FillRect(s, clip, inside, kDialogFaceColour);

    const TextFont font = AlertFont();
    const TextMetrics m = GetTextMetrics(font);
    const int32_t shift = pressed ? 1 : 0;
    const int32_t x = outer.left + (outer.Width() - MeasureText(font, label)) / 2 + shift;
    const int32_t top = outer.top + (outer.Height() - m.lineHeight) / 2 + shift;
    DrawText(s, font, x, top + m.ascent, label, kTextColour, IntersectRect(inside, clip.rect));
    if (isDefault) DrawDottedFrame(s, clip, InflateRect(outer, -kFocusInsetPx, -kFocusInsetPx));
}

const char* PictureName(AlertPicture picture) {
    switch (picture) {
        case AlertPicture::Stop:
            return "stop";
        case AlertPicture::Exclamation:
            return "exclamation";
        case AlertPicture::Dog:
            return "dog";
        case AlertPicture::None:
            break;
    }
    return nullptr;
}

int ButtonCount(const AlertLayout& layout) {
    return std::clamp(layout.buttonCount, 0, kAlertMaxButtons);
}

}  // namespace

TextFont AlertFont() {
    return TextFont{"MS Sans Serif", kDialogFontPx, 0};
}

void DrawDialogLine(Surface& window, const Rect& r, int32_t x, const std::string& text, uint32_t colour) {
    const TextFont font = AlertFont();
    const TextMetrics m = GetTextMetrics(font);
    DrawText(window, font, x, r.top + (r.Height() - m.lineHeight) / 2 + m.ascent, text, colour, r);
}

void DrawDialogButton(Surface& window, const Rect& clip, const Rect& r, const std::string& label, bool isDefault,
                      bool pressed) {
    FillRect(window, clip, r, kDialogFaceColour);
    FrameRect(window, clip, r, {kBlack, isDefault ? 2 : 1, PenMode::Copy});
    DrawDialogLine(window, IntersectRect(r, clip), r.left + (r.Width() - MeasureText(AlertFont(), label)) / 2, label,
                   kBlack);
    if (pressed) InvertRect(window, clip, InflateRect(r, -2, -2));
}

void DrawAlert(Surface& target, const Point& origin, const AlertLayout& layout, int pressed) {
    const Rect box{origin.x, origin.y, origin.x + layout.width, origin.y + layout.height};
    const Rect bounds = IntersectRect(box, target.Bounds());
    if (bounds.IsEmpty()) return;
    const Clip clip(bounds);

    // The raised frame, then the face inside it.
    const int32_t frame = std::max<int32_t>(layout.frame, 0);
    FillRect(target, clip, box, kDialogFaceColour);
    if (frame >= 1) DrawBevel(target, clip, box, kLight, kDarkShadow);
    if (frame >= 2) DrawBevel(target, clip, InflateRect(box, -1, -1), kHighlight, kShadow);

    const Point client{origin.x + frame, origin.y + frame};
    const Rect textBox = ToRect(layout.textRect, client);
    if (const char* name = PictureName(layout.picture)) {
        if (const ResourcePicture* picture = FindResourcePicture(name)) {
            // Centred across its square, its top level with the message's first line.
            const Rect square = ToRect(layout.pictureRect, client);
            const int32_t top =
                std::clamp(textBox.top, square.top,
                           std::max(square.top, square.bottom - picture->pixels.height));
            DrawResourcePicture(target, Clip(IntersectRect(square, bounds)),
                                square.left + (square.Width() - picture->pixels.width) / 2, top,
                                *picture);
        }
    }

    // Wrapped to the whole text box, then cut to what of it is on the target.
    const Rect textClip = IntersectRect(textBox, bounds);
    if (!textClip.IsEmpty()) {
        const TextFont font = AlertFont();
        const TextMetrics m = GetTextMetrics(font);
        int32_t top = textBox.top;
        for (const TextLine& line : LayOutText(font, layout.text, textBox.Width(), true)) {
            if (top >= textBox.bottom) break;
            DrawText(target, font, textBox.left, top + m.ascent,
                     std::string_view(layout.text).substr(line.start, line.length), kTextColour,
                     textClip);
            top += m.lineHeight;
        }
    }

    for (int i = 0; i < ButtonCount(layout); ++i) {
        DrawPushButton(target, clip, ToRect(layout.buttons[i].rect, client),
                       layout.buttons[i].label, i + 1 == layout.defaultButton, i + 1 == pressed);
    }
}

int AlertButtonAt(const AlertLayout& layout, int32_t x, int32_t y) {
    const Point client{layout.frame, layout.frame};
    for (int i = 0; i < ButtonCount(layout); ++i) {
        if (ToRect(layout.buttons[i].rect, client).Contains(x, y)) return i + 1;
    }
    return 0;
}

Surface RenderAlert(const AlertLayout& layout, int pressed) {
    if (layout.width <= 0 || layout.height <= 0) return Surface();
    Surface surface(layout.width, layout.height, kDialogFaceColour);
    DrawAlert(surface, Point{0, 0}, layout, pressed);
    return surface;
}
