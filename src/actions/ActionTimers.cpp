#include "actions/ActionTimers.h"

#include "actions/RunAction.h"
#include "base/ByteOrder.h"
#include "base/StateRegistry.h"
#include "card/DisplayList.h"
#include "platform/Host.h"
#include "stack/Blob.h"
#include "stack/CardList.h"
#include "stack/CardRecord.h"
#include "stack/Document.h"
#include "stack/StackHeader.h"
#include "stack/SubRecord.h"

namespace {

struct ActionTimerState {
    ActionTimer rows[kActionTimerRows];
    uint32_t count = 0;      // rows filled since the last build
    uint32_t nextTimer = 0;  // where the firing round starts
    uint32_t lastPassTick = 0;
};
ActionTimerState g;

void ResetActionTimers() { g = ActionTimerState{}; }
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Actions, ResetActionTimers);

void AddActionTimer(const uint8_t* head, bool isRecord) {
    const uint16_t mode = Read16(head + kActionTimerMode);
    if (mode == kTimerOff || g.count == kActionTimerRows) return;
    ActionTimer& row = g.rows[g.count++];
    row.isRecord = isRecord;
    row.actionId = Read16(head + kActionId);
    row.interval = row.remaining = ReadS16(head + kActionTimerSeconds);
    row.repeat = mode == kTimerRepeat;
}

void AddRecordTimer(uint16_t actionId) {
    if (actionId == 0) return;
    const MemRef record = GetBlobById(FourCC("Actn"), actionId);
    if (!record || GetMemRefSize(record) < kActionHeadSize) return;
    MemRefLock lock(record);
    if (lock) AddActionTimer(lock.data(), true);
}

uint16_t WordOf(MemRef block, uint32_t offset, uint32_t minimumSize) {
    if (!block || GetMemRefSize(block) < minimumSize) return 0;
    MemRefLock lock(block);
    return lock ? Read16(lock.data() + offset) : 0;
}

// The action id of a graphic or text chunk, or the button chunk's own timer.
void AddItemTimer(MemRef card, uint32_t offset) {
    uint16_t recordId = 0;
    {
        MemRefLock lock(card);
        if (!lock) return;
        const uint32_t size = GetMemRefSize(card);
        const uint8_t* chunk = lock.data() + offset;
        const int16_t kind = ReadS16(chunk + kItemKind);
        if (kind == kItemKindButton && offset + kActionHeadSize <= size) AddActionTimer(chunk, false);
        if (kind == kItemKindGraphic && offset + kGraphicHeadSize <= size) recordId = Read16(chunk + kGraphicAction);
        if (kind == kItemKindText && offset + kTextHeadSize <= size) recordId = Read16(chunk + kTextAction);
    }
    AddRecordTimer(recordId);
}

bool TimersRun() { return GetDocument().autoTimers && IsBrowsing(); }

// Exactly one round over the rows, from where the last one started: an action that changes card
// rebuilds the table under the round, which goes on over the new rows.
void FireActionTimers(void* window) {
    if (!TimersRun()) return;
    for (uint32_t step = 0; step < kActionTimerRows; ++step) {
        ActionTimer& row = g.rows[g.nextTimer];
        g.nextTimer = (g.nextTimer + 1) % kActionTimerRows;
        if (row.actionId == 0 || row.remaining != 0) continue;
        const ActionTimer fired = row;
        if (row.repeat) {
            row.remaining = row.interval;
        } else {
            row = ActionTimer{};
        }
        if (fired.isRecord) {
            RunNamedAction(static_cast<uint16_t>(fired.actionId), 0, 0, 0);
        } else {
            RunItemAction(window, static_cast<uint16_t>(fired.actionId), 0);
        }
    }
}

}  // namespace

void ClearActionTimers() {
    for (ActionTimer& row : g.rows) row = ActionTimer{};
    g.count = 0;
    g.nextTimer = 0;
}

void BuildActionTimers() {
    ClearActionTimers();
    const Document& doc = GetDocument();
    AddRecordTimer(WordOf(doc.currentCard, kCardClickAction, kCardHeadSize));
    AddRecordTimer(WordOf(doc.stackHeader, kHdrClickAction, kStackHeaderSize));
    if (!doc.currentCard) return;
    ItemWalker walker;
    BeginItemWalk(&walker, doc.currentCard, true);
    MemRef card = 0;
    uint32_t offset = 0;
    while (NextItem(&walker, &card, &offset, false)) AddItemTimer(card, offset);
    EndItemWalk(&walker);
}

void TickActionTimers(void* window) {
    const uint32_t tick = GetHost().GetTickCount() / kTimerTickMs;
    if (tick - g.lastPassTick < kTimerPassTicks) return;
    g.lastPassTick = tick;
    if (!TimersRun()) return;
    bool pending = false;
    for (ActionTimer& row : g.rows) {
        if (row.actionId == 0 || row.remaining < 0) continue;
        pending = true;
        if (row.remaining > 0) --row.remaining;
    }
    if (pending) FireActionTimers(window);
}

const ActionTimer& GetActionTimer(uint32_t row) { return g.rows[row % kActionTimerRows]; }
