// The language's reader on arbitrary text: a line is read and printed back as SHOW prints it, then
// collected; neither may read or write outside what it was given.
#include <cstdint>
#include <string>

#include "FuzzImage.h"
#include "logo/NodeHeap.h"
#include "logo/Printer.h"
#include "logo/Reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 4096) return 0;
    if (!IsNodeHeapReady() && !InitNodeHeap()) FuzzBroken("fuzz_logo_reader", "no heap");
    SetNodeBlockLimit(64);
    const std::string text(reinterpret_cast<const char*>(data), size);
    Node* line = ParseLine(text);
    if (line) {
        PinValue(line);
        if (PrintText(line, true).size() > 64 * size + 64) FuzzBroken("fuzz_logo_reader", "the print grew past its text");
        UnpinValue(line);
    }
    Recycle();
    return 0;
}
