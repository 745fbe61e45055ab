// How fast is a long field? A card with one field of 10,000 words (600 x 440 pixels, a scroll bar),
// built by our own builder and opened as the player opens it:
//   - laying the whole text out and drawing it onto a 640 x 480 surface;
//   - one keystroke in the middle of the text, from the typed character to the pixels presented
//     on the headless window (the edit, the re-layout of its paragraph, the repaint of the field).
// Each as a ratio to memcpy of one 32-bit 640 x 480 frame in the same run. Target for the
// keystroke: <= 60x.
#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include "Commands.h"
#include "FrameMemcpy.h"
#include "OpenForCommand.h"
#include "RatioReporter.h"
#include "card/DisplayList.h"
#include "card/FieldEdit.h"
#include "card/FieldSelection.h"
#include "card/OffscreenCard.h"
#include "gfx/Palette.h"
#include "platform/headless/HeadlessHost.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"

namespace {

inline constexpr int32_t kWidth = kFrameWidth;
inline constexpr int32_t kHeight = kFrameHeight;
inline constexpr int kWords = 10000;

// Words of varied length in paragraphs of about a hundred words.
std::string LongText() {
    static const char* const kWordList[] = {"the", "garden", "of", "quiet", "afternoons", "where", "a",
                                            "stack", "tells", "its", "story", "slowly", "and", "well"};
    std::string text;
    for (int i = 0; i < kWords; ++i) {
        text += kWordList[(i * 7 + i / 13) % 14];
        text += (i % 100 == 99) ? "\n" : " ";
    }
    return text;
}

std::string BuildStack(const std::string& folder) {
    const nlohmann::json field = {{"kind", 96},
                                  {"id", 1},
                                  {"rect", {20, 20, 620, 460}},
                                  {"fields", {{"26", 0x102}}},  // a frame and a scroll bar
                                  {"text", LongText()},
                                  {"runs", {{{"start", 0}, {"font", 0}, {"size", 12}}}}};
    const nlohmann::json stack = {{"version", 5},
                                  {"depth", 32},
                                  {"cardWidth", kWidth},
                                  {"cardHeight", kHeight},
                                  {"cards", {{{"id", 1}, {"kind", 0}, {"items", {field}}}}}};
    std::ofstream(folder + "/field.json") << stack.dump(1);
    const std::string stackPath = folder + "/field.stk";
    return RunBuild(folder + "/field.json", stackPath) == 0 ? stackPath : std::string{};
}

DisplayItem* TheField() {
    for (DisplayItem* item = DisplayListHead(); item; item = item->next.get()) {
        if (item->type == kItemKindText) return item;
    }
    return nullptr;
}

void BM_LayOutAndDraw(benchmark::State& state) {
    DisplayItem& field = *TheField();
    const uint32_t colors[kPaletteSize] = {};
    Surface target{kWidth, kHeight};
    for (auto _ : state) {
        field.layout = LayOutDocument(field.document, field.textArea.right - field.textArea.left);
        DrawTextField(target, Clip(target.Bounds()), field, colors);
        benchmark::DoNotOptimize(target.pixels.data());
    }
}

// A character typed in the middle, then taken back, in turn: each iteration is one keystroke.
void BM_Keystroke(benchmark::State& state) {
    DisplayItem& field = *TheField();
    const size_t middle = field.document.text.size() / 2;
    SelectInField(field, middle, middle);
    bool typed = false;
    for (auto _ : state) {
        FieldKey(typed ? 8 : 'x');
        typed = !typed;
        benchmark::DoNotOptimize(GetHeadlessState().screen.pixels.data());
    }
}

BENCHMARK(BM_Memcpy);
BENCHMARK(BM_LayOutAndDraw);
BENCHMARK(BM_Keystroke);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    SetHost(HeadlessHost());
    char folder[] = "/tmp/qb-field-bench-XXXXXX";
    if (!mkdtemp(folder)) return 1;
    const std::string stack = BuildStack(folder);
    if (stack.empty() || !OpenStackForCommand(stack)) return 1;
    SetHeadlessWindowSize(kWidth, kHeight);
    InitDataBase(kWidth, kHeight, DisplayDepth(), true);
    DrawCard(GetDocument().currentCard, 0, 0, false);
    if (!TheField()) return 1;

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    const double memcpyMs = reporter.bestMs["BM_Memcpy"];
    if (memcpyMs > 0) {
        const double layout = reporter.bestMs["BM_LayOutAndDraw"], key = reporter.bestMs["BM_Keystroke"];
        std::printf("\nA field of %d words: layout and draw %.2f ms, %.1fx memcpy of a frame; one keystroke to "
                    "the pixels presented %.3f ms, %.1fx (target <= 60x); memcpy %.3f ms\n",
                    kWords, layout, layout / memcpyMs, key, key / memcpyMs, memcpyMs);
    }
    for (const char* name : {"field.json", "field.stk"}) std::remove((std::string(folder) + "/" + name).c_str());
    rmdir(folder);
    return reporter.failed ? 1 : 0;
}
