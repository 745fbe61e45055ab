// What the card writer and the button writer share: the emitter that sends bytes to the staging
// buffer, and the head exchanges that both apply to their copies. Internal to the writer.
#pragma once

#include <cstdint>
#include <cstring>

#include "base/ByteOrder.h"
#include "stack/CardRecord.h"
#include "stack/ItemFields.h"
#include "stack/StagingBuffer.h"

// Sends bytes out, counts them, and keeps the first failure: after it every Put does nothing,
// so a writer can go on to its end and report once.
class RecordEmitter {
public:
    explicit RecordEmitter(StagingBuffer& out) : out_(out) {}
    void Put(const uint8_t* bytes, uint32_t count);
    // A native file reference in its stored form, as many bytes as it holds. One that does not
    // convert goes out as it stands, so the record keeps its length.
    void PutPath(const uint8_t* native, uint32_t count);
    // Emits `count` bytes (a head: at most 136) through a copy with `exchange` applied.
    template <typename Exchange>
    void PutExchanged(const uint8_t* bytes, uint32_t count, Exchange exchange) {
        uint8_t copy[kButtonHeadSize];
        if (count > sizeof copy) {
            Fail();
            return;
        }
        std::memcpy(copy, bytes, count);
        exchange(copy);
        Put(copy, count);
    }
    // A lie found in the record: -1, unless a write failed first.
    int32_t Fail() {
        if (result_ == 0) result_ = -1;
        return result_;
    }
    int32_t result() const { return result_; }
    uint32_t count() const { return count_; }

private:
    StagingBuffer& out_;
    int32_t result_ = 0;
    uint32_t count_ = 0;
};

// The item common head, kind included: the walker turned the kind on reading, the writer does it
// itself.
inline void StoreItemHead(uint8_t* head) {
    Swap16At(head, {kItemKind, kItemId, kItemFlags});
    SwapRect(head + kItemRect);
    Swap32(head + kItemLength);
}

// The button chunk (or action block) at `offset` of the locked record `record` of `size` bytes:
// its head and the sub-records the writer knows. `record` is writable only for the icon rule,
// which leaves its two size words zero behind it. 0, -1 for a lie, or the file layer's error.
int32_t EmitButton(RecordEmitter& out, uint8_t* record, uint32_t size, uint32_t offset);
