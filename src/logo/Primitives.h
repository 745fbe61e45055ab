// The primitive table: one row per name, in the language's own order, each with its input count
// and handler. Handlers name their row in messages, so row numbers are the table's order.
#pragma once

#include <cstdint>

struct Node;

struct PrimitiveCall {
    int row = 0;
    Node* in[4] = {};
    // For a row of -1 inputs: the evaluator's cursor, from which the handler takes its own inputs.
    Node** cursor = nullptr;
};

using PrimitiveHandler = Node* (*)(PrimitiveCall& call);

struct PrimitiveRow {
    const char* name;
    int16_t inputs;            // 0 to 4, or -1 for a handler that reads the cursor
    PrimitiveHandler handler;  // null: a reserved row, reports error 99 (the operator rows too)
};

inline constexpr int kPrimitiveRows = 326;
inline constexpr int kNamedPrimitiveRows = 320;
// The operator rows, which exist so that messages can name an operator.
inline constexpr int kRowPlus = 320;
inline constexpr int kRowMinus = 321;
inline constexpr int kRowLess = 322;
inline constexpr int kRowGreater = 323;
inline constexpr int kRowTimes = 324;
inline constexpr int kRowDivide = 325;

const PrimitiveRow& GetPrimitiveRow(int row);
// Fills the name nodes and the hash index; the name nodes are collector roots.
void InitPrimitiveTable();
Node* PrimitiveNameNode(int row);
// The row of `*word` or -1; on a hit `*word` becomes the row's name node.
int FindPrimitive(Node** word);
// The row named `name`, for handlers that report on another row's behalf.
int PrimitiveRowOf(const char* name);
