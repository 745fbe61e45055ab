// Arbitrary bytes as a field's text sub-record, read in both character sets: what reads must write
// back and read the same, and its text must lay out, hit test and scroll within its lines.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "text/StyledText.h"
#include "text/TextRecord.h"

namespace {

[[noreturn]] void Broken(const char* what) {
    std::fprintf(stderr, "fuzz_text_record: %s\n", what);
    std::abort();
}

void CheckLayout(const TextRecord& record, int32_t width) {
    StyledDocument document;
    document.text = record.text;
    for (const StyleRun& run : record.runs) {
        TextStyle style;
        style.font = TextFont{"Arial", 6 + run.size % 40, static_cast<uint8_t>(run.style & 7)};
        document.runs.push_back({run.start, style});
    }
    const TextLayout layout = LayOutDocument(document, width);
    if (layout.lines.empty()) Broken("no line");
    size_t expected = 0;
    for (const LaidLine& line : layout.lines) {
        if (line.start != expected || line.visibleEnd < line.start || line.end < line.visibleEnd) Broken("lines out of order");
        expected = line.end;
    }
    if (expected != document.text.size()) Broken("lines don't cover the text");
    if (CharacterAt(document, layout, width / 2, layout.height / 2) > document.text.size()) Broken("a hit past the text");
    const int32_t limit = ScrollLimit(layout, 40);
    if (limit < 0 || limit > layout.height) Broken("a scroll limit outside the text");
    if (ScrollByPage(layout, limit, true, 40) != limit) Broken("a page past the limit");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 4096) return 0;
    for (const bool mac : {false, true}) {
        TextRecord record;
        if (ReadTextRecord(data, static_cast<uint32_t>(size), mac, &record) != 0) continue;
        for (size_t i = 0; i < record.runs.size(); ++i) {
            const size_t start = record.runs[i].start;
            if ((i == 0 && start != 0) || (i > 0 && (start <= record.runs[i - 1].start || start >= record.text.size())))
                Broken("runs out of order");
        }
        const std::vector<uint8_t> written = MakeTextRecord(record, mac);
        TextRecord again;
        if (ReadTextRecord(written.data(), static_cast<uint32_t>(written.size()), mac, &again) != 0) Broken("unreadable");
        // A byte the Macintosh set has no place for is kept as it is, so it may read back mapped.
        if (!mac && (again.text != record.text || !(again.runs == record.runs))) Broken("not the same text back");
        if (again.runs.size() != record.runs.size()) Broken("runs lost on the way back");
        CheckLayout(record, 20 + (size > 0 ? data[size - 1] : 0));
    }
    return 0;
}
