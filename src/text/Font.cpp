#include "text/Font.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_DRIVER_H
#include FT_MODULE_H
#include FT_SYNTHESIS_H
#include FT_TRUETYPE_TABLES_H

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <memory>
#include <tuple>

#include "base/Windows1252.h"
#include "platform/Host.h"
#include "platform/HostFile.h"
#include "text/Fontmap.h"

namespace {

// The fonts' own hinting, never the auto-hinter (whose results would depend on how FreeType was
// built), and no embedded bitmaps: the outlines give every size.
constexpr FT_Int32 kLoadFlags =
    FT_LOAD_DEFAULT | FT_LOAD_NO_AUTOHINT | FT_LOAD_NO_BITMAP | FT_LOAD_TARGET_NORMAL;
// A stack that uses many sizes closes all faces now and then rather than keep every one open.
constexpr size_t kMaxOpenFaces = 48;
constexpr int32_t kBoldWeight = 600;

struct Glyph {
    bool loaded = false;
    int32_t left = 0;     // from the pen to the bitmap's first column
    int32_t top = 0;      // from the baseline up to the bitmap's first row
    int32_t advance = 0;  // whole pixels
    int32_t width = 0;
    int32_t rows = 0;
    std::vector<uint8_t> coverage;  // width * rows, 0 to 255
};

// One file opened at one size. Text is Windows-1252, so 256 glyphs are all a face can be asked for.
struct SizedFace {
    FT_Face face = nullptr;
    bool slanted = false;
    TextMetrics metrics;
    int32_t cellUnits = 0;     // ascent + descent in font units, for requests by cell height
    int32_t underlineTop = 1;  // rows below the baseline
    int32_t underlineThickness = 1;
    std::array<Glyph, 256> glyphs;
};

using FaceKey = std::tuple<std::string, int32_t, bool>;

struct FontState {
    FT_Library library = nullptr;
    std::map<FaceKey, std::unique_ptr<SizedFace>> faces;  // null: the file could not be opened
    // Each font file read whole, once, for every size opened from it. FreeType reading the file
    // itself seeks and reads it piece by piece, which in the web player means a call out of the
    // wasm for each table.
    std::map<std::string, std::string> files;
};
FontState gFonts;

FT_Library Library() {
    if (gFonts.library) return gFonts.library;
    if (FT_Init_FreeType(&gFonts.library) != 0) {
        gFonts.library = nullptr;
        return nullptr;
    }
    // Pinned rather than left to the build's default, so every host hints alike.
    FT_UInt interpreter = TT_INTERPRETER_VERSION_40;
    FT_Property_Set(gFonts.library, "truetype", "interpreter-version", &interpreter);
    return gFonts.library;
}

void CloseFaces() {
    for (auto& [key, face] : gFonts.faces) {
        if (face && face->face) FT_Done_Face(face->face);
    }
    gFonts.faces.clear();
    gFonts.files.clear();
}

// The bytes of a font file, which stay put while any face opened from them is open; null when
// the file cannot be read.
const std::string* FontFileBytes(const std::string& path) {
    auto found = gFonts.files.find(path);
    if (found != gFonts.files.end()) return &found->second;
    // A host may keep the font files elsewhere until a face is first used.
    GetHost().FetchFile(path);
    std::string bytes;
    if (ReadWholeHostFile(path, &bytes) != 0 || bytes.empty()) return nullptr;
    return &gFonts.files.emplace(path, std::move(bytes)).first->second;
}

int32_t ScaleUnits(int64_t units, int32_t px, int32_t unitsPerEm) {
    if (unitsPerEm <= 0) return 0;
    return static_cast<int32_t>((units * px + unitsPerEm / 2) / unitsPerEm);
}

std::unique_ptr<SizedFace> OpenFace(const FontFile& file, int32_t px) {
    FT_Library library = Library();
    if (!library) return nullptr;
    const std::string* bytes = FontFileBytes(file.path);
    if (!bytes) return nullptr;
    auto sized = std::make_unique<SizedFace>();
    if (FT_New_Memory_Face(library, reinterpret_cast<const FT_Byte*>(bytes->data()),
                           static_cast<FT_Long>(bytes->size()), 0, &sized->face) != 0)
        return nullptr;
    FT_Face face = sized->face;
    if (FT_Select_Charmap(face, FT_ENCODING_UNICODE) != 0 ||
        FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(px)) != 0) {
        FT_Done_Face(face);
        return nullptr;
    }
    sized->slanted = file.slanted;
    // The cell is the one the system's font service reports: the Windows ascent and descent.
    const int32_t upem = face->units_per_EM;
    const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    const int32_t ascentUnits = os2 ? os2->usWinAscent : face->ascender;
    const int32_t descentUnits = os2 ? os2->usWinDescent : -face->descender;
    sized->cellUnits = ascentUnits + descentUnits;
    TextMetrics& m = sized->metrics;
    m.ascent = ScaleUnits(ascentUnits, px, upem);
    m.descent = ScaleUnits(descentUnits, px, upem);
    m.lineHeight = m.ascent + m.descent;
    sized->underlineThickness = std::max(1, ScaleUnits(face->underline_thickness, px, upem));
    const int32_t centre = ScaleUnits(-face->underline_position, px, upem);
    sized->underlineTop = std::clamp(centre - sized->underlineThickness / 2, 1,
                                     std::max(1, m.descent - sized->underlineThickness));
    return sized;
}

SizedFace* FaceFor(const TextFont& font) {
    const int32_t px = std::clamp(font.sizePx, 1, kMaxFontPx);
    FontFile file =
        FontFileFor(font.face, (font.style & kStyleBold) != 0, (font.style & kStyleItalic) != 0);
    FaceKey key{file.path, px, file.slanted};
    auto found = gFonts.faces.find(key);
    if (found != gFonts.faces.end()) return found->second.get();
    if (gFonts.faces.size() >= kMaxOpenFaces) CloseFaces();
    auto sized = OpenFace(file, px);
    SizedFace* result = sized.get();
    gFonts.faces.emplace(std::move(key), std::move(sized));
    return result;
}

const Glyph& GlyphFor(SizedFace& sized, uint8_t byte) {
    Glyph& g = sized.glyphs[byte];
    if (g.loaded) return g;
    g.loaded = true;
    if (byte < 0x20) return g;
    FT_Face face = sized.face;
    const FT_UInt index = FT_Get_Char_Index(face, CodePointFromWindows1252(byte));
    if (FT_Load_Glyph(face, index, kLoadFlags) != 0) return g;
    FT_GlyphSlot slot = face->glyph;
    if (sized.slanted) FT_GlyphSlot_Oblique(slot);
    if (FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL) != 0) return g;
    g.advance = static_cast<int32_t>((slot->advance.x + 32) >> 6);
    const FT_Bitmap& bitmap = slot->bitmap;
    if (bitmap.pixel_mode != FT_PIXEL_MODE_GRAY || bitmap.width == 0 || bitmap.rows == 0) return g;
    g.left = slot->bitmap_left;
    g.top = slot->bitmap_top;
    g.width = static_cast<int32_t>(bitmap.width);
    g.rows = static_cast<int32_t>(bitmap.rows);
    g.coverage.resize(static_cast<size_t>(g.width) * g.rows);
    const int32_t stride = bitmap.pitch < 0 ? -bitmap.pitch : bitmap.pitch;
    for (int32_t r = 0; r < g.rows; ++r) {
        const int32_t sourceRow = bitmap.pitch < 0 ? g.rows - 1 - r : r;
        std::memcpy(g.coverage.data() + static_cast<size_t>(r) * g.width,
                    bitmap.buffer + static_cast<size_t>(sourceRow) * stride,
                    static_cast<size_t>(g.width));
    }
    return g;
}

int32_t Advance(SizedFace* sized, char c) {
    return sized ? GlyphFor(*sized, static_cast<uint8_t>(c)).advance : 0;
}

uint32_t Blend(uint32_t under, uint32_t colour, uint32_t coverage) {
    const auto mix = [coverage](uint32_t d, uint32_t s) {
        return (d * (255 - coverage) + s * coverage + 127) / 255;
    };
    return mix(RedOf(under), RedOf(colour)) << 16 | mix(GreenOf(under), GreenOf(colour)) << 8 |
           mix(BlueOf(under), BlueOf(colour));
}

void BlitGlyph(Surface& surface, const Glyph& g, int32_t originX, int32_t originY, uint32_t colour,
               const Rect& clip) {
    const int32_t x0 = std::max(originX, clip.left), x1 = std::min(originX + g.width, clip.right);
    const int32_t y0 = std::max(originY, clip.top), y1 = std::min(originY + g.rows, clip.bottom);
    for (int32_t y = y0; y < y1; ++y) {
        const uint8_t* cover = g.coverage.data() + static_cast<size_t>(y - originY) * g.width;
        uint32_t* row = surface.Row(y);
        for (int32_t x = x0; x < x1; ++x) {
            const uint32_t a = cover[x - originX];
            if (a == 255) {
                row[x] = colour;
            } else if (a != 0) {
                row[x] = Blend(row[x], colour, a);
            }
        }
    }
}

void FillSpan(Surface& surface, Rect span, uint32_t colour, const Rect& clip) {
    span = IntersectRect(span, clip);
    for (int32_t y = span.top; y < span.bottom; ++y)
        std::fill(surface.Row(y) + span.left, surface.Row(y) + span.right, colour);
}

// One paragraph (no line breaks in it) into lines of at most `maxWidth`, broken at spaces.
void WrapParagraph(SizedFace* sized, std::string_view text, size_t start, size_t end,
                   int32_t maxWidth, std::vector<TextLine>& lines) {
    size_t lineStart = start;
    for (;;) {
        int32_t width = 0;
        size_t breakAt = std::string_view::npos;  // end of the line's last word before a space
        int32_t widthAtBreak = 0;
        size_t k = lineStart;
        for (; k < end; ++k) {
            const bool space = text[k] == ' ';
            if (space && k > lineStart && text[k - 1] != ' ') {
                breakAt = k;
                widthAtBreak = width;
            }
            const int32_t advance = Advance(sized, text[k]);
            // Spaces hang past the edge; only a visible character makes a line too wide.
            if (!space && width + advance > maxWidth) break;
            width += advance;
        }
        if (k == end) {
            lines.push_back({lineStart, end - lineStart, width});
            return;
        }
        size_t next;
        if (breakAt != std::string_view::npos) {
            lines.push_back({lineStart, breakAt - lineStart, widthAtBreak});
            next = breakAt;
        } else {
            for (; k < end && text[k] != ' '; ++k) width += Advance(sized, text[k]);
            lines.push_back({lineStart, k - lineStart, width});
            next = k;
        }
        while (next < end && text[next] == ' ') ++next;
        if (next >= end) return;
        lineStart = next;
    }
}

}  // namespace

TextFont TextFontFromLogFont(const LogFont& logFont) {
    TextFont font;
    const char* faceEnd =
        std::find(logFont.faceName, logFont.faceName + sizeof logFont.faceName, '\0');
    if (faceEnd != logFont.faceName) font.face.assign(logFont.faceName, faceEnd);
    if (logFont.weight >= kBoldWeight) font.style |= kStyleBold;
    if (logFont.italic) font.style |= kStyleItalic;
    if (logFont.underline) font.style |= kStyleUnderline;
    if (logFont.height < 0) {
        font.sizePx = static_cast<int32_t>(
            std::min(-static_cast<int64_t>(logFont.height), int64_t{kMaxFontPx}));
    } else if (logFont.height > 0) {
        // The cell holds the em and the face's room above and below it.
        TextFont probe = font;
        probe.sizePx = kDefaultFontPx;
        SizedFace* sized = FaceFor(probe);
        if (sized && sized->cellUnits > 0) {
            const int64_t cell = std::min<int64_t>(logFont.height, kMaxFontPx * 4);
            const int64_t em =
                (cell * sized->face->units_per_EM + sized->cellUnits / 2) / sized->cellUnits;
            font.sizePx = static_cast<int32_t>(std::clamp<int64_t>(em, 1, kMaxFontPx));
        } else {
            font.sizePx = std::min(logFont.height, kMaxFontPx);
        }
    }
    return font;
}

bool FontAvailable(const TextFont& font) {
    return FaceFor(font) != nullptr;
}

TextMetrics GetTextMetrics(const TextFont& font) {
    const SizedFace* sized = FaceFor(font);
    return sized ? sized->metrics : TextMetrics{};
}

int32_t MeasureText(const TextFont& font, std::string_view text) {
    SizedFace* sized = FaceFor(font);
    int32_t width = 0;
    for (char c : text) width += Advance(sized, c);
    return width;
}

void DrawText(Surface& surface, const TextFont& font, int32_t x, int32_t baselineY,
              std::string_view text, uint32_t colour, const Rect& clip) {
    SizedFace* sized = FaceFor(font);
    const Rect bounds = IntersectRect(clip, surface.Bounds());
    if (!sized || bounds.IsEmpty()) return;
    int32_t pen = x;
    for (char c : text) {
        const Glyph& g = GlyphFor(*sized, static_cast<uint8_t>(c));
        if (!g.coverage.empty())
            BlitGlyph(surface, g, pen + g.left, baselineY - g.top, colour, bounds);
        pen += g.advance;
    }
    if (font.style & kStyleUnderline) {
        const int32_t top = baselineY + sized->underlineTop;
        FillSpan(surface, {x, top, pen, top + sized->underlineThickness}, colour, bounds);
    }
}

std::vector<TextLine> LayOutText(const TextFont& font, std::string_view text, int32_t maxWidth,
                                 bool wrap) {
    std::vector<TextLine> lines;
    if (text.empty()) return lines;
    SizedFace* sized = FaceFor(font);
    size_t start = 0;
    for (;;) {
        size_t end = start;
        while (end < text.size() && text[end] != '\r' && text[end] != '\n') ++end;
        if (wrap) {
            WrapParagraph(sized, text, start, end, maxWidth, lines);
        } else {
            int32_t width = 0;
            for (size_t k = start; k < end; ++k) width += Advance(sized, text[k]);
            lines.push_back({start, end - start, width});
        }
        if (end == text.size()) return lines;
        start = end + (text[end] == '\r' && end + 1 < text.size() && text[end + 1] == '\n' ? 2 : 1);
    }
}

int32_t DrawTextBox(Surface& surface, const TextFont& font, const Rect& box, std::string_view text,
                    uint32_t colour, TextAlign align, bool wrap) {
    const std::vector<TextLine> lines = LayOutText(font, text, box.Width(), wrap);
    const TextMetrics m = GetTextMetrics(font);
    int32_t top = box.top;
    for (const TextLine& line : lines) {
        if (top >= box.bottom) break;
        int32_t x = box.left;
        if (align == TextAlign::Centre) x += (box.Width() - line.width) / 2;
        if (align == TextAlign::Right) x = box.right - line.width;
        DrawText(surface, font, x, top + m.ascent, text.substr(line.start, line.length), colour,
                 box);
        top += m.lineHeight;
    }
    return static_cast<int32_t>(lines.size()) * m.lineHeight;
}

void ShutdownFonts() {
    CloseFaces();
    if (gFonts.library) FT_Done_FreeType(gFonts.library);
    gFonts.library = nullptr;
}
