// `quillbrook render`: cards drawn headless, exactly as the player's window shows them, as PNG;
// `--all` shows its progress on a terminal.
//
// Each card is drawn by the same card change the player makes (composed offscreen, then put on the
// window by its transition) and the window's presented pixels are written. A card is drawn as
// itself: its arrive actions don't run, so a card that would move on at once still renders.
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "CardWindow.h"
#include "Commands.h"
#include "OpenForCommand.h"
#include "Progress.h"
#include "base/ByteOrder.h"
#include "base/Windows1252.h"
#include "card/OffscreenCard.h"
#include "gfx/Palette.h"
#include "platform/Host.h"
#include "platform/headless/HeadlessHost.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "text/Font.h"
#include "transitions/Transition.h"

namespace {

namespace fs = std::filesystem;

std::string CardName(MemRef card) {
    MemRefLock lock(card);
    const uint8_t* name = lock.data() + kCardName;
    const size_t length = std::min<size_t>(name[0], 15);
    return std::string(reinterpret_cast<const char*>(name + 1), length);
}

// A file name keeps letters, digits, '-' and '_' of the card's name.
std::string FileNamePart(const std::string& name) {
    std::string out;
    for (char c : name) {
        const bool keep = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                          c == '-' || c == '_';
        out += keep ? c : (c == ' ' && !out.empty() && out.back() != '-' ? '-' : '\0');
    }
    out.erase(std::remove(out.begin(), out.end(), '\0'), out.end());
    while (!out.empty() && out.back() == '-') out.pop_back();
    return out;
}

// Makes the card at `position` current and shows it with `effect`; what reached the screen is in
// the headless state's screen afterwards.
void ShowCard(int32_t position, int16_t effect, int16_t speed) {
    Document& doc = GetDocument();
    MemRef card = GetCardByPosition(position);
    doc.currentCard = card;
    {
        MemRefLock lock(card);
        doc.currentCardId = ReadS16(lock.data() + kCardId);
    }
    DrawCard(card, effect, speed, false);
}

// The window takes the card's size, as the player's does.
void SizeWindowToCard() {
    const Document& doc = GetDocument();
    SetHeadlessWindowSize(doc.cardWidth, doc.cardHeight);
    InitDataBase(doc.cardWidth, doc.cardHeight, DisplayDepth(), true);
}

Surface Screen() { return GetHeadlessState().screen; }

// Every card at half size in a grid, each with its number and name beneath it.
Surface ContactSheet(const std::vector<Surface>& cards, const std::vector<std::string>& names) {
    constexpr int32_t kColumns = 4, kGap = 12, kLabel = 18;
    const int32_t cellW = (cards[0].width + 1) / 2, cellH = (cards[0].height + 1) / 2;
    const int32_t columns = std::min<int32_t>(kColumns, static_cast<int32_t>(cards.size()));
    const int32_t rows = (static_cast<int32_t>(cards.size()) + columns - 1) / columns;
    Surface sheet(kGap + columns * (cellW + kGap), kGap + rows * (cellH + kLabel + kGap), Rgb(224, 224, 224));
    TextFont font;
    font.sizePx = 11;
    const TextMetrics metrics = GetTextMetrics(font);
    for (size_t i = 0; i < cards.size(); ++i) {
        const int32_t x = kGap + static_cast<int32_t>(i % columns) * (cellW + kGap);
        const int32_t y = kGap + static_cast<int32_t>(i / columns) * (cellH + kLabel + kGap);
        const Surface& card = cards[i];
        for (int32_t row = 0; row < cellH; ++row) {
            for (int32_t col = 0; col < cellW; ++col) {
                const int32_t sx = std::min(col * 2, card.width - 1), sy = std::min(row * 2, card.height - 1);
                sheet.Row(y + row)[x + col] = card.Row(sy)[sx];
            }
        }
        const std::string label = fmt::format("{} {}", i + 1, names[i]);
        DrawText(sheet, font, x, y + cellH + 3 + metrics.ascent, label, kBlack,
                 Rect{x, y + cellH, x + cellW, y + cellH + kLabel});
    }
    return sheet;
}

// The card on the screen into `file`; a failure names the stack and the card.
bool WriteCard(const RenderOptions& options, int32_t position, const std::string& file) {
    if (WriteSurfacePng(file, Screen())) return true;
    fmt::print(stderr, "{}: card {} \"{}\" was not rendered\n", options.path, position,
               Utf8FromWindows1252(CardName(GetCardByPosition(position))));
    return false;
}

int RenderAll(const RenderOptions& options) {
    std::error_code error;
    fs::create_directories(options.output, error);
    if (error) {
        fmt::print(stderr, "{}: {}\n", options.output, error.message());
        return 1;
    }
    std::vector<Surface> cards;
    std::vector<std::string> names;
    const Progress progress(static_cast<size_t>(CardCount()));
    for (int32_t position = 1; position <= CardCount(); ++position) {
        const std::string name = CardName(GetCardByPosition(position));
        progress.Show(static_cast<size_t>(position - 1), Utf8FromWindows1252(name));
        ShowCard(position, kTransitionFastest, 8);
        const std::string part = FileNamePart(Utf8FromWindows1252(name));
        const std::string file =
            (fs::path(options.output) / fmt::format("{:03}{}{}.png", position, part.empty() ? "" : "-", part)).string();
        if (!WriteCard(options, position, file)) {
            progress.Clear();
            return 1;
        }
        cards.push_back(Screen());
        names.push_back(name);
    }
    progress.Clear();
    if (options.contactSheet && !cards.empty() &&
        !WriteSurfacePng((fs::path(options.output) / "contact-sheet.png").string(), ContactSheet(cards, names))) {
        return 1;
    }
    fmt::print("{} cards written to {}\n", cards.size(), options.output);
    return 0;
}

// Every frame the transition presents, as the screen stood after it.
struct FrameWriter {
    std::string folder;
    int count = 0;
    bool failed = false;
};
FrameWriter* gFrames = nullptr;
void (*gPresent)(const Rect&) = nullptr;

void PresentAndKeep(const Rect& dirty) {
    gPresent(dirty);
    const std::string file = (fs::path(gFrames->folder) / fmt::format("frame-{:04}.png", gFrames->count++)).string();
    if (!WriteSurfacePng(file, Screen())) gFrames->failed = true;
}

int RenderTransition(const RenderOptions& options) {
    if (options.toCard < 1 || options.toCard > CardCount()) {
        fmt::print(stderr, "{}: no card {} (the stack has {})\n", options.path, options.toCard, CardCount());
        return 2;
    }
    std::error_code error;
    fs::create_directories(options.framesDir, error);
    if (error) {
        fmt::print(stderr, "{}: {}\n", options.framesDir, error.message());
        return 1;
    }
    ShowCard(options.card, kTransitionFastest, 8);
    FrameWriter frames{options.framesDir};
    Host host = GetHost();
    gPresent = host.Present;
    gFrames = &frames;
    host.Present = PresentAndKeep;
    SetHost(host);
    const uint32_t start = GetHost().GetTickCount();
    ShowCard(options.toCard, static_cast<int16_t>(options.transition), static_cast<int16_t>(options.speed));
    host.Present = gPresent;
    SetHost(host);
    if (frames.failed) return 1;
    fmt::print("{} frames over {} ms written to {}\n", frames.count, GetHost().GetTickCount() - start,
               options.framesDir);
    return options.output.empty() || WriteSurfacePng(options.output, Screen()) ? 0 : 1;
}

}  // namespace

int RunRender(const RenderOptions& options) {
    if (options.depth) ForceDisplayDepth(options.depth);
    if (!OpenStackForCommand(options.path)) return 1;
    SizeWindowToCard();
    if (options.all) return RenderAll(options);
    if (options.card < 1 || options.card > CardCount()) {
        fmt::print(stderr, "{}: no card {} (the stack has {})\n", options.path, options.card, CardCount());
        return 2;
    }
    if (options.toCard) return RenderTransition(options);
    ShowCard(options.card, kTransitionFastest, 8);
    return WriteCard(options, options.card, options.output) ? 0 : 1;
}
