// Opens arbitrary bytes as a stack, fetches every record and closes it. It stops on broken promises:
// an opened stack without cards or store, a refusal without an alert, handles left after CloseStack.
#include <unistd.h>

#include <cstdint>
#include <string>

#include "FuzzImage.h"
#include "stack/Blob.h"
#include "stack/Document.h"
#include "stack/StackReader.h"

namespace {

// path: the one input file of this process, written anew for every input; baseline: MemRefs in use
// with no stack open.
struct Harness { std::string path; int16_t baseline = 0; };

[[noreturn]] void Broken(const char* what) { FuzzBroken("fuzz_open", what); }

Harness& GetHarness() {
    static Harness harness = [] {
        Harness h;
        h.path = MakeFuzzInputFile("fuzz_open");
        if (!InitMemRefs()) Broken("InitMemRefs failed");
        // A first, failing read sets up what lives for the whole process (the path slots).
        LoadFault fault;
        ReadStackFile(h.path, &fault);
        CloseStack();
        unlink(h.path.c_str());
        h.baseline = GetMemRefTable().used;
        return h;
    }();
    return harness;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Harness& h = GetHarness();
    WriteFuzzInput("fuzz_open", h.path, data, size);

    LoadFault fault;
    const int32_t code = ReadStackFile(h.path, &fault);
    if (fault.opened && (code != 0 || CardCount() < 1 || GetDocument().storeRef == 0))
        Broken("a stack counts as opened without cards or record store");
    if (!fault.opened && fault.alerts.empty()) Broken("a stack that did not open names no alert");

    for (int32_t i = 1; i <= CardCount(); ++i) FuzzTouch(GetCardByPosition(i));
    const uint32_t store = CurrentBlobStore();
    const uint32_t entries = CountBlobEntries(store);
    for (uint32_t i = 0; i < entries; ++i) {
        BlobEntryInfo entry;
        if (!GetBlobEntry(store, i, &entry)) Broken("a table row below the count cannot be read");
        if (MemRef handle = GetBlobById(entry.type, entry.id)) FuzzTouch(handle);
    }

    CloseStack();
    // libFuzzer leaves with _Exit, past any atexit: the file goes after every input instead.
    unlink(h.path.c_str());
    if (CardCount() != 0) Broken("cards remain after CloseStack");
    if (GetMemRefTable().used != h.baseline) Broken("handle memory left behind after CloseStack");
    return 0;
}
