#include "stack/StackReader.h"

#include "messages/StringIds.h"

#include <fmt/format.h>

#include <cstring>

#include "base/ByteOrder.h"
#include "platform/HostFile.h"
#include "platform/HostPath.h"
#include "stack/Blob.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/Normalise.h"
#include "stack/PathSlot.h"
#include "stack/StackHeader.h"

namespace {

int32_t Refuse(LoadFault* fault, int alert, uint64_t offset, std::string detail) {
    fault->alerts.push_back(alert);
    fault->offset = offset;
    fault->detail = std::move(detail);
    fault->code = -12;
    return -12;
}

// Reads the card at the file's position into a card MemRef; -1 with the fault filled in when the
// card cannot be read whole or its contents leave the record.
int32_t ReadCard(HostFile* file, uint64_t fileLength, int32_t index, MemRef* cardOut, LoadFault* fault) {
    const uint64_t at = TellHostFile(file);
    fault->offset = at;
    uint8_t start[6];
    if (at + 6 > fileLength || ReadHostFile(file, start, 6) != 0) {
        fault->detail = fmt::format("card {} at offset {}: the file ends inside its head", index + 1, at);
        return -1;
    }
    const uint32_t size = ReadBE32(start + kCardSize);
    if (size < kEmptyCardSize || size > fileLength - at) {
        fault->detail = fmt::format("card {} at offset {}: its size {} {}", index + 1, at, size,
                                    size < kEmptyCardSize ? "is smaller than a card head and tail"
                                                          : "runs past the end of the file");
        return -1;
    }
    MemRef card = NewCardMemRef(size - 2);
    if (!card) {
        fault->detail = fmt::format("card {}: no memory for {} bytes", index + 1, size);
        return -1;
    }
    int32_t result;
    {
        MemRefLock lock(card);
        std::memcpy(lock.data(), start, 6);
        result = ReadHostFile(file, lock.data() + 6, size - 6);
    }
    if (result == 0 && NormaliseCard(card) != 0) {
        fault->detail = fmt::format("card {} at offset {}: a chunk's length or offset leaves the card",
                                    index + 1, at);
        result = -1;
    } else if (result != 0) {
        fault->detail = fmt::format("card {} at offset {}: read failed", index + 1, at);
    }
    if (result != 0) {
        FreeMemRef(card);
        return -1;
    }
    *cardOut = card;
    return 0;
}

}  // namespace

int32_t ReadStackFile(const std::string& hostPath, LoadFault* fault) {
    *fault = LoadFault{};
    CloseStack();
    if (!SetSlotPath(kSlotStack, DosPathFromHost(hostPath))) {
        fault->code = -1;
        fault->alerts = {kAlertSomeError, kAlertNoCards};
        fault->detail = "the file's name is longer than a path may be";
        return -1;
    }
    HostFile* file = nullptr;
    if (OpenHostFile(hostPath, FileMode::Read, &file) != 0) {
        fault->code = -1;
        fault->alerts = {kAlertSomeError, kAlertNoCards};
        fault->detail = "the file cannot be opened";
        return -1;
    }
    Document& doc = GetDocument();
    uint64_t fileLength = 0;
    HostFileLength(file, &fileLength);

    doc.stackHeader = NewMemRef(kStackHeaderSize);
    uint8_t header[kStackHeaderSize];
    // A file shorter than a header fails on its read like any file error: no cards were read.
    if (!doc.stackHeader || ReadHostFile(file, header, kStackHeaderSize) != 0) {
        CloseHostFile(file);
        CloseStack();
        fault->code = -1;
        fault->alerts = {kAlertSomeError, kAlertNoCards};
        fault->detail = fmt::format("the file is {} bytes, shorter than a header", fileLength);
        return -1;
    }
    NormaliseHeader(header);
    int32_t code = 0;
    const int16_t depth = ReadS16(header + kHdrDepth);
    const int16_t version = ReadS16(header + kHdrVersion);
    if (!HeaderIsPlausible(header)) {
        code = Refuse(fault, kAlertNotAStack, 0, "the header fails the plausibility test");
    } else if (depth == 1) {
        code = Refuse(fault, kAlertBlackAndWhite, kHdrDepth, "black and white stack (depth 1)");
    } else if ((fault->askMinimumSize = ReadS16(header + kHdrCardWidth) < kMinCardSide ||
                                        ReadS16(header + kHdrCardHeight) < kMinCardSide),
               version > kCurrentStackVersion) {
        code = Refuse(fault, kAlertTooNew, kHdrVersion, fmt::format("version {} is newer than 5", version));
    } else if (version < kOldestStackVersion) {
        code = Refuse(fault, kAlertTooOld, kHdrVersion, fmt::format("version {} is older than 4", version));
    }
    if (code != 0) {
        CloseHostFile(file);
        CloseStack();
        return code;
    }
    {
        MemRefLock lock(doc.stackHeader);
        std::memcpy(lock.data(), header, kStackHeaderSize);
    }

    const int16_t cardCount = ReadS16(header + kHdrCardCount);
    for (int32_t i = 0; i < cardCount; ++i) {
        MemRef card = 0;
        code = ReadCard(file, fileLength, i, &card, fault);
        if (code == 0 && InsertCardAt(i, card) != 0) {
            FreeMemRef(card);
            fault->detail = "no memory for the card list";
            code = -1;
        }
        if (code != 0) break;
    }
    CloseHostFile(file);
    fault->code = code;

    if (CardCount() > 0) {
        uint64_t storeFault = 0;
        doc.storeRef = OpenBlobStore(kSlotStack, Read32(header + kHdrBlobOffset), kHdrBlobCount,
                                     kHdrNextBlobId, &storeFault);
        if (!doc.storeRef) {
            // A stack without its record table doesn't open: the cards go too.
            fault->offset = storeFault;
            fault->detail = fmt::format("the typed-record area (offset {}, {} entries) leaves the file at offset {}",
                                        Read32(header + kHdrBlobOffset), Read32(header + kHdrBlobCount), storeFault);
            CloseStack();
        }
    }
    if (CardCount() == 0) {
        if (code != 0 && code != -12) fault->alerts.push_back(kAlertSomeError);
        fault->alerts.push_back(kAlertNoCards);
        if (fault->detail.empty()) fault->detail = "the stack has no cards";
        CloseStack();
        return code;
    }
    // Cards read before a damaged one stay for the open flow, which reports the error and drops them.
    if (code != 0) {
        fault->alerts.push_back(kAlertSomeError);
        return code;
    }
    fault->opened = true;
    doc.hasFile = true;
    return 0;
}
