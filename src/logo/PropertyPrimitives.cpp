// Property lists: each entry is [name plist], the plist a flat list of keys and values, in two
// chains (active and buried) searched from the head. Names and keys ignore case.
#include "logo/Evaluator.h"
#include "logo/LogoErrors.h"
#include "logo/NodeHeap.h"
#include "logo/PrimitiveHandlers.h"
#include "logo/Workspace.h"

namespace {

// The entry named `name`, active first, or null.
Node* FindPropertyEntry(const Node* name) {
    for (const bool buried : {false, true}) {
        if (Node** link = FindHolderLink(DictionaryChain(Dictionary::PropertyLists, buried, name), name, false)) {
            return (*link)->payload;
        }
    }
    return nullptr;
}

// The cell holding `key` in the plist, or null; `*before` gets the cell before the key's.
Node* FindKey(Node* plist, const Node* key, Node** before) {
    *before = nullptr;
    if (!IsList(plist) || !plist->payload) return nullptr;
    for (Node* cell = plist; cell && cell->next; cell = cell->next->next) {
        if (IsWord(cell->payload) && CompareWords(cell->payload, key) == 0) return cell;
        *before = cell->next;
    }
    return nullptr;
}

// A new entry [name plist] at the head of the active chain; false when nodes ran out.
bool LinkPropertyEntry(Node* name, Node* plist) {
    Node* plistCell = MakeListCell(plist, nullptr);
    if (!plistCell || !LinkNewEntry(Dictionary::PropertyLists, name, plistCell)) {
        UnpinValue(plistCell);
        return false;
    }
    Unpinned(plistCell);
    return true;
}

// A two-cell list `key value`, pinned until it is linked.
Node* NewPair(Node* key, Node* value) {
    Node* valueCell = MakeListCell(value, nullptr);
    Node* keyCell = valueCell ? MakeListCell(key, valueCell) : nullptr;
    if (!keyCell) UnpinValue(valueCell);
    return keyCell;
}

bool IsEmptyListValue(const Node* v) { return IsList(v) && !v->payload && !v->next; }

}  // namespace

Node* PrimGprop(PrimitiveCall& call) {
    if (!CheckWordArg(call.in[0], call.row) || !CheckWordArg(call.in[1], call.row)) return nullptr;
    const Node* entry = FindPropertyEntry(call.in[0]);
    Node* before = nullptr;
    Node* cell = entry ? FindKey(entry->next->payload, call.in[1], &before) : nullptr;
    return cell ? cell->next->payload : EmptyList();
}

Node* PrimPprop(PrimitiveCall& call) {
    Node *name = call.in[0], *key = call.in[1], *value = call.in[2];
    if (!CheckWordArg(name, call.row) || !CheckWordArg(key, call.row)) return nullptr;
    Node* entry = FindPropertyEntry(name);
    if (entry) {
        Node* before = nullptr;
        Node* plist = entry->next->payload;
        if (Node* cell = FindKey(plist, key, &before)) {
            cell->next->payload = value;
            return nullptr;
        }
        Node* pair = NewPair(key, value);
        if (!pair) return nullptr;
        Node* last = IsList(plist) && plist->payload ? plist : nullptr;
        while (last && last->next) last = last->next;
        if (last) last->next = pair;
        else entry->next->payload = pair;
        Unpinned(pair->next);
        Unpinned(pair);
        return nullptr;
    }
    Node* pair = NewPair(key, value);
    if (pair && LinkPropertyEntry(name, pair)) {
        Unpinned(pair->next);
        Unpinned(pair);
    } else {
        UnpinValue(pair);
    }
    return nullptr;
}

Node* PrimRemprop(PrimitiveCall& call) {
    Node *name = call.in[0], *key = call.in[1];
    if (!CheckWordArg(name, call.row) || !CheckWordArg(key, call.row)) return nullptr;
    Node* entry = FindPropertyEntry(name);
    if (!entry) {
        ReportError(9, nullptr, name);
        return nullptr;
    }
    Node* before = nullptr;
    Node* cell = FindKey(entry->next->payload, key, &before);
    if (!cell) {
        ReportError(9, nullptr, key);
        return nullptr;
    }
    if (before) {
        before->next = cell->next->next;
        return nullptr;
    }
    entry->next->payload = cell->next->next;
    // A list left empty takes its entry with it.
    if (!entry->next->payload) {
        for (const bool buried : {false, true}) {
            Node** chain = DictionaryChain(Dictionary::PropertyLists, buried, name);
            for (Node** link = chain; *link; link = &(*link)->next) {
                if ((*link)->payload == entry) {
                    *link = (*link)->next;
                    return nullptr;
                }
            }
        }
    }
    return nullptr;
}

Node* PrimPlist(PrimitiveCall& call) {
    if (!CheckWordArg(call.in[0], call.row)) return nullptr;
    const Node* entry = FindPropertyEntry(call.in[0]);
    Node* plist = entry ? entry->next->payload : nullptr;
    return plist ? plist : EmptyList();
}

Node* PrimSetPlist(PrimitiveCall& call) {
    Node *name = call.in[0], *list = call.in[1];
    if (!CheckWordArg(name, call.row)) return nullptr;
    if (!IsList(list)) {
        ReportErrorAtRow(41, call.row, list);
        return nullptr;
    }
    const bool empty = IsEmptyListValue(list);
    int count = 0;
    for (const Node* cell = empty ? nullptr : list; cell; cell = cell->next, ++count) {
        if (!cell->payload) {
            ReportErrorAtRow(29, call.row, nullptr);
            return nullptr;
        }
        if (count % 2 == 0 && !IsWord(cell->payload)) {
            ReportErrorAtRow(41, call.row, cell->payload);
            return nullptr;
        }
    }
    if (count % 2 != 0) {
        ReportError(61, nullptr, nullptr);
        return nullptr;
    }
    if (Node* entry = FindPropertyEntry(name)) {
        entry->next->payload = empty ? nullptr : list;
        return nullptr;
    }
    LinkPropertyEntry(name, empty ? nullptr : list);
    return nullptr;
}
