// Values back to text: what PRINT and SHOW write, what error messages quote, and the "At:" line.
// A word the reader can make from plain text prints, escaped, as text that reads back the same.
#pragma once

#include <string>

struct Node;

// A value without outer brackets; `escape` puts a backslash before what would break re-reading.
std::string PrintText(const Node* value, bool escape);
// A value as it reads back: a word with its leading ", a list in brackets.
std::string PrintQuotedText(const Node* value, bool escape);
// A value's text for messages: "[]" for nothing; with `showVariables` a :NAME word stands for its
// value.
std::string ValueText(const Node* value, bool showVariables);
// As ValueText, with a word's leading " and a list's brackets.
std::string QuotedValueText(const Node* value, bool showVariables);
// A list's text for the "At:" line, always escaped, cut at 255 characters.
std::string ListToLineText(const Node* list);
// A procedure's line as PO lists it: the same form, whole.
std::string ProcedureLineText(const Node* list);
