#include "logo/Reader.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string>

#include "logo/NodeHeap.h"

namespace {

inline constexpr size_t kNumberChars = 19;
inline constexpr int kExponentDigits = 3;

struct ReaderCursor {
    std::string_view text;
    size_t at = 0;
    // A node could not be had: every open level ends.
    bool exhausted = false;

    char Current() const { return exhausted || at >= text.size() ? 0 : text[at]; }
    void Advance() {
        if (at < text.size()) ++at;
    }
    void End() { at = text.size(); }
};

bool IsBlank(char c) { return c != 0 && std::isspace(static_cast<unsigned char>(c)); }
bool IsDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

bool EndsWord(char c) {
    return c == 0 || IsBlank(c) || std::strchr("[]()=<>+-*", c) != nullptr;
}

// Blanks, and a comment that ends the line at every open level at once.
void SkipBlanks(ReaderCursor& r) {
    while (IsBlank(r.Current())) r.Advance();
    if (r.Current() == ';') r.End();
}

void ReadWordChars(ReaderCursor& r, std::string& word) {
    do {
        if (r.Current() == '\\') r.Advance();
        const char c = r.Current();
        if (c == 0) break;
        word += c;
        r.Advance();
    } while (!EndsWord(r.Current()));
}

Node* ReadNumber(ReaderCursor& r) {
    std::string digits;
    bool hasPoint = false;
    if (r.Current() == '0') {
        while (r.Current() == '0') r.Advance();
        digits += '0';
    }
    while (digits.size() < kNumberChars && (IsDigit(r.Current()) || r.Current() == '.')) {
        if (r.Current() == '.') hasPoint = true;
        digits += r.Current();
        r.Advance();
    }
    // The E is taken even with no digit after it: "3EGGS" is 3 and the word GGS.
    if (std::toupper(static_cast<unsigned char>(r.Current())) == 'E') {
        hasPoint = true;
        digits += 'E';
        r.Advance();
        if (r.Current() == '+' || r.Current() == '-') {
            digits += r.Current();
            r.Advance();
        }
        if (r.Current() == '0') {
            while (r.Current() == '0') r.Advance();
            digits += '0';
        }
        for (int i = 0; i < kExponentDigits && IsDigit(r.Current()); ++i) {
            digits += r.Current();
            r.Advance();
        }
    }
    if (!hasPoint) {
        // A literal too big for 32 bits wraps, as the system's converter did.
        uint32_t value = 0;
        for (char c : digits) value = value * 10u + static_cast<uint32_t>(c - '0');
        return MakeInteger(static_cast<int32_t>(value));
    }
    return MakeFloat(std::strtod(digits.c_str(), nullptr));
}

void Negate(Node* n) {
    if (IsInteger(n)) n->integer = static_cast<int32_t>(0u - static_cast<uint32_t>(n->integer));
    else if (IsFloat(n)) n->real = -n->real;
}

Node* ReadToken(ReaderCursor& r, bool& signAllowed) {
    std::string word;
    const char c = r.Current();
    if (c == '"') {
        word += '"';
        r.Advance();
        const char next = r.Current();
        if (next != '[' && next != 0 && !IsBlank(next)) ReadWordChars(r, word);
        signAllowed = false;
    } else if (c == '\'') {
        // The character after the opening quote is always taken; the next quote ends the word
        // and is dropped, so 'A B' is one word and 'it''s' is two.
        word += '"';
        r.Advance();
        do {
            if (r.Current() == '\\') r.Advance();
            if (r.Current() == 0) break;
            word += r.Current();
            r.Advance();
        } while (r.Current() != 0 && r.Current() != '\'');
        if (r.Current() == '\'') r.Advance();
        signAllowed = false;
    } else if (std::strchr("()*+/<=>", c)) {
        word += c;
        r.Advance();
        signAllowed = true;
    } else if (c == '-') {
        r.Advance();
        if (signAllowed && (IsDigit(r.Current()) || r.Current() == '.')) {
            Node* n = ReadNumber(r);
            if (n) Negate(n);
            signAllowed = false;
            return n;
        }
        word += '-';
        signAllowed = true;
    } else if (IsDigit(c) || c == '.') {
        signAllowed = false;
        return ReadNumber(r);
    } else {
        ReadWordChars(r, word);
        signAllowed = false;
    }
    return MakeWord(word);
}

Node* Reverse(Node* cells) {
    Node* out = nullptr;
    while (cells) {
        Node* next = cells->next;
        cells->next = out;
        out = cells;
        cells = next;
    }
    return out;
}

Node* ReadListLevel(ReaderCursor& r) {
    bool signAllowed = true;
    Node* cells = nullptr;
    SkipBlanks(r);
    while (r.Current() != 0 && r.Current() != ']') {
        Node* cell = MakeListCell(nullptr, cells);
        if (!cell) {
            r.exhausted = true;
            break;
        }
        cells = cell;
        if (r.Current() == '[') {
            r.Advance();
            cell->payload = ReadListLevel(r);
            signAllowed = true;
        } else {
            cell->payload = ReadToken(r, signAllowed);
            if (!cell->payload) r.exhausted = true;
        }
        if (IsBlank(r.Current()) || r.Current() == ';') {
            signAllowed = true;
            SkipBlanks(r);
        }
    }
    if (r.Current() == ']') r.Advance();
    return cells ? Reverse(cells) : EmptyList();
}

}  // namespace

Node* ParseLine(std::string_view text) {
    ReaderCursor r{text};
    return ReadListLevel(r);
}
