// The alerts and strings of the string table that code names, by their numbers: one place, so a
// number has one name.
#pragma once

#include <cstdint>

// Opening and saving a stack.
inline constexpr int kAlertTooNew = 2221;
inline constexpr int kAlertTooOld = 2222;
inline constexpr int kAlertMustSave = 2213;
inline constexpr int kAlertStackChanged = 2229;
inline constexpr int kAlertSomeError = 2235;
inline constexpr int kAlertBlackAndWhite = 2256;
inline constexpr int kAlertDiskFull = 2264;
inline constexpr int kAlertNotAStack = 2268;
inline constexpr int kAlertNoCards = 2305;
inline constexpr int kAlertNoSamples = 2292;
inline constexpr int kAlertMinimumSize = 2334;  // also asked whether to shrink the card
inline constexpr int kAlertConverted = 2339;
inline constexpr int kAlertDepthChanged = 2340;
inline constexpr int kAlertDiskLocked = 2689;

// The card list and moving between cards.
inline constexpr int kAlertCardNotFound = 2223;
inline constexpr int kAlertNoMatch = 2201;
inline constexpr int kAlertNoMemory = 2224;
inline constexpr int kAlertPictureNotStored = 2230;
inline constexpr int kAlertFieldNotStored = 2238;
inline constexpr int kAlertNoMarkedCard = 2242;
inline constexpr int kAlertTwentiethCard = 2303;
inline constexpr int kAlertCardSize = 2295;

// Labels of the actions run on arriving and leaving, for the action runner's messages. Leaving a
// card is labelled as a click on it: the runner's messages have always said so.
inline constexpr int16_t kLabelArriveCard = 2030;
inline constexpr int16_t kLabelLeaveCard = 2032;
inline constexpr int16_t kLabelArriveStack = 2033;
inline constexpr int16_t kLabelLeaveStack = 2034;
inline constexpr int16_t kLabelCardClick = kLabelLeaveCard;
inline constexpr int16_t kLabelStackClick = 2035;

inline constexpr int kStringCardNumber = 2521;  // " - Card "
inline constexpr int kStringUntitled = 4041;
inline constexpr int kStringFindStack = 2413;
inline constexpr int kStringFindTextFile = 2416;
inline constexpr int kStringTextFiles = 4047;
inline constexpr int kStringHomeNames = 2804;
inline constexpr int kStringCantResizeMemRefs = 4067;
inline constexpr int kHintNewStack = 2280;
