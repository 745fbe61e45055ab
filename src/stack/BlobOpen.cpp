// Stores of other files: the typed records of another stack, or of the samples stack beside the
// program, opened next to the current stack's store.
#include <cctype>
#include <string>

#include "base/ByteOrder.h"
#include "messages/Alert.h"
#include "messages/StringIds.h"
#include "platform/HostFile.h"
#include "platform/HostPath.h"
#include "stack/Blob.h"
#include "stack/BlobStore.h"
#include "stack/PathSlot.h"
#include "stack/StackHeader.h"

namespace {

inline constexpr const char* kSamplesFileName = "Samples.stk";

// A stack file is known by its extension alone, ".stk" in any case: the other kinds of file a slot
// may hold never have records.
bool IsStackFileName(const std::string& path) {
    const size_t dot = path.find_last_of('.');
    const size_t separator = path.find_last_of('\\');
    if (dot == std::string::npos || (separator != std::string::npos && dot < separator)) return false;
    std::string extension = path.substr(dot + 1);
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension == "stk";
}

}  // namespace

uint32_t GetBlobOffset(int slot) {
    const std::string path = SlotHostPath(slot);
    HostFile* file = nullptr;
    if (path.empty() || OpenHostFile(path, FileMode::Read, &file) != 0) return 0;
    uint8_t header[kStackHeaderSize];
    const int32_t result = ReadHostFile(file, header, kStackHeaderSize);
    CloseHostFile(file);
    return result == 0 ? ReadBE32(header + kHdrBlobOffset) : 0;
}

uint32_t OpenOrMakeStore(int slot) {
    const bool otherStack = IsStackFileName(GetSlotPath(slot)) && SlotHostPath(slot) != SlotHostPath(kSlotStack);
    const uint32_t offset = otherStack ? GetBlobOffset(slot) : 0;
    if (offset != 0) return OpenBlobStore(slot, offset, kHdrBlobCount, kHdrNextBlobId);
    // A store in memory only: no table and no file to add to.
    auto* store = new BlobStore;
    store->hostPath = SlotHostPath(slot);
    return LinkStore(store);
}

uint32_t OpenSamplesStore() {
    if (!SetSlotPath(kSlotSamples, DosPathFromHost(HostProgramFolder()) + "\\" + kSamplesFileName) ||
        SlotHostPath(kSlotSamples).empty() || !GetHostFileStatus(SlotHostPath(kSlotSamples)).exists) {
        Alert(kAlertNoSamples);
        return 0;
    }
    return OpenBlobStore(kSlotSamples, GetBlobOffset(kSlotSamples), kHdrBlobCount, kHdrNextBlobId);
}
