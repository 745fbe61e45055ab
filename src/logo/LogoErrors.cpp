#include "logo/LogoErrors.h"

#include "logo/Evaluator.h"
#include "logo/NodeHeap.h"
#include "logo/Primitives.h"
#include "logo/Printer.h"
#include "platform/Host.h"

std::string LogoErrorMessage(int number, const std::string& a, const std::string& b) {
    switch (number) {
        case 6: return b + " is a primitive";
        case 7: return "Can't find the label " + b;
        case 9: return b + " is undefined";
        case 13: return "Can't divide by 0";
        case 19: return "Too few items in " + a;
        case 20: return "Too many files are open";
        case 21: return "Can't find catch for " + b;
        case 23: return "Out of space";
        case 25: return b + " is not TRUE or FALSE";
        case 29: return "Not enough inputs to " + a;
        case 30: return "Too many inputs to " + a;
        case 33: return "Can only do that in a procedure";
        case 34: return "Turtle out of bounds";
        case 35: return "I don't know how to " + a;
        case 38: return "You didn't say what to do with " + b;
        case 41: return a + " doesn't like " + b + " as input";
        case 45: return a + " is not open";
        case 57: return "Can't write to " + b;
        case 58: return "Can't read from " + b;
        case 59: return "A sound channel could not be started";
        case 60: return "Not enough memory to run Logo";
        case 61: return "Property lists must have an even number of elements";
        case 62: return "The directory " + a + " is not valid, or is not available";
        case 63: return "Disk IO Error";
        case 64: return "POFile can only print text files";
        case 65: return a + " wants a reader file";
        case 66: return a + " needs a text file";
        case 67: return a + " could not find a window";
        case 68: return a + " could not find the window " + b;
        case 69: return "Out of stack space";
        case 71: return "You used a TO without an END";
        case 73: return a + " wants a writer file";
        case 74: return "Math operations don't like " + b + " as input";
        case 75: return a + " cannot be used in a procedure";
        case 76: return a + " cannot be used in a script";
        case 98: return a + " is not available in this build";
        case 99: return a + " is a reserved primitive for future expansion";
        default: return "Unimplemented error";
    }
}

void ReportError(int number, Node* culprit, Node* value) {
    LogoRunState& run = GetLogoRunState();
    if (run.throwing) return;
    if (ThrowTo(ErrorTagWord())) {
        run.lastErrorCode = number;
        return;
    }
    // An undefined name reads bare ("X is undefined"), and error 74 shows its value as text.
    const bool bareValue = number == 9 || number == 74;
    const std::string message = LogoErrorMessage(number, ValueText(culprit, true),
                                                 bareValue ? ValueText(value, true) : QuotedValueText(value, true));
    const Node* place = GetLogoRoots().currentRunList;
    const std::string at = place ? ListToLineText(place) : std::string();
    std::string text = "Logo Error: " + message;
    if (!at.empty()) text += "\n\nAt: " + at;
    run.uncaughtErrorCode = number;
    run.stopping = true;
    if (run.errorSink) {
        run.errorSink(text);
    } else {
        GetHost().ShowMessageBox("QuillLogo", text);
    }
}

void ReportErrorAtRow(int number, int row, Node* value) {
    ReportError(number, PrimitiveNameNode(row), value);
}

void ReportErrorText(int number, const char* text, Node* value) {
    Node* word = MakeWord(text);
    ReportError(number, word, value);
    UnpinValue(word);
}
