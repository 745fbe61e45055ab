// Leaving and arriving at cards. The order of their steps is binding; steps of subsystems that
// don't exist yet keep their place as empty calls.
#pragma once

#include <cstdint>

inline constexpr int16_t kPlainEffect = 3;
inline constexpr int16_t kPlainSpeed = 8;

void LeaveCard(bool pushBack);
// Makes the card at `position` (1-based) current and arrives at it.
void ArriveAtCard(int32_t position, int16_t effect, int16_t speed, bool runActions);
