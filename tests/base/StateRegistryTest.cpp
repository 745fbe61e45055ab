#include "base/StateRegistry.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string& Order() {
    static std::string order;
    return order;
}

// Registered out of order on purpose: the top room must be reset first, whatever the order of
// registration, so that nothing is reset under a module that still holds it.
[[maybe_unused]] const bool kStack = RegisterStateReset(Room::Stack, [] { Order() += "stack "; });
[[maybe_unused]] const bool kHost = RegisterStateReset(Room::Host, [] { Order() += "host "; });
[[maybe_unused]] const bool kCard = RegisterStateReset(Room::Card, [] { Order() += "card "; });

TEST(StateRegistryTest, ResetsRunFromTheTopRoomDown) {
    Order().clear();
    ResetAllState();
    EXPECT_EQ(Order(), "host card stack ");
}

}  // namespace
