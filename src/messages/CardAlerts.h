// The alerts and strings of the card list and of moving between cards, by their numbers in the
// string table.
#pragma once

#include <cstdint>

inline constexpr int kAlertCardNotFound = 2223;
inline constexpr int kAlertNoMemory = 2224;
inline constexpr int kAlertPictureNotStored = 2230;
inline constexpr int kAlertNoMarkedCard = 2242;
inline constexpr int kAlertTwentiethCard = 2303;

// Labels of the actions run on arriving and leaving, for the action runner's messages. Leaving a
// card is labelled as a click on it: the runner's messages have always said so.
inline constexpr int16_t kLabelArriveCard = 2030;
inline constexpr int16_t kLabelLeaveCard = 2032;
inline constexpr int16_t kLabelArriveStack = 2033;
inline constexpr int16_t kLabelLeaveStack = 2034;

inline constexpr int kStringCardNumber = 2521;  // " - Card "
inline constexpr int kStringUntitled = 4041;
inline constexpr int kStringFindStack = 2413;
