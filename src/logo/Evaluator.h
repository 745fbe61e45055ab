// The evaluator walks parsed lines with a cursor (a list cell): Eval takes one complete expression,
// Apply calls the primitive or procedure a token names. Procedures, variables and catch records
// are node lists, so the collector keeps them with no code of its own.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "memory/MemRef.h"

struct Node;

// Where the lines that TO reads come from once the script text is used up: the console. `prompt`
// is "?" or ">"; nullopt at the end of input.
using LogoLineProvider = std::optional<std::string> (*)(char prompt);
using LogoTextWriter = void (*)(std::string_view text);
using LogoErrorSink = void (*)(const std::string& text);

struct LogoRunState {
    Node* currentFrame = nullptr;  // whose locals are visible; null at top level
    Node* bodyStart = nullptr;     // the running procedure's first body line
    Node* bodyNext = nullptr;      // its next line to run
    Node* procedureOutput = nullptr;
    Node* pendingOperand = nullptr;
    Node* inputCursor[4] = {};
    bool parenCall = false;
    bool stopping = false;
    bool throwing = false;
    bool defining = false;
    bool returning = false;     // STOP or OUTPUT: the procedure's lines end
    int32_t lastErrorCode = 0;
    int uncaughtErrorCode = 0;  // of the last uncaught error in this run, 0 when none
    int callDepth = 0;
    uintptr_t stackBase = 0;    // the native stack where the outermost run began
    uint32_t lastPumpMs = 0;
    uint32_t pollsSincePump = 0;
    char prompt = '?';
    std::string script;         // the text being run, line by line
    size_t scriptAt = 0;
    LogoLineProvider lineProvider = nullptr;
    LogoTextWriter writer = nullptr;
    LogoErrorSink errorSink = nullptr;  // null: errors show the host's message box
    bool primitivesReady = false;
};
LogoRunState& GetLogoRunState();

// Runs `text` line by line to its end, or until an error stops it. Returns the number of the last
// error that was not caught, 0 when none. The workspace stays for the next run.
int RunLogoLines(std::string_view text, LogoLineProvider lineProvider, LogoTextWriter writer);
// The action interpreter's entry for a tag-64 script: the record's text, run with no console.
int32_t RunLogoText(void* window, MemRef* script);
// Ends the procedures that are running.
void StopLogoProcedures();
void SetLogoErrorSink(LogoErrorSink sink);

Node* Eval(Node** cursor, bool inParens);
Node* Apply(Node** cursor, bool inParens);
// EQUALP: kinds alike compare by content (words case-sensitively); a number and a word that
// reads as one compare as reals.
bool ValuesEqual(const Node* a, const Node* b);
Node* RunList(Node* list);
Node* GetVariable(Node* word);
// The value of a :NAME or NAME word, or null, reporting nothing.
Node* FindVariableValue(const Node* word);
void SetVariable(Node* word, Node* value);
void DeclareLocal(Node* word);
Node* FindProcedure(Node** word);
// The bucket of `word` in the seven-bucket dictionaries.
int DictionaryBucket(const Node* word);
// Makes the record of CATCH `tag` the innermost and starts the throw; false when none matches.
bool ThrowTo(Node* tag);
void OutputText(std::string_view text);
// Gives the host a turn when a while (or, on a clock that stands still, a number of polls) has
// passed since the last one, and stops the run when Escape is waiting or a break was asked for.
void PollBreak();
// A break from outside, such as the terminal's interrupt: the run stops at its next poll. Safe in
// a signal handler.
void RequestLogoBreak();
// The next line for TO: script text first, then the console with `prompt`; nullopt at the end.
std::optional<std::string> ReadLogoLine(char prompt);
bool ScriptTextRemains();
