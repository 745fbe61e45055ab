// Every interpreter error passes through one reporter: it hands the error to a CATCH "ERROR if one
// is waiting, or shows the "Logo Error:" box, and in either case the running script stops.
#pragma once

#include <string>

struct Node;

// `culprit` is the primitive or word named in the message, `value` the offending input; either
// may be null.
void ReportError(int number, Node* culprit, Node* value);
// The same with the name node of primitive row `row` as the culprit.
void ReportErrorAtRow(int number, int row, Node* value);
// The same with a word made from `text` as the culprit.
void ReportErrorText(int number, const char* text, Node* value);
// The message of error `number`, with the texts of the culprit and the value already made.
std::string LogoErrorMessage(int number, const std::string& culprit, const std::string& value);
