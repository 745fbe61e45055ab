// Text to lists in one pass: nested brackets become nested lists, numbers become number nodes,
// everything else a word. The evaluator walks what this makes; there is no other syntax tree.
#pragma once

#include <string_view>

struct Node;

// The tokens of one line, pinned; EmptyList for a line with none. Unbalanced brackets are no
// error: a [ closes at the end of the line, a stray ] ends it.
Node* ParseLine(std::string_view text);
