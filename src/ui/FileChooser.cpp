#include "ui/FileChooser.h"

#include <algorithm>
#include <cctype>

#include "base/KeyCodes.h"
#include "platform/HostFolder.h"
#include "ui/ModalLoop.h"

namespace {

enum Answer { kNone = 0, kChosen = 1, kCancelled = 2 };
// Letters typed after this pause start a new name to look for.
inline constexpr uint32_t kTypingPauseMs = 1000;

std::string Lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// The extensions of a filter such as "*.stk" or "*.stk;*.bmp", lower case with their dot; empty
// when the filter lets everything through.
std::vector<std::string> FilterExtensions(const std::string& pattern) {
    std::vector<std::string> out;
    size_t start = 0;
    while (start <= pattern.size()) {
        const size_t end = std::min(pattern.find(';', start), pattern.size());
        const std::string part = pattern.substr(start, end - start);
        if (part == "*" || part == "*.*") return {};
        if (part.size() > 2 && part.compare(0, 2, "*.") == 0) out.push_back(Lower(part.substr(1)));
        start = end + 1;
    }
    return out;
}

bool Passes(const std::string& name, const std::vector<std::string>& extensions) {
    if (extensions.empty()) return true;
    const std::string lower = Lower(name);
    for (const std::string& ext : extensions) {
        if (lower.size() > ext.size() && lower.compare(lower.size() - ext.size(), ext.size(), ext) == 0) return true;
    }
    return false;
}

std::string Join(const std::string& folder, const std::string& name) {
    return folder == "/" ? "/" + name : folder + "/" + name;
}

std::string Parent(const std::string& folder) {
    const size_t slash = folder.find_last_of('/');
    return slash == 0 || slash == std::string::npos ? "/" : folder.substr(0, slash);
}

bool ByName(const ChooserRow& a, const ChooserRow& b) {
    const std::string la = Lower(a.name), lb = Lower(b.name);
    return la != lb ? la < lb : a.name < b.name;
}

void KeepInView(ChooserSession& s) {
    if (s.selected < 0) return;
    if (s.selected < s.first) s.first = s.selected;
    if (s.selected >= s.first + kChooserRowsInView) s.first = s.selected - kChooserRowsInView + 1;
}

// Reads `folder` into the list; the row named `select` is selected, else in Open the first file.
void EnterFolder(ChooserSession& s, const std::string& folder, const std::string& select) {
    std::vector<HostFolderEntry> entries;
    ListHostFolder(folder, &entries);
    s.folder = folder;
    s.rows.clear();
    if (folder != "/") s.rows.push_back({"..", true});
    std::vector<ChooserRow> folders, files;
    const std::vector<std::string> extensions = FilterExtensions(s.choice.filterPattern);
    for (const HostFolderEntry& e : entries) {
        // Hidden names are the system's or a program's own, not a user's stacks.
        if (e.name.empty() || e.name[0] == '.') continue;
        if (e.folder) {
            folders.push_back({e.name, true});
        } else if (Passes(e.name, extensions)) {
            files.push_back({e.name, false});
        }
    }
    std::sort(folders.begin(), folders.end(), ByName);
    std::sort(files.begin(), files.end(), ByName);
    s.rows.insert(s.rows.end(), folders.begin(), folders.end());
    s.rows.insert(s.rows.end(), files.begin(), files.end());
    s.first = 0;
    s.selected = -1;
    for (size_t i = 0; i < s.rows.size(); ++i) {
        if (!select.empty() && s.rows[i].name == select) s.selected = static_cast<int>(i);
    }
    // Open starts on the first file, else on the first folder, else on "..".
    if (s.selected < 0 && !s.choice.save && !s.rows.empty()) {
        const size_t firstFolder = folder != "/" ? 1 : 0;
        s.selected = static_cast<int>(!files.empty() ? s.rows.size() - files.size()
                                      : firstFolder < s.rows.size() ? firstFolder : 0);
    }
    KeepInView(s);
}

void Select(ChooserSession& s, int row) {
    const int count = static_cast<int>(s.rows.size());
    if (count == 0) return;
    s.selected = std::clamp(row, 0, count - 1);
    if (s.choice.save && !s.rows[s.selected].folder) {
        s.name = s.rows[s.selected].name;
        s.nameFresh = true;
    }
    KeepInView(s);
}

// Return, a double click or the OK button: into a folder, or the file is chosen.
void Accept(ChooserSession& s, std::string* path) {
    if (s.selected >= 0 && s.selected < static_cast<int>(s.rows.size()) && s.rows[s.selected].folder) {
        const ChooserRow row = s.rows[s.selected];
        const std::string from = s.folder;
        if (row.name == "..") {
            EnterFolder(s, Parent(from), from.substr(from.find_last_of('/') + 1));
        } else {
            EnterFolder(s, Join(from, row.name), "");
        }
        return;
    }
    std::string name = s.choice.save ? s.name : s.selected >= 0 ? s.rows[s.selected].name : "";
    if (name.empty()) return;
    if (s.choice.save && name.find('.') == std::string::npos) {
        const std::vector<std::string> extensions = FilterExtensions(s.choice.filterPattern);
        if (!extensions.empty()) name += extensions.front();
    }
    *path = Join(s.folder, name);
    s.answer = kChosen;
}

void TypeLetter(ChooserSession& s, const HostEvent& event) {
    if (event.ch < 0x20 || event.ch == 0x7F) return;
    if (s.choice.save) {
        if (s.nameFresh) s.name.clear();
        s.nameFresh = false;
        s.name += static_cast<char>(event.ch);
        s.selected = -1;
        return;
    }
    if (event.time - s.typedAt > kTypingPauseMs) s.typed.clear();
    s.typedAt = event.time;
    s.typed += static_cast<char>(std::tolower(event.ch));
    for (size_t i = 0; i < s.rows.size(); ++i) {
        if (s.rows[i].name != ".." && Lower(s.rows[i].name).compare(0, s.typed.size(), s.typed) == 0) {
            Select(s, static_cast<int>(i));
            return;
        }
    }
}

void Key(ChooserSession& s, uint16_t key, std::string* path) {
    switch (key) {
        case kVkReturn:
            Accept(s, path);
            break;
        case kVkEscape:
            s.answer = kCancelled;
            break;
        case kVkUp:
            Select(s, s.selected - 1);
            break;
        case kVkDown:
            Select(s, s.selected + 1);
            break;
        case kVkPageUp:
            Select(s, s.selected - (kChooserRowsInView - 1));
            break;
        case kVkPageDown:
            Select(s, std::max(s.selected, 0) + kChooserRowsInView - 1);
            break;
        case kVkHome:
            Select(s, 0);
            break;
        case kVkEnd:
            Select(s, static_cast<int>(s.rows.size()) - 1);
            break;
        case kVkBack:
            if (s.choice.save && !s.name.empty()) {
                s.name.pop_back();
                s.nameFresh = false;
            }
            break;
        default:
            break;
    }
}

int ButtonAt(const HostEvent& event, const Rect& box) {
    for (const int b : {1, 2}) {
        if (OffsetRect(ChooserButtonRect(b), box.left, box.top).Contains(event.x, event.y)) return b;
    }
    return 0;
}

void PressInList(ChooserSession& s, const HostEvent& event, const Rect& list, std::string* path) {
    const int count = static_cast<int>(s.rows.size());
    if (event.x >= list.right - 1 - kChooserBarWidth) {
        // The bar pages the list: above the rows in view, or below them.
        const int32_t mid = list.top + list.Height() * (2 * s.first + kChooserRowsInView) / std::max(2 * count, 1);
        const int step = event.y < mid ? -(kChooserRowsInView - 1) : kChooserRowsInView - 1;
        s.first = std::clamp(s.first + step, 0, std::max(count - kChooserRowsInView, 0));
        return;
    }
    const int row = s.first + (event.y - list.top - 1) / kChooserRowHeight;
    if (event.y <= list.top || row >= count || row >= s.first + kChooserRowsInView) return;
    Select(s, row);
    if (event.clicks >= 2) Accept(s, path);
}

struct Running {
    ChooserSession session;
    std::string path;
};

bool HandleEvent(void* context, const HostEvent& event, const Rect& box) {
    Running& r = *static_cast<Running*>(context);
    ChooserSession& s = r.session;
    const Rect list = OffsetRect(ChooserListRect(), box.left, box.top);
    switch (event.kind) {
        case HostEventKind::MouseDown:
            if (event.button != 1) break;
            if (list.Contains(event.x, event.y)) {
                PressInList(s, event, list, &r.path);
            } else {
                s.tracking = s.pressed = ButtonAt(event, box);
            }
            break;
        case HostEventKind::MouseMove:
            if (s.tracking) s.pressed = ButtonAt(event, box) == s.tracking ? s.tracking : 0;
            break;
        case HostEventKind::MouseUp:
            if (event.button != 1 || !s.tracking) break;
            if (ButtonAt(event, box) == s.tracking) {
                if (s.tracking == 1) {
                    Accept(s, &r.path);
                } else {
                    s.answer = kCancelled;
                }
            }
            s.tracking = s.pressed = 0;
            break;
        case HostEventKind::KeyDown:
            Key(s, event.key, &r.path);
            break;
        case HostEventKind::Char:
            TypeLetter(s, event);
            break;
        default:
            break;
    }
    return s.answer != kNone;
}

void Draw(void* context, Surface& window, const Rect& box) {
    DrawFileChooser(static_cast<Running*>(context)->session, window, box);
}

void GiveUp(void* context) { static_cast<Running*>(context)->session.answer = kCancelled; }

}  // namespace

bool RunFileChooser(const FileChoice& choice, std::string* hostPath) {
    Running running;
    ChooserSession& s = running.session;
    s.choice = choice;
    // The proposal is a folder and a name, or a name alone (then the folder is the current one).
    const size_t slash = choice.proposed.find_last_of('/');
    const std::string folder = slash == std::string::npos ? HostCurrentFolder()
                               : slash == 0                ? "/"
                                                           : choice.proposed.substr(0, slash);
    const std::string name = slash == std::string::npos ? choice.proposed : choice.proposed.substr(slash + 1);
    s.name = name;
    EnterFolder(s, folder, name);
    ModalDialog dialog;
    dialog.box = CentredBox(kChooserWidth, kChooserHeight);
    dialog.context = &running;
    dialog.Draw = Draw;
    dialog.HandleEvent = HandleEvent;
    dialog.GiveUp = GiveUp;
    RunModalDialog(dialog);
    if (s.answer != kChosen) return false;
    *hostPath = running.path;
    return true;
}
