// The workspace: erasing and burying procedures and names, COPYDEF, DEFINE and TEXT, and the PO
// family of listings. Burying hides an entry from the listings and the erasing primitives
// without deleting it.
#include <string>
#include <vector>

#include "logo/Evaluator.h"
#include "logo/LogoErrors.h"
#include "logo/NodeHeap.h"
#include "logo/PrimitiveHandlers.h"
#include "logo/Workspace.h"

namespace {

// ERASE and ERN: the entry goes from whichever half holds it.
Node* EraseNames(PrimitiveCall& call, Dictionary dictionary) {
    ForEachName(call.in[0], call.row, [dictionary](Node* name) {
        for (const bool buried : {false, true}) {
            if (Node** link = FindHolderLink(DictionaryChain(dictionary, buried, name), name, false)) {
                *link = (*link)->next;
                return true;
            }
        }
        ReportError(9, nullptr, name);
        return false;
    });
    return nullptr;
}

Node* EmptyActiveHalf(Dictionary dictionary) {
    for (Node** chain : DictionaryChains(dictionary, false)) *chain = nullptr;
    return nullptr;
}

// BURY and UNBURY and their kin: an entry already where it is sent stays; one that is nowhere
// reports 9, and so does UNBURY of one that is not buried. Names of variables compare exactly.
Node* MoveNames(PrimitiveCall& call, Dictionary dictionary, bool bury) {
    const bool exact = dictionary == Dictionary::Names;
    ForEachName(call.in[0], call.row, [&](Node* name) {
        Node** from = DictionaryChain(dictionary, !bury, name);
        Node** to = DictionaryChain(dictionary, bury, name);
        if (Node** link = FindHolderLink(from, name, exact)) {
            MoveHolder(link, to);
            return true;
        }
        if (bury && FindHolderLink(to, name, exact)) return true;
        ReportError(9, nullptr, name);
        return false;
    });
    return nullptr;
}

Node* MoveAll(bool bury) {
    for (const Dictionary d : {Dictionary::Procedures, Dictionary::Names, Dictionary::PropertyLists}) {
        const std::vector<Node**> from = DictionaryChains(d, !bury), to = DictionaryChains(d, bury);
        for (size_t i = 0; i < from.size(); ++i) {
            while (*from[i]) MoveHolder(from[i], to[i]);
        }
    }
    return nullptr;
}

Node* FindProcedureEntry(Node* name) {
    Node* probe = name;
    return FindProcedure(&probe);
}

// Prints each text, giving the host a turn after each; Escape ends the listing.
Node* PrintListings(const std::vector<std::string>& texts, const char* between) {
    for (size_t i = 0; i < texts.size() && !GetLogoRunState().stopping; ++i) {
        OutputText((i ? between : "") + texts[i]);
        PollBreak();
    }
    return nullptr;
}

Node* ListProcedures(PrimitiveCall& call, bool titlesOnly) {
    ForEachName(call.in[0], call.row, [titlesOnly](Node* name) {
        Node* entry = FindProcedureEntry(name);
        if (!entry) {
            ReportError(9, nullptr, name);
            return false;
        }
        OutputText(titlesOnly ? ProcedureTitle(entry) + "\n" : ProcedureListing(entry));
        PollBreak();
        return !GetLogoRunState().stopping;
    });
    return nullptr;
}

bool IsEmptyListValue(const Node* v) { return IsList(v) && !v->payload && !v->next; }

}  // namespace

Node* PrimErase(PrimitiveCall& call) { return EraseNames(call, Dictionary::Procedures); }

Node* PrimErn(PrimitiveCall& call) { return EraseNames(call, Dictionary::Names); }

Node* PrimErps(PrimitiveCall&) { return EmptyActiveHalf(Dictionary::Procedures); }

Node* PrimErns(PrimitiveCall&) { return EmptyActiveHalf(Dictionary::Names); }

Node* PrimErProps(PrimitiveCall&) { return EmptyActiveHalf(Dictionary::PropertyLists); }

Node* PrimErAll(PrimitiveCall&) {
    EmptyActiveHalf(Dictionary::Procedures);
    EmptyActiveHalf(Dictionary::Names);
    EmptyActiveHalf(Dictionary::PropertyLists);
    return nullptr;
}

Node* PrimBury(PrimitiveCall& call) { return MoveNames(call, Dictionary::Procedures, true); }

Node* PrimUnbury(PrimitiveCall& call) { return MoveNames(call, Dictionary::Procedures, false); }

Node* PrimBuryName(PrimitiveCall& call) { return MoveNames(call, Dictionary::Names, true); }

Node* PrimUnburyName(PrimitiveCall& call) { return MoveNames(call, Dictionary::Names, false); }

Node* PrimBuryPlist(PrimitiveCall& call) { return MoveNames(call, Dictionary::PropertyLists, true); }

Node* PrimUnburyPlist(PrimitiveCall& call) { return MoveNames(call, Dictionary::PropertyLists, false); }

Node* PrimBuryAll(PrimitiveCall&) { return MoveAll(true); }

Node* PrimUnburyAll(PrimitiveCall&) { return MoveAll(false); }

// The new name shares the parameter and line cells. A primitive's name may be given: such a
// definition is never reached, because primitives are looked up first.
Node* PrimCopyDef(PrimitiveCall& call) {
    Node *from = call.in[0], *to = call.in[1];
    if (!CheckWordArg(from, call.row) || !CheckWordArg(to, call.row)) return nullptr;
    Node* source = FindProcedureEntry(from);
    if (!source) {
        ReportError(9, nullptr, from);
        return nullptr;
    }
    if (Node* existing = FindProcedureEntry(to)) {
        existing->next = source->next;
        return nullptr;
    }
    LinkNewEntry(Dictionary::Procedures, to, source->next);
    return nullptr;
}

// The counterpart of TEXT: the list, not copied, becomes the body.
Node* PrimDefine(PrimitiveCall& call) {
    Node *name = call.in[0], *body = call.in[1];
    const char first = FirstChar(name);
    if (!IsWord(name) || first == ':' || first == '"') {
        ReportErrorAtRow(41, call.row, name);
        return nullptr;
    }
    Node* probe = name;
    if (FindPrimitive(&probe) >= 0) {
        ReportError(6, nullptr, name);
        return nullptr;
    }
    if (!IsList(body) || IsEmptyListValue(body)) {
        ReportErrorAtRow(41, call.row, body);
        return nullptr;
    }
    for (Node* cell = body; cell; cell = cell->next) {
        if (!IsList(cell->payload)) {
            ReportErrorAtRow(41, call.row, cell->payload);
            return nullptr;
        }
    }
    for (const bool buried : {false, true}) {
        if (Node** link = FindHolderLink(DictionaryChain(Dictionary::Procedures, buried, name), name, false)) {
            *link = (*link)->next;
        }
    }
    LinkNewEntry(Dictionary::Procedures, name, body);
    return nullptr;
}

Node* PrimText(PrimitiveCall& call) {
    if (!CheckWordArg(call.in[0], call.row)) return nullptr;
    Node* entry = FindProcedureEntry(call.in[0]);
    if (!entry) {
        ReportError(9, nullptr, call.in[0]);
        return nullptr;
    }
    Node* params = entry->next->payload;
    return MakeListCell(params ? params : EmptyList(), entry->next->next);
}

Node* PrimPo(PrimitiveCall& call) { return ListProcedures(call, false); }

Node* PrimPot(PrimitiveCall& call) { return ListProcedures(call, true); }

Node* PrimPots(PrimitiveCall&) {
    std::vector<std::string> titles;
    for (Node** chain : DictionaryChains(Dictionary::Procedures, false)) {
        for (const Node* holder = *chain; holder; holder = holder->next) {
            if (holder->payload) titles.push_back(ProcedureTitle(holder->payload) + "\n");
        }
    }
    PrintListings(titles, "");
    return nullptr;
}

Node* PrimPops(PrimitiveCall&) { return PrintListings(ActiveListings(Dictionary::Procedures), "\n"); }

Node* PrimPon(PrimitiveCall& call) {
    ForEachName(call.in[0], call.row, [](Node* name) {
        Node* value = FindVariableValue(name);
        if (!value) {
            ReportError(9, nullptr, name);
            return false;
        }
        // The listing of an entry [name value], made on the spot from the name as given.
        Node valueCell, nameCell;
        valueCell.tag = nameCell.tag = kTagList;
        valueCell.payload = value;
        nameCell.payload = name;
        nameCell.next = &valueCell;
        OutputText(NameListing(&nameCell));
        PollBreak();
        return !GetLogoRunState().stopping;
    });
    return nullptr;
}

Node* PrimPons(PrimitiveCall&) { return PrintListings(ActiveListings(Dictionary::Names), ""); }

Node* PrimPps(PrimitiveCall&) { return PrintListings(ActiveListings(Dictionary::PropertyLists), ""); }

Node* PrimPoall(PrimitiveCall&) {
    PrintListings(ActiveListings(Dictionary::Names), "");
    if (!GetLogoRunState().stopping) OutputText("\n");
    PrintListings(ActiveListings(Dictionary::PropertyLists), "");
    if (!GetLogoRunState().stopping) OutputText("\n");
    PrintListings(ActiveListings(Dictionary::Procedures), "\n");
    return nullptr;
}
