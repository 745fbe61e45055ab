// The chooser's look is the alert box's: the grey face, the dialog font, push buttons along the
// bottom; the list is white with the selection in the system's highlight colours.
#include <algorithm>

#include "base/Windows1252.h"
#include "gfx/Draw.h"
#include "text/Font.h"
#include "ui/AlertDraw.h"
#include "ui/FileChooser.h"

namespace {

inline constexpr int32_t kMargin = 12;
inline constexpr uint32_t kHighlight = Rgb(0x00, 0x00, 0x80);
inline constexpr uint32_t kFolderColour = Rgb(0xE8, 0xC8, 0x50);
inline constexpr uint32_t kBarColour = Rgb(0xE0, 0xE0, 0xE0);

void DrawLine(Surface& window, const Rect& r, int32_t x, const std::string& text, uint32_t colour) {
    DrawDialogLine(window, r, x, text, colour);
}

// A long path keeps its end, where the folder's own name is.
std::string FittedPath(const std::string& path, int32_t width) {
    const TextFont font = AlertFont();
    std::string shown = Windows1252FromUtf8(path);
    if (MeasureText(font, shown) <= width) return shown;
    while (shown.size() > 1 && MeasureText(font, "..." + shown) > width) shown.erase(0, 1);
    return "..." + shown;
}

void DrawButton(Surface& window, const Rect& box, int button, const std::string& label, bool pressed) {
    DrawDialogButton(window, box, OffsetRect(ChooserButtonRect(button), box.left, box.top), label, button == 1, pressed);
}

void DrawRow(Surface& window, const Rect& rowRect, const ChooserRow& row, bool selected) {
    if (selected) FillRect(window, rowRect, rowRect, kHighlight);
    const uint32_t ink = selected ? kWhite : kBlack;
    // A folder wears a small folder, a file a small page.
    const Rect icon{rowRect.left + 3, rowRect.top + 4, rowRect.left + 15, rowRect.top + 13};
    FillRect(window, rowRect, icon, row.folder ? kFolderColour : kWhite);
    FrameRect(window, rowRect, icon, {kBlack, 1, PenMode::Copy});
    if (row.folder) FillRect(window, rowRect, {icon.left, icon.top - 2, icon.left + 5, icon.top}, kBlack);
    DrawLine(window, rowRect, rowRect.left + 20, Windows1252FromUtf8(row.name), ink);
}

}  // namespace

Rect ChooserListRect() {
    const int32_t top = 52;
    return {kMargin, top, kChooserWidth - kMargin, top + kChooserRowHeight * kChooserRowsInView + 2};
}

Rect ChooserNameRect() {
    const Rect list = ChooserListRect();
    return {kMargin + 70, list.bottom + 8, list.right, list.bottom + 30};
}

Rect ChooserButtonRect(int button) {
    constexpr int32_t kWidth = 75, kHeight = 23, kGap = 10;
    const int32_t right = kChooserWidth - kMargin - (button == 1 ? kWidth + kGap : 0);
    const int32_t bottom = kChooserHeight - kMargin;
    return {right - kWidth, bottom - kHeight, right, bottom};
}

void DrawFileChooser(const ChooserSession& s, Surface& window, const Rect& box) {
    FillRect(window, box, box, kDialogFaceColour);
    FrameRect(window, box, box, {kBlack, 1, PenMode::Copy});
    FrameRect(window, box, InflateRect(box, -3, -3), {kBlack, 1, PenMode::Copy});
    const int32_t left = box.left + kMargin, right = box.right - kMargin;
    const std::string title = !s.choice.title.empty() ? s.choice.title : s.choice.save ? "Save As" : "Open";
    DrawLine(window, {left, box.top + 8, right, box.top + 26}, left, title, kBlack);
    DrawLine(window, {left, box.top + 28, right, box.top + 46}, left, FittedPath(s.folder, right - left), kBlack);

    const Rect list = OffsetRect(ChooserListRect(), box.left, box.top);
    FillRect(window, box, list, kWhite);
    FrameRect(window, box, list, {kBlack, 1, PenMode::Copy});
    const Rect bar{list.right - 1 - kChooserBarWidth, list.top + 1, list.right - 1, list.bottom - 1};
    FillRect(window, box, bar, kBarColour);
    const int count = static_cast<int>(s.rows.size());
    for (int i = 0; i < kChooserRowsInView && s.first + i < count; ++i) {
        const int32_t top = list.top + 1 + i * kChooserRowHeight;
        const Rect rowRect{list.left + 1, top, bar.left, top + kChooserRowHeight};
        DrawRow(window, rowRect, s.rows[s.first + i], s.first + i == s.selected);
    }
    // The thumb stands for the rows in view.
    if (count > kChooserRowsInView) {
        const int32_t height = bar.Height();
        const int32_t thumbTop = bar.top + height * s.first / count;
        const int32_t thumbBottom = bar.top + height * (s.first + kChooserRowsInView) / count;
        const Rect thumb{bar.left + 2, thumbTop, bar.right - 2, std::max(thumbBottom, thumbTop + 6)};
        FillRect(window, bar, thumb, kDialogFaceColour);
        FrameRect(window, bar, thumb, {kBlack, 1, PenMode::Copy});
    }

    const Rect name = OffsetRect(ChooserNameRect(), box.left, box.top);
    if (s.choice.save) {
        DrawLine(window, {left, name.top, name.left, name.bottom}, left, "File name:", kBlack);
        FillRect(window, box, name, kWhite);
        FrameRect(window, box, name, {kBlack, 1, PenMode::Copy});
        const std::string shown = Windows1252FromUtf8(s.name);
        const Rect inside = InflateRect(name, -2, -2);
        DrawLine(window, inside, name.left + 4, shown, kBlack);
        const int32_t caret = name.left + 4 + MeasureText(AlertFont(), shown);
        FillRect(window, inside, {caret, name.top + 4, caret + 1, name.bottom - 4}, kBlack);
    }
    const Rect ok = OffsetRect(ChooserButtonRect(1), box.left, box.top);
    DrawLine(window, {left, ok.top, ok.left - 8, ok.bottom}, left,
             "Files of type: " + s.choice.filterName, kBlack);
    DrawButton(window, box, 1, s.choice.save ? "Save" : "Open", s.pressed == 1);
    DrawButton(window, box, 2, "Cancel", s.pressed == 2);
}
