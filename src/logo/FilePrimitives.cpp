// Files: OPEN and CLOSE, the reader and writer, positions and lengths, LOAD and SAVE. Every name a
// script gives passes the Policy first: in the player only the stack's sandbox can be reached.
#include <string>

#include "base/StateRegistry.h"
#include "logo/Evaluator.h"
#include "logo/LogoErrors.h"
#include "logo/LogoFiles.h"
#include "logo/NodeHeap.h"
#include "logo/PrimitiveHandlers.h"
#include "logo/Workspace.h"
#include "platform/HostFile.h"
#include "platform/HostFolder.h"
#include "policy/Policy.h"
#include "policy/PolicyPath.h"

namespace {

inline constexpr int kFileSlots = 8;
inline constexpr unsigned char kEndOfFileByte = 255;

struct FileSlot {
    HostFile* file = nullptr;
    std::string path;
};

struct LogoFileState {
    FileSlot slots[kFileSlots];
    int reader = -1;
    int writer = -1;
};

LogoFileState gFiles;

void CloseSlot(int i) {
    CloseHostFile(gFiles.slots[i].file);
    gFiles.slots[i] = FileSlot{};
    if (gFiles.reader == i) gFiles.reader = -1;
    if (gFiles.writer == i) gFiles.writer = -1;
}

void ResetFiles() {
    for (int i = 0; i < kFileSlots; ++i) CloseSlot(i);
    gFiles = LogoFileState{};
}
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Logo, ResetFiles);

// The host path a script's name stands for, or "" when the Policy refuses it.
std::string PathOf(const Node* name) {
    if (!IsAtom(name)) return "";
    return PolicyLanguageFilePath(AtomText(name));
}

// The slot open on `name`'s file, or -1; paths compare without regard to case.
int SlotOf(const Node* name) {
    const std::string path = PathOf(name);
    if (path.empty()) return -1;
    for (int i = 0; i < kFileSlots; ++i) {
        if (gFiles.slots[i].file && SameNameIgnoringCase(gFiles.slots[i].path, path)) return i;
    }
    return -1;
}

// The open slot of `name`, or -1 after error 45 naming it.
int OpenSlotOrReport(Node* name) {
    const int slot = SlotOf(name);
    if (slot < 0) ReportError(45, name, nullptr);
    return slot;
}

Node* PathWord(int slot) { return slot < 0 ? EmptyList() : MakeWord(gFiles.slots[slot].path); }

Node* Position(PrimitiveCall& call, int slot, int noneError) {
    if (slot < 0) {
        ReportErrorAtRow(noneError, call.row, nullptr);
        return ZeroNode();
    }
    return MakeInteger(static_cast<int32_t>(TellHostFile(gFiles.slots[slot].file)));
}

void Seek(PrimitiveCall& call, int slot, int noneError) {
    const int32_t at = GetInteger(call.in[0], call.row);
    if (slot < 0) {
        ReportErrorAtRow(noneError, call.row, nullptr);
        return;
    }
    if (at < 0 || SeekHostFile(gFiles.slots[slot].file, static_cast<uint64_t>(at)) != 0) ReportError(63, nullptr, nullptr);
}

// SETREAD and SETWRITE: a name that is open, or the empty list for none.
void Choose(PrimitiveCall& call, int* chosen) {
    Node* name = call.in[0];
    if (IsList(name) && !name->payload && !name->next) {
        *chosen = -1;
        return;
    }
    const int slot = OpenSlotOrReport(name);
    if (slot >= 0) *chosen = slot;
}

// Makes the folder that will hold `path` (the sandbox may not exist yet).
void MakeFolderFor(const std::string& path) { MakeHostFolders(PolicyFolderOf(path)); }

}  // namespace

bool WriteToLogoWriter(std::string_view text) {
    if (gFiles.writer < 0) return false;
    std::string out(text);
    for (char& c : out) {
        if (c == '\n') c = '\r';
    }
    if (!out.empty() && WriteHostFile(gFiles.slots[gFiles.writer].file, out.data(), static_cast<uint32_t>(out.size())) != 0) {
        ReportError(63, nullptr, nullptr);
    }
    return true;
}

bool LogoReaderChosen() { return gFiles.reader >= 0; }

bool LogoReaderHasMore() {
    if (gFiles.reader < 0) return false;
    HostFile* file = gFiles.slots[gFiles.reader].file;
    uint64_t length = 0;
    return HostFileLength(file, &length) == 0 && TellHostFile(file) < length;
}

std::optional<std::string> ReadLogoReaderLine() {
    if (gFiles.reader < 0) return std::nullopt;
    HostFile* file = gFiles.slots[gFiles.reader].file;
    std::string line;
    bool any = false;
    unsigned char c = 0;
    while (ReadHostFile(file, &c, 1) == 0) {
        if (c == kEndOfFileByte) break;
        any = true;
        if (c == '\r' || c == '\n') return line;
        line += static_cast<char>(c);
    }
    if (!any) return std::nullopt;
    return line;
}

Node* PrimOpen(PrimitiveCall& call) {
    Node* name = call.in[0];
    int free = -1;
    for (int i = kFileSlots - 1; i >= 0; --i) {
        if (!gFiles.slots[i].file) free = i;
    }
    if (free < 0) {
        ReportError(20, nullptr, nullptr);
        return nullptr;
    }
    const std::string path = PathOf(name);
    HostFile* file = nullptr;
    bool opened = false;
    if (!path.empty()) {
        // A missing file is made first, then everything is read and written in place from 0.
        if (!GetHostFileStatus(path).exists) {
            MakeFolderFor(path);
            if (OpenHostFile(path, FileMode::Create, &file) == 0) CloseHostFile(file);
        }
        opened = !GetHostFileStatus(path).isFolder && OpenHostFile(path, FileMode::ReadWrite, &file) == 0;
    }
    if (!opened) {
        ReportError(58, nullptr, name);
        return nullptr;
    }
    gFiles.slots[free] = FileSlot{file, path};
    return nullptr;
}

Node* PrimClose(PrimitiveCall& call) {
    const int slot = OpenSlotOrReport(call.in[0]);
    if (slot >= 0) CloseSlot(slot);
    return nullptr;
}

Node* PrimCloseAll(PrimitiveCall&) {
    for (int i = 0; i < kFileSlots; ++i) CloseSlot(i);
    return nullptr;
}

Node* PrimAllOpen(PrimitiveCall&) {
    Node* list = nullptr;
    for (int i = kFileSlots - 1; i >= 0; --i) {
        if (!gFiles.slots[i].file) continue;
        Node* word = PathWord(i);
        list = word ? MakeListCell(word, list) : nullptr;
        if (!list) return nullptr;
    }
    return list ? list : EmptyList();
}

Node* PrimSetRead(PrimitiveCall& call) {
    Choose(call, &gFiles.reader);
    return nullptr;
}

Node* PrimSetWrite(PrimitiveCall& call) {
    Choose(call, &gFiles.writer);
    return nullptr;
}

Node* PrimReader(PrimitiveCall&) { return PathWord(gFiles.reader); }
Node* PrimWriter(PrimitiveCall&) { return PathWord(gFiles.writer); }
Node* PrimReadPos(PrimitiveCall& call) { return Position(call, gFiles.reader, 65); }
Node* PrimWritePos(PrimitiveCall& call) { return Position(call, gFiles.writer, 73); }

Node* PrimSetReadPos(PrimitiveCall& call) {
    Seek(call, gFiles.reader, 65);
    return nullptr;
}

Node* PrimSetWritePos(PrimitiveCall& call) {
    Seek(call, gFiles.writer, 73);
    return nullptr;
}

Node* PrimFileLen(PrimitiveCall& call) {
    const int slot = OpenSlotOrReport(call.in[0]);
    uint64_t length = 0;
    if (slot >= 0 && HostFileLength(gFiles.slots[slot].file, &length) != 0) ReportError(63, nullptr, nullptr);
    return MakeInteger(static_cast<int32_t>(length));
}

Node* PrimFileP(PrimitiveCall& call) {
    if (SlotOf(call.in[0]) >= 0) return TrueNode();
    const std::string path = PathOf(call.in[0]);
    if (path.empty()) return FalseNode();
    HostFile* file = nullptr;
    if (OpenHostFile(path, FileMode::Read, &file) != 0) return FalseNode();
    CloseHostFile(file);
    return GetHostFileStatus(path).isFolder ? FalseNode() : TrueNode();
}

Node* PrimEraseFile(PrimitiveCall& call) {
    const std::string path = PathOf(call.in[0]);
    if (path.empty()) {
        ReportError(57, nullptr, call.in[0]);
        return nullptr;
    }
    if (GetHostFileStatus(path).isFolder || DeleteHostFile(path) != 0) ReportError(63, nullptr, nullptr);
    return nullptr;
}

// The file's lines run before the script's next line, as if they stood there.
Node* PrimLoad(PrimitiveCall& call) {
    const std::string path = PathOf(call.in[0]);
    std::string text;
    if (path.empty() || GetHostFileStatus(path).isFolder || ReadWholeHostFile(path, &text) != 0) {
        ReportError(58, nullptr, call.in[0]);
        return nullptr;
    }
    if (!text.empty() && text.back() != '\n' && text.back() != '\r') text += '\n';
    LogoRunState& run = GetLogoRunState();
    run.script.insert(run.scriptAt, text);
    return nullptr;
}

Node* PrimSave(PrimitiveCall& call) {
    const std::string path = PathOf(call.in[0]);
    const std::string text = WorkspaceListing();
    if (!path.empty()) MakeFolderFor(path);
    if (path.empty() || GetHostFileStatus(path).isFolder || WriteWholeHostFile(path, text.data(), text.size()) != 0) {
        ReportError(57, nullptr, call.in[0]);
    }
    return nullptr;
}
