// `quillbrook info` and `quillbrook validate`.
#include <fmt/format.h>

#include <cstdio>

#include "Commands.h"
#include "StackInfo.h"
#include "messages/Alert.h"
#include "stack/Blob.h"
#include "stack/Document.h"
#include "stack/StackHeader.h"
#include "stack/StackReader.h"

namespace {

void PrintFault(const std::string& path, const LoadFault& fault) {
    for (int alert : fault.alerts) {
        fmt::print(stderr, "{}: alert {}: \"{}\"\n", path, alert, AlertMessageText(alert));
    }
    fmt::print(stderr, "{}: at file offset {}: {}\n", path, fault.offset, fault.detail);
}

void PrintSummary(const nlohmann::ordered_json& j) {
    fmt::print("version {}, depth {}, cards {}x{}, {} cards, {} records (area at {}), nextBlobId {}\n",
               j["version"].get<int>(), j["depth"].get<int>(), j["cardWidth"].get<int>(),
               j["cardHeight"].get<int>(), j["cardCount"].get<int>(), j["blobCount"].get<uint32_t>(),
               j["blobOffset"].get<uint32_t>(), j["nextBlobId"].get<uint32_t>());
    int position = 0;
    for (const auto& card : j["cards"]) {
        fmt::print("card {} id {} kind {} \"{}\" owner {} actions {}/{}/{}, {} items\n", ++position,
                   card["id"].get<int>(), card["kind"].get<int>(), card["name"].get<std::string>(),
                   card["ownerId"].get<int>(), card["arriveAction"].get<int>(),
                   card["leaveAction"].get<int>(), card["clickAction"].get<int>(), card["items"].size());
        for (const auto& item : card["items"]) {
            const auto& r = item["rect"];
            fmt::print("  item {} kind {} \"{}\" [{}, {}, {}, {}]", item["id"].get<int>(),
                       item["kind"].get<int>(), item.value("name", ""), r[0].get<int>(), r[1].get<int>(),
                       r[2].get<int>(), r[3].get<int>());
            // A field shows the first line of its text.
            const std::string text = item.value("text", "");
            if (item.contains("text")) fmt::print(" text \"{}\"", text.substr(0, text.find('\r')));
            fmt::print("\n");
        }
    }
    for (const auto& record : j["records"]) {
        fmt::print("record '{}' {} \"{}\" {} bytes{}\n", record["type"].get<std::string>(),
                   record["id"].get<int>(), record["name"].get<std::string>(),
                   record["size"].get<uint32_t>(), record["deleted"].get<bool>() ? " (deleted)" : "");
    }
}

// Reads the stack for a command that only looks at it; false, having said what an open would show,
// when it cannot be used.
bool ReadForLooking(const std::string& path, LoadFault* fault) {
    ReadStackFile(path, fault);
    if (fault->opened) return true;
    PrintFault(path, *fault);
    CloseStack();
    return false;
}

}  // namespace

int RunInfo(const std::string& path, bool json) {
    LoadFault fault;
    if (!ReadForLooking(path, &fault)) return 1;
    const nlohmann::ordered_json description = DescribeOpenStack();
    if (json) {
        fmt::print("{}\n", description.dump(1));
    } else {
        PrintSummary(description);
    }
    CloseStack();
    return 0;
}

int RunValidate(const std::string& path) {
    LoadFault fault;
    if (!ReadForLooking(path, &fault)) return 1;
    // Records are read on demand; a damaged one would fail only when used, so fetch them all now.
    int damaged = 0;
    const uint32_t store = GetDocument().storeRef;
    for (uint32_t i = 0; i < CountBlobEntries(store); ++i) {
        BlobEntryInfo e;
        GetBlobEntry(store, i, &e);
        if (!(e.flags & kBlobDeleted) && GetBlobById(e.type, e.id) == 0) {
            fmt::print(stderr, "{}: at file offset {}: record '{}' {} cannot be read\n", path, e.position,
                       FourCCText(e.type), e.id);
            ++damaged;
        }
    }
    if (fault.askMinimumSize) {
        SetAlertNumbers(kMinCardSide, kMinCardSide);
        fmt::print("{}: note: \"{}\"\n", path, AlertMessageText(2334));
    }
    if (damaged == 0) fmt::print("{}: ok, {} cards, {} records\n", path, CardCount(), CountBlobEntries(store));
    CloseStack();
    return damaged ? 1 : 0;
}
