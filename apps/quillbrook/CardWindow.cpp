#include "CardWindow.h"

#include <fmt/format.h>

#include <cstdio>
#include <vector>

#include "PngFile.h"
#include "card/OffscreenCard.h"
#include "platform/Host.h"
#include "stack/Document.h"

void FitWindowToCard() {
    const Host& host = GetHost();
    Surface* window = host.GetWindowSurface();
    const Document& doc = GetDocument();
    if (!window || doc.cardWidth <= 0 || doc.cardHeight <= 0) return;
    if (window->width == doc.cardWidth && window->height == doc.cardHeight) return;
    // The surface keeps its address; the host follows its new size at the next present.
    *window = Surface(doc.cardWidth, doc.cardHeight);
    RepaintRect(0, 0, doc.cardWidth, doc.cardHeight);
}

bool WriteSurfacePng(const std::string& path, const Surface& surface) {
    std::vector<uint8_t> rgba(surface.pixels.size() * 4);
    for (size_t i = 0; i < surface.pixels.size(); ++i) {
        rgba[i * 4] = RedOf(surface.pixels[i]);
        rgba[i * 4 + 1] = GreenOf(surface.pixels[i]);
        rgba[i * 4 + 2] = BlueOf(surface.pixels[i]);
        rgba[i * 4 + 3] = 255;
    }
    if (WritePng(path, surface.width, surface.height, rgba)) return true;
    fmt::print(stderr, "{}: could not write\n", path);
    return false;
}
