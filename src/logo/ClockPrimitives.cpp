// Chance and the clock: RANDOM, RERANDOM, DATE, TIME and VERSION.
#include <cstdio>
#include <initializer_list>
#include <iterator>
#include <string>

#include "base/StateRegistry.h"
#include "logo/LogoErrors.h"
#include "logo/NodeHeap.h"
#include "logo/PrimitiveHandlers.h"
#include "platform/Host.h"

namespace {

// The C library's generator of the platform the language comes from, carried here so that every
// host (and the web build) deals the same numbers from the same seed.
inline constexpr uint32_t kRandMultiplier = 214013u;
inline constexpr uint32_t kRandIncrement = 2531011u;

struct RandomState {
    uint32_t seed = 0;   // taken from the clock when the table is made; RERANDOM goes back to it
    uint32_t state = 0;
};

RandomState gRandom;

void ResetRandom() { gRandom = RandomState{}; }
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Logo, ResetRandom);

int32_t NextRandom() {
    gRandom.state = gRandom.state * kRandMultiplier + kRandIncrement;
    return static_cast<int32_t>((gRandom.state >> 16) & 0x7FFF);
}

const char* const kDayNames[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
const char* const kMonthNames[] = {"January", "February", "March",     "April",   "May",      "June",
                                   "July",    "August",   "September", "October", "November", "December"};

// A list of three numbers and then the words, each of which may hold blanks.
Node* NumbersAndWords(const int32_t (&numbers)[3], std::initializer_list<const char*> words) {
    Node* list = nullptr;
    for (auto it = std::rbegin(words); it != std::rend(words); ++it) {
        Node* word = MakeWord(*it);
        list = word ? MakeListCell(word, list) : nullptr;
        if (!list) return nullptr;
    }
    for (int i = 2; list && i >= 0; --i) {
        Node* n = MakeInteger(numbers[i]);
        list = n ? MakeListCell(n, list) : nullptr;
    }
    return list;
}

}  // namespace

void SeedLogoRandom() {
    gRandom.seed = GetHost().GetTickCount();
    gRandom.state = gRandom.seed;
}

Node* PrimRandom(PrimitiveCall& call) {
    int32_t n = GetInteger(call.in[0], call.row);
    if (n < 1) {
        ReportErrorAtRow(41, call.row, call.in[0]);
        n = 1;
    }
    return MakeInteger(NextRandom() % n);
}

Node* PrimRerandom(PrimitiveCall&) {
    gRandom.state = gRandom.seed;
    return nullptr;
}

Node* PrimDate(PrimitiveCall&) {
    const HostDateTime now = GetHost().WallClock();
    const int month = now.month >= 1 && now.month <= 12 ? now.month : 1;
    const int weekday = now.weekday >= 0 && now.weekday <= 6 ? now.weekday : 0;
    char text[64];
    std::snprintf(text, sizeof text, "%s, %s %d, %d", kDayNames[weekday], kMonthNames[month - 1],
                  static_cast<int>(now.day), static_cast<int>(now.year));
    const int32_t numbers[3] = {now.month, now.day, now.year - 1900};
    return NumbersAndWords(numbers, {text});
}

Node* PrimTime(PrimitiveCall&) {
    const HostDateTime now = GetHost().WallClock();
    const int hour12 = now.hour % 12 == 0 ? 12 : now.hour % 12;
    char text[32];
    std::snprintf(text, sizeof text, "%d:%02d:%02d %s", hour12, static_cast<int>(now.minute),
                  static_cast<int>(now.second), now.hour < 12 ? "AM" : "PM");
    const int32_t numbers[3] = {now.hour, now.minute, now.second};
    return NumbersAndWords(numbers, {text});
}

Node* PrimVersion(PrimitiveCall&) {
    const int32_t numbers[3] = {2, 3, 1};
    return NumbersAndWords(numbers, {"Windows", "2.3.1"});
}
