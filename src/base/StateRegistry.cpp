#include "base/StateRegistry.h"

#include <algorithm>
#include <vector>

namespace {

struct Registration {
    Room room;
    StateReset reset;
};

// Filled while the program's statics start, so it must exist before the first of them registers.
std::vector<Registration>& Registrations() {
    static std::vector<Registration> registrations;
    return registrations;
}

}  // namespace

bool RegisterStateReset(Room room, StateReset reset) {
    Registrations().push_back({room, reset});
    return true;
}

void ResetAllState() {
    std::vector<Registration> ordered = Registrations();
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const Registration& a, const Registration& b) { return a.room > b.room; });
    for (const Registration& r : ordered) r.reset();
}
