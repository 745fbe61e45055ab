// Text on a surface: glyphs from FreeType, measured and drawn in whole pixels.
//
// The same files (the fixed font table), the same FreeType release and one fixed rendering mode
// make the same pixels on every host: the fonts' own TrueType hinting with the vertical-only
// interpreter (version 40), never the auto-hinter, and 256 levels of grey coverage blended into
// the surface in integer arithmetic. Hinting keeps the stems of 9 to 12 pixel labels sharp;
// grey edges keep their shapes readable. Advances are whole pixels, so what MeasureText says is
// where DrawText puts the next character, and no kerning is applied.
//
// Text is Windows-1252 bytes. Bytes below 32 have no width and draw nothing; line breaks are
// DrawTextBox's business.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "gfx/Surface.h"

struct LogFont;

// The style bits of the text records. Bold, italic and underline are drawn; outline, shadow,
// condensed and extended draw as plain text.
inline constexpr uint8_t kStyleBold = 1;
inline constexpr uint8_t kStyleItalic = 2;
inline constexpr uint8_t kStyleUnderline = 4;
inline constexpr uint8_t kStyleOutline = 8;
inline constexpr uint8_t kStyleShadow = 16;
inline constexpr uint8_t kStyleCondensed = 32;
inline constexpr uint8_t kStyleExtended = 64;

inline constexpr int32_t kDefaultFontPx = 12;
// Sizes are held to this, so that a damaged record can't ask for glyphs of any size.
inline constexpr int32_t kMaxFontPx = 256;

struct TextFont {
    std::string face = "Arial";       // any face name; resolved through the fixed font table
    int32_t sizePx = kDefaultFontPx;  // the em in pixels (a point is a pixel on the card)
    uint8_t style = 0;
    friend bool operator==(const TextFont&, const TextFont&) = default;
};

struct TextMetrics {
    int32_t ascent = 0;      // baseline to the top of the cell
    int32_t descent = 0;     // baseline to the bottom of the cell
    int32_t lineHeight = 0;  // ascent + descent: lines stand this far apart
};

// The request of the font map as a font to draw with: a negative height is the em, a positive one
// the cell (ascent + descent); weight 600 and above is bold.
TextFont TextFontFromLogFont(const LogFont& logFont);

// The font's files are read on first use; false when the file can't be opened (nothing is then
// drawn, and every width is 0).
bool FontAvailable(const TextFont& font);
TextMetrics GetTextMetrics(const TextFont& font);
int32_t MeasureText(const TextFont& font, std::string_view text);
// Draws `text` with its origin at (x, baselineY), blending each glyph's coverage of `colour` into
// the surface; nothing outside `clip` (or the surface) changes. The background stays as it is.
void DrawText(Surface& surface, const TextFont& font, int32_t x, int32_t baselineY,
              std::string_view text, uint32_t colour, const Rect& clip);

enum class TextAlign : uint8_t { Left, Centre, Right };

// One line of a laid-out text: a part of the text, without its line break, and its width.
struct TextLine {
    size_t start = 0;
    size_t length = 0;
    int32_t width = 0;
};
// Splits `text` into lines at "\r\n", "\r" and "\n", and with `wrap` at the last space that lets a
// line fit in `maxWidth`; the spaces at a wrap are dropped. A word wider than the line stands on a
// line of its own (and is cut by the clip), as the system's dialogs do.
std::vector<TextLine> LayOutText(const TextFont& font, std::string_view text, int32_t maxWidth,
                                 bool wrap);
// Lays the text out in `box` from its top, aligned in it, clipped to it. Returns the height of the
// lines, drawn or not.
int32_t DrawTextBox(Surface& surface, const TextFont& font, const Rect& box, std::string_view text,
                    uint32_t colour, TextAlign align, bool wrap);

// Closes every face and FreeType itself; the next use opens them again.
void ShutdownFonts();
