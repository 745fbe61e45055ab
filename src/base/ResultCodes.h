// The result codes every layer returns: 0 for success, the rest as the system numbers them.
#pragma once

#include <cstdint>

inline constexpr int32_t kResultOk = 0;
inline constexpr int32_t kResultFailed = -1;     // any file or memory failure
inline constexpr int32_t kResultReported = -12;  // a failure already reported to the user
inline constexpr int32_t kResultNoMemory = 16;   // no memory, a failed lock or a bad state
inline constexpr int32_t kResultReadOnly = -2688;
