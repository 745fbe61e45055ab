#include "card/FieldStyles.h"

#include <algorithm>
#include <string>

#include "text/Font.h"
#include "text/Fontmap.h"

namespace {

// The family a run without a face, or with one we don't know, is stored under.
constexpr const char* kFallbackFamily = "System";

bool SameStyle(const TextStyle& a, const TextStyle& b) {
    return a.colour == b.colour && a.font.face == b.font.face && a.font.sizePx == b.font.sizePx &&
           a.font.style == b.font.style;
}

uint16_t FontIdFor(const TextFont& font, const std::vector<StyleRun>& loaded, const std::vector<TextStyle>& shown) {
    // An id the record already uses for the face survives a reload better than a row of the map
    // that the stack may not carry.
    for (size_t i = 0; i < loaded.size(); ++i) {
        if (shown[i].font.face == font.face) return loaded[i].fontId;
    }
    const std::string name = font.face.empty() || !FaceExists(font.face) ? kFallbackFamily : font.face;
    FontEntry entry;
    if (FindFontByName(name, &entry)) return entry.id;
    return AddFont(FontInfo{name}, font.sizePx << 16, 0);
}

StyleRun NewStoredRun(const TextStyle& style, const std::vector<StyleRun>& loaded, const std::vector<TextStyle>& shown) {
    StyleRun run;
    const TextMetrics m = GetTextMetrics(style.font);
    run.lineHeight = static_cast<uint16_t>(m.lineHeight);
    run.ascent = static_cast<uint16_t>(m.ascent);
    run.fontId = FontIdFor(style.font, loaded, shown);
    run.style = style.font.style & (kStyleBold | kStyleItalic | kStyleUnderline);
    run.size = static_cast<uint16_t>(std::clamp(style.font.sizePx, 1, kMaxFontPx));
    // A byte repeated fills the word, so that 255 stays the brightest value.
    run.red = static_cast<uint16_t>(RedOf(style.colour) * 257);
    run.green = static_cast<uint16_t>(GreenOf(style.colour) * 257);
    run.blue = static_cast<uint16_t>(BlueOf(style.colour) * 257);
    return run;
}

}  // namespace

TextStyle StyleOfRun(const StyleRun& run) {
    LogFont logFont;
    FontToLogFont(run.fontId, &logFont, run.size);
    TextStyle style;
    style.font = TextFontFromLogFont(logFont);
    style.font.style |= run.style & (kStyleBold | kStyleItalic | kStyleUnderline);
    // The record keeps 16-bit components; the high byte is the colour.
    style.colour = Rgb(static_cast<uint8_t>(run.red >> 8), static_cast<uint8_t>(run.green >> 8),
                       static_cast<uint8_t>(run.blue >> 8));
    return style;
}

TextAlign AlignOf(int16_t stored) {
    return stored < 0 ? TextAlign::Right : stored > 0 ? TextAlign::Centre : TextAlign::Left;
}

int16_t StoredAlign(TextAlign align) {
    return align == TextAlign::Right ? -1 : align == TextAlign::Centre ? 1 : 0;
}

std::vector<StyleRun> StoredRunsOf(const StyledDocument& document, const std::vector<StyleRun>& loaded) {
    std::vector<TextStyle> shown;
    for (const StyleRun& run : loaded) shown.push_back(StyleOfRun(run));
    std::vector<StyleRun> runs;
    for (size_t i = 0; i < document.runs.size(); ++i) {
        const StyledRun& r = document.runs[i];
        const uint32_t start = runs.empty() ? 0 : static_cast<uint32_t>(r.start);
        if (!runs.empty() && (start <= runs.back().start || start >= document.text.size())) continue;
        size_t match = i < loaded.size() && SameStyle(shown[i], r.style) ? i : loaded.size();
        for (size_t j = 0; j < loaded.size() && match == loaded.size(); ++j) {
            if (SameStyle(shown[j], r.style)) match = j;
        }
        StyleRun run = match < loaded.size() ? loaded[match] : NewStoredRun(r.style, loaded, shown);
        run.start = start;
        runs.push_back(run);
    }
    return runs;
}
