// The alerts of opening and saving a stack, by their numbers in the string table.
#pragma once

inline constexpr int kAlertTooNew = 2221;
inline constexpr int kAlertTooOld = 2222;
inline constexpr int kAlertMustSave = 2213;
inline constexpr int kAlertStackChanged = 2229;
inline constexpr int kAlertSomeError = 2235;
inline constexpr int kAlertBlackAndWhite = 2256;
inline constexpr int kAlertDiskFull = 2264;
inline constexpr int kAlertNotAStack = 2268;
inline constexpr int kAlertNoCards = 2305;
inline constexpr int kAlertMinimumSize = 2334;
inline constexpr int kAlertConverted = 2339;
inline constexpr int kAlertDepthChanged = 2340;
inline constexpr int kAlertDiskLocked = 2689;
