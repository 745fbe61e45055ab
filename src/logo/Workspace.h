// The three dictionaries as the workspace primitives see them: chains of holder cells whose
// element is an entry list headed by its name ([name params line ...] for a procedure,
// [name value] for a variable, [name plist] for a property list), each in an active and a buried
// half. And the listings that PO, PONS, PPS and SAVE print.
#pragma once

#include <string>
#include <vector>

#include "logo/LogoErrors.h"
#include "logo/NodeHeap.h"

struct Node;

enum class Dictionary { Procedures, Names, PropertyLists };

// The active or buried chain that `name` belongs in.
Node** DictionaryChain(Dictionary dictionary, bool buried, const Node* name);
// The link that holds the entry named `name` in `*chain`, or null. `exact` compares as EQUALP
// (case and all) instead of ignoring case.
Node** FindHolderLink(Node** chain, const Node* name, bool exact);
// Unlinks the holder at `*link` and puts it at the head of `*to`.
void MoveHolder(Node** link, Node** to);
// Every chain of one half of a dictionary, bucket by bucket.
std::vector<Node**> DictionaryChains(Dictionary dictionary, bool buried);
// A new cell that the caller links into a root at once: it is unpinned.
void Unpinned(Node* cell);
// A new entry [name rest...] at the head of the active half; false when nodes ran out.
bool LinkNewEntry(Dictionary dictionary, Node* name, Node* rest);

// `x` is a word or a list of words: `act` runs for each, in order, until it returns false. A list
// element that is not a word reports by CheckWordArg with `row`.
template <typename Act>
void ForEachName(Node* x, int row, Act act) {
    if (!IsList(x)) {
        if (CheckWordArg(x, row)) act(x);
        return;
    }
    if (!x->payload && !x->next) return;
    for (Node* cell = x; cell; cell = cell->next) {
        if (!CheckWordArg(cell->payload, row) || !act(cell->payload)) return;
    }
}

// "TO NAME :A :B"
std::string ProcedureTitle(const Node* entry);
// The title, each line as it reads back, and END; each line ends with a newline.
std::string ProcedureListing(const Node* entry);
// MAKE "NAME value, with a newline.
std::string NameListing(const Node* entry);
// SETPLIST "NAME [plist], with a newline.
std::string PropertyListing(const Node* entry);
// The listing of every active entry of a dictionary, one text per entry.
std::vector<std::string> ActiveListings(Dictionary dictionary);
// What POALL prints and SAVE writes: names, a blank line, property lists, a blank line, procedures.
std::string WorkspaceListing();
