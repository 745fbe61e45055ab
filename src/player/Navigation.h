// Leaving and arriving at cards, and every move built from them. The order of their steps is
// binding; steps of subsystems that don't exist yet keep their place as empty calls.
#pragma once

#include <cstdint>
#include <string>

#include "memory/MemRef.h"

inline constexpr int16_t kPlainEffect = 3;
inline constexpr int16_t kPlainSpeed = 8;
inline constexpr int32_t kBackLimit = 16;
// The card id that asks GoToStack for the stack's first card.
inline constexpr int16_t kFirstCardOfStack = -6;
// GoToStack's answer when the move didn't happen: the user cancelled, or the file wasn't found.
inline constexpr int32_t kStackMoveStopped = 1;

void LeaveCard(bool pushBack);
// Arrives at the card whose id is the document's currentCardId.
void ArriveAtCard(int16_t effect, int16_t speed, bool atStack);

void GoFirst(int16_t effect, int16_t speed);
void GoLast(int16_t effect, int16_t speed);
void GoPrevious(int16_t effect, int16_t speed);
void GoNext(int16_t effect, int16_t speed);
// An unknown id shows alert 2223 and arrives again at the card we were on.
void GoToCard(int16_t id, int16_t effect, int16_t speed);
void GoToCardNoBack(int16_t id, int16_t effect, int16_t speed);
void GoBack(int16_t effect, int16_t speed);
void GoHome(int16_t effect, int16_t speed);
void GoMarked(int16_t effect, int16_t speed);
// Opens the stack of path slot `slot` and arrives at card `cardId`, or at the first card when
// that is kFirstCardOfStack or isn't in the stack. 0 on arrival, kStackMoveStopped, or the error
// of a read that failed (reported, and a blank stack in its place).
int32_t GoToStack(int slot, int16_t cardId, int16_t effect, int16_t speed, bool pushBack,
                  bool searchFolders);
// The jump dialog's OK: a position of digits, else a card name. True when it went to a card; a
// text that finds none shows alert 2223 unless it is empty.
bool JumpToCardByText(const std::string& text);

// Adds a card behind the current one and goes to it; 0 on failure (after alert 2224).
MemRef NewCard(bool first, bool asGroupMember);
void UpdateTitle(bool force);
// The title UpdateTitle would set now.
std::string CardTitle();

// Runs the stack's leave action: closing a stack does it before anything is freed.
void RunStackLeaveAction();


// Back history, for tests and the stack's own inspection.
int32_t BackDepth();
int16_t BackCardId(int32_t index);  // 0 the newest; 0 beyond the oldest
int16_t MarkedCardId();
// Empties the Back list and forgets the marked card and the title state.
void ResetNavigation();
