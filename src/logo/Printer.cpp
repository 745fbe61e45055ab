#include "logo/Printer.h"

#include <cctype>
#include <cstring>

#include "logo/Evaluator.h"
#include "logo/NodeHeap.h"

namespace {

inline constexpr size_t kLineTextMax = 255;

bool BreaksReading(char c) {
    return c != 0 && std::strchr(" ()*+-;<=>[\\]", c) != nullptr;
}

bool IsOperatorChar(char c) {
    return c != 0 && std::strchr("()*+-<=>[]", c) != nullptr;
}

std::string WordPrintText(const Node* word, bool escape) {
    std::string text = WordToText(word);
    if (text == "\"") return "\" ";
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        char c = text[i] == '\r' ? ' ' : text[i];
        if (escape) {
            const bool first = i == 0 && (std::isdigit(static_cast<unsigned char>(c)) || c == '.');
            if (BreaksReading(c) || first) out += '\\';
        }
        out += c;
    }
    return out;
}

void AppendPrint(std::string& out, const Node* v, bool escape) {
    if (!v) return;
    if (IsList(v)) {
        bool first = true;
        for (const Node* cell = v; cell; cell = cell->next) {
            if (!cell->payload && !cell->next && cell == v) break;  // the empty list
            if (!first) out += ' ';
            first = false;
            const Node* e = cell->payload;
            if (IsList(e)) {
                out += '[';
                AppendPrint(out, e, escape);
                out += ']';
            } else {
                AppendPrint(out, e, escape);
            }
        }
    } else if (IsNumber(v)) {
        out += NumberToText(v);
    } else if (IsWord(v)) {
        out += WordPrintText(v, escape);
    }
}

void AppendValueText(std::string& out, const Node* v, bool showVariables) {
    if (IsList(v)) {
        bool first = true;
        for (const Node* cell = v; cell; cell = cell->next) {
            if (!cell->payload && !cell->next && cell == v) break;
            if (!first) out += ' ';
            first = false;
            if (IsList(cell->payload)) {
                out += '[';
                AppendValueText(out, cell->payload, showVariables);
                out += ']';
            } else if (cell->payload) {
                AppendValueText(out, cell->payload, showVariables);
            }
        }
    } else if (IsNumber(v)) {
        out += NumberToText(v);
    } else if (IsWord(v)) {
        if (showVariables && FirstChar(v) == ':') {
            AppendValueText(out, FindVariableValue(v), false);
        } else {
            out += WordToText(v);
        }
    }
}

void AppendLineText(std::string& out, const Node* v, size_t limit) {
    bool first = true;
    for (const Node* cell = v; cell && out.size() < limit; cell = cell->next) {
        if (!cell->payload && !cell->next && cell == v) break;
        if (!first) out += ' ';
        first = false;
        const Node* e = cell->payload;
        if (IsList(e)) {
            out += '[';
            AppendLineText(out, e, limit);
            out += ']';
        } else if (IsNumber(e)) {
            out += NumberToText(e);
        } else if (IsWord(e)) {
            const std::string text = WordToText(e);
            if (text == "\"") {
                out += "\" ";
                continue;
            }
            // A lone operator stays readable as itself; only [ and a blank need the backslash.
            const bool lone = text.size() == 1 && IsOperatorChar(text[0]);
            for (char c : text) {
                if (c == '\r') c = ' ';
                if (lone ? (c == '[' || c == ' ') : BreaksReading(c)) out += '\\';
                out += c;
            }
        }
    }
}

}  // namespace

std::string PrintText(const Node* value, bool escape) {
    std::string out;
    AppendPrint(out, value, escape);
    return out;
}

std::string PrintQuotedText(const Node* value, bool escape) {
    if (IsList(value)) return "[" + PrintText(value, escape) + "]";
    if (IsWord(value)) return "\"" + PrintText(value, escape);
    return PrintText(value, escape);
}

std::string ValueText(const Node* value, bool showVariables) {
    if (!value) return "[]";
    std::string out;
    AppendValueText(out, value, showVariables);
    return out;
}

std::string QuotedValueText(const Node* value, bool showVariables) {
    if (!value) return "[]";
    if (IsList(value)) return "[" + ValueText(value, showVariables) + "]";
    if (IsWord(value)) return "\"" + ValueText(value, showVariables);
    return ValueText(value, showVariables);
}

std::string ListToLineText(const Node* list) {
    std::string out;
    if (IsList(list)) AppendLineText(out, list, kLineTextMax);
    if (out.size() > kLineTextMax) out.resize(kLineTextMax);
    return out;
}

std::string ProcedureLineText(const Node* list) {
    std::string out;
    if (IsList(list)) AppendLineText(out, list, std::string::npos);
    return out;
}
