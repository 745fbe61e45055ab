// The save: the header and the cards written through the staging buffer, the typed records placed
// behind them, in place or through a temporary file. With the temporary file the old file is only
// ever read: the records are compacted inside the temporary file, which is then renamed over the
// target, so a failure at any step leaves the old file as it was.
#include <fmt/format.h>

#include <cstring>

#include "base/ByteOrder.h"
#include "messages/Alert.h"
#include "messages/StringIds.h"
#include "platform/Host.h"
#include "platform/HostFile.h"
#include "stack/Blob.h"
#include "stack/Document.h"
#include "stack/Normalise.h"
#include "stack/PathSlot.h"
#include "stack/RecordWriter.h"
#include "stack/StackFiles.h"
#include "stack/StackHeader.h"

namespace {

inline constexpr int64_t kFreeSpaceMargin = 2048;

std::string FolderOf(const std::string& hostPath) {
    const size_t slash = hostPath.find_last_of('/');
    return slash == std::string::npos ? "." : hostPath.substr(0, slash == 0 ? 1 : slash);
}

// The folder is writable if a file can be made in it and taken away again.
bool FolderIsWritable(const std::string& folder) {
    const std::string trial = TemporarySaveName(folder);
    HostFile* file = nullptr;
    if (OpenHostFile(trial, FileMode::Create, &file) != 0) return false;
    CloseHostFile(file);
    DeleteHostFile(trial);
    return true;
}

struct SaveSizes {
    uint64_t total = 0;      // the whole file
    uint32_t newOffset = 0;  // the end of the cards: where the records go
};

SaveSizes MeasureSave(uint32_t store) {
    SaveSizes sizes;
    uint64_t cards = kStackHeaderSize;
    for (int32_t i = 1; i <= CardCount(); ++i) cards += GetMemRefSize(GetCardByPosition(i));
    sizes.newOffset = static_cast<uint32_t>(cards);
    sizes.total = cards + TotalBlobBytes(store);
    return sizes;
}

// Header and cards from offset 0. The live header gets the counts the file now holds.
int32_t WriteHeaderAndCards(HostFile* out, StagingBuffer& buffer, uint32_t store, uint32_t newOffset) {
    uint8_t header[kStackHeaderSize];
    {
        MemRefLock lock(GetDocument().stackHeader);
        uint8_t* h = lock.data();
        Write16(h + kHdrCardCount, static_cast<uint16_t>(CardCount()));
        Write32(h + kHdrBlobOffset, newOffset);
        Write32(h + kHdrBlobCount, store ? CountBlobEntries(store) : 0);
        // The full save writes the store's 16-bit id as a 32-bit number: the open reads the high
        // half back, and the allocator's scan copes with that.
        Write32(h + kHdrNextBlobId, store ? BlobNextId(store) : 1);
        if (IsWhiteFirstStack()) Write16(h + kHdrStackFlags, Read16(h + kHdrStackFlags) | kStackFlagWhiteFirst);
        std::memcpy(header, h, kStackHeaderSize);
    }
    SwapHeader(header);
    int32_t result = SeekHostFile(out, 0);
    if (result == 0) result = WriteBuffered(buffer, header, kStackHeaderSize);
    for (int32_t i = 1; result == 0 && i <= CardCount(); ++i) result = WriteCardRecord(buffer, GetCardByPosition(i));
    if (result == 0) result = FlushBuffered(buffer);
    return result;
}

int32_t CopyRecords(uint32_t store, HostFile* out, uint32_t newOffset, StagingBuffer& buffer) {
    if (!store || CountBlobEntries(store) == 0) return 0;
    HostFile* source = nullptr;
    int32_t result = OpenHostFile(BlobStorePath(store), FileMode::Read, &source);
    if (result == 0) result = CopyBlobArea(store, source, out, newOffset, buffer);
    CloseHostFile(source);
    return result;
}

// Through a temporary file beside the target: records copied, header and cards written, records
// compacted there, and the file renamed over the target. Nothing touches the target before that.
int32_t SaveThroughTemporary(const std::string& target, uint32_t store, const SaveSizes& sizes,
                             StagingBuffer& buffer) {
    const std::string temporary = TemporarySaveName(FolderOf(target));
    HostFile* out = nullptr;
    int32_t result = OpenHostFile(temporary, FileMode::Create, &out);
    if (result != 0) return result;
    buffer.file = out;
    result = CopyRecords(store, out, sizes.newOffset, buffer);
    if (result == 0) result = WriteHeaderAndCards(out, buffer, store, sizes.newOffset);
    CloseHostFile(out);
    uint32_t compacted = 0;
    if (result == 0) {
        compacted = OpenBlobStoreAt(temporary, sizes.newOffset, kHdrBlobCount, kHdrNextBlobId);
        result = compacted ? MoveBlobArea(compacted, sizes.newOffset, buffer) : kResultFailed;
        if (compacted) CloseBlobStore(compacted);
    }
    if (result == 0) result = RenameHostFile(temporary, target);
    if (result != 0) DeleteHostFile(temporary);
    return result;
}

// In the target itself, when the disk has no room for a copy: the records are moved out of the
// cards' way first, or moved down behind them afterwards.
int32_t SaveInPlace(const std::string& target, uint32_t store, const SaveSizes& sizes, StagingBuffer& buffer,
                    bool* storeMoved) {
    const bool recordsHere = store && !IsScratchStore(store) && BlobStorePath(store) == target;
    const uint32_t oldOffset = recordsHere ? BlobAreaOffset(store) : 0;
    HostFile* out = nullptr;
    if (OpenHostFile(target, GetHostFileStatus(target).exists ? FileMode::ReadWrite : FileMode::Create, &out) != 0)
        return kResultNoMemory;
    uint64_t length = 0;
    int32_t result = HostFileLength(out, &length);
    if (result == 0 && length < sizes.total) result = SetHostFileLength(out, sizes.total);
    if (result == 0 && !recordsHere) {
        result = CopyRecords(store, out, sizes.newOffset, buffer);
        *storeMoved = true;
    } else if (result == 0 && sizes.newOffset > oldOffset) {
        CloseHostFile(out);
        out = nullptr;
        result = MoveBlobArea(store, sizes.newOffset, buffer);
        if (result == 0) result = OpenHostFile(target, FileMode::ReadWrite, &out);
    }
    if (result == 0) {
        buffer.file = out;
        result = WriteHeaderAndCards(out, buffer, store, sizes.newOffset);
    }
    CloseHostFile(out);
    // Down behind the cards, or compacted where they are; the file is cut behind the last.
    if (result == 0 && recordsHere && sizes.newOffset <= oldOffset) result = MoveBlobArea(store, sizes.newOffset, buffer);
    return result;
}

}  // namespace

std::string TemporarySaveName(const std::string& folder) {
    for (int n = 0; n <= 999; ++n) {
        const std::string path = fmt::format("{}/QBTMP{:03}.TMP", folder, n);
        if (!GetHostFileStatus(path).exists) return path;
    }
    // Past 999 the first digit becomes the zero character, which cuts the name short.
    return folder + "/QBTMP";
}

int32_t WriteStack(int slot, bool keepStoreOpen) {
    Document& doc = GetDocument();
    const std::string target = SlotHostPath(slot);
    if (target.empty()) {
        ShowFileError(kResultFailed);
        return kResultReported;
    }
    Host& host = GetHost();
    host.SetWaitCursor(true);
    struct RestoreCursor {
        Host& host;
        ~RestoreCursor() {
            host.SetWaitCursor(false);
        }
    } restore{host};

    if (!FolderIsWritable(FolderOf(target))) {
        Alert(kAlertDiskLocked);
        return kResultReported;
    }
    // The emulated display has the stack's depth, so no card is converted for the save.
    StagingBuffer buffer;
    if (NewStagingBuffer(&buffer, nullptr) != 0) return kResultNoMemory;
    struct FreeBuffer {
        StagingBuffer& buffer;
        ~FreeBuffer() { FreeStagingBuffer(&buffer); }
    } freeBuffer{buffer};

    const HostFileStatus status = GetHostFileStatus(target);
    if (status.exists && status.readOnly) {
        ShowFileError(kResultReadOnly);
        return kResultReadOnly;
    }
    // The card on show keeps its settings and a changed picture before the sizes are taken.
    StoreCurrentCard();
    const uint32_t store = doc.storeRef;
    const SaveSizes sizes = MeasureSave(store);
    const uint64_t existing = status.exists ? status.length : 0;
    int64_t free = HostFreeSpace(target);
    if (free < 0) free = INT64_MAX / 2;  // unknown: the host can't tell, so assume room
    if (sizes.total > existing && free < static_cast<int64_t>(sizes.total - existing) + kFreeSpaceMargin) {
        Alert(kAlertDiskFull);
        return kResultReported;
    }
    CopySlot(slot, kSlotScratch);
    const bool useTemp = free > static_cast<int64_t>(sizes.total) + kFreeSpaceMargin;

    bool storeMoved = useTemp;
    const int32_t result = useTemp ? SaveThroughTemporary(target, store, sizes, buffer)
                                   : SaveInPlace(target, store, sizes, buffer, &storeMoved);
    if (result != 0) {
        ShowFileError(result);
        return kResultReported;
    }
    doc.dirty = false;
    doc.hasFile = true;
    doc.convertedFlags = 0;
    if (storeMoved || !keepStoreOpen) {
        if (store) CloseBlobStore(store);
        doc.storeRef = OpenBlobStoreAt(target, sizes.newOffset, kHdrBlobCount, kHdrNextBlobId);
        if (!doc.storeRef) {
            ShowFileError(kResultFailed);
            return kResultReported;
        }
        // A store on a file that already held deleted records is compacted now.
        MoveBlobArea(doc.storeRef, sizes.newOffset, buffer);
    }
    // The workspace record is attached here when the language arrives.
    return kResultOk;
}
