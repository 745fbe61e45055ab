// Drawing a button: its outline by shape, then its icon and name centred in it, and the hilite
// of a press.
#include "card/ButtonDraw.h"

#include "card/ButtonLayout.h"
#include "card/DisplayList.h"
#include "gfx/Blit.h"
#include "gfx/Draw.h"
#include "gfx/Palette.h"

namespace {

constexpr Pen kBlackPen{kBlack, 1, PenMode::Copy};
// Beyond the palette at more than 8 bits, index 257 stands for the program's default colours:
// black text on a white brush.
constexpr int32_t kDefaultColorIndex = 257;
constexpr uint32_t kDefaultTextColor = kBlack;
constexpr uint32_t kDefaultFillColor = kWhite;

// A colour index of the record through the card's palette. An index past the palette takes entry
// 0, as the platform does for a palette index it doesn't have.
uint32_t ColorOf(int32_t index, const uint32_t* palette, uint32_t defaultColor) {
    if (!palette || (index == kDefaultColorIndex && DisplayDepth() > 8)) return defaultColor;
    return index >= 0 && index < static_cast<int32_t>(kPaletteSize) ? palette[index] : palette[0];
}

// The mask stands at the rectangle's corner, wherever the record has been moved to.
const BitMask& MaskAtCorner(const DisplayItem& item, BitMask* moved) {
    if (item.mask.left == item.rect.left && item.mask.top == item.rect.top) return item.mask;
    *moved = item.mask;
    moved->left = item.rect.left;
    moved->top = item.rect.top;
    return *moved;
}

// Shape 0: a round rectangle with a line inside its right and bottom edges for a heavier edge.
void DrawRoundButton(Surface& s, const Clip& clip, const Rect& r, int32_t h, uint32_t fill) {
    FillRoundRect(s, clip, r, h, h, fill);
    FrameRoundRect(s, clip, r, h, h, kBlackPen);
    DrawLine(s, clip, r.right - 2, r.top + h / 2, r.right - 2, r.bottom - h / 2, kBlackPen);
    DrawLine(s, clip, r.left + h / 2, r.bottom - 2, r.right - h / 2, r.bottom - 2, kBlackPen);
}

void DrawOutline(Surface& s, const Clip& clip, const DisplayItem& item, int32_t h, uint32_t fill,
                 bool itemBorders, bool forPrint) {
    const Rect& r = item.rect;
    switch (item.shape) {
        case 0:
        case 1:
            if (forPrint) {
                const Rect inner = InflateRect(r, -2, -2);
                FillRoundRect(s, clip, inner, h, h, fill);
                FrameRoundRect(s, clip, inner, h, h, kBlackPen);
            } else if (item.shape == 0) {
                DrawRoundButton(s, clip, r, h, fill);
            } else {
                // The default button: a 4-pixel ring in the frame colour around a smaller shape 0.
                FrameRoundRect(s, clip, InflateRect(r, -2, -2), h, h,
                               Pen{kBlack, 4, PenMode::Copy});
                DrawRoundButton(s, clip, InflateRect(r, -6, -6), h, fill);
            }
            break;
        case 2:
            FillRect(s, clip, r, fill);
            FrameRect(s, clip, r, kBlackPen);
            break;
        case 3: {
            const Rect face{r.left, r.top, r.right - 2, r.bottom - 2};
            FillRect(s, clip, face, fill);
            FrameRect(s, clip, face, kBlackPen);
            // The shadow: two lines on the right and two on the bottom.
            FillRect(s, clip, {r.right - 2, r.top + 2, r.right, r.bottom}, kBlack);
            FillRect(s, clip, {r.left + 2, r.bottom - 2, r.right, r.bottom}, kBlack);
            break;
        }
        case 5:
        case 6:
        case 7:
            // The hot area painted in, for authoring.
            if (itemBorders && !forPrint && item.hasMask) {
                BitMask moved;
                FillMask(s, clip, MaskAtCorner(item, &moved), kBlack);
            }
            break;
        default:
            if (itemBorders && !forPrint) FrameRect(s, clip, r, kBlackPen);
            break;
    }
}

// Text through a clip that may hold a region: DrawText knows rectangles only, so the text is drawn
// on a copy of the pixels under it and copied back through the clip.
void DrawName(Surface& s, const Clip& clip, const TextFont& font, const ButtonLayout& layout,
              const std::string& name, uint32_t color) {
    if (!clip.region) {
        DrawText(s, font, layout.nameRect.left, layout.baseline, name, color, clip.rect);
        return;
    }
    // Room for glyphs that reach past their advance.
    const Rect box = IntersectRect(
        IntersectRect(InflateRect(layout.nameRect, layout.h, 0), clip.rect), s.Bounds());
    if (box.IsEmpty()) return;
    Surface part(box.Width(), box.Height());
    CopyRect(part, part.Bounds(), 0, 0, s, box);
    DrawText(part, font, layout.nameRect.left - box.left, layout.baseline - box.top, name, color,
             part.Bounds());
    CopyRect(s, clip, box.left, box.top, part, part.Bounds());
}

void Draw(Surface& target, const Clip& clip, const DisplayItem& item, const uint32_t* palette,
          bool itemBorders, bool forPrint) {
    if (item.hidden) return;
    const ButtonLayout layout = LayOutButton(item);
    DrawOutline(target, clip, item, layout.h, ColorOf(item.fillColor, palette, kDefaultFillColor),
                itemBorders, forPrint);

    Clip contents = clip;
    if (item.shape >= 0 && item.shape < 4) {
        const Rect& r = item.rect;
        contents.rect = IntersectRect(clip.rect, {r.left + 2, r.top, r.right - 2, r.bottom});
    }
    if (contents.rect.IsEmpty()) return;
    if (layout.hasIcon) {
        IconLock icon(item);
        if (icon.data()) {
            DrawIcon(target, contents, layout.iconRect.left, layout.iconRect.top, icon.data(),
                     icon.size(), palette);
        }
    }
    if (item.showName && !item.name.empty()) {
        DrawName(target, contents, ButtonFont(), layout, item.name,
                 ColorOf(item.textColor, palette, kDefaultTextColor));
    }
}

}  // namespace

void DrawButton(Surface& target, const Clip& clip, const DisplayItem& item, const uint32_t* palette,
                bool itemBorders) {
    Draw(target, clip, item, palette, itemBorders, false);
}

void InvertItem(Surface& target, const Clip& clip, const DisplayItem& item) {
    switch (item.shape) {
        case 0:
        case 1:
        case 2:
        case 3:
            if (item.hasRegion) InvertRegion(target, clip, item.region);
            break;
        case 5:
        case 6:
        case 7:
            // The mask, exclusive-ored at the rectangle's corner: its set bits turn over.
            if (item.hasMask) {
                BitMask moved;
                BlitMask(target, clip, MaskAtCorner(item, &moved), kWhite, kBlack, Rop::SrcInvert);
            }
            break;
        default:
            InvertRect(target, clip, item.rect);
            break;
    }
}
