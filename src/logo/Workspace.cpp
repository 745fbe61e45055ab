#include "logo/Workspace.h"

#include "logo/Evaluator.h"
#include "logo/Printer.h"

Node** DictionaryChain(Dictionary dictionary, bool buried, const Node* name) {
    LogoRoots& roots = GetLogoRoots();
    switch (dictionary) {
        case Dictionary::Procedures:
            return &(buried ? roots.buriedProcedures : roots.procedures)[DictionaryBucket(name)];
        case Dictionary::Names:
            return &(buried ? roots.buriedNames : roots.names)[DictionaryBucket(name)];
        case Dictionary::PropertyLists:
            break;
    }
    return buried ? &roots.buriedPropertyLists : &roots.propertyLists;
}

std::vector<Node**> DictionaryChains(Dictionary dictionary, bool buried) {
    LogoRoots& roots = GetLogoRoots();
    std::vector<Node**> chains;
    if (dictionary == Dictionary::PropertyLists) {
        chains.push_back(buried ? &roots.buriedPropertyLists : &roots.propertyLists);
        return chains;
    }
    Node** buckets = dictionary == Dictionary::Procedures ? (buried ? roots.buriedProcedures : roots.procedures)
                                                          : (buried ? roots.buriedNames : roots.names);
    for (int b = 0; b < kBuckets; ++b) chains.push_back(&buckets[b]);
    return chains;
}

Node** FindHolderLink(Node** chain, const Node* name, bool exact) {
    for (Node** link = chain; *link; link = &(*link)->next) {
        const Node* entry = (*link)->payload;
        if (!entry) continue;
        if (exact ? ValuesEqual(entry->payload, name) : CompareWords(entry->payload, name) == 0) return link;
    }
    return nullptr;
}

void MoveHolder(Node** link, Node** to) {
    Node* holder = *link;
    *link = holder->next;
    holder->next = *to;
    *to = holder;
}

void Unpinned(Node* cell) {
    if (cell) cell->tag = kTagList;
}

bool LinkNewEntry(Dictionary dictionary, Node* name, Node* rest) {
    Node* entry = MakeListCell(name, rest);
    Node** chain = DictionaryChain(dictionary, false, name);
    Node* holder = entry ? MakeListCell(entry, *chain) : nullptr;
    if (!holder) {
        if (entry) entry->tag = kTagList;
        return false;
    }
    Unpinned(entry);
    Unpinned(holder);
    *chain = holder;
    return true;
}

std::string ProcedureTitle(const Node* entry) {
    std::string text = "TO " + WordToText(entry->payload);
    const Node* params = entry->next ? entry->next->payload : nullptr;
    if (IsList(params) && params->payload) {
        for (const Node* p = params; p; p = p->next) {
            std::string name = AtomText(p->payload);
            if (!name.empty() && name[0] == ':') name.erase(0, 1);
            text += " :" + name;
        }
    }
    return text;
}

std::string ProcedureListing(const Node* entry) {
    std::string text = ProcedureTitle(entry) + "\n";
    for (const Node* line = entry->next ? entry->next->next : nullptr; line; line = line->next) {
        text += ProcedureLineText(line->payload) + "\n";
    }
    return text + "END\n";
}

std::string NameListing(const Node* entry) {
    return "MAKE \"" + WordToText(entry->payload) + " " + PrintQuotedText(entry->next->payload, true) + "\n";
}

std::string PropertyListing(const Node* entry) {
    const Node* plist = entry->next ? entry->next->payload : nullptr;
    return "SETPLIST \"" + WordToText(entry->payload) + " [" + PrintText(plist, true) + "]\n";
}

std::vector<std::string> ActiveListings(Dictionary dictionary) {
    std::vector<std::string> texts;
    for (Node** chain : DictionaryChains(dictionary, false)) {
        for (const Node* holder = *chain; holder; holder = holder->next) {
            const Node* entry = holder->payload;
            if (!entry) continue;
            switch (dictionary) {
                case Dictionary::Procedures: texts.push_back(ProcedureListing(entry)); break;
                case Dictionary::Names: texts.push_back(NameListing(entry)); break;
                case Dictionary::PropertyLists: texts.push_back(PropertyListing(entry)); break;
            }
        }
    }
    return texts;
}

namespace {

std::string Joined(const std::vector<std::string>& texts, const char* between) {
    std::string out;
    for (size_t i = 0; i < texts.size(); ++i) out += (i ? between : "") + texts[i];
    return out;
}

}  // namespace

std::string WorkspaceListing() {
    return Joined(ActiveListings(Dictionary::Names), "") + "\n" + Joined(ActiveListings(Dictionary::PropertyLists), "") +
           "\n" + Joined(ActiveListings(Dictionary::Procedures), "\n");
}
